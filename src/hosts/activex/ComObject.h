// The one reference-counting base of the control's COM objects: each object
// lists the interfaces it answers in a table, and QueryInterface walks it.
#pragma once

#include <unknwn.h>
#include <windows.h>

#include <atomic>
#include <new>
#include <span>
#include <utility>

namespace bvx::com {

// Live objects and server locks; the module may unload at zero.
class ModuleCount {
public:
    static void Add() { count_.fetch_add(1); }
    static void Remove() { count_.fetch_sub(1); }
    static long Current() { return count_.load(); }

private:
    static inline std::atomic<long> count_{0};
};

template <typename Derived> struct InterfaceEntry {
    const IID* iid;
    IUnknown* (*cast)(Derived*);
};

// An interface reached through another that is its only path (IPersist
// through IPersistStreamInit, say) names that path as Via.
// The IID is named, not taken by __uuidof: some of MinGW's headers declare none.
template <typename Derived, typename I, typename Via = I> constexpr InterfaceEntry<Derived> Entry(const IID& iid)
{
    return {&iid, [](Derived* self) -> IUnknown* { return static_cast<I*>(static_cast<Via*>(self)); }};
}

// Derived declares `static std::span<const InterfaceEntry<Derived>> Interfaces()`;
// the first entry also answers IUnknown, which fixes the object's identity.
template <typename Derived, typename... Bases> class ComObject : public Bases... {
public:
    ComObject() { ModuleCount::Add(); }
    ComObject(const ComObject&) = delete;
    ComObject& operator=(const ComObject&) = delete;

    STDMETHODIMP QueryInterface(REFIID riid, void** out) override
    {
        if (!out) return E_POINTER;
        *out = nullptr;
        Derived* self = static_cast<Derived*>(this);
        if (IsEqualIID(riid, IID_IUnknown)) {
            *out = Derived::Interfaces()[0].cast(self);
        } else {
            for (const auto& entry : Derived::Interfaces())
                if (IsEqualIID(riid, *entry.iid)) *out = entry.cast(self);
        }
        if (!*out) return E_NOINTERFACE;
        AddRef();
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return ++references_; }
    STDMETHODIMP_(ULONG) Release() override
    {
        const ULONG left = --references_;
        if (left == 0) delete static_cast<Derived*>(this);
        return left;
    }

    // A new object with one reference, which the caller owns; null when
    // memory ran out, in the object or in what it builds.
    template <typename... Args> static Derived* Create(Args&&... args)
    {
        try {
            return new Derived(std::forward<Args>(args)...);
        } catch (const std::bad_alloc&) {
            return nullptr;
        }
    }

    IUnknown* Identity() { return Derived::Interfaces()[0].cast(static_cast<Derived*>(this)); }

protected:
    ~ComObject() { ModuleCount::Remove(); }

private:
    std::atomic<ULONG> references_{1};
};

// An object that answers one interface besides IUnknown.
template <typename Derived, typename I, const IID& kIid> class SingleInterfaceObject : public ComObject<Derived, I> {
public:
    static std::span<const InterfaceEntry<Derived>> Interfaces()
    {
        static constexpr InterfaceEntry<Derived> table[] = {Entry<Derived, I>(kIid)};
        return table;
    }
};

// Holds one reference; the platform's smart pointers are not in MinGW.
template <typename I> class Ref {
public:
    Ref() = default;
    explicit Ref(I* adopted) : p_(adopted) {}
    Ref(const Ref& other) : p_(other.p_)
    {
        if (p_) p_->AddRef();
    }
    Ref& operator=(Ref other)
    {
        std::swap(p_, other.p_);
        return *this;
    }
    ~Ref()
    {
        if (p_) p_->Release();
    }

    static Ref Share(I* p)
    {
        if (p) p->AddRef();
        return Ref(p);
    }
    template <typename Other> static Ref Query(Other* from)
    {
        I* p = nullptr;
        if (from) from->QueryInterface(__uuidof(I), reinterpret_cast<void**>(&p));
        return Ref(p);
    }

    I* get() const { return p_; }
    I* operator->() const { return p_; }
    explicit operator bool() const { return p_ != nullptr; }
    I** Out()
    {
        *this = Ref();
        return &p_;
    }
    I* Detach()
    {
        I* p = p_;
        p_ = nullptr;
        return p;
    }

private:
    I* p_ = nullptr;
};

} // namespace bvx::com
