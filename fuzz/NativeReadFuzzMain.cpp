#include "NativeReadFuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    return bvx::fuzz::NativeReadOne(data, size);
}
