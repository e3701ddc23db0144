#pragma once

#include <windows.h>

#include <memory>

namespace ZEMO::Core::Wine {

using DuplicateFunction = decltype(&::DuplicateHandle);

/// Closes handles of other processes on threads of its own, which nobody waits for: one that keeps the order and the
/// time, and one that makes the calls. A call that does not come back loses only the thread that made it.
///
/// It waits before it closes: most processes whose handles were moved just before their end have then ended, and
/// nothing is left to close. Where it is overrun or too many calls are stuck, handles stay open until their process
/// ends. Any thread.
class RemoteCloser {
public:
    struct Limits {
        DWORD delayMs = 1000;      ///< from the order to the call
        DWORD patienceMs = 2000;   ///< until a call counts as stuck
        size_t waiting = 4096;     ///< orders; more are not taken
        size_t stuckThreads = 64;  ///< after that many no further call is made
    };

    /// `duplicate` makes the calls. Threads start with the first order and stay to the end of the process: one that
    /// ends beside it may be taken away with a lock held that the end needs.
    RemoteCloser(DuplicateFunction duplicate, Limits limits);
    RemoteCloser(const RemoteCloser&) = delete;
    RemoteCloser& operator=(const RemoteCloser&) = delete;

    /// The process's own. Only the first call's argument counts.
    static RemoteCloser& instance(DuplicateFunction duplicate);

    /// Takes the order to close `handle` of `process`, a handle with the right to duplicate, which stays the caller's.
    /// Never waits. False when the order was not taken.
    bool closeLater(HANDLE process, HANDLE handle);

private:
    struct State;
    std::shared_ptr<State> state;
};

}  // namespace ZEMO::Core::Wine
