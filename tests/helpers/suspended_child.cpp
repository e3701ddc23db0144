// Starts itself once more, suspended, in the way that it is told, says the number of that process and sleeps until it
// is ended, a minute at most.
//   suspended_child.exe tied|plain attributes|none
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <vector>

#include "core/wine/child_processes.h"

int main(int argc, char** argv) {
    if (argc < 3) return 2;
    if (std::strcmp(argv[1], "tied") == 0 && !ZEMO::Core::Wine::tieChildProcesses(GetModuleHandleW(nullptr))) return 3;
    wchar_t line[] = L"suspended_child child child";
    wchar_t own[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, own, MAX_PATH);
    STARTUPINFOEXW start{};
    start.StartupInfo.cb = sizeof start.StartupInfo;
    DWORD flags = CREATE_SUSPENDED;
    std::vector<unsigned char> memory(1024);
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    HANDLE event = CreateEventW(&inherited, TRUE, FALSE, nullptr);
    const bool attributes = std::strcmp(argv[2], "attributes") == 0;
    if (attributes) {
        SIZE_T size = memory.size();
        start.lpAttributeList = reinterpret_cast<LPPROC_THREAD_ATTRIBUTE_LIST>(memory.data());
        start.StartupInfo.cb = sizeof start;
        flags |= EXTENDED_STARTUPINFO_PRESENT;
        if (!InitializeProcThreadAttributeList(start.lpAttributeList, 1, 0, &size) ||
            !UpdateProcThreadAttribute(start.lpAttributeList, 0, PROC_THREAD_ATTRIBUTE_HANDLE_LIST, &event,
                                       sizeof event, nullptr, nullptr)) {
            return 4;
        }
    }
    PROCESS_INFORMATION child{};
    if (!CreateProcessW(own, line, nullptr, nullptr, TRUE, flags, nullptr, nullptr, &start.StartupInfo, &child)) {
        return 5;
    }
    // What the caller's own attribute asked for still holds: the child has the event.
    HANDLE copy = nullptr;
    const BOOL has =
        DuplicateHandle(child.hProcess, event, GetCurrentProcess(), &copy, 0, FALSE, DUPLICATE_SAME_ACCESS);
    std::printf("%lu %s\n", child.dwProcessId, has ? "inherits" : "inherits nothing");
    std::fflush(stdout);
    Sleep(60'000);
    return 0;
}
