// A button of the system with another window procedure in front of its own. Order of events: the procedure is replaced
// right after the button was made, on the thread that made it, so that its first paint is ours already; the old one is
// kept before the new one stands, so that no message finds the one without the other. Both are told every message: what
// is done here comes first.
#include "layers/deck/extra_window_button.h"

#include "core/asset_paths.h"
#include "core/unique_handle.h"
#include "layers/deck/extra_window_rules.h"
#include "layers/deck/extra_window_state.h"

namespace ZEMO::UI {
namespace {

constexpr int kBitmapSizePx = 140;

using UniqueBitmap = Core::UniqueHandle<HBITMAP, &DeleteObject>;
using UniqueMemoryDc = Core::UniqueHandle<HDC, &DeleteDC>;

void drawBitmap(HDC target) {
    const UniqueMemoryDc source(CreateCompatibleDC(target));
    const std::wstring path = Core::closeBitmapPath();
    const UniqueBitmap bitmap(
        static_cast<HBITMAP>(LoadImageW(nullptr, path.c_str(), IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE)));
    const HGDIOBJ before = SelectObject(source.get(), bitmap.get());
    StretchBlt(target, 0, 0, kExtraButtonSizePx, kExtraButtonSizePx, source.get(), 0, 0, kBitmapSizePx, kBitmapSizePx,
               SRCCOPY);
    SelectObject(source.get(), before);
}

void paint(HWND button) {
    PAINTSTRUCT painting{};
    drawBitmap(BeginPaint(button, &painting));
    UpdateWindow(button);
    EndPaint(button, &painting);
}

LRESULT CALLBACK buttonProc(HWND button, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_PAINT) paint(button);
    if (message == WM_LBUTTONDOWN) PostMessageW(extraWindowState().extraWindowParent, WM_CLOSE, 0, 0);
    return CallWindowProcW(extraWindowState().extraButtonPreviousProc, button, message, wParam, lParam);
}

void subclassButton(HWND button) {
    extraWindowState().extraButtonPreviousProc = reinterpret_cast<WNDPROC>(GetWindowLongPtrW(button, GWLP_WNDPROC));
    SetWindowLongPtrW(button, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&buttonProc));
}

}  // namespace

HWND createExtraWindowButton(HWND parent, const Rect& place) {
    const HWND button = CreateWindowExW(0, L"BUTTON", L"", WS_CHILD | WS_VISIBLE, place.x, place.y, place.width,
                                        place.height, parent, nullptr, GetModuleHandleW(nullptr), nullptr);
    if (button) subclassButton(button);
    return button;
}

}  // namespace ZEMO::UI
