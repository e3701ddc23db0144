// The module helpers where the system fails them. Its calls can't be made to fail here, so this program's imports of
// them are replaced for the time of a test.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/module_paths.h"
#include "support/debug_log.h"
#include "support/import_replaced.h"
#include "zemo/ui.h"

namespace ZEMO::Core {
namespace {

using Test::DebugLogCapture;
using Test::ImportReplaced;
using testing::ElementsAre;
using testing::IsEmpty;

BOOL WINAPI noHandle(DWORD, const wchar_t*, HMODULE*) { return SetLastError(ERROR_MOD_NOT_FOUND), FALSE; }
DWORD WINAPI noName(HMODULE, wchar_t*, DWORD) { return SetLastError(ERROR_INVALID_HANDLE), 0u; }

DWORD handleFlags = 0;
const wchar_t* handleAddress = nullptr;
decltype(&::GetModuleHandleExW) realHandle = nullptr;
BOOL WINAPI notedHandle(DWORD flags, const wchar_t* address, HMODULE* module) {
    handleFlags = flags;
    handleAddress = address;
    return realHandle(flags, address, module);
}

struct Load {
    std::wstring path;
    HANDLE file;
    DWORD flags;
    bool operator==(const Load&) const = default;
};
std::vector<Load> loads;
HMODULE WINAPI notedLoad(const wchar_t* path, HANDLE file, DWORD flags) {
    loads.push_back({path, file, flags});
    return SetLastError(ERROR_ACCESS_DENIED), nullptr;
}

int wideCalls = 0;
decltype(&::MultiByteToWideChar) realWide = nullptr;
int WINAPI noLength(UINT, DWORD, const char*, int, wchar_t*, int) { return SetLastError(ERROR_INVALID_FLAGS), 0; }
int WINAPI oneTooFew(UINT page, DWORD flags, const char* text, int size, wchar_t* wide, int room) {
    const int count = realWide(page, flags, text, size, wide, room);
    if (++wideCalls == 1) return count;
    return SetLastError(ERROR_INSUFFICIENT_BUFFER), count - 1;
}

TEST(ModuleFailure, ModuleUnknown_LoggedWithItsCodeAndExecutableStandsIn) {
    const std::wstring directory = getOwnModuleDirectory();
    const ImportReplaced failing("GetModuleHandleExW", &noHandle);
    const DebugLogCapture log;
    EXPECT_EQ(getOwnModuleDirectory(), directory);  // the functions lie in the executable itself here
    EXPECT_THAT(log.texts(), ElementsAre("GetModuleHandleEx failed: 126",
                                         "getOwnModulePath failed, falling back to GetModuleFileName(NULL, ...)"));
}

TEST(ModuleFailure, ModulePath_AskedForByTheFunctionsAddressWithoutAReference) {
    const ImportReplaced noted("GetModuleHandleExW", &notedHandle);
    realHandle = noted.original<decltype(realHandle)>();
    wchar_t buffer[1024] = {};
    EXPECT_TRUE(getOwnModulePath(buffer, 1024));
    EXPECT_EQ(handleFlags, 6u);
    EXPECT_EQ(handleAddress, reinterpret_cast<const wchar_t*>(&getOwnModulePath));
}

TEST(ModuleFailure, ExecutableUnknownToo_RelativePathIsEmptyAndEachStepIsLogged) {
    const ImportReplaced failing("GetModuleFileNameW", &noName);
    const DebugLogCapture log;
    EXPECT_EQ(resolveModuleRelativePath(L"resources\\html"), L"");
    EXPECT_THAT(log.texts(), ElementsAre("GetModuleFileNameW failed or truncated: 6",
                                         "getOwnModulePath failed, falling back to GetModuleFileName(NULL, ...)",
                                         "Fallback GetModuleFileName(NULL, ...) failed. Error: 6",
                                         "Error: Could not determine base directory for relative path resolution."));
}

TEST(ModuleFailure, ModuleUnknown_BaseDirectoryIsTheExecutablesAndOnlyTheModuleIsLogged) {
    const std::wstring directory = libraryBaseDirectory();
    EXPECT_EQ(directory, getOwnModuleDirectory());
    const ImportReplaced failing("GetModuleHandleExW", &noHandle);
    const DebugLogCapture log;
    EXPECT_EQ(libraryBaseDirectory(Failures::Silent), directory);
    EXPECT_THAT(log.texts(), IsEmpty());
    EXPECT_EQ(libraryBaseDirectory(), directory);
    EXPECT_THAT(log.texts(), ElementsAre("GetModuleHandleEx failed: 126"));
}

TEST(ModuleFailure, ExecutableUnknownToo_BaseDirectoryIsEmpty) {
    const ImportReplaced failing("GetModuleFileNameW", &noName);
    const DebugLogCapture log;
    EXPECT_EQ(libraryBaseDirectory(), L"");
    EXPECT_THAT(log.texts(), ElementsAre("GetModuleFileNameW failed or truncated: 6"));
}

// The module's own path is refused for its length; the executable's is answered as `told`.
const wchar_t* told = L"";
DWORD WINAPI toldName(HMODULE module, wchar_t* buffer, DWORD size) {
    if (module) return SetLastError(ERROR_INSUFFICIENT_BUFFER), size;
    wcscpy_s(buffer, size, told);
    return static_cast<DWORD>(wcslen(told));
}

TEST(ModuleFailure, BaseDirectory_CutBeforeTheLastSeparatorOfEitherKind) {
    struct Case {
        const wchar_t* path;
        const wchar_t* directory;
    };
    const Case cases[] = {
        {L"C:\\game\\play.exe", L"C:\\game"}, {L"C:/game/play.exe", L"C:/game"},
        {L"C:\\a/b\\c/d.exe", L"C:\\a/b\\c"}, {L"C:\\play.exe", L"C:"},
        {L"play.exe", L"play.exe"},
    };
    ASSERT_EQ(std::size(cases), 5u);
    const ImportReplaced failing("GetModuleFileNameW", &toldName);
    for (const auto& [path, directory] : cases) {
        told = path;
        EXPECT_EQ(libraryBaseDirectory(Failures::Silent), directory);
    }
}

TEST(ModuleFailure, ExecutableWithoutADirectory_NoParentLogged) {
    const ImportReplaced failing("GetModuleFileNameW", &toldName);
    told = L"play.exe";
    const DebugLogCapture log;
    EXPECT_EQ(getOwnModuleDirectory(), L"");
    EXPECT_THAT(log.texts(), ElementsAre("GetModuleFileNameW failed or truncated: 122",
                                         "getOwnModulePath failed, falling back to GetModuleFileName(NULL, ...)",
                                         "Failed to get parent path from module path."));
}

TEST(ModuleFailure, DirectoryUnknown_LocalHtmlPathIsEmpty) {
    const ImportReplaced failing("GetModuleFileNameW", &noName);
    const DebugLogCapture log;
    EXPECT_EQ(UI::getLocalHTMLResourcePath(), std::filesystem::path());
    EXPECT_EQ(log.texts().back(), "Error: Could not determine base directory for relative path resolution.")
        << log.dump();
}

TEST(ModuleFailure, DirectoryUnknown_LibraryIsNotLookedForAndItsNameIsLogged) {
    const ImportReplaced failing("GetModuleFileNameW", &noName);
    const ImportReplaced noted("LoadLibraryExW", &notedLoad);
    loads.clear();
    const DebugLogCapture log;
    EXPECT_EQ(loadLibraryFromModuleDirectory(L"cefsubprocess/도구.dll"), nullptr);
    EXPECT_THAT(loads, IsEmpty());
    const auto lines = log.lines();
    ASSERT_FALSE(lines.empty());
    EXPECT_EQ(lines.back().text, "Failed to resolve absolute path for DLL: cefsubprocess/도구.dll");
    EXPECT_TRUE(lines.back().wide);
}

TEST(ModuleFailure, LibraryOfTheDirectory_LoadedWithTheSafeSearchFlags) {
    const std::wstring path = resolveModuleRelativePath(L"tool.dll");
    const ImportReplaced noted("LoadLibraryExW", &notedLoad);
    loads.clear();
    const DebugLogCapture log;
    EXPECT_EQ(loadLibraryFromModuleDirectory(L"tool.dll"), nullptr);
    EXPECT_EQ(loads, (std::vector<Load>{{path, nullptr, 0x1400}}));
    EXPECT_EQ(log.texts(), std::vector<std::string>{"Failed to load library from: " +
                                                    std::string(toSharedUtf8(path.c_str()).get()) + ". Error code: 5"});
}

TEST(ModuleFailure, GraphicsHook_LoadedByItsNameWithTheSafeSearchFlags) {
    const ImportReplaced noted("LoadLibraryExW", &notedLoad);
    loads.clear();
    const DebugLogCapture log;
    UI::InitUIGraphicsHook();
    EXPECT_EQ(loads, (std::vector<Load>{{L"ZEMOGraphicsHook.dll", nullptr, 0x1400}}));
    EXPECT_THAT(log.texts(), IsEmpty());
}

TEST(ModuleFailure, LengthOfWideTextUnknown_LoggedAndEmpty) {
    const ImportReplaced failing("MultiByteToWideChar", &noLength);
    const DebugLogCapture log;
    EXPECT_EQ(to_wide("abc"), L"");
    ASSERT_EQ(log.lines().size(), 1u) << log.dump();
    EXPECT_EQ(log.lines()[0].text, "to_wide: 길이 조회 실패 (err=1004)");
    EXPECT_TRUE(log.lines()[0].wide) << "Korean is cut up by the narrow call";
}

TEST(ModuleFailure, WideTextHasAnotherLength_LoggedAndEmpty) {
    const ImportReplaced failing("MultiByteToWideChar", &oneTooFew);
    realWide = failing.original<decltype(realWide)>();
    wideCalls = 0;
    const DebugLogCapture log;
    EXPECT_EQ(to_wide("abc"), L"");
    ASSERT_EQ(log.lines().size(), 1u) << log.dump();
    EXPECT_EQ(log.lines()[0].text, "to_wide: 변환 실패 (written=2, expected=3, err=122)");
    EXPECT_TRUE(log.lines()[0].wide) << "Korean is cut up by the narrow call";
}

TEST(ModuleFailure, EmptyText_SystemIsNotAsked) {
    const ImportReplaced failing("MultiByteToWideChar", &noLength);
    const DebugLogCapture log;
    EXPECT_EQ(to_wide(""), L"");
    EXPECT_THAT(log.texts(), IsEmpty());
}

}  // namespace
}  // namespace ZEMO::Core
