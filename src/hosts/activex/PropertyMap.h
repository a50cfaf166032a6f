// The settings a container saves with the control: the natural size and 29
// properties, always in one order, written to a stream or a property bag and
// read back through the control's own IDispatch, so that a load is a
// sequence of ordinary property writes.
#pragma once

#include <ocidl.h>

#include <cstdint>

namespace bvx::com {

// The natural size in HIMETRIC, persisted raw as _cx and _cy.
struct Extent {
    int32_t cx = 5080;
    int32_t cy = 5080;
};

inline constexpr uint32_t kStreamVersion = 0x300;

HRESULT SaveToStream(IDispatch* control, const Extent& extent, IStream* stream);
// A newer version is refused, a short stream or a refused write stops the load.
HRESULT LoadFromStream(IDispatch* control, Extent& extent, IStream* stream);
HRESULT StreamSize(IDispatch* control, const Extent& extent, ULARGE_INTEGER* size);

HRESULT SaveToBag(IDispatch* control, const Extent& extent, IPropertyBag* bag);
// Names the bag lacks keep their values.
HRESULT LoadFromBag(IDispatch* control, Extent& extent, IPropertyBag* bag, IErrorLog* log);

} // namespace bvx::com
