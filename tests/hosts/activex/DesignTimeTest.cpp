// The design-time gate: a client site that answers the ambient user mode
// false closes the gated reads, through the vtable and through Invoke, and
// leaves every other member and persistence open.
#include "ClientSupport.h"

namespace bvx::client {
namespace {

class AmbientSite final : public com::ComObject<AmbientSite, IOleClientSite, DispatchById> {
public:
    static std::span<const com::InterfaceEntry<AmbientSite>> Interfaces()
    {
        static constexpr com::InterfaceEntry<AmbientSite> table[] = {
            com::Entry<AmbientSite, IOleClientSite>(IID_IOleClientSite),
            com::Entry<AmbientSite, IDispatch, DispatchById>(IID_IDispatch)};
        return table;
    }
    bool userMode = false;
    int asked = 0;

    STDMETHODIMP SaveObject() override { return E_NOTIMPL; }
    STDMETHODIMP GetMoniker(DWORD, DWORD, IMoniker**) override { return E_NOTIMPL; }
    STDMETHODIMP GetContainer(IOleContainer**) override { return E_NOINTERFACE; }
    STDMETHODIMP ShowObject() override { return S_OK; }
    STDMETHODIMP OnShowWindow(BOOL) override { return S_OK; }
    STDMETHODIMP RequestNewObjectLayout() override { return E_NOTIMPL; }
    STDMETHODIMP Invoke(DISPID dispid, REFIID, LCID, WORD, DISPPARAMS*, VARIANT* result, EXCEPINFO*, UINT*) override
    {
        if (dispid != DISPID_AMBIENT_USERMODE) return DISP_E_MEMBERNOTFOUND;
        ++asked;
        V_VT(result) = VT_BOOL;
        V_BOOL(result) = userMode ? VARIANT_TRUE : VARIANT_FALSE;
        return S_OK;
    }

private:
    friend class com::ComObject<AmbientSite, IOleClientSite, DispatchById>;
    ~AmbientSite() = default;
};

struct Read {
    const wchar_t* name;
    std::vector<Value> args;
    bool gated;
};

const std::vector<Read> kReads = {
    {L"ShapeArea", {Value::I4(1)}, true},   {L"LayerCount", {}, true},     {L"LayerName", {Value::I2(1)}, true},
    {L"ShapeSelectCount", {}, true},        {L"ViewHeight", {}, true},     {L"ShapePenFg", {Value::I4(1)}, true},
    {L"GridOn", {}, false},                 {L"CadShapeCount", {}, false}, {L"WorldLeft", {}, false},
    {L"ViewMouseTool", {}, false},          {L"ShapeType", {Value::I4(1)}, false},
    {L"BackColor", {}, false},
};

TEST(DesignTime, GatedReadsAnswerGetNotSupportedAndTouchNothing)
{
    Ref<IBvxCAD> control = NewControl();
    long shape = 0;
    ASSERT_EQ(control->DrawRectangle(0, 0, 10, 10, 1, &shape), S_OK);
    short layers = 0;
    EXPECT_EQ(control->get_LayerCount(&layers), S_OK) << "without a site, as at run time";
    EXPECT_EQ(layers, 2);
    Ref<AmbientSite> site(AmbientSite::Create());
    Ref<IOleObject> object = As<IOleObject>(control.get(), IID_IOleObject);
    ASSERT_EQ(object->SetClientSite(site.get()), S_OK);
    Ref<IOleClientSite> given;
    ASSERT_EQ(object->GetClientSite(given.Out()), S_OK);
    EXPECT_EQ(static_cast<IUnknown*>(given.get()), static_cast<IUnknown*>(static_cast<IOleClientSite*>(site.get())));

    const HRESULT kGetNotSupported = HRESULT(0x800A018A);
    for (const Read& read : kReads) {
        Outcome outcome = Get(control.get(), read.name, read.args);
        EXPECT_EQ(outcome.hr, read.gated ? DISP_E_EXCEPTION : S_OK) << Narrow(read.name);
        EXPECT_EQ(HexCode(outcome.exceptionCode), HexCode(read.gated ? kGetNotSupported : 0)) << Narrow(read.name);
        EXPECT_EQ(outcome.result.Type() == VT_EMPTY, read.gated) << Narrow(read.name);
    }
    EXPECT_GT(site->asked, 0);

    // Through the vtable: the code itself, the output untouched, an error object.
    double area = -1.5;
    SetErrorInfo(0, nullptr);
    EXPECT_EQ(HexCode(control->get_ShapeArea(shape, &area)), HexCode(kGetNotSupported));
    EXPECT_EQ(area, -1.5);
    Ref<IErrorInfo> error;
    ASSERT_EQ(GetErrorInfo(0, error.Out()), S_OK);
    BSTR description = nullptr;
    error->GetDescription(&description);
    EXPECT_GT(SysStringLen(description), 0u);
    SysFreeString(description);

    // Writes stay open, and so do saving and loading the control.
    EXPECT_EQ(control->put_LayerPenWidth(1, 4), S_OK);
    Ref<IStream> stream;
    ASSERT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, stream.Out()), S_OK);
    Ref<IPersistStreamInit> persist = As<IPersistStreamInit>(control.get(), IID_IPersistStreamInit);
    EXPECT_EQ(persist->Save(stream.get(), TRUE), S_OK);
    stream->Seek(LARGE_INTEGER{}, STREAM_SEEK_SET, nullptr);
    EXPECT_EQ(persist->Load(stream.get()), S_OK);

    // At run time the same reads answer.
    site->userMode = true;
    EXPECT_EQ(As<IOleControl>(control.get(), IID_IOleControl)->OnAmbientPropertyChange(DISPID_AMBIENT_USERMODE), S_OK);
    EXPECT_EQ(control->get_ShapeArea(shape, &area), S_OK);
    EXPECT_EQ(area, 100.0);
    short width = 0;
    EXPECT_EQ(control->get_LayerPenWidth(1, &width), S_OK);
    EXPECT_EQ(width, 4);
    object->SetClientSite(nullptr);
}

} // namespace
} // namespace bvx::client
