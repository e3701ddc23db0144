#pragma once

#include <windows.h>

#include <string>

namespace ZEMO::Test {

/// The address of the one function `name` of namespace ZEMO::UI in a library's export table, by the beginning of its
/// symbol in either compiler's mangling; null when there is none or more than one.
inline void* exportedUiFunction(HMODULE library, const std::string& name) {
    const std::string gcc = "_ZN4ZEMO2UI" + std::to_string(name.size()) + name;
    const std::string msvc = "?" + name + "@UI@ZEMO@@";
    const auto* base = reinterpret_cast<const BYTE*>(library);
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& place = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
    const auto* table = reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(base + place.VirtualAddress);
    const auto* names = reinterpret_cast<const DWORD*>(base + table->AddressOfNames);
    const char* found = nullptr;
    for (DWORD i = 0; i < table->NumberOfNames; ++i) {
        const std::string symbol = reinterpret_cast<const char*>(base + names[i]);
        if (!symbol.starts_with(gcc) && !symbol.starts_with(msvc)) continue;
        if (found) return nullptr;
        found = reinterpret_cast<const char*>(base + names[i]);
    }
    return found ? reinterpret_cast<void*>(GetProcAddress(library, found)) : nullptr;
}

}  // namespace ZEMO::Test
