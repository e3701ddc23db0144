#pragma once

namespace ZEMO::Core {

/// True once the process is ending and the system has taken all other threads away: nothing may wait for a thread, a
/// task or a lock from then on. Any thread.
bool isProcessEnding();

}  // namespace ZEMO::Core
