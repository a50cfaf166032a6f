// The painting pipeline: a back buffer of the window's size, repainted only
// where it is dirty, copied to the target, with the selection drawn over the
// copy while a tool drags.
#include "CadView.h"

#include "platform/DeviceContext.h"
#include "platform/SystemColors.h"
#include "world/Rounding.h"

namespace bvx {

void CadView::Paint(DeviceContext& target, const DeviceRect& clientBounds)
{
    std::unique_ptr<DeviceContext> memory = target.CreateCompatibleDC();
    if (!memory) return;
    ViewChangeTold = false;
    const bool sameSize = World.ClientRect == clientBounds;
    if (RebuildBackBuffer || !BackBitmap || !sameSize) {
        BackBitmap = CreateBitmap(WrapToInt32(double(clientBounds.Width())),
                                  WrapToInt32(double(clientBounds.Height())));
        DirtyRect = {};
        // Only the first paint sets the scale; a later size waits for the
        // next world operation.
        World.ClientRect = clientBounds;
        if (!ViewReady) {
            World.Recalculate(0);
            ViewReady = true;
        }
    }
    BitmapHandle previous = memory->SelectBitmap(BackBitmap);
    const DeviceRect blitRect = clientBounds;
    const DeviceRect bounds{0, 0, WrapToInt32(double(clientBounds.Width())),
                            WrapToInt32(double(clientBounds.Height()))};

    if (NeedRepaint || !sameSize) RepaintBackBuffer(*memory, bounds);

    if (World.OutputMode != 2) {
        target.BitBlt(blitRect.left, blitRect.top, bounds.right, bounds.bottom, *memory, 0, 0, RasterOp::SrcCopy);
        // During a drag the moving shapes go on the window over the clean
        // copy, so the drag costs no repaint of the buffer.
        DeviceRect everything = bounds;
        if (MouseActive) Buf.DrawSelection(target, everything, *this);
    }
    memory->SelectBitmap(previous);
    RebuildBackBuffer = false;
}

void CadView::RepaintBackBuffer(DeviceContext& memory, const DeviceRect& bounds)
{
    DeviceRect fill = DirtyRect.IsEmpty() ? bounds : DirtyRect;
    memory.FillRect(fill, Brush{BrushStyle::Solid, HatchStyle::Horizontal, OleTranslateColor(BackColorCopy)});
    if (Buf.BackPic && Buf.BackPic->HasImage()) {
        Buf.BackPic->Draw(memory, fill, *this, 0);
        // The picture was painted whole: a dirty rectangle that touches it
        // grows to all of it that is visible.
        DeviceRect picture =
            World.WorldRectToDevice(Buf.BackPic->GetPoint(1, *this), Buf.BackPic->GetPoint(0, *this)).Normalized();
        if (!picture.Intersected(fill).IsEmpty()) fill = fill.United(picture.Intersected(World.ClientRect));
    }
    if (World.GridDrawOrder == 0) World.DrawGrid(memory, fill);
    Buf.Draw(memory, fill, *this);
    if (World.GridDrawOrder == 1) World.DrawGrid(memory, fill);
    DrawSnapMarker(memory);
    NeedRepaint = false;
    DirtyRect = {};
}

} // namespace bvx
