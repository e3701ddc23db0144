#include "engine/client/input/page_input.h"

#include <utility>

#include "layers/input_modifiers.h"
#include "layers/window_events.h"
#include "render/pixel_scale.h"

namespace ZEMO::UI {
namespace {

constexpr int kSingleClick = 1;
constexpr int kTouchRadiusPx = 5;

/// Both bits of a scan's shift state: the layout makes this character with Ctrl and Alt, which is AltGr.
constexpr int kControlAndAlt = 0x600;

cef_key_event_type_t keyEventType(UINT message) {
    switch (message) {
        case WM_KEYDOWN:
        case WM_SYSKEYDOWN:
            return KEYEVENT_RAWKEYDOWN;
        case WM_KEYUP:
        case WM_SYSKEYUP:
            return KEYEVENT_KEYUP;
        default:
            return KEYEVENT_CHAR;
    }
}

cef_mouse_button_type_t buttonType(int button) {
    return button == kLeftButton ? MBT_LEFT : button == kMiddleButton ? MBT_MIDDLE : MBT_RIGHT;
}

cef_touch_event_type_t touchEventType(UINT pointerMessage) {
    switch (pointerMessage) {
        case WM_POINTERUP:
            return CEF_TET_RELEASED;
        case WM_POINTERUPDATE:
            return CEF_TET_MOVED;
        default:
            return CEF_TET_PRESSED;
    }
}

// AltGr arrives as Ctrl and Alt: a page would take the character for a command.
bool isMadeWithAltGr(WPARAM character) {
    if (!isKeyDown(VK_RMENU)) return false;
    const SHORT scan = VkKeyScanExW(static_cast<WCHAR>(character), GetKeyboardLayout(0));
    return (scan & kControlAndAlt) == kControlAndAlt;
}

uint32_t asAltGr(uint32_t modifiers) { return (modifiers & ~(kEventControlDown | kEventAltDown)) | kEventAltGrDown; }

}  // namespace

PageInput::PageInput(HWND viewWindow, float dpiScale, CancelComposition cancel)
    : window(viewWindow), scale(dpiScale), cancelComposition(std::move(cancel)) {}

CefMouseEvent PageInput::mouseEventAt(int x, int y, uint32_t modifiers) const {
    Point point{x, y};
    deviceToLogicalPoint(point, scale);
    CefMouseEvent event;
    event.x = point.x;
    event.y = point.y;
    event.modifiers = modifiers;
    return event;
}

void PageInput::sendMouseClick(const CefRefPtr<CefBrowser>& browser, int button, bool mouseUp, int x, int y) {
    if (!browser) return;
    if (!mouseUp) cancelComposition(browser);
    setLastTouchEvent({});
    // No modifiers, and always a single click: a page sees two of them for a double click.
    browser->GetHost()->SendMouseClickEvent(mouseEventAt(x, y, 0), buttonType(button), mouseUp, kSingleClick);
}

void PageInput::sendMouseMove(const CefRefPtr<CefBrowser>& browser, int x, int y, uint32_t modifiers) {
    if (browser) browser->GetHost()->SendMouseMoveEvent(mouseEventAt(x, y, modifiers), false);
}

bool PageInput::toClient(POINT& point) const {
    const HWND front = GetForegroundWindow();
    if (!front || (front != window && front != GetParent(window))) return false;
    return ScreenToClient(window, &point) != FALSE;
}

void PageInput::sendMouseWheel(const CefRefPtr<CefBrowser>& browser, WPARAM wParam, int x, int y, bool horizontal,
                               bool clientCoordinates) {
    POINT point{x, y};
    if (!browser || (!clientCoordinates && !toClient(point))) return;
    const int delta = static_cast<SHORT>(HIWORD(wParam));
    const bool sideways = horizontal || isKeyDown(VK_SHIFT);
    browser->GetHost()->SendMouseWheelEvent(mouseEventAt(point.x, point.y, 0), sideways ? delta : 0,
                                            sideways ? 0 : delta);
}

void PageInput::sendKey(const CefRefPtr<CefBrowser>& browser, UINT message, WPARAM wParam, LPARAM lParam) {
    if (!browser) return;
    CefKeyEvent event;
    event.windows_key_code = static_cast<int>(wParam);
    event.native_key_code = static_cast<int>(lParam);
    event.is_system_key = message >= WM_SYSKEYDOWN && message <= WM_SYSCHAR;
    event.type = keyEventType(message);
    event.modifiers = keyboardModifiers(wParam, lParam);
    if (event.type == KEYEVENT_CHAR && isMadeWithAltGr(wParam)) event.modifiers = asAltGr(event.modifiers);
    browser->GetHost()->SendKeyEvent(event);
}

void PageInput::sendTouch(const CefRefPtr<CefBrowser>& browser, uint32_t id, int x, int y, UINT pointerMessage) {
    const auto [logicalX, logicalY] = deviceToLogicalPair(x, y, scale);
    const auto [radiusX, radiusY] = deviceToLogicalPair(kTouchRadiusPx, kTouchRadiusPx, scale);
    CefTouchEvent event;
    event.id = static_cast<int>(id);
    event.x = static_cast<float>(logicalX);
    event.y = static_cast<float>(logicalY);
    event.radius_x = static_cast<float>(radiusX);
    event.radius_y = static_cast<float>(radiusY);
    event.pressure = 1.0f;
    event.pointer_type = CEF_POINTER_TYPE_TOUCH;
    event.type = touchEventType(pointerMessage);
    setLastTouchEvent(event);
    if (event.type == CEF_TET_PRESSED) cancelComposition(browser);
    browser->GetHost()->SendTouchEvent(event);
}

CefTouchEvent PageInput::getLastTouchEvent() const {
    const std::lock_guard lock(lastTouchMutex);
    return lastTouchEvent;
}

void PageInput::setLastTouchEvent(const CefTouchEvent& event) {
    const std::lock_guard lock(lastTouchMutex);
    lastTouchEvent = event;
}

}  // namespace ZEMO::UI
