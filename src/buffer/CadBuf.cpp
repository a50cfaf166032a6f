#include "CadBuf.h"

#include "GroupWalk.h"
#include "shapes/CGroupShape.h"

#include "shapes/ShapeContext.h"
#include "platform/DeviceContext.h"

#include <algorithm>

namespace bvx {

namespace {

constexpr int32_t kCurrentLayer = -1;
constexpr int32_t kCurrentLayerPattern = 65535;
constexpr int16_t kTextType = bvxText;
// Handle boxes reach three pixels past a shape's bounds, which end one short.
constexpr int32_t kHandleReach = 4;

// Visits a shape and, depth first, the members of groups inside it.
template <typename F> void ForEachDeep(CObjShape* shape, F&& f)
{
    WalkShapeDeep(*shape, [&](CObjShape& s) {
        f(&s);
        return true;
    });
}

void MoveWithin(CadLayer& list, size_t from, size_t to)
{
    auto shape = std::move(list.Shapes[from]);
    list.Shapes.erase(list.Shapes.begin() + std::ptrdiff_t(from));
    list.Shapes.insert(list.Shapes.begin() + std::ptrdiff_t(to), std::move(shape));
}

} // namespace

CadBuf::CadBuf() { Reset(); }

CadBuf::~CadBuf()
{
    ForgetAll();
    while (!Layers.empty()) Layers.pop_back();
}

void CadBuf::SetSnapMode(int16_t mode)
{
    SnapMode = (mode == 0 || mode == 1) ? mode : 0;
    if (SnapMode == 0) SnapMarkerUp = 0;
}

void CadBuf::Reset()
{
    AddLayer(u"Buffer Layer");
    AddLayer(u"Layer 1");
    OpenLayer(1);
}

int16_t CadBuf::AddLayer(const std::u16string& name)
{
    if (Layers.size() >= size_t(INT16_MAX)) return -1;
    Layers.push_back(std::make_unique<CadLayer>());
    Layers.back()->Name = name;
    // The number stays: a caller follows with OpenLayer or sets it.
    CurrentLayer = Layers.back().get();
    return int16_t(Layers.size() - 1);
}

bool CadBuf::OpenLayer(int32_t n)
{
    if (!IsLayer(n)) return false;
    CurrentLayer = Layers[size_t(n)].get();
    CurrentLayerNumber = int16_t(n);
    return true;
}

void CadBuf::EmptyLayer(CadLayer& layer)
{
    for (size_t i = 0; i < layer.Shapes.size(); ++i) {
        Deselect(layer.Shapes[i].get());
        ForgetShape(layer.Shapes[i].get());
    }
    while (!layer.Shapes.empty()) layer.Shapes.pop_back();
}

bool CadBuf::RemoveLayer(int32_t n, ShapeContext& view)
{
    if (n == 0 || !IsLayer(n)) return false;
    if (n == CurrentLayerNumber) view.CancelMouse();
    CadLayer* layer = Layers[size_t(n)].get();
    EmptyLayer(*layer);
    bool wasCurrent = n == CurrentLayerNumber;
    bool pointerWasCurrent = CurrentLayer == layer;
    Layers.erase(Layers.begin() + n);
    // Shapes on later layers keep their old layer numbers; only the current
    // layer is put right, and only when it was the one removed.
    if ((wasCurrent || pointerWasCurrent) && !Layers.empty()) {
        CurrentLayer = Layers.back().get();
        if (wasCurrent) CurrentLayerNumber = int16_t(Layers.size() - 1);
    }
    return true;
}

int16_t CadBuf::FindLayerByName(const std::u16string& name)
{
    for (size_t i = 0; i < Layers.size(); ++i) {
        if (Layers[i]->Name == name) {
            OpenLayer(int32_t(i));
            return int16_t(i);
        }
    }
    return -1;
}

bool CadBuf::CopyLayer(int32_t source, int32_t dest, bool createIfMissing, ShapeContext& view)
{
    if (source == dest || !IsLayer(source)) return false;
    if (!IsLayer(dest)) {
        if (!createIfMissing) return false;
        dest = AddLayer(u"Layer " + [](size_t n) {
            std::u16string s;
            for (char c : std::to_string(n)) s += char16_t(c);
            return s;
        }(Layers.size()));
        if (dest < 0) return false;
    } else {
        ClearLayer(dest);
    }
    CadLayer& to = *Layers[size_t(dest)];
    const CadLayer& from = *Layers[size_t(source)];
    to.Attr = std::make_unique<ShapeAttr>(from.Attr ? *from.Attr : ShapeAttr::Default());
    to.Name = from.Name;
    for (size_t type = 0; type < from.SearchMethods.size(); ++type)
        if (type != 14 && type != 15 && type != 19) to.SearchMethods[type] = from.SearchMethods[type];
    to.LineType = from.LineType;
    to.IsGroupList = from.IsGroupList;
    // A host may add, delete or close layers from the events: the source is
    // found afresh for each shape.
    for (size_t i = 0; IsLayer(source) && IsLayer(dest) && i < Layers[size_t(source)]->Shapes.size(); ++i)
        EnterShape(Layers[size_t(source)]->Shapes[i]->Clone(1), view, dest);
    return true;
}

void CadBuf::ClearLayer(int32_t n)
{
    if (n >= 0) {
        if (IsLayer(n)) EmptyLayer(*Layers[size_t(n)]);
        return;
    }
    ForgetAll();
    for (auto& layer : Layers) layer->Shapes.clear();
    NextShapeNumber = 0;
}

CObjShape* CadBuf::AddShape(std::unique_ptr<CObjShape> shape, ShapeContext& view, int32_t layer, int32_t number,
                            bool fireEvent)
{
    if (!shape) return nullptr;
    CadLayer* target = nullptr;
    int32_t index = layer;
    if (layer == kCurrentLayer || layer == kCurrentLayerPattern) {
        target = CurrentLayer;
        // The open layer's number names it, unless a closed layer below has
        // moved it.
        if (IsLayer(CurrentLayerNumber) && Layers[size_t(CurrentLayerNumber)].get() == target) {
            index = CurrentLayerNumber;
        } else {
            auto it = std::find_if(Layers.begin(), Layers.end(), [&](const auto& l) { return l.get() == target; });
            index = int32_t(it - Layers.begin());
        }
    } else {
        target = Layer(layer);
    }
    if (!target) return nullptr;
    if (number == -1) number = ++NextShapeNumber;
    CObjShape* added = shape.get();
    added->Number = number;
    added->Layer = int16_t(index);
    target->Shapes.push_back(std::move(shape));
    ShapeMap.Insert(number, added);
    if (fireEvent) view.ShapeAdded(added->GetShapeType(), number);
    return added;
}

int32_t CadBuf::EnterShape(std::unique_ptr<CObjShape> shape, ShapeContext& view, int32_t layer)
{
    CObjShape* added = AddShape(std::move(shape), view, layer, -1, false);
    if (!added) return -1;
    if (added->GroupList()) NumberGroupMembers(added);
    const int32_t number = added->Number;
    view.ShapeAdded(added->GetShapeType(), number);
    return number;
}

CObjShape* CadBuf::FindShape(int32_t number) const { return ShapeMap.Find(number); }

CObjShape* CadBuf::FindShapeDeep(int32_t number, int32_t& index) const
{
    for (const auto& layer : Layers) {
        for (size_t i = 0; i < layer->Shapes.size(); ++i) {
            CObjShape* found = nullptr;
            ForEachDeep(layer->Shapes[i].get(), [&](CObjShape* s) {
                if (!found && s->Number == number) found = s;
            });
            if (found) {
                index = int32_t(i);
                return found;
            }
        }
    }
    return nullptr;
}

CObjShape* CadBuf::FindShapeByName(const std::u16string& text) const
{
    for (const auto& layer : Layers)
        for (const auto& top : layer->Shapes) {
            CObjShape* found = nullptr;
            ForEachDeep(top.get(), [&](CObjShape* s) {
                if (!found && s->Notes == text) found = s;
            });
            if (found) return found;
        }
    return nullptr;
}

CadLayer* CadBuf::OwnerList(const CObjShape* shape) const
{
    if (!shape) return nullptr;
    if (shape->Group != -1) {
        CObjShape* group = FindShape(shape->Group);
        return group ? group->GroupList() : nullptr;
    }
    // A layer number may be stale after an earlier layer was removed: the
    // list that truly holds the shape is the one that counts.
    CadLayer* named = Layer(shape->Layer);
    if (named && named->IndexOf(shape) < named->Shapes.size()) return named;
    for (const auto& layer : Layers)
        if (layer->IndexOf(shape) < layer->Shapes.size()) return layer.get();
    return nullptr;
}

std::unique_ptr<CObjShape> CadBuf::DetachShape(CObjShape* shape)
{
    if (!shape || shape->Group != -1) return nullptr;
    CadLayer* list = OwnerList(shape);
    return list ? list->Take(shape) : nullptr;
}

void CadBuf::ForgetShape(CObjShape* shape)
{
    if (!shape) return;
    // Members go too, so that no number is left pointing at a destroyed shape.
    ForEachDeep(shape, [&](CObjShape* s) {
        ShapeMap.Erase(s->Number, s);
        if (s->Selected) Deselect(s);
        if (FocusShape == s) FocusShape = nullptr;
    });
}

void CadBuf::ToFront(CObjShape* shape)
{
    CadLayer* list = OwnerList(shape);
    if (!list) return;
    size_t i = list->IndexOf(shape);
    if (i < list->Shapes.size()) MoveWithin(*list, i, list->Shapes.size() - 1);
}

void CadBuf::ToBack(CObjShape* shape)
{
    CadLayer* list = OwnerList(shape);
    if (!list) return;
    size_t i = list->IndexOf(shape);
    if (i < list->Shapes.size()) MoveWithin(*list, i, 0);
}

void CadBuf::ZOrderJump(CObjShape* shape, int32_t levels)
{
    CadLayer* list = OwnerList(shape);
    if (!list || levels == 0) return;
    size_t i = list->IndexOf(shape), count = list->Shapes.size();
    if (i >= count) return;
    int64_t target = std::clamp<int64_t>(int64_t(i) + levels, 0, int64_t(count) - 1);
    if (size_t(target) != i) MoveWithin(*list, i, size_t(target));
}

void CadBuf::SetZOrder(CObjShape* shape, int32_t position)
{
    CadLayer* list = OwnerList(shape);
    if (!list || position < 0 || size_t(position) >= list->Shapes.size()) return;
    size_t i = list->IndexOf(shape);
    if (i < list->Shapes.size()) MoveWithin(*list, i, size_t(position));
}

int32_t CadBuf::GetZOrder(const CObjShape* shape) const
{
    if (!shape) return -1;
    CadLayer* list = OwnerList(shape);
    if (!list) return 0;
    return int32_t(list->IndexOf(shape));
}

void CadBuf::Select(CObjShape* shape)
{
    if (!shape) return;
    // A group and its members are never selected together.
    if (CadLayer* members = shape->GroupList())
        for (size_t i = 0; i < members->Shapes.size(); ++i)
            ForEachDeep(members->Shapes[i].get(), [&](CObjShape* s) {
                if (s->Selected) Deselect(s);
            });
    if (!shape->Selected) {
        shape->Selected = true;
        Selection.push_back(shape);
    }
    FocusShape = shape;
}

bool CadBuf::Deselect(CObjShape* shape)
{
    if (!shape) {
        bool had = !Selection.empty();
        FocusShape = nullptr;
        FocusPoint = -1;
        for (CObjShape* s : Selection) s->Selected = false;
        Selection.clear();
        return had;
    }
    if (FocusShape == shape) {
        FocusShape = nullptr;
        FocusPoint = -1;
    }
    auto it = std::find(Selection.begin(), Selection.end(), shape);
    if (it == Selection.end()) return false;
    shape->Selected = false;
    Selection.erase(it);
    return true;
}

void CadBuf::SelectInRect(const DeviceRect& rect, bool additive, ShapeContext& view)
{
    if (!additive) Deselect(nullptr);
    for (size_t l = 1; l < Layers.size(); ++l) {
        if (!(Layers[l]->Action & LayerActions::Find)) continue;
        // Events fire inside the loop; a host may change the list.
        for (size_t i = 0; l < Layers.size() && i < Layers[l]->Shapes.size(); ++i) {
            CObjShape* shape = Layers[l]->Shapes[i].get();
            if (!shape->IntersectsRect(rect, view)) continue;
            Select(shape);
            view.ShapeSelected(shape->GetShapeType(), shape->Number);
        }
    }
}

CObjShape* CadBuf::HitTest(DevicePoint point, bool snap, bool wantShape, int16_t& action, ShapeContext& view)
{
    for (size_t l = Layers.size(); l-- > 1;) {
        CadLayer& layer = *Layers[l];
        if (CObjShape* found = layer.Search(point, snap, wantShape, layer.Action, view)) {
            action = layer.Action;
            return found;
        }
    }
    return nullptr;
}

void CadBuf::DuplicateSelection(ShapeContext& view)
{
    std::vector<int32_t> clones;
    while (!Selection.empty()) {
        CObjShape* source = Selection.back();
        Deselect(source);
        const int32_t clone = EnterShape(source->Clone(CopyMode), view);
        if (clone != -1) clones.push_back(clone);
    }
    // By number: a host may have deleted a clone from an event.
    for (int32_t number : clones) {
        CObjShape* clone = FindShape(number);
        if (!clone) continue;
        Select(clone);
        view.InvalidateShape(clone, true);
        view.ShapeSelected(clone->GetShapeType(), clone->Number);
    }
}

bool CadBuf::IsWithin(const CObjShape* shape, const CObjShape* group) const
{
    // Bounded by the count of shapes, so that a damaged chain cannot spin.
    const CObjShape* g = group;
    for (size_t steps = 0; g && steps <= ShapeMap.Size(); ++steps) {
        if (g == shape) return true;
        g = g->Group == -1 ? nullptr : FindShape(g->Group);
    }
    return false;
}

bool CadBuf::GroupAddShape(CObjShape* group, CObjShape* shape)
{
    CGroupShape* target = AsGroup(group);
    // A shape of another group stays there, and no group may hold itself
    // or a group it is in.
    if (!target || !shape || shape->Group != -1 || IsWithin(shape, target)) return false;
    return GroupAdopt(*target, shape);
}

bool CadBuf::GroupAdopt(CGroupShape& group, CObjShape* shape)
{
    std::unique_ptr<CObjShape> taken = DetachShape(shape);
    if (!taken) return false;
    Deselect(shape);
    taken->Layer = group.Layer;
    group.AddMember(std::move(taken));
    return true;
}

bool CadBuf::GroupAddSelection(CObjShape* group)
{
    if (!AsGroup(group)) return false;
    struct Keyed {
        int64_t key;
        int32_t number;
    };
    std::vector<Keyed> order;
    while (!Selection.empty()) {
        CObjShape* s = Selection.back();
        Deselect(s);
        int64_t key = 0;
        if (CadLayer* list = OwnerList(s)) key = int64_t(list->IndexOf(s));
        // Layer 1's size is left out and the shape's own layer counted in;
        // the key orders shapes as they paint in every case that matters.
        for (int32_t l = 2; l <= s->Layer && IsLayer(l); ++l) key += int64_t(Layers[size_t(l)]->Shapes.size());
        order.push_back({key, s->Number});
    }
    // A stable sort keeps ties in the order they were taken.
    std::stable_sort(order.begin(), order.end(), [](const Keyed& a, const Keyed& b) { return a.key < b.key; });
    for (const Keyed& k : order) GroupAddShape(group, FindShape(k.number));
    return true;
}

bool CadBuf::GroupRemoveShape(CObjShape* group, CObjShape* shape)
{
    CGroupShape* owner = AsGroup(group);
    if (!owner || !shape || !CurrentLayer) return false;
    std::unique_ptr<CObjShape> taken = owner->RemoveMember(shape);
    if (!taken) return false;
    taken->Layer = CurrentLayerNumber;
    CurrentLayer->Shapes.push_back(std::move(taken));
    return true;
}

bool CadBuf::GroupRemoveAll(CObjShape* group)
{
    CGroupShape* owner = AsGroup(group);
    if (!owner || !CurrentLayer) return false;
    CadLayer& members = *owner->GroupList();
    for (auto& member : members.Shapes) {
        member->Group = -1;
        member->Layer = CurrentLayerNumber;
        CurrentLayer->Shapes.push_back(std::move(member));
    }
    members.Shapes.clear();
    owner->UniteMemberBounds();
    return true;
}

void CadBuf::NumberGroupMembers(CObjShape* group)
{
    CadLayer* members = group ? group->GroupList() : nullptr;
    if (!members) return;
    // Depth first, each group numbered before its members, which then learn
    // the number.
    for (auto& member : members->Shapes) member->Group = group->Number;
    const int16_t layer = group->Layer;
    WalkDeep(*members, [&](CObjShape& member) {
        member.Number = ++NextShapeNumber;
        member.Layer = layer;
        ShapeMap.Insert(member.Number, &member);
        if (CadLayer* inner = member.GroupList())
            for (auto& m : inner->Shapes) m->Group = member.Number;
        return true;
    });
}

bool CadBuf::PictureInUse(const std::string& name) const
{
    for (const auto& layer : Layers) {
        const bool free = WalkDeep(*layer, [&](CObjShape& shape) {
            return shape.GetShapeType() != bvxPicture || static_cast<CPictShape&>(shape).ImageName != name;
        });
        if (!free) return true;
    }
    return false;
}

void CadBuf::ForgetAll()
{
    Selection.clear();
    ShapeMap.Clear();
    FocusShape = nullptr;
    FocusPoint = -1;
}

void CadBuf::ClearAll()
{
    ForgetAll();
    while (!Layers.empty()) {
        CurrentLayer = Layers.back().get();
        Layers.pop_back();
    }
    CurrentLayer = nullptr;
    NextShapeNumber = 0;
}

void CadBuf::Draw(DeviceContext& dc, DeviceRect& clip, ShapeContext& view)
{
    view.ShowTextCaret(false);
    for (size_t l = 1; l < Layers.size(); ++l)
        if (Layers[l]->Action & LayerActions::Show) Layers[l]->Draw(dc, clip, view, 0);
    if (view.MouseActive == 0) DrawSelection(dc, clip, view);
    view.World.Changed = false;
}

void CadBuf::DrawSelection(DeviceContext& dc, DeviceRect& clip, ShapeContext& view)
{
    const ShapeAttr bufferLook = Layers.empty() || !Layers[0]->Attr ? ShapeAttr::Default() : *Layers[0]->Attr;
    for (size_t i = 0; i < Selection.size(); ++i) {
        CObjShape& shape = *Selection[i];
        bool lonelyText = Selection.size() == 1 && shape.GetShapeType() == kTextType;
        // Handles are drawn whole: a shape whose handles stay clear of the
        // clip keeps its pixels, so that its handles do not cover the
        // shapes selected after it; one that meets it grows the clip.
        DeviceRect reach = InflatedRect(OrderedRect(shape.BoundsAsRect()), kHandleReach, kHandleReach);
        if (reach.Intersected(clip).IsEmpty()) {
            if (lonelyText) view.ShowTextCaret(!view.MouseActive);
            continue;
        }
        clip = clip.United(reach);
        uint32_t rop = &shape == FocusShape ? RasterOp::Blackness : RasterOp::Whiteness;
        if (shape.GroupList()) {
            shape.Draw(dc, clip, view, 1);
        } else {
            // Selected shapes wear the Buffer Layer's colours unless told otherwise.
            const ShapeAttr& attr = SelectMode == 1 ? view.EffectiveAttr(shape) : bufferLook;
            view.DrawWithAttr(dc, shape, attr, clip, 1);
        }
        if (view.MouseActive) {
            if (lonelyText) view.ShowTextCaret(false);
            continue;
        }
        shape.DrawHandles(dc, rop, view);
        if (lonelyText && !shape.GroupList()) view.ShowTextCaret(true);
    }
}

} // namespace bvx
