#include "engine_bench/library_threads.h"

#include <tlhelp32.h>
#include <winternl.h>

#include <algorithm>
#include <filesystem>

namespace ZEMO::Bench {
namespace {

/// ThreadQuerySetWin32StartAddress, which the compiler's headers do not have.
constexpr auto kStartAddress = static_cast<THREADINFOCLASS>(9);

std::vector<DWORD> ownThreads() {
    std::vector<DWORD> found;
    const Core::UniqueFileHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Thread32First(snapshot.get(), &entry); more; more = Thread32Next(snapshot.get(), &entry)) {
        if (entry.th32OwnerProcessID == GetCurrentProcessId()) found.push_back(entry.th32ThreadID);
    }
    return found;
}

bool beganInThisProgram(HANDLE thread) {
    const void* start = nullptr;
    if (NtQueryInformationThread(thread, kStartAddress, &start, sizeof start, nullptr) != 0) return false;
    HMODULE module = nullptr;
    if (!GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                            static_cast<const wchar_t*>(start), &module)) {
        return false;
    }
    if (module == GetModuleHandleW(nullptr)) return true;
    wchar_t path[1024];
    const DWORD length = GetModuleFileNameW(module, path, 1024);
    const std::filesystem::path name = std::filesystem::path(std::wstring(path, length)).filename();
    return _wcsicmp(name.c_str(), L"ucrtbase.dll") == 0;
}

CpuTime sum(const FILETIME& kernel, const FILETIME& user) {
    const auto ticks = [](const FILETIME& time) {  // of 100 nanoseconds
        return static_cast<double>((uint64_t{time.dwHighDateTime} << 32) | time.dwLowDateTime);
    };
    return CpuTime((ticks(kernel) + ticks(user)) / 10'000);
}

CpuTime usedBy(HANDLE thread) {
    FILETIME made{}, ended{}, kernel{}, user{};
    GetThreadTimes(thread, &made, &ended, &kernel, &user);
    return sum(kernel, user);
}

}  // namespace

LibraryThreads::LibraryThreads() : before(ownThreads()) {}

void LibraryThreads::find() {
    for (const DWORD id : ownThreads()) {
        if (std::find(before.begin(), before.end(), id) != before.end()) continue;
        Core::UniqueKernelHandle thread(OpenThread(THREAD_QUERY_INFORMATION, FALSE, id));
        if (thread && beganInThisProgram(thread.get())) threads.push_back(std::move(thread));
    }
}

CpuTime LibraryThreads::used() const {
    CpuTime all{};
    for (const Core::UniqueKernelHandle& thread : threads) all += usedBy(thread.get());
    return all;
}

CpuTime usedByProcess() {
    FILETIME made{}, ended{}, kernel{}, user{};
    GetProcessTimes(GetCurrentProcess(), &made, &ended, &kernel, &user);
    return sum(kernel, user);
}

CpuTime threadTimeStep() {
    CpuTime least{1e9};
    CpuTime last = usedBy(GetCurrentThread());
    for (int steps = 0; steps < 5;) {
        const CpuTime now = usedBy(GetCurrentThread());
        if (now <= last) continue;
        if (steps > 0) least = std::min(least, now - last);  // the first one began somewhere inside a step
        last = now;
        ++steps;
    }
    return least;
}

}  // namespace ZEMO::Bench
