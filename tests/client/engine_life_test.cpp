#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <filesystem>
#include <system_error>

#include "core/module_paths.h"
#include "core/wine/import_table.h"
#include "engine/cef_module.h"
#include "engine/game_host.h"
#include "support/debug_log.h"
#include "support/import_replaced.h"

// Start and stop of the engine's thread where something is in the way. What the system can't be made to refuse is
// replaced.
namespace ZEMO::Test {
namespace fs = std::filesystem;
namespace {

using namespace ZEMO::UI;

uintptr_t __cdecl noThread(void*, unsigned, unsigned(__stdcall*)(void*), void*, unsigned, unsigned*) {
    errno = EAGAIN;
    return 0;
}

HANDLE WINAPI throwNumber(DWORD, DWORD) { throw 7; }

bool pageIsShown(GameHost& game) {
    NavigationRecorder events;
    auto view = game.makeView("data:text/html,<style>html{background:rgb(51,68,85)}</style>", events);
    view->show();
    return game.waitFor("the page", [&] { return game.frames.pixel(9, 9) == 0xFF334455u; });
}

fs::path lockFile() { return fs::path(Core::getOwnModuleDirectory()) / L"cache" / L"cef.lock"; }

}  // namespace

TEST(EngineLife, StopWhileTheEngineRuns_EngineIsShutDownAndTheLockGivenUp) {
    GameHost game;
    ASSERT_TRUE(fs::exists(lockFile()));
    const DebugLogCapture log;
    CefModule::stop();
    EXPECT_TRUE(log.contains("cef shutting down\n")) << log.dump();
    EXPECT_TRUE(log.contains("cef is shutdown\n")) << log.dump();
    EXPECT_FALSE(fs::exists(lockFile()));
}

TEST(EngineLife, StartAfterAStop_AnswersAtOnceAndStartsNothing) {
    GameHost game;
    CefModule::stop();
    const DebugLogCapture log;
    EXPECT_EQ(CefModule::start(GetModuleHandleW(nullptr)), -1);
    EXPECT_TRUE(log.lines().empty()) << log.dump();
}

TEST(EngineLife, ThreadCanNotBeStarted_CallerHearsOfItAndTheNextStartWorks) {
    {
        const ImportReplaced none("_beginthreadex", &noThread);
        EXPECT_THROW(InitUILibrary(), std::system_error);
    }
    GameHost game;
    EXPECT_TRUE(pageIsShown(game));
}

TEST(EngineLife, StopWithoutAnEngineThread_OnlyForgetsTheModule) {
    {
        const ImportReplaced none("_beginthreadex", &noThread);
        EXPECT_THROW(CefModule::start(GetModuleHandleW(nullptr)), std::system_error);
    }
    const DebugLogCapture log;
    CefModule::stop();
    CefModule::stop();
    EXPECT_TRUE(log.lines().empty()) << log.dump();
}

TEST(EngineLife, CleanUpThrowsNoException_LoggedAsUnknownAndTheStartGoesOn) {
    const ImportReplaced thrower("CreateToolhelp32Snapshot", &throwNumber);
    const DebugLogCapture log;
    GameHost game;
    EXPECT_TRUE(log.contains("cache cleanup failed: unknown error\n")) << log.dump();
    EXPECT_TRUE(pageIsShown(game));
}

TEST(EngineLife, UnderWine_TheEnginesHandleMovesAndWritesComeToTheLibrary) {
    if (!GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version")) GTEST_SKIP() << "this is a Windows";
    GameHost game;
    for (const char* name : {"DuplicateHandle", "WriteFile"}) {
        void** const place = Core::Wine::findImport(GetModuleHandleW(L"libcef.dll"), name);
        ASSERT_NE(place, nullptr);
        HMODULE owner = nullptr;
        GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                           static_cast<const wchar_t*>(*place), &owner);
        EXPECT_EQ(owner, GetModuleHandleW(nullptr)) << name << ": the library's inside is part of this program";
    }
}

}  // namespace ZEMO::Test
