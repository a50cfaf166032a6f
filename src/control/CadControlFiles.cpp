// Members of the drawing file.
#include "CadControl.h"

#include "buffer/NativeFile.h"

namespace bvx {

void CadControl::CadSave(std::u16string fileName, int16_t layerNumber)
{
    view_.ShowPointerRole(PointerRole::Wait);
    view_.CancelMouse();
    // The interface reports nothing; a failed save has left the old file.
    NativeFile::Save(view_, ToUtf8(fileName), uint16_t(layerNumber));
}

bool CadControl::CadLoad(std::u16string fileName, int16_t layerNumber, int16_t destLayerNumber, int16_t loadType)
{
    view_.ShowPointerRole(PointerRole::Wait);
    view_.CancelMouse();
    const bool loaded =
        NativeFile::Load(view_, ToUtf8(fileName), uint16_t(layerNumber), uint16_t(destLayerNumber), loadType);
    view_.Redraw(RedrawMode::Full);
    // The drawing's background colour, without the property's notices.
    backColor_ = view_.BackColorCopy;
    return loaded;
}

} // namespace bvx
