// The base of every drawable object: its number, notes, cached device
// bounds, own attributes, type and search method, and the operations that
// the buffer, the tools, painting and the file readers ask of any shape.
#pragma once

#include "ShapeAttr.h"
#include "ShapeTypes.h"
#include "world/WorldGeometry.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>

namespace bvx {

class CadLayer;
class ShapeContext;
class CadWorld;
class DeviceContext;
class ShapeContext;

// Device bounds as the file and the rejection tests keep them: 16 bits each.
struct ShortRect {
    int16_t left = 0;
    int16_t top = 0;
    int16_t right = 0;
    int16_t bottom = 0;
};

class CObjShape {
public:
    CObjShape() = default;
    virtual ~CObjShape() = default;
    CObjShape(const CObjShape&) = delete;
    CObjShape& operator=(const CObjShape&) = delete;

    int32_t Number = -1;
    std::u16string Notes;
    ShortRect Bounds;
    std::optional<ShapeAttr> Attr; // none: the layer's (or group's) colours; held in place, as a load makes millions
    uint8_t TypeFlags = 0;
    bool Selected = false;
    int16_t Layer = -1;
    int32_t Group = -1;

    // Handles and points.
    virtual int32_t GetHandleCount() const { return 8; }
    virtual WorldPoint GetHandlePoint(int32_t handle, const ShapeContext& view) const;
    // `pointers` is indexed by pointer role; a short table gives the role.
    virtual int16_t GetHandleCursor(std::span<const int16_t> pointers, int32_t handle) const;
    virtual WorldPoint GetPoint(int16_t index, const ShapeContext& view) const;
    virtual int16_t GetPointCount() const { return -1; }
    virtual int16_t GetPointKind(int16_t index) const;
    virtual int16_t HandleToPoint(int32_t handle) const;
    // A null view skips the bounds update.
    virtual bool SetPoint(int16_t index, double x, double y, ShapeContext* view);

    // Geometry.
    virtual void Transform(const Matrix3& matrix, ShapeContext& view);
    virtual double GetArea() const { return 0.0; }
    virtual void Move(const WorldPoint& delta, ShapeContext& view);
    virtual void MoveHandle(int32_t handle, WorldPoint point, ShapeContext& view);
    virtual void UpdateBounds(const ShapeContext& view);
    virtual WorldRect GetWorldBounds(const ShapeContext& view) const;
    virtual bool ConvertTo(int16_t type, CObjShape* target, int16_t mode, double value, ShapeContext* view) const;

    // Painting with what the caller selected into the device.
    virtual void Draw(DeviceContext& dc, const DeviceRect& clip, ShapeContext& view, int32_t mode);
    virtual void DrawHandles(DeviceContext& dc, uint32_t rop, ShapeContext& view);

    // Hit tests in device pixels. A group answers with the member's number.
    virtual int32_t HitTest(DevicePoint point, ShapeContext& view);
    virtual int32_t HandleFromPoint(DevicePoint point, ShapeContext& view) const;
    virtual int16_t NearestPoint(DevicePoint point, ShapeContext& view) const;
    int32_t HitHandle(DevicePoint point, int32_t trackerMode, const ShapeContext& view) const;
    bool IntersectsRect(const DeviceRect& rect, const ShapeContext& view) const;

    virtual std::unique_ptr<CObjShape> Clone(int16_t withAttr) const;

    // Type and search method share one byte: five bits of type, the method
    // in bit 7 (bit 6 also reads as set, as old files may hold it).
    void SetShapeType(uint8_t typeByte, int16_t method);
    int16_t GetShapeType() const { return TypeFlags & 31; }
    int16_t GetSearchMethod() const { return TypeFlags > 63 ? 1 : 0; }
    virtual void SetSearchMethod(int16_t method);

    // The member list of a group; null for every other shape.
    virtual CadLayer* GroupList() { return nullptr; }
    const CadLayer* GroupList() const { return const_cast<CObjShape*>(this)->GroupList(); }

    // Helpers shared by all classes.
    void StoreBounds(const DeviceRect& rect);
    DeviceRect BoundsAsRect() const { return {Bounds.left, Bounds.top, Bounds.right, Bounds.bottom}; }
    void SetAttr(std::optional<ShapeAttr> record) { Attr = record; }
    void CopyBaseTo(CObjShape& target) const;
    // The 6 by 6 device box a handle is drawn in and hit by.
    DeviceRect HandleBox(int32_t handle, const ShapeContext& view) const;

protected:
    static void CopyAttrIf(const CObjShape& from, CObjShape& to, int16_t withAttr);
};

// Free helpers of the shapes.
void ApplyMatrix(const Matrix3& matrix, WorldPoint& point);
double Distance(const WorldPoint& p, const WorldPoint& q);
// The drag angle in radians, counter-clockwise as the user sees it.
double WorldAngle(const CadWorld& world, const WorldPoint& from, const WorldPoint& to);
bool IsOnAxis(const WorldPoint& p, const WorldPoint& q);
// The angle as the mouse read-out shows it: degrees in degree mode, whole
// degrees along the axes and diagonals.
double AngleReadout(const CadWorld& world, double radians, const WorldPoint& p, const WorldPoint& q);
// Whether a device point meets a segment: mode 1 counts an even-odd crossing
// to the left of the point, mode 0 asks for a point within 3 pixels.
bool HitSegment(DevicePoint a, DevicePoint b, DevicePoint point, int32_t mode);
DeviceRect OrderedRect(DeviceRect r);
DeviceRect InflatedRect(const DeviceRect& r, int32_t dx, int32_t dy);
bool PtInRect(const DeviceRect& r, DevicePoint p);

} // namespace bvx
