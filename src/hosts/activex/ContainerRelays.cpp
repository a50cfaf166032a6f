#include "ContainerRelays.h"

#include <vector>

namespace bvx::com {

namespace {

constexpr LCID kUserDefaultLocale = 0x400;

VARIANT EventArgument(members::AutoType type, double value)
{
    VARIANT v;
    VariantInit(&v);
    switch (type) {
    case members::AutoType::I2:
        V_VT(&v) = VT_I2;
        V_I2(&v) = SHORT(value);
        break;
    case members::AutoType::I4:
        V_VT(&v) = VT_I4;
        V_I4(&v) = LONG(value);
        break;
    default:
        V_VT(&v) = VT_R8;
        V_R8(&v) = value;
        break;
    }
    return v;
}

} // namespace

void EventRelay::OnEvent(const members::EventRow& event, std::span<const double> args)
{
    const std::vector<Ref<IDispatch>> sinks = point_.Sinks<IDispatch>();
    if (sinks.empty()) return;
    // Invoke takes the arguments last first; numbers need no clearing.
    std::vector<VARIANT> reversed;
    for (size_t i = args.size(); i-- > 0;) reversed.push_back(EventArgument(event.args[i].type, args[i]));
    for (const Ref<IDispatch>& sink : sinks) {
        DISPPARAMS params{reversed.data(), nullptr, UINT(reversed.size()), 0};
        sink->Invoke(event.dispid, IID_NULL, kUserDefaultLocale, DISPATCH_METHOD, &params, nullptr, nullptr, nullptr);
    }
}

bool PropertyNotifyRelay::OnRequestEdit(int32_t dispid)
{
    for (const Ref<IPropertyNotifySink>& sink : point_.Sinks<IPropertyNotifySink>())
        if (sink->OnRequestEdit(dispid) == S_FALSE) return false;
    return true;
}

void PropertyNotifyRelay::OnChanged(int32_t dispid)
{
    for (const Ref<IPropertyNotifySink>& sink : point_.Sinks<IPropertyNotifySink>()) sink->OnChanged(dispid);
}

void ViewAdviseRelay::Set(IAdviseSink* sink, DWORD aspects, DWORD flags)
{
    sink_ = Ref<IAdviseSink>::Share(sink);
    aspects_ = sink ? aspects : 0;
    flags_ = sink ? flags : 0;
}

void ViewAdviseRelay::OnViewChange()
{
    if (!sink_ || !(aspects_ & DVASPECT_CONTENT)) return;
    // The sink may drop itself while it is told.
    Ref<IAdviseSink> sink = sink_;
    sink->OnViewChange(DVASPECT_CONTENT, -1);
    if (flags_ & ADVF_ONLYONCE) Set(nullptr, 0, 0);
}

} // namespace bvx::com
