// Calls through IDispatch that the control cannot take: each gives an
// HRESULT and changes nothing, and the control answers afterwards.
#include "ClientSupport.h"

namespace bvx::client {
namespace {

struct BadCall {
    const char* what;
    DISPID dispid;
    WORD flags;
    std::vector<Value> args;   // in declaration order
    std::vector<DISPID> named; // dispids of the first args, if named
    HRESULT expected;
};

constexpr DISPID kDrawLine = 136;
constexpr DISPID kWorldLeft = 52;
constexpr DISPID kCadShapeCount = 189;
constexpr DISPID kLayerName = 59;

Value Reference(LONG* target)
{
    Value v;
    V_VT(v.get()) = VT_BYREF | VT_I4;
    V_I4REF(v.get()) = target;
    return v;
}

Value NullObject()
{
    Value v;
    V_VT(v.get()) = VT_DISPATCH;
    V_DISPATCH(v.get()) = nullptr;
    return v;
}

std::vector<BadCall> BadCalls()
{
    using V = Value;
    const std::vector<Value> line = {V::R8(0), V::R8(0), V::R8(5), V::R8(5)};
    auto with = [&](std::vector<Value> more) {
        std::vector<Value> all = line;
        all.insert(all.end(), more.begin(), more.end());
        return all;
    };
    return {
        {"an unknown dispid", 9999, DISPATCH_METHOD, {}, {}, DISP_E_MEMBERNOTFOUND},
        {"a write to a read-only property",
         kCadShapeCount,
         DISPATCH_PROPERTYPUT,
         {V::I4(3)},
         {DISPID_PROPERTYPUT},
         DISP_E_MEMBERNOTFOUND},
        {"a method read as a property", kDrawLine, DISPATCH_PROPERTYGET, line, {}, DISP_E_MEMBERNOTFOUND},
        {"text for a number",
         kDrawLine,
         DISPATCH_METHOD,
         {V::Text(L"left"), V::R8(0), V::R8(5), V::R8(5)},
         {},
         DISP_E_TYPEMISMATCH},
        {"an object for a number",
         kDrawLine,
         DISPATCH_METHOD,
         {NullObject(), V::R8(0), V::R8(5), V::R8(5)},
         {},
         DISP_E_TYPEMISMATCH},
        {"a layer beyond 16 bits", kDrawLine, DISPATCH_METHOD, with({V::I4(70000)}), {}, DISP_E_OVERFLOW},
        {"too few arguments", kDrawLine, DISPATCH_METHOD, {V::R8(0), V::R8(0)}, {}, DISP_E_PARAMNOTOPTIONAL},
        {"too many arguments", kDrawLine, DISPATCH_METHOD, with({V::I2(1), V::I2(1)}), {}, DISP_E_BADPARAMCOUNT},
        {"a named argument past the last", kDrawLine, DISPATCH_METHOD, with({V::I2(1)}), {9}, DISP_E_PARAMNOTFOUND},
        {"a named argument that is also positional", kDrawLine, DISPATCH_METHOD, line, {0}, DISP_E_PARAMNOTFOUND},
        {"a write without its value", kWorldLeft, DISPATCH_PROPERTYPUT, {V::R8(3)}, {}, DISP_E_PARAMNOTOPTIONAL},
        {"an indexed write without its index",
         kLayerName,
         DISPATCH_PROPERTYPUT,
         {V::Text(L"x")},
         {DISPID_PROPERTYPUT},
         DISP_E_PARAMNOTOPTIONAL},
        {"text for an edge",
         kWorldLeft,
         DISPATCH_PROPERTYPUT,
         {V::Text(L"west")},
         {DISPID_PROPERTYPUT},
         DISP_E_TYPEMISMATCH},
    };
}

// Invoke with args in declaration order; the first named.size() of them
// travel as named arguments.
HRESULT InvokeRaw(IDispatch* control, const BadCall& call, VARIANT* result)
{
    std::vector<VARIANT> packed;
    const size_t named = call.named.size();
    // Named ones first, in the order given, then positional ones last first.
    for (size_t i = 0; i < named && i < call.args.size(); ++i) packed.push_back(*call.args[call.args.size() - 1 - i]);
    for (size_t i = call.args.size() - named; i-- > 0;) packed.push_back(*call.args[i]);
    std::vector<DISPID> names(call.named.begin(), call.named.end());
    DISPPARAMS params{packed.data(), names.empty() ? nullptr : names.data(), UINT(packed.size()), UINT(names.size())};
    UINT argError = 0;
    return control->Invoke(call.dispid, IID_NULL, LOCALE_USER_DEFAULT, call.flags, &params, result, nullptr, &argError);
}

TEST(BadInput, EachCallGivesItsCodeAndChangesNothing)
{
    Ref<IBvxCAD> control = NewControl();
    long before = 0;
    ASSERT_EQ(control->DrawRectangle(0, 0, 1, 1, 1, &before), S_OK);
    double left = 0;
    control->get_WorldLeft(&left);
    for (const BadCall& call : BadCalls()) {
        Value result;
        EXPECT_EQ(HexCode(InvokeRaw(control.get(), call, result.get())), HexCode(call.expected)) << call.what;
        EXPECT_EQ(result.Type(), VT_EMPTY) << call.what;
        long count = 0;
        ASSERT_EQ(control->get_CadShapeCount(&count), S_OK) << call.what;
        EXPECT_EQ(count, 1) << call.what;
        double now = 0;
        control->get_WorldLeft(&now);
        EXPECT_EQ(now, left) << call.what;
    }
}

TEST(BadInput, MalformedParametersAreRefused)
{
    Ref<IBvxCAD> control = NewControl();
    VARIANT result;
    VariantInit(&result);
    EXPECT_EQ(control->Invoke(kCadShapeCount, IID_NULL, 0, DISPATCH_PROPERTYGET, nullptr, &result, nullptr, nullptr),
              E_INVALIDARG);
    DISPPARAMS moreNamedThanGiven{nullptr, nullptr, 0, 1};
    EXPECT_EQ(control->Invoke(kCadShapeCount, IID_NULL, 0, DISPATCH_PROPERTYGET, &moreNamedThanGiven, &result, nullptr,
                              nullptr),
              E_INVALIDARG);
    DISPPARAMS countsWithoutArrays{nullptr, nullptr, 2, 0};
    EXPECT_EQ(control->Invoke(kDrawLine, IID_NULL, 0, DISPATCH_METHOD, &countsWithoutArrays, &result, nullptr, nullptr),
              E_INVALIDARG);
    DISPPARAMS none{nullptr, nullptr, 0, 0};
    EXPECT_EQ(control->Invoke(kCadShapeCount, IID_IDispatch, 0, DISPATCH_PROPERTYGET, &none, &result, nullptr, nullptr),
              DISP_E_UNKNOWNINTERFACE);
    EXPECT_EQ(control->put_BackColor(5), S_OK);
}

TEST(BadInput, NamesAndNamedArgumentsThatDoWork)
{
    Ref<IBvxCAD> control = NewControl();
    LPOLESTR names[] = {const_cast<LPOLESTR>(L"drawLINE"), const_cast<LPOLESTR>(L"layernumber"),
                        const_cast<LPOLESTR>(L"Y2"), const_cast<LPOLESTR>(L"Colour")};
    DISPID ids[4] = {};
    EXPECT_EQ(control->GetIDsOfNames(IID_NULL, names, 4, 0, ids), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(ids[0], kDrawLine);
    EXPECT_EQ(ids[1], 4);
    EXPECT_EQ(ids[2], 3);
    EXPECT_EQ(ids[3], DISPID_UNKNOWN);
    LPOLESTR unknown[] = {const_cast<LPOLESTR>(L"DrawTriangle")};
    EXPECT_EQ(control->GetIDsOfNames(IID_NULL, unknown, 1, 0, ids), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(ids[0], DISPID_UNKNOWN);

    // The layer passed by name, the rest by position; a number by reference.
    LONG layer = 1;
    BadCall named{"named layer",
                  kDrawLine,
                  DISPATCH_METHOD,
                  {Value::R8(0), Value::R8(0), Reference(&layer), Value::R8(5), Value::I2(1)},
                  {4},
                  S_OK};
    Value drawn;
    ASSERT_EQ(InvokeRaw(control.get(), named, drawn.get()), S_OK);
    short onLayer = -1;
    control->ShapeOnLayer(V_I4(drawn.get()), &onLayer);
    EXPECT_EQ(onLayer, 1);
    double x2 = 0;
    control->ShapePointGetX(V_I4(drawn.get()), 1, &x2);
    EXPECT_EQ(x2, 1.0) << "the value behind the reference";
}

} // namespace
} // namespace bvx::client
