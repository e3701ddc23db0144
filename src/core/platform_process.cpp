#include <windows.h>

#include <tlhelp32.h>

#include <cwchar>

#include "core/platform_text.h"
#include "zemo/platform.h"

namespace ZEMO::Platform::Misc {

long getProcessorID(const std::string& processName) {
    const std::wstring name = Core::utf8ToWide(processName);
    struct Snapshot {
        HANDLE handle = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
        ~Snapshot() {
            if (handle != INVALID_HANDLE_VALUE) CloseHandle(handle);
        }
    } const snapshot;
    if (snapshot.handle == INVALID_HANDLE_VALUE) return 0;
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32FirstW(snapshot.handle, &entry); more; more = Process32NextW(snapshot.handle, &entry)) {
        if (_wcsicmp(entry.szExeFile, name.c_str()) == 0) return static_cast<long>(entry.th32ProcessID);
    }
    return 0;
}

}  // namespace ZEMO::Platform::Misc
