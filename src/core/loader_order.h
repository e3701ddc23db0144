#pragma once

#include <windows.h>

// What the loader tells the modules of this process at its end. The loader calls them in the reverse order of their
// loading, when every thread but one is already gone, and a module that then waits for a lock of such a thread waits
// for ever. Both functions change nothing, and answer false, where the loader's lists are not as they are known.
namespace ZEMO::Core {

/// Lets this module hear of the process's end before every module that is loaded now. This module must be pinned. Any
/// thread.
bool detachOwnModuleFirst();

/// Keeps `module` from being called any more as the process ends. Only in this module's own entry point, at that end.
bool skipDetach(HMODULE module);

}  // namespace ZEMO::Core
