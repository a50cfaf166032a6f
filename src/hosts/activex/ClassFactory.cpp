#include "ClassFactory.h"

#include "CBvxCAD.h"

namespace bvx::com {

STDMETHODIMP ClassFactory::CreateInstance(IUnknown* outer, REFIID riid, void** out)
{
    if (!out) return E_POINTER;
    *out = nullptr;
    if (outer) return CLASS_E_NOAGGREGATION;
    Ref<CBvxCAD> control(CBvxCAD::Create());
    if (!control) return E_OUTOFMEMORY;
    return control->Identity()->QueryInterface(riid, out);
}

STDMETHODIMP ClassFactory::LockServer(BOOL lock)
{
    if (lock)
        ModuleCount::Add();
    else
        ModuleCount::Remove();
    return S_OK;
}

} // namespace bvx::com
