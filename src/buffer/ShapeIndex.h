// Shape numbers to shapes: every member that names a shape looks it up here,
// so it is an open-addressing table with linear probing, sized by the live
// shapes (not by every number ever issued) and one cache line per probe.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace bvx {

class CObjShape;

class ShapeIndex {
public:
    CObjShape* Find(int32_t number) const
    {
        if (count_ == 0) return nullptr;
        for (size_t i = SlotOf(number);; i = (i + 1) & mask_) {
            const Slot& slot = slots_[i];
            if (!slot.shape) return nullptr;
            if (slot.number == number) return slot.shape;
        }
    }
    // Enters or replaces the shape under its number.
    void Insert(int32_t number, CObjShape* shape);
    // Removes the number only while it still names this shape.
    void Erase(int32_t number, const CObjShape* shape);
    void Clear();
    // Room for this many shapes without growing on the way.
    void Reserve(size_t count);
    size_t Size() const { return count_; }
    bool Empty() const { return count_ == 0; }

private:
    struct Slot {
        int32_t number = 0;
        CObjShape* shape = nullptr; // null: the slot is free
    };

    size_t SlotOf(int32_t number) const
    {
        // Eight numbers in a row share a block of slots, so that the numbers
        // the counter hands out one after another (a load, a paste) land
        // side by side; Fibonacci hashing spreads the blocks.
        const uint32_t n = uint32_t(number);
        const size_t block = size_t((uint64_t(n >> kBlockBits) * 0x9E3779B97F4A7C15ull) >> shift_);
        return ((block << kBlockBits) | (n & kBlockMask)) & mask_;
    }
    static constexpr unsigned kBlockBits = 3;
    static constexpr uint32_t kBlockMask = (1u << kBlockBits) - 1;
    void Rehash(size_t capacity);

    std::vector<Slot> slots_;
    size_t mask_ = 0;
    unsigned shift_ = 64;
    size_t count_ = 0;
};

} // namespace bvx
