#include <gtest/gtest.h>

#include <windows.h>

#include <tlhelp32.h>
#include <winternl.h>

#include "engine/game_host.h"

namespace ZEMO::Test {
namespace {

/// What a process holds, counted one by one: Wine answers 0 to the questions for its handle count and private memory.
struct Usage {
    size_t children = 0;
    size_t threads = 0;
    size_t handles = 0;   ///< of every kind but the next two
    size_t keys = 0;      ///< registry keys
    size_t sections = 0;  ///< shared memory
    size_t bytes = 0;     ///< private memory
};

std::wstring typeOf(HANDLE handle) {
    alignas(UNICODE_STRING) BYTE answer[1024] = {};
    if (NtQueryObject(handle, ObjectTypeInformation, answer, sizeof answer, nullptr)) return {};
    const auto& name = reinterpret_cast<const UNICODE_STRING&>(answer);
    return {name.Buffer, name.Length / sizeof(wchar_t)};
}

void countHandles(Usage& now) {
    for (uintptr_t value = 4; value < 0x10000; value += 4) {
        const auto handle = reinterpret_cast<HANDLE>(value);
        DWORD flags = 0;
        if (!GetHandleInformation(handle, &flags)) continue;
        const std::wstring type = typeOf(handle);
        ++(type == L"Key" ? now.keys : type == L"Section" ? now.sections : now.handles);
    }
}

void countThreads(Usage& now) {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry)) {
        now.threads += entry.th32OwnerProcessID == GetCurrentProcessId();
    }
    CloseHandle(snapshot);
}

void sumMemory(Usage& now) {
    MEMORY_BASIC_INFORMATION region{};
    for (const char* at = nullptr; VirtualQuery(at, &region, sizeof region) != 0;) {
        if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE) now.bytes += region.RegionSize;
        at = static_cast<const char*>(region.BaseAddress) + region.RegionSize;
    }
}

Usage usage() {
    Usage now;
    now.children = childProcesses().size();
    countHandles(now);
    countThreads(now);
    sumMemory(now);
    return now;
}

constexpr size_t kViews = 100;  // in each half

}  // namespace

// Every second view is dropped before its browser exists, the others once their page is there. The page comes without a
// server, whose threads would count too.
TEST(ViewLife, TwoHundredViewsOpenedAndClosed_ProcessIsBackWhereItWas) {
    GameHost game;
    NavigationRecorder events;
    const auto oneView = [&](size_t index) {
        game.frames.forgetFrames();
        auto view = game.makeView("data:text/html,<body style='margin:0;background:rgb(68,85,102)'>", events);
        view->show();
        if (index % 2 != 0) {
            ASSERT_TRUE(game.waitFor("a frame", [&] {
                const Frame last = game.frames.lastFrame();
                return last.width == 320 && !last.cleared && game.frames.pixel(9, 9) == 0xFF445566u;
            })) << index;
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
