#pragma once

#include <future>
#include <thread>
#include <utility>

namespace ZEMO::Core {

/// Runs `work` on a thread of its own that nobody waits for. Any thread. Throws std::system_error when the thread can't
/// be started. The module must stay mapped meanwhile (see module_pin.h).
///
/// The work starts after the thread was detached: with this project's mingw-w64 runtime a thread that has ended before
/// it is detached gives its record up twice, and the next threads' handles, or a game's, are closed in its place.
template <class Work>
void runDetached(Work work) {
    std::promise<void> detached;
    std::thread thread([task = std::move(work), mayStart = detached.get_future()]() mutable {
        mayStart.wait();
        task();
    });
    thread.detach();
    detached.set_value();
}

}  // namespace ZEMO::Core
