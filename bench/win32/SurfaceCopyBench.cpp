// The raster surface shown on a device context: each way of copying it timed
// against the plain copy of its bytes (whose colours are wrong), to a DIB
// section's memory context and to a visible window, for the whole surface and
// for an update region. Median of a few repetitions, each of enough copies to
// last a tenth of a second.
#include "platform/win32/SurfaceCopy.h"

#include <windows.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <random>
#include <vector>

namespace {

using bvx::DevicePoint;
using bvx::DeviceRect;
using bvx::win32::SurfaceCopy;
using Clock = std::chrono::steady_clock;

constexpr int32_t kWidth = 1024, kHeight = 768;
constexpr int kRepetitions = 5;
constexpr std::chrono::milliseconds kMinimumBatch{100};

struct PathName {
    SurfaceCopy::Path path;
    const char* name;
};
constexpr PathName kPaths[] = {
    {SurfaceCopy::Path::BitFields, "BitFields"},
    {SurfaceCopy::Path::Swapped, "Swapped"},
    {SurfaceCopy::Path::Raw, "Raw"},
};

// Seconds per copy, over a batch long enough for the clock; 0 if a copy failed.
double SecondsPerCopy(SurfaceCopy& copy, HDC dc, const bvx::Bitmap& surface, const DeviceRect& area)
{
    long copies = 0;
    const Clock::time_point start = Clock::now();
    Clock::duration elapsed{};
    do {
        for (int i = 0; i < 10; ++i, ++copies) {
            if (!copy.Copy(dc, surface, area, {area.left, area.top})) return 0;
        }
        GdiFlush();
        elapsed = Clock::now() - start;
    } while (elapsed < kMinimumBatch);
    return std::chrono::duration<double>(elapsed).count() / double(copies);
}

double Median(std::vector<double> v)
{
    std::sort(v.begin(), v.end());
    return v[v.size() / 2];
}

void PumpMessages()
{
    MSG msg;
    while (PeekMessageW(&msg, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&msg);
}

} // namespace

int main()
{
    bvx::Bitmap surface(kWidth, kHeight);
    std::mt19937 random(1024);
    for (uint32_t& p : surface.Pixels()) p = random() & 0xFFFFFF;

    BITMAPINFO info{};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), kWidth, -kHeight, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    HDC memory = CreateCompatibleDC(nullptr);
    HBITMAP dib = CreateDIBSection(memory, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    HGDIOBJ old = dib ? SelectObject(memory, dib) : nullptr;

    const HINSTANCE instance = GetModuleHandleW(nullptr);
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = DefWindowProcW;
    windowClass.hInstance = instance;
    windowClass.lpszClassName = L"SurfaceCopyBench";
    RegisterClassW(&windowClass);
    RECT frame{0, 0, kWidth, kHeight};
    AdjustWindowRect(&frame, WS_OVERLAPPEDWINDOW, FALSE);
    HWND window = CreateWindowExW(0, windowClass.lpszClassName, L"surface copy", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0,
                                  frame.right - frame.left, frame.bottom - frame.top, nullptr, nullptr, instance,
                                  nullptr);
    PumpMessages();
    HDC windowDc = window ? GetDC(window) : nullptr;
    if (!old || !windowDc) {
        std::fprintf(stderr, "surface_copy_bench: no %s\n", old ? "window" : "DIB section");
        return 1;
    }

    struct Target {
        const char* name;
        HDC dc;
    };
    const Target targets[] = {{"DIB section", memory}, {"window", windowDc}};
    const DeviceRect areas[] = {{0, 0, kWidth, kHeight}, {300, 200, 500, 350}};

    std::printf("%-12s %-9s %-10s %10s %10s %9s\n", "target", "area", "path", "ms/copy", "Mpixel/s", "time/Raw");
    for (const Target& target : targets) {
        for (const DeviceRect& area : areas) {
            std::vector<double> seconds[std::size(kPaths)];
            for (int r = 0; r < kRepetitions; ++r) {
                // Interleaved, so that a slow moment of the machine costs every path alike.
                for (size_t p = 0; p < std::size(kPaths); ++p) {
                    SurfaceCopy copy(kPaths[p].path);
                    const double s = SecondsPerCopy(copy, target.dc, surface, area);
                    if (s == 0) {
                        std::fprintf(stderr, "surface_copy_bench: %s refused to %s\n", kPaths[p].name, target.name);
                        return 1;
                    }
                    seconds[p].push_back(s);
                }
            }
            const double raw = Median(seconds[std::size(kPaths) - 1]);
            const double pixels = double(area.Width() * area.Height());
            for (size_t p = 0; p < std::size(kPaths); ++p) {
                const double s = Median(seconds[p]);
                std::printf("%-12s %4lldx%-4lld %-10s %10.4f %10.1f %9.2f\n", target.name,
                            static_cast<long long>(area.Width()), static_cast<long long>(area.Height()), kPaths[p].name,
                            s * 1e3, pixels / s / 1e6, s / raw);
            }
        }
    }
    std::printf("median of %d repetitions of at least %lld ms each; time/Raw above 1 is slower than the plain copy\n",
                kRepetitions, static_cast<long long>(kMinimumBatch.count()));

    ReleaseDC(window, windowDc);
    DestroyWindow(window);
    SelectObject(memory, old);
    DeleteObject(dib);
    DeleteDC(memory);
    return 0;
}
