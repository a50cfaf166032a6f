// Readable failure messages for automation values.
#pragma once

#include "control/Variant.h"

#include <ostream>

namespace bvx {

inline void PrintTo(const Variant& v, std::ostream* os)
{
    switch (v.Type()) {
    case VarType::Empty: *os << "Empty"; break;
    case VarType::I2: *os << "I2 " << v.Integer(); break;
    case VarType::I4: *os << "I4 " << v.Integer(); break;
    case VarType::Int: *os << "Int " << v.Integer(); break;
    case VarType::R8: *os << "R8 " << v.Real(); break;
    case VarType::Bool: *os << "Bool " << v.Integer(); break;
    case VarType::Bstr: *os << "String \"" << ToUtf8(v.Text()) << '"'; break;
    case VarType::Error: *os << "Error " << std::hex << v.Integer() << std::dec; break;
    case VarType::Array:
        *os << "Array type " << v.TypeWord() << " of " << v.Rows() << "x" << v.Columns() << " {";
        for (const Variant& item : v.Items()) {
            PrintTo(item, os);
            *os << ", ";
        }
        *os << "}";
        break;
    default: *os << "type " << int(v.Type()); break;
    }
}

} // namespace bvx
