#include "engine/client/frames/render_cycle.h"

#include <utility>

#include "core/sent_messages.h"

namespace ZEMO::UI {
namespace {

constexpr DWORD kCycleMs = 100;

}  // namespace

RenderCycle::RenderCycle()
    : stopEvent(CreateEventW(nullptr, TRUE, FALSE, nullptr)), endedEvent(CreateEventW(nullptr, TRUE, TRUE, nullptr)) {}

RenderCycle::~RenderCycle() { stop(); }

void RenderCycle::start(std::function<bool()> step) {
    ResetEvent(endedEvent.get());
    try {
        thread = std::thread([this, work = std::move(step)] { run(work); });
    } catch (...) {
        SetEvent(endedEvent.get());
        throw;
    }
}

void RenderCycle::stop() {
    stopped.exchange(true);
    SetEvent(stopEvent.get());
    // The render thread itself is refused by the join.
    if (threadId != GetCurrentThreadId()) Core::waitServingSentMessages(endedEvent.get(), INFINITE);
    const std::lock_guard lock(threadMutex);
    if (thread.joinable()) thread.join();
}

void RenderCycle::run(const std::function<bool()>& step) {
    threadId = GetCurrentThreadId();
    while (!stopped && step() && waitForNextStep()) {
    }
    SetEvent(endedEvent.get());
}

// Waits the rest of the cycle, or less when the view ends; false then.
bool RenderCycle::waitForNextStep() {
    if (WaitForSingleObject(stopEvent.get(), kCycleMs) == WAIT_FAILED) Sleep(kCycleMs);
    return !stopped;
}

}  // namespace ZEMO::UI
