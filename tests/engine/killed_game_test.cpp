#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

#include "engine/helper_game.h"

// Games that are killed, or return from main, and what stays of it.
namespace ZEMO::Test {
namespace {

/// What the system needs to take processes down that are on their way out, on a crowded machine.
constexpr ULONGLONG kGoneMs = 5000;

size_t engineProcesses() { return processesBelow(programDirectory() / L"cefsubprocess").size(); }

bool waitForChildren(size_t count) {
    const ULONGLONG end = GetTickCount64() + 60'000;
    while (engineProcesses() < count) {
        if (GetTickCount64() > end) return false;
        Sleep(10);
    }
    return true;
}

/// Milliseconds until no process of the engine was left; nothing within the time is the time.
ULONGLONG untilGone() {
    const ULONGLONG begin = GetTickCount64();
    ULONGLONG took = 0;
    while (engineProcesses() > 0 && took < kGoneMs) {
        Sleep(20);
        took = GetTickCount64() - begin;
    }
    return took;
}

}  // namespace

// At every stage of the children's start: before the first, while they load the engine, while a page comes up.
TEST(KilledGame, AtAnyMomentOfItsStart_ItsEngineProcessesAreGoneSoon) {
    for (DWORD moment = 200; moment <= 2000; moment += 150) {
        HelperGame game(programDirectory() / L"ZEMOUIFramework.dll", L"wait", programDirectory());
        Sleep(moment);
        game.kill();
        const ULONGLONG took = untilGone();
        std::printf("killed after %lu ms: engine processes gone after %llu ms\n", moment, took);
        EXPECT_LT(took, kGoneMs) << "killed after " << moment << " ms";
    }
}

// With one or two children up, at once and later.
TEST(KilledGame, WithItsChildrenUp_TheyAreGoneSoon) {
    for (DWORD kill = 0; kill < 12; ++kill) {
        const size_t children = 1 + kill % 2;
        const DWORD later = kill / 2 * 100;
        HelperGame game(programDirectory() / L"ZEMOUIFramework.dll", L"wait", programDirectory());
        ASSERT_TRUE(waitForChildren(children)) << allProcesses() << game.output();
        Sleep(later);
        game.kill();
        const ULONGLONG took = untilGone();
        std::printf("killed %lu ms after its child %zu: engine processes gone after %llu ms\n", later, children, took);
        EXPECT_LT(took, kGoneMs);
    }
}

// ZEMO_RETURNS=200 in the environment makes it as many; the test prints what it found.
TEST(ManyReturns, FromMainWithAnOpenView_EachEndsAndLeavesNoEngineProcess) {
    const char* const wanted = std::getenv("ZEMO_RETURNS");
    const int returns = wanted ? std::atoi(wanted) : 3;
    int hung = 0;
    int left = 0;
    for (int i = 0; i < returns; ++i) {
        HelperGame game(programDirectory() / L"ZEMOUIFramework.dll", L"return", programDirectory());
        ASSERT_TRUE(game.waitForLine("leaving")) << game.output();
        if (!game.waitForEnd(std::chrono::seconds(10))) ++hung;
        if (untilGone() >= kGoneMs) ++left;
        if (wanted) std::fprintf(stderr, "%d returns: %d hung, %d left\n", i + 1, hung, left);
    }
    std::printf("%d returns: %d hung, %d left an engine process for five seconds\n", returns, hung, left);
    EXPECT_EQ(hung, 0);
    EXPECT_EQ(left, 0);
}

}  // namespace ZEMO::Test
