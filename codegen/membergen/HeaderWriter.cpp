#include "HeaderWriter.h"

#include "AutomationNames.h"
#include "Identities.h"

#include <string>

namespace bvx::membergen {

namespace {

using members::AutoType;
using members::Kind;

constexpr std::string_view kAutoTypeNames[] = {"Void", "I2",   "I4",    "Int",     "R8",
                                               "Bool", "Bstr", "Color", "Variant", "Tool"};
static_assert(std::size(kAutoTypeNames) == size_t(AutoType::Tool) + 1, "one name per AutoType, in its order");
constexpr std::string_view kKindNames[] = {"Method", "PropertyGet", "PropertyPut"};

std::string_view AutoTypeName(AutoType type) { return kAutoTypeNames[size_t(type)]; }

bool HasResult(const members::MemberRow& row)
{
    return row.kind == Kind::PropertyGet || (row.kind == Kind::Method && row.result != AutoType::Void);
}

// The vtable entry's parameters, the value of a put and the result last.
std::string Parameters(const members::MemberRow& row)
{
    std::string list;
    auto add = [&](std::string item) { list += (list.empty() ? "" : ", ") + item; };
    for (const auto& arg : row.args) add(std::string(IdlTypeName(arg.type)) + " " + std::string(arg.name));
    if (row.kind == Kind::PropertyPut) add(std::string(IdlTypeName(row.result)) + " newVal");
    if (HasResult(row)) add(std::string(IdlTypeName(row.result)) + "* pVal");
    return list;
}

std::string CoreArgument(AutoType type, std::string_view name)
{
    return "bvx::com::ToArgument<bvx::members::AutoType::" + std::string(AutoTypeName(type)) + ">(" +
           std::string(name) + ")";
}

// The same numbers as one flat argument list, as the platform's macro takes them.
std::string FlatGuid(std::string_view guid)
{
    std::string flat;
    for (char c : GuidInitializer(guid))
        if (c != '{' && c != '}') flat += c;
    return flat;
}

void WriteGuid(std::ostream& out, std::string_view kind, std::string_view name, std::string_view guid)
{
    out << "inline constexpr " << kind << " " << name << " = " << GuidInitializer(guid) << ";\n";
}

void WriteForwarder(std::ostream& out, const members::MemberRow& row)
{
    std::string arguments;
    for (const auto& arg : row.args) arguments += (arguments.empty() ? "" : ", ") + CoreArgument(arg.type, arg.name);
    if (row.kind == Kind::PropertyPut)
        arguments += (arguments.empty() ? "" : ", ") + CoreArgument(row.result, "newVal");
    out << "    HRESULT STDMETHODCALLTYPE " << VtableName(row) << "(" << Parameters(row) << ") override\n    {\n";
    if (arguments.empty())
        out << "        const std::span<const bvx::Variant> args;\n";
    else
        out << "        const bvx::Variant args[] = {" << arguments << "};\n";
    out << "        return static_cast<Impl*>(this)->CallFromVtable(" << row.dispid
        << ", bvx::members::Kind::" << kKindNames[size_t(row.kind)] << ", args" << (HasResult(row) ? ", pVal" : "")
        << ");\n    }\n";
}

} // namespace

void WriteInterfaceHeader(std::ostream& out)
{
    out << "// bvxcad.h: made by bvx_membergen from MemberTable.def and EventTable.def.\n"
        << "// The vtable grows as members are added; early-bound hosts rebuild then.\n"
        << "#pragma once\n\n#include <ocidl.h>\n#include <olectl.h>\n\n";
    WriteGuid(out, "GUID", "LIBID_" + std::string(kLibraryName), kLibraryGuid);
    WriteGuid(out, "IID", "IID_IBvxCAD", kInterfaceGuid);
    WriteGuid(out, "IID", "DIID__CADEvents", kEventsGuid);
    WriteGuid(out, "CLSID", "CLSID_BvxCAD", kCoclassGuid);

    out << "\ntypedef enum " << kToolEnumName << " {\n";
    for (const auto& value : kToolValues) out << "    " << value.name << " = " << value.value << ",\n";
    out << "} " << kToolEnumName << ";\n\n";

    out << "struct IBvxCAD : public IDispatch {\n";
    for (const auto& row : members::kMemberRows)
        out << "    virtual HRESULT STDMETHODCALLTYPE " << VtableName(row) << "(" << Parameters(row) << ") = 0;\n";
    out << "};\n\n"
        << "// Events arrive through IDispatch::Invoke with these dispids.\n"
        << "struct _CADEvents : public IDispatch {};\n"
        << "enum CADEventsDispid : DISPID {\n";
    for (const auto& row : members::kEventRows)
        out << "    DISPID_CADEvents_" << row.name << " = " << row.dispid << ",\n";
    out << "};\n\n"
        << "#ifdef __CRT_UUID_DECL\n"
        << "__CRT_UUID_DECL(IBvxCAD, " << FlatGuid(kInterfaceGuid) << ")\n"
        << "#endif\n";
}

void WriteVtableHeader(std::ostream& out)
{
    out << "// bvxcad_vtable.h: made by bvx_membergen from MemberTable.def.\n"
        << "// Impl provides CallFromVtable (with and without a result pointer) and\n"
        << "// bvx::com::ToArgument; every entry forwards to the one dispatch path.\n"
        << "#pragma once\n\n#include \"bvxcad.h\"\n\n#include <span>\n\n"
        << "template <typename Impl> class BvxCadVtable : public IBvxCAD {\npublic:\n";
    for (const auto& row : members::kMemberRows) WriteForwarder(out, row);
    out << "};\n";
}

} // namespace bvx::membergen
