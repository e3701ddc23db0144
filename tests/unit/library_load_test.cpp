#include <gtest/gtest.h>
#include <windows.h>

#include "support/debug_log.h"

// This program does not link the library, so that it can be loaded and unloaded here.
namespace ZEMO::Test {

TEST(LibraryLoad, NeverStarted_UnloadingWritesOnlyTheTwoLines) {
    const DebugLogCapture log;
    const HMODULE library = LoadLibraryW(L"ZEMOUIFramework.dll");
    ASSERT_NE(library, nullptr) << GetLastError();
    EXPECT_EQ(GetModuleHandleW(L"libcef.dll"), nullptr) << "the engine is loaded by its start only";
    ASSERT_TRUE(FreeLibrary(library));
    EXPECT_EQ(GetModuleHandleW(L"ZEMOUIFramework.dll"), nullptr) << "nothing may keep it";
    EXPECT_EQ(log.texts(),
              (std::vector<std::string>{"UIFramework DLL_PROCESS_ATTACH", "UIFramework DLL_PROCESS_DETACH"}));
}

TEST(LibraryLoad, LoadedAndUnloadedAgain_SameEachTime) {
    const DebugLogCapture log;
    for (int i = 0; i < 20; ++i) {
        const HMODULE library = LoadLibraryW(L"ZEMOUIFramework.dll");
        ASSERT_NE(library, nullptr) << GetLastError();
        ASSERT_TRUE(FreeLibrary(library));
        ASSERT_EQ(GetModuleHandleW(L"ZEMOUIFramework.dll"), nullptr);
    }
    EXPECT_EQ(log.lines().size(), 40u) << log.dump();
}

}  // namespace ZEMO::Test
