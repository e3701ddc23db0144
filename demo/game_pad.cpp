#include "game_pad.h"

#include <zemo/ui.h>

namespace demo {

namespace {

// To ask for a controller that is not there takes Windows long; one place is asked at a time.
constexpr auto kSearchEvery = std::chrono::milliseconds(500);
constexpr LPARAM kWasDown = 1 << 30;

struct Key {
    WPARAM virtualKey;
    int button;
};
constexpr Key kKeys[] = {{VK_UP, kPadUp},
                         {VK_DOWN, kPadDown},
                         {VK_LEFT, kPadLeft},
                         {VK_RIGHT, kPadRight},
                         {VK_RETURN, kPadA},
                         {VK_ESCAPE, kPadB},
                         {VK_DELETE, kPadX},
                         {VK_INSERT, kPadY},
                         {VK_PRIOR, kPadLeftTrigger},
                         {VK_NEXT, kPadRightTrigger}};

template <class Function>
Function xinputFunction(const char* name) {
    // Never freed: the game uses it to its end.
    const HMODULE library = LoadLibraryExW(L"xinput9_1_0.dll", nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
    return library ? reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(library, name))) : nullptr;
}

}  // namespace

GamePad::GamePad(bool keysToo) : hasKeys(keysToo), getState(xinputFunction<GetState>("XInputGetState")) {}

void GamePad::poll() {
    const PadState before = state;
    state = read();
    // For the next page, and for one that asks; an open page hears of a new controller by its first input.
    if (!isStatusTold || state.isConnected != before.isConnected) {
        ZEMO::UI::sendGameControllerStatus(padStatus(isConnected()));
        isStatusTold = true;
    }
    if (!inUse) return;
    const std::string changes = padChanges(before, state);
    if (!changes.empty()) ZEMO::UI::sendGameControllerCustomMsgData(changes);
}

PadState GamePad::read() {
    if (!getState) return {};
    if (!state.isConnected) {
        const auto now = std::chrono::steady_clock::now();
        if (now < nextSearchAt) return {};
        nextSearchAt = now + kSearchEvery;
        slot = (slot + 1) % XUSER_MAX_COUNT;
    }
    XINPUT_STATE read{};
    if (getState(slot, &read) != ERROR_SUCCESS) return {};
    const XINPUT_GAMEPAD& pad = read.Gamepad;
    return {true,         pad.wButtons, pad.bLeftTrigger, pad.bRightTrigger,
            pad.sThumbLX, pad.sThumbLY, pad.sThumbRX,     pad.sThumbRY};
}

bool GamePad::takeMessage(const MSG& message) const {
    if (!hasKeys || !inUse || (message.message != WM_KEYDOWN && message.message != WM_KEYUP)) return false;
    for (const auto& [virtualKey, button] : kKeys) {
        if (message.wParam != virtualKey) continue;
        const bool isPressed = message.message == WM_KEYDOWN;
        // A held direction is repeated by the page.
        if (!isPressed || !(message.lParam & kWasDown)) {
            ZEMO::UI::sendGameControllerCustomMsgData(padButton(button, isPressed));
        }
        return true;
    }
    return false;
}

}  // namespace demo
