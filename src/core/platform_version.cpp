#include <windows.h>

#include <cstdio>
#include <optional>
#include <string>
#include <vector>

#include "core/platform_registry.h"
#include "core/system_function.h"
#include "zemo/platform.h"

// Version numbers of the system and of the process's executable.
namespace ZEMO::Platform::Misc {
namespace {

constexpr wchar_t kCurrentVersionKey[] = LR"(SOFTWARE\Microsoft\Windows NT\CurrentVersion)";

std::string dotted(DWORD a, DWORD b, DWORD c, DWORD d) {
    char text[64];
    std::snprintf(text, sizeof text, "%lu.%lu.%lu.%lu", a, b, c, d);
    return text;
}

std::string dottedHalves(DWORD high, DWORD low) { return dotted(HIWORD(high), LOWORD(high), HIWORD(low), LOWORD(low)); }

std::optional<VS_FIXEDFILEINFO> rootBlock(const std::vector<char>& resource) {
    void* block = nullptr;
    UINT size = 0;
    if (!VerQueryValueW(resource.data(), L"\\", &block, &size) || !block || size < sizeof(VS_FIXEDFILEINFO)) return {};
    return *static_cast<const VS_FIXEDFILEINFO*>(block);
}

// GetVersionEx answers by the manifest of the game's executable; this one answers with the truth.
std::string trueSystemVersion() {
    const auto getVersion = Core::ntdllFunction<LONG WINAPI(OSVERSIONINFOW*)>("RtlGetVersion");
    if (!getVersion) return {};
    static_assert(sizeof(OSVERSIONINFOW) == 276);
    OSVERSIONINFOW version{};
    version.dwOSVersionInfoSize = sizeof version;
    getVersion(&version);
    const Core::MachineKey key(kCurrentVersionKey);
    if (!key.isOpen()) return {};
    return dotted(version.dwMajorVersion, version.dwMinorVersion, version.dwBuildNumber,
                  key.number(L"UBR").value_or(0));
}

std::string kernelFileVersion() {
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeExW(FILE_VER_GET_NEUTRAL, L"kernel32.dll", &ignored);
    if (size == 0) return {};
    std::vector<char> resource(size);
    if (!GetFileVersionInfoExW(FILE_VER_GET_NEUTRAL, L"kernel32.dll", 0, size, resource.data())) return {};
    const auto info = rootBlock(resource);
    return info ? dottedHalves(info->dwFileVersionMS, info->dwFileVersionLS) : std::string();
}

}  // namespace

std::string getOsVersion() {
    std::string version;
    if (Core::MachineKey(kCurrentVersionKey).number(L"CurrentMajorVersionNumber").value_or(0) >= 10) {
        version = trueSystemVersion();
    }
    return version.empty() ? kernelFileVersion() : version;
}

std::string getAppVersion() {
    wchar_t path[1024] = {};
    const DWORD length = GetModuleFileNameW(nullptr, path, 1024);
    if (length == 0 || length >= 1024) return {};
    DWORD ignored = 0;
    const DWORD size = GetFileVersionInfoSizeW(path, &ignored);
    if (size == 0) return {};
    std::vector<char> resource(size);
    if (!GetFileVersionInfoW(path, 0, size, resource.data())) return {};
    const auto info = rootBlock(resource);
    return info ? dottedHalves(info->dwProductVersionMS, info->dwProductVersionLS) : std::string();
}

}  // namespace ZEMO::Platform::Misc
