// What a user of `bvxcad run` sees: the printed results, then the error
// that stopped the script, if one did.
#pragma once

#include "hosts/cli/ScriptRunner.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <sstream>
#include <string>
#include <vector>

namespace bvx::script {

inline std::string Transcript(CadControl& control, EventLog& events, const std::string& script)
{
    std::ostringstream out;
    ScriptRunner runner(control, events, out);
    std::istringstream in(script);
    std::optional<ScriptError> error = runner.Run(in);
    return out.str() + (error ? error->ToString() + "\n" : "");
}

// The scripts (*.bvxs) of some folders, in name order.
inline std::vector<std::filesystem::path> ScriptsIn(std::initializer_list<std::filesystem::path> dirs)
{
    std::vector<std::filesystem::path> paths;
    for (const std::filesystem::path& dir : dirs) {
        std::error_code error;
        for (const auto& entry : std::filesystem::directory_iterator(dir, error))
            if (entry.path().extension() == ".bvxs") paths.push_back(entry.path());
    }
    std::sort(paths.begin(), paths.end());
    return paths;
}

inline std::string ReadFile(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
}

} // namespace bvx::script
