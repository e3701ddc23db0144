#pragma once

#include <windows.h>

#include <functional>
#include <string>

#include "include/cef_app.h"
#include "include/cef_client.h"

namespace binding_test {

/// Runs `work` on an engine thread.
class FunctionTask : public CefTask {
public:
    explicit FunctionTask(std::function<void()> work) : work_(std::move(work)) {}
    void Execute() override { work_(); }

private:
    std::function<void()> work_;
    IMPLEMENT_REFCOUNTING(FunctionTask);
};

inline void post(CefThreadId thread, std::function<void()> work, int64_t delayMs = 0) {
    CefPostDelayedTask(thread, new FunctionTask(std::move(work)), delayMs);
}

/// The directory of the test program: the engine lies beside it.
std::wstring programDirectory();

/// Processes of this program's tree that have not ended yet, this one not counted.
int childProcesses();

/// Polls until `done`; false after `timeoutMs`.
bool waitUntil(const std::function<bool()>& done, int timeoutMs);

/// An empty cache directory beside the program.  It is emptied before use, not after: the engine keeps some of its
/// files open until the process ends.
class CacheDirectory {
public:
    explicit CacheDirectory(const std::wstring& name);
    const std::wstring& path() const { return path_; }

private:
    std::wstring path_;
};

/// One engine life in this process: loads, initializes, runs the message loop until `CefQuitMessageLoop` or the time is
/// up, shuts down.  False when a step failed or the time was up.
bool runEngine(CefRefPtr<CefApp> app, const std::wstring& childProgram, const std::wstring& cache,
               const std::function<void()>& started, int timeoutMs);

/// A windowless browser of 200 x 100.
bool createBrowser(CefRefPtr<CefClient> client, const std::string& address);

}  // namespace binding_test
