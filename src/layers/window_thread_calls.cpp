#include "layers/window_thread_calls.h"

#include <mutex>
#include <unordered_map>
#include <utility>
#include <vector>

#include "core/never_destroyed.h"

namespace ZEMO::UI {
namespace {

using Calls = std::vector<std::function<void()>>;

// The calls wait here and not in the message: one that is never taken then leaks nothing. Never destroyed: a window may
// outlive the static objects.
struct WaitingCalls {
    std::mutex access;
    std::unordered_map<HWND, Calls> byWindow;
};
WaitingCalls& waitingCalls() {
    static Core::NeverDestroyed<WaitingCalls> instance;
    return *instance;
}

// A registered message: the range of private ones is the game's own on the game's window.
UINT callMessage() {
    static const UINT message = RegisterWindowMessageW(L"ZEMOWindowThreadCall");
    return message;
}

Calls takeCalls(HWND window) {
    const std::lock_guard lock(waitingCalls().access);
    const auto entry = waitingCalls().byWindow.extract(window);
    return entry ? std::move(entry.mapped()) : Calls();
}

/// Calls whose window went before it took them.
std::vector<Calls> takeLostCalls() {
    std::vector<Calls> lost;
    const std::lock_guard lock(waitingCalls().access);
    auto& byWindow = waitingCalls().byWindow;
    for (auto entry = byWindow.begin(); entry != byWindow.end();) {
        const auto next = std::next(entry);
        if (!IsWindow(entry->first)) lost.push_back(std::move(byWindow.extract(entry).mapped()));
        entry = next;
    }
    return lost;
}

}  // namespace

void callOnWindowThread(HWND window, std::function<void()> call) {
    takeLostCalls();
    const DWORD thread = GetWindowThreadProcessId(window, nullptr);
    if (!thread) return;
    if (thread == GetCurrentThreadId()) return call();
    const HWND root = GetAncestor(window, GA_ROOT);
    {
        const std::lock_guard lock(waitingCalls().access);
        waitingCalls().byWindow[root].push_back(std::move(call));
    }
    if (!PostMessageW(root, callMessage(), 0, 0)) takeCalls(root);
}

bool runWindowThreadCalls(HWND window, UINT message) {
    if (message != callMessage()) return false;
    for (const auto& call : takeCalls(window)) call();
    return true;
}

}  // namespace ZEMO::UI
