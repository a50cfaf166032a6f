// Values the member files of CadControl share.
#pragma once

#include <cstdint>

namespace bvx {

// The answer of a member that makes or finds no shape.
constexpr int32_t kNoShape = -1;
// The layer argument that means every layer.
constexpr int16_t kAllLayers = -1;

} // namespace bvx
