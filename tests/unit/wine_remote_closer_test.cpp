#include "core/wine/remote_closer.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <vector>

#include "core/unique_handle.h"
#include "support/helper_process.h"
#include "support/import_replaced.h"

// A call that Wine never answers can't be had at will: the system's function is the test's own here.
namespace ZEMO::Core::Wine {
namespace {

using namespace std::chrono_literals;

/// What the closer asks the system for, call by call.
struct Calls {
    std::mutex mutex;
    std::condition_variable changed;
    std::vector<HANDLE> handles;
    std::vector<DWORD> threads;
    HANDLE stuck = nullptr;  ///< the move of this one never comes back
    bool released = false;

    bool waitForCalls(size_t count) {
        std::unique_lock lock(mutex);
        return changed.wait_for(lock, 20s, [&] { return handles.size() >= count; });
    }
};

Calls& calls() {
    static auto* const record = std::make_unique<Calls>().release();  // a stuck thread uses it to the end
    return *record;
}

BOOL WINAPI record(HANDLE, HANDLE source, HANDLE, HANDLE*, DWORD, BOOL, DWORD options) {
    EXPECT_TRUE(options & DUPLICATE_CLOSE_SOURCE);
    Calls& list = calls();
    std::unique_lock lock(list.mutex);
    list.handles.push_back(source);
    list.threads.push_back(GetCurrentThreadId());
    list.changed.notify_all();
    if (source == list.stuck) list.changed.wait(lock, [&] { return list.released; });
    return FALSE;
}

HANDLE numbered(intptr_t number) { return reinterpret_cast<HANDLE>(number); }

/// A process that lives.
struct Source {
    // Wine keeps the console's host of a program that is killed while it starts; it holds this program's output for
    // ever.
    Source() { EXPECT_TRUE(helper.line("ready")) << helper.output(); }
    Test::HelperProcess helper{Test::helperPath(L"sleeping_process.exe"), {}};
    UniqueKernelHandle process{OpenProcess(PROCESS_ALL_ACCESS, FALSE, helper.id())};
};

}  // namespace

TEST(RemoteCloser, OrdersOfALivingProcess_ClosedInTheirOrderAfterTheDelay) {
    const Source source;
    RemoteCloser closer(&record, {.delayMs = 300});
    const ULONGLONG begin = GetTickCount64();
    for (intptr_t i = 1; i <= 3; ++i) EXPECT_TRUE(closer.closeLater(source.process.get(), numbered(4 * i)));
    ASSERT_TRUE(calls().waitForCalls(3));
    EXPECT_GE(GetTickCount64() - begin, 280u);
    EXPECT_EQ(calls().handles, (std::vector<HANDLE>{numbered(4), numbered(8), numbered(12)}));
}

TEST(RemoteCloser, ProcessEndsDuringTheDelay_NothingIsCalledForIt) {
    Source ended;
    const Source living;
    RemoteCloser closer(&record, {.delayMs = 3000});  // a busy machine takes a while to end a process
    EXPECT_TRUE(closer.closeLater(ended.process.get(), numbered(4)));
    ended.helper.terminate();
    ended.process.reset();  // the closer has one of its own
    EXPECT_TRUE(closer.closeLater(living.process.get(), numbered(8)));
    ASSERT_TRUE(calls().waitForCalls(1));
    EXPECT_EQ(calls().handles, std::vector<HANDLE>{numbered(8)});
}

TEST(RemoteCloser, CallThatNeverComesBack_AnotherThreadDoesTheRest) {
    const Source source;
    RemoteCloser closer(&record, {.delayMs = 0, .patienceMs = 100});
    calls().stuck = numbered(8);
    for (intptr_t i = 1; i <= 4; ++i) EXPECT_TRUE(closer.closeLater(source.process.get(), numbered(4 * i)));
    ASSERT_TRUE(calls().waitForCalls(4));
    const std::vector<DWORD>& threads = calls().threads;
    EXPECT_EQ(threads[0], threads[1]);
    EXPECT_NE(threads[1], threads[2]) << "the stuck one is given up";
    EXPECT_EQ(threads[2], threads[3]) << "its successor stays";
}

TEST(RemoteCloser, TooManyStuck_NoFurtherCall) {
    const Source source;
    RemoteCloser closer(&record, {.delayMs = 0, .patienceMs = 50, .stuckThreads = 2});
    calls().stuck = numbered(4);
    for (int i = 0; i < 5; ++i) EXPECT_TRUE(closer.closeLater(source.process.get(), numbered(4)));
    ASSERT_TRUE(calls().waitForCalls(2));
    Sleep(500);
    EXPECT_EQ(calls().handles.size(), 2u);
}

TEST(RemoteCloser, MoreOrdersThanItHolds_TheRestIsNotTaken) {
    const Source source;
    RemoteCloser closer(&record, {.delayMs = 60'000, .waiting = 3});
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(closer.closeLater(source.process.get(), numbered(4)));
    EXPECT_FALSE(closer.closeLater(source.process.get(), numbered(4)));
}

TEST(RemoteCloser, NoProcess_NotTaken) {
    RemoteCloser closer(&record, {});
    EXPECT_FALSE(closer.closeLater(numbered(0x7ffc), numbered(4)));
}

}  // namespace ZEMO::Core::Wine
