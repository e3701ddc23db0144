#include "core/posted_text.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdio>
#include <memory>
#include <string>
#include <thread>
#include <vector>

#include "layers/window_messages.h"
#include "support/import_replaced.h"

namespace ZEMO::Core {
namespace {

using Test::ImportReplaced;

/// A window without a picture, of this thread; its messages are taken off the queue by the test.
class Receiver {
public:
    Receiver() : window(CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr)) {
        EXPECT_NE(window, nullptr);
    }
    ~Receiver() { DestroyWindow(window); }
    Receiver(const Receiver&) = delete;
    Receiver& operator=(const Receiver&) = delete;

    HWND handle() const { return window; }
    /// The lParam of the next message, 0 if there is none.
    LPARAM next() const {
        MSG message{};
        if (!PeekMessageW(&message, window, UI::kMessageExternalScript, UI::kMessageExternalText, PM_REMOVE)) return 0;
        EXPECT_EQ(message.wParam, 0u);
        return message.lParam;
    }

private:
    const HWND window;
};

TEST(PostedText, Posted_TakenOnceByTheReceiver) {
    const Receiver receiver;
    ASSERT_TRUE(postText(receiver.handle(), UI::kMessageExternalText, "\xED\x95\x9C"));
    const LPARAM message = receiver.next();
    EXPECT_EQ(takePostedText(message), "\xED\x95\x9C");
    EXPECT_EQ(takePostedText(message), std::nullopt) << "the message came twice";
    EXPECT_EQ(receiver.next(), 0);
}

TEST(PostedText, LParamOfAGame_NeitherTakenNorFreed) {
    const auto theirs = std::make_unique<std::string>(1000, 't');
    int notAllocated = 7;
    for (const LPARAM lParam : {LPARAM{0}, LPARAM{1}, LPARAM{-1}, reinterpret_cast<LPARAM>(theirs.get()),
                                reinterpret_cast<LPARAM>(&notAllocated)}) {
        EXPECT_EQ(takePostedText(lParam), std::nullopt);
        dropPostedText(lParam);
    }
    EXPECT_EQ(*theirs, std::string(1000, 't'));
}

TEST(PostedText, NoLayerTakesIt_DroppedAndGone) {
    const Receiver receiver;
    ASSERT_TRUE(postText(receiver.handle(), UI::kMessageExternalScript, "script"));
    const LPARAM message = receiver.next();
    dropPostedText(message);
    EXPECT_EQ(takePostedText(message), std::nullopt);
}

LPARAM refused = 0;
BOOL WINAPI noPost(HWND, UINT, WPARAM, LPARAM lParam) {
    refused = lParam;
    return SetLastError(ERROR_NOT_ENOUGH_QUOTA), FALSE;
}

TEST(PostedText, PostFails_TakenBack) {
    const Receiver receiver;
    const ImportReplaced failing("PostMessageW", &noPost);
    EXPECT_FALSE(postText(receiver.handle(), UI::kMessageExternalText, "text"));
    ASSERT_NE(refused, 0);
    EXPECT_EQ(takePostedText(refused), std::nullopt);
}

TEST(PostedText, NoWindow_NothingIsPostedToTheThread) {
    EXPECT_FALSE(postText(nullptr, UI::kMessageExternalText, "text"));
    MSG message{};
    EXPECT_FALSE(PeekMessageW(&message, nullptr, UI::kMessageExternalText, UI::kMessageExternalText, PM_REMOVE));
}

TEST(PostedText, WindowGone_PostFails) {
    HWND gone = nullptr;
    {
        const Receiver receiver;
        gone = receiver.handle();
    }
    EXPECT_FALSE(postText(gone, UI::kMessageExternalText, std::string(1000, 'x')));
}

BOOL WINAPI takenAtOnce(HWND, UINT, WPARAM, LPARAM lParam) { return takePostedText(lParam) == "early"; }

// The receiver's thread may have taken the message before PostMessage returns.
TEST(PostedText, ReceiverIsFasterThanThePost_HasTheText) {
    const Receiver receiver;
    const ImportReplaced fast("PostMessageW", &takenAtOnce);
    EXPECT_TRUE(postText(receiver.handle(), UI::kMessageExternalText, "early"));
}

TEST(PostedText, BurstFromFourThreads_AllArriveQuickly) {
    const Receiver receiver;
    constexpr int kEach = 2000;  // a queue holds 10,000 messages
    const auto start = std::chrono::steady_clock::now();
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&] {
            for (int i = 0; i < kEach; ++i) {
                EXPECT_TRUE(postText(receiver.handle(), UI::kMessageExternalText, std::string(100, 'b')));
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    int taken = 0;
    for (LPARAM message = receiver.next(); message != 0; message = receiver.next()) {
        taken += takePostedText(message) == std::string(100, 'b');
    }
    const auto passed = std::chrono::steady_clock::now() - start;
    EXPECT_EQ(taken, 4 * kEach);
    std::printf("%d texts in %lld ms\n", taken,
                static_cast<long long>(std::chrono::duration_cast<std::chrono::milliseconds>(passed).count()));
    EXPECT_LT(passed, std::chrono::seconds(10));
}

}  // namespace
}  // namespace ZEMO::Core
