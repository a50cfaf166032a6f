#include "CliWindow.h"

#include "platform/ByteStream.h"
#include "platform/WindowMessages.h"
#include "platform/raster/RasterDeviceContext.h"
#include "raster/Dib.h"

#include <algorithm>

namespace bvx::script {

namespace {
// Past this many pieces the invalid area is kept as their bounding box.
constexpr size_t kMaxInvalidPieces = 16;
} // namespace

bool WriteBitmapFile(const Bitmap& bitmap, const std::string& path)
{
    auto dib = DibFromBitmap(bitmap, 24, 0, nullptr);
    if (!dib) return false;
    auto file = FileSink::Create(path);
    return file && DibWriteBmp(*dib, *file) && file->Close();
}

void CliWindow::Resize(int32_t width, int32_t height)
{
    surface_ = ResizedSurface(surface_.get(), std::max(width, 1), std::max(height, 1));
    invalid_.clear();
    InvalidateRect(nullptr, true);
}

DeviceRect CliWindow::GetClientRect() const
{
    return surface_ ? DeviceRect{0, 0, surface_->Width(), surface_->Height()} : DeviceRect{};
}

void CliWindow::InvalidateRect(const DeviceRect* rect, bool)
{
    DeviceRect piece = (rect ? rect->Normalized() : GetClientRect()).Intersected(GetClientRect());
    if (piece.IsEmpty()) return;
    for (const DeviceRect& r : invalid_)
        if (r.Intersected(piece) == piece) return;
    invalid_.push_back(piece);
    if (invalid_.size() > kMaxInvalidPieces) {
        DeviceRect all{};
        for (const DeviceRect& r : invalid_) all = all.United(r);
        invalid_.assign(1, all);
    }
}

std::unique_ptr<DeviceContext> CliWindow::GetDC()
{
    return surface_ ? std::make_unique<RasterDeviceContext>(surface_) : nullptr;
}

std::unique_ptr<DeviceContext> CliWindow::BeginPaint()
{
    if (!surface_ || invalid_.empty()) return nullptr;
    auto dc = std::make_unique<RasterDeviceContext>(surface_);
    dc->SelectClipRects(invalid_);
    invalid_.clear();
    return dc;
}

int64_t CliWindow::Send(uint32_t msg, uint64_t wParam, int64_t lParam)
{
    if (!procedure_) return 0;
    if (IsMouseMessage(msg)) {
        cursor_ = ClientToScreen(PointFromLParam(lParam));
        heldKeys_ = wParam;
        procedure_(wm::SetCursor, 0, MakeLParam(wm::HitClient, int32_t(msg)));
    }
    return procedure_(msg, wParam, lParam);
}

void CliWindow::SetCursorPos(DevicePoint screen)
{
    if (screen == cursor_) return;
    cursor_ = screen;
    const DevicePoint client = ScreenToClient(screen);
    Post(wm::MouseMove, heldKeys_, MakeLParam(client.x, client.y));
}

void CliWindow::PumpMessages()
{
    // Each message is taken off the queue before it runs: a handler may pump
    // again.
    while (!queue_.empty()) {
        Message m = queue_.front();
        queue_.pop_front();
        Send(m.msg, m.wParam, m.lParam);
    }
}

std::optional<int32_t> CliWindow::TrackPopupMenu(const std::vector<PopupMenuItem>& items, DevicePoint)
{
    ++menusShown_;
    std::optional<int32_t> answer = menuAnswer_;
    menuAnswer_.reset();
    if (!answer) return std::nullopt;
    for (const PopupMenuItem& item : items)
        if (!item.separator && item.command == *answer) return answer;
    return std::nullopt;
}

} // namespace bvx::script
