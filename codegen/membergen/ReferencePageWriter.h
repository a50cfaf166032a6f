// members.md: the reference page for host programmers, one entry per
// member and per event, in Basic signatures.
#pragma once

#include <ostream>

namespace bvx::membergen {

void WriteReferencePage(std::ostream& out);

} // namespace bvx::membergen
