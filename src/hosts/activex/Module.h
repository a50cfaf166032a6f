// The DLL itself: its handle, its file, and the type library it carries as
// a resource.
#pragma once

#include <oaidl.h>

#include <string>

namespace bvx::com {

HMODULE ModuleHandle();
std::wstring ModulePath();
// The registered library, or the one in this DLL when none is registered.
HRESULT LoadTypeLibrary(ITypeLib** out);
HRESULT LoadTypeInfo(REFGUID guid, ITypeInfo** out);

} // namespace bvx::com
