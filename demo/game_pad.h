#pragma once

#include "pad_input.h"

#include <windows.h>

#include <xinput.h>

#include <chrono>

namespace demo {

/// The game's controller on its way to a page. Pages that are made for a controller don't read it themselves: the game
/// tells them its state before they open and each change while they use it. Game thread only.
///
/// While a page is shown the library switches XInput off, so that the game behind it sees a controller at rest. For the
/// page the controller is therefore read by xinput9_1_0, the one version without that switch.
class GamePad {
public:
    /// `hasKeys`: the keyboard stands in for a controller.
    explicit GamePad(bool keysToo);

    /// Once per frame: reads the controller and tells the page what has changed.
    void poll();
    /// True: the message was a button of the stand-in. Neither page nor game may see it as a key as well.
    bool takeMessage(const MSG& message) const;

    /// The page in front began, or ended, to use the controller.
    void setInUse(bool isUsed) { inUse = isUsed; }
    bool isInUse() const { return inUse; }
    bool isConnected() const { return hasKeys || state.isConnected; }
    bool isKeyboard() const { return hasKeys; }

private:
    PadState read();

    using GetState = DWORD(WINAPI*)(DWORD, XINPUT_STATE*);

    const bool hasKeys;
    const GetState getState;  // null without XInput
    bool isStatusTold = false;
    bool inUse = false;
    DWORD slot = 0;
    PadState state;
    std::chrono::steady_clock::time_point nextSearchAt{};
};

}  // namespace demo
