#include "Container.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sstream>

namespace bvx::container {

namespace {

// A crash inside the control would end the run without a word: name the test.
LONG WINAPI ReportCrash(EXCEPTION_POINTERS* e)
{
    const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
    std::fprintf(stderr, "crash 0x%08lX at %p in %s.%s\n", e->ExceptionRecord->ExceptionCode,
                 e->ExceptionRecord->ExceptionAddress, test ? test->test_suite_name() : "?", test ? test->name() : "?");
    std::fflush(stderr);
    return EXCEPTION_EXECUTE_HANDLER;
}
const LPTOP_LEVEL_EXCEPTION_FILTER kCrashReporter = SetUnhandledExceptionFilter(ReportCrash);

const wchar_t kFormClass[] = L"BvxContainerForm";

std::string IidName(REFIID riid)
{
    static const std::pair<const IID*, const char*> known[] = {
        {&IID_IOleClientSite, "IOleClientSite"},
        {&IID_IOleInPlaceSite, "IOleInPlaceSite"},
        {&IID_IOleInPlaceSiteEx, "IOleInPlaceSiteEx"},
        {&IID_IOleInPlaceSiteWindowless, "IOleInPlaceSiteWindowless"},
        {&IID_IOleInPlaceFrame, "IOleInPlaceFrame"},
        {&IID_IOleControlSite, "IOleControlSite"},
        {&IID_IDispatch, "IDispatch"},
        {&IID_IAdviseSink, "IAdviseSink"},
        {&IID_IOleContainer, "IOleContainer"},
        {&IID_IServiceProvider, "IServiceProvider"},
        {&IID_IUnknown, "IUnknown"},
    };
    for (const auto& [iid, name] : known)
        if (IsEqualIID(riid, *iid)) return name;
    wchar_t text[40];
    StringFromGUID2(riid, text, 40);
    return Narrow(text);
}

// The type information of the control's event interface, from its class's library.
Ref<ITypeInfo> EventTypeInfo(IUnknown* control, REFIID source)
{
    Ref<IProvideClassInfo> info = As<IProvideClassInfo>(control, IID_IProvideClassInfo);
    Ref<ITypeInfo> coclass, events;
    Ref<ITypeLib> library;
    UINT index = 0;
    if (info && SUCCEEDED(info->GetClassInfo(coclass.Out())) &&
        SUCCEEDED(coclass->GetContainingTypeLib(library.Out(), &index)))
        library->GetTypeInfoOfGuid(source, events.Out());
    return events;
}

std::string Number(double v)
{
    char text[32];
    if (v == std::trunc(v) && std::fabs(v) < 1e15)
        std::snprintf(text, sizeof text, "%lld", static_cast<long long>(v));
    else
        std::snprintf(text, sizeof text, "%.15g", v);
    return text;
}

// Pixels painted by `paint` into a 32-bit top-down DIB section.
template <typename Paint> Picture Capture(int width, int height, Paint paint)
{
    Picture picture{width, height, {}};
    BITMAPINFO bi{};
    bi.bmiHeader = {sizeof(BITMAPINFOHEADER), width, -height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    HDC memory = CreateCompatibleDC(nullptr);
    HBITMAP dib = CreateDIBSection(memory, &bi, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (!memory || !dib) {
        ADD_FAILURE() << "no DIB section " << width << "x" << height;
        return {};
    }
    HGDIOBJ old = SelectObject(memory, dib);
    // Magenta shows where nothing was painted.
    RECT all{0, 0, width, height};
    HBRUSH unpainted = CreateSolidBrush(RGB(255, 0, 255));
    FillRect(memory, &all, unpainted);
    DeleteObject(unpainted);
    paint(memory);
    GdiFlush();
    const auto* p = static_cast<const uint32_t*>(bits);
    for (int i = 0; i < width * height; ++i) picture.pixels.push_back(p[i] & 0xFFFFFF);
    SelectObject(memory, old);
    DeleteObject(dib);
    DeleteDC(memory);
    return picture;
}

std::wstring Wide(const std::string& text) { return std::wstring(text.begin(), text.end()); }

// The command-line host's path as CMake gives it; under Wine a Unix path is on drive Z.
std::wstring CliPath()
{
    std::wstring path = Wide(BVX_CLI_PATH);
    if (!path.empty() && path[0] == L'/') path = L"Z:" + path;
    for (wchar_t& c : path)
        if (c == L'/') c = L'\\';
    return path;
}

} // namespace

namespace {
// The object the frame was handed last; a form's loop offers it each message
// first, as a container's does.
Ref<IOleInPlaceActiveObject> activeObject;
} // namespace

void Pump()
{
    MSG m;
    while (PeekMessageW(&m, nullptr, 0, 0, PM_REMOVE)) {
        if (Ref<IOleInPlaceActiveObject> active = activeObject; active && active->TranslateAccelerator(&m) == S_OK)
            continue;
        TranslateMessage(&m);
        DispatchMessageW(&m);
    }
}

Form::Form(int width, int height)
{
    static const ATOM registered = [] {
        WNDCLASSW wc{};
        wc.lpfnWndProc = DefWindowProcW;
        wc.hInstance = GetModuleHandleW(nullptr);
        wc.hbrBackground = HBRUSH(COLOR_BTNFACE + 1);
        wc.lpszClassName = kFormClass;
        return RegisterClassW(&wc);
    }();
    EXPECT_NE(registered, 0);
    const DWORD style = WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN;
    RECT outer{0, 0, width, height};
    AdjustWindowRect(&outer, style, FALSE);
    // Away from the pointer, which rests at the screen's corner.
    hwnd_ = CreateWindowExW(0, kFormClass, L"form", style, 300, 200, outer.right - outer.left, outer.bottom - outer.top,
                            nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
    EXPECT_NE(hwnd_, nullptr);
    ShowWindow(hwnd_, SW_SHOW);
    UpdateWindow(hwnd_);
    Pump();
}

Form::~Form()
{
    DestroyWindow(hwnd_);
    Pump();
}

std::span<const com::InterfaceEntry<Site>> Site::Interfaces()
{
    static constexpr com::InterfaceEntry<Site> table[] = {
        com::Entry<Site, IOleClientSite>(IID_IOleClientSite),
        com::Entry<Site, IOleInPlaceSite>(IID_IOleInPlaceSite),
        com::Entry<Site, IOleWindow, IOleInPlaceSite>(IID_IOleWindow),
        com::Entry<Site, IOleInPlaceFrame>(IID_IOleInPlaceFrame),
        com::Entry<Site, IOleInPlaceUIWindow, IOleInPlaceFrame>(IID_IOleInPlaceUIWindow),
        com::Entry<Site, IOleControlSite>(IID_IOleControlSite),
        com::Entry<Site, IDispatch>(IID_IDispatch),
        com::Entry<Site, IAdviseSink>(IID_IAdviseSink),
    };
    return table;
}

STDMETHODIMP Site::QueryInterface(REFIID riid, void** out)
{
    asked.push_back(IidName(riid));
    return SiteBase::QueryInterface(riid, out);
}

STDMETHODIMP Site::GetWindowContext(IOleInPlaceFrame** frame, IOleInPlaceUIWindow** document, RECT* position,
                                    RECT* clip, OLEINPLACEFRAMEINFO* info)
{
    Note("GetWindowContext");
    if (!frame || !document || !position || !clip || !info) return E_POINTER;
    AddRef();
    *frame = this;
    *document = nullptr;
    *position = *clip = position_;
    *info = {sizeof *info, FALSE, form_, nullptr, 0};
    return S_OK;
}

STDMETHODIMP Site::OnPosRectChange(LPCRECT position)
{
    Note("OnPosRectChange");
    if (position) position_ = *position;
    return S_OK;
}

STDMETHODIMP Site::SetActiveObject(IOleInPlaceActiveObject* object, LPCOLESTR)
{
    Note(object ? "SetActiveObject" : "SetActiveObject(null)");
    activeObject = Ref<IOleInPlaceActiveObject>::Share(object);
    return S_OK;
}

STDMETHODIMP Site::Invoke(DISPID dispid, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*, UINT*)
{
    calls.push_back("Ambient(" + std::to_string(dispid) + ")");
    if (dispid != DISPID_AMBIENT_USERMODE) return DISP_E_MEMBERNOTFOUND;
    if (result) {
        VariantInit(result);
        V_VT(result) = VT_BOOL;
        V_BOOL(result) = VARIANT_TRUE;
    }
    return S_OK;
}

STDMETHODIMP EventRecorder::Invoke(DISPID dispid, REFIID, LCID, WORD, DISPPARAMS* params, VARIANT*, EXCEPINFO*, UINT*)
{
    // The handler may drop the container's last hold on this sink.
    Ref<EventRecorder> self = Ref<EventRecorder>::Share(this);
    BSTR names[32] = {};
    UINT named = 0;
    if (!events_ || FAILED(events_->GetNames(dispid, names, 32, &named)) || named == 0) {
        heard.push_back("dispid " + std::to_string(dispid));
        return S_OK;
    }
    std::string line = Narrow(names[0]) + "(";
    const UINT count = params ? params->cArgs : 0;
    for (UINT i = 0; i < count; ++i) {
        Value arg;
        VariantCopy(arg.get(), &params->rgvarg[count - 1 - i]);
        line += (i ? ", " : "") + (i + 1 < named ? Narrow(names[i + 1]) : "?") + "=" + Number(arg.Number());
    }
    for (UINT i = 0; i < named; ++i) SysFreeString(names[i]);
    line += ")";
    heard.push_back(line);
    if (handler) handler(line);
    return S_OK;
}

Embedded::Embedded(HWND form, RECT rect) : form_(form)
{
    control = NewControl();
    if (!control) return;
    site = Ref<Site>(Site::Create(form, rect));
    Ref<IOleObject> ole = As<IOleObject>(control.get(), IID_IOleObject);
    EXPECT_EQ(ole->SetClientSite(site.get()), S_OK);
    EXPECT_EQ(As<IPersistStreamInit>(control.get(), IID_IPersistStreamInit)->InitNew(), S_OK);

    // The event interface as the class names it, not as this program knows it.
    IID source{};
    Ref<IProvideClassInfo2> info = As<IProvideClassInfo2>(control.get(), IID_IProvideClassInfo2);
    EXPECT_TRUE(info && info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &source) == S_OK);
    events = Ref<EventRecorder>(EventRecorder::Create(EventTypeInfo(control.get(), source)));
    point_ = PointFor(control.get(), source);
    if (point_) {
        EXPECT_EQ(point_->Advise(events.get(), &cookie_), S_OK);
    }
    EXPECT_EQ(ole->Advise(static_cast<IAdviseSink*>(site.get()), &adviseCookie_), S_OK);
    if (Ref<IViewObject> view = As<IViewObject>(control.get(), IID_IViewObject))
        view->SetAdvise(DVASPECT_CONTENT, 0, static_cast<IAdviseSink*>(site.get()));

    EXPECT_EQ(Move(rect), S_OK);
    activated = Verb(OLEIVERB_INPLACEACTIVATE);
    if (Ref<IOleInPlaceObject> inPlace = As<IOleInPlaceObject>(control.get(), IID_IOleInPlaceObject))
        inPlace->GetWindow(&hwnd);
}

void Embedded::Shutdown()
{
    // Once only, even when a handler does it while the control is at work.
    Ref<IBvxCAD> going = std::exchange(control, Ref<IBvxCAD>());
    if (!going) return;
    Ref<IOleObject> ole = As<IOleObject>(going.get(), IID_IOleObject);
    if (Ref<IOleInPlaceObject> inPlace = As<IOleInPlaceObject>(going.get(), IID_IOleInPlaceObject))
        inPlace->InPlaceDeactivate();
    ole->Close(OLECLOSE_NOSAVE);
    if (Ref<IConnectionPoint> point = std::exchange(point_, Ref<IConnectionPoint>())) point->Unadvise(cookie_);
    if (Ref<IViewObject> view = As<IViewObject>(going.get(), IID_IViewObject))
        view->SetAdvise(DVASPECT_CONTENT, 0, nullptr);
    ole->Unadvise(adviseCookie_);
    ole->SetClientSite(nullptr);
}

HRESULT Embedded::Verb(LONG verb)
{
    RECT rect = site->Position();
    return As<IOleObject>(control.get(), IID_IOleObject)->DoVerb(verb, nullptr, site.get(), 0, form_, &rect);
}

HRESULT Embedded::Move(RECT rect)
{
    site->SetPosition(rect);
    // The extent in HIMETRIC, from pixels at the screen's resolution.
    HDC screen = GetDC(nullptr);
    SIZEL extent{MulDiv(rect.right - rect.left, 2540, GetDeviceCaps(screen, LOGPIXELSX)),
                 MulDiv(rect.bottom - rect.top, 2540, GetDeviceCaps(screen, LOGPIXELSY))};
    ReleaseDC(nullptr, screen);
    const HRESULT hr = As<IOleObject>(control.get(), IID_IOleObject)->SetExtent(DVASPECT_CONTENT, &extent);
    Ref<IOleInPlaceObject> inPlace = As<IOleInPlaceObject>(control.get(), IID_IOleInPlaceObject);
    return FAILED(hr) || !inPlace || !hwnd ? hr : inPlace->SetObjectRects(&rect, &rect);
}

Step Mouse(UINT msg, WPARAM keys, int x, int y) { return {msg, keys, MAKELPARAM(x, y)}; }

Step Key(UINT msg, UINT vk)
{
    // A repeat count of one; a release is marked up, and down before.
    return {msg, vk, LPARAM(msg == WM_KEYUP ? 0xC0000001u : 1u)};
}

void Post(HWND hwnd, const std::vector<Step>& road)
{
    for (const Step& s : road) {
        PostMessageW(hwnd, s.msg, s.wParam, s.lParam);
        Pump();
    }
}

std::string Script(const std::vector<Step>& road)
{
    std::string text;
    for (const Step& s : road)
        text += ".message " + std::to_string(s.msg) + ", " + std::to_string(s.wParam) + ", " +
                std::to_string(static_cast<unsigned long long>(s.lParam)) + "\n";
    return text;
}

void Apply(IBvxCAD* control, const std::vector<Member>& members)
{
    std::vector<Value> results;
    for (const Member& m : members) {
        std::vector<Value> args;
        for (const Arg& a : m.args) {
            if (const double* n = std::get_if<double>(&a))
                args.push_back(*n == std::trunc(*n) && std::fabs(*n) < 2e9 ? Value::I4(long(*n)) : Value::R8(*n));
            else if (const wchar_t* const* text = std::get_if<const wchar_t*>(&a))
                args.push_back(Value::Text(*text));
            else
                args.push_back(results.at(std::get<Earlier>(a).row));
        }
        Outcome done;
        if (m.kind == Member::Put) {
            Value value = args.back();
            args.pop_back();
            done = Put(control, m.name, value, args);
        } else {
            done = Call(control, m.name, DISPATCH_METHOD | DISPATCH_PROPERTYGET, args);
        }
        ASSERT_EQ(done.hr, S_OK) << Narrow(m.name) << " row " << results.size();
        results.push_back(done.result);
    }
}

std::string Script(const std::vector<Member>& members)
{
    std::string text;
    for (size_t row = 0; row < members.size(); ++row) {
        const Member& m = members[row];
        std::vector<std::string> args;
        for (const Arg& a : m.args) {
            if (const double* n = std::get_if<double>(&a))
                args.push_back(Number(*n));
            else if (const wchar_t* const* t = std::get_if<const wchar_t*>(&a))
                args.push_back("\"" + Narrow(*t) + "\"");
            else
                args.push_back("$r" + std::to_string(std::get<Earlier>(a).row));
        }
        auto joined = [&](size_t from, size_t to) {
            std::string list;
            for (size_t i = from; i < to; ++i) list += (i > from ? ", " : "") + args[i];
            return list;
        };
        if (m.kind == Member::Put) {
            text += Narrow(m.name);
            if (args.size() > 1) text += "(" + joined(0, args.size() - 1) + ")";
            text += " = " + args.back() + "\n";
        } else {
            if (m.kind == Member::Kept) text += "$r" + std::to_string(row) + " = ";
            text += Narrow(m.name) + " " + joined(0, args.size()) + "\n";
        }
    }
    return text;
}

std::string TempPath(const std::string& name)
{
    char folder[MAX_PATH];
    GetTempPathA(MAX_PATH, folder);
    return std::string(folder) + "bvx-container-" + std::to_string(GetCurrentProcessId()) + "-" + name;
}

CliRun RunCli(const std::string& script)
{
    static int runs = 0;
    const std::string scriptPath = TempPath("run" + std::to_string(++runs) + ".bvxs");
    std::ofstream(scriptPath, std::ios::binary) << script;

    CliRun run;
    // Through cmd.exe, which drops the outer quotes and keeps the inner ones.
    const std::wstring command = L"\"\"" + CliPath() + L"\" run \"" + Wide(scriptPath) + L"\" 2>&1\"";
    if (FILE* out = _wpopen(command.c_str(), L"rb")) {
        for (int c; (c = std::fgetc(out)) != EOF;)
            if (c != '\r') run.output += char(c);
        run.exitCode = DWORD(_pclose(out));
    } else {
        run.output = "cannot start " + Narrow(command.c_str());
    }
    DeleteFileA(scriptPath.c_str());
    return run;
}

std::vector<std::string> CliRun::Lines(const std::string& prefix, const std::string& from, const std::string& to) const
{
    std::vector<std::string> lines;
    std::istringstream in(output);
    bool on = false;
    for (std::string line; std::getline(in, line) && !(on && line == to);) {
        if (!on)
            on = line == from;
        else if (line.rfind(prefix, 0) == 0)
            lines.push_back(line.substr(prefix.size()));
    }
    return lines;
}

std::string Normalized(const std::string& event)
{
    std::string out;
    for (size_t i = 0; i < event.size(); ++i) {
        out += event[i];
        if (event[i] != '=') continue;
        char* end = nullptr;
        double v = std::strtod(event.c_str() + i + 1, &end);
        if (end == event.c_str() + i + 1) continue;
        char text[32];
        std::snprintf(text, sizeof text, "%.6g", std::fabs(v) < 1e-9 ? 0.0 : v);
        out += text;
        i = size_t(end - event.c_str()) - 1;
    }
    return out;
}

std::vector<std::string> Normalized(const std::vector<std::string>& events)
{
    std::vector<std::string> out;
    for (const std::string& e : events) out.push_back(Normalized(e));
    return out;
}

Picture FromWindow(HWND hwnd)
{
    RECT client{};
    GetClientRect(hwnd, &client);
    HDC window = GetDC(hwnd);
    Picture p = Capture(client.right, client.bottom,
                        [&](HDC memory) { BitBlt(memory, 0, 0, client.right, client.bottom, window, 0, 0, SRCCOPY); });
    ReleaseDC(hwnd, window);
    return p;
}

Picture FromViewObject(IUnknown* control, int width, int height)
{
    Ref<IViewObject> view = As<IViewObject>(control, IID_IViewObject);
    if (!view) {
        ADD_FAILURE() << "the control has no IViewObject";
        return {};
    }
    return Capture(width, height, [&](HDC memory) {
        RECTL bounds{0, 0, width, height};
        EXPECT_EQ(view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, memory, &bounds, nullptr, nullptr, 0),
                  S_OK);
    });
}

Picture ReadBmp(const std::string& path)
{
    const auto loaded =
        HBITMAP(LoadImageA(nullptr, path.c_str(), IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE | LR_CREATEDIBSECTION));
    BITMAP size{};
    if (!loaded || !GetObjectW(loaded, sizeof size, &size)) return {};
    HDC file = CreateCompatibleDC(nullptr);
    HGDIOBJ old = SelectObject(file, loaded);
    Picture p = Capture(size.bmWidth, size.bmHeight,
                        [&](HDC memory) { BitBlt(memory, 0, 0, size.bmWidth, size.bmHeight, file, 0, 0, SRCCOPY); });
    SelectObject(file, old);
    DeleteDC(file);
    DeleteObject(loaded);
    return p;
}

std::string Differences(const Picture& got, const Picture& expected)
{
    std::ostringstream out;
    if (got.width != expected.width || got.height != expected.height) {
        out << "size " << got.width << "x" << got.height << ", expected " << expected.width << "x" << expected.height;
        return out.str();
    }
    size_t differing = 0;
    char text[80];
    for (int y = 0; y < got.height; ++y)
        for (int x = 0; x < got.width; ++x) {
            const size_t i = size_t(y) * got.width + x;
            if (got.pixels[i] == expected.pixels[i] || ++differing > 10) continue;
            std::snprintf(text, sizeof text, "(%d, %d) got %06X expected %06X\n", x, y, got.pixels[i],
                          expected.pixels[i]);
            out << text;
        }
    if (differing) out << differing << " pixels differ";
    return out.str();
}

} // namespace bvx::container
