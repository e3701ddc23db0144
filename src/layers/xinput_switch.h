#pragma once

#include <windows.h>

namespace ZEMO::UI {

using XInputEnableFunction = void(WINAPI*)(BOOL enable);

/// The system's XInputEnable, found by name at the first use; null where no version of XInput that has it is installed.
XInputEnableFunction systemXInputEnable();

/// While XInput is off, the process reads a neutral controller. Any thread.
void setXInputEnabled(bool enabled);

}  // namespace ZEMO::UI
