// FillPixels takes different store paths by length and alignment; each must
// write exactly the pixels asked for.
#include "platform/raster/SpanPrimitives.h"

#include <gtest/gtest.h>

#include <vector>

namespace bvx::raster {
namespace {

TEST(FillPixels, WritesExactlyTheRangeAtEveryLengthAndOffset)
{
    constexpr uint32_t kGuard = 0xA5A5A5A5u, kValue = 0x001EC80Au;
    constexpr size_t kPad = 8;
    for (size_t offset = 0; offset < 4; ++offset) {
        for (size_t count = 0; count <= 1100; ++count) {
            std::vector<uint32_t> buffer(kPad + offset + count + kPad, kGuard);
            FillPixels(buffer.data() + kPad + offset, count, kValue);
            size_t wrong = 0;
            for (size_t i = 0; i < buffer.size(); ++i) {
                const bool inside = i >= kPad + offset && i < kPad + offset + count;
                wrong += buffer[i] != (inside ? kValue : kGuard);
            }
            ASSERT_EQ(wrong, 0u) << "count " << count << " offset " << offset;
        }
    }
}

} // namespace
} // namespace bvx::raster
