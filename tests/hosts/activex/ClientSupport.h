// What the client tests share: a control made by its ProgID, values that
// clear themselves, and late-bound calls by name or by dispid.
#pragma once

#include "ComObject.h"

#include "bvxcad.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace bvx::client {

using com::Ref;

// A VARIANT that clears itself.
class Value {
public:
    Value() { VariantInit(&v_); }
    Value(const Value& other) : Value() { VariantCopy(&v_, const_cast<VARIANT*>(&other.v_)); }
    Value& operator=(const Value& other)
    {
        if (this != &other) VariantCopy(&v_, const_cast<VARIANT*>(&other.v_));
        return *this;
    }
    ~Value() { VariantClear(&v_); }

    // A number of the given type, converted as the platform converts.
    static Value Of(VARTYPE type, double v);
    static Value I2(short v) { return Of(VT_I2, v); }
    static Value I4(long v) { return Of(VT_I4, v); }
    static Value R8(double v) { return Of(VT_R8, v); }
    static Value Bool(bool v) { return Of(VT_BOOL, v ? -1 : 0); }
    static Value Text(const wchar_t* v);

    VARIANT* get() { return &v_; }
    const VARIANT& operator*() const { return v_; }
    VARTYPE Type() const { return V_VT(&v_); }
    // The value as a double, whatever number type it holds.
    double Number() const;
    bool operator==(const Value& other) const;

private:
    VARIANT v_;
};

std::ostream& operator<<(std::ostream& out, const Value& v);

// A new control from its ProgID, as a script would create it.
Ref<IBvxCAD> NewControl();

template <typename I> Ref<I> As(IUnknown* from, const IID& iid)
{
    I* p = nullptr;
    if (from) from->QueryInterface(iid, reinterpret_cast<void**>(&p));
    return Ref<I>(p);
}

// The IDispatch of a test object that is called by dispid alone.
struct DispatchById : IDispatch {
    STDMETHODIMP GetTypeInfoCount(UINT* count) override { return *count = 0, S_OK; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
};

// A property notice sink that writes down what it hears and may refuse edits.
class PropertyLog final : public com::SingleInterfaceObject<PropertyLog, IPropertyNotifySink, IID_IPropertyNotifySink> {
public:
    std::vector<std::string> heard;
    bool refuse = false;

    STDMETHODIMP OnChanged(DISPID dispid) override
    {
        heard.push_back("changed " + std::to_string(dispid));
        return S_OK;
    }
    STDMETHODIMP OnRequestEdit(DISPID dispid) override
    {
        heard.push_back("request " + std::to_string(dispid));
        return refuse ? S_FALSE : S_OK;
    }
};

// A control's connection point for an interface, and a sink advised to it.
Ref<IConnectionPoint> PointFor(IBvxCAD* control, const IID& iid);
DWORD Connect(IBvxCAD* control, const IID& iid, IUnknown* sink);

struct Outcome {
    HRESULT hr = E_FAIL;
    Value result;
    SCODE exceptionCode = 0;
};

// The arguments, in declaration order, packed as Invoke takes them: last
// first, and the last named.size() of them named, named[0] naming the last.
// Handed to `invoke(params, result, exception)`.
template <typename Invoke> Outcome Packed(const std::vector<Value>& args, std::vector<DISPID> named, Invoke invoke)
{
    Outcome outcome;
    std::vector<VARIANT> reversed;
    for (auto it = args.rbegin(); it != args.rend(); ++it) reversed.push_back(**it);
    DISPPARAMS params{reversed.data(), named.empty() ? nullptr : named.data(), UINT(reversed.size()),
                      UINT(named.size())};
    EXCEPINFO exception{};
    outcome.hr = invoke(&params, outcome.result.get(), &exception);
    outcome.exceptionCode = exception.scode;
    SysFreeString(exception.bstrSource);
    SysFreeString(exception.bstrDescription);
    SysFreeString(exception.bstrHelpFile);
    return outcome;
}

// A put's value travels as the named argument DISPID_PROPERTYPUT.
std::vector<DISPID> NamesFor(WORD flags);

Outcome InvokeById(IDispatch* control, DISPID dispid, WORD flags, const std::vector<Value>& args,
                   const std::vector<DISPID>& named);
// Late-bound by name through GetIDsOfNames; a put takes its value last.
Outcome Call(IDispatch* control, const wchar_t* name, WORD flags, const std::vector<Value>& args = {});
Outcome Get(IDispatch* control, const wchar_t* name, const std::vector<Value>& args = {});
Outcome Put(IDispatch* control, const wchar_t* name, Value value, std::vector<Value> index = {});

std::string HexCode(HRESULT hr);
std::string Narrow(const wchar_t* text);

} // namespace bvx::client
