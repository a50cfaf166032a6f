// IDispatch's calling convention in the core's terms: which member a call
// means (method, property read or write), its arguments in declaration
// order with named ones in their places, and the names behind the dispids.
#pragma once

#include "control/MemberSpec.h"
#include "control/Variant.h"

#include <oaidl.h>

#include <vector>

namespace bvx::com {

struct DispatchCall {
    const members::MemberRow* row = nullptr;
    std::vector<Variant> args; // a put's value last; arguments not given are missing
};

// Fails with the platform's DISP_E_ codes; `argError` names the argument (as
// Invoke counts them) that could not be read.
HRESULT ReadDispatchCall(DISPID dispid, WORD flags, const DISPPARAMS* params, DispatchCall& call, UINT* argError);

// names[0] a member, the others its parameters (their dispids are their
// positions). Unknown names get DISPID_UNKNOWN and DISP_E_UNKNOWNNAME.
HRESULT NamesToDispids(const LPOLESTR* names, UINT count, DISPID* out);

} // namespace bvx::com
