#include "window/ime_window.h"

#include <iostream>

namespace ZEMO::Test {
namespace {

using namespace std::chrono_literals;

constexpr wchar_t kClass[] = L"TestImeWindow";
constexpr auto kPatience = 20s;
constexpr POINT kFarAway{-7777, -7777};

/// The window's input context for a call.
template <class Use>
void withContext(HWND window, Use use) {
    if (const HIMC context = ImmGetContext(window)) {
        use(context);
        ImmReleaseContext(window, context);
    }
}

}  // namespace

ImeWindow::ImeWindow() {
    WNDCLASSW description{};
    description.lpfnWndProc = &ImeWindow::procedure;
    description.hInstance = GetModuleHandleW(nullptr);
    description.lpszClassName = kClass;
    RegisterClassW(&description);
    window = CreateWindowExW(WS_EX_TOPMOST, kClass, L"ime", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 60, 60, 400, 300, nullptr,
                             nullptr, description.hInstance, nullptr);
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    SetForegroundWindow(window);
    SetFocus(window);
}

ImeWindow::~ImeWindow() {
    SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    if (IsWindow(window)) DestroyWindow(window);
    UnregisterClassW(kClass, GetModuleHandleW(nullptr));
}

LRESULT CALLBACK ImeWindow::procedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    auto* self = reinterpret_cast<ImeWindow*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
    if (self && self->take && self->take(message, wParam, lParam)) return 0;
    return DefWindowProcW(hwnd, message, wParam, lParam);
}

bool ImeWindow::waitFor(const char* what, const std::function<bool()>& done) {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!done()) {
        if (std::chrono::steady_clock::now() > end) {
            std::cerr << "gave up waiting for " << what << std::endl;
            return false;
        }
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
        dispatchWaiting();
    }
    return true;
}

void ImeWindow::dispatchWaiting() {
    for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

bool ImeWindow::waitForFocus() {
    return waitFor("the focus", [&] { return GetForegroundWindow() == window && GetFocus() == window; });
}

CANDIDATEFORM ImeWindow::candidate() const {
    CANDIDATEFORM form{};
    withContext(window, [&](HIMC context) { ImmGetCandidateWindow(context, 0, &form); });
    return form;
}

COMPOSITIONFORM ImeWindow::composition() const {
    COMPOSITIONFORM form{};
    withContext(window, [&](HIMC context) { ImmGetCompositionWindow(context, &form); });
    return form;
}

void ImeWindow::forgetPlaces() const {
    CANDIDATEFORM candidateForm{0, CFS_CANDIDATEPOS, kFarAway, {}};
    COMPOSITIONFORM compositionForm{CFS_POINT, kFarAway, {}};
    withContext(window, [&](HIMC context) {
        ImmSetCandidateWindow(context, &candidateForm);
        ImmSetCompositionWindow(context, &compositionForm);
    });
}

bool ImeWindow::hasContext() const {
    bool has = false;
    withContext(window, [&](HIMC) { has = true; });
    return has;
}

}  // namespace ZEMO::Test
