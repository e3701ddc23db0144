#pragma once

#include <windows.h>

#include <atomic>
#include <cassert>

namespace ZEMO::UI {

/// The engine's thread, 0 before its start. Written once by that thread.
inline std::atomic<DWORD> engineThreadId{0};

/// False only when an engine runs and this is another thread. Callbacks of the engine assert it in their first line:
/// their fields are used by that thread alone.
inline bool isOnEngineThread() {
    const DWORD engine = engineThreadId.load(std::memory_order_relaxed);
    return engine == 0 || engine == GetCurrentThreadId();
}

}  // namespace ZEMO::UI
