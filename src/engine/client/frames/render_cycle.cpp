#include "engine/client/frames/render_cycle.h"

#include <utility>

namespace ZEMO::UI {
namespace {

constexpr DWORD kCycleMs = 100;

}  // namespace

RenderCycle::RenderCycle() : stopEvent(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}

RenderCycle::~RenderCycle() { stop(); }

void RenderCycle::start(std::function<bool()> step) {
    thread = std::thread([this, work = std::move(step)] { run(work); });
}

void RenderCycle::stop() {
    stopped.exchange(true);
    SetEvent(stopEvent.get());
    const std::lock_guard lock(threadMutex);
    if (thread.joinable()) thread.join();
}

void RenderCycle::run(const std::function<bool()>& step) {
    if (stopped) return;
    while (step() && waitForNextStep()) {
    }
}

// Waits the rest of the cycle, or less when the view ends; false then.
bool RenderCycle::waitForNextStep() {
    if (WaitForSingleObject(stopEvent.get(), kCycleMs) == WAIT_FAILED) Sleep(kCycleMs);
    return !stopped;
}

}  // namespace ZEMO::UI
