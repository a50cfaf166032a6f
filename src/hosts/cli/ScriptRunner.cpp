#include "ScriptRunner.h"

#include "KeyboardLayout.h"
#include "ValueFormat.h"
#include "platform/WindowMessages.h"

#include <cmath>
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
    case AutoType::Int: return ChangeType(value, VarType::Int, converted) == hresult::Ok;
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
    window_.SetProcedure([this](uint32_t msg, uint64_t wParam, int64_t lParam) {
        // The platform paints from its own message; so does this window.
        if (msg == wm::Paint) {
            PaintWindow();
            return int64_t(0);
        }
        return control_.WindowProc(msg, wParam, lParam);
    });
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
    } else if (command.name == "message") {
        return SendMessage(command.text);
    } else if (command.name == "menu") {
        return AnswerMenu(command.text);
    } else if (command.name == "key") {
        return PressKey(command.text);
    } else if (command.name == "type") {
        return TypeText(command.text);
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

std::string ScriptRunner::Numbers(const std::string& command, const std::string& text, size_t required,
                                  size_t limit, std::vector<int64_t>& numbers)
{
    std::string error;
    std::vector<Argument> args = ParseValues(text, error);
    if (!error.empty()) return "." + command + ": " + error;
    if (args.size() < required || args.size() > limit)
        return "." + command + " takes " + std::to_string(required) +
               (limit > required ? " to " + std::to_string(limit) : std::string()) + " numbers";
    numbers.assign(limit, 0);
    for (size_t i = 0; i < args.size(); ++i) {
        Variant value;
        if (args[i].form == Argument::Form::Omitted) continue;
        if (std::string e = Resolve(args[i], value); !e.empty()) return e;
        Variant real;
        // Whole numbers only; a 64-bit wParam fits in a double's 53 bits as far as a script needs.
        if (value.Type() == VarType::Bstr || ChangeType(value, VarType::R8, real) != hresult::Ok ||
            std::trunc(real.Real()) != real.Real() || std::fabs(real.Real()) > 9007199254740992.0)
            return "." + command + ": value " + std::to_string(i + 1) + " is not a whole number";
        numbers[i] = int64_t(real.Real());
    }
    return {};
}

std::string ScriptRunner::SendMessage(const std::string& text)
{
    std::vector<int64_t> n;
    if (std::string error = Numbers("message", text, 1, 3, n); !error.empty()) return error;
    const int64_t result = window_.Send(uint32_t(n[0]), uint64_t(n[1]), n[2]);
    window_.PumpMessages();
    out_ << "-> " << result << '\n';
    return {};
}

std::string ScriptRunner::AnswerMenu(const std::string& text)
{
    if (text == "none") {
        window_.SetMenuAnswer(std::nullopt);
        return {};
    }
    std::vector<int64_t> n;
    if (std::string error = Numbers("menu", text, 1, 1, n); !error.empty()) return error + " (or none)";
    window_.SetMenuAnswer(int32_t(n[0]));
    return {};
}

std::string ScriptRunner::PressKey(const std::string& text)
{
    constexpr int64_t kPressed = 1;             // a repeat count of one
    constexpr int64_t kReleased = 0xC0000001LL; // released, and down before
    std::vector<int64_t> n;
    if (std::string error = Numbers("key", text, 1, 1, n); !error.empty()) return error;
    if (n[0] < 1 || n[0] > 254) return ".key takes a virtual-key code, 1 to 254";
    const uint32_t key = uint32_t(n[0]);
    // TranslateMessage posts the character; the key's own pump delivers it.
    if (std::optional<char16_t> character = CharacterOfKey(key)) window_.Post(wm::Char, *character, kPressed);
    window_.Send(wm::KeyDown, key, kPressed);
    window_.PumpMessages();
    window_.Send(wm::KeyUp, key, kReleased);
    window_.PumpMessages();
    return {};
}

std::string ScriptRunner::TypeText(const std::string& text)
{
    std::string error;
    std::vector<Argument> args = ParseValues(text, error);
    Variant value;
    if (error.empty() && args.size() == 1 && args[0].form != Argument::Form::Omitted) error = Resolve(args[0], value);
    if (!error.empty() || args.size() != 1 || value.Type() != VarType::Bstr) return ".type takes one string";
    for (char16_t c : value.Text()) window_.Send(wm::Char, c, 1);
    window_.PumpMessages();
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
