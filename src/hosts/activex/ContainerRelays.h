// The core's events and property notices, handed to the sinks advised on
// the control's two connection points.
#pragma once

#include "ConnectionPoint.h"

#include "control/ContainerNotify.h"
#include "control/EventSink.h"

namespace bvx::com {

// Each event to every sink through IDispatch::Invoke, arguments typed as the
// event table declares them. A failing sink stops nothing.
class EventRelay final : public EventRecorder {
public:
    explicit EventRelay(const ConnectionPoint& point) : point_(point) {}
    void OnEvent(const members::EventRow& event, std::span<const double> args) override;

private:
    const ConnectionPoint& point_;
};

class PropertyNotifyRelay final : public PropertyNotifySink {
public:
    explicit PropertyNotifyRelay(const ConnectionPoint& point) : point_(point) {}
    bool OnRequestEdit(int32_t dispid) override;
    void OnChanged(int32_t dispid) override;

private:
    const ConnectionPoint& point_;
};

// A changed view to the sink the container gave IViewObject::SetAdvise.
class ViewAdviseRelay final : public ViewChangeSink {
public:
    void Set(IAdviseSink* sink, DWORD aspects, DWORD flags);
    IAdviseSink* Sink() const { return sink_.get(); }
    DWORD Aspects() const { return aspects_; }
    DWORD Flags() const { return flags_; }
    void OnViewChange() override;
    void OnDataChange() override {}

private:
    Ref<IAdviseSink> sink_;
    DWORD aspects_ = 0;
    DWORD flags_ = 0;
};

} // namespace bvx::com
