// Makes controls for CoCreateInstance; aggregation is not offered.
#pragma once

#include "ComObject.h"

namespace bvx::com {

class ClassFactory final : public SingleInterfaceObject<ClassFactory, IClassFactory, IID_IClassFactory> {
public:
    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID riid, void** out) override;
    STDMETHODIMP LockServer(BOOL lock) override;
};

} // namespace bvx::com
