// The world's own arithmetic. What a host sees of sizes, worlds and pans, of
// a transform's steps and of snapping to the grid is in script cases
// (scripts/world_square_*, transform_steps, snap_to_grid).
#include "world/CadWorld.h"
#include "world/Rounding.h"
#include "platform/HostWindow.h"
#include "platform/raster/RasterDeviceContext.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>

namespace bvx {
namespace {

CadWorld WorldOfSize(int32_t width, int32_t height)
{
    CadWorld w;
    w.SetClientRect({0, 0, width, height});
    return w;
}

TEST(CadWorld, SizeConversionsCarryNoOrigin)
{
    CadWorld w = WorldOfSize(201, 201);
    w.SetWorld(0, 100, 100, 0, 0);
    EXPECT_EQ(w.WorldSizeToDevice({10, 10}), (DevicePoint{20, 20}));
    EXPECT_EQ(w.WorldHeightToDevice(2.25), 4); // 4.5 rounds half down
    WorldPoint size = w.DeviceSizeToWorld({20, 20});
    EXPECT_DOUBLE_EQ(size.x, 10);
    EXPECT_DOUBLE_EQ(size.y, -10);
    EXPECT_DOUBLE_EQ(w.DeviceHeightToWorld(20), 10);
}

TEST(CadWorld, BadNumbersNeverTrap)
{
    CadWorld w = WorldOfSize(101, 101);
    // An edge put bypasses the widening guard: the scale becomes infinite
    // (with a square world the other axis's finite scale would win).
    w.SetEdge(w.WorldRight, 0, 2);
    w.WorldSquare = false;
    w.SetEdge(w.WorldRight, w.WorldLeft, 2);
    EXPECT_TRUE(std::isinf(w.ScaleX) || std::isnan(w.ScaleX));
    const double nan = std::numeric_limits<double>::quiet_NaN();
    const double inf = std::numeric_limits<double>::infinity();
    for (WorldPoint p : {WorldPoint{nan, nan}, WorldPoint{inf, -inf}, WorldPoint{1e300, -1e300}, WorldPoint{5, 5}})
        (void)w.WorldToDevice(p);
    (void)w.DeviceToWorld({INT32_MAX, INT32_MIN});
    w.SetWorld(nan, inf, -inf, 1e308, 0);
    (void)w.WorldToDevice({1, 1});
}

TEST(CadWorld, RotationUsesTheHistoricalConstantAndIsRemembered)
{
    CadWorld w;
    TransformRequest r;
    r.mode = TransformBits::Rotate;
    r.angleDegrees = 90;
    WorldPoint p = w.BuildTransform(r).Apply({1, 0});
    EXPECT_NEAR(p.x, 0, 1e-9);
    EXPECT_NEAR(p.y, 1, 1e-9);
    EXPECT_NE(p.x, 0.0); // 0.01745329252 is not pi/180 exactly
    EXPECT_DOUBLE_EQ(w.LastRotation, 90);
    r.mode = TransformBits::Translate;
    w.BuildTransform(r);
    EXPECT_DOUBLE_EQ(w.LastRotation, 0);
}

TEST(CadWorld, GridIsDotsAtMultiplesOfTheSpacingUnlessTooDense)
{
    CadWorld w = WorldOfSize(101, 101);
    auto bitmap = CreateBitmap(101, 101);
    RasterDeviceContext dc(bitmap);
    // The pixels of the grid's colour once the grid is drawn at `spacing`.
    auto dots = [&](double spacing, ColorRef colour) {
        w.GridSet(true, spacing, 10, colour);
        w.DrawGrid(dc, {0, 0, 101, 101});
        return std::count(bitmap->Pixels().begin(), bitmap->Pixels().end(), colour);
    };
    EXPECT_EQ(dots(10, 0x0000FF), 11 * 11);
    EXPECT_EQ(bitmap->Pixel(50, 50), 0x0000FFu);
    EXPECT_NE(bitmap->Pixel(55, 50), 0x0000FFu);
    EXPECT_EQ(dots(0.1, 0x00FF00), 0);
    // A spacing that vanishes against the coordinates must still end.
    w.SetWorld(1e17, 100, 1e17 + 100, 0, 0);
    dots(10, 0x00FF00);
}

TEST(CadWorld, GridSetNeedsPositiveSizes)
{
    CadWorld w;
    EXPECT_FALSE(w.GridSet(true, 0, 10, 5));
    EXPECT_FALSE(w.GridOn);
    EXPECT_DOUBLE_EQ(w.GridWidth, 10);
    EXPECT_FALSE(w.GridSet(true, std::numeric_limits<double>::quiet_NaN(), 10, 5));
}

} // namespace
} // namespace bvx
