// Several tests in one process share one start of the engine and one game window. Each must leave both as it found
// them, or the tests after it would suffer: what it left is its own failure.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>

#include "engine/game_host.h"
#include "support/own_window.h"

namespace ZEMO::Test {
namespace {

size_t pageProcesses() {
    const std::vector<DWORD> children = childProcesses();
    return static_cast<size_t>(
        std::ranges::count_if(children, [](DWORD child) { return childType(child) == "renderer"; }));
}

void dispatchWaiting() {
    for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);) DispatchMessageW(&message);
}

bool becomes(const std::function<bool()>& done) {
    const auto end = std::chrono::steady_clock::now() + kPatience;
    while (!done()) {
        if (std::chrono::steady_clock::now() > end) return false;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
        dispatchWaiting();
    }
    return true;
}

class LeavesNothing : public testing::EmptyTestEventListener {
    void OnTestEnd(const testing::TestInfo&) override {
        EXPECT_TRUE(becomes([] { return !findViewWindow(); })) << "a view's own window is left";
        // The engine ends pages in its own time, and keeps one process warm for the next.
        EXPECT_TRUE(becomes([] { return pageProcesses() <= 1; })) << pageProcesses() << " page processes are left";
    }
};

class SharedEngine : public testing::Environment {
    void SetUp() override {
        testing::UnitTest& program = *testing::UnitTest::GetInstance();
        if (program.test_to_run_count() < 2) return;
        GameHost::shareWindow();
        program.listeners().Append(std::make_unique<LeavesNothing>().release());
    }
};

[[maybe_unused]] const auto* const environment =
    testing::AddGlobalTestEnvironment(std::make_unique<SharedEngine>().release());

}  // namespace
}  // namespace ZEMO::Test
