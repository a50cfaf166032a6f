#include "CPictShape.h"

#include "CRectShape.h"
#include "ShapeContext.h"
#include "platform/DeviceContext.h"

#include <algorithm>

namespace bvx {

namespace {
constexpr int32_t kBorderReach = 3;
constexpr int32_t kFrameWidth = 6;
// Sizes from this on are no image the device can draw.
constexpr int64_t kLargestSide = 0x80000000LL;
} // namespace

CPictShape::CPictShape() { SetShapeType(bvxPicture, 0); }

CPictShape::CPictShape(const WorldPoint& start) : CPictShape() { P1 = P2 = start; }

CPictShape::~CPictShape() { ReleaseImage(); }

void CPictShape::TakeImageSize()
{
    const int64_t w = Image ? int64_t(DibWidth(*Image)) : 0, h = Image ? int64_t(DibHeight(*Image)) : 0;
    if (std::abs(w) >= kLargestSide || std::abs(h) >= kLargestSide) {
        Image.reset();
        ImageWidth = ImageHeight = 0;
        return;
    }
    ImageWidth = int32_t(std::abs(w));
    ImageHeight = int32_t(std::abs(h));
}

void CPictShape::BindImage(uint16_t style, std::string name, SharedDib image)
{
    Style = style;
    ImageName = std::move(name);
    Image = std::move(image);
    TakeImageSize();
}

void CPictShape::ReleaseImage()
{
    TableLink = 0;
    ImageName.clear();
    Image.reset();
    ImageWidth = ImageHeight = 0;
}

WorldPoint CPictShape::GetHandlePoint(int32_t handle, const ShapeContext&) const
{
    return RectHandlePoint(P1, P2, handle);
}

WorldPoint CPictShape::GetPoint(int16_t index, const ShapeContext&) const
{
    return index == 0 ? P1 : index == 1 ? P2 : WorldPoint{};
}

int16_t CPictShape::HandleToPoint(int32_t handle) const { return handle == 1 ? 0 : handle == 5 ? 1 : -1; }

bool CPictShape::SetPoint(int16_t index, double x, double y, ShapeContext* view)
{
    if (index == 0)
        P1 = {x, y};
    else if (index == 1)
        P2 = {x, y};
    else
        return false;
    if (view) UpdateBounds(*view);
    return true;
}

void CPictShape::Transform(const Matrix3& matrix, ShapeContext&)
{
    // The image stays upright in the new box, which the next paint measures.
    ApplyMatrix(matrix, P1);
    ApplyMatrix(matrix, P2);
}

DeviceRect CPictShape::DeviceBox(const ShapeContext& view) const
{
    DeviceRect r = OrderedRect(view.World.WorldRectToDevice(P1, P2));
    return {r.left, r.top, r.right + 1, r.bottom + 1};
}

void CPictShape::UpdateBounds(const ShapeContext& view) { StoreBounds(DeviceBox(view)); }

WorldRect CPictShape::GetWorldBounds(const ShapeContext&) const { return {P1.x, P1.y, P2.x, P2.y}; }

void CPictShape::Move(const WorldPoint& delta, ShapeContext& view)
{
    if (delta.x == 0 && delta.y == 0) return;
    view.InvalidateShape(this, false);
    // A grab inside a natural-size image leaves the frame where it is.
    if (!GetInnerHit()) {
        P1 = {P1.x + delta.x, P1.y + delta.y};
        P2 = {P2.x + delta.x, P2.y + delta.y};
    }
    UpdateBounds(view);
}

void CPictShape::Draw(DeviceContext& dc, const DeviceRect& clip, ShapeContext& view, int32_t)
{
    const DeviceRect r = DeviceBox(view);
    StoreBounds(r);
    if (r.Intersected(clip).IsEmpty()) return;
    // Dragged, only the outline follows the mouse.
    if (Selected && view.MouseActive) {
        dc.DrawFocusRect(r);
        return;
    }
    if (Image) RenderImage(dc, r, clip);
}

void CPictShape::RenderImage(DeviceContext& dc, const DeviceRect& rect, const DeviceRect& visible) const
{
    if (!Image || ImageWidth <= 0 || ImageHeight <= 0) return;
    const int64_t w = ImageWidth, h = ImageHeight;
    // Draws the part of the image that falls in rect from (x, y) on.
    auto piece = [&](int64_t x, int64_t y) {
        const int64_t right = std::min<int64_t>(x + w, rect.right), bottom = std::min<int64_t>(y + h, rect.bottom);
        const int64_t left = std::max<int64_t>(x, rect.left), top = std::max<int64_t>(y, rect.top);
        if (right <= left || bottom <= top) return;
        const DeviceRect dest{int32_t(left), int32_t(top), int32_t(right), int32_t(bottom)};
        const DeviceRect source{int32_t(left - x), int32_t(top - y), int32_t(right - x), int32_t(bottom - y)};
        DibPaint(dc, dest, *Image, source, nullptr);
    };
    const uint16_t style = Style & 0x7F;
    if (style == PictStyle::Natural || GetInnerHit()) {
        piece(rect.left, rect.top);
    } else if (style == PictStyle::Stretch) {
        DibPaint(dc, rect, *Image, {0, 0, int32_t(w), int32_t(h)}, nullptr);
    } else if (style == PictStyle::Tile) {
        // Only the tiles that meet what is visible: a small image over a
        // large box would otherwise take forever.
        const int64_t rows = int64_t(rect.Height()) / h, columns = int64_t(rect.Width()) / w;
        const int64_t firstColumn = std::max<int64_t>(0, (int64_t(visible.left) - rect.left) / w);
        const int64_t lastColumn = std::min<int64_t>(columns, (int64_t(visible.right) - rect.left) / w);
        const int64_t firstRow = std::max<int64_t>(0, (int64_t(visible.top) - rect.top) / h);
        const int64_t lastRow = std::min<int64_t>(rows, (int64_t(visible.bottom) - rect.top) / h);
        for (int64_t j = firstRow; j <= lastRow; ++j)
            for (int64_t i = firstColumn; i <= lastColumn; ++i) piece(rect.left + w * i, rect.top + h * j);
    }
}

int32_t CPictShape::HitTest(DevicePoint point, ShapeContext&)
{
    const int16_t method = GetSearchMethod();
    DeviceRect r = BoundsAsRect();
    if (method == 0) r = InflatedRect(r, kBorderReach, kBorderReach);
    if (!PtInRect(r, point)) return 0;
    if (method == 1) return 1;
    const bool inner = PtInRect(InflatedRect(r, -kFrameWidth, -kFrameWidth), point);
    if (inner) {
        // Inside the frame only a natural-size image can be grabbed, and
        // only where the image is.
        if ((Style & 0x7F) != PictStyle::Natural && !GetInnerHit()) return 0;
        const DeviceRect image{Bounds.left, Bounds.top, Bounds.left + ImageWidth, Bounds.top + ImageHeight};
        if (!PtInRect(image, point)) return 0;
    }
    SetInnerHit(inner);
    return 1;
}

void CPictShape::MoveHandle(int32_t handle, WorldPoint point, ShapeContext& view)
{
    view.InvalidateShape(this, false);
    MoveRectHandle(P1, P2, handle, point);
    UpdateBounds(view);
}

std::unique_ptr<CObjShape> CPictShape::Clone(int16_t) const
{
    auto copy = std::make_unique<CPictShape>();
    CopyBaseTo(*copy);
    copy->P1 = P1;
    copy->P2 = P2;
    copy->TableLink = TableLink;
    copy->BindImage(Style, ImageName, Image);
    return copy;
}

int32_t CPictShape::HandleFromPoint(DevicePoint point, ShapeContext& view) const
{
    const DevicePoint a = view.World.WorldToDevice(P1), b = view.World.WorldToDevice(P2);
    return RectHandleFromPoint({a.x, a.y, b.x, b.y}, point);
}

int16_t CPictShape::NearestPoint(DevicePoint point, ShapeContext& view) const
{
    const WorldPoint q = view.World.DeviceToWorld(point);
    return Distance(P2, q) < Distance(P1, q) ? 1 : 0;
}

} // namespace bvx
