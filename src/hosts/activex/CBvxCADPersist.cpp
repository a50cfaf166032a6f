// The three persistence interfaces, all over the one property map; a load
// or a save that clears the flag leaves the control clean.
#include "CBvxCAD.h"

namespace bvx::com {

namespace {
constexpr wchar_t kContents[] = L"Contents";
} // namespace

STDMETHODIMP CBvxCAD::GetClassID(CLSID* out)
{
    if (!out) return E_POINTER;
    *out = CLSID_BvxCAD;
    return S_OK;
}

STDMETHODIMP CBvxCAD::IsDirty() { return control_.IsDirty() ? S_OK : S_FALSE; }

// The defaults are in force from construction.
STDMETHODIMP CBvxCAD::InitNew() { return S_OK; }

STDMETHODIMP CBvxCAD::Load(IStream* stream)
{
    HRESULT hr = LoadFromStream(Dispatch(), extent_, stream);
    if (SUCCEEDED(hr)) control_.SetDirty(false);
    return hr;
}

STDMETHODIMP CBvxCAD::Save(IStream* stream, BOOL clearDirty)
{
    HRESULT hr = SaveToStream(Dispatch(), extent_, stream);
    if (SUCCEEDED(hr) && clearDirty) control_.SetDirty(false);
    return hr;
}

STDMETHODIMP CBvxCAD::GetSizeMax(ULARGE_INTEGER* size) { return StreamSize(Dispatch(), extent_, size); }

STDMETHODIMP CBvxCAD::Load(IPropertyBag* bag, IErrorLog* log)
{
    HRESULT hr = LoadFromBag(Dispatch(), extent_, bag, log);
    if (SUCCEEDED(hr)) control_.SetDirty(false);
    return hr;
}

STDMETHODIMP CBvxCAD::Save(IPropertyBag* bag, BOOL clearDirty, BOOL)
{
    HRESULT hr = SaveToBag(Dispatch(), extent_, bag);
    if (SUCCEEDED(hr) && clearDirty) control_.SetDirty(false);
    return hr;
}

STDMETHODIMP CBvxCAD::InitNew(IStorage* storage) { return storage ? S_OK : E_POINTER; }

STDMETHODIMP CBvxCAD::Load(IStorage* storage)
{
    if (!storage) return E_POINTER;
    Ref<IStream> stream;
    HRESULT hr = storage->OpenStream(kContents, nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0, stream.Out());
    return FAILED(hr) ? hr : Load(stream.get());
}

STDMETHODIMP CBvxCAD::Save(IStorage* storage, BOOL)
{
    if (!storage) return E_POINTER;
    Ref<IStream> stream;
    HRESULT hr = storage->CreateStream(kContents, STGM_CREATE | STGM_WRITE | STGM_SHARE_EXCLUSIVE, 0, 0, stream.Out());
    return FAILED(hr) ? hr : Save(stream.get(), TRUE);
}

STDMETHODIMP CBvxCAD::SaveCompleted(IStorage*) { return S_OK; }

STDMETHODIMP CBvxCAD::HandsOffStorage() { return S_OK; }

} // namespace bvx::com
