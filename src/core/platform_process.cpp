#include <windows.h>

#include <tlhelp32.h>

#include <cwchar>

#include "core/platform_text.h"
#include "core/unique_handle.h"
#include "zemo/platform.h"

namespace ZEMO::Platform::Misc {

long getProcessorID(const std::string& processName) {
    const std::wstring name = Core::utf8ToWide(processName);
    const Core::UniqueFileHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    if (!snapshot) return 0;
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32FirstW(snapshot.get(), &entry); more; more = Process32NextW(snapshot.get(), &entry)) {
        if (_wcsicmp(entry.szExeFile, name.c_str()) == 0) return static_cast<long>(entry.th32ProcessID);
    }
    return 0;
}

}  // namespace ZEMO::Platform::Misc
