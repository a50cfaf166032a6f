#include "CGroupShape.h"

#include "ShapeContext.h"
#include "buffer/CadLayer.h"
#include "buffer/GroupWalk.h"

#include <cmath>

namespace bvx {

CGroupShape::CGroupShape() : list_(std::make_unique<CadLayer>(true))
{
    SetShapeType(bvxGroup, 0);
    list_->Name = u"Group Layer";
    list_->Action = LayerActions::Show;
}

CGroupShape::~CGroupShape()
{
    // Destroying a member group would destroy its members from inside its
    // own destructor, one call deeper per level: the tree is taken apart
    // here instead, each shape destroyed with its list already empty.
    std::vector<std::unique_ptr<CObjShape>> pending = std::move(list_->Shapes);
    while (!pending.empty()) {
        std::unique_ptr<CObjShape> shape = std::move(pending.back());
        pending.pop_back();
        if (CadLayer* members = shape->GroupList()) {
            for (auto& member : members->Shapes) pending.push_back(std::move(member));
            members->Shapes.clear();
        }
    }
}

CGroupShape* AsGroup(CObjShape* shape)
{
    return shape && shape->GroupList() ? static_cast<CGroupShape*>(shape) : nullptr;
}

size_t CGroupShape::MemberCount() const { return list_->Shapes.size(); }

void CGroupShape::AddMember(std::unique_ptr<CObjShape> shape)
{
    shape->Group = Number;
    StoreBounds(BoundsAsRect().United(shape->BoundsAsRect()));
    list_->Shapes.push_back(std::move(shape));
}

std::unique_ptr<CObjShape> CGroupShape::RemoveMember(const CObjShape* shape)
{
    std::unique_ptr<CObjShape> taken = list_->Take(shape);
    if (!taken) return nullptr;
    taken->Group = -1;
    UniteMemberBounds();
    return taken;
}

void CGroupShape::UniteMemberBounds()
{
    DeviceRect all{};
    for (const auto& member : list_->Shapes) all = all.United(member->BoundsAsRect());
    Bounds = {int16_t(all.left), int16_t(all.top), int16_t(all.right), int16_t(all.bottom)};
}

template <typename Change> void CGroupShape::ChangeMembers(Change&& change)
{
    WalkDeep(
        *list_,
        [&](CObjShape& shape) {
            if (!shape.GroupList()) change(shape);
            return true;
        },
        [](CObjShape& group) { static_cast<CGroupShape&>(group).UniteMemberBounds(); });
    UniteMemberBounds();
}

WorldPoint CGroupShape::GetPoint(int16_t index, const ShapeContext& view) const
{
    if (index == 0) return view.World.DeviceToWorld({Bounds.left, Bounds.top});
    if (index == 1) return view.World.DeviceToWorld({Bounds.right, Bounds.bottom});
    return {};
}

bool CGroupShape::SetPoint(int16_t index, double x, double y, ShapeContext* view)
{
    if (index != 0 && index != 1) return false;
    if (!view) return true;
    const WorldPoint corner = GetPoint(index, *view);
    Move({x - corner.x, y - corner.y}, *view);
    return true;
}

void CGroupShape::Transform(const Matrix3& matrix, ShapeContext& view)
{
    ChangeMembers([&](CObjShape& shape) { shape.Transform(matrix, view); });
}

double CGroupShape::GetArea() const
{
    double sum = 0;
    WalkDeep(*list_, [&](CObjShape& shape) {
        if (!shape.GroupList()) sum += shape.GetArea();
        return true;
    });
    return sum;
}

void CGroupShape::Move(const WorldPoint& delta, ShapeContext& view)
{
    if (delta.x == 0 && delta.y == 0) return;
    ChangeMembers([&](CObjShape& shape) { shape.Move(delta, view); });
}

void CGroupShape::UpdateBounds(const ShapeContext& view)
{
    ChangeMembers([&](CObjShape& shape) { shape.UpdateBounds(view); });
}

WorldRect CGroupShape::GetWorldBounds(const ShapeContext& view) const
{
    WorldRectUnion all(view.World);
    WalkDeep(*list_, [&](CObjShape& shape) {
        if (!shape.GroupList()) all.Add(shape.GetWorldBounds(view));
        return true;
    });
    return all.Result();
}

void CGroupShape::Draw(DeviceContext& dc, const DeviceRect& clip, ShapeContext& view, int32_t mode)
{
    UpdateBounds(view);
    if (!(list_->Action & LayerActions::Show)) return;
    // The group's pen and brush stand in for a layer's for members that
    // have none of their own.
    const ShapeAttr inherited = Attr ? *Attr : view.EffectiveAttr(*this);
    DeviceRect membersClip = clip;
    list_->Draw(dc, membersClip, view, mode, &inherited);
}

void CGroupShape::DrawHandles(DeviceContext& dc, uint32_t rop, ShapeContext& view)
{
    WalkDeep(*list_, [&](CObjShape& shape) {
        if (!shape.GroupList()) shape.DrawHandles(dc, rop, view);
        return true;
    });
}

int32_t CGroupShape::HitTest(DevicePoint point, ShapeContext& view)
{
    for (const auto& member : list_->Shapes) {
        const bool missed = WalkShapeDeep(*member, [&](CObjShape& shape) {
            return shape.GroupList() || !shape.HitTest(point, view);
        });
        if (!missed) return member->Number;
    }
    return 0;
}

int16_t CGroupShape::NearestPoint(DevicePoint point, ShapeContext& view) const
{
    const WorldPoint q = view.World.DeviceToWorld(point);
    return Distance(q, GetPoint(1, view)) < Distance(q, GetPoint(0, view)) ? 1 : 0;
}

std::unique_ptr<CGroupShape> CGroupShape::EmptyCopy(const CGroupShape& source, int16_t withAttr)
{
    auto copy = std::make_unique<CGroupShape>();
    source.CopyBaseTo(*copy);
    CopyAttrIf(source, *copy, withAttr);
    return copy;
}

std::unique_ptr<CObjShape> CGroupShape::Clone(int16_t withAttr) const
{
    std::unique_ptr<CGroupShape> copy = EmptyCopy(*this, withAttr);
    struct Frame {
        CGroupShape* from;
        size_t next;
        CGroupShape* to;
    };
    std::vector<Frame> stack{{const_cast<CGroupShape*>(this), 0, copy.get()}};
    while (!stack.empty()) {
        Frame& top = stack.back();
        CadLayer& members = *top.from->list_;
        if (top.next >= members.Shapes.size()) {
            // The source takes the copy's fresh flags, so that a group and
            // its copy both start shown.
            members.Action = top.to->list_->Action;
            members.SearchMethods = top.to->list_->SearchMethods;
            stack.pop_back();
            continue;
        }
        CObjShape& member = *members.Shapes[top.next++];
        CGroupShape* to = top.to;
        if (CGroupShape* inner = AsGroup(&member)) {
            std::unique_ptr<CGroupShape> shell = EmptyCopy(*inner, withAttr);
            CGroupShape* innerCopy = shell.get();
            to->AddMember(std::move(shell));
            stack.push_back({inner, 0, innerCopy});
        } else {
            to->AddMember(member.Clone(withAttr));
        }
    }
    return copy;
}

void CGroupShape::SetSearchMethod(int16_t method)
{
    WalkDeep(*list_, [&](CObjShape& shape) {
        shape.CObjShape::SetSearchMethod(method);
        return true;
    });
    CObjShape::SetSearchMethod(method);
}

} // namespace bvx
