// The platform's IEnumXxx pattern over a snapshot of items: one template for
// the enumerators of connection points and of connections.
#pragma once

#include "ComObject.h"

#include <vector>

namespace bvx::com {

// Copy gives the caller its own reference to an item (an AddRef, say).
template <typename IEnum, const IID& kIid, typename Item, void (*Copy)(Item&), void (*Drop)(Item&)>
class Enumerator final : public SingleInterfaceObject<Enumerator<IEnum, kIid, Item, Copy, Drop>, IEnum, kIid> {
public:
    // Keeps `owner` alive while the items point into it.
    Enumerator(IUnknown* owner, std::vector<Item> items, size_t position = 0)
        : owner_(Ref<IUnknown>::Share(owner)), items_(std::move(items)), position_(position)
    {
        for (Item& item : items_) Copy(item);
    }

    STDMETHODIMP Next(ULONG count, Item* out, ULONG* fetched) override
    {
        if (!out || (count > 1 && !fetched)) return E_POINTER;
        ULONG given = 0;
        for (; given < count && position_ < items_.size(); ++given, ++position_) {
            out[given] = items_[position_];
            Copy(out[given]);
        }
        if (fetched) *fetched = given;
        return given == count ? S_OK : S_FALSE;
    }
    STDMETHODIMP Skip(ULONG count) override
    {
        const size_t left = items_.size() - position_;
        position_ += count < left ? count : left;
        return count <= left ? S_OK : S_FALSE;
    }
    STDMETHODIMP Reset() override
    {
        position_ = 0;
        return S_OK;
    }
    STDMETHODIMP Clone(IEnum** out) override
    {
        if (!out) return E_POINTER;
        *out = Enumerator::Create(owner_.get(), items_, position_);
        return *out ? S_OK : E_OUTOFMEMORY;
    }

    ~Enumerator()
    {
        for (Item& item : items_) Drop(item);
    }

private:
    Ref<IUnknown> owner_;
    std::vector<Item> items_;
    size_t position_;
};

} // namespace bvx::com
