#include "core/wine/child_processes.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstdlib>
#include <string>

#include "core/unique_handle.h"
#include "support/helper_process.h"

// A parent that is killed before it has resumed its child. It stands in for a game: the import that is diverted is its
// own.
namespace ZEMO::Core::Wine {
namespace {

/// The parent, killed; the child, which never ran.
struct Killed {
    Killed(const wchar_t* way, const wchar_t* attributes)
        : parent(ZEMO::Test::helperPath(L"suspended_child.exe"), {way, attributes}) {
        const auto line = parent.line("");
        said = line ? *line : "nothing: " + parent.output();
        child.reset(OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, std::strtoul(said.c_str(), nullptr, 10)));
        parent.terminate();
    }
    ~Killed() {
        if (child) TerminateProcess(child.get(), 1);
    }
    Killed(const Killed&) = delete;
    Killed& operator=(const Killed&) = delete;
    bool childEndsWithin(DWORD milliseconds) const {
        return WaitForSingleObject(child.get(), milliseconds) == WAIT_OBJECT_0;
    }
    // Its output ends with the child, which inherits it: the child goes first.
    ZEMO::Test::HelperProcess parent;
    std::string said;
    UniqueKernelHandle child;
};

}  // namespace

TEST(ChildProcesses, ParentKilledBeforeItsTiedChildRan_ChildIsGone) {
    for (const wchar_t* attributes : {L"attributes", L"none"}) {
        const Killed killed(L"tied", attributes);
        ASSERT_TRUE(killed.child) << killed.said;
        EXPECT_TRUE(killed.said.ends_with(" inherits")) << killed.said;
        EXPECT_TRUE(killed.childEndsWithin(10'000)) << killed.said;
    }
}

// The other half: this is what happens without. Where it fails, child_processes may go.
TEST(ChildProcesses, ParentKilledBeforeItsPlainChildRan_ChildStays) {
    const Killed killed(L"plain", L"none");
    ASSERT_TRUE(killed.child) << killed.said;
    EXPECT_FALSE(killed.childEndsWithin(1000));
}

}  // namespace ZEMO::Core::Wine
