#pragma once

#include <string>

namespace ZEMO::Test {

/// Runs one of the ground's own programs ("xdotool key a") on the display that this process's windows are on. False
/// when it does not start. It is the display's own side: what it does comes to the windows as a user's input does, in
/// its own time.
bool runOnDisplay(const std::string& commandLine);

}  // namespace ZEMO::Test
