#pragma once

#include <windows.h>

namespace ZEMO::Core::Wine {

/// Where `module` keeps the address of a function that it imports by `name` from whatever library; null when it does
/// not. Any thread.
void** findImport(HMODULE module, const char* name);

/// Has the module whose import `place` is call `function` from now on. Its threads may run. False, with nothing
/// changed, when the place can't be written.
bool replaceImport(void** place, void* function);

}  // namespace ZEMO::Core::Wine
