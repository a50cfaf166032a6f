// What the writer and the reader of the drawing file agree on: the magics
// with their version codes, and the sizes and names the layout fixes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace bvx::NativeFile {

constexpr size_t kMagicSize = 14;
constexpr size_t kKindAt = 12; // 'A' a whole drawing, 'B' one layer
constexpr int32_t kOldReaderVersion = 1;

struct Magic {
    const char* text;
    int32_t version;
};
inline constexpr Magic kMagics[] = {
    {"Quillet.1.00A", 1}, {"Quillet.1.00B", 1}, {"BvxCAD.2.00_A", 5}, {"BvxCAD.2.00_B", 5},
    {"BvxCAD.2.01_A", 6}, {"BvxCAD.2.01_B", 6}, {"BvxCAD.2.02_A", 7}, {"BvxCAD.2.02_B", 7},
    {"BvxCAD.2.03_A", 8}, {"BvxCAD.2.03_B", 8}, {"BvxCAD.2.04_A", 9}, {"BvxCAD.2.04_B", 9},
    {"BvxCAD.2.05_A", 10}, {"BvxCAD.2.05_B", 10}, {"BvxCAD.2.06_A", 11}, {"BvxCAD.2.06_B", 11},
    {"BvxCAD.2.50_A", 12}, {"BvxCAD.2.50_B", 12}, {"BvxCAD.2.51_A", 13}, {"BvxCAD.2.51_B", 13},
    {"BvxCAD.2.52_A", 14}, {"BvxCAD.2.52_B", 14},
};
inline constexpr const char* kWholeMagic = "BvxCAD.2.52_A";
inline constexpr const char* kLayerMagic = "BvxCAD.2.52_B";

constexpr size_t kSearchEntries = 21;
constexpr size_t kOldSearchEntries = 17; // up to version code 11
constexpr size_t kFaceNameField = 32;
constexpr size_t kFaceNameLimit = 31;
constexpr uint16_t kPictureType = 12;

} // namespace bvx::NativeFile
