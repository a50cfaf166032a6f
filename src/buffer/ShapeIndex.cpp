#include "ShapeIndex.h"

namespace bvx {

namespace {
constexpr size_t kMinCapacity = 16;
} // namespace

void ShapeIndex::Rehash(size_t capacity)
{
    std::vector<Slot> old;
    old.swap(slots_);
    slots_.assign(capacity, Slot{});
    mask_ = capacity - 1;
    // One hash value per block of slots.
    shift_ = 64 + kBlockBits;
    for (size_t c = capacity; c > 1; c >>= 1) --shift_;
    for (const Slot& slot : old) {
        if (!slot.shape) continue;
        size_t i = SlotOf(slot.number);
        while (slots_[i].shape) i = (i + 1) & mask_;
        slots_[i] = slot;
    }
}

void ShapeIndex::Insert(int32_t number, CObjShape* shape)
{
    if (!shape) return;
    // At most half full, so that a probe ends within a line or two.
    if ((count_ + 1) * 2 > slots_.size()) Rehash(slots_.empty() ? kMinCapacity : slots_.size() * 2);
    size_t i = SlotOf(number);
    for (; slots_[i].shape; i = (i + 1) & mask_) {
        if (slots_[i].number == number) {
            slots_[i].shape = shape;
            return;
        }
    }
    slots_[i] = {number, shape};
    ++count_;
}

void ShapeIndex::Reserve(size_t count)
{
    size_t capacity = slots_.empty() ? kMinCapacity : slots_.size();
    while ((count + 1) * 2 > capacity) capacity *= 2;
    if (capacity != slots_.size()) Rehash(capacity);
}

void ShapeIndex::Erase(int32_t number, const CObjShape* shape)
{
    if (count_ == 0) return;
    size_t i = SlotOf(number);
    for (; slots_[i].shape; i = (i + 1) & mask_)
        if (slots_[i].number == number) break;
    if (!slots_[i].shape || slots_[i].shape != shape) return;
    // Backward shift: later entries of the run move up, so no tombstones
    // lengthen the probes.
    for (size_t hole = i, j = (i + 1) & mask_; slots_[j].shape; j = (j + 1) & mask_) {
        size_t home = SlotOf(slots_[j].number);
        // Move j into the hole unless its home lies cyclically in (hole, j].
        bool homeBetween = hole <= j ? (hole < home && home <= j) : (hole < home || home <= j);
        if (homeBetween) continue;
        slots_[hole] = slots_[j];
        hole = j;
        i = j;
    }
    slots_[i] = Slot{};
    --count_;
    // Shrink when a cleared drawing leaves a large table behind.
    if (slots_.size() > kMinCapacity && count_ * 8 < slots_.size()) Rehash(slots_.size() / 2);
}

void ShapeIndex::Clear()
{
    slots_.clear();
    slots_.shrink_to_fit();
    mask_ = 0;
    shift_ = 64;
    count_ = 0;
}

} // namespace bvx
