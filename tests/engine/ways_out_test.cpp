#include <gtest/gtest.h>

#include <fstream>
#include <iostream>

#include "engine/game_host.h"
#include "engine/helper_game.h"
#include "support/http_server.h"

// Whole processes with the real engine and an open view: how they end, what they leave, how two of them share a folder.
namespace ZEMO::Test {
namespace fs = std::filesystem;
namespace {

constexpr auto kEnd = 5s;

bool lockIsFree(const fs::path& cache) {
    const HANDLE lock = CreateFileW((cache / L"cef.lock").c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                    OPEN_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (lock == INVALID_HANDLE_VALUE) return false;
    CloseHandle(lock);
    return true;
}

/// They end by themselves once their game is gone; when is the system's to say, and a crowded one takes its time. So
/// this waits as long as a test may run, and says what it took.
bool noEngineProcessLeft(const fs::path& directory) {
    constexpr ULONGLONG kTestMs = 240'000;
    constexpr ULONGLONG kUsualMs = 5000;
    const ULONGLONG start = GetTickCount64();
    ULONGLONG taken = 0;
    while (!processesBelow(directory / L"cefsubprocess").empty() && taken < kTestMs) {
        Sleep(50);
        taken = GetTickCount64() - start;
    }
    if (taken > kUsualMs) std::cerr << "engine processes stayed for " << taken << " ms" << std::endl;
    return taken < kTestMs;
}

fs::path libraryFile() { return programDirectory() / L"ZEMOUIFramework.dll"; }

class WaysOut : public ::testing::TestWithParam<const wchar_t*> {};

}  // namespace

TEST_P(WaysOut, OpenView_EndsInFiveSecondsAndLeavesNothing) {
    HelperGame game(libraryFile(), GetParam() + std::wstring(L" held"), programDirectory());
    ASSERT_TRUE(game.waitForLine("ready")) << game.output();
    EXPECT_FALSE(lockIsFree(programDirectory() / L"cache")) << "the running game holds its cache";
    game.letLeave();
    ASSERT_TRUE(game.waitForLine("leaving")) << game.output();
    ASSERT_TRUE(game.waitForEnd(kEnd)) << "still running after five seconds";
    EXPECT_EQ(game.exitCode(), 7u) << game.output();
    EXPECT_TRUE(noEngineProcessLeft(programDirectory()));
    // Asked for before lockIsFree, which makes the file. Only a killed process leaves it; the system frees every other
    // one's lock as well, so that alone says nothing of the library.
    if (std::wstring(GetParam()) != L"terminate") {
        EXPECT_FALSE(fs::exists(programDirectory() / L"cache" / L"cef.lock")) << "the library gives its lock up";
    }
    EXPECT_TRUE(lockIsFree(programDirectory() / L"cache"));
}

INSTANTIATE_TEST_SUITE_P(Each, WaysOut,
                         ::testing::Values(L"return", L"static", L"global", L"exit", L"exit-in-callback",
                                           L"exit-callback-blocked", L"exitprocess", L"exitprocess-thread",
                                           L"exitprocess-engine-blocked", L"freelibrary", L"terminate", L"drop"),
                         [](const auto& info) {
                             std::string name;
                             for (const wchar_t* c = info.param; *c; ++c)
                                 name += *c == L'-' ? '_' : static_cast<char>(*c);
                             return name;
                         });

TEST(WholeProcess, ReturnFromMain_EngineIsStoppedInOrderBeforeTheModulesGo) {
    HelperGame game(libraryFile(), L"return", programDirectory());
    ASSERT_TRUE(game.waitForLine("leaving")) << game.output();
    ASSERT_TRUE(game.waitForEnd(kEnd));
    const std::string output = game.output();
    const size_t begin = output.find("cef shutting down");
    const size_t end = output.find("cef is shutdown");
    EXPECT_LT(output.find("leaving"), begin) << output;
    EXPECT_LT(begin, end) << output;
    ASSERT_NE(end, std::string::npos) << output;
    EXPECT_NE(output.find("UIFramework DLL_PROCESS_DETACH", end), std::string::npos) << output;
}

TEST(WholeProcess, ExitWhileACallbackOfTheGameBlocks_LogSaysThatTheEngineStillRuns) {
    HelperGame game(libraryFile(), L"exit-callback-blocked", programDirectory());
    ASSERT_TRUE(game.waitForLine("leaving")) << game.output();
    ASSERT_TRUE(game.waitForEnd(kEnd)) << "the wait for the engine has an end";
    EXPECT_NE(game.output().find("cef is still running at exit"), std::string::npos) << game.output();
    EXPECT_EQ(game.output().find("cef is shutdown"), std::string::npos) << game.output();
}

TEST(WholeProcess, PageSetsACookieAndTheGameReturns_NextGameSendsIt) {
    HttpServer server;
    server.serve("/login", {.body = "<!doctype html><style>html{background:#204060}</style>",
                            .extraHeaders = "Set-Cookie: login=kept; Max-Age=3600\r\n"});
    const std::string address = server.url("/login");
    const std::wstring way = L"return " + std::wstring(address.begin(), address.end());
    // The library waits two seconds for the engine. Where the machine is so crowded that this is not enough, the log
    // says so, and nothing was promised: another game then tries.
    bool stoppedInOrder = false;
    for (int i = 0; i < 5 && !stoppedInOrder; ++i) {
        HelperGame game(libraryFile(), way, programDirectory());
        ASSERT_TRUE(game.waitForLine("leaving")) << game.output();
        ASSERT_TRUE(game.waitForEnd(kEnd)) << game.output();
        stoppedInOrder = game.output().find("cef is shutdown") != std::string::npos;
    }
    ASSERT_TRUE(stoppedInOrder);
    HelperGame next(libraryFile(), way, programDirectory());
    ASSERT_TRUE(next.waitForLine("leaving")) << next.output();
    std::string cookies;  // of the last request: the next game's
    for (const HttpServer::Request& request : server.requests()) {
        if (request.target != "/login") continue;
        cookies = request.headers.contains("cookie") ? request.headers.at("cookie") : "";
    }
    EXPECT_EQ(cookies, "login=kept") << "a login lives on, also when it came seconds before the end";
}

TEST(WholeProcess, FreeLibraryWhileTheEngineRuns_LibraryStaysMapped) {
    HelperGame game(libraryFile(), L"freelibrary", programDirectory());
    ASSERT_TRUE(game.waitForLine("ready")) << game.output();
    EXPECT_TRUE(game.waitForLine("still mapped")) << game.output();
    EXPECT_TRUE(game.waitForEnd(kEnd));
}

TEST(WholeProcess, FolderWithBlankAndKoreanLetters_AnyWorkingDirectory_PageIsShown) {
    const fs::path folder = copyOfLibraryFolder(L"게임 폴더 1");
    {
        HelperGame game(folder / L"ZEMOUIFramework.dll", L"return", fs::temp_directory_path());
        EXPECT_TRUE(game.waitForLine("ready")) << game.output();
        EXPECT_TRUE(fs::exists(folder / L"cache")) << "the cache lies beside the library";
        EXPECT_TRUE(game.waitForEnd(kEnd));
        EXPECT_EQ(game.exitCode(), 7u);
    }
    EXPECT_TRUE(noEngineProcessLeft(folder));
    std::error_code ignored;
    fs::remove_all(folder, ignored);
}

TEST(WholeProcess, TwoSideBySide_TwoCachesAndAKilledOnesLockIsFreeForTheNext) {
    const fs::path base = programDirectory();
    HelperGame first(libraryFile(), L"wait", base);
    ASSERT_TRUE(first.waitForLine("ready")) << first.output();
    const fs::path stale = base / L"cache99999999";  // of a process that never was
    fs::create_directories(stale);
    {
        HelperGame second(libraryFile(), L"wait", base);
        ASSERT_TRUE(second.waitForLine("ready")) << second.output();
        const fs::path own = base / (L"cache" + std::to_wstring(second.processId()));
        EXPECT_TRUE(fs::exists(own / L"cef.lock"));
        EXPECT_FALSE(lockIsFree(base / L"cache"));
        EXPECT_FALSE(lockIsFree(own));
        EXPECT_FALSE(fs::exists(stale)) << "the second start removes the cache of a dead process";
    }
    first.kill();
    EXPECT_TRUE(noEngineProcessLeft(base));
    EXPECT_TRUE(lockIsFree(base / L"cache")) << "a killed game can't leave its lock";
    HelperGame third(libraryFile(), L"return", base);
    EXPECT_TRUE(third.waitForLine("ready")) << third.output();
    for (const auto& entry : fs::directory_iterator(base)) {
        const std::wstring name = entry.path().filename().wstring();
        EXPECT_FALSE(name.starts_with(L"cache") && name.size() > 5) << "a stale cache stayed: " << entry.path();
    }
    EXPECT_TRUE(third.waitForEnd(kEnd));
}

}  // namespace ZEMO::Test
