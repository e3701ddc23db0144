#include "core/wine/remote_closer.h"

#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>

#include "core/detached_thread.h"
#include "core/log.h"
#include "core/never_destroyed.h"
#include "core/unique_handle.h"

namespace ZEMO::Core::Wine {
namespace {

using Clock = std::chrono::steady_clock;

struct Order {
    UniqueKernelHandle process;
    HANDLE handle = nullptr;
    Clock::time_point due;
};

bool hasEnded(HANDLE process) { return WaitForSingleObject(process, 0) == WAIT_OBJECT_0; }

// By moving it here: Wine refuses the form without a target, with the handle left open.
void closeRemote(DuplicateFunction duplicate, const Order& order) {
    HANDLE moved = nullptr;
    if (duplicate(order.process.get(), order.handle, GetCurrentProcess(), &moved, 0, FALSE, DUPLICATE_CLOSE_SOURCE)) {
        CloseHandle(moved);
    }
}

/// Runs on a thread that nobody waits for. False when the system has no thread for it: the engine, on whose thread this
/// may be, knows no exceptions.
template <class Work>
bool tryDetached(Work work) {
    try {
        runDetached(std::move(work));
        return true;
    } catch (const std::system_error&) {
        return false;
    }
}

/// One thread that makes the calls, one after the other. It may never come back from one: everything that it touches
/// is its own share.
class Caller {
public:
    /// Null when there is no thread for it.
    static std::unique_ptr<Caller> start(DuplicateFunction duplicate) {
        auto caller = std::make_unique<Caller>();
        const bool runs = tryDetached([shared = caller->desk, duplicate] { work(*shared, duplicate); });
        return runs ? std::move(caller) : nullptr;
    }
    Caller() = default;
    ~Caller() {
        const std::lock_guard lock(desk->mutex);
        desk->left = true;
        desk->changed.notify_all();
    }
    Caller(const Caller&) = delete;
    Caller& operator=(const Caller&) = delete;

    /// False when the call is not back in time: the thread is of no use any more.
    bool close(Order order, DWORD patienceMs) {
        std::unique_lock lock(desk->mutex);
        desk->order = std::move(order);
        desk->busy = true;
        desk->changed.notify_all();
        return desk->changed.wait_for(lock, std::chrono::milliseconds(patienceMs), [this] { return !desk->busy; });
    }

private:
    struct Desk {
        std::mutex mutex;
        std::condition_variable changed;
        Order order;
        bool busy = false, left = false;
    };
    static void work(Desk& desk, DuplicateFunction duplicate) {
        std::unique_lock lock(desk.mutex);
        for (;;) {
            desk.changed.wait(lock, [&] { return desk.busy || desk.left; });
            if (!desk.busy) return;
            const Order order = std::move(desk.order);
            lock.unlock();
            closeRemote(duplicate, order);
            lock.lock();
            desk.busy = false;
            desk.changed.notify_all();
        }
    }
    std::shared_ptr<Desk> desk = std::make_shared<Desk>();
};

}  // namespace

struct RemoteCloser::State {
    State(DuplicateFunction function, Limits bounds) : duplicate(function), limits(bounds) {}

    /// Blocks until the oldest order is due.
    Order next() {
        std::unique_lock lock(mutex);
        changed.wait(lock, [this] { return !orders.empty(); });
        const Clock::time_point due = orders.front().due;
        lock.unlock();
        std::this_thread::sleep_until(due);  // none comes before it
        lock.lock();
        Order order = std::move(orders.front());
        orders.pop_front();
        return order;
    }
    /// Serves the orders, each at its time, for ever.
    [[noreturn]] void serve() {
        std::unique_ptr<Caller> caller;
        size_t stuck = 0;
        for (;;) {
            Order order = next();
            if (stuck >= limits.stuckThreads || hasEnded(order.process.get())) continue;
            if (!caller) caller = Caller::start(duplicate);
            if (!caller || caller->close(std::move(order), limits.patienceMs)) continue;
            caller.reset();
            if (++stuck == limits.stuckThreads) logDebugA("too many handle moves are stuck; handles stay open\n");
        }
    }

    const DuplicateFunction duplicate;
    const Limits limits;
    std::mutex mutex;
    std::condition_variable changed;
    // Under the mutex.
    std::deque<Order> orders;
    bool serving = false;
};

RemoteCloser::RemoteCloser(DuplicateFunction duplicate, Limits limits)
    : state(std::make_shared<State>(duplicate, limits)) {}

RemoteCloser& RemoteCloser::instance(DuplicateFunction duplicate) {
    static NeverDestroyed<RemoteCloser> closer(duplicate, Limits{});
    return *closer;
}

bool RemoteCloser::closeLater(HANDLE process, HANDLE handle) {
    Order order;
    // The caller may close its own at once.
    if (!DuplicateHandle(GetCurrentProcess(), process, GetCurrentProcess(), order.process.put(), 0, FALSE,
                         DUPLICATE_SAME_ACCESS)) {
        return false;
    }
    order.handle = handle;
    order.due = Clock::now() + std::chrono::milliseconds(state->limits.delayMs);
    const std::lock_guard lock(state->mutex);
    if (state->orders.size() >= state->limits.waiting) return false;
    state->orders.push_back(std::move(order));
    state->changed.notify_all();
    if (!state->serving) state->serving = tryDetached([served = state] { served->serve(); });
    return true;
}

}  // namespace ZEMO::Core::Wine
