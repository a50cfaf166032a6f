#include "CPointShape.h"

#include "ShapeContext.h"
#include "platform/DeviceContext.h"

namespace bvx {

namespace {
constexpr int32_t kHitReach = 3;
} // namespace

CPointShape::CPointShape() { SetShapeType(bvxPoint, 0); }

CPointShape::CPointShape(const WorldPoint& position) : CPointShape() { Position = position; }

WorldPoint CPointShape::GetHandlePoint(int32_t, const ShapeContext&) const { return Position; }

WorldPoint CPointShape::GetPoint(int16_t index, const ShapeContext&) const
{
    return index == 0 ? Position : WorldPoint{};
}

bool CPointShape::SetPoint(int16_t index, double x, double y, ShapeContext* view)
{
    if (index != 0) return false;
    Position = {x, y};
    if (view) UpdateBounds(*view);
    return true;
}

void CPointShape::Transform(const Matrix3& matrix, ShapeContext& view)
{
    ApplyMatrix(matrix, Position);
    UpdateBounds(view);
}

void CPointShape::Draw(DeviceContext& dc, const DeviceRect& clip, ShapeContext& view, int32_t)
{
    const DevicePoint d = view.World.WorldToDevice(Position);
    StoreBounds({d.x, d.y, d.x, d.y});
    if (InflatedRect({d.x, d.y, d.x, d.y}, 1, 1).Intersected(clip).IsEmpty()) return;
    // One pixel in the current pen, whatever width it has.
    dc.MoveToEx(d.x, d.y);
    dc.LineTo(d.x + 1, d.y);
}

void CPointShape::Move(const WorldPoint& delta, ShapeContext& view)
{
    if (delta.x == 0 && delta.y == 0) return;
    view.InvalidateShape(this, false);
    Position = {Position.x + delta.x, Position.y + delta.y};
    UpdateBounds(view);
}

int32_t CPointShape::HitTest(DevicePoint point, ShapeContext&)
{
    return PtInRect(InflatedRect(OrderedRect(BoundsAsRect()), kHitReach, kHitReach), point) ? 1 : 0;
}

void CPointShape::MoveHandle(int32_t handle, WorldPoint point, ShapeContext& view)
{
    view.InvalidateShape(this, false);
    if (handle == 1) Position = point;
    UpdateBounds(view);
}

std::unique_ptr<CObjShape> CPointShape::Clone(int16_t withAttr) const
{
    auto copy = std::make_unique<CPointShape>(Position);
    CopyBaseTo(*copy);
    CopyAttrIf(*this, *copy, withAttr);
    return copy;
}

void CPointShape::UpdateBounds(const ShapeContext& view)
{
    const DevicePoint d = view.World.WorldToDevice(Position);
    StoreBounds({d.x, d.y, d.x, d.y});
}

WorldRect CPointShape::GetWorldBounds(const ShapeContext&) const
{
    return {Position.x, Position.y, Position.x, Position.y};
}

} // namespace bvx
