// The mouse pointer members: the role table and images added from files.
#include "CadControl.h"

#include "raster/CursorFile.h"

namespace bvx {

int16_t CadControl::GetViewMousePointer(int16_t mouseMode) { return view_.Buf.Pointers.Role(mouseMode); }

void CadControl::PutViewMousePointer(int16_t mouseMode, int16_t value) { view_.Buf.Pointers.SetRole(mouseMode, value); }

int16_t CadControl::ViewMouseIconAdd(std::u16string fileName)
{
    std::optional<PointerImage> image = ReadCursorFile(ToUtf8(fileName));
    return image ? view_.Buf.Pointers.Add(std::move(*image)) : int16_t(-1);
}

void CadControl::SetPointer(int16_t value) { view_.SetPointer(value); }

int16_t CadControl::GetPointer() const { return view_.Buf.Pointers.GetPointer(); }

} // namespace bvx
