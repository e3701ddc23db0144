#include "layers/pointer_messages.h"

#include "layers/input_modifiers.h"
#include "layers/window_message.h"
#include "layers/zemo_window.h"

namespace ZEMO::UI {

PointerInfoFunction pointerInfoSource = ::GetPointerInfo;

namespace {

constexpr int kLeft = 0;
constexpr int kRight = 2;

/// A change of the second button, which a left press or release is not.
bool isSecondButtonChange(const WindowMessage& m, const POINTER_INFO& info) {
    return (m.message == WM_POINTERDOWN && info.ButtonChangeType == POINTER_CHANGE_SECONDBUTTON_DOWN) ||
           (m.message == WM_POINTERUP && info.ButtonChangeType == POINTER_CHANGE_SECONDBUTTON_UP);
}

}  // namespace

WPARAM pointerMouseKeys(POINTER_FLAGS flags) {
    WPARAM keys = 0;
    if (flags & POINTER_FLAG_FIRSTBUTTON) keys |= MK_LBUTTON;
    if (flags & POINTER_FLAG_SECONDBUTTON) keys |= MK_RBUTTON;
    if (flags & POINTER_FLAG_THIRDBUTTON) keys |= MK_MBUTTON;
    if (isKeyDown(VK_CONTROL)) keys |= MK_CONTROL;
    if (isKeyDown(VK_SHIFT)) keys |= MK_SHIFT;
    return keys;
}

bool ZEMOWindow::onLayerPointer(const WindowMessage& m) {
    if (steamOverlayActive) return false;
    const bool isDown = m.message == WM_POINTERDOWN;
    const bool consumed = !isDown || frameConsumerActive;
    const uint32_t id = LOWORD(m.wParam);
    POINTER_INFO info{};
    if (!pointerInfoSource(id, &info)) return consumed;
    const POINT at = m.toClient(info.ptPixelLocation);
    const bool isMouse = info.pointerType == PT_MOUSE;

    if (isMouse && m.message == WM_POINTERUPDATE) {
        moveMouse(m, at.x, at.y, pointerMouseKeys(info.pointerFlags));
        return true;
    }
    // A touch or a pen also clicks the button when it moves or lifts over it; a mouse only with its press.
    if ((isDown || !isMouse) && isOnCloseButton(m)) {
        clickCloseButton();
        return true;
    }
    if (!isMouse) {
        onPointer(m.message, id, at.x, at.y);
        return consumed;
    }
    if (isSecondButtonChange(m, info)) return true;
    onMouseButton(kLeft, !isDown, at.x, at.y);
    return consumed;
}

ZEMOWindow::OwnResult ZEMOWindow::onOwnPointer(const WindowMessage& m) {
    const bool isDown = m.message == WM_POINTERDOWN;
    const uint32_t id = LOWORD(m.wParam);
    POINTER_INFO info{};
    if (!pointerInfoSource(id, &info)) return 0;
    const POINT at = m.toClient(info.ptPixelLocation);
    const bool isMouse = info.pointerType == PT_MOUSE;

    if (isMouse && m.message == WM_POINTERUPDATE) {
        moveMouse(m, at.x, at.y, pointerMouseKeys(info.pointerFlags));
    } else if ((isDown || !isMouse) && isOnCloseButton(m)) {
        if (isMouse) SetWindowLongPtrW(m.hwnd, GWLP_USERDATA, 0);
        clickCloseButton();
    } else if (!isMouse) {
        onPointer(m.message, id, at.x, at.y);
    } else {
        onMouseButton(isSecondButtonChange(m, info) ? kRight : kLeft, !isDown, at.x, at.y);
    }
    return 0;
}

}  // namespace ZEMO::UI
