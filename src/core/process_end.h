#pragma once

namespace ZEMO::Core {

/// True once the process is ending: the system has taken all other threads away, or the engine is being stopped for the
/// exit. Nothing may wait for a thread, a task or a lock of the library from then on, or call the engine. Any thread.
bool isProcessEnding();

/// Says so before the system does. Any thread.
void markProcessEnding();

/// True once the system has taken all other threads away. Any thread.
bool isShutdownInProgress();

/// Has `hook` called when the program calls exit or returns from main, before any thread is taken away and after the
/// static objects that are constructed later have gone. Not at an ExitProcess, and not in a program whose C runtime is
/// its own. This module must be pinned. False when there is no such runtime.
bool callAtExit(void(__cdecl* hook)());

}  // namespace ZEMO::Core
