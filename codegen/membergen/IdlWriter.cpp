#include "IdlWriter.h"

#include "AutomationNames.h"
#include "Identities.h"

#include <string>

namespace bvx::membergen {

namespace {

using members::AutoType;
using members::Kind;

// widl ships without the SDK's oaidl.idl and ocidl.idl; these declarations
// stand in for them. The compiler matches them by name against stdole2.tlb,
// so the type library still refers to the standard types; but it counts the
// inherited vtable slots from these, so the base interfaces list every method.
constexpr std::string_view kWidlPrelude = R"(#ifdef __WIDL__
typedef long HRESULT;
typedef unsigned short OLECHAR;
typedef OLECHAR* BSTR;
typedef short VARIANT_BOOL;
typedef [uuid(66504301-BE0F-101A-8BBB-00AA00300CAB), public] unsigned long OLE_COLOR;
typedef struct tagVARIANT { unsigned short vt; } VARIANT;
[object, local, uuid(00000000-0000-0000-C000-000000000046), pointer_default(unique)]
interface IUnknown
{
    HRESULT QueryInterface([in] void* riid, [out] void** ppvObject);
    unsigned long AddRef();
    unsigned long Release();
}
[object, local, uuid(00020400-0000-0000-C000-000000000046), pointer_default(unique)]
interface IDispatch : IUnknown
{
    HRESULT GetTypeInfoCount([out] unsigned int* pctinfo);
    HRESULT GetTypeInfo([in] unsigned int iTInfo, [in] unsigned long lcid, [out] void** ppTInfo);
    HRESULT GetIDsOfNames([in] void* riid, [in] void* rgszNames, [in] unsigned int cNames, [in] unsigned long lcid,
                          [out] long* rgDispId);
    HRESULT Invoke([in] long dispIdMember, [in] void* riid, [in] unsigned long lcid, [in] unsigned short wFlags,
                   [in] void* pDispParams, [out] VARIANT* pVarResult, [out] void* pExcepInfo,
                   [out] unsigned int* puArgErr);
}
#else
import "oaidl.idl";
import "ocidl.idl";
#endif
)";

std::string Quoted(std::string_view text)
{
    std::string out = "\"";
    for (char c : text) {
        if (c == '"' || c == '\\') out += '\\';
        out += c;
    }
    return out + '"';
}

std::string DefaultValue(const members::ArgSpec& arg)
{
    if (arg.type == AutoType::Bstr) return Quoted(Utf8(arg.textDefault));
    if (arg.type == AutoType::Bool) return arg.numberDefault != 0 ? "-1" : "0";
    return DefaultNumberText(arg);
}

std::string Parameter(const members::ArgSpec& arg)
{
    std::string attributes = "[in] ";
    // widl writes no default of a double into the type library, and one it
    // tries leaves the function unreadable there; the control's own dispatch
    // still fills it in when a caller leaves it out.
    if (arg.optional)
        attributes = arg.type == AutoType::R8 ? "[in, optional] "
                                              : "[in, optional, defaultvalue(" + DefaultValue(arg) + ")] ";
    return attributes + std::string(IdlTypeName(arg.type)) + " " + std::string(arg.name);
}

std::string ParameterList(std::span<const members::ArgSpec> args, std::string_view last)
{
    std::string list;
    for (const auto& arg : args) list += (list.empty() ? "" : ", ") + Parameter(arg);
    if (!last.empty()) list += (list.empty() ? "" : ", ") + std::string(last);
    return list;
}

void WriteMember(std::ostream& out, const members::MemberRow& row)
{
    std::string attributes = "id(" + std::to_string(row.dispid) + ")";
    if (IsHidden(row)) attributes += ", hidden";
    std::string last;
    const std::string type(IdlTypeName(row.result));
    switch (row.kind) {
    case Kind::Method:
        if (row.result != AutoType::Void) last = "[out, retval] " + type + "* pVal";
        break;
    case Kind::PropertyGet:
        attributes += ", propget";
        last = "[out, retval] " + type + "* pVal";
        break;
    case Kind::PropertyPut:
        attributes += ", propput";
        last = "[in] " + type + " newVal";
        break;
    }
    out << "        [" << attributes << ", helpstring(" << Quoted(row.summary) << ")]\n"
        << "        HRESULT " << row.name << "(" << ParameterList(row.args, last) << ");\n";
}

void WriteEvent(std::ostream& out, const members::EventRow& row)
{
    out << "        [id(" << row.dispid << "), helpstring(" << Quoted(row.summary) << ")]\n"
        << "        void " << row.name << "(" << ParameterList(row.args, {}) << ");\n";
}

void WriteToolEnum(std::ostream& out)
{
    out << "    typedef [uuid(" << kToolEnumGuid << "), helpstring(\"Mouse tools of the view\")]\n"
        << "    enum " << kToolEnumName << " {\n";
    for (size_t i = 0; i < std::size(kToolValues); ++i)
        out << "        " << kToolValues[i].name << " = " << kToolValues[i].value
            << (i + 1 < std::size(kToolValues) ? ",\n" : "\n");
    out << "    } " << kToolEnumName << ";\n\n";
}

} // namespace

void WriteIdl(std::ostream& out)
{
    out << "// bvxcad.idl: made by bvx_membergen from MemberTable.def and EventTable.def.\n\n"
        << kWidlPrelude << "\n"
        << "[uuid(" << kLibraryGuid << "), version(1.0), helpstring(\"ORVANE CAD control\")]\n"
        << "library " << kLibraryName << "\n{\n"
        << "    importlib(\"stdole2.tlb\");\n\n";
    WriteToolEnum(out);

    out << "    [object, uuid(" << kInterfaceGuid << "), dual, nonextensible, oleautomation,\n"
        << "     helpstring(\"The CAD control's members\"), pointer_default(unique)]\n"
        << "    interface IBvxCAD : IDispatch\n    {\n";
    for (const auto& row : members::kMemberRows) WriteMember(out, row);
    out << "    };\n\n";

    out << "    [uuid(" << kEventsGuid << "), helpstring(\"The CAD control's events\")]\n"
        << "    dispinterface _CADEvents\n    {\n    properties:\n    methods:\n";
    for (const auto& row : members::kEventRows) WriteEvent(out, row);
    out << "    };\n\n";

    out << "    [uuid(" << kCoclassGuid << "), helpstring(\"The CAD control\"), control]\n"
        << "    coclass BvxCAD\n    {\n"
        << "        [default] interface IBvxCAD;\n"
        << "        [default, source] dispinterface _CADEvents;\n"
        << "    };\n"
        << "};\n";
}

} // namespace bvx::membergen
