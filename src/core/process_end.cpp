#include "core/process_end.h"

#include <windows.h>

#include <atomic>

#include "core/system_function.h"

namespace ZEMO::Core {
namespace {

std::atomic<bool> endMarked = false;

}  // namespace

bool isShutdownInProgress() {
    static const auto shutdownInProgress = ntdllFunction<BOOLEAN WINAPI()>("RtlDllShutdownInProgress");
    return shutdownInProgress && shutdownInProgress();
}

bool isProcessEnding() { return endMarked || isShutdownInProgress(); }

void markProcessEnding() { endMarked = true; }

// The process's own list, which the program's runtime runs: a plain atexit of a library goes to the library's list,
// which is run when the loader unloads it, far too late.
bool callAtExit(void(__cdecl* hook)()) {
    const auto atExit = systemFunction<int __cdecl(void(__cdecl*)())>(GetModuleHandleW(L"ucrtbase.dll"), "_crt_atexit");
    return atExit && atExit(hook) == 0;
}

}  // namespace ZEMO::Core
