#pragma once

#include <windows.h>

#include <imm.h>

#include <chrono>
#include <functional>

namespace ZEMO::Test {

/// A window of the test's own thread that has the keyboard, with its real input context. What `take` does not take goes
/// the system's default way.
class ImeWindow {
public:
    ImeWindow();
    ~ImeWindow();
    ImeWindow(const ImeWindow&) = delete;
    ImeWindow& operator=(const ImeWindow&) = delete;

    /// Dispatches messages until `done` holds; false after the time-out, with a line that names `what`.
    bool waitFor(const char* what, const std::function<bool()>& done);
    /// Dispatches what is there.
    void dispatchWaiting();
    bool waitForFocus();

    CANDIDATEFORM candidate() const;
    COMPOSITIONFORM composition() const;
    /// Moves both far away, so that a new place is seen.
    void forgetPlaces() const;
    bool hasContext() const;

    HWND window;
    std::function<bool(UINT message, WPARAM wParam, LPARAM lParam)> take;

private:
    static LRESULT CALLBACK procedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);
};

}  // namespace ZEMO::Test
