// Ways out of a process whose loopback responder stands: each must end it at once, with the right code, also while a
// silent client holds the responder's worker.
#include <gtest/gtest.h>
#include <windows.h>

#include <chrono>
#include <string>
#include <vector>

namespace ZEMO::UI {
namespace {

constexpr DWORD kStartMs = 90000;  // a game may wait for another test's browsers
constexpr DWORD kLeaveMs = 5000;

class LoopbackExit : public testing::TestWithParam<const wchar_t*> {
protected:
    static std::wstring game() {
        std::vector<wchar_t> path(32768);
        GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        const std::wstring own = path.data();
        return own.substr(0, own.find_last_of(L'\\')) + L"\\test_helpers\\browser_game.exe";
    }

    static void expectEnds(const std::wstring& way) {
        const std::wstring eventName = L"Local\\ZEMO leaving " + std::to_wstring(GetCurrentProcessId());
        const HANDLE leaving = CreateEventW(nullptr, TRUE, FALSE, eventName.c_str());
        SetEnvironmentVariableW(L"ZEMO_LEAVING", eventName.c_str());
        const std::wstring program = game();
        std::wstring command = L"\"" + program + L"\" leave " + way;
        STARTUPINFOW startup{};
        startup.cb = sizeof(startup);
        PROCESS_INFORMATION made{};
        ASSERT_TRUE(CreateProcessW(program.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                                   &startup, &made))
            << GetLastError();
        SetEnvironmentVariableW(L"ZEMO_LEAVING", nullptr);

        const HANDLE either[] = {leaving, made.hProcess};
        const DWORD announced = WaitForMultipleObjects(2, either, FALSE, kStartMs);
        EXPECT_EQ(announced, WAIT_OBJECT_0) << "the game did not come to its way out";
        const auto start = std::chrono::steady_clock::now();
        const bool ended = WaitForSingleObject(made.hProcess, kLeaveMs) == WAIT_OBJECT_0;
        const auto ms = std::chrono::duration_cast<std::chrono::milliseconds>(std::chrono::steady_clock::now() - start);
        EXPECT_TRUE(ended) << "the game hangs on its way out";
        if (!ended) TerminateProcess(made.hProcess, 1);
        WaitForSingleObject(made.hProcess, kLeaveMs);
        DWORD code = 0;
        GetExitCodeProcess(made.hProcess, &code);
        EXPECT_EQ(code, 42u);
        RecordProperty("leave_ms", static_cast<int>(ms.count()));
        CloseHandle(made.hThread);
        CloseHandle(made.hProcess);
        CloseHandle(leaving);
    }
};

TEST_P(LoopbackExit, ResponderIdle_ProcessEndsWithItsCode) { expectEnds(GetParam()); }

TEST_P(LoopbackExit, SilentClientHoldsWorker_ProcessEndsWithItsCode) {
    expectEnds(std::wstring(GetParam()) + L" held");
}

INSTANTIATE_TEST_SUITE_P(Way, LoopbackExit,
                         testing::Values(L"return", L"exit", L"ExitProcess", L"ExitProcess-other-thread",
                                         L"ExitProcess-callback", L"FreeLibrary", L"FreeLibrary-ExitProcess",
                                         L"TerminateProcess"),
                         [](const auto& info) {
                             std::string name;
                             for (const wchar_t c : std::wstring(info.param))
                                 name += c == L'-' ? '_' : static_cast<char>(c);
                             return name;
                         });

TEST_F(LoopbackExit, NothingWasOpened_LibraryUnloadsAndProcessEnds) { expectEnds(L"free-unused"); }

}  // namespace
}  // namespace ZEMO::UI
