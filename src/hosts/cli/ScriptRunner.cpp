#include "ScriptRunner.h"

#include "ValueFormat.h"

#include <cstdio>

namespace bvx::script {

namespace {

using members::AutoType;
using members::Kind;
using members::MemberRow;

struct MemberRows {
    const MemberRow* method = nullptr;
    const MemberRow* get = nullptr;
    const MemberRow* put = nullptr;
    bool Known() const { return method || get || put; }
};

MemberRows RowsNamed(const std::string& name)
{
    MemberRows rows;
    if (std::optional<int32_t> dispid = CadControl::DispidOfName(FromUtf8(name))) {
        rows.method = CadControl::FindRow(*dispid, Kind::Method);
        rows.get = CadControl::FindRow(*dispid, Kind::PropertyGet);
        rows.put = CadControl::FindRow(*dispid, Kind::PropertyPut);
    }
    return rows;
}

// Whether a value converts to a declared type the way Invoke converts it,
// to tell which argument a failed call tripped on.
bool Converts(const Variant& value, AutoType type)
{
    Variant converted;
    switch (type) {
    case AutoType::Void:
    case AutoType::Variant: return true;
    case AutoType::I2: return ChangeType(value, VarType::I2, converted) == hresult::Ok;
    case AutoType::R8: return ChangeType(value, VarType::R8, converted) == hresult::Ok;
    case AutoType::Bool: return ChangeType(value, VarType::Bool, converted) == hresult::Ok;
    case AutoType::Bstr: return ChangeType(value, VarType::Bstr, converted) == hresult::Ok;
    case AutoType::Color:
        if (value.Type() == VarType::R8 && value.Real() >= 0 && value.Real() <= 4294967295.0) return true;
        [[fallthrough]];
    case AutoType::I4:
    case AutoType::Tool: return ChangeType(value, VarType::I4, converted) == hresult::Ok;
    }
    return false;
}

std::string Position(const MemberRow& row, size_t index)
{
    if (index >= row.args.size()) return "the value";
    return "argument " + std::to_string(index + 1) + " (" + std::string(row.args[index].name) + ")";
}

// Invoke's result code in words, naming the argument at fault where one is.
std::string Explain(HResult hr, const MemberRow& row, const std::vector<Variant>& args)
{
    const std::string prefix = std::string(row.name) + ": ";
    const bool put = row.kind == Kind::PropertyPut;
    const size_t indexCount = put ? args.size() - 1 : args.size();
    switch (hr) {
    case hresult::TypeMismatch:
    case hresult::Overflow: {
        const std::string what = hr == hresult::Overflow ? "overflow in " : "type mismatch in ";
        for (size_t i = 0; i < args.size(); ++i) {
            AutoType type = i < row.args.size() ? row.args[i].type : row.result;
            if (!args[i].IsMissing() && !Converts(args[i], type)) return prefix + what + Position(row, i);
        }
        return prefix + (hr == hresult::Overflow ? "overflow" : "type mismatch");
    }
    case hresult::BadParamCount:
        return prefix + (put ? "too many index arguments (takes " : "too many arguments (takes at most ") +
               std::to_string(row.args.size()) + ")";
    case hresult::ParamNotOptional:
        for (size_t i = 0; i < row.args.size(); ++i)
            if (!row.args[i].optional && (i >= indexCount || args[i].IsMissing()))
                return prefix + Position(row, i) + " is not optional";
        return prefix + "an argument is missing";
    case hresult::GetNotSupported: return prefix + "not available at design time";
    default: {
        char code[16];
        std::snprintf(code, sizeof code, "0x%08X", unsigned(hr));
        return prefix + "failed with " + code;
    }
    }
}

} // namespace

ScriptRunner::ScriptRunner(CadControl& control, EventLog& events, std::ostream& out)
    : control_(control), events_(events), out_(out)
{
}

std::optional<ScriptError> ScriptRunner::Run(std::istream& script)
{
    std::string line;
    int number = 1;
    for (; std::getline(script, line); ++number)
        if (std::string error = RunLine(line); !error.empty()) return ScriptError{number, std::move(error)};
    if (script.bad()) return ScriptError{number, "cannot read the script"};
    return std::nullopt;
}

std::string ScriptRunner::RunLine(std::string_view line)
{
    ParsedLine parsed = ParseLine(line);
    if (!parsed.error.empty()) return parsed.error;
    return std::visit([this](const auto& statement) { return Execute(statement); }, parsed.statement);
}

std::string ScriptRunner::Execute(const HostCommand& command)
{
    if (command.name == "echo") {
        out_ << command.text << '\n';
    } else if (command.name == "events") {
        std::vector<std::string> lines = events_.Take();
        if (lines.empty()) out_ << "no events\n";
        for (const std::string& line : lines) out_ << "event " << line << '\n';
    } else if (command.name == "size") {
        return SizeWindow(command.text);
    } else if (command.name == "paint") {
        if (!window_.Exists()) return ".paint needs a window: give it one with .size first";
        PaintWindow();
    } else if (command.name == "save") {
        if (!window_.Exists()) return ".save needs a window: give it one with .size first";
        if (command.text.empty()) return ".save needs a file name";
        if (!WriteBitmapFile(*window_.Surface(), command.text)) return "cannot write " + command.text;
    } else {
        return "unknown host command '." + command.name + "'";
    }
    return {};
}

std::string ScriptRunner::SizeWindow(const std::string& text)
{
    // "W, H" in pixels; a window larger than a screen is refused.
    constexpr long kMaxSide = 16384;
    long width = 0, height = 0;
    char comma = 0, extra = 0;
    if (std::sscanf(text.c_str(), "%ld %c %ld %c", &width, &comma, &height, &extra) != 3 || comma != ',' ||
        width < 1 || height < 1 || width > kMaxSide || height > kMaxSide)
        return ".size takes a width and a height, 1 to " + std::to_string(kMaxSide) + ": '" + text + "'";
    window_.Resize(int32_t(width), int32_t(height));
    PaintWindow();
    return {};
}

void ScriptRunner::PaintWindow()
{
    if (std::unique_ptr<DeviceContext> dc = window_.BeginPaint())
        control_.OnDraw(&window_, *dc, window_.GetClientRect());
}

std::string ScriptRunner::Execute(const MemberCall& call)
{
    const MemberRows rows = RowsNamed(call.member);
    if (!rows.Known()) return "unknown member '" + call.member + "'";
    const MemberRow* row = rows.method ? rows.method : rows.get;
    if (!row) return std::string(rows.put->name) + " can only be assigned";
    const bool returns = row->kind == Kind::PropertyGet || row->result != AutoType::Void;
    if (!returns && !call.resultName.empty())
        return std::string(row->name) + " returns nothing to keep in $" + call.resultName;

    Variant result;
    if (std::string error = Invoke(*row, call.args, &result); !error.empty()) return error;
    if (!returns) return {};
    out_ << "-> " << FormatResult(result, row->result) << '\n';
    if (!call.resultName.empty()) kept_[call.resultName] = result;
    return {};
}

std::string ScriptRunner::Execute(const PropertyAssignment& assignment)
{
    const MemberRows rows = RowsNamed(assignment.member);
    if (!rows.Known()) return "unknown member '" + assignment.member + "'";
    if (rows.method) return std::string(rows.method->name) + " is a method and cannot be assigned";
    if (!rows.put) return std::string(rows.get->name) + " is read-only";
    std::vector<Argument> args = assignment.index;
    args.push_back(assignment.value);
    return Invoke(*rows.put, args, nullptr);
}

std::string ScriptRunner::Execute(const NameAssignment& assignment)
{
    Variant value;
    if (std::string error = Resolve(assignment.value, value); !error.empty()) return error;
    kept_[assignment.name] = value;
    return {};
}

std::string ScriptRunner::Resolve(const Argument& argument, Variant& value) const
{
    switch (argument.form) {
    case Argument::Form::Literal: value = argument.literal; return {};
    case Argument::Form::Omitted: value = Variant::Missing(); return {};
    case Argument::Form::Name: break;
    }
    auto kept = kept_.find(argument.name);
    if (kept == kept_.end()) return "$" + argument.name + " is not set";
    value = kept->second;
    return {};
}

std::string ScriptRunner::Invoke(const MemberRow& row, const std::vector<Argument>& args, Variant* result)
{
    std::vector<Variant> values(args.size());
    for (size_t i = 0; i < args.size(); ++i)
        if (std::string error = Resolve(args[i], values[i]); !error.empty()) return error;
    HResult hr = control_.Invoke(row.dispid, row.kind, values, result);
    return hr < 0 ? Explain(hr, row, values) : std::string();
}

} // namespace bvx::script
