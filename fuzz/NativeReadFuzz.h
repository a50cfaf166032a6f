// One fuzz input for the drawing file reader: shared by the libFuzzer entry
// point and the corpus replay test.
#pragma once

#include <cstddef>
#include <cstdint>

namespace bvx::fuzz {

// Loads the bytes as a drawing file into a control with a drawing of its
// own, in the way the first byte picks (whole, one layer, onto a layer),
// saves what was read and loads the save again, twice: both loads must
// succeed and the last two saves be the same bytes. Paints what was read.
// Aborts if not. Returns 0, as libFuzzer expects.
int NativeReadOne(const uint8_t* data, size_t size);

} // namespace bvx::fuzz
