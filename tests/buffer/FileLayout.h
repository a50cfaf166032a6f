// Drawing files assembled by hand, field by field, for the tests of the
// reader and the writer: nothing here comes from the code under test.
#pragma once

#include "shapes/ShapeAttr.h"

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

namespace bvx {

// Little-endian fields as the file lays them out, assembled by hand.
struct Layout {
    std::vector<uint8_t> bytes;

    template <typename T> Layout& Le(T v, size_t size)
    {
        uint64_t u = 0;
        std::memcpy(&u, &v, size);
        for (size_t i = 0; i < size; ++i) bytes.push_back(uint8_t(u >> (8 * i)));
        return *this;
    }
    Layout& U8(uint8_t v) { return Le(v, 1); }
    Layout& I16(int16_t v) { return Le(v, 2); }
    Layout& I32(int32_t v) { return Le(v, 4); }
    Layout& U32(uint32_t v) { return Le(v, 4); }
    Layout& F64(double v) { return Le(v, 8); }
    Layout& Pt(double x, double y) { return F64(x).F64(y); }
    // Text in a field of `size` bytes, zeros behind it.
    Layout& Field(const std::string& text, size_t size)
    {
        for (size_t i = 0; i < size; ++i) bytes.push_back(i < text.size() ? uint8_t(text[i]) : 0);
        return *this;
    }
    // A length that counts the NUL, then the text and the NUL.
    Layout& Name(const std::string& text) { return I32(int32_t(text.size() + 1)).Field(text, text.size() + 1); }
    Layout& Raw(const std::vector<uint8_t>& more)
    {
        bytes.insert(bytes.end(), more.begin(), more.end());
        return *this;
    }
    // The head every shape starts with.
    Layout& Head(uint16_t type, uint8_t flags, int32_t number, const std::string& notes, size_t noteUnits,
                 const ShapeAttr* attr)
    {
        Le(type, 2).U8(flags).I32(number).I32(int32_t(noteUnits * 2 + 1)).Field(notes, noteUnits * 2 + 1);
        I16(attr ? 1 : 0);
        if (attr) U32(attr->Word0()).U32(attr->Word1());
        return *this;
    }
    // A layer record up to its shapes; a group's list has no pen and brush.
    Layout& List(const std::string& name, int16_t lineType, int16_t action, const std::vector<int32_t>& methods,
                 const ShapeAttr* attr, int32_t count)
    {
        Name(name).I16(lineType).I16(action);
        for (int32_t i = 0; i < 21; ++i) I32(i < int32_t(methods.size()) ? methods[size_t(i)] : 0);
        if (attr) U32(attr->Word0()).U32(attr->Word1());
        return I32(count);
    }
};

} // namespace bvx
