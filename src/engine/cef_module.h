#pragma once

#include <windows.h>

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "core/unique_handle.h"
#include "include/cef_task.h"

namespace ZEMO::UI {

/// The engine of this process and its thread. One for the life of the process: an engine that has stopped can't start
/// again, and while it runs the library and libcef stay mapped.
class CefModule {
public:
    /// Starts the engine thread and blocks until the engine is ready (or has failed to start: a log line says so, and
    /// no view will show anything). Returns -1. Throws std::system_error when the thread can't be started; the next
    /// call tries again. Where an engine runs, or ran, in this process, that is left as it is. Any thread.
    static int start(HINSTANCE instance);

    /// Ends the engine's loop, waits for its thread, gives the cache lock up. Must not be called on the engine thread.
    static void stop();

    /// The program calls exit or returns from main, and all threads still live: views lose their browsers, the engine
    /// ends, the cache lock is given up. Waits two seconds at most, and leaves the rest to the process's end then.
    /// Does nothing on the engine thread, or without an engine. Registered by start.
    static void stopAtExit();

    /// The process is ending and the system has already taken the engine thread away: nothing can be posted or waited
    /// for. Gives the cache lock up.
    static void abandon();

    ~CefModule();
    CefModule(const CefModule&) = delete;
    CefModule& operator=(const CefModule&) = delete;

    class QuitTask : public CefTask {
    public:
        void Execute() override;

    private:
        IMPLEMENT_REFCOUNTING(QuitTask);
    };

private:
    explicit CefModule(HINSTANCE instance)
        : moduleInstance(instance), stopped(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}
    void engineThreadMain();
    void runEngine();
    void signalReady();
    void releaseLock();

    std::condition_variable readyCondition;
    std::atomic<bool> ready{false};
    std::mutex readyMutex;
    HINSTANCE moduleInstance;
    Core::UniqueKernelHandle stopped;  ///< set when the engine has shut down, or was not started at all
    std::shared_ptr<std::thread> engineThread;
    // Written on the engine thread before `ready`, read after the thread is gone.
    std::wstring cachePath;
    HANDLE cacheLockHandle = INVALID_HANDLE_VALUE;
};

/// The language text for the engine: "ko-KR,ko" from language and country of the user's interface.
std::wstring buildLanguageText(const std::wstring& language, const std::wstring& country);

}  // namespace ZEMO::UI
