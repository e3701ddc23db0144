#include "core/wine/stack_profiler.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#include "core/wine/import_table.h"

namespace ZEMO::Core::Wine {

TEST(StackProfiler, AnyCommandLine_SwitchStandsBehindTheProgramAndTheRestIsKept) {
    struct Row {
        std::wstring line, wanted;
    };
    for (const Row& row : {
             Row{L"", L" --disable-stack-profiler"},
             Row{L"game.exe", L"game.exe --disable-stack-profiler"},
             Row{L"game.exe -window", L"game.exe --disable-stack-profiler -window"},
             Row{L"game.exe\t-window", L"game.exe --disable-stack-profiler\t-window"},
             Row{L"game.exe -- --map=1", L"game.exe --disable-stack-profiler -- --map=1"},
             Row{L"\"C:\\a game\\game.exe\"", L"\"C:\\a game\\game.exe\" --disable-stack-profiler"},
             Row{L"\"C:\\a game\\game.exe\"  \"a b\"", L"\"C:\\a game\\game.exe\" --disable-stack-profiler  \"a b\""},
             Row{L"\"C:\\a game", L"\"C:\\a game\" --disable-stack-profiler"},
         }) {
        EXPECT_EQ(withoutStackProfiler(row.line), row.wanted) << std::string(row.line.begin(), row.line.end());
    }
}

// This program stands in for the engine: the import that is diverted is its own.
TEST(StackProfiler, Disabled_OnlyThatModuleSeesTheSwitchAndAlwaysAtTheSamePlace) {
    void** const place = findImport(GetModuleHandleW(nullptr), "GetCommandLineW");
    ASSERT_NE(place, nullptr);
    void* const before = *place;
    const std::wstring own = GetCommandLineW();
    ASSERT_TRUE(disableStackProfiler(GetModuleHandleW(nullptr)));
    ASSERT_TRUE(disableStackProfiler(GetModuleHandleW(nullptr)));
    const wchar_t* const seen = GetCommandLineW();
    EXPECT_EQ(seen, withoutStackProfiler(own));
    EXPECT_EQ(GetCommandLineW(), seen);
    const auto system = reinterpret_cast<decltype(&::GetCommandLineW)>(
        GetProcAddress(GetModuleHandleW(L"kernel32.dll"), "GetCommandLineW"));
    EXPECT_EQ(system(), own);
    EXPECT_TRUE(replaceImport(place, before));
}

}  // namespace ZEMO::Core::Wine
