// The drawing file at scale: a drawing of 1,000,008 shapes, 52,632 of each
// of the 19 types (polyline-like shapes with 8 points, every group holding
// the circle and ellipse that follow it, every other shape with attributes
// of its own), saved and loaded, each against one fwrite or fread of the
// same bytes. The peak memory of a load is taken in a process that does
// nothing else, so that the drawing built here doesn't hide it.
#include "RatioReporter.h"
#include "buffer/NativeFile.h"
#include "control/CadControl.h"
#include "shapes/CArcShape.h"
#include "shapes/CEllipseShape.h"
#include "shapes/CGroupShape.h"
#include "shapes/CPictShape.h"
#include "shapes/CPointShape.h"
#include "shapes/CPolyShape.h"
#include "shapes/CRectShape.h"
#include "shapes/CTextShape.h"
#include "shapes/ShapeFactory.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <iterator>
#include <memory>
#include <random>
#include <string>
#include <vector>

#if defined(__linux__)
#include <sys/resource.h>
#endif

namespace {

using namespace bvx;

constexpr int16_t kTypes[] = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 17, 18, 19, 20};
constexpr size_t kTypeCount = std::size(kTypes);
constexpr size_t kPerType = 52632; // the fewest that reach a million
constexpr size_t kShapes = kPerType * kTypeCount;
constexpr size_t kMembers = 2; // the group's next two in the rotation join it
constexpr size_t kPoints = 8;

const std::string kLoadPeakFlag = "--load-peak";

std::string TempPath(const char* name) { return (std::filesystem::temp_directory_path() / name).string(); }

std::unique_ptr<CObjShape> MakeShape(int16_t type, size_t i, const CTextFont& font, std::mt19937& rng)
{
    std::uniform_real_distribution<double> coord(0, 1000);
    auto point = [&] { return WorldPoint{coord(rng), coord(rng)}; };
    std::unique_ptr<CObjShape> shape = NewShapeOfClass(type);
    shape->SetShapeType(uint8_t(type), 0);
    if (i % 2) shape->SetAttr(ShapeAttr::FromWords(uint32_t(rng()), uint32_t(rng())));
    if (type <= bvx2PointEllipse) {
        auto& r = static_cast<CRectShape&>(*shape);
        r.P1 = point(), r.P2 = point(), r.Radius = {2, 2};
    } else if (type <= bvx3PointArc) {
        auto& p = static_cast<CPolyShape&>(*shape);
        for (size_t k = 0; k < kPoints; ++k) p.Points.push_back(point());
    } else if (type == bvxText) {
        auto& t = static_cast<CTextShape&>(*shape);
        t.Origin = point();
        const std::string label = "Label " + std::to_string(i);
        t.Text.assign(label.begin(), label.end());
        t.Font = font;
    } else if (type == bvxPicture) {
        auto& p = static_cast<CPictShape&>(*shape); // no image: the record's own fields only
        p.P1 = point(), p.P2 = point();
    } else if (type <= bvxChord) {
        auto& a = static_cast<CArcShape&>(*shape);
        a.Centre = point(), a.Radius = {coord(rng), coord(rng)}, a.StartAngle = 0.5, a.EndAngle = 2.5;
    } else if (type == bvxPoint) {
        static_cast<CPointShape&>(*shape).Position = point();
    } else if (type != bvxGroup) {
        auto& e = static_cast<CEllipseShape&>(*shape);
        e.Centre = point(), e.RadiusX = coord(rng), e.RadiusY = type == bvxCircle ? e.RadiusX : coord(rng);
    }
    return shape;
}

// Built and saved once, for every benchmark that needs the file or its bytes.
struct Drawing {
    CadControl control;
    std::string path = TempPath("bvx_native_bench.bvx");
    std::vector<uint8_t> bytes;
    bool saved = false;

    Drawing()
    {
        CadView& view = control.View();
        const CTextFont font = view.FontTable.ReferenceTo(control.FontOpen(u"Liberation Sans,10,B", 1));
        std::mt19937 rng(11);
        CGroupShape* group = nullptr;
        size_t joined = 0;
        for (size_t i = 0; i < kShapes; ++i) {
            const int16_t type = kTypes[i % kTypeCount];
            CObjShape* added = view.Buf.AddShape(MakeShape(type, i, font, rng), view, 1, -1, false);
            if (group && joined < kMembers && view.Buf.GroupAddShape(group, added)) ++joined;
            if (type == bvxGroup) group = static_cast<CGroupShape*>(added), joined = 0;
        }
        saved = NativeFile::Save(view, path, NativeFile::kAllLayers);
        if (!saved) return;
        std::FILE* f = std::fopen(path.c_str(), "rb");
        bytes.resize(std::filesystem::file_size(path));
        saved = f && std::fread(bytes.data(), 1, bytes.size(), f) == bytes.size();
        if (f) std::fclose(f);
    }
    ~Drawing() { std::filesystem::remove(path); }
};

Drawing& TheDrawing()
{
    static Drawing drawing;
    return drawing;
}

// Bytes per second and the file's size on every row; shapes per second
// where shapes were made or written.
void Report(benchmark::State& state, const Drawing& d, bool shapes)
{
    state.SetBytesProcessed(int64_t(state.iterations()) * int64_t(d.bytes.size()));
    if (shapes)
        state.counters["shapes/s"] = benchmark::Counter(double(kShapes), benchmark::Counter::kIsIterationInvariantRate);
    state.counters["file_MB"] = double(d.bytes.size()) / 1e6;
}

void SaveDrawing(benchmark::State& state)
{
    Drawing& d = TheDrawing();
    if (!d.saved) return state.SkipWithError("the drawing could not be saved");
    for (auto _ : state)
        if (!NativeFile::Save(d.control.View(), d.path, NativeFile::kAllLayers))
            return state.SkipWithError("save failed");
    Report(state, d, true);
}

void FwriteBytes(benchmark::State& state)
{
    Drawing& d = TheDrawing();
    if (!d.saved) return state.SkipWithError("the drawing could not be saved");
    const std::string path = TempPath("bvx_native_bench.fwrite");
    for (auto _ : state) {
        std::FILE* f = std::fopen(path.c_str(), "wb");
        const bool ok = f && std::fwrite(d.bytes.data(), 1, d.bytes.size(), f) == d.bytes.size();
        if (!f || std::fclose(f) != 0 || !ok) return state.SkipWithError("fwrite failed");
    }
    Report(state, d, false);
    std::filesystem::remove(path);
}

void LoadDrawing(benchmark::State& state)
{
    Drawing& d = TheDrawing();
    if (!d.saved) return state.SkipWithError("the drawing could not be saved");
    std::unique_ptr<CadControl> loaded;
    for (auto _ : state) {
        // Making a control and freeing a million shapes are not the load.
        state.PauseTiming();
        loaded.reset();
        loaded = std::make_unique<CadControl>();
        state.ResumeTiming();
        if (!NativeFile::Load(loaded->View(), d.path, NativeFile::kAllLayers, NativeFile::kAllLayers, 0))
            return state.SkipWithError("load failed");
    }
    if (loaded && loaded->View().Buf.ShapeMap.Size() != kShapes) return state.SkipWithError("load lost shapes");
    Report(state, d, true);
}

void FreadBytes(benchmark::State& state)
{
    Drawing& d = TheDrawing();
    if (!d.saved) return state.SkipWithError("the drawing could not be saved");
    std::vector<uint8_t> into(d.bytes.size());
    for (auto _ : state) {
        std::FILE* f = std::fopen(d.path.c_str(), "rb");
        const bool ok = f && std::fread(into.data(), 1, into.size(), f) == into.size();
        if (f) std::fclose(f);
        if (!ok) return state.SkipWithError("fread failed");
        benchmark::DoNotOptimize(into.data());
    }
    Report(state, d, false);
}

#if defined(__linux__)
long PeakResidentKb()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

// The child's side: load the file into a fresh control and print the peak
// resident memory before and after, in kB, and the load's seconds. Every
// page the load touches is new to the process here, unlike in LoadDrawing's
// later iterations.
int LoadPeak(const std::string& path)
{
    CadControl control;
    const long before = PeakResidentKb();
    const auto start = std::chrono::steady_clock::now();
    const bool ok = NativeFile::Load(control.View(), path, NativeFile::kAllLayers, NativeFile::kAllLayers, 0);
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - start;
    std::printf("%ld %ld %zu %.6f\n", before, PeakResidentKb(), control.View().Buf.ShapeMap.Size(), took.count());
    return ok ? 0 : 1;
}

void LoadPeakMemory(benchmark::State& state)
{
    Drawing& d = TheDrawing();
    if (!d.saved) return state.SkipWithError("the drawing could not be saved");
    // Resolved here: inside popen's shell the link would name the shell.
    const std::string self = std::filesystem::read_symlink("/proc/self/exe").string();
    const std::string command = "'" + self + "' " + kLoadPeakFlag + " '" + d.path + "'";
    long before = 0, peak = 0;
    size_t shapes = 0;
    double seconds = 0;
    for (auto _ : state) {
        std::FILE* child = popen(command.c_str(), "r");
        const bool read = child && std::fscanf(child, "%ld %ld %zu %lf", &before, &peak, &shapes, &seconds) == 4;
        if (!child || pclose(child) != 0 || !read || shapes != kShapes)
            return state.SkipWithError("the load-only process failed");
    }
    state.counters["peak_MB"] = double(peak) / 1024;
    state.counters["before_MB"] = double(before) / 1024;
    state.counters["peak/file"] = double(peak - before) * 1024 / double(d.bytes.size());
    state.counters["file_MB"] = double(d.bytes.size()) / 1e6;
    state.counters["fresh_load_MB/s"] = double(d.bytes.size()) / 1e6 / seconds;
    state.SetLabel("a process that only loads");
}
#endif

} // namespace

// Long enough that a load's first run, into memory new to the process, is
// followed by runs into memory the allocator already holds.
BENCHMARK(SaveDrawing)->Name("save/ours")->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(3);
BENCHMARK(FwriteBytes)->Name("save/stdio")->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(3);
BENCHMARK(LoadDrawing)->Name("load/ours")->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(3);
BENCHMARK(FreadBytes)->Name("load/stdio")->Unit(benchmark::kMillisecond)->UseRealTime()->MinTime(3);
#if defined(__linux__)
BENCHMARK(LoadPeakMemory)->Name("load_peak_memory")->Iterations(1)->Unit(benchmark::kMillisecond)->UseRealTime();
#endif

int main(int argc, char** argv)
{
#if defined(__linux__)
    if (argc == 3 && argv[1] == kLoadPeakFlag) return LoadPeak(argv[2]);
#endif
    benchmark::Initialize(&argc, argv);
    bvx::bench::RatioReporter reporter("stdio");
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    return 0;
}
