#pragma once

#include <windows.h>

#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <type_traits>

namespace demo {

struct PixelSize {
    int width = 0;
    int height = 0;
    friend bool operator==(const PixelSize&, const PixelSize&) = default;
};

/// The game's window with its OpenGL context. Lives on the game thread.
class GameWindow {
public:
    /// `client` is the client area in device pixels. Throws std::runtime_error when there is no OpenGL. The window is
    /// visible when the constructor returns: the library looks for a visible window.
    GameWindow(const std::wstring& title, PixelSize client);
    ~GameWindow();
    GameWindow(const GameWindow&) = delete;
    GameWindow& operator=(const GameWindow&) = delete;

    HWND handle() const { return window; }
    PixelSize clientSize() const;
    void setClientSize(PixelSize client);
    /// 1 at 96 dpi.
    float scale() const;
    /// The user has asked to close the window.
    bool isCloseRequested() const { return closeRequested; }

    /// Dispatches what waits in the queue, then sleeps until `moment`, waking for each new message.
    void handleMessagesUntil(std::chrono::steady_clock::time_point moment);
    void swapBuffers();
    void setTitle(const std::wstring& title) { SetWindowTextW(window, title.c_str()); }

    /// True: the game has dealt with a waiting message, and neither the page in front nor a window gets it.
    std::function<bool(const MSG&)> onMessage;
    /// A key that nobody in front of the game took (a shown page takes all keys but the system keys; F10 is one).
    std::function<void(unsigned virtualKey)> onKey;
    /// Draws a frame while Windows runs its own loop, that is while the user moves or sizes the window.
    std::function<void()> onModalFrame;

private:
    static LRESULT CALLBACK windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);
    LRESULT handleMessage(UINT message, WPARAM wParam, LPARAM lParam);
    void createContext();

    struct TimerCloser {
        void operator()(HANDLE handle) const { CloseHandle(handle); }
    };

    HWND window = nullptr;
    HDC deviceContext = nullptr;  // the class has CS_OWNDC: it belongs to the window and needs no release
    HGLRC glContext = nullptr;
    std::unique_ptr<std::remove_pointer_t<HANDLE>, TimerCloser> timer;
    bool closeRequested = false;
};

}  // namespace demo
