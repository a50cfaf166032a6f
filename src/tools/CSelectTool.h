// The one tool that edits: plain selection, net select, net zoom, and the
// handle drag that rubber-bands every new shape. Its state tells what the
// mouse is doing.
#pragma once

#include "CDrawTool.h"
#include "platform/Geometry.h"

namespace bvx {

class CSelectTool : public CDrawTool {
public:
    // The values of State.
    static constexpr int32_t Idle = 0;
    static constexpr int32_t NetSelect = 1;
    static constexpr int32_t Moving = 2;
    static constexpr int32_t Resizing = 3;
    static constexpr int32_t Held = 4; // pressed a shape that its layer won't let move
    static constexpr int32_t NetZoom = 5;

    using CDrawTool::CDrawTool;

    void OnLButtonDown(CadView& view, uint32_t flags, const WorldPoint& point) override;
    void OnLButtonDblClk(CadView& view, uint32_t flags, const WorldPoint& point) override;
    void OnLButtonUp(CadView& view, uint32_t flags, const WorldPoint& point) override;
    void OnMouseMove(CadView& view, uint32_t flags, const WorldPoint& point) override;

private:
    bool IsNet() const { return State == NetSelect || State == NetZoom; }
    // Presses a handle of the one selected shape; false when the press ends there.
    bool PressHandle(CadView& view, DevicePoint device);
    void PressShape(CadView& view, DevicePoint device, bool add, bool copy);
    // Hovering over a handle readies the drag it would start.
    void Hover(CadView& view, const WorldPoint& point);
    void DragSelection(CadView& view, const WorldPoint& point);
    void DragNet(CadView& view, const WorldPoint& point);
    void EndNet(CadView& view, const WorldPoint& point, bool add);
    // Erases the rubber rectangle, or draws it again.
    void DrawNet(CadView& view) const;
    static void ShowMovePointer(CadView& view);
};

} // namespace bvx
