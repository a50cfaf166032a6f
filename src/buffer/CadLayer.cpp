#include "CadLayer.h"

#include "shapes/ShapeContext.h"
#include "platform/DeviceContext.h"

#include <algorithm>

namespace bvx {

namespace {
// Types whose shapes have no inside: their search method is not a choice.
bool HasNoSearchChoice(int32_t type)
{
    return type == bvxLine || type == bvxPolyline || type == bvxFreehand || type == bvxSpline || type == bvxPoint;
}
} // namespace

CadLayer::CadLayer(bool groupList)
    : Attr(groupList ? nullptr : std::make_unique<ShapeAttr>(ShapeAttr::Default())), IsGroupList(groupList)
{
}

CadLayer::~CadLayer()
{
    // Back to front, as shapes have always been destroyed.
    while (!Shapes.empty()) Shapes.pop_back();
}

void CadLayer::SetSearchMethod(int32_t type, int32_t method)
{
    if (type < 0 || type > 20 || HasNoSearchChoice(type)) return;
    SearchMethods[size_t(type)] = uint8_t(method & 3);
}

int16_t CadLayer::GetSearchMethod(int32_t type) const
{
    if (type < 0 || type > 20 || type == bvxLine || type == bvxPoint) return 0;
    return SearchMethods[size_t(type)];
}

size_t CadLayer::IndexOf(const CObjShape* shape) const
{
    auto it = std::find_if(Shapes.begin(), Shapes.end(), [&](const auto& s) { return s.get() == shape; });
    return size_t(it - Shapes.begin());
}

std::unique_ptr<CObjShape> CadLayer::Take(const CObjShape* shape)
{
    auto it = std::find_if(Shapes.begin(), Shapes.end(), [&](const auto& s) { return s.get() == shape; });
    if (it == Shapes.end()) return nullptr;
    std::unique_ptr<CObjShape> taken = std::move(*it);
    Shapes.erase(it);
    return taken;
}

void CadLayer::Draw(DeviceContext& dc, DeviceRect& clip, ShapeContext& view, int32_t mode)
{
    // The size is read on every pass: drawing may fire into the host.
    for (size_t i = 0; i < Shapes.size(); ++i) {
        CObjShape& shape = *Shapes[i];
        if (shape.Selected) continue;
        if (!view.World.Changed && !IsGroupList) {
            // The bounds end where a one-pixel outline still draws its last
            // row and column: one more each way keeps those in the test.
            // Sixteen-bit bounds widen without overflow; this runs for
            // every shape of every repaint.
            const ShortRect& s = shape.Bounds;
            const DeviceRect b{std::min(s.left, s.right) - 1, std::min(s.top, s.bottom) - 1,
                               std::max(s.left, s.right) + 1, std::max(s.top, s.bottom) + 1};
            if (b.right <= clip.left || b.left >= clip.right || b.bottom <= clip.top || b.top >= clip.bottom ||
                clip.IsEmpty())
                continue;
            // A shape drawn whole may cover shapes above it: they must follow.
            clip = clip.United(b);
        }
        if (shape.GroupList()) {
            shape.Draw(dc, clip, view, mode);
            continue;
        }
        const ShapeAttr& attr = IsGroupList && mode != 0 && view.SelectMode() != 1 && Attr
                                    ? *Attr
                                    : view.EffectiveAttr(shape);
        view.DrawWithAttr(dc, shape, attr, clip, mode);
    }
}

CObjShape* CadLayer::Search(DevicePoint point, bool snap, bool wantShape, int16_t action, ShapeContext& view)
{
    if (!(action & LayerActions::Show)) return nullptr;
    if (!(action & LayerActions::Find)) return nullptr;
    for (size_t i = Shapes.size(); i-- > 0;) {
        CObjShape* shape = Shapes[i].get();
        if (view.MouseActive && shape->Selected) continue;
        int32_t hit = shape->HitTest(point, view);
        if (!hit) continue;
        CadLayer* members = shape->GroupList();
        if (snap) {
            CObjShape* target = members ? view.FindShape(hit) : shape;
            if (target) view.SnapPointerTo(target->GetHandlePoint(target->HandleFromPoint(point, view), view), point);
            return shape;
        }
        if (!members || members->Action == LayerActions::Show) return wantShape ? shape : nullptr;
        // Find reaches through a group to the member under the point.
        return members->Search(point, snap, wantShape, members->Action, view);
    }
    return nullptr;
}

} // namespace bvx
