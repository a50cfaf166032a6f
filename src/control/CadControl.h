// The host-neutral automation surface: every member of the host interface
// as a method, and Invoke, which reaches them by dispid or by name with
// automation values. Every host forwards to this class.
#pragma once

#include "CadView.h"
#include "ContainerNotify.h"
#include "MemberSpec.h"
#include "Variant.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace bvx {

class CGroupShape;
class CTextShape;

// A member's answer when it is more than a value: another result code, or
// an output the member leaves unwritten.
// A put that may refuse the change answers with a result code alone.
struct Status {
    HResult code = hresult::Ok;
};

template <typename T> struct Reply {
    HResult hr = hresult::Ok;
    std::optional<T> value;
    static Reply With(T v, HResult code = hresult::Ok) { return {code, std::move(v)}; }
    static Reply Unwritten(HResult code = hresult::Ok) { return {code, std::nullopt}; }
};

// The pen and brush fields that shapes and layers share as members.
enum class AttrField : uint8_t { PenFg, PenWidth, PenStyle, BrushFg, BrushBg, BrushStyle, BrushMode };

class CadControl {
public:
    explicit CadControl(HostWindow* window = nullptr, EventSink* sink = nullptr);

    CadView& View() { return view_; }
    const CadView& View() const { return view_; }

    // Arguments in declaration order; for a put the value comes last.
    // Trailing optional arguments may be left off or passed as missing.
    HResult Invoke(int32_t dispid, members::Kind kind, std::span<const Variant> args, Variant* result);
    HResult Invoke(std::u16string_view name, members::Kind kind, std::span<const Variant> args, Variant* result);
    // Case-insensitive, as the platform's GetIDsOfNames.
    static std::optional<int32_t> DispidOfName(std::u16string_view name);
    static const members::MemberRow* FindRow(int32_t dispid, members::Kind kind);

    // The design-time gate asks the host's source where it set one (a host
    // without a window asks its container), else the window; with neither,
    // run time.
    bool UserMode() const;
    void SetUserModeSource(std::function<bool()> source) { userModeSource_ = std::move(source); }

    // A host's paint: the window the control now lives in, its device
    // context (clipped to what needs painting) and its client rectangle.
    void OnDraw(HostWindow* window, DeviceContext& dc, const DeviceRect& clientBounds);

    // The window procedure: a message as the platform numbers and packs it,
    // and the result the window returns. Every host feeds its input here.
    int64_t WindowProc(uint32_t msg, uint64_t wParam, int64_t lParam);

    // The container's notices. Sinks are called in the order they came; a
    // frozen control asks and tells the property sinks nothing.
    void AdvisePropertyNotify(PropertyNotifySink* sink);
    void UnadvisePropertyNotify(PropertyNotifySink* sink);
    void SetViewChangeSink(ViewChangeSink* sink) { viewSink_ = view_.ViewSink = sink; }
    void FreezeEvents(bool freeze) { freezeCount_ += freeze ? 1 : (freezeCount_ > 0 ? -1 : 0); }
    // Changed since the container last saved it.
    bool IsDirty() const { return dirty_; }
    void SetDirty(bool dirty) { dirty_ = dirty; }

    // ---- the members, one method per row of the table ----
    void Refresh();
    uint32_t GetBackColor();
    Status PutBackColor(uint32_t color);

    double GetWorldLeft();
    void PutWorldLeft(double v);
    double GetWorldTop();
    void PutWorldTop(double v);
    double GetWorldRight();
    void PutWorldRight(double v);
    double GetWorldBottom();
    void PutWorldBottom(double v);
    void WorldSet(double left, double top, double right, double bottom);
    void WorldPan(double dx, double dy);
    bool GetWorldSquare();
    void PutWorldSquare(bool on);
    double GetAbsToWorldX(int32_t x);
    double GetAbsToWorldY(int32_t y);
    int32_t GetWorldToAbsX(double x);
    int32_t GetWorldToAbsY(double y);
    int16_t GetAngleMode();
    void PutAngleMode(int16_t v);
    int16_t GetWorldCoordPrecision();
    void PutWorldCoordPrecision(int16_t v);
    int16_t GetWorldAnglePrecision();
    void PutWorldAnglePrecision(int16_t v);

    void WorldExtents();

    Reply<int32_t> GetViewMouseTool();
    void PutViewMouseTool(int32_t tool);
    bool GetViewPersistMouseTool();
    void PutViewPersistMouseTool(bool on);
    bool GetViewKeyDelete();
    void PutViewKeyDelete(bool on);
    bool GetViewKeyCopy();
    void PutViewKeyCopy(bool on);
    bool GetViewKeySelect();
    void PutViewKeySelect(bool on);
    int16_t GetViewMouseBounds();
    void PutViewMouseBounds(int16_t v);
    bool GetViewShowTracker();
    void PutViewShowTracker(bool on);
    bool GetViewDrawOrthogonal();
    void PutViewDrawOrthogonal(bool on);
    int16_t GetViewSelectMode();
    void PutViewSelectMode(int16_t v);
    int16_t GetViewCopyMode();
    void PutViewCopyMode(int16_t v);
    int16_t GetViewShapeMoveMode();
    void PutViewShapeMoveMode(int16_t v);
    int32_t GetViewHeight();
    int32_t GetViewWidth();
    int32_t GetCadShapeCount();
    int16_t GetHiddenViewDialogType();
    void PutHiddenViewDialogType(int16_t v);
    int32_t GetHiddenViewDialogData();
    void PutHiddenViewDialogData(int32_t v);

    int16_t GetViewSnapToShape();
    void PutViewSnapToShape(int16_t v);
    int16_t GetViewSnapToGrid();
    void PutViewSnapToGrid(int16_t v);
    int16_t GetViewSnapMode();
    void PutViewSnapMode(int16_t v);
    bool GetViewSnapMarkerOn();
    void PutViewSnapMarkerOn(bool on);
    uint32_t GetViewSnapMarkerColor();
    void PutViewSnapMarkerColor(uint32_t color);

    void GridSet(bool on, double width, double height, uint32_t color);
    bool GetGridOn();
    void PutGridOn(bool on);
    uint32_t GetGridColor();
    void PutGridColor(uint32_t color);
    double GetGridWidth();
    void PutGridWidth(double v);
    double GetGridHeight();
    Status PutGridHeight(double v);
    int16_t GetGridDrawOrder();
    void PutGridDrawOrder(int16_t v);

    int32_t DrawLine(double x1, double y1, double x2, double y2, int16_t layer);
    int32_t DrawRectangle(double x1, double y1, double x2, double y2, int16_t layer);
    int32_t DrawEllipse(double cx, double cy, double rx, double ry, int16_t layer);
    // Angles in the unit AngleMode gives.
    int32_t DrawArc(double cx, double cy, double rx, double ry, double start, double end, int16_t layer);
    int32_t DrawPieSlice(double cx, double cy, double rx, double ry, double start, double end, int16_t layer);
    int32_t DrawChord(double cx, double cy, double rx, double ry, double start, double end, int16_t layer);
    int32_t DrawThreePointArc(double x1, double y1, double x2, double y2, double x3, double y3, int16_t layer);
    int32_t DrawCircle(double cx, double cy, double r, int16_t layer);
    int32_t DrawPoint(double x, double y, int16_t layer);
    int32_t TextAdd(int16_t layer, std::u16string text, double x, double y, int16_t font);
    int32_t ShapeAdd(int32_t type, int16_t layer);

    int16_t FontOpen(std::u16string name, int16_t scale);
    void FontClose(int16_t handle);
    void FontSet(int16_t handle, int16_t align, int16_t justify, int16_t orientation);
    int16_t GetFontCurrent();
    void PutFontCurrent(int16_t handle);
    std::u16string GetShapeText(int32_t number);
    void PutShapeText(int32_t number, std::u16string text);
    int16_t GetShapeTextOrientation(int32_t number);
    void PutShapeTextOrientation(int32_t number, int16_t tenths);

    // The drawing file.
    void CadSave(std::u16string fileName, int16_t layerNumber);
    bool CadLoad(std::u16string fileName, int16_t layerNumber, int16_t destLayerNumber, int16_t loadType);

    void ImageOpenBitmap(int16_t number, std::u16string fileName, int16_t style, int16_t addFlag);
    bool BackPicSet(std::u16string fileName, int16_t style, double x, double y);
    bool BackPicRemove();
    int32_t GetBackPicHeight();
    int32_t GetBackPicWidth();
    bool ImageToBitmap(std::u16string fileName, int16_t width, int16_t height, int16_t bits, int16_t dpi);

    bool GroupAddShape(int32_t group, int32_t number);
    bool GroupAddSelection(int32_t group);
    bool GroupRemoveShape(int32_t group, int32_t number);
    bool GroupRemoveAll(int32_t group);
    int32_t GetGroupShapeCount(int32_t group);
    Reply<Variant> GetGroupShapeNumbers(int32_t group);
    int16_t GetGroupAction(int32_t group);
    void PutGroupAction(int32_t group, int16_t action);

    void ShapeDelete(int32_t number);
    void ShapeSelectDelete();
    void CadClearShapes(int16_t layer);
    void CadClearAll();

    bool ShapeSelect(int32_t number, bool add);
    void ShapeSelectRect(double x1, double y1, double x2, double y2);
    void ShapeSelectMoveDelta(double dx, double dy);
    int32_t GetShapeSelectCount();
    Variant GetShapeSelectNumbers();
    bool GetShapeIsSelected(int32_t number);
    int16_t GetShapeSelectType();
    int16_t GetShapeSelectLayer();
    int32_t GetShapeSelectNumber();
    int16_t GetShapeSelectPoint();

    int16_t GetShapeType(int32_t number);
    int16_t ShapeOnLayer(int32_t number);
    int32_t ShapeOnGroup(int32_t number);
    double GetShapeArea(int32_t number);
    std::u16string GetShapeNotes(int32_t number);
    void PutShapeNotes(int32_t number, std::u16string notes);
    int16_t GetShapeSearchMethod(int32_t number);
    void PutShapeSearchMethod(int32_t number, int16_t method);
    int16_t GetShapeLineType(int32_t number);
    void PutShapeLineType(int32_t number, int16_t type);
    bool GetShapeIsColorSet(int32_t number);
    void ShapeColorReset(int32_t number);
    uint32_t GetShapePenFg(int32_t number);
    void PutShapePenFg(int32_t number, uint32_t color);
    int16_t GetShapePenWidth(int32_t number);
    void PutShapePenWidth(int32_t number, int16_t width);
    int16_t GetShapePenStyle(int32_t number);
    void PutShapePenStyle(int32_t number, int16_t style);
    uint32_t GetShapeBrushFg(int32_t number);
    void PutShapeBrushFg(int32_t number, uint32_t color);
    uint32_t GetShapeBrushBg(int32_t number);
    void PutShapeBrushBg(int32_t number, uint32_t color);
    int16_t GetShapeBrushStyle(int32_t number);
    void PutShapeBrushStyle(int32_t number, int16_t style);
    int16_t GetShapeBrushMode(int32_t number);
    void PutShapeBrushMode(int32_t number, int16_t mode);

    int16_t GetShapePointCount(int32_t number);
    double ShapePointGetX(int32_t number, int16_t point);
    double ShapePointGetY(int32_t number, int16_t point);
    void ShapePointSetX(int32_t number, int16_t point, double x);
    void ShapePointSetY(int32_t number, int16_t point, double y);
    void ShapePointSet(int32_t number, int16_t point, double x, double y);
    int16_t ShapePointGetNearest(int32_t number, double x, double y);
    void ShapePointSnapToGrid(int32_t number, int16_t point);
    bool ShapePointInsert(int32_t number, int16_t point, double x, double y);
    bool ShapePointDelete(int32_t number, int16_t point);

    void ShapeToFront(int32_t number);
    void ShapeToBack(int32_t number);
    void ShapeZOrderJump(int32_t number, int32_t levels);
    int32_t GetShapeZOrder(int32_t number);
    void PutShapeZOrder(int32_t number, int32_t position);

    int32_t ShapeToLayer(int32_t number, int16_t layer, bool copy);
    // Mode 1 takes a count of steps, 2 an angle step (in AngleMode's unit),
    // 3 opens a polygon at a point.
    bool ShapeConvert(int32_t number, int16_t type, int16_t mode, double value);
    // N rows of (other shape's number, X, Y); 0 rows when nothing meets.
    Variant ShapeIntersectPoints(int32_t number, int16_t layer);
    int32_t ShapeHitTest(double x, double y, int16_t searchMethod);

    void ShapeTransform(int32_t number, int16_t mode, double pivotX, double pivotY, double angle, double scaleX,
                        double scaleY, double translateX, double translateY, int16_t reflectMode, int16_t shearMode,
                        double shear);
    void LayerTransform(int16_t layer, int16_t mode, double pivotX, double pivotY, double angle, double scaleX,
                        double scaleY, double translateX, double translateY, int16_t reflectMode, int16_t shearMode,
                        double shear);
    void ShapeRotate(int32_t number, int16_t degrees, double pivotX, double pivotY);
    void ShapeReflect(int32_t number, int16_t mode, double x, double y);
    void ShapeTranslate(int32_t number, double dx, double dy);
    void ShapeShear(int32_t number, int16_t mode, double displacement);
    void ShapeScale(int32_t number, double x, double y, double factorX, double factorY);
    void LayerRotate(int16_t layer, int16_t degrees, double pivotX, double pivotY);
    void LayerReflect(int16_t layer, int16_t mode, double x, double y);
    void LayerTranslate(int16_t layer, double dx, double dy);
    void LayerShear(int16_t layer, int16_t mode, double displacement);
    void LayerScale(int16_t layer, double x, double y, double factorX, double factorY);

    int16_t LayerOpen(std::u16string name);
    bool LayerClose(int16_t layer);
    bool LayerCopy(int16_t origin, int16_t destination, bool create);
    int16_t GetLayerNumber();
    void PutLayerNumber(int16_t layer);
    int16_t GetLayerCount();
    int16_t LayerFindByName(std::u16string name);
    std::u16string GetLayerName(int16_t layer);
    void PutLayerName(int16_t layer, std::u16string name);
    std::u16string GetLayerNames();
    int16_t GetLayerAction(int16_t layer);
    void PutLayerAction(int16_t layer, int16_t action);
    int16_t GetLayerSearchMethod(int16_t type);
    void PutLayerSearchMethod(int16_t type, int16_t method);
    uint32_t GetLayerPenFg(int16_t layer);
    void PutLayerPenFg(int16_t layer, uint32_t color);
    int16_t GetLayerPenWidth(int16_t layer);
    void PutLayerPenWidth(int16_t layer, int16_t width);
    int16_t GetLayerPenStyle(int16_t layer);
    void PutLayerPenStyle(int16_t layer, int16_t style);
    uint32_t GetLayerBrushFg(int16_t layer);
    void PutLayerBrushFg(int16_t layer, uint32_t color);
    uint32_t GetLayerBrushBg(int16_t layer);
    void PutLayerBrushBg(int16_t layer, uint32_t color);
    int16_t GetLayerBrushStyle(int16_t layer);
    void PutLayerBrushStyle(int16_t layer, int16_t style);
    int16_t GetLayerBrushMode(int16_t layer);
    void PutLayerBrushMode(int16_t layer, int16_t mode);
    int16_t GetLayerLineType(int16_t layer);
    void PutLayerLineType(int16_t layer, int16_t type);
    int32_t GetLayerShapeCount(int16_t layer);
    Variant GetLayerShapeNumbers(int16_t layer);

    // pointers
    int16_t GetViewMousePointer(int16_t mouseMode);
    void PutViewMousePointer(int16_t mouseMode, int16_t value);
    int16_t ViewMouseIconAdd(std::u16string fileName);
    // Not members of the interface: the hosts' and the tools' way to show a
    // pointer value's image in the window, and the list index last shown.
    void SetPointer(int16_t value);
    int16_t GetPointer() const;

private:
    // Input, one handler per message; mouse handlers get wParam's flags and
    // the packed point.
    void OnLButtonDown(uint64_t wParam, int64_t lParam);
    void OnLButtonUp(uint64_t wParam, int64_t lParam);
    void OnLButtonDblClk(uint64_t wParam, int64_t lParam);
    void OnRButtonDown(uint64_t wParam, int64_t lParam);
    void OnRButtonUp(uint64_t wParam, int64_t lParam);
    void OnMouseMove(uint64_t wParam, int64_t lParam);
    void OnSetCursor();
    void OnKeyDown(uint64_t key);
    void OnKeyUp(uint64_t key);
    void OnCommand(uint64_t wParam);
    void OnChar(uint64_t wParam);
    void ShowToolMenu(DevicePoint point);
    // The world point of a press: exact after the pointer was put on a snap.
    WorldPoint PressPoint(DevicePoint point) const;
    bool OutsideView(DevicePoint point) const;

    CObjShape* Shape(int32_t number) const { return view_.Buf.FindShape(number); }
    // Paints the drawing into the back buffer at a size of its own, the world
    // stretched over it, hands the buffer to `use`, and puts the view back.
    void RenderOffscreen(int32_t width, int32_t height, int16_t dpi, const std::function<void(const Bitmap&)>& use);
    // The text of a number; null for an unknown one or a shape of another type.
    CTextShape* Text(int32_t number) const;
    // The group of a number; null for an unknown one or a shape of another type.
    CGroupShape* Group(int32_t number) const;
    void PutWorldEdge(double& edge, double value, int32_t mode);
    // Makes a shape of a type on a layer and sets its points in order.
    int32_t DrawShape(int16_t type, std::initializer_list<WorldPoint> points, int16_t layer);
    // The record a write changes: the shape's own, made from the one in force.
    ShapeAttr& OwnAttr(CObjShape& shape);
    int64_t ReadShapeAttr(int32_t number, AttrField field);
    void WriteShapeAttr(int32_t number, AttrField field, int64_t value);
    int64_t ReadLayerAttr(int16_t layer, AttrField field);
    void WriteLayerAttr(int16_t layer, AttrField field, int64_t value);
    // The change pattern around one shape: old bounds, change, new bounds.
    template <typename Change> void ChangeShape(CObjShape& shape, Change change);
    // A layer's change repaints the view; a bad layer number changes nothing.
    template <typename Change> void ChangeLayer(int16_t layer, Change change);
    void TransformShape(CObjShape& shape, const TransformRequest& request);
    TransformRequest LayerStepRequest(TransformRequest request) const;
    void TransformLayer(int16_t layer, TransformRequest request);
    double RoundPoint(const CObjShape& shape, int16_t point, double value) const;

    // A bindable property's write: asks the sinks, stores, tells them.
    template <typename Store> Status ChangeBindable(int32_t dispid, bool unchanged, Store store);

    CadView view_;
    uint32_t backColor_ = 0xFFFFFF;
    std::vector<PropertyNotifySink*> propertySinks_;
    ViewChangeSink* viewSink_ = nullptr;
    int32_t freezeCount_ = 0;
    bool dirty_ = false;
    std::function<bool()> userModeSource_;
};

template <typename Change> void CadControl::ChangeShape(CObjShape& shape, Change change)
{
    view_.InvalidateShape(&shape, false);
    change();
    view_.InvalidateShape(&shape, true);
}

template <typename Change> void CadControl::ChangeLayer(int16_t layer, Change change)
{
    CadLayer* l = view_.Buf.Layer(layer);
    if (!l) return;
    change(*l);
    view_.Redraw(RedrawMode::Full);
}

} // namespace bvx
