#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <vector>

#include "engine/game_host.h"
#include "support/http_server.h"

// A game that holds the present callback longer than it may, while its view goes.
namespace ZEMO::Test {
namespace {

/// A present callback that stays inside one frame call until it is let go.
class HoldingConsumer {
public:
    HoldingConsumer() : release(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}
    ~HoldingConsumer() { CloseHandle(release); }

    ZEMO::UI::OsrFramePresentCallback callback() {
        return [this](const void* pixels, int width, int, int, int, int, int) {
            overlapped = inside.exchange(true) || overlapped;
            {
                const std::lock_guard lock(mutex);
                calls.push_back({pixels == nullptr, GetCurrentThreadId()});
            }
            if (pixels && width > 2 && !holding.exchange(true)) WaitForSingleObject(release, 60'000);
            inside = false;
        };
    }
    void letGo() { SetEvent(release); }

    struct Call {
        bool cleared = false;
        DWORD thread = 0;
    };
    std::vector<Call> all() const {
        const std::lock_guard lock(mutex);
        return calls;
    }
    std::atomic<bool> holding{false};
    std::atomic<bool> inside{false};
    std::atomic<bool> overlapped{false};  ///< two calls ran at a time

private:
    HANDLE release;
    mutable std::mutex mutex;
    std::vector<Call> calls;
};

}  // namespace

TEST(BlockedConsumer, ViewDroppedDuringALongFrameCall_DropReturnsAndTheNullFrameFollowsThatCall) {
    HttpServer server;
    server.serveHtml("/", solidPage("#667788"));
    HoldingConsumer consumer;
    GameHost game({.presentCallback = false});
    ZEMO::UI::setUIOsrFramePresentCallback(consumer.callback());
    NavigationRecorder events;
    auto view = game.makeView(server.url("/"), events);
    view->show();
    ASSERT_TRUE(game.waitFor("a frame call that stays", [&] { return consumer.holding.load(); }));

    const ULONGLONG before = GetTickCount64();
    view.reset();
    const ULONGLONG taken = GetTickCount64() - before;
    EXPECT_GE(taken, 400u) << "the frame call gets a time of grace";
    EXPECT_LT(taken, 3000u) << "and no more than that";
    const std::vector<HoldingConsumer::Call> during = consumer.all();
    EXPECT_TRUE(consumer.inside) << "the frame call was let go too early for this test";
    ASSERT_FALSE(during.empty());
    EXPECT_FALSE(during.back().cleared) << "no null frame while a frame call runs";

    consumer.letGo();
    ASSERT_TRUE(game.waitFor("the null frame", [&] { return consumer.all().back().cleared; }));
    game.pass(500ms);  // a frame after the end would come now
    const std::vector<HoldingConsumer::Call> after = consumer.all();
    EXPECT_EQ(after.size(), during.size() + 1) << "the null frame is the last call, and there is one of it";
    EXPECT_TRUE(after.back().cleared);
    EXPECT_EQ(after.back().thread, during.back().thread) << "it follows the frame on the engine thread";
    EXPECT_FALSE(consumer.overlapped);
}

}  // namespace ZEMO::Test
