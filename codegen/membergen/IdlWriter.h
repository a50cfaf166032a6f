// The interface definition of the control's type library: the dual
// interface, the event dispinterface and the coclass, all from the member
// table.
#pragma once

#include <ostream>

namespace bvx::membergen {

void WriteIdl(std::ostream& out);

} // namespace bvx::membergen
