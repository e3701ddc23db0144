#include "core/process_end.h"

#include <windows.h>

namespace ZEMO::Core {

bool isProcessEnding() {
    using ShutdownInProgress = BOOLEAN(WINAPI*)();
    static const auto shutdownInProgress = reinterpret_cast<ShutdownInProgress>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlDllShutdownInProgress")));
    return shutdownInProgress && shutdownInProgress();
}

}  // namespace ZEMO::Core
