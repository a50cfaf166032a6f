// Calls through IDispatch that the control cannot take: each gives an
// HRESULT and changes nothing, and the control answers afterwards.
#include "ClientSupport.h"

namespace bvx::client {
namespace {

constexpr DISPID kDrawLine = 136;
constexpr DISPID kWorldLeft = 52;
constexpr DISPID kCadShapeCount = 189;
constexpr DISPID kLayerName = 59;
constexpr WORD kMethod = DISPATCH_METHOD;
constexpr WORD kPut = DISPATCH_PROPERTYPUT;
const std::vector<DISPID> kValue = {DISPID_PROPERTYPUT};

struct BadCall {
    const char* what;
    DISPID dispid;
    WORD flags;
    std::vector<Value> args;   // in declaration order
    std::vector<DISPID> named; // for the last args, the last first
    HRESULT expected;
};

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
    const V zero = V::R8(0), five = V::R8(5);
    const std::vector<Value> line = {zero, zero, five, five};
    auto with = [&](std::vector<Value> more) {
        more.insert(more.begin(), line.begin(), line.end());
        return more;
    };
    return {
        {"an unknown dispid", 9999, kMethod, {}, {}, DISP_E_MEMBERNOTFOUND},
        {"a write to a read-only property", kCadShapeCount, kPut, {V::I4(3)}, kValue, DISP_E_MEMBERNOTFOUND},
        {"a method read as a property", kDrawLine, DISPATCH_PROPERTYGET, line, {}, DISP_E_MEMBERNOTFOUND},
        {"text for a number", kDrawLine, kMethod, {V::Text(L"left"), zero, five, five}, {}, DISP_E_TYPEMISMATCH},
        {"an object for a number", kDrawLine, kMethod, {NullObject(), zero, five, five}, {}, DISP_E_TYPEMISMATCH},
        {"a layer beyond 16 bits", kDrawLine, kMethod, with({V::I4(70000)}), {}, DISP_E_OVERFLOW},
        {"too few arguments", kDrawLine, kMethod, {zero, zero}, {}, DISP_E_PARAMNOTOPTIONAL},
        {"too many arguments", kDrawLine, kMethod, with({V::I2(1), V::I2(1)}), {}, DISP_E_BADPARAMCOUNT},
        {"a named argument past the last", kDrawLine, kMethod, with({V::I2(1)}), {9}, DISP_E_PARAMNOTFOUND},
        {"a named argument that is also positional", kDrawLine, kMethod, line, {0}, DISP_E_PARAMNOTFOUND},
        {"a write without its value", kWorldLeft, kPut, {V::R8(3)}, {}, DISP_E_PARAMNOTOPTIONAL},
        {"an indexed write without its index", kLayerName, kPut, {V::Text(L"x")}, kValue, DISP_E_PARAMNOTOPTIONAL},
        {"text for an edge", kWorldLeft, kPut, {V::Text(L"west")}, kValue, DISP_E_TYPEMISMATCH},
    };
}

TEST(BadInput, EachCallGivesItsCodeAndChangesNothing)
{
    Ref<IBvxCAD> control = NewControl();
    long before = 0;
    ASSERT_EQ(control->DrawRectangle(0, 0, 1, 1, 1, &before), S_OK);
    double left = 0;
    control->get_WorldLeft(&left);
    for (const BadCall& call : BadCalls()) {
        Outcome outcome = InvokeById(control.get(), call.dispid, call.flags, call.args, call.named);
        EXPECT_EQ(HexCode(outcome.hr), HexCode(call.expected)) << call.what;
        EXPECT_EQ(outcome.result.Type(), VT_EMPTY) << call.what;
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
    Value result;
    auto invoke = [&](DISPID dispid, DISPPARAMS* params, REFIID riid = IID_NULL) {
        return control->Invoke(dispid, riid, 0, DISPATCH_PROPERTYGET | kMethod, params, result.get(), nullptr, nullptr);
    };
    DISPPARAMS moreNamedThanGiven{nullptr, nullptr, 0, 1};
    DISPPARAMS countsWithoutArrays{nullptr, nullptr, 2, 0};
    DISPPARAMS none{nullptr, nullptr, 0, 0};
    EXPECT_EQ(invoke(kCadShapeCount, nullptr), E_INVALIDARG);
    EXPECT_EQ(invoke(kCadShapeCount, &moreNamedThanGiven), E_INVALIDARG);
    EXPECT_EQ(invoke(kDrawLine, &countsWithoutArrays), E_INVALIDARG);
    EXPECT_EQ(invoke(kCadShapeCount, &none, IID_IDispatch), DISP_E_UNKNOWNINTERFACE);
    EXPECT_EQ(result.Type(), VT_EMPTY);
    EXPECT_EQ(control->put_BackColor(5), S_OK);
}

TEST(BadInput, NamesAndNamedArgumentsThatDoWork)
{
    Ref<IBvxCAD> control = NewControl();
    LPOLESTR names[] = {const_cast<LPOLESTR>(L"drawLINE"), const_cast<LPOLESTR>(L"layernumber"),
                        const_cast<LPOLESTR>(L"Y2"), const_cast<LPOLESTR>(L"Colour")};
    DISPID ids[4] = {};
    EXPECT_EQ(control->GetIDsOfNames(IID_NULL, names, 4, 0, ids), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(std::vector<DISPID>(ids, ids + 4), (std::vector<DISPID>{kDrawLine, 4, 3, DISPID_UNKNOWN}));
    LPOLESTR unknown[] = {const_cast<LPOLESTR>(L"DrawTriangle")};
    EXPECT_EQ(control->GetIDsOfNames(IID_NULL, unknown, 1, 0, ids), DISP_E_UNKNOWNNAME);
    EXPECT_EQ(ids[0], DISPID_UNKNOWN);

    // The layer passed by name, the rest by position; a number by reference.
    LONG byReference = 1;
    Value x2;
    V_VT(x2.get()) = VT_BYREF | VT_I4;
    V_I4REF(x2.get()) = &byReference;
    Outcome drawn = InvokeById(control.get(), kDrawLine, kMethod,
                               {Value::R8(0), Value::R8(0), x2, Value::R8(5), Value::I2(1)}, {4});
    ASSERT_EQ(drawn.hr, S_OK);
    short onLayer = -1;
    control->ShapeOnLayer(V_I4(drawn.result.get()), &onLayer);
    EXPECT_EQ(onLayer, 1);
    double read = 0;
    control->ShapePointGetX(V_I4(drawn.result.get()), 1, &read);
    EXPECT_EQ(read, 1.0) << "the value behind the reference";
}

} // namespace
} // namespace bvx::client
