// What the control tells its container besides events: changes of the two
// bindable properties, and a changed view while it has no window of its own.
// The OLE control connects these to IPropertyNotifySink and IAdviseSink; other
// hosts may leave them unconnected.
#pragma once

#include <cstdint>

namespace bvx {

class PropertyNotifySink {
public:
    virtual ~PropertyNotifySink() = default;
    // False refuses the change before it is made.
    virtual bool OnRequestEdit(int32_t dispid) = 0;
    virtual void OnChanged(int32_t dispid) = 0;
};

class ViewChangeSink {
public:
    virtual ~ViewChangeSink() = default;
    virtual void OnViewChange() = 0;
    virtual void OnDataChange() = 0;
};

} // namespace bvx
