// Reference pictures as 32-bit top-down BMP files: written by the program
// that draws them with the platform's GDI, read by the comparing test.
#pragma once

#include "platform/GdiObjects.h"

#include <string>

namespace bvx::fidelity {

bool WritePixelFile(const Bitmap& bitmap, const std::string& path);
BitmapHandle ReadPixelFile(const std::string& path);

} // namespace bvx::fidelity
