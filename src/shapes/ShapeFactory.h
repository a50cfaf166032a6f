// An empty shape of the class that holds a type, for conversions and
// readers: rectangles 1 to 4, point lists 5 to 10, the text 11, the picture 12, arcs 13
// to 15, the point 17, the group 18, ellipses 19 and 20. Null for any other number;
// the type itself is not set.
#pragma once

#include "CObjShape.h"

#include <memory>

namespace bvx {

std::unique_ptr<CObjShape> NewShapeOfClass(int32_t type);

} // namespace bvx
