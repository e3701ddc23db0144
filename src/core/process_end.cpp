#include "core/process_end.h"

#include <windows.h>

#include <atomic>

namespace ZEMO::Core {
namespace {

std::atomic<bool> endMarked = false;

}  // namespace

bool isShutdownInProgress() {
    using ShutdownInProgress = BOOLEAN(WINAPI*)();
    static const auto shutdownInProgress = reinterpret_cast<ShutdownInProgress>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlDllShutdownInProgress")));
    return shutdownInProgress && shutdownInProgress();
}

bool isProcessEnding() { return endMarked || isShutdownInProgress(); }

void markProcessEnding() { endMarked = true; }

// The process's own list, which the program's runtime runs: a plain atexit of a library goes to the library's list,
// which is run when the loader unloads it, far too late.
bool callAtExit(void(__cdecl* hook)()) {
    using AtExit = int(__cdecl*)(void(__cdecl*)());
    const HMODULE runtime = GetModuleHandleW(L"ucrtbase.dll");
    const auto atExit =
        reinterpret_cast<AtExit>(reinterpret_cast<void*>(runtime ? GetProcAddress(runtime, "_crt_atexit") : nullptr));
    return atExit && atExit(hook) == 0;
}

}  // namespace ZEMO::Core
