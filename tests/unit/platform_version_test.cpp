#include <gtest/gtest.h>
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

#include "support/far_file.h"
#include "support/helper_process.h"
#include "support/import_replaced.h"
#include "support/made_up_machine.h"
#include "zemo/platform.h"

namespace {

using namespace ZEMO::Test;
using ZEMO::Platform::Misc::getAppVersion;
using ZEMO::Platform::Misc::getOsVersion;

constexpr wchar_t kKey[] = LR"(SOFTWARE\Microsoft\Windows NT\CurrentVersion)";
constexpr wchar_t kMajor[] = L"CurrentMajorVersionNumber";

DWORD machineNumber(const wchar_t* name) {
    DWORD value = 0, size = sizeof value;
    RegGetValueW(HKEY_LOCAL_MACHINE, kKey, name, RRF_RT_REG_DWORD, nullptr, &value, &size);
    return value;
}

// The kernel's own numbers: another source than the one under test.
std::string trueVersion(DWORD revision) {
    using Numbers = void WINAPI(DWORD*, DWORD*, DWORD*);
    auto* numbers = reinterpret_cast<Numbers*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "RtlGetNtVersionNumbers")));
    DWORD major = 0, minor = 0, build = 0;
    numbers(&major, &minor, &build);
    char text[64];
    std::snprintf(text, sizeof text, "%lu.%lu.%lu.%lu", major, minor, build & 0xFFFF, revision);
    return text;
}

// The loaded module's version resource, read from memory instead of by the version functions.
std::string kernelVersion() {
    const HMODULE kernel = GetModuleHandleW(L"kernel32.dll");
    const HRSRC found = FindResourceW(kernel, MAKEINTRESOURCEW(1), MAKEINTRESOURCEW(16));  // RT_VERSION
    const HGLOBAL loaded = found ? LoadResource(kernel, found) : nullptr;
    const auto* data = static_cast<const unsigned char*>(loaded ? LockResource(loaded) : nullptr);
    if (!data) return {};
    for (DWORD i = 0; i + sizeof(VS_FIXEDFILEINFO) <= SizeofResource(kernel, found); i += 4) {
        const auto* info = reinterpret_cast<const VS_FIXEDFILEINFO*>(data + i);
        if (info->dwSignature != 0xFEEF04BD) continue;
        char text[64];
        std::snprintf(text, sizeof text, "%u.%u.%u.%u", HIWORD(info->dwFileVersionMS), LOWORD(info->dwFileVersionMS),
                      HIWORD(info->dwFileVersionLS), LOWORD(info->dwFileVersionLS));
        return text;
    }
    return {};
}

TEST(PlatformOsVersion, ThisMachine_IsTheKernelsVersionWithTheRegistrysRevision) {
    ASSERT_GE(machineNumber(kMajor), 10u);
    EXPECT_EQ(getOsVersion(), trueVersion(machineNumber(L"UBR")));
}

TEST(PlatformOsVersion, MajorIsTenOrMore_RevisionFromRegistry) {
    for (const DWORD major : {10u, 11u, 0xFFFFFFFFu}) {
        MadeUpMachine machine;
        machine.setNumber(kKey, kMajor, major);
        machine.setNumber(kKey, L"UBR", 4294967295u);
        machine.stand();
        EXPECT_EQ(getOsVersion(), trueVersion(4294967295u)) << major;
    }
}

TEST(PlatformOsVersion, NoRevision_IsZero) {
    MadeUpMachine machine;
    machine.setNumber(kKey, kMajor, 10);
    machine.stand();
    EXPECT_EQ(getOsVersion(), trueVersion(0));
}

TEST(PlatformOsVersion, RevisionOfAnotherType_IsZero) {
    MadeUpMachine machine;
    machine.setNumber(kKey, kMajor, 10);
    machine.setText(kKey, L"UBR", L"7");
    machine.stand();
    EXPECT_EQ(getOsVersion(), trueVersion(0));
}

TEST(PlatformOsVersion, NoUsableMajor_FileVersionOfKernel) {
    ASSERT_NE(kernelVersion(), "");
    {
        MadeUpMachine machine;  // no key
        machine.stand();
        EXPECT_EQ(getOsVersion(), kernelVersion());
    }
    {
        MadeUpMachine machine;  // no value
        machine.addKey(kKey);
        machine.stand();
        EXPECT_EQ(getOsVersion(), kernelVersion());
    }
    {
        MadeUpMachine machine;  // too small
        machine.setNumber(kKey, kMajor, 9);
        machine.stand();
        EXPECT_EQ(getOsVersion(), kernelVersion());
    }
    {
        MadeUpMachine machine;  // no number, though its bytes would make one above ten
        machine.setText(kKey, kMajor, L"9");
        machine.stand();
        EXPECT_EQ(getOsVersion(), kernelVersion());
    }
}

// Every system since Windows 2000 has the function: this program's look-ups by name are answered without it.
decltype(&::GetProcAddress) realLookUp = nullptr;
FARPROC WINAPI withoutTrueVersion(HMODULE module, const char* name) {
    if (std::strcmp(name, "RtlGetVersion") == 0) return SetLastError(ERROR_PROC_NOT_FOUND), nullptr;
    return realLookUp(module, name);
}

TEST(PlatformOsVersion, SystemHasNoTrueVersion_FileVersionOfKernel) {
    MadeUpMachine machine;
    machine.setNumber(kKey, kMajor, 10);
    machine.setNumber(kKey, L"UBR", 7);
    machine.stand();
    ASSERT_NE(kernelVersion(), trueVersion(7));
    const ImportReplaced missing("GetProcAddress", &withoutTrueVersion);
    realLookUp = missing.original<decltype(realLookUp)>();
    EXPECT_EQ(getOsVersion(), kernelVersion());
}

TEST(PlatformAppVersion, ExecutableWithResource_ItsProductVersion) {
    const auto lines = runHelper(helperPath(L"platform_probe.exe"), {L"call=getAppVersion"});
    EXPECT_EQ(lines, (std::vector<std::string>{"getAppVersion value 65535.7.40000.12", "done"}));
}

TEST(PlatformAppVersion, ExecutableWithoutResource_Empty) {
    const auto lines = runHelper(helperPath(L"platform_probe_plain.exe"), {L"call=getAppVersion"});
    EXPECT_EQ(lines, (std::vector<std::string>{"getAppVersion value ", "done"}));
}

TEST(PlatformAppVersion, ExecutableInKoreanFolder_ItsProductVersion) {
    wchar_t temporary[MAX_PATH] = {};
    ASSERT_GT(GetTempPathW(MAX_PATH, temporary), 0u);
    const std::wstring folder = std::wstring(temporary) + L"버전 " + std::to_wstring(GetCurrentProcessId());
    const std::wstring copy = folder + L"\\프로그램.exe";
    ASSERT_TRUE(CreateDirectoryW(folder.c_str(), nullptr));
    ASSERT_TRUE(CopyFileW(helperPath(L"platform_probe.exe").c_str(), copy.c_str(), TRUE));
    EXPECT_EQ(runHelper(copy, {L"call=getAppVersion"}).front(), "getAppVersion value 65535.7.40000.12");
    for (int i = 0; i < 100 && !DeleteFileW(copy.c_str()); ++i) Sleep(20);  // its file may close a moment after its end
    EXPECT_TRUE(RemoveDirectoryW(folder.c_str()));
}

// A program of a path too long for the room of 1024 characters can't be started here: this program's import of the
// call that names it is replaced. The file is a real one.
std::wstring longPath;
DWORD WINAPI namedLong(HMODULE module, wchar_t* path, DWORD size) {
    if (module || size == 0) return 0;
    const bool fits = longPath.size() < size;
    const size_t count = fits ? longPath.size() : size - 1;
    longPath.copy(path, count);
    path[count] = L'\0';
    if (!fits) SetLastError(ERROR_INSUFFICIENT_BUFFER);
    return fits ? static_cast<DWORD>(count) : size;
}

TEST(PlatformAppVersion, PathFillsTheRoom_ItsProductVersionAndWithOneMoreEmpty) {
    for (const size_t length : {300u, 1023u, 1024u}) {
        const FarFile program(helperPath(L"platform_probe.exe"), L"program.exe", length);
        longPath = program.path();
        const ImportReplaced named("GetModuleFileNameW", &namedLong);
        EXPECT_EQ(getAppVersion(), length < 1024 ? "65535.7.40000.12" : "") << length;
    }
}

}  // namespace
