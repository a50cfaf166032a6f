// The automation surface as data: every member and event of the host
// interface, read from MemberTable.def and EventTable.def. This header has
// no dependencies beyond the standard library so that the build machine's
// generator (IDL, reference page, bindings) compiles it on its own.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace bvx::members {

// Automation types as the interface declares them. Int is the IDL's `int`,
// 32 bits like I4 but a type of its own in a VARIANT.
enum class AutoType : uint8_t { Void, I2, I4, Int, R8, Bool, Bstr, Color, Variant, Tool };

enum class Kind : uint8_t { Method, PropertyGet, PropertyPut };

// Whether a member answers at design time.
enum class Gate : uint8_t { Open, DesignTimeGated };

struct ArgSpec {
    std::string_view name;
    AutoType type = AutoType::Void;
    bool optional = false;
    double numberDefault = 0;
    std::u16string_view textDefault{};
    bool isPlaceholder = false; // leads every list so that empty lists are legal
};

struct MemberRow {
    int32_t dispid;
    std::string_view name;
    Kind kind;
    AutoType result; // the property type for gets and puts; the value a put takes comes last
    Gate gate;
    std::string_view summary;
    std::span<const ArgSpec> args; // index arguments of a property, arguments of a method
};

struct EventRow {
    int32_t dispid;
    std::string_view name;
    std::string_view summary;
    std::span<const ArgSpec> args;
};

namespace detail {
constexpr std::span<const ArgSpec> Args(std::span<const ArgSpec> withPlaceholder) { return withPlaceholder.subspan(1); }
} // namespace detail

// Argument constructors used by the table files.
#define BVX_ARG(T, N) ::bvx::members::ArgSpec{#N, ::bvx::members::AutoType::T}
#define BVX_OPT(T, N, D) ::bvx::members::ArgSpec{#N, ::bvx::members::AutoType::T, true, double(D)}
#define BVX_OPT_TEXT(T, N, D) ::bvx::members::ArgSpec{#N, ::bvx::members::AutoType::T, true, 0.0, D}

// One argument list per row, named after the row.
#define BVX_ARGS_NAME(Name, Suffix) kArgs_##Name##_##Suffix
#define BVX_METHOD(Id, Name, Result, G, Doc, ...)                                                                  \
    inline constexpr ArgSpec BVX_ARGS_NAME(Name, M)[] = {ArgSpec{{}, AutoType::Void, false, 0, {}, true} __VA_OPT__(, ) __VA_ARGS__};
#define BVX_GET(Id, Name, Type, G, Doc, ...)                                                                       \
    inline constexpr ArgSpec BVX_ARGS_NAME(Name, P)[] = {ArgSpec{{}, AutoType::Void, false, 0, {}, true} __VA_OPT__(, ) __VA_ARGS__};
#define BVX_GETPUT(Id, Name, Type, G, Doc, ...) BVX_GET(Id, Name, Type, G, Doc __VA_OPT__(, ) __VA_ARGS__)
#define BVX_EVENT(Id, Name, Doc, ...)                                                                              \
    inline constexpr ArgSpec BVX_ARGS_NAME(Name, E)[] = {ArgSpec{{}, AutoType::Void, false, 0, {}, true} __VA_OPT__(, ) __VA_ARGS__};
#include "MemberTable.def"
#include "EventTable.def"
#undef BVX_METHOD
#undef BVX_GET
#undef BVX_GETPUT
#undef BVX_EVENT

// The rows: a read-only property gives one row, a read-write one two.
#define BVX_METHOD(Id, Name, Result, G, Doc, ...)                                                                  \
    MemberRow{Id, #Name, Kind::Method, AutoType::Result, Gate::G, Doc, detail::Args(BVX_ARGS_NAME(Name, M))},
#define BVX_GET(Id, Name, Type, G, Doc, ...)                                                                       \
    MemberRow{Id, #Name, Kind::PropertyGet, AutoType::Type, Gate::G, Doc, detail::Args(BVX_ARGS_NAME(Name, P))},
#define BVX_GETPUT(Id, Name, Type, G, Doc, ...)                                                                    \
    BVX_GET(Id, Name, Type, G, Doc)                                                                                \
    MemberRow{Id, #Name, Kind::PropertyPut, AutoType::Type, Gate::Open, Doc, detail::Args(BVX_ARGS_NAME(Name, P))},
inline constexpr MemberRow kMemberRows[] = {
#include "MemberTable.def"
};
#undef BVX_METHOD
#undef BVX_GET
#undef BVX_GETPUT

#define BVX_EVENT(Id, Name, Doc, ...) EventRow{Id, #Name, Doc, detail::Args(BVX_ARGS_NAME(Name, E))},
inline constexpr EventRow kEventRows[] = {
#include "EventTable.def"
};
#undef BVX_EVENT

// Each member's dispid under its name, for code that must name a member to
// the container (which property changed).
namespace dispid {
#define BVX_METHOD(Id, Name, ...) inline constexpr int32_t Name = Id;
#define BVX_GET(Id, Name, ...) inline constexpr int32_t Name = Id;
#define BVX_GETPUT(Id, Name, ...) inline constexpr int32_t Name = Id;
#include "MemberTable.def"
#undef BVX_METHOD
#undef BVX_GET
#undef BVX_GETPUT
} // namespace dispid

} // namespace bvx::members
