// In a build against an engine distribution a CefString's characters are the engine's work: a program that uses one
// loads the engine first, as the library does, and does not start it.
#ifdef ZEMO_CEF_DISTRIBUTION

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "cef/engine_library.h"

namespace {

class EngineStrings : public testing::Environment {
public:
    void SetUp() override {
        std::wstring path(32767, 0);
        path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
        std::string reason;
        ASSERT_TRUE(cefLoadLibrary(path.substr(0, path.find_last_of(L'\\')).c_str(), &reason)) << reason;
    }
};

const testing::Environment* const kEngineStrings = testing::AddGlobalTestEnvironment(new EngineStrings);

}  // namespace

#endif
