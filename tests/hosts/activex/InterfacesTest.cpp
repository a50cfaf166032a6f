// The control's interfaces as a container finds them: one identity, the
// class and event descriptions, error support, safety, pages and status.
#include "ClientSupport.h"

#include <objsafe.h>

namespace bvx::client {
namespace {

// The platform's stock colour page.
constexpr CLSID kStockColorPage = {0x7EBDAAE1, 0x8120, 0x11CF, {0x89, 0x9F, 0x00, 0xAA, 0x00, 0x68, 0x8B, 0x10}};

struct Named {
    const char* name;
    const IID* iid;
};

const Named kInterfaces[] = {
    {"IBvxCAD", &IID_IBvxCAD},
    {"IDispatch", &IID_IDispatch},
    {"IConnectionPointContainer", &IID_IConnectionPointContainer},
    {"IProvideClassInfo", &IID_IProvideClassInfo},
    {"IProvideClassInfo2", &IID_IProvideClassInfo2},
    {"ISupportErrorInfo", &IID_ISupportErrorInfo},
    {"IOleControl", &IID_IOleControl},
    {"IOleObject", &IID_IOleObject},
    {"IObjectSafety", &IID_IObjectSafety},
    {"ISpecifyPropertyPages", &IID_ISpecifyPropertyPages},
    {"IPerPropertyBrowsing", &IID_IPerPropertyBrowsing},
    {"IPersist", &IID_IPersist},
    {"IPersistStreamInit", &IID_IPersistStreamInit},
    {"IPersistPropertyBag", &IID_IPersistPropertyBag},
    {"IPersistStorage", &IID_IPersistStorage},
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
    TYPEATTR* attributes = nullptr;
    ASSERT_EQ(coclass->GetTypeAttr(&attributes), S_OK);
    EXPECT_TRUE(IsEqualGUID(attributes->guid, CLSID_BvxCAD));
    EXPECT_EQ(attributes->typekind, TKIND_COCLASS);
    bool sourceFound = false;
    for (UINT i = 0; i < attributes->cImplTypes; ++i) {
        INT flags = 0;
        HREFTYPE ref = 0;
        Ref<ITypeInfo> implemented;
        coclass->GetImplTypeFlags(i, &flags);
        coclass->GetRefTypeOfImplType(i, &ref);
        coclass->GetRefTypeInfo(ref, implemented.Out());
        TYPEATTR* implementedAttributes = nullptr;
        implemented->GetTypeAttr(&implementedAttributes);
        if ((flags & IMPLTYPEFLAG_FSOURCE) && (flags & IMPLTYPEFLAG_FDEFAULT))
            sourceFound = IsEqualGUID(implementedAttributes->guid, DIID__CADEvents);
        implemented->ReleaseTypeAttr(implementedAttributes);
    }
    coclass->ReleaseTypeAttr(attributes);
    EXPECT_TRUE(sourceFound);

    Ref<ITypeInfo> dispatchInfo;
    ASSERT_EQ(control->GetTypeInfo(0, LOCALE_USER_DEFAULT, dispatchInfo.Out()), S_OK);
    ASSERT_EQ(dispatchInfo->GetTypeAttr(&attributes), S_OK);
    EXPECT_TRUE(IsEqualGUID(attributes->guid, IID_IBvxCAD));
    dispatchInfo->ReleaseTypeAttr(attributes);
    EXPECT_EQ(control->GetTypeInfo(1, LOCALE_USER_DEFAULT, dispatchInfo.Out()), DISP_E_BADINDEX);
}

TEST(Interfaces, ErrorSupportSafetyPagesAndStatus)
{
    Ref<IBvxCAD> control = NewControl();
    Ref<ISupportErrorInfo> errors = As<ISupportErrorInfo>(control.get(), IID_ISupportErrorInfo);
    EXPECT_EQ(errors->InterfaceSupportsErrorInfo(IID_IBvxCAD), S_OK);
    EXPECT_EQ(errors->InterfaceSupportsErrorInfo(IID_IPersistStreamInit), S_FALSE);

    Ref<IObjectSafety> safety = As<IObjectSafety>(control.get(), IID_IObjectSafety);
    DWORD supported = 0, enabled = 0;
    ASSERT_EQ(safety->GetInterfaceSafetyOptions(IID_IDispatch, &supported, &enabled), S_OK);
    EXPECT_EQ(supported, DWORD(INTERFACESAFE_FOR_UNTRUSTED_CALLER));
    EXPECT_EQ(enabled, 0u);
    EXPECT_EQ(safety->SetInterfaceSafetyOptions(IID_IDispatch, INTERFACESAFE_FOR_UNTRUSTED_CALLER,
                                                INTERFACESAFE_FOR_UNTRUSTED_CALLER),
              S_OK);
    safety->GetInterfaceSafetyOptions(IID_IDispatch, &supported, &enabled);
    EXPECT_EQ(enabled, DWORD(INTERFACESAFE_FOR_UNTRUSTED_CALLER));
    ASSERT_EQ(safety->GetInterfaceSafetyOptions(IID_IPersistPropertyBag, &supported, &enabled), S_OK);
    EXPECT_EQ(supported, DWORD(INTERFACESAFE_FOR_UNTRUSTED_DATA));
    EXPECT_EQ(safety->SetInterfaceSafetyOptions(IID_IDispatch, INTERFACESAFE_FOR_UNTRUSTED_DATA, 0), E_FAIL);
    EXPECT_EQ(safety->GetInterfaceSafetyOptions(IID_IClassFactory, &supported, &enabled), E_NOINTERFACE);

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

} // namespace
} // namespace bvx::client
