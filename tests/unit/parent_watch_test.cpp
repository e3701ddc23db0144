#include "subprocess/parent_watch.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <cstring>
#include <thread>

#include "support/import_replaced.h"

// The watch in this very process, whose parent lives. What would end the process is recorded instead, and what the
// system says of the parent is the test's: numbers that are used again can't be had at will.
namespace ZEMO::Test {
namespace {

HANDLE ended = nullptr;  // an event: the process would have ended

BOOL WINAPI recordEnd(HANDLE process, UINT) {
    EXPECT_EQ(process, GetCurrentProcess());
    return SetEvent(ended);
}

HANDLE parent = nullptr;
DWORD openError = 0;
HANDLE WINAPI openParent(DWORD, BOOL, DWORD) { return SetLastError(openError), parent; }

// A program that is started from outside Wine, as this one, has no parent.
LONG NTAPI someParent(HANDLE, int, void* basic, ULONG, ULONG*) {
    static_cast<ULONG_PTR*>(basic)[5] = 1234;
    return 0;
}
decltype(&::GetProcAddress) realLookUp = nullptr;
FARPROC WINAPI lookUp(HMODULE module, const char* name) {
    if (std::strcmp(name, "NtQueryInformationProcess") != 0) return realLookUp(module, name);
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&someParent));
}

bool parentIsYounger = false;
BOOL WINAPI times(HANDLE process, FILETIME* created, FILETIME*, FILETIME*, FILETIME*) {
    *created = {process == GetCurrentProcess() ? 100u : (parentIsYounger ? 101u : 99u), 7};
    return TRUE;
}

class ParentWatch : public ::testing::Test {
protected:
    /// Whether the process would have ended within `milliseconds` of the call.
    bool endsWithin(DWORD milliseconds) {
        std::thread([] { Subprocess::endWithParent(); }).detach();  // it does not come back when it ends the process
        return WaitForSingleObject(ended, milliseconds) == WAIT_OBJECT_0;
    }
    void SetUp() override {
        ended = CreateEventW(nullptr, TRUE, FALSE, nullptr);
        realLookUp = query.original<decltype(realLookUp)>();
    }

    const ImportReplaced query{"GetProcAddress", &lookUp};
    const ImportReplaced end{"TerminateProcess", &recordEnd};
    const ImportReplaced open{"OpenProcess", &openParent};
    const ImportReplaced created{"GetProcessTimes", &times};
    // Stands in for a process: it can be waited for, and "ends" when it is set.
    HANDLE fakeParent = CreateEventW(nullptr, TRUE, FALSE, nullptr);
};

constexpr DWORD kSoon = 10'000;
constexpr DWORD kNot = 300;

}  // namespace

TEST_F(ParentWatch, ParentEndsLater_ProcessEndsThen) {
    parent = fakeParent;
    EXPECT_FALSE(endsWithin(kNot));
    SetEvent(fakeParent);
    EXPECT_EQ(WaitForSingleObject(ended, kSoon), WAIT_OBJECT_0);
}

TEST_F(ParentWatch, ParentHasGoneAlready_ProcessEndsAtOnce) {
    openError = ERROR_INVALID_PARAMETER;
    EXPECT_TRUE(endsWithin(kSoon));
}

TEST_F(ParentWatch, NumberBelongsToAYoungerProcess_ProcessEndsAtOnce) {
    parent = fakeParent;
    parentIsYounger = true;
    EXPECT_TRUE(endsWithin(kSoon));
}

TEST_F(ParentWatch, ParentMayNotBeOpened_ProcessGoesOn) {
    openError = ERROR_ACCESS_DENIED;
    EXPECT_FALSE(endsWithin(kNot));
}

}  // namespace ZEMO::Test
