#pragma once

#include <windows.h>

#include <atomic>
#include <functional>
#include <mutex>
#include <thread>

#include "core/unique_handle.h"

namespace ZEMO::UI {

/// The render thread of one view: runs a step every 100 ms until stopped or until the step answers false. The wait
/// between two steps ends at once with stop.
class RenderCycle {
public:
    RenderCycle();
    /// Joins the thread if stop has not.
    ~RenderCycle();
    RenderCycle(const RenderCycle&) = delete;
    RenderCycle& operator=(const RenderCycle&) = delete;

    /// Once. `step` runs on the new thread only. Throws std::system_error when the thread can't be started.
    void start(std::function<bool()> step);
    /// No step runs any more when this returns. Messages that other threads send to this thread's windows are answered
    /// meanwhile: a step that presents into such a window may wait for that. Any thread but the render thread, also
    /// several at a time.
    void stop();
    bool isStopped() const { return stopped; }

private:
    void run(const std::function<bool()>& step);
    bool waitForNextStep();

    std::atomic<bool> stopped{false};
    std::atomic<DWORD> threadId{0};
    Core::UniqueKernelHandle stopEvent;   ///< set with `stopped`: ends the wait
    Core::UniqueKernelHandle endedEvent;  ///< set while no step runs or will
    std::mutex threadMutex;               ///< one join, of the view's end or of the exit
    std::thread thread;
};

}  // namespace ZEMO::UI
