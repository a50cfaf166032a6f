// The C++ side of the type library: bvxcad.h declares IBvxCAD, _CADEvents,
// the tool enumeration and the identities for host programs and the control
// itself; bvxcad_vtable.h gives the control one forwarder per vtable entry,
// each packing its arguments for the member table's dispatch path. widl's
// own header cannot serve, since the IDL declares stand-in base interfaces.
#pragma once

#include <ostream>

namespace bvx::membergen {

void WriteInterfaceHeader(std::ostream& out);
void WriteVtableHeader(std::ostream& out);

} // namespace bvx::membergen
