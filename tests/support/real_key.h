#pragma once

#include <windows.h>

namespace ZEMO::Test {

/// A key of the display's keyboard, pressed or released.
inline void sendRealKey(WORD virtualKey, DWORD flags) {
    INPUT input{};
    input.type = INPUT_KEYBOARD;
    input.ki.wVk = virtualKey;
    input.ki.wScan = static_cast<WORD>(MapVirtualKeyW(virtualKey, MAPVK_VK_TO_VSC));
    input.ki.dwFlags = flags;
    SendInput(1, &input, sizeof input);
}

}  // namespace ZEMO::Test
