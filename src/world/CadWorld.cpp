#include "CadWorld.h"

#include "Rounding.h"
#include "platform/DeviceContext.h"
#include "platform/HostWindow.h"

#include <algorithm>
#include <cmath>

namespace bvx {

namespace {
constexpr double kTinyFactor = 1e-7;
// The grid guard keeps dots at least 3 pixels apart, so a row never holds
// more than a third of the view's width; the loops are bounded by that too,
// so that a spacing lost in the magnitude of a coordinate cannot spin.
int64_t GridSteps(int64_t pixels) { return pixels / 3 + 2; }
} // namespace

WorldPoint CadWorld::DeviceToWorld(DevicePoint p) const
{
    // The corner comes off in world units after the conversion.
    return {RoundTo((p.x / ScaleX) * SignX + OriginX, 8) - ClientRect.left,
            RoundTo((p.y / ScaleY) * SignY + OriginY, 8) - ClientRect.top};
}

DevicePoint CadWorld::WorldSizeToDevice(const WorldPoint& size) const
{
    return {RoundHalfDown(size.x * ScaleX), RoundHalfDown(size.y * ScaleY)};
}

int32_t CadWorld::WorldHeightToDevice(double height) const { return RoundHalfDown(ScaleY * height); }

WorldPoint CadWorld::DeviceSizeToWorld(DevicePoint size) const
{
    return {RoundTo((size.x / ScaleX) * SignX, 8), RoundTo((size.y / ScaleY) * SignY, 8)};
}

double CadWorld::DeviceWidthToWorld(int32_t pixels) const { return RoundTo(pixels / ScaleX, 8); }
double CadWorld::DeviceHeightToWorld(int32_t pixels) const { return RoundTo(pixels / ScaleY, 8); }
double CadWorld::RoundCoord(double v) const { return RoundTo(v, WorldCoordPrecision); }

void CadWorld::SetWorld(double left, double top, double right, double bottom, int32_t mode)
{
    left = RoundCoord(left);
    top = RoundCoord(top);
    right = RoundCoord(right);
    bottom = RoundCoord(bottom);
    // A world too narrow to show is widened around itself, keeping the
    // direction the axis had.
    if (std::fabs(right - left) <= 0.75) {
        left -= SignX;
        right += SignX;
    }
    if (std::fabs(bottom - top) <= 0.75) {
        top -= SignY;
        bottom += SignY;
    }
    WorldLeft = left;
    WorldTop = top;
    WorldRight = right;
    WorldBottom = bottom;
    Recalculate(mode);
}

void CadWorld::Recalculate(int32_t mode)
{
    double w = std::fabs(double(ClientRect.right) - ClientRect.left);
    double h = std::fabs(double(ClientRect.bottom) - ClientRect.top);
    if (w == 0) return;
    Changed = true;
    if (mode == 0 || !WorldSquare) {
        ScaleX = std::fabs((w - 1) / (WorldRight - WorldLeft));
        ScaleY = std::fabs((h - 1) / (WorldBottom - WorldTop));
    } else if (mode == 1) {
        ScaleX = ScaleY = std::fabs((h - 1) / (WorldBottom - WorldTop));
    } else if (mode == 2) {
        ScaleX = ScaleY = std::fabs((w - 1) / (WorldRight - WorldLeft));
    }
    SignX = WorldRight < WorldLeft ? -1 : 1;
    SignY = WorldBottom < WorldTop ? -1 : 1;
    OriginX = WorldLeft;
    OriginY = WorldTop;
    if (!WorldSquare) return;
    if (ScaleY < ScaleX) {
        ScaleX = ScaleY;
        if (SignX == -1) OriginX = (w - 1) / ScaleX + WorldRight;
    } else {
        ScaleY = ScaleX;
        if (SignY == -1) OriginY = (h - 1) / ScaleY + WorldBottom;
    }
    double ww = RoundCoord((w - 1) / ScaleX);
    if (SignX == 1)
        WorldRight = WorldLeft + ww;
    else
        WorldLeft = WorldRight + ww;
    double wh = RoundCoord((h - 1) / ScaleY);
    if (SignY == 1)
        WorldBottom = WorldTop + wh;
    else
        WorldTop = WorldBottom + wh;
}

void CadWorld::Pan(double deltaX, double deltaY)
{
    SetWorld(RoundCoord(WorldLeft) + deltaX, RoundCoord(WorldTop) + deltaY, RoundCoord(WorldRight) + deltaX,
             RoundCoord(WorldBottom) + deltaY, 0);
}

void CadWorld::SetEdge(double& edge, double value, int32_t mode)
{
    edge = RoundCoord(value);
    Recalculate(mode);
}

void CadWorld::SetWorldSquare(bool on)
{
    WorldSquare = on;
    Recalculate(0);
}

void CadWorld::SetClientRect(const DeviceRect& rect)
{
    ClientRect = rect;
    Recalculate(0);
}

Matrix3 CadWorld::BuildTransform(const TransformRequest& r)
{
    Matrix3 result;
    LastRotation = 0;
    const double x = r.pivotX, y = r.pivotY;
    if ((r.mode & TransformBits::Scale) && std::fabs(r.scaleX) > kTinyFactor && std::fabs(r.scaleY) > kTinyFactor) {
        Matrix3 s;
        s.m[0] = r.scaleX;
        s.m[4] = r.scaleY;
        s.m[6] = (1 - r.scaleX) * x;
        s.m[7] = (1 - r.scaleY) * y;
        result = result.Then(s);
    }
    if (r.mode & TransformBits::Reflect) {
        Matrix3 f;
        if (r.reflectMode == 0 || r.reflectMode == 2) f.m[4] = -1;
        if (r.reflectMode == 1 || r.reflectMode == 2) f.m[0] = -1;
        f.m[6] = 2 * (r.reflectMode == 0 ? 0 : x);
        f.m[7] = 2 * (r.reflectMode == 1 ? 0 : y);
        result = result.Then(f);
    }
    if (r.mode & TransformBits::Shear) {
        Matrix3 s;
        if (r.shearMode == 1)
            s.m[1] = r.shear;
        else
            s.m[3] = r.shear;
        result = result.Then(s);
    }
    if ((r.mode & TransformBits::Rotate) && std::fabs(r.angleDegrees) > kTinyFactor) {
        LastRotation = r.angleDegrees;
        double radians = r.angleDegrees * kDegreesToRadians;
        double c = std::cos(radians), s = std::sin(radians);
        Matrix3 t;
        t.m[0] = c;
        t.m[1] = s;
        t.m[3] = -s;
        t.m[4] = c;
        t.m[6] = (1 - c) * x + s * y;
        t.m[7] = y - (s * x + c * y);
        result = result.Then(t);
    }
    if (r.mode & TransformBits::Translate) {
        Matrix3 t;
        t.m[6] = r.translateX;
        t.m[7] = r.translateY;
        result = result.Then(t);
    }
    return result;
}

void CadWorld::DrawGrid(DeviceContext& dc, const DeviceRect& clip) const
{
    if (!GridOn) return;
    DevicePoint zero = WorldToDevice({0, 0});
    DevicePoint across = WorldToDevice({GridWidth, 0});
    DevicePoint down = WorldToDevice({0, GridHeight});
    if (std::abs(int64_t(across.x) - zero.x) <= 3 || std::abs(int64_t(down.y) - zero.y) <= 3) return;

    const DeviceRect& area = OutputMode == 3 ? ClientRect : clip;
    WorldPoint a = DeviceToWorld({area.left, area.top});
    WorldPoint b = DeviceToWorld({area.right, area.bottom});
    double xLow = SignX == 1 ? a.x : b.x, xHigh = SignX == 1 ? b.x : a.x;
    double yLow = SignY == 1 ? a.y : b.y, yHigh = SignY == 1 ? b.y : a.y;
    double xStart = std::ceil(xLow / GridWidth) * GridWidth;
    double yStart = std::ceil(yLow / GridHeight) * GridHeight;
    int64_t maxColumns = GridSteps(std::abs(int64_t(area.right) - area.left));
    int64_t maxRows = GridSteps(std::abs(int64_t(area.bottom) - area.top));
    auto color = ColorRef(GridColor & 0xFFFFFF);
    int64_t rows = 0;
    for (double y = yStart; y <= yHigh && rows < maxRows; y += GridHeight, ++rows) {
        int64_t columns = 0;
        for (double x = xStart; x <= xHigh && columns < maxColumns; x += GridWidth, ++columns) {
            DevicePoint d = WorldToDevice({x, y});
            dc.SetPixelV(d.x, d.y, color);
        }
    }
}

bool CadWorld::SnapToGrid(WorldPoint& p) const
{
    if (!GridOn) return false;
    double x = RoundHalfDown(p.x / GridWidth) * GridWidth;
    double y = RoundHalfDown(p.y / GridHeight) * GridHeight;
    double hi = SignX == 1 ? WorldRight : WorldLeft;
    double lo = SignX == 1 ? WorldLeft : WorldRight;
    if (hi < x)
        x -= GridWidth;
    else if (lo > x)
        x += GridWidth;
    if (SignY == 1) {
        hi = (std::fabs(double(ClientRect.bottom) - ClientRect.top) - 1) / ScaleY + OriginY;
        lo = OriginY;
    } else {
        hi = OriginY;
        lo = WorldBottom;
    }
    if (hi < y)
        y -= GridHeight;
    else if (lo > y)
        y += GridHeight;
    p = {x, y};
    return true;
}

void CadWorld::MoveCursorTo(const WorldPoint& world, DevicePoint device, DevicePoint cursor, HostWindow* window)
{
    DevicePoint d = WorldToDevice(world);
    if (window)
        window->SetCursorPos({WrapToInt32(double(cursor.x) - device.x + d.x),
                              WrapToInt32(double(cursor.y) - device.y + d.y)});
    LastSnapWorld = world;
    LastSnapDevice = d;
}

bool CadWorld::SnapCursorToGrid(DevicePoint cursor, DevicePoint device, HostWindow* window)
{
    if (!GridOn) return false;
    WorldPoint p = DeviceToWorld(device);
    SnapToGrid(p);
    MoveCursorTo(p, device, cursor, window);
    return true;
}

bool CadWorld::GridSet(bool on, double width, double height, uint32_t color)
{
    if (!(width > 0 && height > 0)) return false;
    GridOn = on;
    GridWidth = width;
    GridHeight = height;
    GridColor = color;
    return true;
}

void WorldRectUnion::Add(WorldRect b)
{
    if ((b.right - b.left) * signX_ < 0) std::swap(b.left, b.right);
    if ((b.bottom - b.top) * signY_ < 0) std::swap(b.top, b.bottom);
    if (!any_) {
        all_ = b;
        any_ = true;
        return;
    }
    auto lower = [](double p, double q, int16_t sign) { return sign > 0 ? std::min(p, q) : std::max(p, q); };
    auto upper = [](double p, double q, int16_t sign) { return sign > 0 ? std::max(p, q) : std::min(p, q); };
    all_ = {lower(all_.left, b.left, signX_), lower(all_.top, b.top, signY_), upper(all_.right, b.right, signX_),
            upper(all_.bottom, b.bottom, signY_)};
}

} // namespace bvx
