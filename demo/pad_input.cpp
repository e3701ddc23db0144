#include "pad_input.h"

#include <cmath>
#include <cstdio>

namespace demo {

namespace {

struct Button {
    std::uint16_t bit;  // XInput's
    int number;         // the page's
};
constexpr Button kButtons[] = {{0x1000, kPadA},  {0x2000, kPadB},    {0x4000, kPadX},    {0x8000, kPadY},
                               {0x0100, 4},      {0x0200, 5},        {0x0020, 8},        {0x0010, 9},
                               {0x0001, kPadUp}, {0x0002, kPadDown}, {0x0004, kPadLeft}, {0x0008, kPadRight},
                               {0x0040, 10},     {0x0080, 11}};
constexpr int kTriggerOn = 30;  // of 255, as XInput advises
constexpr double kLeftDeadZone = 7849, kRightDeadZone = 8689, kFullTilt = 32767;

void append(std::string& list, const std::string& item) { list += (list.empty() ? "" : ",") + item; }

/// One direction of a stick in hundredths, 0 inside the dead zone.
int hundredths(int value, double deadZone) {
    const double beyond = std::fmax(std::abs(value) - deadZone, 0) / (kFullTilt - deadZone);
    return static_cast<int>(std::lround(std::copysign(std::fmin(beyond, 1) * 100, value)));
}

/// Pages count down as positive.
std::string axes(const PadState& pad) {
    char text[80];
    std::snprintf(text, sizeof text, R"({"axes":[%.2f,%.2f,%.2f,%.2f]})", hundredths(pad.leftX, kLeftDeadZone) / 100.0,
                  -hundredths(pad.leftY, kLeftDeadZone) / 100.0, hundredths(pad.rightX, kRightDeadZone) / 100.0,
                  -hundredths(pad.rightY, kRightDeadZone) / 100.0);
    return text;
}

void appendTrigger(std::string& list, int button, int before, int now) {
    const bool isPressed = now > kTriggerOn;
    if (isPressed != (before > kTriggerOn)) append(list, padButton(button, isPressed));
}

}  // namespace

std::string padStatus(bool isConnected) {
    return std::string(R"({"isConnected":)") + (isConnected ? "true" : "false") +
           R"(,"primaryBtn":"0","secondaryBtn":"1","secondaryBtnText":""})";
}

std::string padButton(int button, bool isPressed) {
    return R"({"button":)" + std::to_string(button) + R"(,"pressed":)" + (isPressed ? "true}" : "false}");
}

std::string padChanges(const PadState& before, const PadState& now) {
    std::string list;
    for (const auto& [bit, number] : kButtons) {
        if ((before.buttons ^ now.buttons) & bit) append(list, padButton(number, (now.buttons & bit) != 0));
    }
    appendTrigger(list, kPadLeftTrigger, before.leftTrigger, now.leftTrigger);
    appendTrigger(list, kPadRightTrigger, before.rightTrigger, now.rightTrigger);
    if (axes(before) != axes(now)) append(list, axes(now));
    return list.empty() ? list : "[" + list + "]";
}

}  // namespace demo
