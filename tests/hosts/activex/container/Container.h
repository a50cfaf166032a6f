// A container of our own: a plain Win32 form, a site per control that
// answers what an in-place control asks of its container, and the
// command-line host as the reference for events and pictures.
#pragma once

#include "ClientSupport.h"

#include <ocidl.h>
#include <ole2.h>
#include <olectl.h>
#include <servprov.h>

#include <functional>
#include <memory>
#include <string>
#include <variant>
#include <vector>

namespace bvx::container {

using namespace bvx::client;

// Runs what the queue holds, as a form's message loop would.
void Pump();

// A top-level window of a class of our own that hosts the controls.
class Form {
public:
    Form(int width, int height);
    ~Form();
    Form(const Form&) = delete;
    Form& operator=(const Form&) = delete;
    HWND Handle() const { return hwnd_; }

private:
    HWND hwnd_ = nullptr;
};

// The site of one control, and the frame it asks for; it writes down what
// the control calls.
class Site;
using SiteBase =
    com::ComObject<Site, IOleClientSite, IOleInPlaceSite, IOleInPlaceFrame, IOleControlSite, IDispatch, IAdviseSink>;
class Site final : public SiteBase {
public:
    static std::span<const com::InterfaceEntry<Site>> Interfaces();
    Site(HWND form, RECT position) : form_(form), position_(position) {}

    std::vector<std::string> calls;
    // The interfaces the control asked the site for, by name where known.
    std::vector<std::string> asked;
    RECT Position() const { return position_; }
    void SetPosition(RECT r) { position_ = r; }

    STDMETHODIMP QueryInterface(REFIID riid, void** out) override;

    // IOleClientSite
    STDMETHODIMP SaveObject() override { return Note("SaveObject"), S_OK; }
    STDMETHODIMP GetMoniker(DWORD, DWORD, IMoniker** out) override { return *out = nullptr, E_NOTIMPL; }
    STDMETHODIMP GetContainer(IOleContainer** out) override { return *out = nullptr, E_NOINTERFACE; }
    STDMETHODIMP ShowObject() override { return Note("ShowObject"), S_OK; }
    STDMETHODIMP OnShowWindow(BOOL show) override { return Note(show ? "OnShowWindow(1)" : "OnShowWindow(0)"), S_OK; }
    STDMETHODIMP RequestNewObjectLayout() override { return E_NOTIMPL; }

    // IOleWindow, for the site and the frame alike: the form
    STDMETHODIMP GetWindow(HWND* out) override { return Note("GetWindow"), *out = form_, S_OK; }
    STDMETHODIMP ContextSensitiveHelp(BOOL) override { return S_OK; }

    // IOleInPlaceSite
    STDMETHODIMP CanInPlaceActivate() override { return Note("CanInPlaceActivate"), S_OK; }
    STDMETHODIMP OnInPlaceActivate() override { return Note("OnInPlaceActivate"), S_OK; }
    STDMETHODIMP OnUIActivate() override { return Note("OnUIActivate"), S_OK; }
    STDMETHODIMP GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document, RECT* position, RECT* clip,
                                  OLEINPLACEFRAMEINFO* info) override;
    STDMETHODIMP Scroll(SIZE) override { return E_NOTIMPL; }
    STDMETHODIMP OnUIDeactivate(BOOL) override { return Note("OnUIDeactivate"), S_OK; }
    STDMETHODIMP OnInPlaceDeactivate() override { return Note("OnInPlaceDeactivate"), S_OK; }
    STDMETHODIMP DiscardUndoState() override { return S_OK; }
    STDMETHODIMP DeactivateAndUndo() override { return S_OK; }
    STDMETHODIMP OnPosRectChange(LPCRECT position) override;

    // IOleInPlaceUIWindow, IOleInPlaceFrame: no tools, menus or status bar
    STDMETHODIMP GetBorder(LPRECT) override { return INPLACE_E_NOTOOLSPACE; }
    STDMETHODIMP RequestBorderSpace(LPCBORDERWIDTHS) override { return INPLACE_E_NOTOOLSPACE; }
    STDMETHODIMP SetBorderSpace(LPCBORDERWIDTHS) override { return S_OK; }
    STDMETHODIMP SetActiveObject(IOleInPlaceActiveObject* object, LPCOLESTR) override;
    STDMETHODIMP InsertMenus(HMENU, LPOLEMENUGROUPWIDTHS) override { return S_OK; }
    STDMETHODIMP SetMenu(HMENU, HOLEMENU, HWND) override { return S_OK; }
    STDMETHODIMP RemoveMenus(HMENU) override { return S_OK; }
    STDMETHODIMP SetStatusText(LPCOLESTR) override { return S_OK; }
    STDMETHODIMP EnableModeless(BOOL) override { return S_OK; }
    STDMETHODIMP TranslateAccelerator(LPMSG, WORD) override { return S_FALSE; }

    // IOleControlSite
    STDMETHODIMP OnControlInfoChanged() override { return S_OK; }
    STDMETHODIMP LockInPlaceActive(BOOL) override { return S_OK; }
    STDMETHODIMP GetExtendedControl(IDispatch** out) override { return *out = nullptr, E_NOTIMPL; }
    STDMETHODIMP TransformCoords(POINTL*, POINTF*, DWORD) override { return E_NOTIMPL; }
    STDMETHODIMP TranslateAccelerator(MSG*, DWORD) override { return S_FALSE; }
    STDMETHODIMP OnFocus(BOOL got) override { return Note(got ? "OnFocus(1)" : "OnFocus(0)"), S_OK; }
    STDMETHODIMP ShowPropertyFrame() override { return E_NOTIMPL; }

    // IDispatch: the ambient properties
    STDMETHODIMP GetTypeInfoCount(UINT* count) override { return *count = 0, S_OK; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    STDMETHODIMP Invoke(DISPID dispid, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*, UINT*) override;

    // IAdviseSink
    STDMETHODIMP_(void) OnDataChange(FORMATETC*, STGMEDIUM*) override { Note("OnDataChange"); }
    STDMETHODIMP_(void) OnViewChange(DWORD, LONG) override { Note("OnViewChange"); }
    STDMETHODIMP_(void) OnRename(IMoniker*) override {}
    STDMETHODIMP_(void) OnSave() override {}
    STDMETHODIMP_(void) OnClose() override { Note("OnClose"); }

private:
    friend SiteBase;
    ~Site() = default;
    void Note(const char* call) { calls.push_back(call); }

    HWND form_;
    RECT position_;
};

// An event sink that writes each event as `Name(arg=value, ...)`, with the
// names the control's own type information gives; a container's handler
// may run after each.
class EventRecorder final : public com::SingleInterfaceObject<EventRecorder, DispatchById, IID_IDispatch> {
public:
    explicit EventRecorder(Ref<ITypeInfo> events) : events_(std::move(events)) {}
    std::vector<std::string> heard;
    std::function<void(const std::string& line)> handler;

    STDMETHODIMP Invoke(DISPID dispid, REFIID, LCID, WORD, DISPPARAMS* params, VARIANT*, EXCEPINFO*, UINT*) override;
    std::vector<std::string> Take() { return std::exchange(heard, {}); }

private:
    Ref<ITypeInfo> events_;
};

// One control on a form: made by its ProgID, sited, its events advised,
// then activated in place at `rect` of the form.
struct Embedded {
    Embedded(HWND form, RECT rect);
    ~Embedded() { Shutdown(); }
    Embedded(const Embedded&) = delete;
    Embedded& operator=(const Embedded&) = delete;

    // What a container does when the control goes: deactivate, close,
    // unsite, unadvise, release.
    void Shutdown();
    HRESULT Verb(LONG verb);
    // A new place on the form, as a form's layout gives it.
    HRESULT Move(RECT rect);

    Ref<IBvxCAD> control;
    Ref<Site> site;
    Ref<EventRecorder> events;
    HWND hwnd = nullptr;
    HRESULT activated = E_FAIL;

private:
    Ref<IConnectionPoint> point_;
    DWORD cookie_ = 0, adviseCookie_ = 0;
    HWND form_;
};

// A window message as a step of a road: the same step is posted here and
// written as `.message` for the command-line host.
struct Step {
    UINT msg;
    WPARAM wParam;
    LPARAM lParam;
};
Step Mouse(UINT msg, WPARAM keys, int x, int y);
Step Key(UINT msg, UINT vk);
void Post(HWND hwnd, const std::vector<Step>& road);
std::string Script(const std::vector<Step>& road);

// A member call made by name here and written as a script line there. A
// Kept call's result is what later rows name with Earlier{row}.
struct Earlier {
    size_t row;
};
using Arg = std::variant<double, const wchar_t*, Earlier>;
struct Member {
    enum Kind { Call, Kept, Put };
    Kind kind;
    const wchar_t* name;
    std::vector<Arg> args; // a put's value last
};
// Fails the test on the first member that fails.
void Apply(IBvxCAD* control, const std::vector<Member>& members);
std::string Script(const std::vector<Member>& members);

// What the command-line host printed for a script, and whether it ran.
struct CliRun {
    DWORD exitCode = ~0u;
    std::string output;
    // The lines that start with `prefix`, without it, printed after the line
    // `from` and before the line `to`.
    std::vector<std::string> Lines(const std::string& prefix, const std::string& from, const std::string& to) const;
};
CliRun RunCli(const std::string& script);
// A file name in the temporary folder, for pictures the host saves.
std::string TempPath(const std::string& name);

// An event line with each number rewritten to 6 significant digits, so
// that both hosts' lines compare as text.
std::string Normalized(const std::string& event);
std::vector<std::string> Normalized(const std::vector<std::string>& events);

// Pixels as 0xRRGGBB, rows top down.
struct Picture {
    int width = 0, height = 0;
    std::vector<uint32_t> pixels;
};
// What the window shows, read from its device context.
Picture FromWindow(HWND hwnd);
// What IViewObject::Draw paints into a bitmap of the given size.
Picture FromViewObject(IUnknown* control, int width, int height);
// A BMP file as the platform loads it; an empty picture when it can't be read.
Picture ReadBmp(const std::string& path);
// Empty when the pictures match; else the size or the first differing pixels.
std::string Differences(const Picture& got, const Picture& expected);

} // namespace bvx::container
