// What the client tests share: a control made by its ProgID, values that
// clear themselves, and late-bound calls by name.
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

    static Value I2(short v);
    static Value I4(long v);
    static Value R8(double v);
    static Value Bool(bool v);
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

// A late-bound call: the name through GetIDsOfNames, the arguments in
// declaration order; a put takes its value last.
struct Outcome {
    HRESULT hr = E_FAIL;
    Value result;
    SCODE exceptionCode = 0;
};
Outcome Call(IDispatch* control, const wchar_t* name, WORD flags, std::vector<Value> args = {});
Outcome Get(IDispatch* control, const wchar_t* name, std::vector<Value> args = {});
Outcome Put(IDispatch* control, const wchar_t* name, Value value, std::vector<Value> index = {});

std::string HexCode(HRESULT hr);

} // namespace bvx::client
