#pragma once

#include <windows.h>

#include <chrono>
#include <condition_variable>
#include <filesystem>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace ZEMO::Test {

/// Directory of this test program, which is also the library's.
std::filesystem::path programDirectory();

/// A copy of the library's folder (hard links, so it costs nothing) under another name, beside this program.
std::filesystem::path copyOfLibraryFolder(const wchar_t* name);

/// Ids of all running processes whose program lies below `directory`.
std::vector<DWORD> processesBelow(const std::filesystem::path& directory);

/// All running processes, a line each, for a test that misses one.
std::string allProcesses();

/// A game in a process of its own (see engine_helper), with the lines that it printed. Killed, if still running, by the
/// destructor.
class HelperGame {
public:
    /// `library`: full path of the library file to load. `workingDirectory`: the process's current directory.
    /// `program`: the game, where it is not the one beside this test.
    HelperGame(const std::filesystem::path& library, const std::wstring& way,
               const std::filesystem::path& workingDirectory, std::filesystem::path program = {});
    ~HelperGame();
    HelperGame(const HelperGame&) = delete;
    HelperGame& operator=(const HelperGame&) = delete;

    bool waitForLine(const std::string& line, std::chrono::milliseconds timeout = std::chrono::seconds(90));
    /// Ends the wait of a game that was started "held".
    void letLeave() const;
    bool waitForEnd(std::chrono::milliseconds timeout);
    DWORD exitCode() const;
    DWORD processId() const { return process.dwProcessId; }
    void kill();
    std::string output() const;

private:
    /// Shared with the thread that reads: whoever else holds the pipe's other end may keep that for ever.
    struct Output {
        std::mutex mutex;
        std::condition_variable arrived;
        std::string text;
        bool finished = false;
    };
    static void readLines(HANDLE pipe, Output& into);
    PROCESS_INFORMATION process{};
    const std::shared_ptr<Output> lines = std::make_shared<Output>();
};

}  // namespace ZEMO::Test
