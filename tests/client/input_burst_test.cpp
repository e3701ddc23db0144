#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <format>
#include <thread>

#include "client/input_page.h"

// Many injected events at once, read back from the page.
namespace ZEMO::Test {
namespace {

constexpr int kThreads = 4, kRounds = 500;         // five events a round
constexpr std::chrono::minutes kBurstPatience{3};  // the engine takes some milliseconds for each on a crowded machine
constexpr UINT kText = WM_USER + 201;

/// Keeps what came, in order: each thread has texts, a place and a key of its own. A press must not take the focus.
constexpr char kKeeper[] = R"(<textarea id=field style='position:absolute;top:200px'></textarea><script>
const texts = [], presses = [[], [], [], []], keys = [0, 0, 0, 0];
let releases = 0, kept = 0;
const count = () => { if (++kept == 8000) fetch('/all') };
const keep = (kind, handler) => addEventListener(kind, e => { e.stopImmediatePropagation(); handler(e) }, true);
keep('input', e => { if (e.data && e.data.includes(':')) { texts.push(e.data); count() } field.value = '' });
keep('mousedown', e => { e.preventDefault(); presses[e.clientX - 10].push(e.clientY); count() });
keep('mouseup', () => { ++releases; count() });
keep('keydown', e => { ++keys[e.keyCode - 65]; count() });
for (const kind of ['keypress', 'click', 'pointerdown', 'pointerup', 'dblclick']) keep(kind, () => {});
const textsOf = thread => texts.map(t => t.split(':')).filter(t => t[0] == thread).map(t => +t[1]);
const rising = (list, rule) => list.length == 500 && list.every((value, i) => value == rule(i));
</script>)";

void sendBurst(int thread) {
    const std::string key = std::to_string('A' + thread);
    for (int i = 0; i < kRounds; ++i) {
        ZEMO::UI::sendUIRemoteInputEvent("Message", "", std::format("{}:{}", thread, i), 0, 0);
        ZEMO::UI::sendUIRemoteInputEvent("Key", "Down", key, 0, 0);
        ZEMO::UI::sendUIRemoteInputEvent("Key", "Up", key, 0, 0);
        ZEMO::UI::sendUIRemoteInputEvent("Click", "Down", "", 10 + thread, i % 180);
        ZEMO::UI::sendUIRemoteInputEvent("Click", "Up", "", 10 + thread, i % 180);
    }
}

}  // namespace

TEST(InputBurst, TenThousandEventsFromFourThreadsForeground_ThePageHasAllAndEachThreadsInOrder) {
    InputPage page(InputPage::kLayer, 1.0f, kKeeper);
    page.server.serve("/all", {});
    ASSERT_TRUE(page.open());
    page.ask("field.focus()");
    std::atomic<int> running{kThreads};
    std::vector<std::thread> senders;
    for (int thread = 0; thread < kThreads; ++thread) {
        senders.emplace_back([thread, &running] {
            sendBurst(thread);
            --running;
        });
    }
    EXPECT_TRUE(page.game.waitFor("the senders", [&] { return running == 0; }));
    for (std::thread& sender : senders) sender.join();
    // The page says so itself: a question would stand behind all of them in the engine's queue.
    EXPECT_TRUE(
        page.game.waitFor("all of them", [&] { return page.server.requestCount("/all") == 1; }, kBurstPatience));
    EXPECT_EQ(page.ask("[texts.length,presses.map(p=>p.length),releases,keys].join()"),
              "2000,500,500,500,500,2000,500,500,500,500");
    for (int thread = 0; thread < kThreads; ++thread) {
        EXPECT_EQ(page.ask(std::format("rising(textsOf({}), i => i)", thread)), "true") << thread;
        EXPECT_EQ(page.ask(std::format("rising(presses[{}], i => i % 180)", thread)), "true") << thread;
    }
    EXPECT_EQ(page.reachedGame(), std::vector<UINT>(kThreads * kRounds, kText))
        << "texts go on to the game, no input does";
}

}  // namespace ZEMO::Test
