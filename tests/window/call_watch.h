#pragma once

#include <windows.h>

#include <mutex>
#include <optional>

#include "support/import_replaced.h"
#include "window/window_test_support.h"

// Calls into the system that leave no trace a test could see: each is written down and then really made.
namespace ZEMO::Test {

/// Tells whether a message of one window reaches the system's default procedure, and answers it there with a value of
/// the test's, so that the answer can be followed as well. All other messages take their usual way.
class DefaultProcedureWatch {
public:
    explicit DefaultProcedureWatch(HWND watchedWindow) : window(watchedWindow) {
        {
            const std::lock_guard lock(access());
            current() = this;
        }
        replaced.emplace("DefWindowProcW", watched);
    }
    ~DefaultProcedureWatch() {
        replaced.reset();
        const std::lock_guard lock(access());
        current() = nullptr;
    }
    DefaultProcedureWatch(const DefaultProcedureWatch&) = delete;
    DefaultProcedureWatch& operator=(const DefaultProcedureWatch&) = delete;

    /// From here on this one message is answered so.
    void answer(UINT message, WPARAM wParam, LPARAM lParam, LRESULT value) {
        const std::lock_guard lock(access());
        wanted = {message, wParam, lParam};
        wantedAnswer = value;
        cameBy = false;
    }
    /// Whether the message has come by since.
    bool answered() const {
        const std::lock_guard lock(access());
        return cameBy;
    }

private:
    static std::mutex& access() {
        static std::mutex mutex;
        return mutex;
    }
    static DefaultProcedureWatch*& current() {
        static DefaultProcedureWatch* watch = nullptr;
        return watch;
    }
    static LRESULT WINAPI watched(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
        static const auto system = systemFunction<decltype(DefWindowProcW)>(L"user32.dll", "DefWindowProcW");
        {
            const std::lock_guard lock(access());
            if (DefaultProcedureWatch* watch = current(); watch && watch->window == hwnd) {
                const ReceivedMessage& wanted = watch->wanted;
                if (message == wanted.message && wParam == wanted.wParam && lParam == wanted.lParam) {
                    watch->cameBy = true;
                    return watch->wantedAnswer;
                }
            }
        }
        return system(hwnd, message, wParam, lParam);
    }

    const HWND window;
    ReceivedMessage wanted{};
    LRESULT wantedAnswer = 0;
    bool cameBy = false;
    std::optional<ImportReplaced> replaced;
};

}  // namespace ZEMO::Test
