// The automation surface's construction, painting and container notices, and
// the stock members; the other members live in one file per family
// (CadControlWorld, CadControlShapes, CadControlAttributes,
// CadControlSelection, CadControlTransforms, CadControlLayers).
#include "CadControl.h"

#include <algorithm>

namespace bvx {

CadControl::CadControl(HostWindow* window, EventSink* sink) : view_(window, sink) {}

bool CadControl::UserMode() const
{
    if (userModeSource_) return userModeSource_();
    return !view_.Window || view_.Window->UserMode();
}

void CadControl::OnDraw(HostWindow* window, DeviceContext& dc, const DeviceRect& clientBounds)
{
    view_.Window = window;
    view_.Paint(dc, clientBounds);
}

void CadControl::AdvisePropertyNotify(PropertyNotifySink* sink)
{
    if (sink) propertySinks_.push_back(sink);
}

void CadControl::UnadvisePropertyNotify(PropertyNotifySink* sink)
{
    auto it = std::find(propertySinks_.begin(), propertySinks_.end(), sink);
    if (it != propertySinks_.end()) propertySinks_.erase(it);
}

template <typename Store> Status CadControl::ChangeBindable(int32_t dispid, bool unchanged, Store store)
{
    if (unchanged) return {};
    // A copy: a sink may disconnect itself while it is called.
    const std::vector<PropertyNotifySink*> sinks = freezeCount_ > 0 ? std::vector<PropertyNotifySink*>{} : propertySinks_;
    for (PropertyNotifySink* sink : sinks)
        if (!sink->OnRequestEdit(dispid)) return {hresult::False};
    store();
    view_.NeedRepaint = true;
    dirty_ = true;
    for (PropertyNotifySink* sink : sinks) sink->OnChanged(dispid);
    Refresh();
    if (viewSink_) viewSink_->OnDataChange();
    return {};
}

void CadControl::Refresh()
{
    view_.NeedRepaint = true;
    view_.RebuildBackBuffer = true;
    view_.InvalidateWindow(nullptr, false);
}

uint32_t CadControl::GetBackColor() { return backColor_; }

Status CadControl::PutBackColor(uint32_t color)
{
    return ChangeBindable(members::dispid::BackColor, color == backColor_, [&] {
        backColor_ = color;
        view_.BackColorCopy = color;
    });
}

Status CadControl::PutGridHeight(double v)
{
    CadWorld& w = view_.World;
    return ChangeBindable(members::dispid::GridHeight, v == w.GridHeight, [&] { w.GridHeight = w.RoundCoord(v); });
}

} // namespace bvx
