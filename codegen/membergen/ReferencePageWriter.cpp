#include "ReferencePageWriter.h"

#include "AutomationNames.h"

#include <string>
#include <vector>

namespace bvx::membergen {

namespace {

using members::AutoType;
using members::Kind;
using members::MemberRow;

std::string DefaultValue(const members::ArgSpec& arg)
{
    if (arg.type == AutoType::Bstr) {
        std::string out = "\"";
        for (char c : Utf8(arg.textDefault)) out += c == '"' ? std::string("\"\"") : std::string(1, c);
        return out + '"';
    }
    if (arg.type == AutoType::Bool) return arg.numberDefault != 0 ? "True" : "False";
    return DefaultNumberText(arg);
}

std::string ArgumentList(std::span<const members::ArgSpec> args)
{
    std::string list;
    for (const auto& arg : args) {
        if (!list.empty()) list += ", ";
        if (arg.optional) list += "Optional ";
        list += std::string(arg.name) + " As " + std::string(BasicTypeName(arg.type));
        if (arg.optional) list += " = " + DefaultValue(arg);
    }
    return list;
}

// A property's get and put rows are one entry; the put, when there is one,
// follows its get.
struct Entry {
    const MemberRow* first;
    bool readable = false;
    bool writable = false;
};

std::vector<Entry> Entries()
{
    std::vector<Entry> entries;
    for (const MemberRow& row : members::kMemberRows) {
        bool putOfPrevious = row.kind == Kind::PropertyPut && !entries.empty() &&
                             entries.back().first->name == row.name && entries.back().first->dispid == row.dispid;
        if (!putOfPrevious) entries.push_back({&row});
        entries.back().readable |= row.kind == Kind::PropertyGet;
        entries.back().writable |= row.kind == Kind::PropertyPut;
    }
    return entries;
}

std::string Signature(const Entry& entry)
{
    const MemberRow& row = *entry.first;
    std::string args = ArgumentList(row.args);
    std::string type(BasicTypeName(row.result));
    if (row.kind == Kind::Method)
        return row.result == AutoType::Void ? "Sub " + std::string(row.name) + "(" + args + ")"
                                            : "Function " + std::string(row.name) + "(" + args + ") As " + type;
    return "Property " + std::string(row.name) + (args.empty() ? "" : "(" + args + ")") + " As " + type;
}

std::string_view Access(const Entry& entry)
{
    if (entry.first->kind == Kind::Method) return "method";
    if (entry.readable && entry.writable) return "read/write property";
    return entry.readable ? "read-only property" : "write-only property";
}

std::string_view DesignTime(const Entry& entry)
{
    if (entry.first->gate == members::Gate::Open) return "answers at design time";
    return entry.first->kind == Kind::Method ? "fails with 0x800A018A at design time"
                                             : "its read fails with 0x800A018A at design time";
}

// Markdown renderers link a heading by its text in lower case.
std::string Anchor(std::string_view heading)
{
    std::string anchor(heading);
    for (char& c : anchor)
        if (c >= 'A' && c <= 'Z') c = char(c - 'A' + 'a');
    return anchor;
}

void WriteToolValues(std::ostream& out)
{
    out << "## " << kToolEnumName << "\n\n"
        << "The values of members typed " << kToolEnumName << ".\n\n| name | value |\n| --- | --- |\n";
    for (const auto& value : kToolValues) out << "| " << value.name << " | " << value.value << " |\n";
    out << "\n";
}

} // namespace

void WriteReferencePage(std::ostream& out)
{
    const std::vector<Entry> entries = Entries();
    out << "# IBvxCAD reference\n\n"
        << "Made by bvx_membergen from the member table; do not edit. Signatures are in Basic;\n"
        << "the interface definition is bvxcad.idl beside this page. Hosts reach every member\n"
        << "by name or by its dispatch id.\n\n"
        << "| dispid | member | access |\n| --- | --- | --- |\n";
    for (const Entry& entry : entries)
        out << "| " << entry.first->dispid << " | [" << entry.first->name << "](#" << Anchor(entry.first->name)
            << ") | " << Access(entry) << " |\n";
    out << "\n## Members\n\n";
    for (const Entry& entry : entries) {
        out << "### " << entry.first->name << "\n\n"
            << "`" << Signature(entry) << "`\n\n"
            << "dispid " << entry.first->dispid << " · " << Access(entry) << " · " << DesignTime(entry) << "\n\n"
            << entry.first->summary << "\n\n";
    }
    out << "## Events\n\n"
        << "Fired through the source dispinterface _CADEvents, in this order of declaration.\n\n";
    for (const auto& event : members::kEventRows) {
        out << "### " << event.name << "\n\n"
            << "`Event " << event.name << "(" << ArgumentList(event.args) << ")`\n\n"
            << "dispid " << event.dispid << "\n\n"
            << event.summary << "\n\n";
    }
    WriteToolValues(out);
}

} // namespace bvx::membergen
