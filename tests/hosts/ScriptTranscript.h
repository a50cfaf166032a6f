// What a user of `bvxcad run` sees: the printed results, then the error
// that stopped the script, if one did.
#pragma once

#include "hosts/cli/ScriptRunner.h"

#include <sstream>
#include <string>

namespace bvx::script {

inline std::string Transcript(CadControl& control, EventLog& events, const std::string& script)
{
    std::ostringstream out;
    ScriptRunner runner(control, events, out);
    std::istringstream in(script);
    std::optional<ScriptError> error = runner.Run(in);
    return out.str() + (error ? error->ToString() + "\n" : "");
}

} // namespace bvx::script
