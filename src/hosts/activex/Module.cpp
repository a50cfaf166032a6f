#include "Module.h"

#include "platform/win32/ChildWindow.h"

#include "ClassFactory.h"
#include "ComObject.h"
#include "Registration.h"

#include "bvxcad.h"

namespace bvx::com {

namespace {
HMODULE gModule = nullptr;
} // namespace

HMODULE ModuleHandle() { return gModule; }

std::wstring ModulePath()
{
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        DWORD length = GetModuleFileNameW(gModule, path.data(), DWORD(path.size()));
        if (length == 0) return {};
        if (length < path.size()) {
            path.resize(length);
            return path;
        }
        path.resize(path.size() * 2);
    }
}

HRESULT LoadTypeLibrary(ITypeLib** out)
{
    if (!out) return E_POINTER;
    *out = nullptr;
    if (SUCCEEDED(LoadRegTypeLib(LIBID_ORVANELib, 1, 0, LOCALE_NEUTRAL, out))) return S_OK;
    return LoadTypeLibEx(ModulePath().c_str(), REGKIND_NONE, out);
}

HRESULT LoadTypeInfo(REFGUID guid, ITypeInfo** out)
{
    if (!out) return E_POINTER;
    *out = nullptr;
    Ref<ITypeLib> library;
    HRESULT hr = LoadTypeLibrary(library.Out());
    return FAILED(hr) ? hr : library->GetTypeInfoOfGuid(guid, out);
}

} // namespace bvx::com

extern "C" {

BOOL WINAPI DllMain(HINSTANCE instance, DWORD reason, LPVOID reserved)
{
    if (reason == DLL_PROCESS_ATTACH) {
        bvx::com::gModule = instance;
        DisableThreadLibraryCalls(instance);
    }
    // Unloaded while the process goes on: the window class must not outlive
    // the procedure it names.
    if (reason == DLL_PROCESS_DETACH && !reserved) bvx::win32::ChildWindow::UnregisterWindowClass();
    return TRUE;
}

HRESULT STDAPICALLTYPE DllGetClassObject(REFCLSID clsid, REFIID riid, void** out)
{
    if (!out) return E_POINTER;
    *out = nullptr;
    if (!IsEqualCLSID(clsid, CLSID_BvxCAD)) return CLASS_E_CLASSNOTAVAILABLE;
    bvx::com::Ref<bvx::com::ClassFactory> factory(bvx::com::ClassFactory::Create());
    if (!factory) return E_OUTOFMEMORY;
    return factory->QueryInterface(riid, out);
}

HRESULT STDAPICALLTYPE DllCanUnloadNow() { return bvx::com::ModuleCount::Current() == 0 ? S_OK : S_FALSE; }

HRESULT STDAPICALLTYPE DllRegisterServer() { return bvx::com::RegisterServer(); }

HRESULT STDAPICALLTYPE DllUnregisterServer() { return bvx::com::UnregisterServer(); }

} // extern "C"
