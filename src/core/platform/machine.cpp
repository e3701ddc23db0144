#include "core/platform/machine.h"

#include <windows.h>

#include <charconv>

#include "core/platform/text.h"
#include "zemo/platform.h"

namespace ZEMO::Core {

std::string cpuTypeName(uint16_t architecture) {
    switch (architecture) {
        case PROCESSOR_ARCHITECTURE_INTEL:
            return "x86";
        case PROCESSOR_ARCHITECTURE_ARM:
            return "arm";
        case PROCESSOR_ARCHITECTURE_IA64:
            return "Intel Itanium - based";
        case PROCESSOR_ARCHITECTURE_AMD64:
            return "x64";
        case 12:
            return "arm64";  // PROCESSOR_ARCHITECTURE_ARM64, which not every header has
        default:
            return "unknown";
    }
}

double roundedGiB(uint64_t bytes) {
    const float gib = static_cast<float>(bytes) * (1.0f / (1u << 30));
    // To text with two decimals and back. Not by a stream: it follows the game's locale, or switches it for a moment.
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text, gib, std::chars_format::fixed, 2).ptr;
    double rounded = 0;
    std::from_chars(text, end, rounded);
    return rounded;
}

Platform& Platform::operator=(const Platform&) noexcept { return *this; }

Platform& Platform::operator=(Platform&&) noexcept { return *this; }

}  // namespace ZEMO::Core

namespace ZEMO::Platform::Misc {
namespace {

unsigned long long totalPhysicalBytes() {
    MEMORYSTATUSEX status{};
    status.dwLength = sizeof status;
    return GlobalMemoryStatusEx(&status) ? status.ullTotalPhys : 0;
}

}  // namespace

std::string getPlatform() { return "W"; }

std::string getMcc() { return {}; }

std::string getMnc() { return getMcc(); }

std::string getDeviceName() {
    wchar_t name[1024] = {};
    DWORD size = 1024;
    GetComputerNameExW(ComputerNameDnsHostname, name, &size);  // a failure leaves the zeros
    return Core::wideToUtf8(name);
}

std::string getUserName() {
    wchar_t name[257] = {};
    DWORD size = 257;
    GetUserNameW(name, &size);  // a failure leaves the zeros
    return Core::wideToUtf8(name);
}

std::string getCpuType() {
    SYSTEM_INFO info{};
    GetNativeSystemInfo(&info);
    return Core::cpuTypeName(info.wProcessorArchitecture);
}

long long getPhysicallyInstalledSystemMemory() { return static_cast<long long>(totalPhysicalBytes()); }

double getPhysicallyInstalledSystemMemoryGB() { return Core::roundedGiB(totalPhysicalBytes()); }

}  // namespace ZEMO::Platform::Misc
