#include <gtest/gtest.h>
#include <winsock2.h>

#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <locale>
#include <string>
#include <vector>

#include "core/platform/machine.h"
#include "core/platform/text.h"
#include "support/import_replaced.h"
#include "zemo/platform.h"

namespace {

using namespace ZEMO::Platform::Misc;

TEST(PlatformConstants, AskedTwice_AlwaysTheSame) {
    for (int i = 0; i < 2; ++i) {
        EXPECT_EQ(getPlatform(), "W");
        EXPECT_EQ(getMcc(), "");
        EXPECT_EQ(getMnc(), "");
    }
}

TEST(PlatformDeviceName, ComparedWithSocketLibrary_SameHostName) {
    WSADATA data{};
    ASSERT_EQ(WSAStartup(MAKEWORD(2, 2), &data), 0);
    char name[256] = {};
    const int failed = gethostname(name, sizeof name);
    WSACleanup();
    ASSERT_EQ(failed, 0);
    ASSERT_STRNE(name, "");
    EXPECT_EQ(getDeviceName(), name);
}

TEST(PlatformUserName, ComparedWithProcessToken_SameAccount) {
    HANDLE token = nullptr;
    ASSERT_TRUE(OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token));
    std::vector<char> user(1024);
    DWORD size = 0;
    const BOOL known = GetTokenInformation(token, TokenUser, user.data(), static_cast<DWORD>(user.size()), &size);
    CloseHandle(token);
    ASSERT_TRUE(known);
    wchar_t name[257] = {}, domain[257] = {};
    DWORD nameSize = 257, domainSize = 257;
    SID_NAME_USE use{};
    ASSERT_TRUE(LookupAccountSidW(nullptr, reinterpret_cast<TOKEN_USER*>(user.data())->User.Sid, name, &nameSize,
                                  domain, &domainSize, &use));
    ASSERT_STRNE(name, L"");
    EXPECT_EQ(getUserName(), ZEMO::Core::wideToUtf8(name));
}

// Neither call can be made to fail here: this program's imports of them are replaced.
struct NameAsked {
    int kind = -1;
    DWORD size = 0;
    bool isZeroed = false;
};
NameAsked nameAsked;

bool allZero(const wchar_t* text, DWORD size) {
    return std::all_of(text, text + size, [](wchar_t c) { return c == 0; });
}

BOOL WINAPI noComputerName(COMPUTER_NAME_FORMAT kind, wchar_t* name, DWORD* size) {
    nameAsked = {kind, *size, *size == 1024 && allZero(name, *size)};
    *size = 2000;
    return SetLastError(ERROR_MORE_DATA), FALSE;
}
BOOL WINAPI noUserName(wchar_t* name, DWORD* size) {
    nameAsked = {0, *size, *size == 257 && allZero(name, *size)};
    *size = 300;
    return SetLastError(ERROR_INSUFFICIENT_BUFFER), FALSE;
}

TEST(PlatformDeviceName, SystemRefuses_Empty) {
    const ZEMO::Test::ImportReplaced failing("GetComputerNameExW", &noComputerName);
    EXPECT_EQ(getDeviceName(), "");
    EXPECT_EQ(nameAsked.kind, ComputerNameDnsHostname);
    EXPECT_EQ(nameAsked.size, 1024u);
    EXPECT_TRUE(nameAsked.isZeroed);
}

TEST(PlatformUserName, SystemRefuses_Empty) {
    const ZEMO::Test::ImportReplaced failing("GetUserNameW", &noUserName);
    EXPECT_EQ(getUserName(), "");
    EXPECT_EQ(nameAsked.size, 257u);
    EXPECT_TRUE(nameAsked.isZeroed);
}

TEST(PlatformCpuType, EachArchitecture_HasItsName) {
    const struct {
        unsigned architecture;
        const char* name;
    } kRows[] = {{0, "x86"},         {5, "arm"},      {6, "Intel Itanium - based"},
                 {9, "x64"},         {12, "arm64"},   {1, "unknown"},
                 {2, "unknown"},     {4, "unknown"},  {7, "unknown"},
                 {10, "unknown"},    {11, "unknown"}, {13, "unknown"},
                 {0xFFFF, "unknown"}};
    for (const auto& row : kRows) {
        EXPECT_EQ(ZEMO::Core::cpuTypeName(static_cast<uint16_t>(row.architecture)), row.name) << row.architecture;
    }
}

TEST(PlatformCpuType, ThisMachine_IsWhatTheProcessEnvironmentSays) {
    const char* architecture = std::getenv("PROCESSOR_ARCHITECTURE");
    ASSERT_NE(architecture, nullptr);
    const std::string expected = std::string(architecture) == "AMD64"   ? "x64"
                                 : std::string(architecture) == "ARM64" ? "arm64"
                                                                        : "";
    EXPECT_EQ(getCpuType(), expected) << architecture;
}

// The pages that the kernel manages, as its own information call tells them.
unsigned long long bytesFromPages() {
    struct {
        ULONG reserved, timerResolution, pageSize, pageCount;
        unsigned char rest[64];
    } basic{};
    using Query = LONG WINAPI(int, void*, ULONG, ULONG*);
    auto* query = reinterpret_cast<Query*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
    if (!query || query(0, &basic, 64, nullptr) != 0) return 0;
    return static_cast<unsigned long long>(basic.pageSize) * basic.pageCount;
}

TEST(PlatformMemory, ComparedWithKernelPages_WithinOnePercent) {
    const auto pages = bytesFromPages();
    ASSERT_GT(pages, 0u);
    const long long bytes = getPhysicallyInstalledSystemMemory();
    EXPECT_NEAR(static_cast<double>(bytes), static_cast<double>(pages), static_cast<double>(pages) / 100);
}

TEST(PlatformMemory, InGiB_IsTheByteCountRounded) {
    const double bytes = static_cast<double>(getPhysicallyInstalledSystemMemory());
    EXPECT_NEAR(getPhysicallyInstalledSystemMemoryGB(), bytes / (1024.0 * 1024 * 1024), 0.0051);
}

// The rule in the long way: single precision, printed with two decimals, read back.
double roundedByText(unsigned long long bytes) {
    volatile float single = static_cast<float>(bytes);
    single = single * 9.31322574615478515625e-10f;
    char text[64];
    std::snprintf(text, sizeof text, "%.2f", static_cast<double>(single));
    return std::strtod(text, nullptr);
}

TEST(PlatformMemory, ByteCounts_GiveTwoDecimals) {
    constexpr unsigned long long kGiB = 1ull << 30;
    const struct {
        unsigned long long bytes;
        double gib;
    } kRows[] = {{0, 0.0},
                 {1, 0.0},
                 {5368709, 0.0},   // 0.00499... rounds down
                 {5368710, 0.01},  // 0.005000... rounds up
                 {kGiB, 1.0},
                 {16 * kGiB, 16.0},
                 {16 * kGiB - 1, 16.0},  // single precision already makes it 16
                 {16 * kGiB + 4096, 16.0},
                 {17095618560, 15.92},  // a usual "16 GB" machine
                 {8455716864, 7.88},
                 {34276941824, 31.92},
                 {134217728, 0.12},  // exactly 0.125: to even
                 {402653184, 0.38},  // exactly 0.375
                 {128 * kGiB, 128.0}};
    for (const auto& row : kRows) {
        const double gib = ZEMO::Core::roundedGiB(row.bytes);
        EXPECT_EQ(gib, row.gib) << row.bytes;
        EXPECT_EQ(gib, roundedByText(row.bytes)) << row.bytes;
    }
}

TEST(PlatformMemory, ManyByteCounts_AgreeWithPrintedText) {
    unsigned long long bytes = 12345;
    for (int i = 0; i < 2000; ++i) {
        bytes = bytes * 6364136223846793005ull + 1442695040888963407ull;
        const unsigned long long value = bytes >> 24;  // up to a TiB
        ASSERT_EQ(ZEMO::Core::roundedGiB(value), roundedByText(value)) << value;
    }
}

TEST(PlatformMemory, GameUsesDecimalComma_SameResult) {
    struct Comma : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\1"; }
    };
    const double before = getPhysicallyInstalledSystemMemoryGB();
    const std::locale previous = std::locale::global(std::locale(std::locale::classic(), new Comma));
    EXPECT_EQ(getPhysicallyInstalledSystemMemoryGB(), before);
    EXPECT_EQ(ZEMO::Core::roundedGiB(17095618560), 15.92);
    std::locale::global(previous);
}

TEST(PlatformText, ValidText_GoesBothWays) {
    const struct {
        const char* utf8;
        const wchar_t* wide;
    } kRows[] = {{"", L""}, {"plain", L"plain"}, {"한글", L"한글"}, {"é€", L"é€"}, {"😀 x", L"\xD83D\xDE00 x"}};
    for (const auto& row : kRows) {
        EXPECT_EQ(ZEMO::Core::wideToUtf8(row.wide), row.utf8);
        EXPECT_EQ(ZEMO::Core::utf8ToWide(row.utf8), row.wide);
    }
}

TEST(PlatformText, LoneSurrogate_RaisesRangeError) {
    EXPECT_THROW(ZEMO::Core::wideToUtf8(L"a\xD83D"), std::range_error);  // at the end
    EXPECT_THROW(ZEMO::Core::wideToUtf8(L"\xD83Dz"), std::range_error);
}

TEST(PlatformClass, Assigned_ChangesNothingAndGivesItself) {
    ZEMO::Core::Platform a, b;
    EXPECT_EQ(&(a = b), &a);
    EXPECT_EQ(&(a = ZEMO::Core::Platform()), &a);
    static_assert(std::is_empty_v<ZEMO::Core::Platform>);
}

}  // namespace
