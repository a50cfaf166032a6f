// One outgoing interface of the control: the sinks advised to it, in the
// order they came. It lives inside its container and counts references on
// the container's behalf, so that the two live and die together.
#pragma once

#include "ComObject.h"

#include <ocidl.h>
#include <olectl.h>

#include <vector>

namespace bvx::com {

class ConnectionPoint final : public IConnectionPoint {
public:
    // A sink must answer `iid`; `alsoAccept`, when given, is taken instead
    // (dispatch-only event sinks often answer only IDispatch).
    ConnectionPoint(IConnectionPointContainer& container, const IID& iid, const IID* alsoAccept = nullptr)
        : container_(container), iid_(iid), alsoAccept_(alsoAccept)
    {
    }
    ~ConnectionPoint();
    ConnectionPoint(const ConnectionPoint&) = delete;
    ConnectionPoint& operator=(const ConnectionPoint&) = delete;

    const IID& Iid() const { return iid_; }
    // The live sinks, each with a reference of its own, so that a sink that
    // unadvises while it is called stays valid until the walk is over.
    template <typename I> std::vector<Ref<I>> Sinks() const
    {
        std::vector<Ref<I>> sinks;
        for (const Connection& c : connections_) sinks.push_back(Ref<I>::Share(static_cast<I*>(c.sink)));
        return sinks;
    }

    STDMETHODIMP QueryInterface(REFIID riid, void** out) override;
    STDMETHODIMP_(ULONG) AddRef() override { return container_.AddRef(); }
    STDMETHODIMP_(ULONG) Release() override { return container_.Release(); }

    STDMETHODIMP GetConnectionInterface(IID* out) override;
    STDMETHODIMP GetConnectionPointContainer(IConnectionPointContainer** out) override;
    STDMETHODIMP Advise(IUnknown* sink, DWORD* cookie) override;
    STDMETHODIMP Unadvise(DWORD cookie) override;
    STDMETHODIMP EnumConnections(IEnumConnections** out) override;

private:
    struct Connection {
        DWORD cookie;
        IUnknown* sink; // the interface asked for, with one reference
    };

    IConnectionPointContainer& container_;
    const IID& iid_;
    const IID* alsoAccept_;
    std::vector<Connection> connections_;
    DWORD nextCookie_ = 1;
};

} // namespace bvx::com
