#include "engine/engine_files.h"

#include <windows.h>

namespace ZEMO::UI {

std::vector<std::wstring> findMissingEngineFiles(const std::wstring& basePath) {
    // en-US.pak: the engine falls back to it from every locale text that names no pak, and dies without it.
    static constexpr const wchar_t* kRequired[] = {
        L"libcef.dll",
        L"chrome_elf.dll",
        L"icudtl.dat",
        L"v8_context_snapshot.bin",
        L"cefsubprocess\\locales\\en-US.pak",
    };
    std::vector<std::wstring> missing;
    for (const wchar_t* name : kRequired) {
        const DWORD attributes = GetFileAttributesW((basePath + L"\\" + name).c_str());
        if (attributes == INVALID_FILE_ATTRIBUTES || (attributes & FILE_ATTRIBUTE_DIRECTORY))
            missing.emplace_back(name);
    }
    return missing;
}

}  // namespace ZEMO::UI
