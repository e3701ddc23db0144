#include "support/process_usage.h"

#include <tlhelp32.h>
#include <winternl.h>

#include <cstdint>
#include <string>

namespace ZEMO::Test {
namespace {

using QueryObject = NTSTATUS NTAPI(HANDLE, OBJECT_INFORMATION_CLASS, void*, ULONG, ULONG*);

std::wstring typeOf(HANDLE handle) {
    static auto* const query = reinterpret_cast<QueryObject*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQueryObject")));
    alignas(UNICODE_STRING) BYTE answer[1024] = {};
    if (query(handle, ObjectTypeInformation, answer, sizeof answer, nullptr)) return {};
    const auto& name = reinterpret_cast<const UNICODE_STRING&>(answer);
    return {name.Buffer, name.Length / sizeof(wchar_t)};
}

void countHandles(ProcessUsage& now) {
    for (uintptr_t value = 4; value < 0x10000; value += 4) {
        const auto handle = reinterpret_cast<HANDLE>(value);
        DWORD flags = 0;
        if (!GetHandleInformation(handle, &flags)) continue;
        const std::wstring type = typeOf(handle);
        ++(type == L"Key" ? now.keys : type == L"Section" ? now.sections : now.handles);
    }
}

void countThreads(ProcessUsage& now) {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
    THREADENTRY32 entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Thread32First(snapshot, &entry); more; more = Thread32Next(snapshot, &entry)) {
        now.threads += entry.th32OwnerProcessID == GetCurrentProcessId();
    }
    CloseHandle(snapshot);
}

void sumMemory(ProcessUsage& now) {
    MEMORY_BASIC_INFORMATION region{};
    for (const char* at = nullptr; VirtualQuery(at, &region, sizeof region) != 0;) {
        if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE) now.bytes += region.RegionSize;
        at = static_cast<const char*>(region.BaseAddress) + region.RegionSize;
    }
}

// A handle is its place in the system's table with the upper half that the entry there has.
void countGdiObjects(ProcessUsage& now) {
    struct Entry {
        uint64_t object;
        uint32_t owner;
        uint16_t upperHalf;
        uint16_t type;
        uint64_t user;
    };
    constexpr size_t kTableInPeb = 0xF8;
    const auto* peb = reinterpret_cast<const char*>(NtCurrentTeb()->ProcessEnvironmentBlock);
    const auto* table = *reinterpret_cast<const Entry* const*>(peb + kTableInPeb);
    for (size_t i = 0; i < 0x10000; ++i) {
        const uintptr_t handle = i | static_cast<uintptr_t>(table[i].upperHalf) << 16;
        if (!table[i].object) continue;
        const DWORD type = GetObjectType(reinterpret_cast<HGDIOBJ>(handle));
        now.gdi += type != 0;
        now.deviceContexts += type == OBJ_DC;
    }
}

BOOL CALLBACK countWindow(HWND window, LPARAM usage) {
    DWORD process = 0;
    GetWindowThreadProcessId(window, &process);
    reinterpret_cast<ProcessUsage*>(usage)->windows += process == GetCurrentProcessId();
    return TRUE;
}

BOOL CALLBACK countWithChildren(HWND window, LPARAM usage) {
    EnumChildWindows(window, &countWindow, usage);
    return countWindow(window, usage);
}

}  // namespace

ProcessUsage processUsage() {
    ProcessUsage now;
    countHandles(now);
    countThreads(now);
    sumMemory(now);
    countGdiObjects(now);
    EnumWindows(&countWithChildren, reinterpret_cast<LPARAM>(&now));
    return now;
}

}  // namespace ZEMO::Test
