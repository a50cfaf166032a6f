// Events as advised sinks receive them, with their argument types and in
// order, and the property notices of the two bindable properties.
#include "ClientSupport.h"

namespace bvx::client {
namespace {

struct Heard {
    DISPID dispid;
    std::vector<VARTYPE> types;
    std::vector<double> values;
    bool operator==(const Heard&) const = default;
};

std::ostream& operator<<(std::ostream& out, const Heard& h)
{
    out << "event " << h.dispid << " (";
    for (size_t i = 0; i < h.types.size(); ++i) out << (i ? ", " : "") << "vt " << h.types[i] << " " << h.values[i];
    return out << ")";
}

// A dispatch-only sink, as script hosts and forms make them.
class EventLog final : public com::SingleInterfaceObject<EventLog, DispatchById, IID_IDispatch> {
public:
    std::vector<Heard> heard;

    STDMETHODIMP Invoke(DISPID dispid, REFIID, LCID, WORD flags, DISPPARAMS* params, VARIANT*, EXCEPINFO*,
                        UINT*) override
    {
        EXPECT_EQ(flags, DISPATCH_METHOD);
        EXPECT_EQ(params->cNamedArgs, 0u);
        Heard h{dispid, {}, {}};
        // The arguments come last first.
        for (UINT i = params->cArgs; i-- > 0;) {
            Value copy;
            VariantCopy(copy.get(), &params->rgvarg[i]);
            h.types.push_back(copy.Type());
            h.values.push_back(copy.Number());
        }
        heard.push_back(h);
        return S_OK;
    }
};

TEST(Events, AScriptedDrawingFiresTypedEventsInOrderToEverySink)
{
    Ref<IBvxCAD> control = NewControl();
    Ref<EventLog> first(EventLog::Create()), second(EventLog::Create());
    const DWORD cookie = Connect(control.get(), DIID__CADEvents, first.get());
    Connect(control.get(), DIID__CADEvents, second.get());

    long rectangle = 0, polygon = 0;
    VARIANT_BOOL selected = VARIANT_FALSE;
    ASSERT_EQ(control->DrawRectangle(1, 2, 3, 4, 1, &rectangle), S_OK);
    ASSERT_EQ(control->ShapeSelect(rectangle, VARIANT_FALSE, &selected), S_OK);
    ASSERT_EQ(control->ShapeDelete(rectangle), S_OK);
    ASSERT_EQ(control->ShapeAdd(bvxPolygon, 1, &polygon), S_OK);

    // Types as the event table declares them: shape types 16-bit, numbers 32-bit.
    std::vector<Heard> expected = {
        {DISPID_CADEvents_ShapeNumberAdded, {VT_I2, VT_I4}, {bvxRectangle, double(rectangle)}},
        {DISPID_CADEvents_ShapeNumberSelected, {VT_I2, VT_I4}, {bvxRectangle, double(rectangle)}},
        {DISPID_CADEvents_ShapeNumberDeleted, {VT_I4}, {double(rectangle)}},
        {DISPID_CADEvents_ShapeNumberAdded, {VT_I2, VT_I4}, {bvxPolygon, double(polygon)}},
    };
    EXPECT_EQ(first->heard, expected);
    EXPECT_EQ(second->heard, expected);

    Ref<IConnectionPoint> point = PointFor(control.get(), DIID__CADEvents);
    EXPECT_EQ(point->Unadvise(cookie), S_OK);
    EXPECT_EQ(point->Unadvise(cookie), CONNECT_E_NOCONNECTION);
    first->heard.clear();
    second->heard.clear();
    Outcome drawn = Call(control.get(), L"DrawLine", DISPATCH_METHOD,
                         {Value::R8(0), Value::R8(0), Value::R8(5), Value::R8(5), Value::I2(1)});
    ASSERT_EQ(drawn.hr, S_OK);
    EXPECT_TRUE(first->heard.empty()) << "a sink that left hears nothing";
    expected = {{DISPID_CADEvents_ShapeNumberAdded, {VT_I2, VT_I4}, {bvxLine, drawn.result.Number()}}};
    EXPECT_EQ(second->heard, expected) << "a call through Invoke fires as one through the vtable";
}

TEST(Events, BindablePropertiesAskAndTellTheirSinks)
{
    Ref<IBvxCAD> control = NewControl();
    Ref<PropertyLog> log(PropertyLog::Create());
    Connect(control.get(), IID_IPropertyNotifySink, log.get());
    Ref<IPersistStreamInit> persist = As<IPersistStreamInit>(control.get(), IID_IPersistStreamInit);
    EXPECT_EQ(persist->IsDirty(), S_FALSE);

    ASSERT_EQ(control->put_BackColor(0x123456), S_OK);
    EXPECT_EQ(log->heard, (std::vector<std::string>{"request -501", "changed -501"}));
    EXPECT_EQ(persist->IsDirty(), S_OK);
    log->heard.clear();
    ASSERT_EQ(control->put_BackColor(0x123456), S_OK);
    EXPECT_TRUE(log->heard.empty()) << "the same colour again asks nobody";

    ASSERT_EQ(control->put_GridWidth(25), S_OK);
    EXPECT_TRUE(log->heard.empty()) << "GridWidth is not bindable";

    log->refuse = true;
    EXPECT_EQ(control->put_GridHeight(33), S_FALSE);
    double height = 0;
    control->get_GridHeight(&height);
    EXPECT_EQ(height, 10.0) << "a refused change leaves the value";
    EXPECT_EQ(log->heard, (std::vector<std::string>{"request 122"}));

    // Frozen, the control asks and tells nothing.
    log->heard.clear();
    Ref<IOleControl> ole = As<IOleControl>(control.get(), IID_IOleControl);
    ASSERT_EQ(ole->FreezeEvents(TRUE), S_OK);
    EXPECT_EQ(control->put_GridHeight(33), S_OK);
    EXPECT_TRUE(log->heard.empty());
    ole->FreezeEvents(FALSE);
    log->refuse = false;
    EXPECT_EQ(control->put_GridHeight(44), S_OK);
    EXPECT_EQ(log->heard, (std::vector<std::string>{"request 122", "changed 122"}));
}

} // namespace
} // namespace bvx::client
