#include "PictTable.h"

#include "CadBuf.h"
#include "platform/ByteStream.h"

#include <algorithm>
#include <cctype>

namespace bvx {

namespace {
bool SameIgnoringCase(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && std::equal(a.begin(), a.end(), b.begin(), [](char x, char y) {
               return std::tolower(static_cast<unsigned char>(x)) == std::tolower(static_cast<unsigned char>(y));
           });
}
} // namespace

std::string_view PictTable::LastComponent(std::string_view path)
{
    const size_t cut = path.find_last_of("\\/");
    return cut == std::string_view::npos ? path : path.substr(cut + 1);
}

CadPictEntry* PictTable::Find(std::string_view name)
{
    const std::string_view key = LastComponent(name);
    auto it = std::find_if(Entries.begin(), Entries.end(), [&](const CadPictEntry& e) { return e.Name == key; });
    return it == Entries.end() ? nullptr : &*it;
}

CadPictEntry* PictTable::Load(const std::string& path, bool makeUnique)
{
    std::unique_ptr<FileSource> file = FileSource::Open(path);
    if (!file) return nullptr;
    const uint64_t size = file->Size();
    DibPtr dib = DibReadBlock(*file, false);
    if (!dib) return nullptr;
    std::string name(LastComponent(path));
    if (makeUnique) {
        for (uint64_t n = 0;; ++n) {
            const std::string candidate = name + std::to_string(n);
            if (std::none_of(Entries.begin(), Entries.end(),
                             [&](const CadPictEntry& e) { return SameIgnoringCase(e.Name, candidate); })) {
                name = candidate;
                break;
            }
        }
    }
    Entries.push_back({std::move(name), SharedDib(std::move(dib)), size});
    return &Entries.back();
}

CadPictEntry* PictTable::Replace(const std::string& path)
{
    const std::string_view key = LastComponent(path);
    std::erase_if(Entries, [&](const CadPictEntry& e) { return e.Name == key; });
    return Load(path, false);
}

void PictTable::Release(const std::string& name, const CadBuf& buffer)
{
    if (buffer.PictureInUse(name)) return;
    std::erase_if(Entries, [&](const CadPictEntry& e) { return e.Name == name; });
}

void PictTable::Bind(const std::string& name, CPictShape& shape)
{
    if (name.empty()) return;
    const CadPictEntry* entry = Find(name);
    shape.BindImage(shape.Style, entry ? entry->Name : name, entry ? entry->Image : nullptr);
}

} // namespace bvx
