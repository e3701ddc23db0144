#include "layers/window_thread_calls.h"

#include <gtest/gtest.h>

#include <future>
#include <memory>

#include "core/unique_handle.h"
#include "window/window_test_support.h"

// Calls that travel to a window's thread, on the windows that take them.
namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;
using namespace std::chrono_literals;
constexpr auto kLongEnough = 20s;

/// The thread on which a call to the window runs; 0 when it does not.
DWORD threadOfCall(HWND window) {
    auto ran = std::make_shared<std::promise<DWORD>>();
    std::future<DWORD> thread = ran->get_future();
    callOnWindowThread(window, [ran] { ran->set_value(GetCurrentThreadId()); });
    return thread.wait_for(kLongEnough) == std::future_status::ready ? thread.get() : 0;
}

}  // namespace

TEST(WindowThreadCalls, GamesWindow_RunsThereAndTheGameHearsNothing) {
    SubclassedGame subclassed;
    subclassed.game.clearReceived();
    const UINT message = RegisterWindowMessageW(L"ZEMOWindowThreadCall");
    EXPECT_EQ(threadOfCall(subclassed.game.handle()), GetWindowThreadProcessId(subclassed.game.handle(), nullptr));
    for (const ReceivedMessage& received : subclassed.game.received()) EXPECT_NE(received.message, message);
}

TEST(WindowThreadCalls, CallersOwnWindow_RunsAtOnce) {
    SubclassedGame subclassed;
    bool ran = false;
    subclassed.game.onThread([&] {
        callOnWindowThread(subclassed.game.handle(), [&] { ran = true; });
        EXPECT_TRUE(ran);
    });
    EXPECT_TRUE(ran);
}

TEST(WindowThreadCalls, OwnWindow_RunsAlsoWhenItsLayerHasGone) {
    const auto journal = std::make_shared<Journal>();
    auto layer = ZEMOWindow::create<RecordingLayer>(RecordingLayer::Options{.style = WindowStyle::Window}, journal);
    const HWND window = layer->getWindowHandle();
    const DWORD thread = GetWindowThreadProcessId(window, nullptr);
    EXPECT_EQ(threadOfCall(window), thread);
    layer.reset();
    EXPECT_EQ(threadOfCall(window), thread);
    // The display's library ends its state with a process's last connection: a thread that opens one meanwhile crashes
    // in it. A game has its own window's; here there is none beside this thread's.
    const Core::UniqueKernelHandle end(OpenThread(SYNCHRONIZE, FALSE, thread));
    PostMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_TRUE(waitForThreadEnd(thread, end.get()));
}

TEST(WindowThreadCalls, BlockedWindowThread_CallerDoesNotWait) {
    SubclassedGame subclassed;
    const Core::UniqueKernelHandle goOn(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    const Core::UniqueKernelHandle blocked(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    callOnWindowThread(subclassed.game.handle(), [&] {
        SetEvent(blocked.get());
        WaitForSingleObject(goOn.get(), INFINITE);
    });
    ASSERT_EQ(WaitForSingleObject(blocked.get(), 20'000), WAIT_OBJECT_0);
    std::promise<void> ran;
    callOnWindowThread(subclassed.game.handle(), [&] { ran.set_value(); });  // a wait here would never end
    std::future<void> later = ran.get_future();
    EXPECT_EQ(later.wait_for(0s), std::future_status::timeout);
    SetEvent(goOn.get());
    EXPECT_EQ(later.wait_for(kLongEnough), std::future_status::ready);
}

TEST(WindowThreadCalls, WindowThatGoesFirst_CallIsDroppedAndItsValuesAreFreed) {
    auto value = std::make_shared<int>(1);
    {
        GameWindow game;  // not subclassed: it never takes the call
        callOnWindowThread(game.handle(), [value] { *value = 2; });
        EXPECT_EQ(value.use_count(), 2);
    }
    callOnWindowThread(nullptr, [value] { *value = 3; });
    EXPECT_EQ(value.use_count(), 1);
    EXPECT_EQ(*value, 1);
}

}  // namespace ZEMO::Test
