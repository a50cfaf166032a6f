#include "NativeReadFuzz.h"

#include "buffer/GroupWalk.h"
#include "buffer/NativeFile.h"
#include "control/CadView.h"
#include "platform/ByteStream.h"
#include "platform/raster/RasterDeviceContext.h"

#include <cmath>
#include <cstdlib>
#include <span>

namespace bvx::fuzz {

namespace {

constexpr int32_t kSurfaceSize = 32;

// A drawing for the file to land in: layers and a shape already there.
void Prepare(CadView& view)
{
    view.World.SetClientRect({0, 0, kSurfaceSize, kSurfaceSize});
    view.Buf.AddLayer(u"Other");
    view.CreateShape(1, 1);
}

bool WorldEdgesRoundExactly(const CadWorld& w)
{
    constexpr double kReach = 2147483000.0;
    for (double edge : {w.WorldLeft, w.WorldTop, w.WorldRight, w.WorldBottom})
        if (!(std::fabs(edge) < kReach)) return false;
    return true;
}

bool NumberedInFileOrder(CadView& view)
{
    int32_t last = 0;
    bool rising = true;
    for (const auto& layer : view.Buf.Layers)
        WalkDeep(*layer, [&](CObjShape& shape) {
            rising = rising && shape.Number > last;
            last = shape.Number;
            return rising;
        });
    return rising;
}

// A whole load that must succeed.
void Reload(CadView& view, const std::vector<uint8_t>& bytes)
{
    Prepare(view);
    MemorySource source(bytes);
    if (!NativeFile::Read(view, source, NativeFile::kAllLayers, NativeFile::kAllLayers, 0)) std::abort();
}

std::vector<uint8_t> Saved(CadView& view)
{
    MemorySink sink;
    if (!NativeFile::Write(view, sink, NativeFile::kAllLayers)) std::abort();
    return sink.Bytes();
}

} // namespace

int NativeReadOne(const uint8_t* data, size_t size)
{
    if (size < 1) return 0;
    // The first byte chooses how the rest is loaded.
    const uint8_t how = data[0];
    const uint16_t layer = (how & 3) == 0 ? NativeFile::kAllLayers : uint16_t((how & 3) - 1);
    const uint16_t dest = (how & 4) ? uint16_t(1) : NativeFile::kAllLayers;
    MemorySource source(std::span<const uint8_t>(data + 1, size - 1));
    CadView view;
    Prepare(view);
    NativeFile::Read(view, source, layer, dest, int16_t((how >> 3) & 1));

    // Whatever was read stands as a drawing that saves and loads again, and
    // saves as the same bytes: no field is lost or changed on the way. A
    // load numbers shapes in file order, so where the drawing's numbers run
    // otherwise, only a second round must agree. The saves come before
    // painting, which may change a text's font slot; and world edges beyond
    // the 32-bit reach of coordinate rounding change each time they are set,
    // as they do through the members.
    const std::vector<uint8_t> first = Saved(view);
    CadView reread;
    Reload(reread, first);
    const std::vector<uint8_t> second = Saved(reread);
    if (WorldEdgesRoundExactly(view.World)) {
        if (NumberedInFileOrder(view) && second != first) std::abort();
        CadView again;
        Reload(again, second);
        if (Saved(again) != second) std::abort();
    }

    RasterDeviceContext dc(CreateBitmap(kSurfaceSize, kSurfaceSize));
    view.Paint(dc, {0, 0, kSurfaceSize, kSurfaceSize});
    reread.Paint(dc, {0, 0, kSurfaceSize, kSurfaceSize});
    return 0;
}

} // namespace bvx::fuzz
