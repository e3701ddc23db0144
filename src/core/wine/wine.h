#pragma once

#include <windows.h>

#include <mutex>

// Wine only. What is done here changes the loader's lists and another module's imports; on Windows there is no reason
// for it, and a game's anti-cheat may watch both.
namespace ZEMO::Core::Wine {

/// True when the process runs under Wine. Asks the system once. Any thread.
bool isRunningUnderWine();

/// Guards `engine` (libcef.dll, loaded and not yet initialised, never unloaded) against what Wine does otherwise than
/// Windows: see loader_order.h, handle_moves.h, child_processes.h, pipe_writes.h and stack_profiler.h. Logs what could
/// not be done; the engine starts all the same. On Windows it does nothing. Once, engine thread; this module must be
/// pinned.
void guardEngine(HMODULE engine);

/// The same for the engine of one of its child processes, which needs pipe_writes.h only. False when it could not be
/// done. On Windows it does nothing. Once, before the engine runs.
bool guardChildsEngine(HMODULE engine);

/// Stands around AssocQueryStringW: under Wine the keys that the shell opens for it are closed once (see
/// association_keys.h), and one thread asks at a time. On Windows it does nothing. Any thread, not within another.
class AssociationQuery {
public:
    AssociationQuery();
    ~AssociationQuery();
    AssociationQuery(const AssociationQuery&) = delete;
    AssociationQuery& operator=(const AssociationQuery&) = delete;

private:
    std::unique_lock<std::mutex> turn;
};

/// Keeps `engine` from hearing that the process ends. On Windows it does nothing. Only in this module's entry point, at
/// that end.
void skipEngineDetach(HMODULE engine);

}  // namespace ZEMO::Core::Wine
