#include "CTextTool.h"

#include "ToolBox.h"
#include "control/CadView.h"
#include "shapes/CTextShape.h"

namespace bvx {

namespace {

// An empty text in the current font, named for a layer, measured once.
std::unique_ptr<CTextShape> NewText(CadView& view, int16_t search, const WorldPoint& at)
{
    auto text = std::make_unique<CTextShape>();
    text->Font = view.FontTable.ReferenceTo(view.FontTable.CurrentFont);
    text->SetShapeType(bvxText, search);
    text->SetPoint(0, at.x, at.y, &view);
    return text;
}

} // namespace

void CTextTool::OnLButtonDown(CadView& view, uint32_t, const WorldPoint& point)
{
    // Begun and finished in the one press; typing goes on from the keyboard.
    if (StartShape(view, NewText(view, ToolSearch(view, bvxText), point), 1, point)) CloseShape(view, point);
}

void CTextTool::OnLButtonUp(CadView& view, uint32_t flags, const WorldPoint& point)
{
    Box.Select.OnLButtonUp(view, flags, point);
}

void CTextTool::OnMouseMove(CadView& view, uint32_t flags, const WorldPoint& point)
{
    Box.Select.OnMouseMove(view, flags, point);
}

int32_t CTextTool::CreateShape(CadView& view, int16_t type, int32_t layerNumber)
{
    if (type != bvxText) return -1;
    return view.Buf.EnterShape(NewText(view, ToolSearch(view, bvxText, layerNumber), {}), view, layerNumber);
}

} // namespace bvx
