#include "core/module_paths.h"

#include <gmock/gmock.h>

#include <cstring>
#include <filesystem>
#include <string>
#include <thread>
#include <vector>

#include "core/unique_handle.h"
#include "support/debug_log.h"

namespace ZEMO::Core {
namespace {

using Test::DebugLogCapture;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

// These tests are linked with the library's objects: the module that holds the functions is this very program.
std::wstring programPath() {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

std::wstring programDirectory() {
    const std::wstring path = programPath();
    return path.substr(0, path.find_last_of(L"\\/"));
}

// Name of a file that no other process uses, also when several run these tests at a time.
std::wstring ownFileName(const wchar_t* what) {
    return L"module_paths_test_" + std::to_wstring(GetCurrentProcessId()) + L"_" + what + L".dll";
}

std::string utf8(const std::wstring& text) { return toSharedUtf8(text.c_str()).get(); }

}  // namespace

TEST(ModulePath, RoomEnough_FullPathWithoutALogLine) {
    DebugLogCapture log;
    wchar_t buffer[1024] = {};
    ASSERT_TRUE(getOwnModulePath(buffer, 1024));
    EXPECT_EQ(std::wstring(buffer), programPath());
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST(ModulePath, RoomForPathAndNulOnly_Fits) {
    const std::wstring path = programPath();
    std::vector<wchar_t> buffer(path.size() + 1, L'?');
    EXPECT_TRUE(getOwnModulePath(buffer.data(), static_cast<DWORD>(buffer.size())));
    EXPECT_EQ(std::wstring(buffer.data()), path);
}

TEST(ModulePath, PathOfExactlyTheBuffersSize_CountsAsTruncated) {
    DebugLogCapture log;
    std::vector<wchar_t> buffer(programPath().size(), L'?');
    EXPECT_FALSE(getOwnModulePath(buffer.data(), static_cast<DWORD>(buffer.size())));
    EXPECT_THAT(log.texts(), ElementsAre("GetModuleFileNameW failed or truncated: 122"));  // ERROR_INSUFFICIENT_BUFFER
}

TEST(ModulePath, SmallBuffers_TruncatedAndNeverWrittenBehind) {
    for (const DWORD size : {1u, 2u, 5u, 10u}) {
        DebugLogCapture log;
        std::vector<wchar_t> buffer(size + 1, L'?');
        EXPECT_FALSE(getOwnModulePath(buffer.data(), size));
        EXPECT_EQ(buffer[size], L'?') << size;
        EXPECT_TRUE(log.contains("GetModuleFileNameW failed or truncated: ")) << log.dump();
    }
}

TEST(ModuleDirectory, OfTheModuleThatHoldsTheFunction_NoSlashAtTheEnd) {
    DebugLogCapture log;
    EXPECT_EQ(getOwnModuleDirectory(), programDirectory());
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST(ModuleDirectory, WorkingDirectoryElsewhere_SameAnswer) {
    wchar_t before[MAX_PATH] = {};
    ASSERT_NE(GetCurrentDirectoryW(MAX_PATH, before), 0u);
    ASSERT_TRUE(SetCurrentDirectoryW(L"C:\\"));
    EXPECT_EQ(getOwnModuleDirectory(), programDirectory());
    EXPECT_TRUE(SetCurrentDirectoryW(before));
}

TEST(RelativePath, ForwardSlashes_NativeSeparatorsUnderTheModulesDirectory) {
    EXPECT_EQ(resolveModuleRelativePath(L"cefsubprocess/d3dcompiler_47.dll"),
              programDirectory() + L"\\cefsubprocess\\d3dcompiler_47.dll");
}

TEST(RelativePath, ShapesOfPaths_JoinedAndNormal) {
    const std::wstring base = programDirectory();
    const std::wstring parent = base.substr(0, base.find_last_of(L"\\/"));
    struct Case {
        std::wstring relative, result;
    };
    const Case cases[] = {
        {L"a", base + L"\\a"},
        {L"a\\b", base + L"\\a\\b"},
        {L"a/./b//c", base + L"\\a\\b\\c"},
        {L"a/../b", base + L"\\b"},
        {L"..\\x", parent + L"\\x"},
        {L"resources/\xD55C\xAE00 x.ico", base + L"\\resources\\\xD55C\xAE00 x.ico"},
        {L"dir/", base + L"\\dir\\"},
        {L"", base + L"\\"},
        {L"D:\\else\\where/f", L"D:\\else\\where\\f"},  // an absolute path is taken as it is
        {L"missing/file", base + L"\\missing\\file"},   // nothing is looked up
    };
    ASSERT_EQ(std::size(cases), 10u);
    DebugLogCapture log;
    for (const auto& [relative, result] : cases) EXPECT_EQ(utf8(resolveModuleRelativePath(relative)), utf8(result));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST(LoadLibraryFromModuleDirectory, FileMissing_NullWithPathAndErrorCodeLogged) {
    DebugLogCapture log;
    EXPECT_EQ(loadLibraryFromModuleDirectory(L"no/such library.dll"), nullptr);
    const std::string path = utf8(programDirectory() + L"\\no\\such library.dll");
    const auto lines = log.lines();
    ASSERT_FALSE(lines.empty());
    EXPECT_TRUE(lines.back().wide);
    EXPECT_THAT(lines.back().text, testing::AnyOf("Failed to load library from: " + path + ". Error code: 126",
                                                  "Failed to load library from: " + path + ". Error code: 3"));
}

TEST(LoadLibraryFromModuleDirectory, FileThatIsNoLibrary_NullWithErrorCodeLogged) {
    const std::wstring name = ownFileName(L"no_library");
    const std::wstring path = programDirectory() + L"\\" + name;
    const UniqueFileHandle file(CreateFileW(path.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_DELETE, nullptr,
                                            CREATE_ALWAYS, FILE_FLAG_DELETE_ON_CLOSE, nullptr));
    ASSERT_TRUE(file);
    DWORD written = 0;
    ASSERT_TRUE(WriteFile(file.get(), "text", 4, &written, nullptr));
    DebugLogCapture log;
    EXPECT_EQ(loadLibraryFromModuleDirectory(name), nullptr);
    EXPECT_TRUE(log.contains("Failed to load library from: " + utf8(path) + ". Error code: ")) << log.dump();
}

TEST(LoadLibraryFromModuleDirectory, LibraryBesideTheModule_LoadedAndLoggedWithItsLeadingBlank) {
    // A small library of the system under a name of its own, so that it can come from nowhere else.
    const std::wstring name = ownFileName(L"library");
    const std::wstring path = programDirectory() + L"\\" + name;
    wchar_t system[MAX_PATH] = {};
    ASSERT_NE(GetSystemDirectoryW(system, MAX_PATH), 0u);
    ASSERT_TRUE(CopyFileW((std::wstring(system) + L"\\version.dll").c_str(), path.c_str(), TRUE)) << GetLastError();
    {
        DebugLogCapture log;
        const UniqueModule module(loadLibraryFromModuleDirectory(L"./" + name));
        EXPECT_TRUE(module) << log.dump();
        wchar_t loaded[1024] = {};
        EXPECT_NE(GetModuleFileNameW(module.get(), loaded, 1024), 0u);
        EXPECT_EQ(utf8(loaded), utf8(path));
        EXPECT_EQ(log.count(" Successfully loaded library from: " + utf8(path)), 1u) << log.dump();
        EXPECT_THAT(log.texts().back(), StartsWith(" Successfully"));
    }
    EXPECT_TRUE(DeleteFileW(path.c_str())) << GetLastError();
}

TEST(ToWide, Texts_ConvertedWithoutALogLine) {
    struct Case {
        std::string utf8;
        std::wstring wide;
    };
    const Case cases[] = {
        {"", L""},
        {"abc", L"abc"},
        {"\xED\x95\x9C\xEA\xB8\x80", L"\xD55C\xAE00"},
        {"\xF0\x9F\x8E\xAE", L"\xD83C\xDFAE"},  // outside the first plane: two units
        {std::string("a\0b", 3), std::wstring(L"a\0b", 3)},
        {"\xC3\xA9", L"\xE9"},
    };
    ASSERT_EQ(std::size(cases), 6u);
    DebugLogCapture log;
    for (const auto& [text, wide] : cases) EXPECT_EQ(to_wide(text), wide) << text;
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST(ToWide, InvalidSequences_ReplacedInsteadOfRefused) {
    DebugLogCapture log;
    for (const std::string& text :
         {std::string("a\xFFz"), std::string("\xC0\x80"), std::string("\xED"), std::string("\x80")}) {
        const std::wstring wide = to_wide(text);
        EXPECT_NE(wide.find(L'\xFFFD'), std::wstring::npos) << text;
    }
    EXPECT_EQ(to_wide("a\xFFz"), L"a\xFFFDz");
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST(ToWide, LongText_EveryCharacterConverted) {
    std::string text;
    std::wstring wide;
    for (int i = 0; i < 20000; ++i) {
        text += "\xED\x95\x9C";
        wide += L'\xD55C';
    }
    EXPECT_EQ(to_wide(text), wide);
}

TEST(ToSharedUtf8, NullText_EmptyPointer) { EXPECT_EQ(toSharedUtf8(nullptr), nullptr); }

TEST(ToSharedUtf8, Texts_CopiedWithTheirNul) {
    struct Case {
        std::wstring wide;
        const char* utf8;
    };
    const Case cases[] = {
        {L"", ""},
        {L"abc", "abc"},
        {L"\xD55C\xAE00", "\xED\x95\x9C\xEA\xB8\x80"},
        {L"\xD83C\xDFAE", "\xF0\x9F\x8E\xAE"},
    };
    ASSERT_EQ(std::size(cases), 4u);
    for (const auto& [wide, text] : cases) {
        const std::shared_ptr<char> copy = toSharedUtf8(wide.c_str());
        ASSERT_NE(copy, nullptr);
        EXPECT_STREQ(copy.get(), text);
    }
}

TEST(ModulePaths, SeveralThreadsAtOnce_SameAnswers) {
    const std::wstring expected = programDirectory() + L"\\a\\b";
    std::vector<std::thread> threads;
    std::vector<int> wrong(4, 0);
    for (int& count : wrong) {
        threads.emplace_back([&count, &expected] {
            for (int i = 0; i < 100; ++i) count += resolveModuleRelativePath(L"a/b") != expected;
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_THAT(wrong, ElementsAre(0, 0, 0, 0));
}

}  // namespace ZEMO::Core
