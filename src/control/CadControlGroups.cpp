// Members that fill, empty and describe groups.
#include "CadControl.h"

#include "CadControlSupport.h"
#include "shapes/CGroupShape.h"

namespace bvx {

CGroupShape* CadControl::Group(int32_t number) const { return AsGroup(Shape(number)); }

bool CadControl::GroupAddShape(int32_t group, int32_t number)
{
    CGroupShape* target = Group(group);
    CObjShape* shape = Shape(number);
    if (!target || !shape || shape->Group != -1 || view_.Buf.IsWithin(shape, target)) return false;
    view_.CancelMouse();
    // The drag just cancelled may have taken either shape with it.
    target = Group(group);
    shape = Shape(number);
    if (!view_.Buf.GroupAddShape(target, shape)) return false;
    view_.InvalidateShape(shape, true);
    return true;
}

bool CadControl::GroupAddSelection(int32_t group)
{
    if (!Group(group)) return false;
    view_.CancelMouse();
    CGroupShape* target = Group(group);
    if (!target || view_.Buf.Selection.empty() || !view_.Buf.GroupAddSelection(target)) return false;
    view_.InvalidateShape(target, true);
    view_.Buf.FocusShape = nullptr;
    view_.Buf.FocusPoint = -1;
    return true;
}

bool CadControl::GroupRemoveShape(int32_t group, int32_t number)
{
    CGroupShape* owner = Group(group);
    CObjShape* shape = Shape(number);
    if (!owner || !shape || shape->Group != group) return false;
    if (!view_.Buf.GroupRemoveShape(owner, shape)) return false;
    view_.InvalidateShape(shape, true);
    return true;
}

bool CadControl::GroupRemoveAll(int32_t group)
{
    if (!view_.Buf.GroupRemoveAll(Group(group))) return false;
    view_.Redraw(RedrawMode::Full);
    return true;
}

int32_t CadControl::GetGroupShapeCount(int32_t group)
{
    const CGroupShape* g = Group(group);
    return g ? int32_t(g->MemberCount()) : -1;
}

Reply<Variant> CadControl::GetGroupShapeNumbers(int32_t group)
{
    CGroupShape* g = Group(group);
    if (!g) return Reply<Variant>::With(Variant::NullArray(VarType::I4), hresult::False);
    std::vector<Variant> numbers;
    for (const auto& member : g->GroupList()->Shapes) numbers.push_back(Variant::I4(member->Number));
    return Reply<Variant>::With(Variant::Array1D(VarType::I4, std::move(numbers)));
}

int16_t CadControl::GetGroupAction(int32_t group)
{
    CGroupShape* g = Group(group);
    return g ? g->GroupList()->Action : -1;
}

void CadControl::PutGroupAction(int32_t group, int16_t action)
{
    CGroupShape* g = Group(group);
    if (!g) return;
    g->GroupList()->SetAction(action);
    view_.Redraw(RedrawMode::Full);
}

} // namespace bvx
