// The library where its own path is about as long as the room that it has for it: 260 characters with the NUL.
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <string>

#include "support/debug_log.h"
#include "support/exported.h"
#include "support/far_file.h"

namespace ZEMO::Test {
namespace {

namespace fs = std::filesystem;

std::wstring pathOf(HMODULE module) {
    std::wstring path(32768, L'\0');
    path.resize(GetModuleFileNameW(module, path.data(), static_cast<DWORD>(path.size())));
    return path;
}

fs::path programDirectory() { return fs::path(pathOf(nullptr)).parent_path(); }

// A copy of the library at a path of a chosen length. This program, which does not link the library, loads it and lies
// elsewhere itself.
class FarLibrary {
public:
    explicit FarLibrary(std::size_t length)
        : file_((programDirectory() / L"ZEMOUIFramework.dll").wstring(), L"ZEMOUIFramework.dll", length),
          library_(LoadLibraryW(file_.path().c_str())) {
        EXPECT_NE(library_, nullptr) << GetLastError();
        EXPECT_EQ(library_ ? pathOf(library_).size() : length, length) << "the system knows it by another path";
    }
    ~FarLibrary() {
        if (library_) FreeLibrary(library_);
    }
    FarLibrary(const FarLibrary&) = delete;
    FarLibrary& operator=(const FarLibrary&) = delete;

    fs::path directory() const { return file_.folder(); }
    fs::path localHtmlPath() const {
        using Call = fs::path (*)();
        const auto call =
            library_ ? reinterpret_cast<Call>(exportedUiFunction(library_, "getLocalHTMLResourcePath")) : nullptr;
        EXPECT_NE(call, nullptr);
        return call ? call() : fs::path();
    }

private:
    const FarFile file_;
    const HMODULE library_;
};

std::string html(const fs::path& directory) { return (directory / L"resources" / L"html").generic_string(); }

TEST(LibraryPath, Of259Characters_ItsOwnDirectoryIsTheBase) {
    const FarLibrary library(259);
    const DebugLogCapture log;
    EXPECT_EQ(library.localHtmlPath().string(), html(library.directory()));
    EXPECT_THAT(log.texts(), testing::IsEmpty());
}

TEST(LibraryPath, Of260Characters_ExecutableStandsIn) {
    const FarLibrary library(260);
    const DebugLogCapture log;
    EXPECT_EQ(library.localHtmlPath().string(), html(programDirectory()));
    EXPECT_THAT(log.texts(),
                testing::ElementsAre("GetModuleFileNameW failed or truncated: 122",
                                     "getOwnModulePath failed, falling back to GetModuleFileName(NULL, ...)"));
}

TEST(LibraryPath, Of400Characters_ExecutableStandsIn) {
    const FarLibrary library(400);
    EXPECT_EQ(library.localHtmlPath().string(), html(programDirectory()));
}

}  // namespace
}  // namespace ZEMO::Test
