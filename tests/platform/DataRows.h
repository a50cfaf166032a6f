// Cases kept as rows of a text file under tests/data: one case a line,
// fields split by whitespace, '#' lines and blank lines skipped.
#pragma once

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

namespace bvx::test {

inline std::vector<std::vector<std::string>> DataRows(const std::string& name)
{
    std::vector<std::vector<std::string>> rows;
    std::ifstream in(std::string(BVX_TEST_DATA_DIR "/") + name);
    for (std::string line; std::getline(in, line);) {
        std::istringstream words(line);
        std::vector<std::string> row;
        for (std::string word; words >> word && word[0] != '#';) row.push_back(word);
        if (!row.empty()) rows.push_back(row);
    }
    return rows;
}

// A row as it stands in its file, for failure messages.
inline std::string Joined(const std::vector<std::string>& row)
{
    std::string text;
    for (const std::string& word : row) text += (text.empty() ? "" : " ") + word;
    return text;
}

} // namespace bvx::test
