#include "ClientSupport.h"

#include <cstdio>
#include <ostream>

namespace bvx::client {

namespace {

// One apartment for the whole run, as a form's thread has.
class ComApartment : public testing::Environment {
public:
    void SetUp() override { ASSERT_EQ(OleInitialize(nullptr), S_OK); }
    void TearDown() override { OleUninitialize(); }
};
const testing::Environment* const kApartment = testing::AddGlobalTestEnvironment(new ComApartment);

} // namespace

Value Value::Of(VARTYPE type, double v)
{
    Value number, out;
    V_VT(&number.v_) = VT_R8;
    V_R8(&number.v_) = v;
    EXPECT_EQ(VariantChangeType(&out.v_, &number.v_, 0, type), S_OK);
    return out;
}

Value Value::Text(const wchar_t* v)
{
    Value out;
    V_VT(&out.v_) = VT_BSTR;
    V_BSTR(&out.v_) = SysAllocString(v);
    return out;
}

double Value::Number() const
{
    VARIANT converted;
    VariantInit(&converted);
    if (FAILED(VariantChangeType(&converted, const_cast<VARIANT*>(&v_), 0, VT_R8))) return -999999.0;
    return V_R8(&converted);
}

bool Value::operator==(const Value& other) const
{
    if (Type() != other.Type()) return false;
    if (Type() == VT_BSTR) return VarBstrCmp(V_BSTR(&v_), V_BSTR(&other.v_), 0, 0) == VARCMP_EQ;
    if (Type() == VT_EMPTY) return true;
    return Number() == other.Number();
}

std::ostream& operator<<(std::ostream& out, const Value& v)
{
    out << "vt " << v.Type() << " ";
    if (v.Type() == VT_BSTR) {
        for (const OLECHAR* c = V_BSTR(&*v); c && *c; ++c) out << char(*c < 128 ? *c : '?');
        return out;
    }
    return out << v.Number();
}

Ref<IBvxCAD> NewControl()
{
    CLSID clsid{};
    EXPECT_EQ(CLSIDFromProgID(L"BvxCad.BvxCad", &clsid), S_OK) << "is the control registered?";
    IBvxCAD* control = nullptr;
    EXPECT_EQ(CoCreateInstance(clsid, nullptr, CLSCTX_INPROC_SERVER, IID_IBvxCAD, reinterpret_cast<void**>(&control)),
              S_OK);
    return Ref<IBvxCAD>(control);
}

Ref<IConnectionPoint> PointFor(IBvxCAD* control, const IID& iid)
{
    Ref<IConnectionPoint> point;
    EXPECT_EQ(
        As<IConnectionPointContainer>(control, IID_IConnectionPointContainer)->FindConnectionPoint(iid, point.Out()),
        S_OK);
    return point;
}

DWORD Connect(IBvxCAD* control, const IID& iid, IUnknown* sink)
{
    DWORD cookie = 0;
    EXPECT_EQ(PointFor(control, iid)->Advise(sink, &cookie), S_OK);
    return cookie;
}

std::vector<DISPID> NamesFor(WORD flags)
{
    return flags & DISPATCH_PROPERTYPUT ? std::vector<DISPID>{DISPID_PROPERTYPUT} : std::vector<DISPID>{};
}

Outcome InvokeById(IDispatch* control, DISPID dispid, WORD flags, const std::vector<Value>& args,
                   const std::vector<DISPID>& named)
{
    return Packed(args, named, [&](DISPPARAMS* params, VARIANT* result, EXCEPINFO* exception) {
        return control->Invoke(dispid, IID_NULL, LOCALE_USER_DEFAULT, flags, params, result, exception, nullptr);
    });
}

Outcome Call(IDispatch* control, const wchar_t* name, WORD flags, const std::vector<Value>& args)
{
    DISPID dispid = DISPID_UNKNOWN;
    LPOLESTR names[] = {const_cast<LPOLESTR>(name)};
    Outcome unknown;
    unknown.hr = control->GetIDsOfNames(IID_NULL, names, 1, LOCALE_USER_DEFAULT, &dispid);
    return FAILED(unknown.hr) ? unknown : InvokeById(control, dispid, flags, args, NamesFor(flags));
}

Outcome Get(IDispatch* control, const wchar_t* name, const std::vector<Value>& args)
{
    return Call(control, name, DISPATCH_PROPERTYGET | DISPATCH_METHOD, args);
}

Outcome Put(IDispatch* control, const wchar_t* name, Value value, std::vector<Value> index)
{
    index.push_back(std::move(value));
    return Call(control, name, DISPATCH_PROPERTYPUT, index);
}

std::string HexCode(HRESULT hr)
{
    char text[16];
    std::snprintf(text, sizeof text, "0x%08lX", static_cast<unsigned long>(hr));
    return text;
}

std::string Narrow(const wchar_t* text) { return std::string(text, text + wcslen(text)); }

} // namespace bvx::client
