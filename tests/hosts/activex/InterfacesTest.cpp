// The control's interfaces as a container finds them: one identity, the
// class and event descriptions, error support, safety, pages and status.
#include "ClientSupport.h"

#include <objsafe.h>

#include <algorithm>

namespace bvx::client {
namespace {

// The platform's stock colour page.
constexpr CLSID kStockColorPage = {0x7EBDAAE1, 0x8120, 0x11CF, {0x89, 0x9F, 0x00, 0xAA, 0x00, 0x68, 0x8B, 0x10}};

struct Named {
    const char* name;
    const IID* iid;
};

const Named kInterfaces[] = {
    {"IBvxCAD", &IID_IBvxCAD}, {"IDispatch", &IID_IDispatch},
    {"IConnectionPointContainer", &IID_IConnectionPointContainer}, {"IProvideClassInfo", &IID_IProvideClassInfo},
    {"IProvideClassInfo2", &IID_IProvideClassInfo2}, {"ISupportErrorInfo", &IID_ISupportErrorInfo},
    {"IOleControl", &IID_IOleControl}, {"IOleObject", &IID_IOleObject},
    {"IObjectSafety", &IID_IObjectSafety}, {"ISpecifyPropertyPages", &IID_ISpecifyPropertyPages},
    {"IPerPropertyBrowsing", &IID_IPerPropertyBrowsing}, {"IPersist", &IID_IPersist},
    {"IPersistStreamInit", &IID_IPersistStreamInit}, {"IPersistPropertyBag", &IID_IPersistPropertyBag},
    {"IPersistStorage", &IID_IPersistStorage}, {"IOleWindow", &IID_IOleWindow},
    {"IOleInPlaceObject", &IID_IOleInPlaceObject}, {"IOleInPlaceObjectWindowless", &IID_IOleInPlaceObjectWindowless},
    {"IOleInPlaceActiveObject", &IID_IOleInPlaceActiveObject}, {"IViewObject", &IID_IViewObject},
    {"IViewObject2", &IID_IViewObject2}, {"IViewObjectEx", &IID_IViewObjectEx},
    {"IDataObject", &IID_IDataObject}, {"IQuickActivate", &IID_IQuickActivate},
};

TEST(Interfaces, EachAnswersAndLeadsBackToOneIdentity)
{
    Ref<IBvxCAD> control = NewControl();
    ASSERT_TRUE(control);
    Ref<IUnknown> identity = As<IUnknown>(control.get(), IID_IUnknown);
    for (const Named& named : kInterfaces) {
        Ref<IUnknown> asked = As<IUnknown>(control.get(), *named.iid);
        ASSERT_TRUE(asked) << named.name;
        EXPECT_EQ(As<IUnknown>(asked.get(), IID_IUnknown).get(), identity.get()) << named.name;
        EXPECT_TRUE(As<IUnknown>(asked.get(), IID_IBvxCAD)) << "back to IBvxCAD from " << named.name;
    }
    void* none = reinterpret_cast<void*>(1);
    EXPECT_EQ(control->QueryInterface(IID_IClassFactory, &none), E_NOINTERFACE);
    EXPECT_EQ(none, nullptr);
}

// An entry point of the control's DLL, as COM and a container's idle loop call it.
template <typename Function> Function EntryPoint(const char* name)
{
    HMODULE module = GetModuleHandleW(L"bvxcad.dll");
    return module ? reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(module, name))) : nullptr;
}

TEST(Interfaces, TheModuleMakesControlsAndUnloadsOnlyWhenIdle)
{
    Ref<IBvxCAD> control = NewControl();
    auto canUnload = EntryPoint<HRESULT(STDAPICALLTYPE*)()>("DllCanUnloadNow");
    auto classObject = EntryPoint<HRESULT(STDAPICALLTYPE*)(REFCLSID, REFIID, void**)>("DllGetClassObject");
    ASSERT_TRUE(canUnload && classObject);
    EXPECT_EQ(canUnload(), S_FALSE) << "a control lives";
    control = Ref<IBvxCAD>();
    EXPECT_EQ(canUnload(), S_OK);

    void* none = reinterpret_cast<void*>(1);
    EXPECT_EQ(classObject(IID_IBvxCAD, IID_IClassFactory, &none), CLASS_E_CLASSNOTAVAILABLE);
    EXPECT_EQ(none, nullptr);
    auto factory = [&] {
        Ref<IClassFactory> made;
        EXPECT_EQ(classObject(CLSID_BvxCAD, IID_IClassFactory, reinterpret_cast<void**>(made.Out())), S_OK);
        return made;
    };
    Ref<IClassFactory> made = factory();
    EXPECT_EQ(made->CreateInstance(made.get(), IID_IUnknown, &none), CLASS_E_NOAGGREGATION);
    EXPECT_EQ(canUnload(), S_FALSE) << "a factory lives";
    EXPECT_EQ(made->LockServer(TRUE), S_OK);
    made = Ref<IClassFactory>();
    EXPECT_EQ(canUnload(), S_FALSE) << "locked, with no object alive";
    EXPECT_EQ(factory()->LockServer(FALSE), S_OK);
    EXPECT_EQ(canUnload(), S_OK);
}

::testing::AssertionResult Describes(ITypeInfo* info, const GUID& guid, TYPEKIND kind)
{
    TYPEATTR* attributes = nullptr;
    if (!info || info->GetTypeAttr(&attributes) != S_OK) return ::testing::AssertionFailure() << "no attributes";
    const bool same = IsEqualGUID(attributes->guid, guid) && attributes->typekind == kind;
    info->ReleaseTypeAttr(attributes);
    return same ? ::testing::AssertionSuccess() : ::testing::AssertionFailure() << "another type";
}

TEST(Interfaces, ClassInformationNamesTheEventInterface)
{
    Ref<IBvxCAD> control = NewControl();
    Ref<IProvideClassInfo2> info = As<IProvideClassInfo2>(control.get(), IID_IProvideClassInfo2);
    GUID source{};
    ASSERT_EQ(info->GetGUID(GUIDKIND_DEFAULT_SOURCE_DISP_IID, &source), S_OK);
    EXPECT_TRUE(IsEqualGUID(source, DIID__CADEvents));
    EXPECT_EQ(info->GetGUID(42, &source), E_INVALIDARG);

    Ref<ITypeInfo> coclass;
    ASSERT_EQ(info->GetClassInfo(coclass.Out()), S_OK);
    EXPECT_TRUE(Describes(coclass.get(), CLSID_BvxCAD, TKIND_COCLASS));
    bool sourceFound = false;
    for (UINT i = 0; i < 2; ++i) {
        INT flags = 0;
        HREFTYPE ref = 0;
        Ref<ITypeInfo> implemented;
        ASSERT_EQ(coclass->GetImplTypeFlags(i, &flags), S_OK);
        coclass->GetRefTypeOfImplType(i, &ref);
        coclass->GetRefTypeInfo(ref, implemented.Out());
        if (flags == (IMPLTYPEFLAG_FSOURCE | IMPLTYPEFLAG_FDEFAULT))
            sourceFound = Describes(implemented.get(), DIID__CADEvents, TKIND_DISPATCH);
    }
    EXPECT_TRUE(sourceFound);

    Ref<ITypeInfo> dispatchInfo;
    ASSERT_EQ(control->GetTypeInfo(0, LOCALE_USER_DEFAULT, dispatchInfo.Out()), S_OK);
    EXPECT_TRUE(Describes(dispatchInfo.get(), IID_IBvxCAD, TKIND_DISPATCH));
    EXPECT_EQ(control->GetTypeInfo(1, LOCALE_USER_DEFAULT, dispatchInfo.Out()), DISP_E_BADINDEX);
}

TEST(Interfaces, ErrorSupportSafetyPagesAndStatus)
{
    Ref<IBvxCAD> control = NewControl();
    Ref<ISupportErrorInfo> errors = As<ISupportErrorInfo>(control.get(), IID_ISupportErrorInfo);
    EXPECT_EQ(errors->InterfaceSupportsErrorInfo(IID_IBvxCAD), S_OK);
    EXPECT_EQ(errors->InterfaceSupportsErrorInfo(IID_IPersistStreamInit), S_FALSE);

    // Safe for scripting through the automation interfaces, for initialising
    // through the persistence ones; off until the container sets it.
    const struct {
        const IID* iid;
        DWORD safe;
    } kSafety[] = {{&IID_IDispatch, INTERFACESAFE_FOR_UNTRUSTED_CALLER},
                   {&IID_IBvxCAD, INTERFACESAFE_FOR_UNTRUSTED_CALLER},
                   {&IID_IPersistPropertyBag, INTERFACESAFE_FOR_UNTRUSTED_DATA},
                   {&IID_IPersistStreamInit, INTERFACESAFE_FOR_UNTRUSTED_DATA},
                   {&IID_IPersistStorage, INTERFACESAFE_FOR_UNTRUSTED_DATA},
                   {&IID_IClassFactory, 0}};
    const DWORD both = INTERFACESAFE_FOR_UNTRUSTED_CALLER | INTERFACESAFE_FOR_UNTRUSTED_DATA;
    for (const auto& row : kSafety) {
        Ref<IObjectSafety> safety = As<IObjectSafety>(NewControl().get(), IID_IObjectSafety);
        DWORD supported = 7, enabled = 7;
        const HRESULT known = row.safe ? S_OK : E_NOINTERFACE;
        EXPECT_EQ(safety->GetInterfaceSafetyOptions(*row.iid, &supported, &enabled), known) << row.safe;
        EXPECT_EQ(supported, row.safe);
        EXPECT_EQ(enabled, 0u);
        EXPECT_EQ(safety->SetInterfaceSafetyOptions(*row.iid, both, both), row.safe ? E_FAIL : known);
        EXPECT_EQ(safety->SetInterfaceSafetyOptions(*row.iid, row.safe, row.safe), known);
        safety->GetInterfaceSafetyOptions(*row.iid, &supported, &enabled);
        EXPECT_EQ(enabled, row.safe);
    }

    CAUUID pages{};
    ASSERT_EQ(As<ISpecifyPropertyPages>(control.get(), IID_ISpecifyPropertyPages)->GetPages(&pages), S_OK);
    ASSERT_EQ(pages.cElems, 1u);
    EXPECT_TRUE(IsEqualGUID(pages.pElems[0], kStockColorPage));
    CoTaskMemFree(pages.pElems);
    Ref<IPerPropertyBrowsing> browsing = As<IPerPropertyBrowsing>(control.get(), IID_IPerPropertyBrowsing);
    CLSID page{};
    EXPECT_EQ(browsing->MapPropertyToPage(DISPID_BACKCOLOR, &page), S_OK);
    EXPECT_TRUE(IsEqualGUID(page, kStockColorPage));
    EXPECT_EQ(browsing->MapPropertyToPage(121, &page), PERPROP_E_NOPAGEAVAILABLE);

    DWORD status = 0;
    ASSERT_EQ(As<IOleObject>(control.get(), IID_IOleObject)->GetMiscStatus(DVASPECT_CONTENT, &status), S_OK);
    EXPECT_EQ(status, DWORD(OLEMISC_SETCLIENTSITEFIRST | OLEMISC_ACTIVATEWHENVISIBLE | OLEMISC_INSIDEOUT |
                            OLEMISC_CANTLINKINSIDE | OLEMISC_RECOMPOSEONRESIZE));
}

TEST(Interfaces, ConnectionPointsForEventsAndPropertyNotices)
{
    Ref<IBvxCAD> control = NewControl();
    Ref<IConnectionPointContainer> container = As<IConnectionPointContainer>(control.get(),
                                                                             IID_IConnectionPointContainer);
    Ref<IEnumConnectionPoints> points;
    ASSERT_EQ(container->EnumConnectionPoints(points.Out()), S_OK);
    std::vector<IID> found;
    IConnectionPoint* point = nullptr;
    while (points->Next(1, &point, nullptr) == S_OK) {
        IID iid{};
        point->GetConnectionInterface(&iid);
        found.push_back(iid);
        Ref<IConnectionPointContainer> back;
        EXPECT_EQ(point->GetConnectionPointContainer(back.Out()), S_OK);
        EXPECT_EQ(back.get(), container.get());
        point->Release();
    }
    ASSERT_EQ(found.size(), 2u);
    EXPECT_TRUE(IsEqualIID(found[0], DIID__CADEvents));
    EXPECT_TRUE(IsEqualIID(found[1], IID_IPropertyNotifySink));
    Ref<IConnectionPoint> none;
    EXPECT_EQ(container->FindConnectionPoint(IID_IClassFactory, none.Out()), CONNECT_E_NOCONNECTION);
}

// What a container may ask before it activates the control: no window yet,
// the view's status, hit tests and a picture in any device context, no data
// formats, and quick activation connecting its sinks in one call.
TEST(Interfaces, AnInactiveControlsViewDataAndQuickActivation)
{
    Ref<IBvxCAD> control = NewControl();
    HWND window = reinterpret_cast<HWND>(1);
    EXPECT_EQ(As<IOleWindow>(control.get(), IID_IOleWindow)->GetWindow(&window), E_FAIL);
    EXPECT_EQ(window, nullptr);
    Ref<IOleObject> ole = As<IOleObject>(control.get(), IID_IOleObject);
    EXPECT_EQ(ole->DoVerb(OLEIVERB_INPLACEACTIVATE, nullptr, nullptr, 0, nullptr, nullptr), E_NOINTERFACE);
    EXPECT_EQ(ole->DoVerb(OLEIVERB_PROPERTIES, nullptr, nullptr, 0, nullptr, nullptr), E_NOTIMPL);

    Ref<IViewObjectEx> view = As<IViewObjectEx>(control.get(), IID_IViewObjectEx);
    DWORD status = 0;
    EXPECT_EQ(view->GetViewStatus(&status), S_OK);
    EXPECT_EQ(status, DWORD(VIEWSTATUS_OPAQUE | VIEWSTATUS_SOLIDBKGND));
    const RECT bounds{10, 10, 30, 20};
    // The rectangle tested is the pixel left of and above the point.
    const struct {
        POINT point;
        DWORD pointHit, rectHit;
    } kHits[] = {{{10, 10}, HITRESULT_HIT, HITRESULT_OUTSIDE},
                 {{29, 19}, HITRESULT_HIT, HITRESULT_HIT},
                 {{30, 15}, HITRESULT_OUTSIDE, HITRESULT_HIT},
                 {{5, 15}, HITRESULT_OUTSIDE, HITRESULT_OUTSIDE}};
    for (const auto& row : kHits) {
        DWORD result = 99;
        EXPECT_EQ(view->QueryHitPoint(DVASPECT_CONTENT, &bounds, row.point, 0, &result), S_OK);
        EXPECT_EQ(result, row.pointHit) << row.point.x << "," << row.point.y;
        const RECT around{row.point.x - 1, row.point.y - 1, row.point.x, row.point.y};
        EXPECT_EQ(view->QueryHitRect(DVASPECT_CONTENT, &bounds, &around, 0, &result), S_OK);
        EXPECT_EQ(result, row.rectHit) << row.point.x << "," << row.point.y;
    }
    SIZEL extent{};
    EXPECT_EQ(view->GetExtent(DVASPECT_CONTENT, -1, nullptr, &extent), S_OK);
    EXPECT_EQ(extent.cx, 5080);

    // The picture of an empty drawing is its back colour, placed at the bounds.
    EXPECT_EQ(Put(control.get(), L"BackColor", Value::I4(0x123456)).hr, S_OK);
    HDC memory = CreateCompatibleDC(nullptr);
    BITMAPINFO info{};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), 40, -30, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    HBITMAP bitmap = CreateDIBSection(memory, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    HGDIOBJ previous = SelectObject(memory, bitmap);
    const RECTL drawn{10, 10, 30, 20};
    EXPECT_EQ(view->Draw(DVASPECT_ICON, -1, nullptr, nullptr, nullptr, memory, &drawn, nullptr, nullptr, 0), DV_E_DVASPECT);
    EXPECT_EQ(view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, nullptr, &drawn, nullptr, nullptr, 0), E_INVALIDARG);
    // Exactly the bounds, in device pixels; a mapping mode that doubles
    // logical units doubles the picture.
    const auto drawnExactly = [&](RECT device) {
        auto* pixels = static_cast<uint32_t*>(bits);
        std::fill(pixels, pixels + 40 * 30, 0u);
        EXPECT_EQ(view->Draw(DVASPECT_CONTENT, -1, nullptr, nullptr, nullptr, memory, &drawn, nullptr, nullptr, 0), S_OK);
        for (int y = 0; y < 30; ++y)
            for (int x = 0; x < 40; ++x)
                ASSERT_EQ(pixels[y * 40 + x], PtInRect(&device, POINT{x, y}) ? 0x563412u : 0u) << x << "," << y;
    };
    drawnExactly({10, 10, 30, 20});
    SetMapMode(memory, MM_ANISOTROPIC);
    SetViewportExtEx(memory, 2, 3, nullptr);
    SetViewportOrgEx(memory, -15, -20, nullptr);
    drawnExactly({5, 10, 45, 40});
    SelectObject(memory, previous);
    DeleteObject(bitmap);
    DeleteDC(memory);

    Ref<IDataObject> data = As<IDataObject>(control.get(), IID_IDataObject);
    FORMATETC metafile{CF_ENHMETAFILE, nullptr, DVASPECT_CONTENT, -1, TYMED_ENHMF};
    STGMEDIUM medium{};
    EXPECT_EQ(data->QueryGetData(&metafile), DV_E_FORMATETC);
    EXPECT_EQ(data->GetData(&metafile, &medium), DV_E_FORMATETC);
    DWORD cookie = 1;
    EXPECT_EQ(data->DAdvise(&metafile, 0, nullptr, &cookie), OLE_E_ADVISENOTSUPPORTED);

    Ref<PropertyLog> notices(PropertyLog::Create());
    QACONTAINER container{};
    container.cbSize = sizeof container;
    container.pPropertyNotifySink = notices.get();
    QACONTROL answer{};
    answer.cbSize = sizeof answer;
    Ref<IQuickActivate> quick = As<IQuickActivate>(control.get(), IID_IQuickActivate);
    ASSERT_EQ(quick->QuickActivate(&container, &answer), S_OK);
    EXPECT_EQ(answer.dwMiscStatus, 0x20191u);
    EXPECT_EQ(answer.dwViewStatus, status);
    EXPECT_NE(answer.dwPropNotifyCookie, 0u);
    EXPECT_EQ(Put(control.get(), L"BackColor", Value::I4(0x654321)).hr, S_OK);
    EXPECT_EQ(notices->heard, (std::vector<std::string>{"request -501", "changed -501"}));
    SIZEL content{1000, 2000};
    EXPECT_EQ(quick->SetContentExtent(&content), S_OK);
    EXPECT_EQ(quick->GetContentExtent(&extent), S_OK);
    EXPECT_EQ(extent.cy, 2000);
    container.cbSize = 4;
    EXPECT_EQ(quick->QuickActivate(&container, &answer), E_INVALIDARG);
}

} // namespace
} // namespace bvx::client
