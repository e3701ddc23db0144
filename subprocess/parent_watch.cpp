#include "parent_watch.h"

#include <windows.h>

#include <winternl.h>

// The engine's own way is a broken pipe, which a child notices only where it reads from it: not while it loads the
// engine, and not when its threads are busy or stuck. A game that is killed while a child starts would leave that one
// behind for long, with the library's files open.
//
// The children of the engine all have the game as their parent: none of them starts processes.
namespace ZEMO::Subprocess {
namespace {

/// Exit code of a child whose game has gone; nobody is left to read it.
constexpr UINT kParentGoneExitCode = 0xE1;

// PROCESS_BASIC_INFORMATION, whose last member some headers leave unnamed.
struct BasicInformation {
    ULONG_PTR exitStatus, environmentBlock, affinity, priority, id, parentId;
};
static_assert(sizeof(BasicInformation) == sizeof(PROCESS_BASIC_INFORMATION));

/// 0 when the system does not tell.
DWORD parentId() {
    using Query = decltype(&NtQueryInformationProcess);
    const auto query = reinterpret_cast<Query>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQueryInformationProcess")));
    BasicInformation basic{};
    if (!query || query(GetCurrentProcess(), ProcessBasicInformation, &basic, sizeof basic, nullptr) < 0) return 0;
    return static_cast<DWORD>(basic.parentId);
}

/// False when the times can't be read: then nothing speaks against the process.
bool startedAfter(HANDLE process, HANDLE other) {
    FILETIME created{};
    FILETIME otherCreated{};
    FILETIME unused{};
    return GetProcessTimes(process, &created, &unused, &unused, &unused) &&
           GetProcessTimes(other, &otherCreated, &unused, &unused, &unused) &&
           CompareFileTime(&created, &otherCreated) > 0;
}

[[noreturn]] void endNow() {
    TerminateProcess(GetCurrentProcess(), kParentGoneExitCode);
    for (;;) Sleep(INFINITE);
}

DWORD WINAPI waitForParent(void* parent) {
    WaitForSingleObject(parent, INFINITE);
    endNow();
}

}  // namespace

void endWithParent() {
    const DWORD id = parentId();
    if (!id) return;
    const HANDLE parent = OpenProcess(SYNCHRONIZE | PROCESS_QUERY_LIMITED_INFORMATION, FALSE, id);
    if (!parent) {
        if (GetLastError() == ERROR_INVALID_PARAMETER) endNow();  // no such process: it has gone already
        return;
    }
    // A number is used again once its process has gone; whoever has it now is then younger than this process.
    if (startedAfter(parent, GetCurrentProcess())) endNow();
    // The thread, and with it the handle, stays to the end.
    const HANDLE thread = CreateThread(nullptr, 0, &waitForParent, parent, 0, nullptr);
    if (thread) CloseHandle(thread);
}

}  // namespace ZEMO::Subprocess
