#pragma once

#include <windows.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace ZEMO::Test {

/// Where the test programs' helpers lie: "test_helpers" beside this program.
std::wstring helperPath(const std::wstring& fileName);

/// A program that a test starts and whose standard output it reads line by line. Ended with the object, if it still
/// runs.
class HelperProcess {
public:
    /// `program` is a path or a name that the system finds. Throws std::runtime_error when it can't be started.
    HelperProcess(const std::wstring& program, const std::vector<std::wstring>& arguments);
    ~HelperProcess();
    HelperProcess(const HelperProcess&) = delete;
    HelperProcess& operator=(const HelperProcess&) = delete;

    DWORD id() const { return info_.dwProcessId; }

    /// The first line that begins with `start` and was not returned before, without its line end; the lines before it
    /// are passed over. Nothing when none comes in time.
    std::optional<std::string> line(const std::string& start,
                                    std::chrono::milliseconds timeout = std::chrono::seconds(20));

    /// Waits for the end and gives all lines. Nothing when it does not end in time.
    std::optional<std::vector<std::string>> finish(std::chrono::milliseconds timeout = std::chrono::seconds(30));

    /// All lines so far, for a failure message.
    std::string output() const;

    void terminate();

private:
    void read();

    PROCESS_INFORMATION info_{};
    HANDLE pipe_ = nullptr;
    std::thread reader_;
    mutable std::mutex mutex_;
    std::condition_variable changed_;
    std::vector<std::string> lines_;
    size_t nextLine_ = 0;
    bool ended_ = false;
};

/// The lines of a helper that runs to its end; a failing one gives its output as the only line.
std::vector<std::string> runHelper(const std::wstring& program, const std::vector<std::wstring>& arguments);

}  // namespace ZEMO::Test
