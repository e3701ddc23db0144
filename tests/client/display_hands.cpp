#include "client/display_hands.h"

#include <windows.h>

#include "core/unique_handle.h"

namespace ZEMO::Test {

bool runOnDisplay(const std::string& commandLine) {
    const std::string program = "Z:\\usr\\bin\\" + commandLine.substr(0, commandLine.find(' '));
    std::string command = "\"" + program + "\"" + commandLine.substr(commandLine.find(' '));
    STARTUPINFOA startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION made{};
    if (!CreateProcessA(program.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &made))
        return false;
    const Core::UniqueKernelHandle process(made.hProcess);
    const Core::UniqueKernelHandle thread(made.hThread);
    return true;  // a program that is none of Wine's has no end here to wait for: its effect is the proof
}

}  // namespace ZEMO::Test
