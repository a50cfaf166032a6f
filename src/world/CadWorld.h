// The coordinate system of a view: which world rectangle fills the window,
// the scales and signs of both axes, the precisions, and the grid.
#pragma once

#include "world/Rounding.h"
#include "world/WorldGeometry.h"

#include <cstdint>

namespace bvx {

class DeviceContext;
class HostWindow;

// The bits of a transform's mode, applied in the order scale, reflect,
// shear, rotate, translate whatever their numeric order.
namespace TransformBits {
constexpr int32_t Rotate = 1;
constexpr int32_t Scale = 2;
constexpr int32_t Translate = 4;
constexpr int32_t Reflect = 8;
constexpr int32_t Shear = 16;
} // namespace TransformBits

struct TransformRequest {
    int32_t mode = 0;
    double pivotX = 0;
    double pivotY = 0;
    double angleDegrees = 0;
    double scaleX = 1;
    double scaleY = 1;
    double translateX = 0;
    double translateY = 0;
    int32_t reflectMode = 0;
    int32_t shearMode = 0;
    double shear = 0;
};

class CadWorld {
public:
    CadWorld() = default;

    WorldPoint LastSnapWorld{};
    DevicePoint LastSnapDevice{};
    DeviceRect OutputRect{};
    bool Changed = true;
    int16_t OutputMode = 0;
    bool WorldSquare = true;
    DeviceRect ClientRect{}; // the view in device units
    double WorldLeft = 0;
    double WorldTop = 100;
    double WorldBottom = 0;
    double WorldRight = 100;
    double ScaleX = 1;
    double ScaleY = 1;
    double OriginX = 0;
    double OriginY = 100;
    int16_t SignX = 1;
    int16_t SignY = -1;
    bool GridOn = false;
    uint32_t GridColor = 0;
    double GridWidth = 10;
    double GridHeight = 10;
    int16_t GridDrawOrder = 0;
    double LastRotation = 0;
    int16_t AngleMode = 0;
    int16_t WorldCoordPrecision = 8;
    int16_t WorldAnglePrecision = 8;
    // The screen's resolution and the one output is rendered at now.
    int32_t ScreenDpiX = 96;
    int32_t ScreenDpiY = 96;
    int32_t OutputDpiX = 96;
    int32_t OutputDpiY = 96;
    DevicePoint CursorScreenPos{};

    // Conversions.
    // Inline: bounds, hit tests and painting convert every point of every shape.
    DevicePoint WorldToDevice(const WorldPoint& p) const
    {
        return {WrapToInt32(double(RoundHalfDown((p.x - OriginX) * (SignX * ScaleX))) + ClientRect.left),
                WrapToInt32(double(RoundHalfDown((p.y - OriginY) * (SignY * ScaleY))) + ClientRect.top)};
    }
    DeviceRect WorldRectToDevice(const WorldPoint& a, const WorldPoint& b) const
    {
        const DevicePoint p = WorldToDevice(a), q = WorldToDevice(b);
        return {p.x, p.y, q.x, q.y};
    }
    WorldPoint DeviceToWorld(DevicePoint p) const;
    DevicePoint WorldSizeToDevice(const WorldPoint& size) const;
    int32_t WorldHeightToDevice(double height) const;
    WorldPoint DeviceSizeToWorld(DevicePoint size) const;
    double DeviceWidthToWorld(int32_t pixels) const;
    double DeviceHeightToWorld(int32_t pixels) const;
    double RoundCoord(double v) const;

    // The world window. Mode 0 fits both axes; 1 and 2 let the Y or the X
    // scale decide when the world is square.
    void SetWorld(double left, double top, double right, double bottom, int32_t mode);
    void Recalculate(int32_t mode);
    void Pan(double deltaX, double deltaY);
    void SetEdge(double& edge, double value, int32_t mode);
    void SetWorldSquare(bool on);
    void SetClientRect(const DeviceRect& rect);

    // Stores what is valid and a fallback for the rest.
    void SetAngleMode(int16_t mode) { AngleMode = (mode == 0 || mode == 1) ? mode : 0; }
    void SetWorldCoordPrecision(int16_t p) { WorldCoordPrecision = (p >= 0 && p <= 8) ? p : 8; }
    void SetWorldAnglePrecision(int16_t p) { WorldAnglePrecision = (p >= 0 && p <= 8) ? p : 8; }
    void SetGridDrawOrder(int16_t order)
    {
        if (order == 0 || order == 1) GridDrawOrder = order;
    }

    Matrix3 BuildTransform(const TransformRequest& request);

    // Grid and snap.
    void DrawGrid(DeviceContext& dc, const DeviceRect& clip) const;
    bool SnapToGrid(WorldPoint& p) const;
    void MoveCursorTo(const WorldPoint& world, DevicePoint device, DevicePoint cursor, HostWindow* window);
    bool SnapCursorToGrid(DevicePoint cursor, DevicePoint device, HostWindow* window);
    bool GridSet(bool on, double width, double height, uint32_t color);
};

// Unites world rectangles in the sense of a world's axes, so that left is
// where the world starts whichever way its axes run.
class WorldRectUnion {
public:
    explicit WorldRectUnion(const CadWorld& world) : signX_(world.SignX), signY_(world.SignY) {}
    void Add(WorldRect b);
    bool Any() const { return any_; }
    // Zero until something was added.
    const WorldRect& Result() const { return all_; }

private:
    int16_t signX_;
    int16_t signY_;
    bool any_ = false;
    WorldRect all_{};
};

} // namespace bvx
