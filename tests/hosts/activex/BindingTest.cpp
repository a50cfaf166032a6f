// Early and late binding meet: the type library's vtable is the member
// table's, entry by entry and type by type, and a call through the vtable (by
// the platform's own type-library dispatch) gives what the same call through
// Invoke gives.
#include "ClientSupport.h"

#include "control/MemberSpec.h"

namespace bvx::client {
namespace {

using members::AutoType;
using members::Kind;

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

// Each function the type information describes, in vtable order.
template <typename Visit> void ForEachFunction(ITypeInfo* info, Visit visit)
{
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(info->GetTypeAttr(&attributes), S_OK);
    EXPECT_EQ(attributes->typekind, TKIND_INTERFACE);
    const UINT count = attributes->cFuncs;
    info->ReleaseTypeAttr(attributes);
    for (UINT i = 0; i < count; ++i) {
        FUNCDESC* function = nullptr;
        ASSERT_EQ(info->GetFuncDesc(i, &function), S_OK);
        visit(i, *function);
        info->ReleaseFuncDesc(function);
    }
}

// How the type library holds a declared type: OLE_COLOR and the tool
// enumeration are types of its own.
VARTYPE LibraryType(AutoType type)
{
    switch (type) {
    case AutoType::I2: return VT_I2;
    case AutoType::I4: return VT_I4;
    case AutoType::Int: return VT_INT;
    case AutoType::R8: return VT_R8;
    case AutoType::Bool: return VT_BOOL;
    case AutoType::Bstr: return VT_BSTR;
    case AutoType::Variant: return VT_VARIANT;
    case AutoType::Color:
    case AutoType::Tool: return VT_USERDEFINED;
    case AutoType::Void: break;
    }
    return VT_VOID;
}

// A call through the vtable, made by the platform from the type library.
Outcome CallThroughVtable(ITypeInfo* info, IBvxCAD* control, const wchar_t* name, WORD flags,
                          const std::vector<Value>& args)
{
    MEMBERID id = 0;
    LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
    EXPECT_EQ(info->GetIDsOfNames(names, 1, &id), S_OK) << Narrow(name);
    return Packed(args, NamesFor(flags), [&](DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception) {
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
    const size_t dispatchEntries = 7; // IUnknown's three and IDispatch's four
    size_t functions = 0;
    ForEachFunction(info.get(), [&](UINT i, const FUNCDESC& function) {
        ++functions;
        ASSERT_LT(i, std::size(members::kMemberRows));
        const members::MemberRow& row = members::kMemberRows[i];
        EXPECT_EQ(function.memid, row.dispid) << row.name;
        EXPECT_EQ(size_t(function.oVft), (dispatchEntries + i) * sizeof(void*)) << row.name;
        const INVOKEKIND kind = row.kind == Kind::PropertyGet   ? INVOKE_PROPERTYGET
                                : row.kind == Kind::PropertyPut ? INVOKE_PROPERTYPUT
                                                                : INVOKE_FUNC;
        EXPECT_EQ(function.invkind, kind) << row.name;
        EXPECT_EQ((function.wFuncFlags & FUNCFLAG_FHIDDEN) != 0, row.name.starts_with("HiddenViewDialog")) << row.name;
        // The arguments, then a put's value or the result through a pointer.
        std::vector<VARTYPE> expected;
        for (const members::ArgSpec& arg : row.args) expected.push_back(LibraryType(arg.type));
        if (row.kind == Kind::PropertyPut) expected.push_back(LibraryType(row.result));
        const bool result = row.kind != Kind::PropertyPut && row.result != AutoType::Void;
        std::vector<VARTYPE> declared;
        for (SHORT p = 0; p < function.cParams; ++p) {
            const TYPEDESC& type = function.lprgelemdescParam[p].tdesc;
            declared.push_back(result && p + 1 == function.cParams && type.vt == VT_PTR ? type.lptdesc->vt : type.vt);
        }
        if (result) expected.push_back(LibraryType(row.result));
        EXPECT_EQ(declared, expected) << row.name;
    });
    EXPECT_EQ(functions, std::size(members::kMemberRows));
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
        {L"ShapeArea", kGet, {V::I4(1)}},
        {L"ShapeType", kGet, {V::I4(2)}},
        {L"ShapeSelect", kMethod, {V::I4(2), V::Bool(false)}},
        {L"ShapePointGetX", kMethod, {V::I4(1), V::I2(1)}},
        {L"ShapePenWidth", kPut, {V::I4(1), V::I2(3)}},
        {L"ShapePenWidth", kGet, {V::I4(1)}},
        {L"ShapeHitTest", kMethod, {V::R8(30), V::R8(30)}},
        {L"GridSet", kMethod, {V::Bool(true), V::R8(2.5), V::R8(5), V::I4(0x00FF00)}},
        {L"BackColor", kPut, {V::I4(0x0000FF)}},
        {L"ViewSnapMarkerColor", kPut, {V::Of(VT_UI4, 0x80000005)}}, // a system colour, as an OLE_COLOR comes
        {L"ViewMouseTool", kPut, {V::I4(bvxPolygon)}},
        {L"WorldToAbsX", kGet, {V::R8(12.5)}},
        {L"ShapeToLayer", kMethod, {V::I4(1), V::I2(2), V::Bool(true)}},
    };
}

TEST(Binding, TheSameCallsGiveTheSameAnswersEitherWay)
{
    Ref<IBvxCAD> late = NewControl();
    Ref<IBvxCAD> early = NewControl();
    Ref<ITypeInfo> info = VtableTypeInfo(early.get());
    auto both = [&](const wchar_t* name, WORD flags, const std::vector<Value>& args) {
        Outcome byInvoke = Call(late.get(), name, flags, args);
        Outcome byVtable = CallThroughVtable(info.get(), early.get(), name, flags, args);
        EXPECT_EQ(byInvoke.hr, byVtable.hr) << Narrow(name);
        EXPECT_TRUE(SameAnswer(byInvoke.result, byVtable.result)) << Narrow(name);
        return byInvoke.hr;
    };
    for (const Step& step : Steps()) EXPECT_EQ(both(step.name, step.flags, step.args), S_OK) << Narrow(step.name);
    // Every property read without arguments, once the drawing is made, with
    // the flags a script host passes.
    ForEachFunction(info.get(), [&](UINT, const FUNCDESC& function) {
        if (function.invkind != INVOKE_PROPERTYGET || function.cParams != 1) return;
        BSTR name = nullptr;
        UINT count = 0;
        info->GetNames(function.memid, &name, 1, &count);
        both(name, kGet | kMethod, {});
        SysFreeString(name);
    });

    // And straight through the compiled vtable.
    BSTR layer = nullptr;
    ASSERT_EQ(early->get_LayerName(2, &layer), S_OK);
    EXPECT_EQ(Value::Text(layer), Get(late.get(), L"LayerName", {Value::I2(2)}).result);
    SysFreeString(layer);
    int height = -1;
    ASSERT_EQ(early->get_ViewHeight(&height), S_OK);
    EXPECT_EQ(height, 0) << "a view without a window";
}

} // namespace
} // namespace bvx::client
