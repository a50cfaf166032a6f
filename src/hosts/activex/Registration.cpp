#include "Registration.h"

#include "ComObject.h"
#include "Module.h"

#include "bvxcad.h"

#include <string>
#include <vector>

namespace bvx::com {

namespace {

constexpr wchar_t kProgId[] = L"BvxCad.BvxCad";
constexpr wchar_t kDescription[] = L"BvxCAD Control";
// OLEMISC_SETCLIENTSITEFIRST | ACTIVATEWHENVISIBLE | INSIDEOUT | CANTLINKINSIDE | RECOMPOSEONRESIZE
constexpr DWORD kMiscStatus = 0x20191;
// The component categories "safe for scripting" and "safe for initialising".
constexpr wchar_t kSafeForScripting[] = L"{7DD95801-9882-11CF-9FA9-00AA006C42C4}";
constexpr wchar_t kSafeForInitializing[] = L"{7DD95802-9882-11CF-9FA9-00AA006C42C4}";

struct RegistryValue {
    std::wstring key;    // under HKEY_CLASSES_ROOT
    const wchar_t* name; // null: the key's default value
    std::wstring data;
};

std::wstring GuidText(REFGUID guid)
{
    wchar_t text[40] = {};
    StringFromGUID2(guid, text, 40);
    return text;
}

std::wstring ClassKey() { return L"CLSID\\" + GuidText(CLSID_BvxCAD); }

std::vector<RegistryValue> Values()
{
    const std::wstring clsid = ClassKey();
    const std::wstring misc = std::to_wstring(kMiscStatus);
    return {
        {clsid, nullptr, kDescription},
        {clsid + L"\\InprocServer32", nullptr, ModulePath()},
        {clsid + L"\\InprocServer32", L"ThreadingModel", L"Apartment"},
        {clsid + L"\\ProgID", nullptr, kProgId},
        {clsid + L"\\Control", nullptr, L""},
        {clsid + L"\\MiscStatus", nullptr, misc},
        {clsid + L"\\MiscStatus\\1", nullptr, misc},
        {clsid + L"\\TypeLib", nullptr, GuidText(LIBID_ORVANELib)},
        {clsid + L"\\Version", nullptr, L"1.0"},
        {clsid + L"\\Implemented Categories\\" + kSafeForScripting, nullptr, L""},
        {clsid + L"\\Implemented Categories\\" + kSafeForInitializing, nullptr, L""},
        {kProgId, nullptr, kDescription},
        {std::wstring(kProgId) + L"\\CLSID", nullptr, GuidText(CLSID_BvxCAD)},
    };
}

HRESULT Write(const RegistryValue& value)
{
    HKEY key = nullptr;
    LONG status = RegCreateKeyExW(HKEY_CLASSES_ROOT, value.key.c_str(), 0, nullptr, 0, KEY_WRITE, nullptr, &key,
                                  nullptr);
    if (status != ERROR_SUCCESS) return HRESULT_FROM_WIN32(status);
    const DWORD bytes = DWORD((value.data.size() + 1) * sizeof(wchar_t));
    status = RegSetValueExW(key, value.name, 0, REG_SZ, reinterpret_cast<const BYTE*>(value.data.c_str()), bytes);
    RegCloseKey(key);
    return HRESULT_FROM_WIN32(status);
}

HRESULT DeleteTree(const std::wstring& key)
{
    LONG status = RegDeleteTreeW(HKEY_CLASSES_ROOT, key.c_str());
    if (status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND)
        status = RegDeleteKeyW(HKEY_CLASSES_ROOT, key.c_str());
    return status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND ? S_OK : HRESULT_FROM_WIN32(status);
}

constexpr SYSKIND kThisSystem = sizeof(void*) == 8 ? SYS_WIN64 : SYS_WIN32;

// The type library as this bitness registers it: removing one that is not
// there fails (with E_INVALIDARG under Wine), and the other bitness's
// registration is not ours to remove.
bool TypeLibraryRegistered()
{
    const std::wstring key = L"TypeLib\\" + GuidText(LIBID_ORVANELib) + L"\\1.0\\0\\" +
                             (kThisSystem == SYS_WIN64 ? L"win64" : L"win32");
    HKEY opened = nullptr;
    if (RegOpenKeyExW(HKEY_CLASSES_ROOT, key.c_str(), 0, KEY_READ, &opened) != ERROR_SUCCESS) return false;
    RegCloseKey(opened);
    return true;
}

} // namespace

HRESULT RegisterServer()
{
    if (ModulePath().empty()) return SELFREG_E_CLASS;
    for (const RegistryValue& value : Values()) {
        if (FAILED(Write(value))) {
            UnregisterServer();
            return SELFREG_E_CLASS;
        }
    }
    Ref<ITypeLib> library;
    if (FAILED(LoadTypeLibEx(ModulePath().c_str(), REGKIND_REGISTER, library.Out()))) {
        UnregisterServer();
        return SELFREG_E_TYPELIB;
    }
    return S_OK;
}

HRESULT UnregisterServer()
{
    const bool typeLibraryGone = !TypeLibraryRegistered() ||
                                 SUCCEEDED(UnRegisterTypeLib(LIBID_ORVANELib, 1, 0, LOCALE_NEUTRAL, kThisSystem));
    const bool classGone = SUCCEEDED(DeleteTree(ClassKey()));
    const bool progIdGone = SUCCEEDED(DeleteTree(kProgId));
    if (!classGone || !progIdGone) return SELFREG_E_CLASS;
    return typeLibraryGone ? S_OK : SELFREG_E_TYPELIB;
}

} // namespace bvx::com
