// The drawing's mouse pointers: a list of images and a table of which image
// stands for each role. Tools and shapes never name an image; they ask for a
// role's value and hand it to SetPointer. None of it is saved with the
// drawing, and clearing the drawing leaves it alone.
#pragma once

#include "platform/HostWindow.h"
#include "platform/PointerImage.h"
#include "shapes/ShapeTypes.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace bvx {

class PointerTable {
public:
    // Values 0 to 22 are indexes of the starting list; an added image's value
    // is its index plus 76, so the first one added is 99. 23 to 98 name nothing.
    static constexpr int16_t kStartCount = 23;
    static constexpr int16_t kAddedOffset = 76;

    PointerTable();

    // A MouseMode outside the roles reads the drawing role.
    int16_t Role(int32_t mouseMode) const;
    // Stores any value; a MouseMode outside the roles changes nothing.
    void SetRole(int32_t mouseMode, int16_t value);

    // The role table from role 0 on, indexed by role, as shapes name the
    // pointers of their handles.
    std::span<const int16_t> HandleRoles() const { return std::span<const int16_t>(roles_).subspan(-kFirstRole); }

    // Appends an image; the value that names it, or -1 when no value is left.
    int16_t Add(PointerImage image);
    size_t Count() const { return pointers_.size(); }
    const PointerImage& Image(size_t index) const { return *pointers_[index]; }

    // The index a value stands for; a value that names no image, negative
    // ones included, gives 0, the arrow.
    size_t IndexOf(int32_t value) const;
    // Makes the value's image the current one and shows it in the window
    // (with none, only the current index changes).
    void SetPointer(int16_t value, HostWindow* window);
    // The index last set, not the value given.
    int16_t GetPointer() const { return currentPointer_; }

private:
    static constexpr int16_t kFirstRole = PointerRole::NetZoom;

    std::array<int16_t, 15> roles_;
    // The starting images are shared by every table.
    std::vector<std::shared_ptr<const PointerImage>> pointers_;
    int16_t currentPointer_ = 0;
};

} // namespace bvx
