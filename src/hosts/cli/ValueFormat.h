// Values as a script prints them, in the script's own literal forms so that
// a printed value can be pasted back into a script.
#pragma once

#include "control/MemberSpec.h"
#include "control/Variant.h"

#include <string>

namespace bvx::script {

// 12, 2.5, "text" ("" for a quote), True, False, {1, 2}, {{1, 2}, {3, 4}},
// Empty, Null, Error &H80020004.
std::string FormatValue(const Variant& value);

// A member's result: as FormatValue, colours as &HBBGGRR.
std::string FormatResult(const Variant& value, members::AutoType declared);

} // namespace bvx::script
