// From the engine's call of OnPaint to the return of the present callback, at 1920x1080 and 30 frames a second, with
// real pages: one whose whole picture changes, one that changes a block of 64x64, one that stays. The callback does
// nothing, so what is measured is what the library adds to each frame on the engine's thread.
//
// The floor is the least that can be done with the same buffer: a copy of it, or a comparison with a copy, row by row
// as the whole frame has to be looked at. A buffer that has just been read is faster to read again, so the two are
// never measured on the same paint: on every third the floor runs first and is counted, on the others the library is.
// What is not counted runs all the same, behind, so that everybody's own memory is as warm as the other's.
#include <cstdint>
#include <cstring>
#include <iostream>
#include <mutex>

#include "engine_bench/pages.h"
#include "engine_bench/timed_client.h"
#include "support/http_server.h"

namespace {

using namespace ZEMO;
using namespace ZEMO::Bench;
using Test::FrameRect;

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr size_t kRowBytes = size_t{kWidth} * 4;
constexpr size_t kSamples = 300;
constexpr int kFloorEvery = 3;
constexpr auto kCaseLimit = 60s;

enum class Floor { Copy, Compare };

struct Case {
    const char* name;
    const char* floorName;
    std::string (*page)();
    FrameRect dirty;  ///< what each counted paint must report
    Floor floor;
    bool askForPaints;  ///< the engine paints a still page only when asked
};

class Stopwatch final : public PaintWatcher {
public:
    explicit Stopwatch(const Case& which) : measured(which), copy(kRowBytes * kHeight) {}

    UI::OsrFramePresentCallback callback() {
        return [this](const void*, int, int, int x, int y, int w, int h) {
            reported = {x, y, w, h};
            presented = Clock::now();
        };
    }

    void beforePaint(const void* buffer, int width, int height) override {
        if (width != kWidth || height != kHeight) return;
        floorFirst = ++paints % kFloorEvery == 0;
        if (!floorFirst) return;
        const Clock::time_point started = Clock::now();
        runFloor(buffer);
        floorTime = Clock::now() - started;
    }

    void afterPaint(const void* buffer, int width, int height, Clock::time_point started, Clock::time_point) override {
        if (width != kWidth || height != kHeight) return;
        if (!floorFirst) runFloor(buffer);
        const bool expected = presented > started && reported == measured.dirty;
        const std::lock_guard lock(mutex);
        if (!expected) {
            // Loading, and the whole frame that the library hands out after a pause.
            ++others;
        } else if (floorFirst) {
            floorSamples.push_back(microseconds(floorTime));
        } else {
            librarySamples.push_back(microseconds(presented - started));
        }
        // A frame behind the library's own is what a block is looked for in.
        if (!expected) std::memcpy(copy.data(), buffer, copy.size());
    }

    bool full() const {
        const std::lock_guard lock(mutex);
        return librarySamples.size() >= kSamples && floorSamples.size() >= kSamples / kFloorEvery;
    }

    /// After the view's end.
    bool print() const {
        std::cerr << std::format("{}: {} paints counted, {} with another rectangle\n", measured.name,
                                 librarySamples.size() + floorSamples.size(), others);
        if (!full()) return false;
        report(measured.name, "us", librarySamples, measured.floorName);
        report(measured.floorName, "us", floorSamples);
        return true;
    }

private:
    void runFloor(const void* buffer) {
        if (measured.floor == Floor::Copy) {
            std::memcpy(copy.data(), buffer, copy.size());
        } else {
            const auto* rows = static_cast<const uint8_t*>(buffer);
            int rowsThatDiffer = 0;
            for (size_t at = 0; at < copy.size(); at += kRowBytes) {
                rowsThatDiffer += std::memcmp(copy.data() + at, rows + at, kRowBytes) != 0;
            }
            differing = rowsThatDiffer;
        }
    }

    const Case& measured;
    std::vector<uint8_t> copy;
    volatile int differing = 0;  ///< keeps the comparison from being dropped
    // Engine thread.
    int paints = 0;
    bool floorFirst = false;
    Clock::duration floorTime{};
    Clock::time_point presented;
    FrameRect reported;
    mutable std::mutex mutex;  ///< guards what follows
    std::vector<double> librarySamples, floorSamples;
    size_t others = 0;
};

bool measure(Test::GameHost& game, const Test::HttpServer& server, const Case& which) {
    Stopwatch stopwatch(which);
    {
        TimedView view(game, server.url(std::string("/") + which.name), stopwatch.callback(), stopwatch);
        const auto end = Clock::now() + kCaseLimit;
        while (!stopwatch.full() && Clock::now() < end) {
            game.pass(33ms);
            if (which.askForPaints) view.askForPaint();
        }
    }
    if (stopwatch.print()) return true;
    std::cerr << which.name << ": too few paints\n";
    return false;
}

int run() {
    static const Case cases[] = {
        {"paint_all_changed", "memcpy_of_the_frame", changingPage, {0, 0, kWidth, kHeight}, Floor::Copy, false},
        {"paint_64x64_changed",
         "memcmp_of_rows_64x64_changed",
         blockPage,
         {kBlockX, kBlockY, kBlockSize, kBlockSize},
         Floor::Compare,
         false},
        {"paint_unchanged", "memcmp_of_rows_unchanged", stillPage, {}, Floor::Compare, true},
    };
    Test::HttpServer server;
    for (const Case& one : cases) server.serveHtml(std::string("/") + one.name, one.page());
    Test::GameHost game({.clientWidth = kWidth, .clientHeight = kHeight, .presentCallback = false});
    bool good = true;
    for (const Case& one : cases) good = measure(game, server, one) && good;
    return good ? 0 : 1;
}

}  // namespace

int main() { ZEMO::Bench::leaveWith(run); }
