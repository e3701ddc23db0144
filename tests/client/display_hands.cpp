#include "client/display_hands.h"

#include <windows.h>

namespace ZEMO::Test {

bool runOnDisplay(const std::string& commandLine) {
    const std::string program = "Z:\\usr\\bin\\" + commandLine.substr(0, commandLine.find(' '));
    std::string command = "\"" + program + "\"" + commandLine.substr(commandLine.find(' '));
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION made{};
    if (!CreateProcessA(program.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &made))
        return false;
    // Wine says nothing of a program that is none of its own: what stands in `made` is by chance, also a number that
    // another thread has a handle by. There is nothing to close, and no end to wait for: its effect is the proof.
    return true;
}

}  // namespace ZEMO::Test
