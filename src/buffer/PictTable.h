// The drawing's pictures: one decoded bitmap per file name, shared by every
// picture shape that names it.
#pragma once

#include "shapes/CPictShape.h"

#include <string>
#include <string_view>
#include <vector>

namespace bvx {

class CadBuf;

struct CadPictEntry {
    std::string Name; // the file's last path component
    SharedDib Image;
    uint64_t Size = 0; // of the bitmap file, in bytes
};

class PictTable {
public:
    std::vector<CadPictEntry> Entries;

    // By the last path component of `name`, exactly.
    CadPictEntry* Find(std::string_view name);
    // Reads a bitmap file into a new entry; with `makeUnique` the name gets
    // the first decimal suffix no entry has (case aside). Null when the
    // file can't be opened or isn't a whole, sound bitmap.
    CadPictEntry* Load(const std::string& path, bool makeUnique);
    // Loads the file again in place of the entry of its name.
    CadPictEntry* Replace(const std::string& path);
    // Drops the entry unless a picture shape of the drawing still names it.
    void Release(const std::string& name, const CadBuf& buffer);
    // The shape takes the entry of the name with its present style; an
    // unknown name leaves it without an image, an empty one does nothing.
    void Bind(const std::string& name, CPictShape& shape);

    static std::string_view LastComponent(std::string_view path);
};

} // namespace bvx
