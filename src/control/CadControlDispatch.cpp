// Invoke: from a row of the member table to the method of the same name,
// with the arguments converted as the platform converts them.
#include "CadControl.h"

#include <array>
#include <tuple>
#include <type_traits>
#include <utility>
#include <vector>

namespace bvx {

namespace {

using members::AutoType;
using members::Kind;
using members::MemberRow;

// The automation type each C++ parameter or result type stands for.
template <typename T> struct AutoTypeOf;
template <> struct AutoTypeOf<int16_t> { static constexpr AutoType value = AutoType::I2; };
template <> struct AutoTypeOf<int32_t> { static constexpr AutoType value = AutoType::I4; };
template <> struct AutoTypeOf<double> { static constexpr AutoType value = AutoType::R8; };
template <> struct AutoTypeOf<bool> { static constexpr AutoType value = AutoType::Bool; };
template <> struct AutoTypeOf<std::u16string> { static constexpr AutoType value = AutoType::Bstr; };
template <> struct AutoTypeOf<uint32_t> { static constexpr AutoType value = AutoType::Color; };
template <> struct AutoTypeOf<Variant> { static constexpr AutoType value = AutoType::Variant; };
template <> struct AutoTypeOf<void> { static constexpr AutoType value = AutoType::Void; };
template <> struct AutoTypeOf<Status> { static constexpr AutoType value = AutoType::Void; };

template <typename T> struct AutoTypeOf<Reply<T>> : AutoTypeOf<T> {};

// The enumeration and Int are carried as 32-bit integers.
constexpr bool SameType(AutoType declared, AutoType cpp)
{
    return declared == cpp || ((declared == AutoType::Tool || declared == AutoType::Int) && cpp == AutoType::I4);
}

template <typename T> HResult FromVariant(const Variant& in, T& out)
{
    Variant converted;
    if constexpr (std::is_same_v<T, Variant>) {
        out = in;
        return hresult::Ok;
    } else if constexpr (std::is_same_v<T, std::u16string>) {
        HResult hr = ChangeType(in, VarType::Bstr, converted);
        if (hr == hresult::Ok) out = converted.Text();
        return hr;
    } else if constexpr (std::is_same_v<T, double>) {
        HResult hr = ChangeType(in, VarType::R8, converted);
        if (hr == hresult::Ok) out = converted.Real();
        return hr;
    } else if constexpr (std::is_same_v<T, bool>) {
        HResult hr = ChangeType(in, VarType::Bool, converted);
        if (hr == hresult::Ok) out = converted.BoolValue();
        return hr;
    } else if constexpr (std::is_same_v<T, int16_t>) {
        HResult hr = ChangeType(in, VarType::I2, converted);
        if (hr == hresult::Ok) out = int16_t(converted.Integer());
        return hr;
    } else if constexpr (std::is_same_v<T, uint32_t>) {
        // Colours arrive as signed or unsigned 32 bits; both carry the same bits.
        if (in.Type() == VarType::R8 && in.Real() >= 2147483648.0 && in.Real() <= 4294967295.0) {
            out = uint32_t(in.Real());
            return hresult::Ok;
        }
        HResult hr = ChangeType(in, VarType::I4, converted);
        if (hr == hresult::Ok) out = uint32_t(int32_t(converted.Integer()));
        return hr;
    } else {
        static_assert(std::is_same_v<T, int32_t>);
        HResult hr = ChangeType(in, VarType::I4, converted);
        if (hr == hresult::Ok) out = int32_t(converted.Integer());
        return hr;
    }
}

// A result as its row declares it: Int rows share int32_t with I4 ones.
template <AutoType Declared, typename T> Variant ToVariant(const T& v)
{
    if constexpr (std::is_same_v<T, Variant>) return v;
    else if constexpr (std::is_same_v<T, std::u16string>) return Variant::String(v);
    else if constexpr (std::is_same_v<T, double>) return Variant::R8(v);
    else if constexpr (std::is_same_v<T, bool>) return Variant::Bool(v);
    else if constexpr (std::is_same_v<T, int16_t>) return Variant::I2(v);
    else if constexpr (std::is_same_v<T, uint32_t>) return Variant::I4(int32_t(v));
    else if constexpr (Declared == AutoType::Int) return Variant::Int(v);
    else return Variant::I4(v);
}

template <AutoType Declared, typename R> HResult StoreResult(R&& r, Variant* result)
{
    using T = std::decay_t<R>;
    if constexpr (requires { r.value; r.hr; }) {
        if (r.value && result) *result = ToVariant<Declared>(*r.value);
        return r.hr;
    } else {
        if (result) *result = ToVariant<Declared, T>(r);
        return hresult::Ok;
    }
}

using Handler = HResult (*)(CadControl&, std::span<const Variant>, Variant*);

template <auto Method, AutoType Declared> struct Bind;
template <typename R, typename... P, R (CadControl::*Method)(P...), AutoType Declared> struct Bind<Method, Declared> {
    static constexpr std::array<AutoType, sizeof...(P)> params{AutoTypeOf<std::decay_t<P>>::value...};
    static constexpr AutoType result =
        std::is_same_v<R, Status> ? AutoType::Void : AutoTypeOf<std::decay_t<R>>::value;

    static HResult Call(CadControl& control, std::span<const Variant> args, Variant* out)
    {
        return CallWith(control, args, out, std::index_sequence_for<P...>{});
    }

    template <size_t... I>
    static HResult CallWith(CadControl& control, std::span<const Variant> args, Variant* out, std::index_sequence<I...>)
    {
        (void)args; // unread by members without arguments
        std::tuple<std::decay_t<P>...> values;
        HResult hr = hresult::Ok;
        ((hr == hresult::Ok ? (hr = FromVariant(args[I], std::get<I>(values))) : hr), ...);
        if (hr != hresult::Ok) return hr;
        if constexpr (std::is_void_v<R>) {
            (control.*Method)(std::move(std::get<I>(values))...);
            return hresult::Ok;
        } else if constexpr (std::is_same_v<R, Status>) {
            return (control.*Method)(std::move(std::get<I>(values))...).code;
        } else {
            return StoreResult<Declared>((control.*Method)(std::move(std::get<I>(values))...), out);
        }
    }
};

struct Binding {
    Handler handler;
    std::span<const AutoType> params;
    AutoType result;
};

template <auto Method, AutoType Declared> constexpr Binding BindingOf()
{
    using B = Bind<Method, Declared>;
    return {&B::Call, B::params, B::result};
}

#define BVX_METHOD(Id, Name, Result, G, Doc, ...) BindingOf<&CadControl::Name, AutoType::Result>(),
#define BVX_GET(Id, Name, Type, G, Doc, ...) BindingOf<&CadControl::Get##Name, AutoType::Type>(),
#define BVX_GETPUT(Id, Name, Type, G, Doc, ...)                                                                    \
    BindingOf<&CadControl::Get##Name, AutoType::Type>(), BindingOf<&CadControl::Put##Name, AutoType::Void>(),
constexpr Binding kBindings[] = {
#include "MemberTable.def"
};
#undef BVX_METHOD
#undef BVX_GET
#undef BVX_GETPUT

static_assert(std::size(kBindings) == std::size(members::kMemberRows), "one method per row");

// Every method takes what its row declares and gives what it promises.
constexpr bool SignaturesMatch()
{
    for (size_t i = 0; i < std::size(kBindings); ++i) {
        const MemberRow& row = members::kMemberRows[i];
        const Binding& b = kBindings[i];
        size_t expected = row.args.size() + (row.kind == Kind::PropertyPut ? 1 : 0);
        if (b.params.size() != expected) return false;
        for (size_t a = 0; a < row.args.size(); ++a)
            if (!SameType(row.args[a].type, b.params[a])) return false;
        if (row.kind == Kind::PropertyPut) {
            if (!SameType(row.result, b.params.back())) return false;
            if (b.result != AutoType::Void) return false;
        } else if (!SameType(row.result, b.result)) {
            return false;
        }
    }
    return true;
}
static_assert(SignaturesMatch(), "a method's signature differs from its row in MemberTable.def");

char16_t Fold(char16_t c) { return c >= u'A' && c <= u'Z' ? char16_t(c - u'A' + u'a') : c; }

bool SameName(std::u16string_view a, std::string_view b)
{
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i)
        if (Fold(a[i]) != Fold(char16_t(static_cast<unsigned char>(b[i])))) return false;
    return true;
}

Variant DefaultOf(const members::ArgSpec& arg)
{
    switch (arg.type) {
    case AutoType::Bstr: return Variant::String(std::u16string(arg.textDefault));
    case AutoType::R8: return Variant::R8(arg.numberDefault);
    case AutoType::Bool: return Variant::Bool(arg.numberDefault != 0);
    case AutoType::I2: return Variant::I2(int16_t(arg.numberDefault));
    case AutoType::Int: return Variant::Int(int32_t(arg.numberDefault));
    default: return Variant::I4(int32_t(arg.numberDefault));
    }
}

} // namespace

const MemberRow* CadControl::FindRow(int32_t dispid, Kind kind)
{
    for (const MemberRow& row : members::kMemberRows)
        if (row.dispid == dispid && row.kind == kind) return &row;
    return nullptr;
}

std::optional<int32_t> CadControl::DispidOfName(std::u16string_view name)
{
    for (const MemberRow& row : members::kMemberRows)
        if (SameName(name, row.name)) return row.dispid;
    return std::nullopt;
}

HResult CadControl::Invoke(std::u16string_view name, Kind kind, std::span<const Variant> args, Variant* result)
{
    std::optional<int32_t> dispid = DispidOfName(name);
    if (!dispid) return hresult::UnknownName;
    return Invoke(*dispid, kind, args, result);
}

HResult CadControl::Invoke(int32_t dispid, Kind kind, std::span<const Variant> args, Variant* result)
{
    const MemberRow* row = FindRow(dispid, kind);
    if (!row) return hresult::MemberNotFound;
    const size_t index = size_t(row - members::kMemberRows);
    const bool put = kind == Kind::PropertyPut;
    const size_t declared = row->args.size() + (put ? 1 : 0);
    if (args.size() > declared) return hresult::BadParamCount;

    // A put takes every index argument and its value, the value last.
    if (put && (args.size() != declared || args.back().IsMissing())) return hresult::ParamNotOptional;
    const size_t given = put ? args.size() - 1 : args.size();
    std::vector<Variant> full;
    full.reserve(declared);
    for (size_t i = 0; i < row->args.size(); ++i) {
        if (i < given && !args[i].IsMissing())
            full.push_back(args[i]);
        else if (row->args[i].optional)
            full.push_back(DefaultOf(row->args[i]));
        else
            return hresult::ParamNotOptional;
    }
    if (put) full.push_back(args.back());
    if (row->gate == members::Gate::DesignTimeGated && !UserMode()) return hresult::GetNotSupported;
    return kBindings[index].handler(*this, full, result);
}

} // namespace bvx
