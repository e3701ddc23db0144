#include "layers/messages/pointer_messages.h"

#include "layers/input_modifiers.h"
#include "layers/messages/layer_style.h"
#include "layers/messages/own_style.h"

namespace ZEMO::UI {

PointerInfoFunction pointerInfoSource = ::GetPointerInfo;

namespace {

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

bool ZEMOWindow::LayerStyle::pointer(ZEMOWindow& layer, LRESULT*, const WindowMessage& m) {
    if (layer.steamOverlayActive) return false;
    const bool isDown = m.message == WM_POINTERDOWN;
    const bool consumed = !isDown || layer.frameConsumerActive;
    const uint32_t id = LOWORD(m.wParam);
    POINTER_INFO info{};
    if (!pointerInfoSource(id, &info)) return consumed;
    const POINT at = m.toClient(info.ptPixelLocation);
    const bool isMouse = info.pointerType == PT_MOUSE;

    if (isMouse && m.message == WM_POINTERUPDATE) {
        layer.moveMouse(m, at.x, at.y, pointerMouseKeys(info.pointerFlags));
        return true;
    }
    // A touch or a pen also clicks the button when it moves or lifts over it; a mouse only with its press.
    if ((isDown || !isMouse) && layer.isOnCloseButton(m)) {
        layer.clickCloseButton();
        return true;
    }
    if (!isMouse) {
        layer.onPointer(m.message, id, at.x, at.y);
        return consumed;
    }
    if (isSecondButtonChange(m, info)) return true;
    layer.onMouseButton(kLeftButton, !isDown, at.x, at.y);
    return consumed;
}

ZEMOWindow::OwnResult ZEMOWindow::OwnStyle::pointer(ZEMOWindow& layer, const WindowMessage& m) {
    const bool isDown = m.message == WM_POINTERDOWN;
    const uint32_t id = LOWORD(m.wParam);
    POINTER_INFO info{};
    if (!pointerInfoSource(id, &info)) return 0;
    const POINT at = m.toClient(info.ptPixelLocation);
    const bool isMouse = info.pointerType == PT_MOUSE;

    if (isMouse && m.message == WM_POINTERUPDATE) {
        layer.moveMouse(m, at.x, at.y, pointerMouseKeys(info.pointerFlags));
    } else if ((isDown || !isMouse) && layer.isOnCloseButton(m)) {
        if (isMouse) SetWindowLongPtrW(m.hwnd, GWLP_USERDATA, 0);
        layer.clickCloseButton();
    } else if (!isMouse) {
        layer.onPointer(m.message, id, at.x, at.y);
    } else {
        layer.onMouseButton(isSecondButtonChange(m, info) ? kRightButton : kLeftButton, !isDown, at.x, at.y);
    }
    return 0;
}

}  // namespace ZEMO::UI
