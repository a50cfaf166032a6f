// Finds the file of a face by family and style. Arial, Times New Roman and
// Courier New are answered by the metric-compatible Liberation faces where
// they themselves are missing.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace bvx::text {

struct FaceFile {
    std::string path;
    int32_t index = 0;        // the face within a collection file
    bool exactFamily = false; // the family asked for, or its metric twin
};

// The face's file; `installedOnly` refuses a fallback to another family.
std::optional<FaceFile> LocateFace(std::string_view family, bool bold, bool italic, bool installedOnly);

// The family whose metrics a face shares, or the face itself.
std::string_view MetricTwin(std::string_view family);

// Case-insensitive, as face names are compared.
bool SameFamily(std::string_view a, std::string_view b);

} // namespace bvx::text
