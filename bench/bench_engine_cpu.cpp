// What the library itself costs the processors for each second that a view is shown, at 1920x1080: with a page whose
// whole picture changes 30 times a second, and with a page that stays. The engine's own work is left out.
//
// The library works in two places. Its own threads (a view's render thread; the window thread of a view in a window of
// its own) are asked for their time: GetThreadTimes before and after, which counts in steps of about 10 to 16 ms, so
// that one figure is taken over a whole case and the step stands beside it. The cycle counter would be finer, but not
// every system that this runs on has one. On the engine's thread, which is the engine's, the library works inside the
// engine's calls: each is timed by the clock where it reaches the library's client (OnPaint with compositor and
// callback, the questions for size and screen), and the spans of a second are added up. That is time on the wall: where
// another program takes the processor in the middle of a call, it counts too, so the figure is an upper bound.
//
// The floor: one copy of each frame of the animated page, one comparison of each frame of the still one. It runs in
// every other second, before the library, on buffers that nobody has read; the library is only counted in the others.
#include <atomic>
#include <cstdint>
#include <cstring>
#include <iostream>

#include "engine_bench/library_threads.h"
#include "engine_bench/pages.h"
#include "engine_bench/timed_client.h"

namespace {

using namespace ZEMO;
using namespace ZEMO::Bench;

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr size_t kFrameBytes = size_t{kWidth} * kHeight * 4;
constexpr int kSeconds = 24;  // of each page, half of them for the floor
constexpr int kWindowSeconds = 10;

enum class Floor { Copy, Compare };

struct Case {
    std::string name;
    std::string floorName;
    std::string page;
    Floor floor;
};

/// Adds up the engine thread's spans. The adding is done there; the game's thread takes the sums.
class SpanAdder final : public PaintWatcher {
public:
    explicit SpanAdder(Floor kind) : floor(kind), copy(kFrameBytes) {}

    void beforePaint(const void* buffer, int width, int height) override {
        if (!countsFloor || width != kWidth || height != kHeight) return;
        const Clock::time_point started = Clock::now();
        if (floor == Floor::Copy) {
            std::memcpy(copy.data(), buffer, copy.size());
        } else {
            result = std::memcmp(copy.data(), buffer, copy.size());
        }
        nanoseconds += (Clock::now() - started).count();
    }
    void afterPaint(const void* buffer, int width, int height, Clock::time_point started,
                    Clock::time_point returned) override {
        if (width != kWidth || height != kHeight) return;
        ++paints;
        if (!countsFloor) nanoseconds += (returned - started).count();
        if (result != 0) {  // the copy is behind: a comparison that ends early would be no floor
            std::memcpy(copy.data(), buffer, copy.size());
            result = 0;
        }
    }
    void answered(Clock::duration span) override {
        if (!countsFloor) nanoseconds += span.count();
    }

    void startSecond(bool forFloor) {
        countsFloor = forFloor;
        nanoseconds = 0;
        paints = 0;
    }
    /// Milliseconds so far.
    double sum() const { return static_cast<double>(nanoseconds.load()) / 1e6; }
    int paintCount() const { return paints; }

private:
    static_assert(std::ratio_equal_v<Clock::period, std::nano>);
    const Floor floor;
    std::vector<uint8_t> copy;  // engine thread
    volatile int result = -1;   // engine thread; volatile keeps the comparison from being dropped
    std::atomic<bool> countsFloor{false};
    std::atomic<int64_t> nanoseconds{0};
    std::atomic<int> paints{0};
};

/// As part of an address.
std::string escaped(const std::string& page) {
    std::string text;
    for (const char byte : page) text += byte == '#' ? "%23" : byte == '%' ? "%25" : std::string(1, byte);
    return text;
}

double perSecond(double amount, Clock::duration span) { return amount * 1000 / milliseconds(span); }

bool measure(Test::GameHost& game, const Case& which) {
    LibraryThreads threads;
    SpanAdder spans(which.floor);
    TimedView view(
        game, "data:text/html;charset=utf-8," + which.page, [](const void*, int, int, int, int, int, int) {}, spans);
    if (!game.waitFor("frames", [&] { return spans.paintCount() > 5; })) return false;
    game.pass(2s);  // loading is over
    threads.find();
    if (threads.count() == 0) {
        std::cerr << which.name << ": the view's render thread was not found\n";
        return false;
    }
    std::vector<double> engineThread, floor, paints;
    const CpuTime threadsBefore = threads.used();
    const CpuTime processBefore = usedByProcess();
    const Clock::time_point begin = Clock::now();
    for (int second = 0; second < kSeconds; ++second) {
        const bool forFloor = second % 2 != 0;
        spans.startSecond(forFloor);
        const Clock::time_point started = Clock::now();
        game.pass(1s);
        const Clock::duration span = Clock::now() - started;
        (forFloor ? floor : engineThread).push_back(perSecond(spans.sum(), span));
        if (!forFloor) paints.push_back(perSecond(spans.paintCount(), span));
    }
    const Clock::duration whole = Clock::now() - begin;
    const double ofProcess = perSecond((usedByProcess() - processBefore).count(), whole);
    const double ofThreads = perSecond((threads.used() - threadsBefore).count(), whole);
    std::vector<double> total = engineThread;
    for (double& one : total) one += ofThreads;

    report(which.name + "/library", "ms/s", total, which.floorName);
    report(which.name + "/library_on_engine_thread", "ms/s", engineThread, which.floorName);
    report(which.name + "/library_threads", "ms/s", {ofThreads});
    report(which.name + "/step_of_thread_times", "ms/s", {perSecond(threadTimeStep().count(), whole)});
    report(which.floorName, "ms/s", floor);
    report(which.name + "/paints", "1/s", paints);
    report(which.name + "/whole_process", "ms/s", {ofProcess});
    return true;
}

/// A view in a window of its own adds that window's thread. Here only the threads are asked: the layer makes its own
/// client.
bool measureOwnWindow(Test::GameHost& game) {
    LibraryThreads threads;
    Test::NavigationRecorder events;
    auto view = game.makeView("data:text/html;charset=utf-8," + escaped(stillPage()), events);
    view->setDisplayMode(1);
    view->setSize(kWidth, kHeight);
    view->show();
    if (!game.waitFor("the page", [&] { return events.has("completed"); })) return false;
    game.pass(2s);
    threads.find();
    if (threads.count() < 2) {
        std::cerr << "own window: " << threads.count() << " threads found, render and window thread are two\n";
        return false;
    }
    const CpuTime before = threads.used();
    const Clock::time_point begin = Clock::now();
    game.pass(std::chrono::seconds(kWindowSeconds));
    const Clock::duration whole = Clock::now() - begin;
    report("still_in_own_window/library_threads", "ms/s", {perSecond((threads.used() - before).count(), whole)});
    report("still_in_own_window/step_of_thread_times", "ms/s", {perSecond(threadTimeStep().count(), whole)});
    view->close();
    view.reset();
    return true;
}

int run() {
    // The pages come as text: a server would have threads of its own in this process.
    const Case cases[] = {
        {"animated_1080p30", "animated_1080p30/memcpy_of_each_frame", escaped(changingPage()), Floor::Copy},
        {"still_1080p", "still_1080p/memcmp_of_each_frame", escaped(stillPage()), Floor::Compare},
    };
    Test::GameHost game({.clientWidth = kWidth, .clientHeight = kHeight, .presentCallback = false});
    game.pass(1s);
    bool good = true;
    for (const Case& one : cases) good = measure(game, one) && good;
    good = measureOwnWindow(game) && good;
    return good ? 0 : 1;
}

}  // namespace

int main() { ZEMO::Bench::leaveWith(run); }
