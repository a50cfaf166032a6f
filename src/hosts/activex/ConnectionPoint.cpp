#include "ConnectionPoint.h"

#include "Enumerator.h"

#include <algorithm>

namespace bvx::com {

namespace {

void CopyConnection(CONNECTDATA& c) { c.pUnk->AddRef(); }
void DropConnection(CONNECTDATA& c) { c.pUnk->Release(); }
using ConnectionEnumerator =
    Enumerator<IEnumConnections, IID_IEnumConnections, CONNECTDATA, CopyConnection, DropConnection>;

} // namespace

ConnectionPoint::~ConnectionPoint()
{
    for (Connection& c : connections_) c.sink->Release();
}

STDMETHODIMP ConnectionPoint::QueryInterface(REFIID riid, void** out)
{
    if (!out) return E_POINTER;
    *out = nullptr;
    if (!IsEqualIID(riid, IID_IUnknown) && !IsEqualIID(riid, IID_IConnectionPoint)) return E_NOINTERFACE;
    *out = static_cast<IConnectionPoint*>(this);
    AddRef();
    return S_OK;
}

STDMETHODIMP ConnectionPoint::GetConnectionInterface(IID* out)
{
    if (!out) return E_POINTER;
    *out = iid_;
    return S_OK;
}

STDMETHODIMP ConnectionPoint::GetConnectionPointContainer(IConnectionPointContainer** out)
{
    if (!out) return E_POINTER;
    *out = &container_;
    container_.AddRef();
    return S_OK;
}

STDMETHODIMP ConnectionPoint::Advise(IUnknown* sink, DWORD* cookie)
{
    if (!cookie) return E_POINTER;
    *cookie = 0;
    if (!sink) return E_POINTER;
    void* typed = nullptr;
    if (FAILED(sink->QueryInterface(iid_, &typed)) &&
        !(alsoAccept_ && SUCCEEDED(sink->QueryInterface(*alsoAccept_, &typed))))
        return CONNECT_E_CANNOTCONNECT;
    connections_.push_back({nextCookie_, static_cast<IUnknown*>(typed)});
    *cookie = nextCookie_++;
    return S_OK;
}

STDMETHODIMP ConnectionPoint::Unadvise(DWORD cookie)
{
    auto it = std::find_if(connections_.begin(), connections_.end(),
                           [&](const Connection& c) { return c.cookie == cookie; });
    if (it == connections_.end()) return CONNECT_E_NOCONNECTION;
    IUnknown* sink = it->sink;
    connections_.erase(it);
    sink->Release();
    return S_OK;
}

STDMETHODIMP ConnectionPoint::EnumConnections(IEnumConnections** out)
{
    if (!out) return E_POINTER;
    std::vector<CONNECTDATA> items;
    for (const Connection& c : connections_) items.push_back({c.sink, c.cookie});
    *out = ConnectionEnumerator::Create(static_cast<IUnknown*>(&container_), std::move(items));
    return *out ? S_OK : E_OUTOFMEMORY;
}

} // namespace bvx::com
