#pragma once

#include <windows.h>

#include <cstdint>

// Keyboard and mouse state as the engine wants it. Read with GetKeyState, so the answer belongs to the message that the
// calling thread is handling: to be called on the thread of the window.
namespace ZEMO::UI {

// The engine's EVENTFLAG_ values.
inline constexpr uint32_t kEventCapsLockOn = 1;
inline constexpr uint32_t kEventShiftDown = 2;
inline constexpr uint32_t kEventControlDown = 4;
inline constexpr uint32_t kEventAltDown = 8;
inline constexpr uint32_t kEventLeftMouseButton = 16;
inline constexpr uint32_t kEventMiddleMouseButton = 32;
inline constexpr uint32_t kEventRightMouseButton = 64;
inline constexpr uint32_t kEventNumLockOn = 256;
inline constexpr uint32_t kEventIsKeyPad = 512;
inline constexpr uint32_t kEventIsLeft = 1024;
inline constexpr uint32_t kEventIsRight = 2048;
inline constexpr uint32_t kEventAltGrDown = 4096;

bool isKeyDown(int virtualKey);

/// `flags` is the lParam of the key message; its bit 24 tells the extended keys from their twins on the numeric pad.
uint32_t keyboardModifiers(WPARAM virtualKey, LPARAM flags);

/// `keys` are MK_ flags.
uint32_t mouseModifiers(WPARAM keys);

}  // namespace ZEMO::UI
