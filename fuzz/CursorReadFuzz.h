// One fuzz input for the .cur reader: shared by the libFuzzer entry point and
// the corpus replay test.
#pragma once

#include <cstddef>
#include <cstdint>

namespace bvx::fuzz {

// Reads the bytes as a cursor file and, when an image comes back, checks that
// it is whole: a size the format allows, both planes of that size, a mask of
// 0 and 1 and the hot spot inside. Aborts if not. Returns 0, as libFuzzer expects.
int CursorReadOne(const uint8_t* data, size_t size);

} // namespace bvx::fuzz
