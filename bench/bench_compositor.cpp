// What a frame costs in the compositor, next to the least it could cost: one comparison or one copy of the frame by the
// C library. Each case names its floor, which runs on buffers of the same size in the same program.
#include <benchmark/benchmark.h>

#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "render/frame_compositor.h"

namespace {

using ZEMO::UI::FrameCompositor;

struct FrameSize {
    const char* name;
    int width;
    int height;
    size_t bytes() const { return static_cast<size_t>(width) * static_cast<size_t>(height) * 4; }
};

constexpr FrameSize kSizes[] = {{"720p", 1280, 720}, {"1080p", 1920, 1080}, {"4K", 3840, 2160}};

std::vector<uint8_t> makeFrame(const FrameSize& size, uint8_t seed) {
    std::vector<uint8_t> frame(size.bytes());
    for (size_t i = 0; i < frame.size(); ++i) frame[i] = static_cast<uint8_t>(seed + i * 7 + i / 4096);
    return frame;
}

void finish(benchmark::State& state, const FrameSize& size, const std::string& floor) {
    state.SetBytesProcessed(static_cast<int64_t>(state.iterations()) * static_cast<int64_t>(size.bytes()));
    if (!floor.empty()) state.SetLabel("floor=" + floor + "/" + size.name);
}

// The compiler must not know that both sides stay the same: it would compare once and for all.
void floorCompare(benchmark::State& state, const FrameSize& size) {
    const std::vector<uint8_t> a = makeFrame(size, 1);
    const std::vector<uint8_t> b = a;
    for (auto _ : state) {
        benchmark::ClobberMemory();
        benchmark::DoNotOptimize(std::memcmp(a.data(), b.data(), a.size()));
    }
    finish(state, size, "");
}

void floorCopy(benchmark::State& state, const FrameSize& size) {
    const std::vector<uint8_t> frames[] = {makeFrame(size, 1), makeFrame(size, 2)};
    std::vector<uint8_t> target(size.bytes());
    int turn = 0;
    for (auto _ : state) {
        std::memcpy(target.data(), frames[turn ^= 1].data(), target.size());
        benchmark::DoNotOptimize(target.data());
        benchmark::ClobberMemory();
    }
    finish(state, size, "");
}

ZEMO::UI::OsrFramePresentCallback countingSink(int64_t& dirtyPixels) {
    return [&dirtyPixels](const void* pixels, int, int, int, int, int w, int h) {
        benchmark::DoNotOptimize(pixels);
        dirtyPixels += int64_t{w} * h;
    };
}

/// A case whose frames do not change what they should would measure nothing.
void expectDirty(benchmark::State& state, int64_t dirtyPixels, int64_t eachFrame) {
    if (dirtyPixels != eachFrame * static_cast<int64_t>(state.iterations()))
        state.SkipWithError("unexpected dirty area");
}

void unchanged(benchmark::State& state, const FrameSize& size) {
    const std::vector<uint8_t> frame = makeFrame(size, 1);
    int64_t dirty = 0;
    FrameCompositor compositor(countingSink(dirty));
    compositor.paintView(false, frame.data(), size.width, size.height);
    dirty = 0;
    for (auto _ : state) compositor.paintView(false, frame.data(), size.width, size.height);
    expectDirty(state, dirty, 0);
    finish(state, size, "memcmp");
}

void allChanged(benchmark::State& state, const FrameSize& size) {
    const std::vector<uint8_t> frames[] = {makeFrame(size, 1), makeFrame(size, 2)};
    int64_t dirty = 0;
    FrameCompositor compositor(countingSink(dirty));
    compositor.paintView(false, frames[0].data(), size.width, size.height);
    dirty = 0;
    int turn = 0;
    for (auto _ : state) compositor.paintView(false, frames[turn ^= 1].data(), size.width, size.height);
    expectDirty(state, dirty, int64_t{size.width} * size.height);
    finish(state, size, "memcpy");
}

/// A square in the middle changes in each frame; writing it (16 KB) is part of the measured time.
void squareChanged(benchmark::State& state, const FrameSize& size) {
    std::vector<uint8_t> frame = makeFrame(size, 1);
    int64_t dirty = 0;
    FrameCompositor compositor(countingSink(dirty));
    compositor.paintView(false, frame.data(), size.width, size.height);
    dirty = 0;
    uint8_t value = 0;
    for (auto _ : state) {
        ++value;
        for (int row = 0; row < 64; ++row) {
            const size_t offset = static_cast<size_t>(size.height / 2 + row) * static_cast<size_t>(size.width) +
                                  static_cast<size_t>(size.width / 2);
            std::memset(frame.data() + offset * 4, value, 64 * 4);
        }
        compositor.paintView(false, frame.data(), size.width, size.height);
    }
    if (value > 1) expectDirty(state, dirty, 64 * 64);
    finish(state, size, "memcmp");
}

[[maybe_unused]] const bool kRegistered = [] {
    const struct {
        const char* name;
        void (*run)(benchmark::State&, const FrameSize&);
    } cases[] = {{"memcmp", floorCompare},
                 {"memcpy", floorCopy},
                 {"compositor_unchanged", unchanged},
                 {"compositor_all_changed", allChanged},
                 {"compositor_64x64_changed", squareChanged}};
    for (const FrameSize& size : kSizes) {
        for (const auto& one : cases) {
            benchmark::RegisterBenchmark((std::string(one.name) + "/" + size.name).c_str(),
                                         [run = one.run, &size](benchmark::State& state) { run(state, size); })
                ->Unit(benchmark::kMicrosecond)
                ->UseRealTime();
        }
    }
    return true;
}();

}  // namespace
