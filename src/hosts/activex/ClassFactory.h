// Makes controls for CoCreateInstance; aggregation is not offered.
#pragma once

#include "ComObject.h"

namespace bvx::com {

class ClassFactory final : public ComObject<ClassFactory, IClassFactory> {
public:
    static std::span<const InterfaceEntry<ClassFactory>> Interfaces();

    STDMETHODIMP CreateInstance(IUnknown* outer, REFIID riid, void** out) override;
    STDMETHODIMP LockServer(BOOL lock) override;

private:
    friend class ComObject<ClassFactory, IClassFactory>;
    ~ClassFactory() = default;
};

} // namespace bvx::com
