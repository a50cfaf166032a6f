// Saving and loading the control's settings through a stream, a property
// bag and a storage: the stream's layout, round trips of every entry of the
// property map, and loads that must fail without harm.
#include "ClientSupport.h"

#include <bit>
#include <cstring>
#include <map>

namespace bvx::client {
namespace {

struct MapEntry {
    const wchar_t* name;
    double initial; // of a new control
    Value changed;  // a value other than the initial one
};

// The property map in its order, with the defaults of a new control.
const std::vector<MapEntry>& Map()
{
    using V = Value;
    static const std::vector<MapEntry> map = {
        {L"_cx", 5080, V::I4(7000)}, {L"_cy", 5080, V::I4(3000)},
        {L"BackColor", 0xFFFFFF, V::I4(0x102030)}, {L"AngleMode", 0, V::I2(1)},
        {L"GridColor", 0, V::I4(0x00FF00)}, {L"GridDrawOrder", 0, V::I2(1)},
        {L"GridHeight", 10.0, V::R8(7.5)}, {L"GridOn", 0, V::Bool(true)},
        {L"GridWidth", 10.0, V::R8(2.25)}, {L"ViewCopyMode", 0, V::I2(1)},
        {L"ViewDrawOrthogonal", 0, V::Bool(true)}, {L"ViewKeyCopy", -1, V::Bool(false)},
        {L"ViewKeyDelete", -1, V::Bool(false)}, {L"ViewMouseBounds", 0, V::I2(1)},
        {L"ViewMouseTool", 0, V::I4(bvxPolygon)}, {L"ViewPersistMouseTool", 0, V::Bool(true)},
        {L"ViewSelectMode", 0, V::I2(1)}, {L"ViewShapeMoveMode", 0, V::I2(2)},
        {L"ViewShowTracker", -1, V::Bool(false)}, {L"ViewSnapMarkerColor", 0, V::I4(0x0000FF)},
        {L"ViewSnapMarkerOn", -1, V::Bool(false)}, {L"ViewSnapMode", 0, V::I2(1)},
        {L"ViewSnapToGrid", 1, V::I2(2)}, {L"ViewSnapToShape", 1, V::I2(0)},
        {L"WorldAnglePrecision", 8, V::I2(3)}, {L"WorldBottom", 0.0, V::R8(-20)},
        {L"WorldCoordPrecision", 8, V::I2(4)}, {L"WorldLeft", 0.0, V::R8(-30)},
        {L"WorldRight", 100.0, V::R8(70)}, {L"WorldSquare", -1, V::Bool(false)},
        {L"WorldTop", 100.0, V::R8(80)},
    };
    return map;
}

// The natural size's entries are raw; the extent holds them.
bool IsRaw(const MapEntry& entry) { return entry.name[0] == L'_'; }
LONG& Side(SIZEL& size, const MapEntry& entry) { return entry.name[2] == L'x' ? size.cx : size.cy; }

// The control with every entry of the map changed.
Ref<IBvxCAD> ChangedControl()
{
    Ref<IBvxCAD> control = NewControl();
    SIZEL size{};
    for (const MapEntry& entry : Map()) {
        if (IsRaw(entry))
            Side(size, entry) = LONG(entry.changed.Number());
        else
            EXPECT_EQ(Put(control.get(), entry.name, entry.changed).hr, S_OK) << Narrow(entry.name);
    }
    EXPECT_EQ(As<IOleObject>(control.get(), IID_IOleObject)->SetExtent(DVASPECT_CONTENT, &size), S_OK);
    return control;
}

// Every entry of the map read back, the raw ones through the extent.
std::vector<Value> Settings(IBvxCAD* control)
{
    std::vector<Value> values;
    SIZEL size{};
    As<IOleObject>(control, IID_IOleObject)->GetExtent(DVASPECT_CONTENT, &size);
    for (const MapEntry& entry : Map())
        values.push_back(IsRaw(entry) ? Value::I4(Side(size, entry)) : Get(control, entry.name).result);
    return values;
}

void ExpectSettings(IBvxCAD* control, const std::vector<Value>& expected, const char* how)
{
    const std::vector<Value> got = Settings(control);
    for (size_t i = 0; i < got.size(); ++i) EXPECT_EQ(got[i], expected[i]) << Narrow(Map()[i].name) << how;
}

std::vector<uint8_t> Bytes(IStream* stream)
{
    STATSTG stat{};
    stream->Stat(&stat, STATFLAG_NONAME);
    std::vector<uint8_t> bytes(size_t(stat.cbSize.QuadPart));
    LARGE_INTEGER start{};
    stream->Seek(start, STREAM_SEEK_SET, nullptr);
    ULONG read = 0;
    stream->Read(bytes.data(), ULONG(bytes.size()), &read);
    EXPECT_EQ(read, bytes.size());
    return bytes;
}

Ref<IStream> StreamOf(const std::vector<uint8_t>& bytes)
{
    Ref<IStream> stream;
    EXPECT_EQ(CreateStreamOnHGlobal(nullptr, TRUE, stream.Out()), S_OK);
    stream->Write(bytes.data(), ULONG(bytes.size()), nullptr);
    LARGE_INTEGER start{};
    stream->Seek(start, STREAM_SEEK_SET, nullptr);
    return stream;
}

Ref<IPersistStreamInit> Streaming(IBvxCAD* control) { return As<IPersistStreamInit>(control, IID_IPersistStreamInit); }

std::vector<uint8_t> Saved(IBvxCAD* control)
{
    Ref<IStream> stream = StreamOf({});
    EXPECT_EQ(Streaming(control)->Save(stream.get(), TRUE), S_OK);
    return Bytes(stream.get());
}

HRESULT LoadInto(IBvxCAD* control, const std::vector<uint8_t>& bytes)
{
    return Streaming(control)->Load(StreamOf(bytes).get());
}

// Reads the stream as its layout is written down, independently of the
// control: a version, two raw numbers, then type and value per property.
std::vector<double> ParseStream(const std::vector<uint8_t>& bytes, uint32_t& version)
{
    size_t at = 0;
    auto take = [&](size_t size) { // the little-endian bits of the next `size` bytes
        uint64_t bits = 0;
        EXPECT_LE(at + size, bytes.size());
        if (at + size <= bytes.size()) std::memcpy(&bits, bytes.data() + at, size);
        at += size;
        return bits;
    };
    version = uint32_t(take(4));
    std::vector<double> values;
    for (const MapEntry& entry : Map()) {
        const uint16_t vt = IsRaw(entry) ? uint16_t(VT_I4) : uint16_t(take(2));
        if (vt == VT_I2 || vt == VT_BOOL) {
            values.push_back(int16_t(take(2)));
        } else if (vt == VT_I4) {
            values.push_back(int32_t(take(4)));
        } else if (vt == VT_R8) {
            values.push_back(std::bit_cast<double>(take(8)));
        } else {
            ADD_FAILURE() << Narrow(entry.name) << " has the unexpected type " << vt;
            return values;
        }
    }
    EXPECT_EQ(at, bytes.size()) << "nothing follows the last entry";
    return values;
}

TEST(Persistence, ANewControlsStreamHoldsTheMapInOrder)
{
    Ref<IBvxCAD> control = NewControl();
    uint32_t version = 0;
    std::vector<double> values = ParseStream(Saved(control.get()), version);
    EXPECT_EQ(version, 0x300u);
    ASSERT_EQ(values.size(), Map().size());
    for (size_t i = 0; i < values.size(); ++i) EXPECT_EQ(values[i], Map()[i].initial) << Narrow(Map()[i].name);

    ULARGE_INTEGER size{};
    ASSERT_EQ(Streaming(control.get())->GetSizeMax(&size), S_OK);
    EXPECT_EQ(size.QuadPart, Saved(control.get()).size());
}

// A property bag of the test's own: names to values, handed back as stored.
class MemoryBag final : public com::SingleInterfaceObject<MemoryBag, IPropertyBag, IID_IPropertyBag> {
public:
    std::map<std::wstring, Value> values;

    STDMETHODIMP Read(LPCOLESTR name, VARIANT* value, IErrorLog*) override
    {
        auto it = values.find(name);
        if (it == values.end()) return E_INVALIDARG;
        return VariantCopy(value, it->second.get());
    }
    STDMETHODIMP Write(LPCOLESTR name, VARIANT* value) override
    {
        Value copy;
        VariantCopy(copy.get(), value);
        values[name] = copy;
        return S_OK;
    }
};

Ref<IPersistPropertyBag> Bagging(IBvxCAD* control) { return As<IPersistPropertyBag>(control, IID_IPersistPropertyBag); }
Ref<IPersistStorage> Storing(IBvxCAD* control) { return As<IPersistStorage>(control, IID_IPersistStorage); }

// Each medium saves one control's settings and loads them into another.
using Transfer = void (*)(IBvxCAD* from, IBvxCAD* to);

void ThroughStream(IBvxCAD* from, IBvxCAD* to)
{
    EXPECT_EQ(Streaming(from)->IsDirty(), S_OK);
    const std::vector<uint8_t> bytes = Saved(from);
    EXPECT_EQ(Streaming(from)->IsDirty(), S_FALSE) << "a save that clears the flag";
    EXPECT_EQ(LoadInto(to, bytes), S_OK);
}

void ThroughBag(IBvxCAD* from, IBvxCAD* to)
{
    Ref<MemoryBag> bag(MemoryBag::Create());
    ASSERT_EQ(Bagging(from)->Save(bag.get(), TRUE, TRUE), S_OK);
    EXPECT_EQ(bag->values.size(), Map().size());
    EXPECT_EQ(bag->values[L"_cx"].Type(), VT_UI4);
    EXPECT_EQ(Bagging(to)->Load(bag.get(), nullptr), S_OK);
}

void ThroughStorage(IBvxCAD* from, IBvxCAD* to)
{
    Ref<ILockBytes> bytes;
    ASSERT_EQ(CreateILockBytesOnHGlobal(nullptr, TRUE, bytes.Out()), S_OK);
    Ref<IStorage> storage;
    ASSERT_EQ(StgCreateDocfileOnILockBytes(bytes.get(), STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE, 0,
                                           storage.Out()),
              S_OK);
    ASSERT_EQ(Storing(from)->Save(storage.get(), FALSE), S_OK);
    ASSERT_EQ(Storing(from)->SaveCompleted(nullptr), S_OK);
    Ref<IStream> contents;
    ASSERT_EQ(storage->OpenStream(L"Contents", nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0, contents.Out()), S_OK);
    EXPECT_EQ(Bytes(contents.get()), Saved(from)) << "the same bytes as a plain stream";
    contents = Ref<IStream>();
    EXPECT_EQ(Storing(to)->Load(storage.get()), S_OK);
}

TEST(Persistence, EveryEntryRoundTripsThroughEachMedium)
{
    Ref<IBvxCAD> original = ChangedControl();
    const std::vector<Value> expected = Settings(original.get());
    for (size_t i = 0; i < expected.size(); ++i)
        EXPECT_EQ(expected[i].Number(), Map()[i].changed.Number()) << Narrow(Map()[i].name) << " took its new value";
    const std::pair<const char*, Transfer> kMedia[] = {
        {" through a stream", ThroughStream}, {" through a bag", ThroughBag}, {" through a storage", ThroughStorage}};
    for (const auto& [how, transfer] : kMedia) {
        Ref<IBvxCAD> loaded = NewControl();
        transfer(original.get(), loaded.get());
        ExpectSettings(loaded.get(), expected, how);
        EXPECT_EQ(Streaming(loaded.get())->IsDirty(), S_FALSE) << how;
    }
}

TEST(Persistence, NewerVersionsShortStreamsAndNullsAreRefused)
{
    std::vector<uint8_t> bytes = Saved(ChangedControl().get());
    std::vector<uint8_t> newer = bytes;
    newer[0] = 0x01; // 0x301
    EXPECT_EQ(LoadInto(NewControl().get(), newer), E_FAIL);
    std::vector<uint8_t> older = bytes;
    older[0] = 0xFF;
    older[1] = 0x02; // 0x2FF reads as the same layout
    EXPECT_EQ(LoadInto(NewControl().get(), older), S_OK);

    // BackColor's entry turned into text that claims 2 GB.
    std::vector<uint8_t> huge = bytes;
    const uint8_t text[] = {VT_BSTR, 0, 0xFE, 0xFF, 0xFF, 0x7F};
    std::copy(std::begin(text), std::end(text), huge.begin() + 12);
    EXPECT_EQ(LoadInto(NewControl().get(), huge), E_FAIL);

    Ref<IBvxCAD> control = NewControl();
    for (size_t length = 0; length < bytes.size(); ++length)
        EXPECT_EQ(LoadInto(control.get(), std::vector<uint8_t>(bytes.begin(), bytes.begin() + length)), E_FAIL)
            << "cut at " << length;
    bvxViewMouseToolVals tool = bvxPan;
    EXPECT_EQ(control->get_ViewMouseTool(&tool), S_OK) << "the control still answers";

    EXPECT_EQ(Streaming(control.get())->Load(nullptr), E_POINTER);
    EXPECT_EQ(Streaming(control.get())->Save(nullptr, TRUE), E_POINTER);
    EXPECT_EQ(Bagging(control.get())->Load(nullptr, nullptr), E_POINTER);
    EXPECT_EQ(Bagging(control.get())->Save(nullptr, TRUE, TRUE), E_POINTER);
    EXPECT_EQ(Storing(control.get())->Load(nullptr), E_POINTER);
    EXPECT_EQ(Storing(control.get())->Save(nullptr, TRUE), E_POINTER);
}

// A load is a walk of writes: one the container refuses stops it there.
TEST(Persistence, ARefusedWriteStopsAStreamLoad)
{
    Ref<IBvxCAD> control = NewControl();
    Ref<PropertyLog> refusing(PropertyLog::Create());
    refusing->refuse = true;
    Connect(control.get(), IID_IPropertyNotifySink, refusing.get());
    EXPECT_EQ(LoadInto(control.get(), Saved(ChangedControl().get())), E_FAIL);
    EXPECT_EQ(refusing->heard, std::vector<std::string>{"request -501"});
    const std::vector<Value> got = Settings(control.get());
    for (size_t i = 0; i < got.size(); ++i)
        EXPECT_EQ(got[i].Number(), IsRaw(Map()[i]) ? Map()[i].changed.Number() : Map()[i].initial)
            << Narrow(Map()[i].name) << ": only the entries before BackColor were read";
}

TEST(Persistence, ABagLoadsWhatItHoldsAndRefusesWrongTypes)
{
    Ref<MemoryBag> onlyColour(MemoryBag::Create());
    onlyColour->values[L"BackColor"] = Value::I4(0x445566);
    Ref<IBvxCAD> control = NewControl();
    ASSERT_EQ(Bagging(control.get())->Load(onlyColour.get(), nullptr), S_OK);
    std::vector<Value> got = Settings(control.get());
    for (size_t i = 0; i < got.size(); ++i)
        EXPECT_EQ(got[i].Number(), std::wstring(Map()[i].name) == L"BackColor" ? 0x445566 : Map()[i].initial)
            << Narrow(Map()[i].name);

    Ref<MemoryBag> wrong(MemoryBag::Create());
    wrong->values[L"GridHeight"] = Value::Text(L"tall");
    EXPECT_EQ(Bagging(control.get())->Load(wrong.get(), nullptr), E_FAIL);
    EXPECT_EQ(Get(control.get(), L"GridHeight").result.Number(), 10.0);
    Ref<MemoryBag> wrongSize(MemoryBag::Create());
    wrongSize->values[L"_cx"] = Value::Text(L"wide");
    EXPECT_EQ(Bagging(control.get())->Load(wrongSize.get(), nullptr), E_FAIL);
}

} // namespace
} // namespace bvx::client
