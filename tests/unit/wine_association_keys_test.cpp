#include "core/wine/association_keys.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "browser/default_browser.h"
#include "core/wine/import_table.h"
#include "core/wine/wine.h"

// The system's own lookup of its own associations.
namespace ZEMO::Core::Wine {
namespace {

HMODULE shell() { return GetModuleHandleW(L"shell32.dll"); }

/// Looks on at the keys that the shell opens and closes on this thread, below what the library puts there.
class ShellsKeys {
public:
    ShellsKeys() {
        current = this;
        for (const auto& [name, function] : seen()) EXPECT_TRUE(replaceImport(findImport(shell(), name), function));
    }
    ~ShellsKeys() {
        for (const auto& [name, function] : seen()) {
            replaceImport(findImport(shell(), name), systemFunction(name));
        }
        current = nullptr;
    }
    std::vector<HKEY> open;
    int opened = 0;
    int closedTwice = 0;

private:
    static std::vector<std::pair<const char*, void*>> seen() {
        return {{"RegOpenKeyExW", reinterpret_cast<void*>(&openKey)},
                {"RegCloseKey", reinterpret_cast<void*>(&closeKey)}};
    }
    static void* systemFunction(const char* name) {
        return reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"advapi32.dll"), name));
    }
    static LSTATUS WINAPI openKey(HKEY key, const wchar_t* name, DWORD options, REGSAM access, HKEY* result) {
        const LSTATUS status = RegOpenKeyExW(key, name, options, access, result);
        if (status == ERROR_SUCCESS && GetCurrentThreadId() == current->thread) {
            current->open.push_back(*result);
            ++current->opened;
        }
        return status;
    }
    static LSTATUS WINAPI closeKey(HKEY key) {
        const LSTATUS status = RegCloseKey(key);
        if (key && GetCurrentThreadId() == current->thread) {
            std::erase(current->open, key);
            // Some were opened elsewhere: only the system knows which are open.
            if (status != ERROR_SUCCESS) ++current->closedTwice;
        }
        return status;
    }
    static ShellsKeys* current;
    const DWORD thread = GetCurrentThreadId();
};
ShellsKeys* ShellsKeys::current = nullptr;

/// A thread that makes events and lets them go as fast as it can.
class HandlesElsewhere {
public:
    HandlesElsewhere() : thread([this] { work(); }) {}
    ~HandlesElsewhere() { end(); }
    /// How many were gone before it let go of them.
    int closedByOthers() {
        end();
        return lost;
    }

private:
    void work() {
        while (going) {
            const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, nullptr);
            const bool set = SetEvent(event) != FALSE;
            const bool closed = CloseHandle(event) != FALSE;
            if (!set || !closed) ++lost;
        }
    }
    void end() {
        going = false;
        if (thread.joinable()) thread.join();
    }
    std::atomic<bool> going{true};
    int lost = 0;
    std::thread thread;
};

}  // namespace

TEST(AssociationKeys, DefaultBrowserLookedUp_EachKeyIsClosedOnce) {
    const ShellsKeys keys;
    EXPECT_NE(UI::getDefaultBrowserPath(L"https"), L"");
    EXPECT_GT(keys.opened, 0) << "the query is at home elsewhere";
    EXPECT_EQ(keys.closedTwice, 0);
    EXPECT_TRUE(keys.open.empty()) << keys.open.size() << " are left open";
}

TEST(AssociationKeys, LookedUpAgainAndAgain_EachKeyIsClosedOnceInEach) {
    const ShellsKeys keys;
    for (int i = 0; i < 20; ++i) UI::getDefaultBrowserPath(L"https");
    EXPECT_EQ(keys.closedTwice, 0);
    EXPECT_TRUE(keys.open.empty()) << keys.open.size() << " are left open";
}

// It can go wrong on any of them, and did so on several of a hundred without the guard.
TEST(AssociationKeys, DefaultBrowserLookedUpManyTimes_NoHandleOfAnotherThreadIsClosed) {
    HandlesElsewhere elsewhere;
    for (int i = 0; i < 300; ++i) UI::getDefaultBrowserPath(L"https");
    EXPECT_EQ(elsewhere.closedByOthers(), 0);
}

TEST(AssociationKeys, CallsOutsideOfAQuery_GoThrough) {
    const ShellsKeys keys;
    {
        const AssociationQuery query;
    }
    HKEY key = nullptr;
    const auto open = reinterpret_cast<decltype(&RegOpenKeyExW)>(*findImport(shell(), "RegOpenKeyExW"));
    const auto close = reinterpret_cast<decltype(&RegCloseKey)>(*findImport(shell(), "RegCloseKey"));
    ASSERT_EQ(open(HKEY_CURRENT_USER, L"Software", 0, KEY_READ, &key), ERROR_SUCCESS);
    EXPECT_EQ(close(key), ERROR_SUCCESS);
    close(key);
    EXPECT_EQ(keys.opened, 1);
    EXPECT_EQ(keys.closedTwice, 1) << "the shell's own closes are not for the library to judge";
}

}  // namespace ZEMO::Core::Wine
