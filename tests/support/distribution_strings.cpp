// In a build against an engine distribution a CefString's characters are the engine's work: a program that uses one
// loads the engine first, as the library does, and does not start it.
#ifdef ZEMO_CEF_DISTRIBUTION

#include <gtest/gtest.h>
#include <windows.h>

#include <filesystem>
#include <string>

#include "cef/engine_library.h"

namespace {

class EngineStrings : public testing::EmptyTestEventListener {
public:
    void OnTestSuiteStart(const testing::TestSuite& suite) override {
        if (suite.name() == std::string("LibraryLoad")) return;  // is about a process without it
        std::wstring path(32767, 0);
        path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
        const std::filesystem::path directory = std::filesystem::path(path).parent_path();
        if (!exists(directory / L"libcef.dll")) return;  // a copy of the program that a test made elsewhere
        std::string reason;
        EXPECT_TRUE(cefLoadLibrary(directory.c_str(), &reason)) << reason;
    }
};

[[maybe_unused]] const bool kEngineStrings = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new EngineStrings);
    return true;
}();

}  // namespace

#endif
