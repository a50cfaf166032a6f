#include "EventLog.h"

#include "control/Variant.h"

#include <utility>

namespace bvx::script {

std::vector<std::string> EventLog::Take() { return std::exchange(lines_, {}); }

void EventLog::OnEvent(const members::EventRow& event, std::span<const double> args)
{
    std::string line(event.name);
    line += '(';
    for (size_t i = 0; i < args.size(); ++i) {
        if (i) line += ", ";
        if (i < event.args.size()) line += std::string(event.args[i].name) + "=";
        line += ToUtf8(FormatNumber(args[i]));
    }
    lines_.push_back(line + ")");
}

} // namespace bvx::script
