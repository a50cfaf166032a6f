// The view: nearly all of the control's behaviour sits here, below any host.
// It holds the colour table, the world mapping and the document, and the
// mouse, caret and repaint state. With no window it runs headless: redraw
// requests go nowhere; with no sink, events go nowhere.
#pragma once

#include "CadColorTable.h"
#include "ContainerNotify.h"
#include "EventSink.h"
#include "buffer/CadBuf.h"
#include "buffer/CadFontTable.h"
#include "platform/HostWindow.h"
#include "shapes/ShapeContext.h"

#include <cstdint>
#include <memory>

namespace bvx {

// The repaints Redraw knows; other values do nothing.
namespace RedrawMode {
constexpr int32_t Full = 0;            // rebuild the back buffer, repaint the view
constexpr int32_t Selection = 2;       // repaint the selected shapes
constexpr int32_t DeleteSelection = 4; // delete the selection, then repaint the view
} // namespace RedrawMode

// The view is the context its shapes and document work in (ShapeContext,
// which also holds the world mapping) and is-a colour table.
class ToolBox;

class CadView : public CadColorTable, public ShapeContext {
public:
    explicit CadView(HostWindow* window = nullptr, EventSink* sink = nullptr);
    ~CadView() override;
    CadView(const CadView&) = delete;
    CadView& operator=(const CadView&) = delete;

    CadBuf Buf;
    CadFontTable FontTable;

    bool CaretOn = false;
    EventSink* Owner = nullptr;
    bool ViewReady = false;
    bool NeedRepaint = true;
    DeviceRect DirtyRect{};
    bool RebuildBackBuffer = true;
    BitmapHandle BackBitmap;
    HostWindow* Window = nullptr;
    // Told instead of the window while there is none (a container drawing
    // the control itself); once until the next paint, which is what the
    // telling asks for.
    ViewChangeSink* ViewSink = nullptr;
    bool ViewChangeTold = false;
    uint32_t BackColorCopy = 0xFFFFFF;
    int16_t CurrentTool = 0;
    bool ViewPersistMouseTool = false;
    bool ViewKeyDelete = true;
    bool ViewKeyCopy = true;
    bool ViewKeySelect = true;
    bool DrawAbort = false;
    bool DrawInProgress = false;
    bool SkipNextClick = false;
    int16_t HiddenViewDialogType = 0;
    int32_t HiddenViewDialogData = 0;

    // Paints the view into a window's device over its client rectangle,
    // through the back buffer; the entry of every host's paint.
    void Paint(DeviceContext& target, const DeviceRect& clientBounds);

    // Invalidation: the only ways pixels get changed.
    void Redraw(int32_t mode);
    void InvalidateShape(const CObjShape* shape, bool commit) override;
    void InvalidateSnapMarker();

    void CancelMouse() override;
    // Everything the drawing holds goes: the tool's drag, the background
    // picture, layers and shapes (numbers start again), fonts, pictures,
    // the snap marker and the colours. No layer is left.
    void ClearDrawing();
    void SetMouseTool(int16_t tool);
    bool DeleteShape(CObjShape* shape, bool fireEvent);
    void ShowTextCaret(bool on) override;
    const ShapeAttr& EffectiveAttr(const CObjShape& shape) const override;
    void DrawWithAttr(DeviceContext& dc, CObjShape& shape, const ShapeAttr& attr, const DeviceRect& clip,
                      int32_t mode) override;
    void ClearSelection(CObjShape* shape);
    // The pointer's snap marker: a cross over the snap point while it is up.
    void DrawSnapMarker(DeviceContext& dc);

    CObjShape* FindShape(int32_t number) const override { return Buf.FindShape(number); }
    int16_t LayerLineType(int16_t layer) const override;
    const ShapeAttr& LayerLook(int16_t layer) const override;
    CadFontTable& Fonts() override { return FontTable; }
    void WithWindowDC(const std::function<void(DeviceContext&)>& measure) override;
    bool ShowTracker() const override { return Buf.ShowTracker; }
    int16_t SelectMode() const override { return Buf.SelectMode; }
    void SnapPointerTo(const WorldPoint& point, DevicePoint press) override;
    void ShapeAdded(int16_t type, int32_t number) override { Fire<&EventSink::ShapeNumberAdded>(type, number); }
    void ShapeSelected(int16_t type, int32_t number) override { Fire<&EventSink::ShapeNumberSelected>(type, number); }
    void RadiusDragged(double radiusX, double radiusY) override { Fire<&EventSink::DrawRadius>(radiusX, radiusY); }

    // Makes an empty shape of a type in a layer, the way the tools and the
    // members do without a mouse; its number, or -1 for a type no tool makes.
    int32_t CreateShape(int16_t type, int32_t layerNumber);

    // The mouse tools of this view and the state they share.
    std::unique_ptr<ToolBox> Tools;
    // What a host's choice of tool does: the drag under way is cancelled.
    void ChooseTool(int16_t tool);
    // The pointer: an image's value, or the value a role stands for.
    void SetPointer(int16_t value) { Buf.Pointers.SetPointer(value, Window); }
    void ShowPointerRole(int16_t role) { SetPointer(Buf.Pointers.Role(role)); }
    // The snap to lines of a move: the end of the nearest line under the
    // pointer replaces the point, and the marker follows it. `skip` is the
    // shape being drawn or resized, which must not snap to itself.
    WorldPoint SnapToLines(DevicePoint device, WorldPoint point, const CObjShape* skip);

    // Fires an event of the sink, e.g. Fire<&EventSink::ShapeNumberAdded>(type,
    // number); nothing happens without a sink.
    template <auto Event, typename... A> void Fire(A... args)
    {
        if (Owner) (Owner->*Event)(args...);
    }
    // The one event whose values are rounded to the view's precisions.
    void FireWorldMouseMove(int16_t shift, double x, double y, double magnitude, double angle);

    // The window's area, or the view sink when there is no window.
    void InvalidateWindow(const DeviceRect* rect, bool erase);

private:
    // One shape out of its list, destroyed, with its event; a group's
    // members go with it unannounced.
    bool RemoveShape(CObjShape* shape, bool fireEvent);
    void RepaintBackBuffer(DeviceContext& memory, const DeviceRect& bounds);
};

} // namespace bvx
