#pragma once

#include <windows.h>

// What the loader tells the modules of this process at its end. It calls them in the reverse order of their loading,
// when every thread but one is already gone.
//
// What Wine does: a module that then waits for a lock of such a thread waits for ever. The engine's allocator does so
// at its thread-local clean-up. Windows ends a process that would wait there, so nothing is needed on it.
//
// How it was proven: one of a hundred games that called ExitProcess with both cores busy stayed behind, its last thread
// in that lock below libcef's entry point. A test replaces that entry point by an endless loop and ends in time.
//
// How to see that it may go: without wine.h's skipEngineDetach, a thousand such ends on a busy machine leave nobody.
//
// Both functions change nothing, and answer false, where the loader's lists are not as they are known.
namespace ZEMO::Core::Wine {

/// Lets this module hear of the process's end before every module that is loaded now. This module must be pinned. Any
/// thread.
bool detachOwnModuleFirst();

/// Keeps `module` from being called any more as the process ends. Only in this module's own entry point, at that end.
bool skipDetach(HMODULE module);

}  // namespace ZEMO::Core::Wine
