// One line of a bvxcad script as a statement: a member call, a property
// assignment, a named value, or a host command. The parser knows the
// grammar only; which members exist is the runner's business.
#pragma once

#include "control/Variant.h"

#include <string>
#include <string_view>
#include <variant>
#include <vector>

namespace bvx::script {

// An argument as written: a literal, a `$name` kept from an earlier line,
// or an empty slot that leaves an optional argument out.
struct Argument {
    enum class Form { Literal, Name, Omitted };
    Form form = Form::Omitted;
    Variant literal;
    std::string name;
};

struct BlankLine {};

// `.name rest of line`: a command of the host itself, not a member.
struct HostCommand {
    std::string name;
    std::string text;
};

// `Member a, b`, `Member(a, b)` or `$name = Member a, b`: a method call or
// a property read, whichever the member is.
struct MemberCall {
    std::string resultName; // empty when the result is not kept
    std::string member;
    std::vector<Argument> args;
};

// `Member = value` or `Member(index, ...) = value`.
struct PropertyAssignment {
    std::string member;
    std::vector<Argument> index;
    Argument value;
};

// `$name = value`.
struct NameAssignment {
    std::string name;
    Argument value;
};

using Statement = std::variant<BlankLine, HostCommand, MemberCall, PropertyAssignment, NameAssignment>;

struct ParsedLine {
    Statement statement;
    std::string error; // what is wrong with the line; empty when it parsed
};

ParsedLine ParseLine(std::string_view line);
// A host command's values: comma-separated, written as arguments are.
std::vector<Argument> ParseValues(std::string_view text, std::string& error);

} // namespace bvx::script
