#include "core/sent_messages.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "core/unique_handle.h"

// A wait that answers the messages of other threads, with real windows and threads.
namespace ZEMO::Core {
namespace {

constexpr UINT kQuestion = WM_APP + 1;

/// A window of the test's thread that counts what it is asked.
class AskedWindow {
public:
    AskedWindow() {
        WNDCLASSW windowClass{};
        windowClass.lpszClassName = L"ZemoAskedWindow";
        windowClass.hInstance = GetModuleHandleW(nullptr);
        windowClass.lpfnWndProc = [](HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
            if (message != kQuestion) return DefWindowProcW(hwnd, message, wParam, lParam);
            return ++questions;
        };
        RegisterClassW(&windowClass);
        questions = 0;
        window = CreateWindowExW(0, L"ZemoAskedWindow", L"", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    }
    ~AskedWindow() {
        DestroyWindow(window);
        UnregisterClassW(L"ZemoAskedWindow", GetModuleHandleW(nullptr));
    }
    AskedWindow(const AskedWindow&) = delete;
    AskedWindow& operator=(const AskedWindow&) = delete;

    HWND window = nullptr;
    static inline std::atomic<int> questions{0};
};

UniqueKernelHandle makeEvent(bool manualReset) {
    return UniqueKernelHandle(CreateEventW(nullptr, manualReset, FALSE, nullptr));
}

}  // namespace

TEST(SentMessages, EventOfEitherKindSet_TrueAtOnce) {
    for (const bool manualReset : {true, false}) {
        const UniqueKernelHandle event = makeEvent(manualReset);
        SetEvent(event.get());
        EXPECT_TRUE(waitServingSentMessages(event.get(), 0)) << manualReset;
        SetEvent(event.get());
        EXPECT_TRUE(waitServingSentMessages(event.get(), INFINITE)) << manualReset;
    }
}

TEST(SentMessages, TimeUp_False) {
    const UniqueKernelHandle event = makeEvent(true);
    const ULONGLONG before = GetTickCount64();
    EXPECT_FALSE(waitServingSentMessages(event.get(), 60));
    EXPECT_GE(GetTickCount64() - before, 40u);
}

TEST(SentMessages, NoEvent_False) { EXPECT_FALSE(waitServingSentMessages(nullptr, 1000)); }

TEST(SentMessages, EventComesAfterQuestionsOfItsThread_EachIsAnsweredMeanwhile) {
    const AskedWindow asked;
    const UniqueKernelHandle event = makeEvent(true);
    LRESULT third = 0;
    std::thread asking([&] {
        for (int i = 0; i < 3; ++i) third = SendMessageW(asked.window, kQuestion, 0, 0);
        SetEvent(event.get());
    });
    EXPECT_TRUE(waitServingSentMessages(event.get(), 20'000));
    asking.join();
    EXPECT_EQ(third, 3);
}

TEST(SentMessages, PostedMessages_StayInTheQueue) {
    const AskedWindow asked;
    PostMessageW(asked.window, kQuestion, 0, 0);
    const UniqueKernelHandle event = makeEvent(true);
    EXPECT_FALSE(waitServingSentMessages(event.get(), 30));
    EXPECT_EQ(AskedWindow::questions, 0);
    MSG message;
    EXPECT_TRUE(PeekMessageW(&message, asked.window, kQuestion, kQuestion, PM_REMOVE));
}

TEST(SentMessages, QuestionsWithoutEnd_TimeEndsAllTheSame) {
    const AskedWindow asked;
    const UniqueKernelHandle event = makeEvent(true);
    std::atomic<bool> enough{false};
    std::vector<std::thread> asking;
    for (int i = 0; i < 3; ++i) {
        asking.emplace_back([&] {
            while (!enough) SendMessageTimeoutW(asked.window, kQuestion, 0, 0, SMTO_NORMAL, 100, nullptr);
        });
    }
    const ULONGLONG before = GetTickCount64();
    EXPECT_FALSE(waitServingSentMessages(event.get(), 200));
    EXPECT_LT(GetTickCount64() - before, 10'000u);
    EXPECT_GT(AskedWindow::questions, 0);
    enough = true;
    for (std::thread& thread : asking) thread.join();
}

}  // namespace ZEMO::Core
