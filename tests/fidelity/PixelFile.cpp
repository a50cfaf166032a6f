#include "PixelFile.h"

#include "platform/ByteStream.h"
#include "platform/DibFormat.h"

#include <vector>

namespace bvx::fidelity {

bool WritePixelFile(const Bitmap& bitmap, const std::string& path)
{
    DibInfoHeader header;
    header.width = bitmap.Width();
    header.height = -bitmap.Height();
    header.bitCount = 32;
    std::vector<uint8_t> bytes(kBmpFileHeaderSize + kDibInfoHeaderSize);
    StoreLe16(bytes.data(), kBmpSignature);
    StoreLe32(bytes.data() + 10, kBmpFileHeaderSize + kDibInfoHeaderSize);
    StoreDibInfoHeader(header, bytes.data() + kBmpFileHeaderSize);
    for (int32_t y = 0; y < bitmap.Height(); ++y)
        for (ColorRef c : bitmap.Row(y)) bytes.insert(bytes.end(), {BlueOf(c), GreenOf(c), RedOf(c), 0});
    StoreLe32(bytes.data() + 2, uint32_t(bytes.size()));
    auto file = FileSink::Create(path);
    return file && file->Write(bytes.data(), bytes.size()) && file->Close();
}

BitmapHandle ReadPixelFile(const std::string& path)
{
    auto file = FileSource::Open(path);
    if (!file || file->Size() < kBmpFileHeaderSize) return nullptr;
    std::vector<uint8_t> bytes(size_t(file->Size()));
    if (!file->ReadExact(bytes.data(), bytes.size())) return nullptr;
    const auto view = ParseDib(std::span(bytes).subspan(kBmpFileHeaderSize));
    if (!view || view->bitCount != 32 || !view->topDown) return nullptr;
    auto bitmap = CreateBitmap(view->width, view->height);
    for (size_t i = 0; bitmap && i < bitmap->Pixels().size(); ++i) {
        const uint8_t* p = view->bits.data() + 4 * i;
        bitmap->Pixels()[i] = MakeRgb(p[2], p[1], p[0]);
    }
    return bitmap;
}

} // namespace bvx::fidelity
