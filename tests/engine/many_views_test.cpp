#include <gtest/gtest.h>

#include "engine/game_host.h"
#include "support/process_usage.h"

namespace ZEMO::Test {
namespace {

struct Usage : ProcessUsage {
    size_t children = 0;
};

Usage usage() { return {processUsage(), childProcesses().size()}; }

constexpr size_t kViews = 100;  // in each half

}  // namespace

// Every second view is dropped before its browser exists, the others once their page is there. The page comes without a
// server, whose threads would count too.
TEST(ViewLife, TwoHundredViewsOpenedAndClosed_ProcessIsBackWhereItWas) {
    GameHost game;
    NavigationRecorder events;
    const auto oneView = [&](size_t index) {
        game.frames.forgetFrames();
        events.forget();
        auto view = game.makeView("data:text/html,<body style='margin:0;background:rgb(68,85,102)'>", events);
        view->show();
        if (index % 2 != 0) {
            ASSERT_TRUE(game.waitFor("a frame",
                                     [&] {
                                         const Frame last = game.frames.lastFrame();
                                         return last.width == 320 && !last.cleared &&
                                                game.frames.pixel(9, 9) == 0xFF445566u;
                                     }))
                << index << ": " << ::testing::PrintToString(events.events());
        }
        view->close();
        view.reset();
    };
    // The engine ends pages and the threads that served them in its own time.
    const auto settled = [&] {
        EXPECT_TRUE(game.waitFor("the page processes' end", [] {
            size_t pages = 0;
            for (const DWORD child : childProcesses()) pages += childType(child) == "renderer";
            return pages <= 1;  // the engine keeps one warm for the next page
        }));
        Usage least = usage();
        for (int quiet = 0; quiet < 4;) {
            game.pass(500ms);
            const Usage now = usage();
            quiet = now.handles < least.handles || now.threads < least.threads ? 0 : quiet + 1;
            least.handles = std::min(least.handles, now.handles);
            least.threads = std::min(least.threads, now.threads);
            least.sections = std::min(least.sections, now.sections);
            least.bytes = std::min(least.bytes, now.bytes);
        }
        return least;
    };
    const auto views = [&](size_t count) {
        for (size_t i = 0; i < count && !HasFatalFailure(); ++i) oneView(i);
        return settled();
    };
    const Usage start = views(20);  // caches, thread pools and the like fill up
    const Usage middle = views(kViews);
    const Usage end = views(kViews);
    if (HasFatalFailure()) return;
    ASSERT_GT(start.handles, 20u) << "the count works";
    ASSERT_GT(start.threads, 10u) << "the count works";
    ASSERT_GT(start.bytes, 10'000'000u) << "the sum works";
    EXPECT_LE(end.children, start.children + 1);
    // One leak on one of the two roads would be 50; on a crowded machine the engine is 25 behind with its own.
    EXPECT_LT(end.handles, middle.handles + 40) << "start " << start.handles << ", middle " << middle.handles;
    EXPECT_LT(end.threads, middle.threads + 40) << "start " << start.threads << ", middle " << middle.threads;
    // The engine leaves two handles with each browser, also without this library: a key of its look-up of a runtime
    // class that Wine doesn't have, and a piece of shared memory.
    EXPECT_LT(end.keys, middle.keys + kViews + 25) << "start " << start.keys << ", middle " << middle.keys;
    EXPECT_LT(end.sections, middle.sections + kViews + 25)
        << "start " << start.sections << ", middle " << middle.sections;
    // One frame (256 kB) on one road would be 12.8 MB.
    EXPECT_LT(end.bytes, middle.bytes + 8'000'000) << "start " << start.bytes << ", middle " << middle.bytes;
    std::cerr << "handles " << start.handles << ' ' << middle.handles << ' ' << end.handles << ", threads "
              << start.threads << ' ' << middle.threads << ' ' << end.threads << ", keys " << start.keys << ' '
              << middle.keys << ' ' << end.keys << ", sections " << start.sections << ' ' << middle.sections << ' '
              << end.sections << ", bytes " << start.bytes << ' ' << middle.bytes << ' ' << end.bytes << std::endl;
}

}  // namespace ZEMO::Test
