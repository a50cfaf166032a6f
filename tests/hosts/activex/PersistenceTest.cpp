// Saving and loading the control's settings through a stream, a property
// bag and a storage: the stream's layout, round trips of every entry of the
// property map, and loads that must fail without harm.
#include "ClientSupport.h"

#include <algorithm>
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
std::vector<MapEntry> Map()
{
    using V = Value;
    return {
        {L"_cx", 5080, V::I4(7000)},
        {L"_cy", 5080, V::I4(3000)},
        {L"BackColor", 0xFFFFFF, V::I4(0x102030)},
        {L"AngleMode", 0, V::I2(1)},
        {L"GridColor", 0, V::I4(0x00FF00)},
        {L"GridDrawOrder", 0, V::I2(1)},
        {L"GridHeight", 10.0, V::R8(7.5)},
        {L"GridOn", 0, V::Bool(true)},
        {L"GridWidth", 10.0, V::R8(2.25)},
        {L"ViewCopyMode", 0, V::I2(1)},
        {L"ViewDrawOrthogonal", 0, V::Bool(true)},
        {L"ViewKeyCopy", -1, V::Bool(false)},
        {L"ViewKeyDelete", -1, V::Bool(false)},
        {L"ViewMouseBounds", 0, V::I2(1)},
        {L"ViewMouseTool", 0, V::I4(bvxPolygon)},
        {L"ViewPersistMouseTool", 0, V::Bool(true)},
        {L"ViewSelectMode", 0, V::I2(1)},
        {L"ViewShapeMoveMode", 0, V::I2(2)},
        {L"ViewShowTracker", -1, V::Bool(false)},
        {L"ViewSnapMarkerColor", 0, V::I4(0x0000FF)},
        {L"ViewSnapMarkerOn", -1, V::Bool(false)},
        {L"ViewSnapMode", 0, V::I2(1)},
        {L"ViewSnapToGrid", 1, V::I2(2)},
        {L"ViewSnapToShape", 1, V::I2(0)},
        {L"WorldAnglePrecision", 8, V::I2(3)},
        {L"WorldBottom", 0.0, V::R8(-20)},
        {L"WorldCoordPrecision", 8, V::I2(4)},
        {L"WorldLeft", 0.0, V::R8(-30)},
        {L"WorldRight", 100.0, V::R8(70)},
        {L"WorldSquare", -1, V::Bool(false)},
        {L"WorldTop", 100.0, V::R8(80)},
    };
}

bool IsRaw(const MapEntry& entry) { return entry.name[0] == L'_'; }

std::string Narrow(const wchar_t* text) { return std::string(text, text + wcslen(text)); }

// The control with every entry of the map changed.
Ref<IBvxCAD> ChangedControl()
{
    Ref<IBvxCAD> control = NewControl();
    SIZEL size{};
    for (const MapEntry& entry : Map()) {
        if (IsRaw(entry))
            (entry.name[2] == L'x' ? size.cx : size.cy) = LONG(entry.changed.Number());
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
        values.push_back(IsRaw(entry) ? Value::I4(entry.name[2] == L'x' ? size.cx : size.cy)
                                      : Get(control, entry.name).result);
    return values;
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

std::vector<uint8_t> Saved(IBvxCAD* control)
{
    Ref<IStream> stream = StreamOf({});
    EXPECT_EQ(As<IPersistStreamInit>(control, IID_IPersistStreamInit)->Save(stream.get(), TRUE), S_OK);
    return Bytes(stream.get());
}

HRESULT LoadInto(IBvxCAD* control, const std::vector<uint8_t>& bytes)
{
    return As<IPersistStreamInit>(control, IID_IPersistStreamInit)->Load(StreamOf(bytes).get());
}

// Reads the stream as its layout is written down, independently of the
// control: a version, two raw numbers, then type and value per property.
std::vector<double> ParseStream(const std::vector<uint8_t>& bytes, uint32_t& version)
{
    size_t at = 0;
    auto take = [&](void* into, size_t size) {
        EXPECT_LE(at + size, bytes.size());
        if (at + size <= bytes.size()) std::memcpy(into, bytes.data() + at, size);
        at += size;
    };
    take(&version, 4);
    std::vector<double> values;
    for (const MapEntry& entry : Map()) {
        if (IsRaw(entry)) {
            int32_t raw = 0;
            take(&raw, 4);
            values.push_back(raw);
            continue;
        }
        uint16_t vt = 0;
        take(&vt, 2);
        if (vt == VT_I2 || vt == VT_BOOL) {
            int16_t v = 0;
            take(&v, 2);
            values.push_back(v);
        } else if (vt == VT_I4) {
            int32_t v = 0;
            take(&v, 4);
            values.push_back(v);
        } else if (vt == VT_R8) {
            double v = 0;
            take(&v, 8);
            values.push_back(v);
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
    const std::vector<MapEntry> map = Map();
    ASSERT_EQ(values.size(), map.size());
    for (size_t i = 0; i < map.size(); ++i) EXPECT_EQ(values[i], map[i].initial) << Narrow(map[i].name);

    ULARGE_INTEGER size{};
    ASSERT_EQ(As<IPersistStreamInit>(control.get(), IID_IPersistStreamInit)->GetSizeMax(&size), S_OK);
    EXPECT_EQ(size.QuadPart, Saved(control.get()).size());
}

TEST(Persistence, EveryEntryRoundTripsThroughAStream)
{
    Ref<IBvxCAD> original = ChangedControl();
    std::vector<Value> expected = Settings(original.get());
    const std::vector<MapEntry> map = Map();
    for (size_t i = 0; i < map.size(); ++i)
        EXPECT_EQ(expected[i].Number(), map[i].changed.Number()) << Narrow(map[i].name) << " took its new value";
    EXPECT_EQ(As<IPersistStreamInit>(original.get(), IID_IPersistStreamInit)->IsDirty(), S_OK);
    std::vector<uint8_t> bytes = Saved(original.get());
    EXPECT_EQ(As<IPersistStreamInit>(original.get(), IID_IPersistStreamInit)->IsDirty(), S_FALSE);

    Ref<IBvxCAD> loaded = NewControl();
    long shape = 0;
    loaded->DrawLine(0, 0, 1, 1, 1, &shape);
    ASSERT_EQ(LoadInto(loaded.get(), bytes), S_OK);
    std::vector<Value> got = Settings(loaded.get());
    for (size_t i = 0; i < map.size(); ++i) EXPECT_EQ(got[i], expected[i]) << Narrow(map[i].name);
    EXPECT_EQ(As<IPersistStreamInit>(loaded.get(), IID_IPersistStreamInit)->IsDirty(), S_FALSE);
}

TEST(Persistence, NewerVersionsAndShortStreamsAreRefused)
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

    Ref<IPersistStreamInit> persist = As<IPersistStreamInit>(control.get(), IID_IPersistStreamInit);
    EXPECT_EQ(persist->Load(nullptr), E_POINTER);
    EXPECT_EQ(persist->Save(nullptr, TRUE), E_POINTER);
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

TEST(Persistence, EveryEntryRoundTripsThroughAPropertyBag)
{
    Ref<IBvxCAD> original = ChangedControl();
    Ref<MemoryBag> bag(MemoryBag::Create());
    ASSERT_EQ(As<IPersistPropertyBag>(original.get(), IID_IPersistPropertyBag)->Save(bag.get(), TRUE, TRUE), S_OK);
    ASSERT_EQ(bag->values.size(), Map().size());
    EXPECT_EQ(bag->values[L"_cx"].Type(), VT_UI4);

    Ref<IBvxCAD> loaded = NewControl();
    ASSERT_EQ(As<IPersistPropertyBag>(loaded.get(), IID_IPersistPropertyBag)->Load(bag.get(), nullptr), S_OK);
    std::vector<Value> expected = Settings(original.get()), got = Settings(loaded.get());
    for (size_t i = 0; i < got.size(); ++i) EXPECT_EQ(got[i], expected[i]) << Narrow(Map()[i].name);
}

TEST(Persistence, ABagLoadsWhatItHoldsAndRefusesWrongTypes)
{
    Ref<MemoryBag> onlyColour(MemoryBag::Create());
    onlyColour->values[L"BackColor"] = Value::I4(0x445566);
    Ref<IBvxCAD> control = NewControl();
    Ref<IPersistPropertyBag> persist = As<IPersistPropertyBag>(control.get(), IID_IPersistPropertyBag);
    ASSERT_EQ(persist->Load(onlyColour.get(), nullptr), S_OK);
    std::vector<Value> got = Settings(control.get());
    const std::vector<MapEntry> map = Map();
    for (size_t i = 0; i < map.size(); ++i)
        EXPECT_EQ(got[i].Number(), std::wstring(map[i].name) == L"BackColor" ? 0x445566 : map[i].initial)
            << Narrow(map[i].name);

    Ref<MemoryBag> wrong(MemoryBag::Create());
    wrong->values[L"GridHeight"] = Value::Text(L"tall");
    EXPECT_EQ(persist->Load(wrong.get(), nullptr), E_FAIL);
    EXPECT_EQ(Get(control.get(), L"GridHeight").result.Number(), 10.0);
    Ref<MemoryBag> wrongSize(MemoryBag::Create());
    wrongSize->values[L"_cx"] = Value::Text(L"wide");
    EXPECT_EQ(persist->Load(wrongSize.get(), nullptr), E_FAIL);
    EXPECT_EQ(persist->Load(nullptr, nullptr), E_POINTER);
}

TEST(Persistence, EveryEntryRoundTripsThroughAStorage)
{
    Ref<ILockBytes> bytes;
    ASSERT_EQ(CreateILockBytesOnHGlobal(nullptr, TRUE, bytes.Out()), S_OK);
    Ref<IStorage> storage;
    ASSERT_EQ(StgCreateDocfileOnILockBytes(bytes.get(), STGM_CREATE | STGM_READWRITE | STGM_SHARE_EXCLUSIVE, 0,
                                           storage.Out()),
              S_OK);
    Ref<IBvxCAD> original = ChangedControl();
    Ref<IPersistStorage> saver = As<IPersistStorage>(original.get(), IID_IPersistStorage);
    ASSERT_EQ(saver->Save(storage.get(), FALSE), S_OK);
    ASSERT_EQ(saver->SaveCompleted(nullptr), S_OK);

    Ref<IStream> contents;
    ASSERT_EQ(storage->OpenStream(L"Contents", nullptr, STGM_READ | STGM_SHARE_EXCLUSIVE, 0, contents.Out()), S_OK);
    EXPECT_EQ(Bytes(contents.get()), Saved(original.get())) << "the same bytes as a plain stream";
    contents = Ref<IStream>();

    Ref<IBvxCAD> loaded = NewControl();
    Ref<IPersistStorage> loader = As<IPersistStorage>(loaded.get(), IID_IPersistStorage);
    ASSERT_EQ(loader->Load(storage.get()), S_OK);
    std::vector<Value> expected = Settings(original.get()), got = Settings(loaded.get());
    for (size_t i = 0; i < got.size(); ++i) EXPECT_EQ(got[i], expected[i]) << Narrow(Map()[i].name);
    EXPECT_EQ(loader->Load(nullptr), E_POINTER);
}

} // namespace
} // namespace bvx::client
