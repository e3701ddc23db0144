#include "engine/runtime_selection.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <filesystem>
#include <format>
#include <fstream>

#include "engine/engine_files.h"
#include "support/import_replaced.h"

namespace ZEMO::UI {
namespace fs = std::filesystem;
namespace {

/// Counts the questions for a file's version that this program asks the system, while it lives: a file tells nobody
/// that it was read.
class VersionReadCounter {
public:
    VersionReadCounter() { count = 0; }
    static inline int count = 0;

private:
    static DWORD WINAPI countAndAsk(LPCWSTR file, LPDWORD handle) {
        ++count;
        return Test::systemFunction<decltype(GetFileVersionInfoSizeW)>(L"version.dll", "GetFileVersionInfoSizeW")(
            file, handle);
    }
    Test::ImportReplaced replaced{"GetFileVersionInfoSizeW", &countAndAsk};
};

}  // namespace

/// A directory as it stands beside the library: with a blank and Korean letters in its path.
class RuntimeSelection : public ::testing::Test {
protected:
    RuntimeSelection() : base(fs::temp_directory_path() / std::format(L"zemo 런타임 {}", GetCurrentProcessId())) {
        fs::create_directories(base);
    }
    ~RuntimeSelection() override {
        std::error_code ignored;
        fs::remove_all(base, ignored);
    }
    fs::path makeDirectory(const wchar_t* name) {
        fs::create_directories(base / name / L"inner");
        std::ofstream(base / name / L"inner" / L"data") << "x";
        return base / name;
    }
    void makeFile(const fs::path& path) {
        fs::create_directories(path.parent_path());
        std::ofstream(path) << "x";
    }
    /// A library that is nothing but a version resource.
    void makeEngineLibrary(WORD major, WORD minor, WORD patch, WORD build, DWORD signature = VS_FFI_SIGNATURE);
    fs::path base;
};

void RuntimeSelection::makeEngineLibrary(WORD major, WORD minor, WORD patch, WORD build, DWORD signature) {
    const fs::path file = base / L"libcef.dll";
    wchar_t self[MAX_PATH];
    GetModuleFileNameW(GetModuleHandleW(L"version.dll"), self, MAX_PATH);
    fs::copy_file(self, file, fs::copy_options::overwrite_existing);
    struct {
        WORD length, valueLength, type;
        wchar_t key[16];
        WORD padding;
        VS_FIXEDFILEINFO info;
    } block{};
    block.length = sizeof block;
    block.valueLength = sizeof block.info;
    wcscpy(block.key, L"VS_VERSION_INFO");
    block.info.dwSignature = signature;
    block.info.dwStrucVersion = VS_FFI_STRUCVERSION;
    block.info.dwFileVersionMS = MAKELONG(minor, major);
    block.info.dwFileVersionLS = MAKELONG(build, patch);
    const HANDLE update = BeginUpdateResourceW(file.c_str(), TRUE);
    ASSERT_TRUE(update) << GetLastError();
    ASSERT_TRUE(UpdateResourceW(update, RT_VERSION, MAKEINTRESOURCEW(VS_VERSION_INFO), 0, &block, sizeof block));
    ASSERT_TRUE(EndUpdateResourceW(update, FALSE)) << GetLastError();
}

TEST_F(RuntimeSelection, CleanUp_DirectoryNames_OnlyDeadProcessesCachesGo) {
    struct Case {
        const wchar_t* name;
        bool removed;
    };
    const Case cases[] = {
        {L"cache", false},       // the shared one
        {L"cache123", true},     // of a process that is gone
        {L"cache123abc", true},  // digits count, whatever follows
        {L"cachefiles", false},  // no number
        {L"CACHE124", false},    // the prefix is exact
        {L"cache77", false},     // of a running process
        {L"mycache125", false},  // must begin with it
        {L"cach126", false},    {L"cache0", false},
    };
    for (const Case& each : cases) makeDirectory(each.name);
    makeFile(base / L"cache127");  // a file is no cache
    cleanupStaleCaches(base.wstring(), {77});
    for (const Case& each : cases) EXPECT_EQ(!fs::exists(base / each.name), each.removed) << fs::path(each.name);
    EXPECT_TRUE(fs::exists(base / L"cache127"));
}

TEST_F(RuntimeSelection, CleanUp_OwnProcessRunning_OwnCacheStays) {
    const std::wstring own = L"cache" + std::to_wstring(GetCurrentProcessId());
    makeDirectory(own.c_str());
    cleanupStaleCaches(base.wstring());
    EXPECT_TRUE(fs::exists(base / own));
}

TEST_F(RuntimeSelection, CleanUp_NoProcessKnown_EveryNumberedCacheIsStale) {
    makeDirectory(L"cache5");
    makeDirectory(L"cache6");
    cleanupStaleCaches(base.wstring(), {});
    EXPECT_FALSE(fs::exists(base / L"cache5"));
    EXPECT_FALSE(fs::exists(base / L"cache6"));
}

TEST_F(RuntimeSelection, CleanUp_BaseMissing_ThrowsWithTheOperationName) {
    try {
        cleanupStaleCaches((base / L"none").wstring(), {});
        FAIL() << "no exception";
    } catch (const fs::filesystem_error& error) {
        EXPECT_NE(std::string(error.what()).find("directory_iterator::directory_iterator"), std::string::npos);
    }
}

TEST_F(RuntimeSelection, CleanUp_FileInUse_ThrowsRemoveAll) {
    const fs::path cache = makeDirectory(L"cache9");
    const HANDLE held =
        CreateFileW((cache / L"inner" / L"data").c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    try {
        cleanupStaleCaches(base.wstring(), {});
        ADD_FAILURE() << "no exception";
    } catch (const fs::filesystem_error& error) {
        EXPECT_NE(std::string(error.what()).find("remove_all"), std::string::npos) << error.what();
    }
    CloseHandle(held);
}

// A directory that stops answering half way can't be had: the answers of the runtime library are the test's.
bool entrySeen = false;
decltype(&::_wfindnext64) realNext = nullptr;
int failAfterAnEntry(intptr_t search, _wfinddata64_t* found) {
    if (entrySeen) return SetLastError(ERROR_READ_FAULT), errno = EIO, -1;
    const int result = realNext(search, found);
    entrySeen = std::wstring_view(found->name).starts_with(L"entry");
    return result;
}
int failStatus(const wchar_t*, struct _stat64*) { return errno = EACCES, -1; }

std::string errorOfCleanUp(const fs::path& base) {
    try {
        cleanupStaleCaches(base.wstring(), {});
        return "no exception";
    } catch (const fs::filesystem_error& error) {
        return error.what();
    }
}

TEST_F(RuntimeSelection, CleanUp_ListingBreaksOff_ThrowsWithTheOperationName) {
    makeDirectory(L"entry");
    const ZEMO::Test::ImportReplaced broken("_wfindnext64", &failAfterAnEntry);
    realNext = broken.original<decltype(realNext)>();
    const std::string error = errorOfCleanUp(base);
    EXPECT_NE(error.find("directory_iterator::operator++"), std::string::npos) << error;
}

TEST_F(RuntimeSelection, CleanUp_EntryCanNotBeAskedFor_ThrowsWithTheOperationName) {
    makeDirectory(L"cache9");
    const ZEMO::Test::ImportReplaced broken("_wstat64", &failStatus);
    const std::string error = errorOfCleanUp(base);
    EXPECT_NE(error.find("directory_entry::status"), std::string::npos) << error;
}

// A child process of a dead game that is just letting go of its files can't be made here: the answers of the system to
// the removal of the directory itself are the test's.
struct RemovalAnswers {
    static inline int failures = 0;
    static inline int calls = 0;
    static BOOL WINAPI remove(const wchar_t* directory) {
        if (std::wstring_view(directory).ends_with(L"cache9") && ++calls <= failures) {
            SetLastError(ERROR_DIR_NOT_EMPTY);
            return FALSE;
        }
        return ZEMO::Test::systemFunction<decltype(RemoveDirectoryW)>(L"kernel32.dll", "RemoveDirectoryW")(directory);
    }
};

TEST_F(RuntimeSelection, CleanUp_DirectoryNotYetFree_TriedTenTimes) {
    for (const int failures : {9, 10}) {
        const fs::path cache = makeDirectory(L"cache9");
        RemovalAnswers::failures = failures;
        RemovalAnswers::calls = 0;
        const ZEMO::Test::ImportReplaced replaced("RemoveDirectoryW", &RemovalAnswers::remove);
        if (failures < 10) {
            EXPECT_NO_THROW(cleanupStaleCaches(base.wstring(), {}));
        } else {
            EXPECT_THROW(cleanupStaleCaches(base.wstring(), {}), fs::filesystem_error);
        }
        EXPECT_EQ(RemovalAnswers::calls, 10) << failures;
        EXPECT_EQ(fs::exists(cache), failures == 10) << failures;
    }
}

TEST_F(RuntimeSelection, Lock_HeldByAnother_SecondOpenFailsAndOwnCacheIsUsed) {
    const std::wstring shared = (base / L"cache").wstring();
    EXPECT_EQ(selectCacheDirectory(base.wstring()), shared);
    EXPECT_TRUE(fs::is_directory(shared)) << "asking makes the directory";
    const HANDLE lock = openCacheLock(shared);
    ASSERT_NE(lock, INVALID_HANDLE_VALUE);
    EXPECT_TRUE(isCacheLocked(shared));
    EXPECT_EQ(openCacheLock(shared), INVALID_HANDLE_VALUE);
    const std::wstring own = shared + std::to_wstring(GetCurrentProcessId());
    EXPECT_EQ(selectCacheDirectory(base.wstring()), own);
    EXPECT_TRUE(fs::is_directory(own));
    EXPECT_EQ(selectCacheDirectory(base.wstring()), own) << "an existing own cache is no failure";
    releaseCacheLock(shared, lock);
    EXPECT_FALSE(fs::exists(shared + L"\\cef.lock"));
    EXPECT_FALSE(isCacheLocked(shared));
}

TEST_F(RuntimeSelection, Lock_InvalidHandleReleased_FileStays) {
    makeFile(base / L"cache" / L"cef.lock");
    releaseCacheLock((base / L"cache").wstring(), INVALID_HANDLE_VALUE);
    EXPECT_TRUE(fs::exists(base / L"cache" / L"cef.lock"));
}

TEST_F(RuntimeSelection, Cache_OwnDirectoryCanNotBeMade_ThrowsCreateDirectory) {
    const std::wstring shared = (base / L"cache").wstring();
    fs::create_directories(shared);
    const HANDLE lock = openCacheLock(shared);
    makeFile(shared + std::to_wstring(GetCurrentProcessId()));
    try {
        selectCacheDirectory(base.wstring());
        ADD_FAILURE() << "no exception";
    } catch (const fs::filesystem_error& error) {
        EXPECT_NE(std::string(error.what()).find("create_directory"), std::string::npos) << error.what();
    }
    releaseCacheLock(shared, lock);
}

TEST_F(RuntimeSelection, Subprocess_PlainAndVersionedThere_PlainIsUsed) {
    makeEngineLibrary(119, 4, 3, 7);
    makeFile(base / L"cefsubprocess_119.4.3" / L"cef.subprocess.exe");
    makeFile(base / L"cefsubprocess" / L"cef.subprocess.exe");
    EXPECT_EQ(selectSubprocess(base.wstring()), (base / L"cefsubprocess" / L"cef.subprocess.exe").wstring());
}

TEST_F(RuntimeSelection, Subprocess_PlainThere_EngineLibraryIsNotRead) {
    makeEngineLibrary(119, 4, 3, 7);
    const VersionReadCounter reads;
    selectSubprocess(base.wstring());
    ASSERT_EQ(VersionReadCounter::count, 1) << "without the plain one the version is read, and seen to be read";
    makeFile(base / L"cefsubprocess" / L"cef.subprocess.exe");
    selectSubprocess(base.wstring());
    EXPECT_EQ(VersionReadCounter::count, 1);
}

TEST_F(RuntimeSelection, Subprocess_OnlyVersioned_NamedByTheEnginesThreeNumbers) {
    makeEngineLibrary(119, 4, 3, 7);
    EXPECT_EQ(getEngineFileVersion(base.wstring()), L"119.4.3");
    EXPECT_EQ(selectSubprocess(base.wstring()), base.wstring() + L"\\cefsubprocess_119.4.3\\cef.subprocess.exe");
}

// A path that can't be asked for is not to be had here without taking the directory's rights away.
DWORD WINAPI refuseAttributes(LPCWSTR) { return SetLastError(ERROR_ACCESS_DENIED), INVALID_FILE_ATTRIBUTES; }

TEST_F(RuntimeSelection, Subprocess_PlainCanNotBeAskedFor_ThrowsExists) {
    const ZEMO::Test::ImportReplaced refused("GetFileAttributesW", &refuseAttributes);
    try {
        selectSubprocess(base.wstring());
        ADD_FAILURE() << "no exception";
    } catch (const fs::filesystem_error& error) {
        EXPECT_NE(std::string(error.what()).find("exists"), std::string::npos) << error.what();
    }
}

TEST_F(RuntimeSelection, Subprocess_NoEngine_VersionTextIsEmpty) {
    EXPECT_EQ(getEngineFileVersion(base.wstring()), L"");
    EXPECT_EQ(selectSubprocess(base.wstring()), base.wstring() + L"\\cefsubprocess_\\cef.subprocess.exe");
}

TEST_F(RuntimeSelection, Version_FileWithoutResource_IsEmpty) {
    makeFile(base / L"libcef.dll");
    EXPECT_EQ(getEngineFileVersion(base.wstring()), L"");
}

TEST_F(RuntimeSelection, Version_ResourceWithoutItsSignature_IsEmpty) {
    makeEngineLibrary(131, 3, 5, 1);
    ASSERT_EQ(getEngineFileVersion(base.wstring()), L"131.3.5");
    makeEngineLibrary(131, 3, 5, 1, 0x12345678);
    EXPECT_EQ(getEngineFileVersion(base.wstring()), L"");
}

TEST_F(RuntimeSelection, EngineFiles_NoneThere_EachIsNamedAndMarkedWhenNeeded) {
    using Missing = std::vector<MissingEngineFile>;
    const Missing all = findMissingEngineFiles(base.wstring());
    EXPECT_EQ(all, (Missing{{L"libcef.dll", true},
                            {L"chrome_elf.dll", true},
                            {L"icudtl.dat", true},
                            {L"v8_context_snapshot.bin", true},
                            {L"cefsubprocess\\locales\\en-US.pak", true},
                            {L"resources.pak", false}}));
    for (const MissingEngineFile& file : all) makeFile(base / file.name);
    EXPECT_TRUE(findMissingEngineFiles(base.wstring()).empty());
    fs::remove(base / L"icudtl.dat");
    fs::create_directory(base / L"icudtl.dat");
    EXPECT_EQ(findMissingEngineFiles(base.wstring()), (Missing{{L"icudtl.dat", true}})) << "a directory is no file";
}

}  // namespace ZEMO::UI
