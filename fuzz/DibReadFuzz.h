// One fuzz input for the .bmp reader: shared by the libFuzzer entry point and
// the corpus replay test.
#pragma once

#include <cstddef>
#include <cstdint>

namespace bvx::fuzz {

// Reads the bytes as a .bmp, unsized and sized, and puts whatever is accepted
// through every use a DIB block has. Aborts if a block that was written out
// cannot be read back. Returns 0, as libFuzzer expects.
int DibReadOne(const uint8_t* data, size_t size);

} // namespace bvx::fuzz
