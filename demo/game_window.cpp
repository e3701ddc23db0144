#include "game_window.h"

#include "gl.h"

#include <algorithm>
#include <stdexcept>

namespace demo {

namespace {

constexpr wchar_t kGameClass[] = L"ZemoDemoGame";
constexpr UINT_PTR kModalTimer = 1;
constexpr DWORD kStyle = WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN | WS_CLIPSIBLINGS;

HANDLE createTimer() {
    // The plain timer is as coarse as the scheduler's tick; the precise one exists since Windows 10 1803.
    constexpr DWORD kHighResolution = 0x2;
    HANDLE timer = CreateWaitableTimerExW(nullptr, nullptr, kHighResolution, TIMER_ALL_ACCESS);
    return timer ? timer : CreateWaitableTimerExW(nullptr, nullptr, 0, TIMER_ALL_ACCESS);
}

PixelSize outerSize(PixelSize client, UINT dpi) {
    RECT rect{0, 0, client.width, client.height};
    AdjustWindowRectExForDpi(&rect, kStyle, FALSE, 0, dpi);
    return {static_cast<int>(rect.right - rect.left), static_cast<int>(rect.bottom - rect.top)};
}

}  // namespace

GameWindow::GameWindow(const std::wstring& title, PixelSize client) : timer(createTimer()) {
    WNDCLASSEXW windowClass{sizeof windowClass};
    windowClass.style = CS_OWNDC | CS_HREDRAW | CS_VREDRAW | CS_DBLCLKS;
    windowClass.lpfnWndProc = windowProc;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    windowClass.lpszClassName = kGameClass;
    RegisterClassExW(&windowClass);

    PixelSize outer = outerSize(client, GetDpiForSystem());
    window = CreateWindowExW(0, kGameClass, title.c_str(), kStyle, CW_USEDEFAULT, CW_USEDEFAULT, outer.width,
                             outer.height, nullptr, nullptr, windowClass.hInstance, this);
    if (!window) throw std::runtime_error("the window could not be created");
    deviceContext = GetDC(window);
    createContext();

    // In the middle of its screen, with the size for that screen's scale; the title bar never above the edge.
    MONITORINFO monitor{sizeof monitor};
    GetMonitorInfoW(MonitorFromWindow(window, MONITOR_DEFAULTTONEAREST), &monitor);
    outer = outerSize(client, GetDpiForWindow(window));
    const RECT& work = monitor.rcWork;
    const LONG x = work.left + (work.right - work.left - outer.width) / 2;
    const LONG y = work.top + std::max<LONG>(0, (work.bottom - work.top - outer.height) / 2);
    SetWindowPos(window, nullptr, x, y, outer.width, outer.height, SWP_NOZORDER);
    ShowWindow(window, SW_SHOWNORMAL);
    SetForegroundWindow(window);
    if (clientSize() != client) setClientSize(client);
}

GameWindow::~GameWindow() {
    wglMakeCurrent(nullptr, nullptr);
    if (glContext) wglDeleteContext(glContext);
    if (window) {
        SetWindowLongPtrW(window, GWLP_USERDATA, 0);
        DestroyWindow(window);
    }
}

void GameWindow::createContext() {
    PIXELFORMATDESCRIPTOR format{sizeof format};
    format.nVersion = 1;
    format.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER;
    format.iPixelType = PFD_TYPE_RGBA;
    format.cColorBits = 32;
    format.cDepthBits = 24;
    const int index = ChoosePixelFormat(deviceContext, &format);
    if (!index || !SetPixelFormat(deviceContext, index, &format)) throw std::runtime_error("no OpenGL pixel format");
    glContext = wglCreateContext(deviceContext);
    if (!glContext || !wglMakeCurrent(deviceContext, glContext)) throw std::runtime_error("no OpenGL context");
}

PixelSize GameWindow::clientSize() const {
    RECT client{};
    GetClientRect(window, &client);
    return {static_cast<int>(client.right), static_cast<int>(client.bottom)};
}

void GameWindow::setClientSize(PixelSize client) {
    const PixelSize outer = outerSize(client, GetDpiForWindow(window));
    SetWindowPos(window, nullptr, 0, 0, outer.width, outer.height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
}

float GameWindow::scale() const { return static_cast<float>(GetDpiForWindow(window)) / 96.0f; }

void GameWindow::handleMessagesUntil(std::chrono::steady_clock::time_point moment) {
    for (;;) {
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) {
            if (message.message == WM_QUIT) closeRequested = true;
            if (onMessage && onMessage(message)) continue;
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
        const auto left = moment - std::chrono::steady_clock::now();
        if (left <= left.zero()) return;
        LARGE_INTEGER due;  // negative: relative, in units of 100 ns
        due.QuadPart = -(std::chrono::duration_cast<std::chrono::nanoseconds>(left).count() / 100);
        HANDLE wait = timer.get();
        SetWaitableTimer(wait, &due, 0, nullptr, nullptr, FALSE);
        const DWORD woken = MsgWaitForMultipleObjectsEx(1, &wait, INFINITE, QS_ALLINPUT, MWMO_INPUTAVAILABLE);
        if (woken == WAIT_OBJECT_0 || woken == WAIT_FAILED) return;
    }
}

void GameWindow::swapBuffers() { SwapBuffers(deviceContext); }

LRESULT CALLBACK GameWindow::windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCCREATE) {
        auto* create = reinterpret_cast<CREATESTRUCTW*>(lParam);
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(create->lpCreateParams));
    }
    auto* self = reinterpret_cast<GameWindow*>(GetWindowLongPtrW(window, GWLP_USERDATA));
    if (!self) return DefWindowProcW(window, message, wParam, lParam);
    self->window = window;
    return self->handleMessage(message, wParam, lParam);
}

LRESULT GameWindow::handleMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_CLOSE:  // the game closes its views first and destroys the window then
            closeRequested = true;
            return 0;
        case WM_PAINT:  // the frame loop draws all the time; the library posts this message to wake such loops
            ValidateRect(window, nullptr);
            return 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_KEYDOWN:
        case WM_SYSKEYDOWN:
            if (onKey && !(lParam & (1 << 30))) onKey(static_cast<unsigned>(wParam));
            if (wParam == VK_F10) return 0;  // not the menu key here
            break;
        case WM_ENTERSIZEMOVE:
            SetTimer(window, kModalTimer, 15, nullptr);
            break;
        case WM_EXITSIZEMOVE:
            KillTimer(window, kModalTimer);
            break;
        case WM_TIMER:
            if (wParam == kModalTimer && onModalFrame) onModalFrame();
            return 0;
        case WM_DPICHANGED: {
            const auto* suggested = reinterpret_cast<const RECT*>(lParam);
            SetWindowPos(window, nullptr, suggested->left, suggested->top, suggested->right - suggested->left,
                         suggested->bottom - suggested->top, SWP_NOZORDER | SWP_NOACTIVATE);
            return 0;
        }
        default:
            break;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

}  // namespace demo
