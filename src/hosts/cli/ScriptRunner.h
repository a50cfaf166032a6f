// Runs bvxcad scripts against a control: each line's member call goes
// through CadControl::Invoke by name, results and host output are printed,
// and the first failing line stops the script.
#pragma once

#include "CliWindow.h"
#include "EventLog.h"
#include "ScriptParser.h"
#include "control/CadControl.h"

#include <istream>
#include <map>
#include <optional>
#include <ostream>
#include <string>
#include <string_view>

namespace bvx::script {

struct ScriptError {
    int line = 0;
    std::string message;

    std::string ToString() const { return "line " + std::to_string(line) + ": " + message; }
};

class ScriptRunner {
public:
    ScriptRunner(CadControl& control, EventLog& events, std::ostream& out);
    ScriptRunner(const ScriptRunner&) = delete;
    ScriptRunner& operator=(const ScriptRunner&) = delete;

    // Every line in order until the first that fails.
    std::optional<ScriptError> Run(std::istream& script);
    // One line; what went wrong, or empty when it ran.
    std::string RunLine(std::string_view line);
    // The window `.size` gives the control; it has no surface before that.
    const CliWindow& Window() const { return window_; }

private:
    std::string Execute(const BlankLine&) { return {}; }
    std::string Execute(const HostCommand& command);
    std::string Execute(const MemberCall& call);
    std::string Execute(const PropertyAssignment& assignment);
    std::string Execute(const NameAssignment& assignment);

    std::string SizeWindow(const std::string& text);
    // The window's input: a message, the menu's answer, a key, typed text.
    std::string SendMessage(const std::string& text);
    std::string AnswerMenu(const std::string& text);
    std::string PressKey(const std::string& text);
    std::string TypeText(const std::string& text);
    // A host command's values as numbers: at least `required`, at most
    // `limit`, the missing ones 0.
    std::string Numbers(const std::string& command, const std::string& text, size_t required, size_t limit,
                        std::vector<int64_t>& numbers);
    // Paints what is invalid, as the platform's WM_PAINT does.
    void PaintWindow();

    std::string Resolve(const Argument& argument, Variant& value) const;
    std::string Invoke(const members::MemberRow& row, const std::vector<Argument>& args, Variant* result);

    CadControl& control_;
    EventLog& events_;
    std::ostream& out_;
    std::map<std::string, Variant> kept_;
    CliWindow window_;
};

} // namespace bvx::script
