#pragma once

#include <windows.h>

#include <cstdint>

#include "include/cef_browser.h"

// Keyboard and mouse state as the engine wants it. Read with GetKeyState, so the answer belongs to the message that the
// calling thread is handling: to be called on the thread of the window.
namespace ZEMO::UI {

inline constexpr uint32_t kEventCapsLockOn = EVENTFLAG_CAPS_LOCK_ON;
inline constexpr uint32_t kEventShiftDown = EVENTFLAG_SHIFT_DOWN;
inline constexpr uint32_t kEventControlDown = EVENTFLAG_CONTROL_DOWN;
inline constexpr uint32_t kEventAltDown = EVENTFLAG_ALT_DOWN;
inline constexpr uint32_t kEventLeftMouseButton = EVENTFLAG_LEFT_MOUSE_BUTTON;
inline constexpr uint32_t kEventMiddleMouseButton = EVENTFLAG_MIDDLE_MOUSE_BUTTON;
inline constexpr uint32_t kEventRightMouseButton = EVENTFLAG_RIGHT_MOUSE_BUTTON;
inline constexpr uint32_t kEventNumLockOn = EVENTFLAG_NUM_LOCK_ON;
inline constexpr uint32_t kEventIsKeyPad = EVENTFLAG_IS_KEY_PAD;
inline constexpr uint32_t kEventIsLeft = EVENTFLAG_IS_LEFT;
inline constexpr uint32_t kEventIsRight = EVENTFLAG_IS_RIGHT;
inline constexpr uint32_t kEventAltGrDown = EVENTFLAG_ALTGR_DOWN;

bool isKeyDown(int virtualKey);

/// `flags` is the lParam of the key message; its bit 24 tells the extended keys from their twins on the numeric pad.
uint32_t keyboardModifiers(WPARAM virtualKey, LPARAM flags);

/// `keys` are MK_ flags.
uint32_t mouseModifiers(WPARAM keys);

}  // namespace ZEMO::UI
