// Members of pictures: a picture shape's bitmap, the background picture,
// and the drawing written as a bitmap file.
#include "CadControl.h"

#include "buffer/GroupWalk.h"
#include "platform/ByteStream.h"
#include "raster/Dib.h"
#include "shapes/CPictShape.h"

namespace bvx {

namespace {
// Larger images would take gigabytes for one export.
constexpr int64_t kLargestExportPixels = int64_t(1) << 28;
} // namespace

void CadControl::ImageOpenBitmap(int16_t number, std::u16string fileName, int16_t style, int16_t addFlag)
{
    CObjShape* shape = Shape(number);
    if (!shape || shape->GetShapeType() != bvxPicture) return;
    auto& picture = static_cast<CPictShape&>(*shape);
    CadBuf& buf = view_.Buf;
    const std::string path = ToUtf8(fileName);
    if (addFlag == 0) {
        CadPictEntry* entry = buf.Pictures.Find(path);
        if (!entry) entry = buf.Pictures.Load(path, false);
        if (!entry) return;
        picture.BindImage(uint16_t(style), entry->Name, entry->Image);
        view_.InvalidateShape(&picture, true);
    } else if (addFlag == 1) {
        // One file's new bitmap, wherever the drawing shows it.
        const CadPictEntry* entry = buf.Pictures.Replace(path);
        if (!entry) return;
        const std::string name = entry->Name;
        for (const auto& layer : buf.Layers)
            WalkDeep(*layer, [&](CObjShape& s) {
                if (s.GetShapeType() == bvxPicture && static_cast<CPictShape&>(s).ImageName == name)
                    buf.Pictures.Bind(name, static_cast<CPictShape&>(s));
                return true;
            });
        if (buf.BackPic && buf.BackPic->HasImage()) buf.Pictures.Bind(buf.BackPic->ImageName, *buf.BackPic);
        view_.Redraw(RedrawMode::Full);
    }
}

bool CadControl::BackPicSet(std::u16string fileName, int16_t style, double x, double y)
{
    CadBuf& buf = view_.Buf;
    BackPicRemove();
    buf.BackPic = std::make_unique<CPictShape>(WorldPoint{x, y});
    const std::string path = ToUtf8(fileName);
    CadPictEntry* entry = buf.Pictures.Find(path);
    if (!entry) entry = buf.Pictures.Load(path, false);
    if (!entry) return false;
    CPictShape& picture = *buf.BackPic;
    picture.BindImage(uint16_t(style), entry->Name, entry->Image);
    const CadWorld& w = view_.World;
    if (style == PictStyle::Natural) {
        picture.P2 = {x + w.DeviceWidthToWorld(picture.ImageWidth) * w.SignX,
                      y + w.DeviceHeightToWorld(picture.ImageHeight) * w.SignY};
    } else {
        // The window's far corner.
        picture.P2 = {w.RoundCoord(w.WorldLeft) + w.SignX * w.DeviceWidthToWorld(int32_t(w.ClientRect.Width()) - 1),
                      w.RoundCoord(w.WorldTop) + w.SignY * w.DeviceHeightToWorld(int32_t(w.ClientRect.Height()) - 1)};
    }
    view_.Redraw(RedrawMode::Full);
    return true;
}

bool CadControl::BackPicRemove()
{
    CadBuf& buf = view_.Buf;
    if (!buf.BackPic) return false;
    const std::string name = buf.BackPic->ImageName;
    buf.BackPic->ImageName.clear();
    if (!name.empty()) buf.Pictures.Release(name, buf);
    buf.BackPic.reset();
    view_.Redraw(RedrawMode::Full);
    return true;
}

int32_t CadControl::GetBackPicHeight()
{
    const CPictShape* p = view_.Buf.BackPic.get();
    return p && p->HasImage() ? p->ImageHeight : -1;
}

int32_t CadControl::GetBackPicWidth()
{
    const CPictShape* p = view_.Buf.BackPic.get();
    return p && p->HasImage() ? p->ImageWidth : -1;
}

void CadControl::RenderOffscreen(int32_t width, int32_t height, int16_t dpi,
                                 const std::function<void(const Bitmap&)>& use)
{
    CadWorld& w = view_.World;
    // The whole mapping is put back afterwards rather than fitted again to
    // the same edges, so that an export leaves the view exactly as it was.
    const CadWorld kept = w;
    w.OutputMode = 2;
    if (dpi != 0) w.OutputDpiX = w.OutputDpiY = dpi;
    const DeviceRect image{0, 0, width, height};
    // At the window's own size the mapping already fits: fitting it again
    // could move a point that lies half way between two pixels.
    if (image.Width() != w.ClientRect.Width() || image.Height() != w.ClientRect.Height()) w.SetClientRect(image);
    w.ClientRect = image;
    view_.RebuildBackBuffer = true;
    view_.NeedRepaint = true;
    view_.WithWindowDC([&](DeviceContext& dc) { view_.Paint(dc, image); });
    if (view_.BackBitmap) use(*view_.BackBitmap);
    w = kept;
    // The world comes back from its edges rounded to the coordinate
    // precision: where the rounding changes an edge, the export nudges it.
    const double left = w.RoundCoord(kept.WorldLeft), top = w.RoundCoord(kept.WorldTop);
    const double right = w.RoundCoord(kept.WorldRight), bottom = w.RoundCoord(kept.WorldBottom);
    if (left != kept.WorldLeft || top != kept.WorldTop || right != kept.WorldRight || bottom != kept.WorldBottom)
        w.SetWorld(left, top, right, bottom, 0);
    view_.Redraw(RedrawMode::Full);
}

bool CadControl::ImageToBitmap(std::u16string fileName, int16_t width, int16_t height, int16_t bits, int16_t dpi)
{
    if (width <= 0 || height <= 0 || int64_t(width) * height > kLargestExportPixels) return false;
    // The sign of the bit count chooses the compression: 1 and 24 have none,
    // 4 and 8 run-length; a negative 8 (or any other negative) is plain
    // 8 bits, and the negative forms of 1, 4 and 24 are refused.
    const int16_t count = bits == 1 || bits == -1 || bits == 4 || bits == -4 || bits == 24 || bits == -24 ? bits : 8;
    const int32_t compression = bits == 4 ? 2 : (count == 8 && bits >= 0) ? 1 : 0;
    bool written = false;
    RenderOffscreen(width, height, dpi, [&](const Bitmap& bitmap) {
        DibPtr dib = DibFromBitmap(bitmap, count, compression, nullptr);
        if (!dib || fileName.empty()) return;
        std::unique_ptr<FileSink> file = FileSink::Create(ToUtf8(fileName));
        written = file && DibWriteBmp(*dib, *file) && file->Close();
    });
    return written;
}

} // namespace bvx
