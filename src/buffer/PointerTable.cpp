#include "PointerTable.h"

#include <limits>
#include <string_view>

namespace bvx {

namespace {

enum class Art : uint8_t {
#define BVX_POINTER_ART(Name, HotX, HotY, Picture) Name,
#include "PointerArt.inc"
#undef BVX_POINTER_ART
    Count
};

struct ArtEntry {
    int32_t hotX;
    int32_t hotY;
    std::string_view picture;
};

constexpr ArtEntry kArt[] = {
#define BVX_POINTER_ART(Name, HotX, HotY, Picture) {HotX, HotY, Picture},
#include "PointerArt.inc"
#undef BVX_POINTER_ART
};

// The image of each entry of the starting list, in list order.
constexpr Art kStartList[PointerTable::kStartCount] = {
    Art::Arrow,      Art::Arrow,        Art::Cross,        Art::IBeam,          Art::Arrow,   Art::SizeCorner,
    Art::SizeRising, Art::SizeVertical, Art::SizeFalling,  Art::SizeHorizontal, Art::UpArrow, Art::Wait,
    Art::No,         Art::Arrow,        Art::Arrow,        Art::SizeCorner,     Art::Pan,     Art::NetSelect,
    Art::NetZoom,    Art::MoveFree,     Art::MoveVertical, Art::MoveHorizontal, Art::Copy,
};

// Role values from NetZoom (-3) to Copy (11).
constexpr std::array<int16_t, 15> kDefaultRoles = {18, 16, 17, 0, 2, 5, 7, 9, 6, 8, 19, 20, 21, 11, 22};

constexpr int32_t kArtSize = 32;

PointerImage Decode(const ArtEntry& art)
{
    PointerImage image;
    image.width = image.height = kArtSize;
    image.hotSpot = {art.hotX, art.hotY};
    image.andMask.assign(size_t(kArtSize * kArtSize), 1);
    image.xorColors.assign(size_t(kArtSize * kArtSize), kBlack);
    // The picture opens with the line break after the literal's parenthesis.
    std::string_view rest = art.picture.substr(1);
    for (int32_t y = 0; y < kArtSize && !rest.empty(); ++y) {
        const size_t end = rest.find('\n');
        const std::string_view row = rest.substr(0, end);
        for (size_t x = 0; x < row.size() && x < size_t(kArtSize); ++x) {
            const size_t i = size_t(y * kArtSize) + x;
            image.andMask[i] = row[x] == '.';
            image.xorColors[i] = row[x] == 'o' ? kWhite : kBlack;
        }
        rest = end == std::string_view::npos ? std::string_view() : rest.substr(end + 1);
    }
    return image;
}

const std::vector<std::shared_ptr<const PointerImage>>& StartingImages()
{
    static const std::vector<std::shared_ptr<const PointerImage>> images = [] {
        std::vector<std::shared_ptr<const PointerImage>> byArt;
        for (const ArtEntry& art : kArt) byArt.push_back(std::make_shared<const PointerImage>(Decode(art)));
        std::vector<std::shared_ptr<const PointerImage>> list;
        for (Art art : kStartList) list.push_back(byArt[size_t(art)]);
        return list;
    }();
    return images;
}

bool IsRole(int32_t mouseMode) { return mouseMode >= PointerRole::NetZoom && mouseMode <= PointerRole::Copy; }

} // namespace

PointerTable::PointerTable() : roles_(kDefaultRoles), pointers_(StartingImages()) {}

int16_t PointerTable::Role(int32_t mouseMode) const
{
    return roles_[size_t((IsRole(mouseMode) ? mouseMode : PointerRole::Draw) - kFirstRole)];
}

void PointerTable::SetRole(int32_t mouseMode, int16_t value)
{
    if (IsRole(mouseMode)) roles_[size_t(mouseMode - kFirstRole)] = value;
}

int16_t PointerTable::Add(PointerImage image)
{
    if (pointers_.size() + kAddedOffset > size_t(std::numeric_limits<int16_t>::max())) return -1;
    pointers_.push_back(std::make_shared<const PointerImage>(std::move(image)));
    return int16_t(pointers_.size() - 1 + kAddedOffset);
}

size_t PointerTable::IndexOf(int32_t value) const
{
    const int64_t index = value >= kStartCount ? int64_t(value) - kAddedOffset : value;
    // The count itself names nothing either, though it is no index.
    return index >= 0 && uint64_t(index) < pointers_.size() ? size_t(index) : 0;
}

void PointerTable::SetPointer(int16_t value, HostWindow* window)
{
    const size_t index = IndexOf(value);
    currentPointer_ = int16_t(index);
    if (window) window->SetPointerImage(*pointers_[index]);
}

} // namespace bvx
