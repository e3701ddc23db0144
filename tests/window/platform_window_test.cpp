#include <gtest/gtest.h>
#include <windows.h>

#include <thread>

#include "support/helper_process.h"
#include "zemo/platform.h"

namespace {

using namespace ZEMO::Platform::Misc;

class TestWindow {
public:
    TestWindow(int width, int height, DWORD style = WS_POPUP | WS_VISIBLE, HWND owner = nullptr) {
        WNDCLASSW windowClass{};
        windowClass.lpfnWndProc = DefWindowProcW;
        windowClass.hInstance = GetModuleHandleW(nullptr);
        windowClass.lpszClassName = L"ZemoPlatformTest";
        RegisterClassW(&windowClass);
        handle_ = CreateWindowExW(0, windowClass.lpszClassName, L"", style, 40, 40, width, height, owner, nullptr,
                                  windowClass.hInstance, nullptr);
        EXPECT_NE(handle_, nullptr);
    }
    ~TestWindow() { destroy(); }
    HWND handle() const { return handle_; }
    void destroy() {
        if (handle_) DestroyWindow(handle_);
        handle_ = nullptr;
    }
    void toTop() { SetWindowPos(handle_, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE | SWP_NOACTIVATE); }

private:
    HWND handle_ = nullptr;
};

void expectSize(unsigned width, unsigned height, bool landscape) {
    EXPECT_EQ(getWindowWidth(), width);
    EXPECT_EQ(getWindowHeight(), height);
    EXPECT_EQ(getIsLandscapeWindow(), landscape);
}

TEST(PlatformWindow, WiderThanHigh_IsLandscape) {
    TestWindow window(640, 360);
    expectSize(640, 360, true);
}

TEST(PlatformWindow, HigherThanWide_IsNotLandscape) {
    TestWindow window(200, 201);
    expectSize(200, 201, false);
}

TEST(PlatformWindow, Square_IsNotLandscape) {
    TestWindow window(300, 300);
    expectSize(300, 300, false);
}

TEST(PlatformWindow, WiderByOnePixel_IsLandscape) {
    TestWindow window(301, 300);
    expectSize(301, 300, true);
}

TEST(PlatformWindow, WithFrameAndCaption_ClientAreaCounts) {
    RECT outer{0, 0, 420, 310};
    ASSERT_TRUE(AdjustWindowRectEx(&outer, WS_OVERLAPPEDWINDOW, FALSE, 0));
    ASSERT_GT(outer.right - outer.left, 420);
    TestWindow window(outer.right - outer.left, outer.bottom - outer.top, WS_OVERLAPPEDWINDOW | WS_VISIBLE);
    expectSize(420, 310, true);
}

TEST(PlatformWindow, NoWindow_Zero) { expectSize(0, 0, false); }

TEST(PlatformWindow, OnlyHiddenWindow_Zero) {
    TestWindow window(640, 360, WS_POPUP);
    expectSize(0, 0, false);
    ShowWindow(window.handle(), SW_SHOWNA);
    expectSize(640, 360, true);
}

TEST(PlatformWindow, OwnedWindowAbove_IsPassedOver) {
    TestWindow owner(640, 360);
    TestWindow owned(100, 150, WS_POPUP | WS_VISIBLE, owner.handle());
    owned.toTop();
    expectSize(640, 360, true);
}

TEST(PlatformWindow, OwnerIsHidden_OwnedOneDoesNotStandIn) {
    TestWindow owner(640, 360, WS_POPUP);
    TestWindow owned(100, 150, WS_POPUP | WS_VISIBLE, owner.handle());
    expectSize(0, 0, false);
}

TEST(PlatformWindow, SeveralWindows_TopmostOfThem) {
    TestWindow first(640, 360);
    TestWindow second(100, 150);
    first.toTop();
    expectSize(640, 360, true);
    second.toTop();
    expectSize(100, 150, false);
    second.destroy();
    expectSize(640, 360, true);
}

TEST(PlatformWindow, Resized_NewSizeAtOnce) {
    TestWindow window(640, 360);
    expectSize(640, 360, true);
    SetWindowPos(window.handle(), nullptr, 0, 0, 250, 500, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    expectSize(250, 500, false);
}

TEST(PlatformWindow, WindowOfAnotherThread_Counts) {
    HANDLE made = CreateEventW(nullptr, TRUE, FALSE, nullptr), done = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::thread other([&] {
        TestWindow window(333, 222);
        SetEvent(made);
        MSG message;
        while (MsgWaitForMultipleObjects(1, &done, FALSE, 20000, QS_ALLINPUT) == WAIT_OBJECT_0 + 1) {
            while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
        }
    });
    EXPECT_EQ(WaitForSingleObject(made, 20000), WAIT_OBJECT_0);
    expectSize(333, 222, true);
    SetEvent(done);
    other.join();
    CloseHandle(made);
    CloseHandle(done);
}

TEST(PlatformWindow, WindowOfAnotherProcess_DoesNotCount) {
    ZEMO::Test::HelperProcess other(ZEMO::Test::helperPath(L"platform_probe.exe"), {L"shown", L"ready", L"pump"});
    ASSERT_TRUE(other.line("ready")) << other.output();
    expectSize(0, 0, false);
    TestWindow window(640, 360);
    expectSize(640, 360, true);
}

}  // namespace
