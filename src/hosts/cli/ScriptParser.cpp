#include "ScriptParser.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <utility>

namespace bvx::script {

namespace {

enum class TokenKind { End, Name, ResultName, Literal, Comma, Open, Close, Equals };

struct Token {
    Token(TokenKind k, std::string written, Variant literal = {})
        : kind(k), text(std::move(written)), value(std::move(literal))
    {
    }

    TokenKind kind;
    std::string text; // as written, for messages
    Variant value;    // literals
};

bool IsNameStart(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || c == '_'; }
bool IsDigit(char c) { return c >= '0' && c <= '9'; }
bool IsNameChar(char c) { return IsNameStart(c) || IsDigit(c); }
bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\r'; }

bool SameWord(std::string_view a, std::string_view b)
{
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i)
        if ((a[i] | 0x20) != (b[i] | 0x20)) return false;
    return true;
}

// A token in a message, in quotes; long ones are cut so that one bad line
// prints one line. Built by appending: GCC 12 at -O3 misreads
// `"'" + temporary` as an overlapping copy.
std::string Quoted(std::string_view text)
{
    constexpr size_t kLimit = 40;
    std::string out = "'";
    out += text.substr(0, kLimit);
    if (text.size() > kLimit) out += "...";
    out += '\'';
    return out;
}

std::string Describe(const Token& token)
{
    return token.kind == TokenKind::End ? "the end of the line" : Quoted(token.text);
}

// Splits a line into tokens up to its comment.
class Lexer {
public:
    explicit Lexer(std::string_view line) : line_(line) {}

    bool Run(std::vector<Token>& tokens, std::string& error)
    {
        while (pos_ < line_.size() && error.empty()) {
            const char c = line_[pos_];
            if (IsSpace(c)) {
                ++pos_;
            } else if (c == '#' || c == '\'') {
                break;
            } else if (IsNameStart(c)) {
                tokens.push_back({TokenKind::Name, std::string(Word(pos_))});
                pos_ += tokens.back().text.size();
            } else if (c == '$') {
                std::string_view name = Word(pos_ + 1);
                if (name.empty()) error = "'$' must be followed by a name";
                tokens.push_back({TokenKind::ResultName, std::string(line_.substr(pos_, 1 + name.size()))});
                pos_ += 1 + name.size();
            } else if (c == '"') {
                tokens.push_back(Text(error));
            } else if (StartsNumber()) {
                tokens.push_back(Number(error));
            } else if (c == '&' && pos_ + 1 < line_.size() && (line_[pos_ + 1] | 0x20) == 'h') {
                tokens.push_back(Hex(error));
            } else if (c == ',' || c == '(' || c == ')' || c == '=') {
                TokenKind kind = c == ','   ? TokenKind::Comma
                                 : c == '(' ? TokenKind::Open
                                 : c == ')' ? TokenKind::Close
                                            : TokenKind::Equals;
                tokens.push_back({kind, std::string(1, c)});
                ++pos_;
            } else {
                error = UnexpectedCharacter(c);
            }
        }
        tokens.push_back({TokenKind::End, {}});
        return error.empty();
    }

private:
    char At(size_t i) const { return i < line_.size() ? line_[i] : '\0'; }

    std::string_view Word(size_t from) const
    {
        size_t end = from;
        while (end < line_.size() && IsNameChar(line_[end])) ++end;
        return from < line_.size() && IsNameStart(line_[from]) ? line_.substr(from, end - from) : std::string_view();
    }

    bool StartsNumber() const
    {
        size_t i = pos_ + (line_[pos_] == '-' || line_[pos_] == '+' ? 1 : 0);
        return IsDigit(At(i)) || (At(i) == '.' && IsDigit(At(i + 1)));
    }

    static std::string UnexpectedCharacter(char c)
    {
        if (c > ' ' && c < 127) return std::string("unexpected character '") + c + "'";
        char code[8];
        std::snprintf(code, sizeof code, "0x%02X", unsigned(static_cast<unsigned char>(c)));
        return std::string("unexpected byte ") + code;
    }

    // A number glued to letters or a second point is one bad token, not two.
    bool EndsCleanly(size_t start, std::string& error)
    {
        if (!IsNameChar(At(pos_)) && At(pos_) != '.') return true;
        while (pos_ < line_.size() && (IsNameChar(line_[pos_]) || line_[pos_] == '.')) ++pos_;
        error = "bad number " + Quoted(line_.substr(start, pos_ - start));
        return false;
    }

    Token Number(std::string& error)
    {
        const size_t start = pos_;
        const bool negative = line_[pos_] == '-';
        if (line_[pos_] == '-' || line_[pos_] == '+') ++pos_;
        const size_t digits = pos_;
        bool integral = true;
        while (IsDigit(At(pos_))) ++pos_;
        if (At(pos_) == '.') {
            integral = false;
            for (++pos_; IsDigit(At(pos_));) ++pos_;
        }
        if ((At(pos_) | 0x20) == 'e' &&
            (IsDigit(At(pos_ + 1)) || ((At(pos_ + 1) == '-' || At(pos_ + 1) == '+') && IsDigit(At(pos_ + 2))))) {
            integral = false;
            for (pos_ += 2; IsDigit(At(pos_));) ++pos_;
        }
        Token token{TokenKind::Literal, std::string(line_.substr(start, pos_ - start))};
        if (!EndsCleanly(start, error)) return token;
        double magnitude = 0;
        auto [end, ec] = std::from_chars(line_.data() + digits, line_.data() + pos_, magnitude);
        if (ec != std::errc() || end != line_.data() + pos_ || !std::isfinite(magnitude)) {
            error = "number out of range " + Quoted(token.text);
            return token;
        }
        const double value = negative ? -magnitude : magnitude;
        const bool fitsLong = value >= double(INT32_MIN) && value <= double(INT32_MAX);
        token.value = integral && fitsLong ? Variant::I4(int32_t(value)) : Variant::R8(value);
        return token;
    }

    // &H and up to eight hex digits: the bits of a Long, as colours are written.
    Token Hex(std::string& error)
    {
        const size_t start = pos_;
        pos_ += 2;
        uint32_t bits = 0;
        size_t count = 0;
        for (; std::isxdigit(static_cast<unsigned char>(At(pos_))); ++pos_, ++count) {
            char c = At(pos_);
            bits = bits << 4 | uint32_t(IsDigit(c) ? c - '0' : (c | 0x20) - 'a' + 10);
        }
        Token token{TokenKind::Literal, std::string(line_.substr(start, pos_ - start))};
        if (!EndsCleanly(start, error)) return token;
        if (count == 0 || count > 8) error = "bad hex number " + Quoted(token.text) + ": 1 to 8 digits after &H";
        token.value = Variant::I4(int32_t(bits));
        return token;
    }

    // "text" with "" for a quote inside.
    Token Text(std::string& error)
    {
        const size_t start = pos_++;
        std::string text;
        for (;;) {
            if (pos_ >= line_.size()) {
                error = "unterminated string";
                break;
            }
            if (line_[pos_] == '"') {
                if (At(pos_ + 1) != '"') {
                    ++pos_;
                    break;
                }
                ++pos_;
            }
            text += line_[pos_++];
        }
        return {TokenKind::Literal, std::string(line_.substr(start, pos_ - start)), Variant::String(FromUtf8(text))};
    }

    std::string_view line_;
    size_t pos_ = 0;
};

class Parser {
public:
    explicit Parser(std::vector<Token> tokens) : tokens_(std::move(tokens)) {}

    Statement Run(std::string& error)
    {
        const Token& first = Peek();
        if (first.kind == TokenKind::End) return BlankLine{};
        if (first.kind == TokenKind::ResultName) return Named(error);
        if (first.kind == TokenKind::Name && !IsBooleanWord(first.text)) return MemberStatement({}, error);
        error = "a line starts with a member name, a $name or a '.' host command, not " + Describe(first);
        return BlankLine{};
    }

    std::vector<Argument> Values(std::string& error)
    {
        std::vector<Argument> values = Arguments(TokenKind::End, error);
        ExpectEnd(error);
        return values;
    }

private:
    const Token& Peek() const { return tokens_[next_]; }
    const Token& Take() { return tokens_[next_ < tokens_.size() - 1 ? next_++ : next_]; }
    bool Accept(TokenKind kind) { return Peek().kind == kind && (Take(), true); }

    static bool IsBooleanWord(std::string_view word) { return SameWord(word, "True") || SameWord(word, "False"); }

    Statement Named(std::string& error)
    {
        const std::string name = Take().text.substr(1);
        if (!Accept(TokenKind::Equals)) {
            error = "expected '=' after $" + name + ", found " + Describe(Peek());
            return BlankLine{};
        }
        if (Peek().kind == TokenKind::Name && !IsBooleanWord(Peek().text)) return MemberStatement(name, error);
        NameAssignment assignment{name, Value(error)};
        ExpectEnd(error);
        return assignment;
    }

    Statement MemberStatement(std::string resultName, std::string& error)
    {
        std::string member = Take().text;
        std::vector<Argument> args;
        if (Accept(TokenKind::Open)) {
            args = Arguments(TokenKind::Close, error);
            if (error.empty() && !Accept(TokenKind::Close)) error = "missing ')'";
        } else if (Peek().kind != TokenKind::Equals) {
            args = Arguments(TokenKind::End, error);
        }
        if (error.empty() && Accept(TokenKind::Equals)) {
            if (!resultName.empty()) {
                error = "a property assignment cannot be kept in $" + resultName;
                return BlankLine{};
            }
            if (Peek().kind == TokenKind::End) {
                error = "missing value after '='";
                return BlankLine{};
            }
            PropertyAssignment assignment{std::move(member), std::move(args), Value(error)};
            ExpectEnd(error);
            return assignment;
        }
        ExpectEnd(error);
        return MemberCall{std::move(resultName), std::move(member), std::move(args)};
    }

    // Comma-separated slots, any of them empty; none at all before `close`.
    std::vector<Argument> Arguments(TokenKind close, std::string& error)
    {
        std::vector<Argument> args;
        if (Peek().kind == close) return args;
        for (;;) {
            const TokenKind kind = Peek().kind;
            const bool empty = kind == TokenKind::Comma || kind == close || kind == TokenKind::End;
            args.push_back(empty ? Argument{} : Value(error));
            if (!error.empty() || !Accept(TokenKind::Comma)) break;
        }
        if (error.empty() && Peek().kind != close && Peek().kind != TokenKind::End)
            error = "expected ',' between arguments, found " + Describe(Peek());
        return args;
    }

    Argument Value(std::string& error)
    {
        const Token& token = Take();
        switch (token.kind) {
        case TokenKind::Literal: return {Argument::Form::Literal, token.value, {}};
        case TokenKind::ResultName: return {Argument::Form::Name, {}, token.text.substr(1)};
        case TokenKind::Name:
            if (IsBooleanWord(token.text))
                return {Argument::Form::Literal, Variant::Bool(SameWord(token.text, "True")), {}};
            error = "expected a value, found " + Describe(token) + " (kept results are written $name)";
            return {};
        default: error = "expected a value, found " + Describe(token); return {};
        }
    }

    void ExpectEnd(std::string& error)
    {
        if (error.empty() && Peek().kind != TokenKind::End) error = "unexpected " + Describe(Peek());
    }

    std::vector<Token> tokens_;
    size_t next_ = 0;
};

ParsedLine ParseHostCommand(std::string_view line)
{
    size_t nameEnd = 1;
    while (nameEnd < line.size() && IsNameChar(line[nameEnd])) ++nameEnd;
    std::string_view rest = line.substr(nameEnd);
    if (!rest.empty() && !IsSpace(rest.front())) return {BlankLine{}, "bad host command " + Quoted(line)};
    if (nameEnd == 1) return {BlankLine{}, "host command name missing after '.'"};
    while (!rest.empty() && IsSpace(rest.front())) rest.remove_prefix(1);
    while (!rest.empty() && IsSpace(rest.back())) rest.remove_suffix(1);
    return {HostCommand{std::string(line.substr(1, nameEnd - 1)), std::string(rest)}, {}};
}

} // namespace

std::vector<Argument> ParseValues(std::string_view text, std::string& error)
{
    std::vector<Token> tokens;
    if (!Lexer(text).Run(tokens, error)) return {};
    return Parser(std::move(tokens)).Values(error);
}

ParsedLine ParseLine(std::string_view line)
{
    size_t start = 0;
    while (start < line.size() && IsSpace(line[start])) ++start;
    if (start < line.size() && line[start] == '.') return ParseHostCommand(line.substr(start));
    std::vector<Token> tokens;
    std::string error;
    if (!Lexer(line).Run(tokens, error)) return {BlankLine{}, error};
    Statement statement = Parser(std::move(tokens)).Run(error);
    if (!error.empty()) return {BlankLine{}, error};
    return {std::move(statement), {}};
}

} // namespace bvx::script
