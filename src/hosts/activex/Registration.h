// What regsvr32 writes and removes: the class, its ProgID, the control's
// keys and safety categories, and the type library.
#pragma once

#include <windows.h>

namespace bvx::com {

HRESULT RegisterServer();
// Removes every key RegisterServer made; keys already gone are no error.
HRESULT UnregisterServer();

} // namespace bvx::com
