#include "VariantPrint.h"
#include "shapes/ShapeTestSupport.h"

#include <cmath>

namespace bvx {
namespace {

using members::Kind;

// A host's view of the control in a 101 by 101 window: everything goes through Invoke by name.
class Host : public shapetest::ControlTest {
protected:
    Variant Call(std::u16string_view name, std::vector<Variant> args = {}, HResult expect = hresult::Ok)
    {
        Variant result;
        EXPECT_EQ(control.Invoke(name, Kind::Method, args, &result), expect) << ToUtf8(std::u16string(name));
        return result;
    }
    Variant Get(std::u16string_view name, std::vector<Variant> args = {}, HResult expect = hresult::Ok)
    {
        Variant result = Variant::Error(777);
        EXPECT_EQ(control.Invoke(name, Kind::PropertyGet, args, &result), expect) << ToUtf8(std::u16string(name));
        return result;
    }
    void Put(std::u16string_view name, std::vector<Variant> args, HResult expect = hresult::Ok)
    {
        EXPECT_EQ(control.Invoke(name, Kind::PropertyPut, args, nullptr), expect) << ToUtf8(std::u16string(name));
    }
    static Variant I(int32_t v) { return Variant::I4(v); }
    static Variant R(double v) { return Variant::R8(v); }
    static Variant S(std::u16string v) { return Variant::String(std::move(v)); }
};

TEST_F(Host, UnknownNamesAndKindsAreRefused)
{
    Variant unused;
    EXPECT_EQ(control.Invoke(u"NoSuchMember", Kind::Method, {}, &unused), hresult::UnknownName);
    EXPECT_EQ(control.Invoke(9999, Kind::Method, {}, &unused), hresult::MemberNotFound);
    EXPECT_EQ(control.Invoke(u"LayerCount", Kind::Method, {}, &unused), hresult::MemberNotFound);
}

TEST_F(Host, ArgumentsConvertAsThePlatformDoes)
{
    Put(u"WorldCoordPrecision", {I(5)});
    Put(u"WorldCoordPrecision", {I(40000)}, hresult::Overflow);
    Put(u"WorldCoordPrecision", {S(u"five")}, hresult::TypeMismatch);
    EXPECT_EQ(Get(u"WorldCoordPrecision"), Variant::I2(5)); // a refused put changes nothing
    Call(u"DrawLine", {R(0), R(0), S(u"abc"), R(1)}, hresult::TypeMismatch);
    Call(u"DrawLine", {R(0), R(0), R(1)}, hresult::ParamNotOptional);
    Call(u"DrawLine", {R(0), R(0), R(1), R(1), I(1), I(1)}, hresult::BadParamCount);
    Call(u"DrawLine", {R(0), R(0), Variant::Missing(), R(1), I(1)}, hresult::ParamNotOptional);
    EXPECT_EQ(Get(u"CadShapeCount"), I(0));
}

TEST_F(Host, DesignTimeGatesTheRowsThatSaySo)
{
    Variant n = Call(u"DrawRectangle", {R(10), R(10), R(20), R(20), I(1)});
    window.userMode = false;
    EXPECT_EQ(Get(u"ShapeArea", {n}, hresult::GetNotSupported), Variant::Error(777));
    EXPECT_EQ(Get(u"LayerCount", {}, hresult::GetNotSupported), Variant::Error(777));
    EXPECT_EQ(Get(u"GridOn"), Variant::Bool(false)); // not gated
    Put(u"LayerNumber", {I(1)});                    // puts are never gated
    window.userMode = true;
    EXPECT_EQ(Get(u"ShapeArea", {n}), R(100));

    // A host's own source of the user mode is asked at each gated read, and
    // overrides the window's.
    bool sourceSays = false;
    int asked = 0;
    control.SetUserModeSource([&] { return ++asked, sourceSays; });
    EXPECT_EQ(Get(u"ShapeArea", {n}, hresult::GetNotSupported), Variant::Error(777));
    EXPECT_EQ(Get(u"GridOn"), Variant::Bool(false));
    EXPECT_EQ(asked, 1) << "only gated rows ask";
    sourceSays = true;
    window.userMode = false;
    EXPECT_EQ(Get(u"ShapeArea", {n}), R(100));

    CadControl headless; // no window: run time, unless a source says otherwise
    EXPECT_TRUE(headless.UserMode());
    headless.SetUserModeSource([] { return false; });
    Variant untouched = Variant::Error(777);
    EXPECT_EQ(headless.Invoke(u"LayerCount", Kind::PropertyGet, {}, &untouched), hresult::GetNotSupported);
    EXPECT_EQ(untouched, Variant::Error(777));
    headless.SetUserModeSource(nullptr);
    EXPECT_EQ(headless.Invoke(u"LayerCount", Kind::PropertyGet, {}, &untouched), hresult::Ok);
}

// ViewHeight and ViewWidth are declared int: their results travel as Int,
// which converts exactly as I4 does, in and out.
TEST_F(Host, IntResultsConvertAsI4Does)
{
    EXPECT_EQ(Get(u"ViewHeight"), Variant::Int(101));
    EXPECT_EQ(Get(u"ViewWidth"), Variant::Int(101));

    const Variant inputs[] = {Variant(), Variant::I2(-7), Variant::I4(INT32_MIN), Variant::R8(2.5), Variant::R8(3.5),
                              Variant::R8(-2147483648.6), Variant::R8(2147483647.4), Variant::R8(1e300),
                              Variant::R8(std::nan("")), Variant::Bool(true), S(u" 42 "), S(u"4e3"), S(u"many"),
                              Variant::Null(), Variant::Missing()};
    for (const Variant& in : inputs) {
        Variant asI4, asInt;
        EXPECT_EQ(ChangeType(in, VarType::Int, asInt), ChangeType(in, VarType::I4, asI4))
            << ::testing::PrintToString(in);
        EXPECT_EQ(asInt, asI4.Type() == VarType::I4 ? Variant::Int(int32_t(asI4.Integer())) : asI4);
    }
    for (int32_t v : {0, -1, 40000, INT32_MAX}) {
        for (VarType to : {VarType::I2, VarType::I4, VarType::Int, VarType::R8, VarType::Bool, VarType::Bstr}) {
            Variant fromI4, fromInt;
            EXPECT_EQ(ChangeType(Variant::Int(v), to, fromInt), ChangeType(Variant::I4(v), to, fromI4)) << v;
            EXPECT_EQ(fromInt, fromI4) << v << " to " << int(to);
        }
    }
}

} // namespace
} // namespace bvx
