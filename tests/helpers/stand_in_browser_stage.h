#pragma once

#include <windows.h>

#include <chrono>
#include <set>
#include <string>
#include <vector>

namespace ZEMO::Test {

/// How one stand-in browser was started.
struct BrowserStart {
    std::string executable;
    std::string directory;
    int showCommand = -1;  // SW_...; -1 if it was told none
    std::vector<std::string> arguments;
};

/// A machine with default browsers of the test's own choice. The stand-in program is copied under the browsers' names
/// into a fresh directory, whose path has a blank and Korean letters in it; the associations that this process sees are
/// an empty volatile registry key of its own, so nothing of the user's is touched and nothing has to be put back, even
/// by a test that crashes. One stage at a time exists on a machine, because which browsers run is seen by all
/// processes.
class StandInBrowserStage {
public:
    StandInBrowserStage();
    ~StandInBrowserStage();
    StandInBrowserStage(const StandInBrowserStage&) = delete;
    StandInBrowserStage& operator=(const StandInBrowserStage&) = delete;

    /// Path of the stand-in called `name`, made at its first use.
    std::wstring install(const std::wstring& name);

    /// The command line that opens an address of `scheme`; "%1" stands for the address.
    void setCommand(const std::wstring& scheme, const std::wstring& command);

    /// install(), then its command for both schemes.
    void makeDefault(const std::wstring& name);

    void removeDefaults();

    /// Starts the stand-in called `name` as a browser that is running; stopRunning() ends all of them.
    void startRunning(const std::wstring& name);
    void stopRunning();

    /// Waits for `count` starts to be recorded. False after the time-out.
    bool waitForStarts(int count, std::chrono::milliseconds timeout = std::chrono::seconds(30));

    /// What was recorded since the last call, once every stand-in that this process started has ended.
    std::vector<BrowserStart> takeStarts();

    const std::wstring& directory() const { return directory_; }

private:
    void waitForLaunched();

    struct Running {
        HANDLE process;
        DWORD processId;
        HANDLE end;
    };

    HANDLE machine_ = nullptr;
    HANDLE semaphore_ = nullptr;
    HKEY classes_ = nullptr;
    std::wstring keyPath_;
    std::wstring directory_;
    std::vector<Running> running_;
    std::set<std::wstring> installed_;
};

std::string toUtf8(const std::wstring& text);

}  // namespace ZEMO::Test
