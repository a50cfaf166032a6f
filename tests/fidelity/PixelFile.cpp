#include "PixelFile.h"

#include "platform/ByteStream.h"

namespace bvx::fidelity {

namespace {
constexpr uint32_t kHeaderBytes = 14 + 40;
}

bool WritePixelFile(const Bitmap& bitmap, const std::string& path)
{
    auto file = FileSink::Create(path);
    if (!file) return false;
    uint32_t imageBytes = uint32_t(bitmap.Width()) * uint32_t(bitmap.Height()) * 4;
    file->WriteLe<uint16_t>(0x4D42);
    file->WriteLe<uint32_t>(kHeaderBytes + imageBytes);
    file->WriteLe<uint32_t>(0);
    file->WriteLe<uint32_t>(kHeaderBytes);
    file->WriteLe<uint32_t>(40);
    file->WriteLe<int32_t>(bitmap.Width());
    file->WriteLe<int32_t>(-bitmap.Height());
    file->WriteLe<uint16_t>(1);
    file->WriteLe<uint16_t>(32);
    for (int i = 0; i < 6; ++i) file->WriteLe<uint32_t>(i == 1 ? imageBytes : 0);
    for (int32_t y = 0; y < bitmap.Height(); ++y)
        for (uint32_t c : bitmap.Row(y)) file->WriteLe<uint32_t>(uint32_t(BlueOf(c)) | (uint32_t(GreenOf(c)) << 8) |
                                                                 (uint32_t(RedOf(c)) << 16));
    return file->Close();
}

BitmapHandle ReadPixelFile(const std::string& path)
{
    auto file = FileSource::Open(path);
    if (!file) return nullptr;
    uint16_t magic = 0, planes = 0, bits = 0;
    uint32_t skip = 0, headerSize = 0;
    int32_t width = 0, height = 0;
    if (!file->ReadLe(magic) || magic != 0x4D42 || !file->ReadLe(skip) || !file->ReadLe(skip) ||
        !file->ReadLe(skip) || !file->ReadLe(headerSize) || headerSize != 40 || !file->ReadLe(width) ||
        !file->ReadLe(height) || !file->ReadLe(planes) || !file->ReadLe(bits) || bits != 32 || height >= 0 ||
        !file->Seek(kHeaderBytes))
        return nullptr;
    auto bitmap = CreateBitmap(width, -height);
    if (!bitmap) return nullptr;
    for (uint32_t& c : bitmap->Pixels()) {
        uint32_t p = 0;
        if (!file->ReadLe(p)) return nullptr;
        c = MakeRgb(uint8_t(p >> 16), uint8_t(p >> 8), uint8_t(p));
    }
    return bitmap;
}

} // namespace bvx::fidelity
