#include "core/platform_registry.h"

#include "core/platform_text.h"
#include "zemo/platform.h"

namespace ZEMO::Core {

MachineKey::MachineKey(const wchar_t* path) {
    HKEY opened = nullptr;
    if (RegOpenKeyExW(HKEY_LOCAL_MACHINE, path, 0, KEY_READ, &opened) == ERROR_SUCCESS) key.reset(opened);
}

std::optional<std::wstring> MachineKey::text(const wchar_t* name) const {
    if (!key) return {};
    std::wstring buffer(128, L'\0');
    for (;;) {
        DWORD bytes = static_cast<DWORD>(buffer.size() * sizeof(wchar_t));
        const LSTATUS status = RegGetValueW(key.get(), nullptr, name, RRF_RT_REG_SZ, nullptr, buffer.data(), &bytes);
        if (status == ERROR_MORE_DATA) {  // also when it grew between two looks
            buffer.resize(buffer.size() * 2 + bytes / sizeof(wchar_t));
            continue;
        }
        if (status != ERROR_SUCCESS) return {};
        return std::wstring(buffer.c_str());
    }
}

std::optional<DWORD> MachineKey::number(const wchar_t* name) const {
    DWORD value = 0;
    DWORD bytes = sizeof value;
    if (!key || RegGetValueW(key.get(), nullptr, name, RRF_RT_REG_DWORD, nullptr, &value, &bytes) != ERROR_SUCCESS) {
        return {};
    }
    return value;
}

}  // namespace ZEMO::Core

namespace ZEMO::Platform::Misc {

std::string getCPUModel() {
    const Core::MachineKey key(LR"(HARDWARE\DESCRIPTION\System\CentralProcessor\0)");
    if (!key.isOpen()) return "unknown cpu";
    return Core::wideToUtf8(key.text(L"ProcessorNameString").value_or(L""));
}

}  // namespace ZEMO::Platform::Misc
