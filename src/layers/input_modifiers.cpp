#include "layers/input_modifiers.h"

namespace ZEMO::UI {

namespace {

bool isToggled(int virtualKey) { return (GetKeyState(virtualKey) & 1) != 0; }

uint32_t lockModifiers() {
    return (isToggled(VK_NUMLOCK) ? kEventNumLockOn : 0) | (isToggled(VK_CAPITAL) ? kEventCapsLockOn : 0);
}

uint32_t sideOf(int leftKey, int rightKey) {
    if (isKeyDown(leftKey)) return kEventIsLeft;
    return isKeyDown(rightKey) ? kEventIsRight : 0;
}

uint32_t keyPlace(WPARAM virtualKey, bool extended) {
    switch (virtualKey) {
        case VK_RETURN:
            return extended ? kEventIsKeyPad : 0;
        case VK_SHIFT:
            return sideOf(VK_LSHIFT, VK_RSHIFT);
        case VK_CONTROL:
            return sideOf(VK_LCONTROL, VK_RCONTROL);
        case VK_MENU:
            return sideOf(VK_LMENU, VK_RMENU);
        case VK_LWIN:
            return kEventIsLeft;
        case VK_RWIN:
            return kEventIsRight;
        case VK_INSERT:
        case VK_DELETE:
            return extended ? 0 : kEventIsKeyPad;
        case VK_CLEAR:
        case VK_NUMLOCK:
            return kEventIsKeyPad;
        case VK_SEPARATOR:
            return 0;
        default:
            break;
    }
    if (virtualKey >= VK_PRIOR && virtualKey <= VK_DOWN) return extended ? 0 : kEventIsKeyPad;
    return virtualKey >= VK_NUMPAD0 && virtualKey <= VK_DIVIDE ? kEventIsKeyPad : 0;
}

}  // namespace

bool isKeyDown(int virtualKey) { return GetKeyState(virtualKey) < 0; }

uint32_t keyboardModifiers(WPARAM virtualKey, LPARAM flags) {
    uint32_t modifiers = lockModifiers();
    if (isKeyDown(VK_SHIFT)) modifiers |= kEventShiftDown;
    if (isKeyDown(VK_CONTROL)) modifiers |= kEventControlDown;
    if (isKeyDown(VK_MENU)) modifiers |= kEventAltDown;
    const bool extended = (flags & (LPARAM{1} << 24)) != 0;
    return modifiers | keyPlace(virtualKey, extended);
}

uint32_t mouseModifiers(WPARAM keys) {
    uint32_t modifiers = lockModifiers();
    if (keys & MK_SHIFT) modifiers |= kEventShiftDown;
    if (keys & MK_CONTROL) modifiers |= kEventControlDown;
    if (isKeyDown(VK_MENU)) modifiers |= kEventAltDown;
    if (keys & MK_LBUTTON) modifiers |= kEventLeftMouseButton;
    if (keys & MK_MBUTTON) modifiers |= kEventMiddleMouseButton;
    if (keys & MK_RBUTTON) modifiers |= kEventRightMouseButton;
    return modifiers;
}

}  // namespace ZEMO::UI
