// Properties the platform's pixel rules imply, checked over tables of
// shapes: symmetry, containment, agreement between fills and regions,
// clipping that equals drawing then cutting, the last-pixel rule.
#include "RasterTestUtil.h"
#include "platform/Region.h"
#include "platform/raster/LineRasterizer.h"

#include <gtest/gtest.h>

#include <random>

namespace bvx {
namespace {

using test::Surface;

// ---- lines --------------------------------------------------------------

struct LineCase {
    int32_t x0, y0, x1, y1;
};
std::ostream& operator<<(std::ostream& os, const LineCase& c)
{
    return os << "(" << c.x0 << "," << c.y0 << ")-(" << c.x1 << "," << c.y1 << ")";
}

std::vector<LineCase> LineTable()
{
    std::vector<LineCase> t = {{2, 2, 29, 9},  {2, 2, 9, 29},  {29, 2, 2, 9},   {29, 2, 22, 29}, {2, 29, 29, 22},
                               {2, 29, 9, 2},  {29, 29, 2, 22}, {29, 29, 22, 2}, {3, 5, 27, 5},   {5, 3, 5, 27},
                               {27, 5, 3, 5},  {5, 27, 5, 3},   {2, 2, 25, 25},  {25, 2, 2, 25},  {0, 0, 31, 1},
                               {31, 1, 0, 0},  {4, 4, 5, 6},    {4, 4, 6, 5},    {10, 10, 11, 10}};
    std::mt19937 rng(5);
    std::uniform_int_distribution<int32_t> d(0, 31);
    for (int i = 0; i < 40; ++i) t.push_back({d(rng), d(rng), d(rng), d(rng)});
    return t;
}

class LineProperty : public ::testing::TestWithParam<LineCase> {};

TEST_P(LineProperty, LastPixelIsNotDrawnAndFirstIs)
{
    const LineCase c = GetParam();
    Surface s(32, 32);
    s.dc.MoveToEx(c.x0, c.y0);
    s.dc.LineTo(c.x1, c.y1);
    if (c.x0 == c.x1 && c.y0 == c.y1) {
        EXPECT_TRUE(s.Marked().empty());
        return;
    }
    EXPECT_EQ(s.bitmap->Pixel(c.x0, c.y0), kBlack);
    EXPECT_EQ(s.bitmap->Pixel(c.x1, c.y1), kWhite);
    // One pixel per step of the major axis.
    const size_t major = size_t(std::max(std::abs(c.x1 - c.x0), std::abs(c.y1 - c.y0)));
    EXPECT_EQ(s.Marked().size(), major);
}

TEST_P(LineProperty, ReverseCoversTheSamePixelsBetweenTheEnds)
{
    const LineCase c = GetParam();
    Surface a(32, 32), b(32, 32);
    a.dc.MoveToEx(c.x0, c.y0);
    a.dc.LineTo(c.x1, c.y1);
    b.dc.MoveToEx(c.x1, c.y1);
    b.dc.LineTo(c.x0, c.y0);
    auto pa = a.Marked(), pb = b.Marked();
    pa.insert({c.x1, c.y1});
    pb.insert({c.x0, c.y0});
    EXPECT_EQ(pa, pb);
}

TEST_P(LineProperty, ClippedLineEqualsTheDrawnLineCut)
{
    const LineCase c = GetParam();
    for (const DeviceRect clip : {DeviceRect{5, 7, 20, 22}, DeviceRect{0, 0, 9, 31}, DeviceRect{12, 3, 32, 11}}) {
        Surface whole(32, 32), cut(32, 32);
        whole.dc.MoveToEx(c.x0, c.y0);
        whole.dc.LineTo(c.x1, c.y1);
        cut.dc.IntersectClipRect(clip.left, clip.top, clip.right, clip.bottom);
        cut.dc.MoveToEx(c.x0, c.y0);
        cut.dc.LineTo(c.x1, c.y1);
        std::set<std::pair<int32_t, int32_t>> expected;
        for (auto p : whole.Marked())
            if (clip.Contains(p.first, p.second)) expected.insert(p);
        EXPECT_EQ(cut.Marked(), expected) << "clip " << clip.left << "," << clip.top;
    }
}

INSTANTIATE_TEST_SUITE_P(Raster, LineProperty, ::testing::ValuesIn(LineTable()));

// Far-away end points: clipping analytically gives the pixels that the
// same segment drawn step by step would give.
TEST(LineClip, FarEndPointsAgreeWithStepping)
{
    std::mt19937 rng(11);
    std::uniform_int_distribution<int32_t> far(-4000, 4000);
    const DeviceRect clip{0, 0, 40, 30};
    for (int i = 0; i < 300; ++i) {
        const raster::Point64 p0{far(rng), far(rng)}, p1{far(rng), far(rng)};
        std::set<std::pair<int64_t, int64_t>> expected, got;
        raster::LineRun full;
        const DeviceRect everything{INT32_MIN, INT32_MIN, INT32_MAX, INT32_MAX};
        if (raster::ClipLine(p0, p1, everything, full)) {
            int64_t x = full.x, y = full.y, err = full.err;
            for (int64_t k = 0; k < full.count; ++k) {
                if (clip.Contains(int32_t(x), int32_t(y))) expected.insert({x, y});
                if (err + full.bias > 0) {
                    (full.xMajor ? y : x) += full.xMajor ? full.sy : full.sx;
                    err += full.errMinor;
                } else {
                    err += full.errMajor;
                }
                (full.xMajor ? x : y) += full.xMajor ? full.sx : full.sy;
            }
        }
        raster::LineRun run;
        if (raster::ClipLine(p0, p1, clip, run)) {
            int64_t x = run.x, y = run.y, err = run.err;
            for (int64_t k = 0; k < run.count; ++k) {
                got.insert({x, y});
                if (err + run.bias > 0) {
                    (run.xMajor ? y : x) += run.xMajor ? run.sy : run.sx;
                    err += run.errMinor;
                } else {
                    err += run.errMajor;
                }
                (run.xMajor ? x : y) += run.xMajor ? run.sx : run.sy;
            }
        }
        ASSERT_EQ(got, expected) << p0.x << "," << p0.y << " - " << p1.x << "," << p1.y;
    }
}

// ---- ROP2 ----------------------------------------------------------------

struct RopCase {
    Rop2 rop;
    uint32_t (*expected)(uint32_t p, uint32_t d);
};
std::ostream& operator<<(std::ostream& os, const RopCase& c) { return os << "R2_" << int(c.rop); }

const RopCase kRops[] = {
    {Rop2::Black, [](uint32_t, uint32_t) { return 0u; }},
    {Rop2::NotMergePen, [](uint32_t p, uint32_t d) { return ~(d | p); }},
    {Rop2::MaskNotPen, [](uint32_t p, uint32_t d) { return ~p & d; }},
    {Rop2::NotCopyPen, [](uint32_t p, uint32_t) { return ~p; }},
    {Rop2::MaskPenNot, [](uint32_t p, uint32_t d) { return p & ~d; }},
    {Rop2::Not, [](uint32_t, uint32_t d) { return ~d; }},
    {Rop2::XorPen, [](uint32_t p, uint32_t d) { return p ^ d; }},
    {Rop2::NotMaskPen, [](uint32_t p, uint32_t d) { return ~(p & d); }},
    {Rop2::MaskPen, [](uint32_t p, uint32_t d) { return p & d; }},
    {Rop2::NotXorPen, [](uint32_t p, uint32_t d) { return ~(p ^ d); }},
    {Rop2::Nop, [](uint32_t, uint32_t d) { return d; }},
    {Rop2::MergeNotPen, [](uint32_t p, uint32_t d) { return ~p | d; }},
    {Rop2::CopyPen, [](uint32_t p, uint32_t) { return p; }},
    {Rop2::MergePenNot, [](uint32_t p, uint32_t d) { return p | ~d; }},
    {Rop2::MergePen, [](uint32_t p, uint32_t d) { return p | d; }},
    {Rop2::White, [](uint32_t, uint32_t) { return ~0u; }},
};

class Rop2Truth : public ::testing::TestWithParam<RopCase> {};

TEST_P(Rop2Truth, PenBrushAndPixelFollowTheTruthTable)
{
    const RopCase c = GetParam();
    for (uint32_t pen : {0x000000u, 0xFFFFFFu, 0x0F33C5u, 0xA05A11u}) {
        for (uint32_t dst : {0x000000u, 0xFFFFFFu, 0x5A0FF0u}) {
            const uint32_t want = c.expected(pen, dst) & 0xFFFFFF;
            // A pen line, a brush fill and a pixel all go through the ROP2.
            Surface s(8, 8, dst);
            s.dc.SetROP2(c.rop);
            s.dc.SelectPen(CreatePen(PenStyle::Solid, 1, pen));
            s.dc.MoveToEx(0, 1);
            s.dc.LineTo(4, 1);
            s.dc.SelectPen(CreatePen(PenStyle::Null, 0, 0));
            s.dc.SelectBrush(CreateSolidBrush(pen));
            s.dc.Rectangle(0, 3, 5, 6); // null pen: fills x 0..3, y 3..4
            s.dc.SetPixelV(6, 6, pen);
            EXPECT_EQ(s.bitmap->Pixel(2, 1), want) << "line, pen " << std::hex << pen << " dst " << dst;
            EXPECT_EQ(s.bitmap->Pixel(2, 4), want) << "fill, pen " << std::hex << pen << " dst " << dst;
            EXPECT_EQ(s.bitmap->Pixel(6, 6), want) << "pixel, pen " << std::hex << pen << " dst " << dst;
            EXPECT_EQ(s.bitmap->Pixel(7, 7), dst);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Raster, Rop2Truth, ::testing::ValuesIn(kRops));

// ---- filled shapes -----------------------------------------------------

struct BoxCase {
    int32_t l, t, r, b;
};
std::ostream& operator<<(std::ostream& os, const BoxCase& c)
{
    return os << c.l << "," << c.t << "," << c.r << "," << c.b;
}

std::vector<BoxCase> BoxTable()
{
    std::vector<BoxCase> t = {{2, 2, 30, 30}, {2, 2, 31, 31}, {1, 4, 30, 12}, {4, 1, 12, 30}, {3, 3, 8, 8},
                              {3, 3, 9, 10},  {0, 0, 32, 32}, {5, 6, 27, 9},  {10, 2, 14, 30}, {2, 2, 7, 3}};
    std::mt19937 rng(3);
    std::uniform_int_distribution<int32_t> d(0, 32);
    for (int i = 0; i < 20; ++i) {
        int32_t a = d(rng), b = d(rng), c = d(rng), e = d(rng);
        t.push_back({std::min(a, b), std::min(c, e), std::max(a, b), std::max(c, e)});
    }
    return t;
}

class EllipseProperty : public ::testing::TestWithParam<BoxCase> {};

// The picture of an ellipse mirrored across its box's centre lines is the
// same ellipse.
TEST_P(EllipseProperty, SymmetricUnderFlips)
{
    const BoxCase c = GetParam();
    // Boxes two pixels or less across draw as rectangles, whose null-pen
    // fill stops one pixel short at the right and bottom.
    if (c.r - c.l <= 2 || c.b - c.t <= 2) return;
    for (bool filled : {false, true}) {
        Surface s(34, 34);
        if (filled) {
            s.dc.SelectPen(CreatePen(PenStyle::Null, 0, 0));
            s.dc.SelectBrush(CreateSolidBrush(kBlack));
        } else {
            s.dc.SelectBrush(CreateNullBrush());
        }
        s.dc.Ellipse(c.l, c.t, c.r, c.b);
        const auto marked = s.Marked();
        for (auto [x, y] : marked) {
            EXPECT_TRUE(marked.count({c.l + c.r - 1 - x, y})) << "x flip of " << x << "," << y;
            EXPECT_TRUE(marked.count({x, c.t + c.b - 1 - y})) << "y flip of " << x << "," << y;
        }
    }
}

// The brush never paints outside the outline's box, and the outline of a
// filled shape covers the edge of the fill.
TEST_P(EllipseProperty, FillLiesInsideTheOutline)
{
    const BoxCase c = GetParam();
    Surface outline(34, 34), fill(34, 34);
    outline.dc.SelectBrush(CreateNullBrush());
    outline.dc.Ellipse(c.l, c.t, c.r, c.b);
    fill.dc.SelectPen(CreatePen(PenStyle::Null, 0, 0));
    fill.dc.SelectBrush(CreateSolidBrush(kBlack));
    fill.dc.Ellipse(c.l, c.t, c.r, c.b);
    const auto o = outline.Marked();
    for (auto [x, y] : fill.Marked()) {
        EXPECT_TRUE(x >= c.l && x < c.r && y >= c.t && y < c.b);
        // A fill pixel on the edge of the fill is an outline pixel.
        const bool edge = !fill.Marked().count({x - 1, y}) || !fill.Marked().count({x + 1, y}) ||
                          !fill.Marked().count({x, y - 1}) || !fill.Marked().count({x, y + 1});
        if (edge && c.r - c.l > 2 && c.b - c.t > 2) {
            EXPECT_TRUE(o.count({x, y})) << x << "," << y;
        }
    }
}

// An elliptic region holds the pixels a null-pen ellipse one pixel smaller
// at the right and bottom fills.
TEST_P(EllipseProperty, RegionAgreesWithFill)
{
    const BoxCase c = GetParam();
    if (c.r - c.l < 5 || c.b - c.t < 5) return; // tiny boxes draw as rectangles
    Surface fill(34, 34);
    fill.dc.SelectPen(CreatePen(PenStyle::Null, 0, 0));
    fill.dc.SelectBrush(CreateSolidBrush(kBlack));
    fill.dc.Ellipse(c.l, c.t, c.r - 1, c.b - 1);
    const Region rgn = CreateEllipticRgn(c.l, c.t, c.r, c.b);
    const auto f = fill.Marked();
    for (int32_t y = -1; y < 35; ++y)
        for (int32_t x = -1; x < 35; ++x) EXPECT_EQ(rgn.PtInRegion(x, y), f.count({x, y}) == 1) << x << "," << y;
}

// An arc whose start and end radials coincide is the whole ellipse, less
// the last point as an open figure.
TEST_P(EllipseProperty, ArcWithEqualEndsIsTheWholeEllipse)
{
    const BoxCase c = GetParam();
    if (c.r - c.l < 3 || c.b - c.t < 3) return;
    Surface arc(34, 34), ellipse(34, 34);
    arc.dc.Arc(c.l, c.t, c.r, c.b, c.r + 5, c.t, c.r + 5, c.t);
    ellipse.dc.SelectBrush(CreateNullBrush());
    ellipse.dc.Ellipse(c.l, c.t, c.r, c.b);
    const auto a = arc.Marked(), e = ellipse.Marked();
    for (auto p : a) EXPECT_TRUE(e.count(p));
    EXPECT_LE(e.size() - a.size(), 1u);
}

INSTANTIATE_TEST_SUITE_P(Raster, EllipseProperty, ::testing::ValuesIn(BoxTable()));

struct PolygonCase {
    const char* name;
    std::vector<DevicePoint> points;
};

std::vector<PolygonCase> PolygonTable()
{
    std::vector<PolygonCase> t = {
        {"triangle", {{4, 28}, {16, 2}, {29, 28}}},
        {"star", {{16, 1}, {25, 30}, {1, 11}, {31, 11}, {7, 30}}},
        {"bowtie", {{3, 3}, {28, 28}, {28, 3}, {3, 28}}},
        {"loop", {{2, 2}, {30, 2}, {30, 30}, {2, 30}, {2, 8}, {24, 8}, {24, 24}, {8, 24}, {8, 2}}},
        {"concave", {{2, 2}, {30, 2}, {30, 30}, {16, 10}, {2, 30}}},
    };
    std::mt19937 rng(17);
    std::uniform_int_distribution<int32_t> d(-3, 35);
    for (int i = 0; i < 15; ++i) {
        PolygonCase c{"random", {}};
        for (int k = 0; k < 7; ++k) c.points.push_back({d(rng), d(rng)});
        t.push_back(c);
    }
    return t;
}

class PolygonProperty : public ::testing::TestWithParam<PolygonCase> {};

std::set<std::pair<int32_t, int32_t>> FilledPolygon(const std::vector<DevicePoint>& pts, PolyFillMode mode)
{
    Surface s(34, 34);
    s.dc.SelectPen(CreatePen(PenStyle::Null, 0, 0));
    s.dc.SelectBrush(CreateSolidBrush(kBlack));
    s.dc.SetPolyFillMode(mode);
    s.dc.Polygon(pts);
    return s.Marked();
}

TEST_P(PolygonProperty, AlternateIsInsideWinding)
{
    const auto alt = FilledPolygon(GetParam().points, PolyFillMode::Alternate);
    const auto wind = FilledPolygon(GetParam().points, PolyFillMode::Winding);
    for (auto p : alt) EXPECT_TRUE(wind.count(p)) << p.first << "," << p.second;
}

TEST_P(PolygonProperty, RegionAgreesWithFill)
{
    for (PolyFillMode mode : {PolyFillMode::Alternate, PolyFillMode::Winding}) {
        const auto fill = FilledPolygon(GetParam().points, mode);
        const Region rgn = CreatePolygonRgn(GetParam().points, mode);
        for (int32_t y = 0; y < 34; ++y)
            for (int32_t x = 0; x < 34; ++x)
                EXPECT_EQ(rgn.PtInRegion(x, y), fill.count({x, y}) == 1) << x << "," << y;
    }
}

// The brush stays off the right and bottom edges: a rectangle as a polygon
// fills [left, right) x [top, bottom).
TEST(PolygonFill, ExcludesRightAndBottomEdges)
{
    const auto px = FilledPolygon({{3, 4}, {12, 4}, {12, 9}, {3, 9}}, PolyFillMode::Alternate);
    EXPECT_EQ(px.size(), 9u * 5u);
    EXPECT_TRUE(px.count({3, 4}));
    EXPECT_TRUE(px.count({11, 8}));
    EXPECT_FALSE(px.count({12, 8}));
    EXPECT_FALSE(px.count({11, 9}));
}

TEST(Focus, DrawingTwiceRestoresThePixels)
{
    std::mt19937 rng(2);
    std::uniform_int_distribution<int32_t> d(-2, 20);
    for (int i = 0; i < 20; ++i) {
        Surface s(18, 18, 0x3366CC);
        s.dc.SelectBrush(CreateHatchBrush(HatchStyle::DiagCross, 0x00FF00));
        s.dc.Ellipse(1, 1, 17, 15);
        std::vector<uint32_t> before(s.bitmap->Pixels().begin(), s.bitmap->Pixels().end());
        const DeviceRect r{d(rng), d(rng), d(rng), d(rng)};
        s.dc.DrawFocusRect(r);
        s.dc.DrawFocusRect(r);
        EXPECT_TRUE(std::equal(before.begin(), before.end(), s.bitmap->Pixels().begin()));
    }
}

INSTANTIATE_TEST_SUITE_P(Raster, PolygonProperty, ::testing::ValuesIn(PolygonTable()),
                         [](const ::testing::TestParamInfo<PolygonCase>& info) {
                             return std::string(info.param.name) + std::to_string(info.index);
                         });

} // namespace
} // namespace bvx
