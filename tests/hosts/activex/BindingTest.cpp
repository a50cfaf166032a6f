// Early and late binding meet: the type library's vtable layout is the
// member table's, and a call through the vtable (by the platform's own
// type-library dispatch) gives what the same call through Invoke gives.
#include "ClientSupport.h"

#include "control/MemberSpec.h"

namespace bvx::client {
namespace {

// The vtable half of the dual interface, as the type library describes it.
Ref<ITypeInfo> VtableTypeInfo(IBvxCAD* control)
{
    Ref<ITypeInfo> dispatchInfo, vtableInfo;
    EXPECT_EQ(control->GetTypeInfo(0, LOCALE_USER_DEFAULT, dispatchInfo.Out()), S_OK);
    HREFTYPE ref = 0;
    EXPECT_EQ(dispatchInfo->GetRefTypeOfImplType(-1, &ref), S_OK);
    EXPECT_EQ(dispatchInfo->GetRefTypeInfo(ref, vtableInfo.Out()), S_OK);
    return vtableInfo;
}

// A call through the vtable, made by the platform from the type library.
Outcome CallThroughVtable(ITypeInfo* info, IBvxCAD* control, const wchar_t* name, WORD flags, std::vector<Value> args)
{
    MEMBERID id = 0;
    LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
    EXPECT_EQ(info->GetIDsOfNames(names, 1, &id), S_OK);
    return Packed(flags, args, [&](DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception) {
        return info->Invoke(control, id, flags, params, result, exception, nullptr);
    });
}

// Colours travel through Invoke as VT_I4, though the type library's
// OLE_COLOR makes the platform's own dispatch give VT_UI4: Wine's VBScript
// can neither compare nor add a VT_UI4 (errors 13 and 458), so a script
// could not test a colour it read. The bits must agree.
::testing::AssertionResult SameAnswer(const Value& byInvoke, const Value& byVtable)
{
    if (byInvoke.Type() == VT_I4 && byVtable.Type() == VT_UI4) {
        if (ULONG(V_I4(&*byInvoke)) == V_UI4(&*byVtable)) return ::testing::AssertionSuccess();
    } else if (byInvoke == byVtable) {
        return ::testing::AssertionSuccess();
    }
    return ::testing::AssertionFailure() << byInvoke << " through Invoke, " << byVtable << " through the vtable";
}

TEST(Binding, TypeLibraryVtableFollowsTheMemberTable)
{
    Ref<IBvxCAD> control = NewControl();
    Ref<ITypeInfo> info = VtableTypeInfo(control.get());
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
    EXPECT_EQ(attributes->typekind, TKIND_INTERFACE);
    ASSERT_EQ(size_t(attributes->cFuncs), std::size(members::kMemberRows));
    const size_t dispatchEntries = 7; // IUnknown's three and IDispatch's four
    for (UINT i = 0; i < attributes->cFuncs; ++i) {
        FUNCDESC* function = nullptr;
        ASSERT_EQ(info->GetFuncDesc(i, &function), S_OK);
        const members::MemberRow& row = members::kMemberRows[i];
        EXPECT_EQ(function->memid, row.dispid) << row.name;
        EXPECT_EQ(size_t(function->oVft), (dispatchEntries + i) * sizeof(void*)) << row.name;
        const INVOKEKIND kind = row.kind == members::Kind::PropertyGet   ? INVOKE_PROPERTYGET
                                : row.kind == members::Kind::PropertyPut ? INVOKE_PROPERTYPUT
                                                                         : INVOKE_FUNC;
        EXPECT_EQ(function->invkind, kind) << row.name;
        info->ReleaseFuncDesc(function);
    }
    info->ReleaseTypeAttr(attributes);
}

struct Step {
    const wchar_t* name;
    WORD flags;
    std::vector<Value> args;
};

constexpr WORD kMethod = DISPATCH_METHOD;
constexpr WORD kGet = DISPATCH_PROPERTYGET;
constexpr WORD kPut = DISPATCH_PROPERTYPUT;

std::vector<Step> Steps()
{
    using V = Value;
    return {
        {L"WorldSet", kMethod, {V::R8(-10), V::R8(60), V::R8(90), V::R8(-5)}},
        {L"DrawRectangle", kMethod, {V::R8(0), V::R8(0), V::R8(20), V::R8(10), V::I2(1)}},
        {L"DrawCircle", kMethod, {V::R8(30), V::R8(30), V::R8(4), V::I2(1)}},
        {L"DrawLine", kMethod, {V::R8(0), V::R8(0), V::R8(40), V::R8(40)}},
        {L"LayerOpen", kMethod, {V::Text(L"Doors")}},
        {L"LayerName", kPut, {V::I2(2), V::Text(L"Windows")}},
        {L"LayerName", kGet, {V::I2(2)}},
        {L"LayerNames", kGet, {}},
        {L"ShapeArea", kGet, {V::I4(1)}},
        {L"ShapeType", kGet, {V::I4(2)}},
        {L"ShapeSelect", kMethod, {V::I4(2), V::Bool(false)}},
        {L"ShapeSelectCount", kGet, {}},
        {L"ShapePointGetX", kMethod, {V::I4(1), V::I2(1)}},
        {L"ShapePenWidth", kPut, {V::I4(1), V::I2(3)}},
        {L"ShapePenWidth", kGet, {V::I4(1)}},
        {L"ShapeHitTest", kMethod, {V::R8(30), V::R8(30)}},
        {L"GridSet", kMethod, {V::Bool(true), V::R8(2.5), V::R8(5), V::I4(0x00FF00)}},
        {L"GridOn", kGet, {}},
        {L"GridColor", kGet, {}},
        {L"BackColor", kPut, {V::I4(0x0000FF)}},
        {L"BackColor", kGet, {}},
        {L"ViewMouseTool", kPut, {V::I4(bvxPolygon)}},
        {L"ViewMouseTool", kGet, {}},
        {L"WorldToAbsX", kGet, {V::R8(12.5)}},
        {L"ShapeToLayer", kMethod, {V::I4(1), V::I2(2), V::Bool(true)}},
        {L"CadShapeCount", kGet, {}},
    };
}

TEST(Binding, TheSameCallsGiveTheSameAnswersEitherWay)
{
    Ref<IBvxCAD> late = NewControl();
    Ref<IBvxCAD> early = NewControl();
    Ref<ITypeInfo> info = VtableTypeInfo(early.get());
    for (const Step& step : Steps()) {
        Outcome byInvoke = Call(late.get(), step.name, step.flags, step.args);
        Outcome byVtable = CallThroughVtable(info.get(), early.get(), step.name, step.flags, step.args);
        const std::string name(step.name, step.name + wcslen(step.name));
        EXPECT_EQ(byInvoke.hr, S_OK) << name;
        EXPECT_EQ(byVtable.hr, S_OK) << name;
        EXPECT_TRUE(SameAnswer(byInvoke.result, byVtable.result)) << name;
    }
    // Every property read without arguments, once the drawing is made.
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
    for (UINT i = 0; i < attributes->cFuncs; ++i) {
        FUNCDESC* function = nullptr;
        info->GetFuncDesc(i, &function);
        BSTR name = nullptr;
        UINT count = 0;
        info->GetNames(function->memid, &name, 1, &count);
        if (function->invkind == INVOKE_PROPERTYGET && function->cParams == 1) {
            Outcome byInvoke = Get(late.get(), name);
            Outcome byVtable = CallThroughVtable(info.get(), early.get(), name, kGet, {});
            EXPECT_EQ(byInvoke.hr, byVtable.hr) << function->memid;
            EXPECT_TRUE(SameAnswer(byInvoke.result, byVtable.result)) << function->memid;
        }
        SysFreeString(name);
        info->ReleaseFuncDesc(function);
    }
    info->ReleaseTypeAttr(attributes);

    // And straight through the compiled vtable.
    BSTR layer = nullptr;
    ASSERT_EQ(early->get_LayerName(2, &layer), S_OK);
    EXPECT_EQ(Value::Text(layer), Get(late.get(), L"LayerName", {Value::I2(2)}).result);
    SysFreeString(layer);
}

} // namespace
} // namespace bvx::client
