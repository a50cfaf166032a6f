#include "CadLayer.h"

#include "shapes/ShapeContext.h"
#include "platform/DeviceContext.h"

#include <algorithm>
#include <vector>

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

// From the front end: the shapes just added, which readers and tools move
// on at once, are found in one step.
size_t CadLayer::IndexOf(const CObjShape* shape) const
{
    for (size_t i = Shapes.size(); i-- > 0;)
        if (Shapes[i].get() == shape) return i;
    return Shapes.size();
}

std::unique_ptr<CObjShape> CadLayer::Take(const CObjShape* shape)
{
    const size_t at = IndexOf(shape);
    if (at == Shapes.size()) return nullptr;
    std::unique_ptr<CObjShape> taken = std::move(Shapes[at]);
    Shapes.erase(Shapes.begin() + std::ptrdiff_t(at));
    return taken;
}

void CadLayer::Draw(DeviceContext& dc, DeviceRect& clip, ShapeContext& view, int32_t mode,
                    const ShapeAttr* inherited)
{
    // Groups are entered on a stack of lists of our own, each with the
    // record its members inherit; drawn selected, members wear the Buffer
    // Layer's look unless the view says otherwise.
    struct Frame {
        CadLayer* list;
        size_t next;
        ShapeAttr inherited;
    };
    const bool bufferLook = mode != 0 && view.SelectMode() != 1;
    std::vector<Frame> stack{{this, 0, inherited ? *inherited : ShapeAttr::Default()}};
    // The size is read on every pass: drawing may fire into the host.
    while (!stack.empty()) {
        Frame& top = stack.back();
        CadLayer& list = *top.list;
        if (top.next >= list.Shapes.size()) {
            stack.pop_back();
            continue;
        }
        CObjShape& shape = *list.Shapes[top.next++];
        if (shape.Selected) continue;
        if (!view.World.Changed && !list.IsGroupList) {
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
        if (CadLayer* members = shape.GroupList()) {
            // One refresh covers the whole tree of a group met on a layer.
            if (!list.IsGroupList) shape.UpdateBounds(view);
            if (!(members->Action & LayerActions::Show)) continue;
            const ShapeAttr next = shape.Attr            ? *shape.Attr
                                   : list.IsGroupList ? top.inherited
                                                      : view.EffectiveAttr(shape);
            stack.push_back({members, 0, next});
            continue;
        }
        const ShapeAttr& attr = !list.IsGroupList ? view.EffectiveAttr(shape)
                                : bufferLook      ? view.LayerLook(0)
                                : shape.Attr      ? *shape.Attr
                                                  : top.inherited;
        view.DrawWithAttr(dc, shape, attr, clip, mode);
    }
}

CObjShape* CadLayer::Search(DevicePoint point, bool snap, bool wantShape, int16_t action, ShapeContext& view)
{
    // Find reaches through a group to the member under the point, as deep
    // as the groups allow it.
    for (CadLayer* list = this;;) {
        if (!(action & LayerActions::Show) || !(action & LayerActions::Find)) return nullptr;
        CObjShape* found = nullptr;
        int32_t hit = 0;
        for (size_t i = list->Shapes.size(); i-- > 0 && !hit;) {
            found = list->Shapes[i].get();
            if (!(view.MouseActive && found->Selected)) hit = found->HitTest(point, view);
        }
        if (!hit) return nullptr;
        CadLayer* members = found->GroupList();
        if (snap) {
            CObjShape* target = members ? view.FindShape(hit) : found;
            if (target) view.SnapPointerTo(target->GetHandlePoint(target->HandleFromPoint(point, view), view), point);
            return found;
        }
        if (!members || members->Action == LayerActions::Show) return wantShape ? found : nullptr;
        list = members;
        action = members->Action;
    }
}

} // namespace bvx
