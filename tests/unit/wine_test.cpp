#include "core/wine/wine.h"

#include <gtest/gtest.h>
#include <winternl.h>

#include <cstring>
#include <string>
#include <vector>

#include "core/wine/child_processes.h"
#include "core/wine/handle_moves.h"
#include "core/wine/import_table.h"
#include "core/wine/loader_order.h"
#include "core/wine/pipe_writes.h"
#include "core/wine/stack_profiler.h"
#include "support/debug_log.h"
#include "support/import_replaced.h"

// Each test is a process of its own, so each asks anew whether this is Wine.
namespace ZEMO::Core::Wine {
namespace {

HMODULE program() { return GetModuleHandleW(nullptr); }

std::vector<std::string> asked;
decltype(&::GetProcAddress) realLookUp = nullptr;
/// A Windows: everything but Wine's own export.
FARPROC WINAPI withoutWine(HMODULE module, const char* name) {
    asked.emplace_back(name);
    return std::strcmp(name, "wine_get_version") == 0 ? nullptr : realLookUp(module, name);
}

/// The modules in the order in which the loader would call them last to first, each with its flags.
std::vector<std::pair<void*, ULONG>> loaderList() {
    const auto* data = NtCurrentTeb()->ProcessEnvironmentBlock->Ldr;
    // The third list of the block, behind the one that the headers name; entries are linked by their third link.
    const auto* head = &data->InMemoryOrderModuleList + 1;
    std::vector<std::pair<void*, ULONG>> list;
    for (const LIST_ENTRY* link = head->Flink; link != head; link = link->Flink) {
        const auto* entry = reinterpret_cast<const unsigned char*>(link) - 0x20;
        list.emplace_back(*reinterpret_cast<void* const*>(entry + 0x30), *reinterpret_cast<const ULONG*>(entry + 0x68));
    }
    return list;
}

}  // namespace

TEST(Wine, NoExportOfWine_NothingIsTouchedAndItIsAskedOnce) {
    const auto listBefore = loaderList();
    void** const place = findImport(program(), "DuplicateHandle");
    ASSERT_NE(place, nullptr);
    void* const before = *place;
    void** const create = findImport(program(), "CreateProcessW");
    ASSERT_NE(create, nullptr);
    void* const createBefore = *create;
    void** const write = findImport(program(), "WriteFile");
    ASSERT_NE(write, nullptr);
    void* const writeBefore = *write;
    void** const line = findImport(program(), "GetCommandLineW");
    ASSERT_NE(line, nullptr);
    void* const lineBefore = *line;
    void** const closeKey = findImport(GetModuleHandleW(L"shell32.dll"), "RegCloseKey");
    void* const closeKeyBefore = closeKey ? *closeKey : nullptr;
    const ZEMO::Test::DebugLogCapture log;
    {
        const ZEMO::Test::ImportReplaced windows("GetProcAddress", &withoutWine);
        realLookUp = windows.original<decltype(realLookUp)>();
        EXPECT_FALSE(isRunningUnderWine());
        guardEngine(program());
        EXPECT_TRUE(guardChildsEngine(program()));
        skipEngineDetach(GetModuleHandleW(L"kernel32.dll"));
        const AssociationQuery query;
    }
    EXPECT_EQ(asked, std::vector<std::string>{"wine_get_version"}) << "once, and nothing else of the loader";
    EXPECT_EQ(*place, before);
    EXPECT_EQ(*create, createBefore);
    EXPECT_EQ(*write, writeBefore);
    EXPECT_EQ(*line, lineBefore);
    EXPECT_EQ(closeKey ? *closeKey : nullptr, closeKeyBefore);
    EXPECT_EQ(loaderList(), listBefore);
    EXPECT_TRUE(log.lines().empty()) << log.dump();
}

TEST(Wine, UnderWine_ExportIsThereAndTheImportIsReplaced) {
    if (!GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "wine_get_version")) GTEST_SKIP() << "this is a Windows";
    EXPECT_TRUE(isRunningUnderWine());
    void** const place = findImport(program(), "DuplicateHandle");
    void* const before = *place;
    guardEngine(program());
    EXPECT_NE(*place, before);
    HMODULE owner = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                       static_cast<const wchar_t*>(*place), &owner);
    EXPECT_EQ(owner, program()) << "a function of ours";
}

TEST(Wine, UnderWine_LoadedModuleHearsOfNoEndAfterTheMark) {
    if (!isRunningUnderWine()) GTEST_SKIP() << "this is a Windows";
    const auto flagsOf = [](void* base) {
        for (const auto& [module, flags] : loaderList()) {
            if (module == base) return flags;
        }
        return ULONG{0};
    };
    constexpr ULONG kEntryPointWasCalled = 0x00080000;
    const HMODULE module = LoadLibraryW(L"dbghelp.dll");
    ASSERT_NE(module, nullptr);
    ASSERT_TRUE(flagsOf(module) & kEntryPointWasCalled);
    skipEngineDetach(module);
    EXPECT_FALSE(flagsOf(module) & kEntryPointWasCalled);
}

TEST(Wine, ModuleWithoutTheImports_NothingIsReplaced) {
    const HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
    EXPECT_EQ(findImport(ntdll, "DuplicateHandle"), nullptr);
    EXPECT_FALSE(divertHandleMoves(ntdll));
    EXPECT_FALSE(tieChildProcesses(ntdll));
    EXPECT_FALSE(divertPipeWrites(ntdll));
    EXPECT_FALSE(disableStackProfiler(ntdll));
}

}  // namespace ZEMO::Core::Wine
