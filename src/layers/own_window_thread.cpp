// The own window's life. Order of events:
//
// 1. The constructor starts the thread and waits. The thread makes the window, centres and shows it, and stores the
//    layer's address as the window's user data: from here on the class procedure looks for the layer. Only then is the
//    promise fulfilled and the message loop entered. A failure on the way travels through the promise. The window's
//    owner may belong to the waiting thread, and showing the window sends that owner messages: the wait serves them.
// 2. The layer is still being constructed then, on the other thread. Messages take the default way until
//    ZEMOWindow::create attaches the complete object to the link.
// 3. For each message the class procedure takes a strong reference from the link, so that a layer whose last owner goes
//    on another thread at this very moment lives until the message is done, and its destructor runs here. No lock is
//    held during the message, and no reference while the system's default procedure runs: that one may stay in a modal
//    loop for as long as the user drags the frame.
// 4. The layer's destructor clears the user data. The window stays on the screen; its messages take the default way.
// 5. With the window the loop ends, and with it the thread, whether a layer is left or not.
#include <process.h>

#include <cerrno>
#include <future>
#include <system_error>

#include "core/log.h"
#include "core/module_pin.h"
#include "core/posted_text.h"
#include "core/sent_messages.h"
#include "core/unique_handle.h"
#include "layers/deck/extra_window.h"
#include "layers/window_messages.h"
#include "layers/window_thread_calls.h"
#include "layers/zemo_window.h"
#include "render/display_scale.h"
#include "render/pixel_scale.h"

namespace ZEMO::UI {

namespace {

constexpr wchar_t kOwnWindowClass[] = L"ZEMOExtraWindowClass";

/// The link of the one own window of this thread. Its loop holds the reference.
thread_local OwnWindowLink* threadLink = nullptr;

// The second window of a process finds the class there. Nothing is loaded for it: a shared icon can't be freed.
void registerOwnWindowClass(WNDPROC procedure) {
    WNDCLASSEXW known{};
    known.cbSize = sizeof known;
    if (GetClassInfoExW(GetModuleHandleW(nullptr), kOwnWindowClass, &known)) return;
    const auto icon = static_cast<HICON>(LoadImageW(nullptr, L"resources/zemowindow.ico", IMAGE_ICON, 0, 0,
                                                    LR_LOADFROMFILE | LR_DEFAULTSIZE | LR_SHARED));
    WNDCLASSEXW description{};
    description.cbSize = sizeof description;
    description.style = CS_DBLCLKS;
    description.lpfnWndProc = procedure;
    description.hInstance = GetModuleHandleW(nullptr);
    description.hIcon = icon;
    description.hIconSm = icon;
    description.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    description.hbrBackground = reinterpret_cast<HBRUSH>(1);
    description.lpszClassName = kOwnWindowClass;
    RegisterClassExW(&description);
}

void makeClassBackgroundBlack(HWND window) {
    const HBRUSH black = CreateSolidBrush(RGB(0, 0, 0));
    const ULONG_PTR before =
        SetClassLongPtrW(window, GCLP_HBRBACKGROUND, static_cast<LONG_PTR>(reinterpret_cast<ULONG_PTR>(black)));
    // A system colour is a small number; anything else is the brush of the window before.
    if (before > COLOR_MENUBAR + 1) DeleteObject(reinterpret_cast<HGDIOBJ>(before));
}

void centreOnPrimaryScreen(HWND window) {
    RECT frame{};
    GetWindowRect(window, &frame);
    const int x = (GetSystemMetrics(SM_CXSCREEN) - (frame.right - frame.left)) / 2;
    const int y = (GetSystemMetrics(SM_CYSCREEN) - (frame.bottom - frame.top)) / 2;
    SetWindowPos(window, nullptr, x, y, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
}

}  // namespace

struct ZEMOWindow::OwnThreadStart {
    ZEMOWindow* layer;
    std::shared_ptr<OwnWindowLink> link;
    std::promise<void> built;
    HANDLE builtEvent;  ///< the waiting constructor's; set after the promise
};

void ZEMOWindow::createOwnWindow() {
    ownWindow = std::make_shared<OwnWindowLink>();
    const Core::UniqueKernelHandle builtEvent(CreateEventW(nullptr, TRUE, FALSE, nullptr));
    auto start = std::make_unique<OwnThreadStart>(OwnThreadStart{this, ownWindow, {}, builtEvent.get()});
    std::future<void> built = start->built.get_future();
    Core::pinOwnModule();  // the window may stay on the screen when nobody needs the library any more
    const uintptr_t thread = _beginthreadex(nullptr, 0, ownWindowThread, start.get(), 0, nullptr);
    if (!thread) throw std::system_error(errno, std::generic_category(), "window thread");
    start.release();  // the thread's now
    CloseHandle(reinterpret_cast<HANDLE>(thread));
    Core::waitServingSentMessages(builtEvent.get(), INFINITE);
    built.get();
}

unsigned __stdcall ZEMOWindow::ownWindowThread(void* argument) {
    std::unique_ptr<OwnThreadStart> start(static_cast<OwnThreadStart*>(argument));
    const std::shared_ptr<OwnWindowLink> link = start->link;
    threadLink = link.get();
    ZEMOWindow& layer = *start->layer;
    const HANDLE builtEvent = start->builtEvent;
    try {
        layer.buildOwnWindow();
    } catch (...) {
        link->clearUserData();
        DestroyWindow(layer.window);
        start->built.set_exception(std::current_exception());
        SetEvent(builtEvent);
        return 0;
    }
    const bool hasWindow = layer.window != nullptr;
    start->built.set_value();
    start.reset();
    SetEvent(builtEvent);  // the layer is its owner's from here on: no look at it but through the link
    if (!hasWindow) return 0;

    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    return 0;
}

void ZEMOWindow::buildOwnWindow() {
    const float scale = getWindowScale(window);
    const int widthPx = logicalToDevice(width, scale);
    const int heightPx = logicalToDevice(height, scale);
    registerOwnWindowClass(ownClassProc);
    std::wstring wideTitle;
    for (const char byte : title) wideTitle.push_back(static_cast<unsigned char>(byte));
    window = CreateWindowExW(0, kOwnWindowClass, wideTitle.c_str(), WS_OVERLAPPEDWINDOW, CW_USEDEFAULT, CW_USEDEFAULT,
                             widthPx, heightPx, parentWindow, nullptr, GetModuleHandleW(nullptr), nullptr);
    ownWindow->windowCreated(window);
    if (steamDeck && window) {
        makeClassBackgroundBlack(window);
        createViewChild();
    }
    centreOnPrimaryScreen(window);
    ShowWindow(window, SW_SHOWNORMAL);
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    Core::logDebugA("create window style: WindowStyle::Window\n");
    customCursor = customCursorLoader.load();
}

void ZEMOWindow::createViewChild() {
    RECT client{};
    GetClientRect(window, &client);
    auto child = std::make_shared<ZEMOExtraWindowForSteamdeck>(window, client.right, client.bottom);
    // The engine goes on with the window itself where the view could not be made.
    if (const HWND view = child->getViewWindow()) setViewChild(std::move(child), view);
}

LRESULT CALLBACK ZEMOWindow::ownClassProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (runWindowThreadCalls(hwnd, message)) return 0;
    OwnWindowLink* const link = threadLink;
    if (link && GetWindowLongPtrW(hwnd, GWLP_USERDATA)) {
        if (const std::shared_ptr<ZEMOWindow> layer = link->lockLayer()) {
            if (const OwnResult answer = layer->windowProc(hwnd, message, wParam, lParam)) return *answer;
        }
    }
    // Nobody is there to take the text any more, or a text of this kind is not for own windows.
    if (message == kMessageExternalScript || message == kMessageExternalText) Core::dropPostedText(lParam);
    if (link && message == WM_NCDESTROY) {
        link->windowDestroyed(hwnd);
        PostQuitMessage(0);
    }
    return DefWindowProcW(hwnd, message, wParam, lParam);
}

}  // namespace ZEMO::UI
