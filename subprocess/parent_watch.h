#pragma once

namespace ZEMO::Subprocess {

/// Ends this process, by itself and at once, when the process that started it has gone, also when it went before this
/// call. Call it first of all: what comes later (loading the engine, its start, its end) may take as long as it likes
/// and may hang. Main thread. Where the system does not tell who started it, nothing is watched.
void endWithParent();

}  // namespace ZEMO::Subprocess
