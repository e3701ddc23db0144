#include <gtest/gtest.h>

#include <format>

#include "engine/helper_game.h"

// Games that are killed while their engine starts, and what stays of it.
namespace ZEMO::Test {
namespace {

/// What the system needs to take processes down that are on their way out, on a crowded machine.
constexpr ULONGLONG kGoneMs = 5000;

/// Milliseconds until no process of the engine was left; nothing within the time is the time.
ULONGLONG untilGone() {
    const ULONGLONG begin = GetTickCount64();
    ULONGLONG took = 0;
    while (!processesBelow(programDirectory() / L"cefsubprocess").empty() && took < kGoneMs) {
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

}  // namespace ZEMO::Test
