#pragma once

#include <cstdint>
#include <string>

namespace demo {

/// A controller as XInput reads it: its bits for the buttons, triggers 0 to 255, sticks -32768 to 32767, up positive.
struct PadState {
    bool isConnected = false;
    std::uint16_t buttons = 0;
    int leftTrigger = 0;
    int rightTrigger = 0;
    int leftX = 0;
    int leftY = 0;
    int rightX = 0;
    int rightY = 0;
    friend bool operator==(const PadState&, const PadState&) = default;
};

// Buttons as pages count them: the standard layout.
inline constexpr int kPadA = 0, kPadB = 1, kPadX = 2, kPadY = 3, kPadLeftTrigger = 6, kPadRightTrigger = 7;
inline constexpr int kPadUp = 12, kPadDown = 13, kPadLeft = 14, kPadRight = 15;

/// What sendGameControllerStatus wants.
std::string padStatus(bool isConnected);

/// One button's press or release, for sendGameControllerCustomMsgData.
std::string padButton(int button, bool isPressed);

/// All that differs between two states, as one list; empty when a page need not hear of it. Sticks count from outside
/// their dead zone and in hundredths, so that a resting stick says nothing.
std::string padChanges(const PadState& before, const PadState& now);

}  // namespace demo
