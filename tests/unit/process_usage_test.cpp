#include "support/process_usage.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

// The counts that other tests rest on see what they are meant to see.
namespace ZEMO::Test {

TEST(ProcessUsage, EventsPensAndWindowsMade_EachCountedOnce) {
    const ProcessUsage before = processUsage();
    ASSERT_GT(before.handles, 5u);
    std::vector<HANDLE> events;
    std::vector<HPEN> pens;
    for (int i = 0; i < 20; ++i) events.push_back(CreateEventW(nullptr, FALSE, FALSE, nullptr));
    for (int i = 0; i < 30; ++i) pens.push_back(CreatePen(PS_SOLID, i + 1, RGB(1, 2, 3)));
    const HDC dc = CreateCompatibleDC(nullptr);
    const HWND window = CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 8, 8, nullptr, nullptr, nullptr, nullptr);
    const ProcessUsage with = processUsage();
    EXPECT_GE(with.handles, before.handles + 20);
    EXPECT_LE(with.handles, before.handles + 30) << "a window may cost the system some";
    EXPECT_GE(with.gdi, before.gdi + 31);
    EXPECT_GE(with.windows, before.windows + 1) << "the system adds one of its own to a thread's first";
    DestroyWindow(window);
    DeleteDC(dc);
    for (const HPEN pen : pens) DeleteObject(pen);
    for (const HANDLE event : events) CloseHandle(event);
    const ProcessUsage after = processUsage();
    EXPECT_LE(after.handles, before.handles + 10);
    EXPECT_LE(after.gdi, before.gdi + 5);
    EXPECT_LT(after.windows, with.windows);
}

TEST(ProcessUsage, ThreadRuns_Counted) {
    const size_t before = processUsage().threads;
    const HANDLE end = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::thread thread([&] { WaitForSingleObject(end, INFINITE); });
    EXPECT_EQ(processUsage().threads, before + 1);
    SetEvent(end);
    thread.join();
    CloseHandle(end);
}

}  // namespace ZEMO::Test
