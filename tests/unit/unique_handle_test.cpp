#include "core/unique_handle.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace ZEMO::Core {
namespace {

int closed = 0;
intptr_t lastClosed = 0;
void closeCounted(HANDLE handle) {
    ++closed;
    lastClosed = reinterpret_cast<intptr_t>(handle);
    SetLastError(99);
}
using Counted = UniqueHandle<HANDLE, &closeCounted>;
using CountedFile = UniqueHandle<HANDLE, &closeCounted, -1>;
HANDLE handleOf(intptr_t value) { return reinterpret_cast<HANDLE>(value); }

static_assert(!std::is_copy_constructible_v<Counted> && !std::is_copy_assignable_v<Counted>);
static_assert(std::is_nothrow_move_constructible_v<Counted> && std::is_nothrow_move_assignable_v<Counted>);

class UniqueHandleTest : public testing::Test {
protected:
    void SetUp() override { closed = 0; }
};

}  // namespace

TEST_F(UniqueHandleTest, Empty_FalseAndNothingClosed) {
    {
        const Counted handle;
        EXPECT_FALSE(handle);
    }
    {
        const CountedFile handle;
        EXPECT_FALSE(handle);
        EXPECT_EQ(handle.get(), INVALID_HANDLE_VALUE);
    }
    {
        const CountedFile handle(INVALID_HANDLE_VALUE);
        EXPECT_FALSE(handle);
    }
    EXPECT_EQ(closed, 0);
}

TEST_F(UniqueHandleTest, OutOfScope_ClosedOnceAndLastErrorKept) {
    SetLastError(7);
    {
        const Counted handle(handleOf(5));
        EXPECT_TRUE(handle);
    }
    EXPECT_EQ(closed, 1);
    EXPECT_EQ(lastClosed, 5);
    EXPECT_EQ(GetLastError(), 7u);
}

TEST_F(UniqueHandleTest, MovedFrom_EmptyAndTheOtherCloses) {
    {
        Counted first(handleOf(1));
        Counted second(std::move(first));
        EXPECT_FALSE(first);
        Counted third(handleOf(3));
        third = std::move(second);
        EXPECT_EQ(lastClosed, 3);
        EXPECT_EQ(closed, 1);
        EXPECT_EQ(third.get(), handleOf(1));
    }
    EXPECT_EQ(closed, 2);
}

TEST_F(UniqueHandleTest, MovedToItself_StillOwns) {
    Counted handle(handleOf(1));
    Counted& same = handle;
    handle = std::move(same);
    EXPECT_EQ(handle.get(), handleOf(1));
    EXPECT_EQ(closed, 0);
    EXPECT_EQ(handle.release(), handleOf(1));
}

TEST_F(UniqueHandleTest, ResetAndPut_CloseWhatWasOwned) {
    Counted handle(handleOf(1));
    handle.reset(handleOf(1));
    EXPECT_EQ(closed, 0);
    handle.reset(handleOf(2));
    EXPECT_EQ(lastClosed, 1);
    *handle.put() = handleOf(3);
    EXPECT_EQ(lastClosed, 2);
    EXPECT_EQ(closed, 2);
    handle.reset();
    EXPECT_EQ(lastClosed, 3);
    EXPECT_FALSE(handle);
}

TEST_F(UniqueHandleTest, RealEvent_HandleInvalidAfterwards) {
    HANDLE raw = nullptr;
    DWORD flags = 0;
    {
        const UniqueKernelHandle event(CreateEventW(nullptr, TRUE, FALSE, nullptr));
        raw = event.get();
        ASSERT_TRUE(GetHandleInformation(raw, &flags));
    }
    EXPECT_FALSE(GetHandleInformation(raw, &flags));
}

TEST_F(UniqueHandleTest, RealRegistryKey_OpenedThroughPut) {
    UniqueRegistryKey key;
    ASSERT_EQ(RegOpenKeyExW(HKEY_CURRENT_USER, L"Software", 0, KEY_READ, key.put()), ERROR_SUCCESS);
    EXPECT_TRUE(key);
}

TEST_F(UniqueHandleTest, ScreenDc_GivenOutAndUsable) {
    const WindowDc screen(nullptr);
    ASSERT_TRUE(screen);
    EXPECT_GT(GetDeviceCaps(screen.get(), LOGPIXELSX), 0);
}

}  // namespace ZEMO::Core
