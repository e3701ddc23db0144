#include <gtest/gtest.h>
#include <windows.h>

#include <tlhelp32.h>

#include <cctype>
#include <string>
#include <vector>

#include "core/platform_text.h"
#include "support/helper_process.h"
#include "support/import_replaced.h"
#include "zemo/platform.h"

namespace {

using namespace ZEMO::Test;
using ZEMO::Platform::Misc::getProcessorID;

// A copy of the probe under a name of the test's choice, waiting until the test ends it.
class NamedProgram {
public:
    explicit NamedProgram(const std::wstring& fileName) {
        wchar_t temporary[MAX_PATH] = {};
        GetTempPathW(MAX_PATH, temporary);
        folder_ = std::wstring(temporary) + L"zemo_named_" + std::to_wstring(GetCurrentProcessId());
        CreateDirectoryW(folder_.c_str(), nullptr);
        path_ = folder_ + L"\\" + fileName;
        CopyFileW(helperPath(L"platform_probe.exe").c_str(), path_.c_str(), FALSE);
    }
    ~NamedProgram() {
        for (int i = 0; i < 200 && !DeleteFileW(path_.c_str()); ++i) Sleep(20);  // it closes a moment after the end
        RemoveDirectoryW(folder_.c_str());
    }
    const std::wstring& path() const { return path_; }

private:
    std::wstring folder_, path_;
};

std::string own(const std::string& text) { return text + std::to_string(GetCurrentProcessId()) + ".exe"; }

bool waits(HelperProcess& process) { return process.line("ready").has_value(); }

TEST(PlatformProcess, RunningProgram_FoundByItsFileName) {
    const std::string name = own("zemo_named_");
    const NamedProgram program(ZEMO::Core::utf8ToWide(name));
    EXPECT_EQ(getProcessorID(name), 0);
    {
        HelperProcess process(program.path(), {L"ready", L"pump"});
        ASSERT_TRUE(waits(process)) << process.output();
        EXPECT_EQ(getProcessorID(name), static_cast<long>(process.id()));
    }
    EXPECT_EQ(getProcessorID(name), 0);
}

// Not under a browser's name: tests of the browser launch look which browsers run.
TEST(PlatformProcess, UpperCaseName_FindsMixedCaseProgram) {
    const std::string name = own("zemo_Mixed_");
    const NamedProgram program(ZEMO::Core::utf8ToWide(name));
    HelperProcess process(program.path(), {L"ready", L"pump"});
    ASSERT_TRUE(waits(process)) << process.output();
    std::string upper = name, lower = name;
    for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    EXPECT_EQ(getProcessorID(upper), static_cast<long>(process.id())) << upper;
    EXPECT_EQ(getProcessorID(lower), static_cast<long>(process.id())) << lower;
}

TEST(PlatformProcess, KoreanName_Found) {
    const std::string name = own("게임_");
    const NamedProgram program(ZEMO::Core::utf8ToWide(name));
    HelperProcess process(program.path(), {L"ready", L"pump"});
    ASSERT_TRUE(waits(process)) << process.output();
    EXPECT_EQ(getProcessorID(name), static_cast<long>(process.id()));
}

TEST(PlatformProcess, TwoOfTheName_OneOfThemAndAfterItsEndTheOther) {
    const std::string name = own("zemo_twice_");
    const NamedProgram program(ZEMO::Core::utf8ToWide(name));
    HelperProcess first(program.path(), {L"ready", L"pump"});
    HelperProcess second(program.path(), {L"ready", L"pump"});
    ASSERT_TRUE(waits(first) && waits(second));
    const auto found = static_cast<DWORD>(getProcessorID(name));
    ASSERT_TRUE(found == first.id() || found == second.id());
    (found == first.id() ? first : second).terminate();
    EXPECT_EQ(static_cast<DWORD>(getProcessorID(name)), found == first.id() ? second.id() : first.id());
}

TEST(PlatformProcess, OnlyAPartOfTheName_NotFound) {
    const std::string name = own("zemo_part_");
    const NamedProgram program(ZEMO::Core::utf8ToWide(name));
    HelperProcess process(program.path(), {L"ready", L"pump"});
    ASSERT_TRUE(waits(process)) << process.output();
    EXPECT_EQ(getProcessorID(name.substr(0, name.size() - 4)), 0);
    EXPECT_EQ(getProcessorID("x" + name), 0);
    EXPECT_EQ(getProcessorID(ZEMO::Core::wideToUtf8(program.path())), 0);
    EXPECT_EQ(getProcessorID(name), static_cast<long>(process.id()));
}

// A snapshot that fails can't be provoked: this program's imports are replaced.
int walks = 0;
HANDLE WINAPI noSnapshot(DWORD flags, DWORD process) {
    EXPECT_EQ(flags, DWORD{TH32CS_SNAPPROCESS});
    EXPECT_EQ(process, 0u);
    return SetLastError(ERROR_NOT_ENOUGH_MEMORY), INVALID_HANDLE_VALUE;
}
BOOL WINAPI countedFirst(HANDLE, PROCESSENTRY32W*) { return ++walks, FALSE; }

BOOL WINAPI unexpectedClose(HANDLE handle) { return ADD_FAILURE() << "closed " << handle, FALSE; }

TEST(PlatformProcess, NoSnapshot_ZeroAndNothingIsWalkedOrClosed) {
    wchar_t own[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, own, MAX_PATH);
    const std::wstring path = own;
    const std::string name = ZEMO::Core::wideToUtf8(path.substr(path.find_last_of(L"\\/") + 1));
    ASSERT_NE(getProcessorID(name), 0);
    const ImportReplaced failing("CreateToolhelp32Snapshot", &noSnapshot);
    const ImportReplaced first("Process32FirstW", &countedFirst);
    const ImportReplaced close("CloseHandle", &unexpectedClose);
    walks = 0;
    EXPECT_EQ(getProcessorID(name), 0);
    EXPECT_EQ(walks, 0);
}

TEST(PlatformProcess, NothingOfTheName_Zero) {
    EXPECT_EQ(getProcessorID("no such program.exe"), 0);
    EXPECT_EQ(getProcessorID(std::string(100000, 'x')), 0);
}

TEST(PlatformProcess, NameIsNoUtf8_RaisesRangeError) {
    const std::string kBroken[] = {
        "\xFF", "a\x80", "\xE2\x82", "\xC0\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80", "x\xC3(y.exe", "\xED\x95\x9C\xEA"};
    for (const auto& name : kBroken)
        EXPECT_THROW(getProcessorID(name), std::range_error) << testing::PrintToString(name);
}

}  // namespace
