// A picture that shows every primitive, pen and brush the device offers, for
// a person to look at and for tests to hold the device to.
#pragma once

#include "platform/DeviceContext.h"

namespace bvx {

constexpr int32_t kTestCardWidth = 960;
constexpr int32_t kTestCardHeight = 720;

void DrawTestCard(DeviceContext& dc);

} // namespace bvx
