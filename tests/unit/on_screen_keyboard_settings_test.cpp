// The registry and the shell as the keyboard's start asks them. The user's tree is one of this process's own; answers
// that a machine can't be made to give come from replaced imports.
#include <gtest/gtest.h>
#include <windows.h>

#include <shellapi.h>

#include <iterator>
#include <string>
#include <vector>

#include "layers/deck/on_screen_keyboard.h"
#include "support/debug_log.h"
#include "support/import_replaced.h"
#include "support/keyboard_key.h"

namespace ZEMO::UI {
namespace {

using Test::DebugLogCapture;
using Test::ImportReplaced;
using Values = std::vector<std::optional<DWORD>>;
using Texts = std::vector<std::string>;

/// An empty tree in the place of HKEY_CURRENT_USER, for this process alone.
class OwnUser {
public:
    OwnUser() : path(L"Software\\ZemoTestUser" + std::to_wstring(GetCurrentProcessId())) {
        RegCreateKeyExW(HKEY_CURRENT_USER, path.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr, &key,
                        nullptr);
        RegOverridePredefKey(HKEY_CURRENT_USER, key);
    }
    ~OwnUser() {
        RegOverridePredefKey(HKEY_CURRENT_USER, nullptr);
        RegCloseKey(key);
        RegDeleteTreeW(HKEY_CURRENT_USER, path.c_str());
    }
    OwnUser(const OwnUser&) = delete;
    OwnUser& operator=(const OwnUser&) = delete;

    void addKeyboardKey() {
        HKEY made = nullptr;
        RegCreateKeyExW(HKEY_CURRENT_USER, L"SOFTWARE\\Microsoft\\Osk", 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS,
                        nullptr, &made, nullptr);
        RegCloseKey(made);
    }

private:
    std::wstring path;
    HKEY key = nullptr;
};

class OnScreenKeyboardSettings : public testing::Test {
protected:
    OwnUser user;
    ZEMO::Test::KeyboardKey key;
    const DebugLogCapture log;
};

TEST_F(OnScreenKeyboardSettings, NoKey_NothingWrittenAndTheErrorLogged) {
    EXPECT_FALSE(writeOnScreenKeyboardSettings({0, 702}, {1280, 252}));
    EXPECT_FALSE(key.exists());
    EXPECT_EQ(log.texts(), Texts{"Failed to open registry key (Error: 2)\n"});
    EXPECT_FALSE(log.lines().at(0).wide);
}

TEST_F(OnScreenKeyboardSettings, KeyThere_SixNumbersWrittenOverTheOldOnes) {
    user.addKeyboardKey();
    key.set(L"WindowTop", 1);
    key.set(L"ShowNumPad", 1);
    key.set(L"Dock", 5);
    EXPECT_TRUE(writeOnScreenKeyboardSettings({3, 702}, {1280, 252}));
    EXPECT_EQ(key.all(), (Values{3, 702, 1280, 252, 0, 0}));
    EXPECT_EQ(key.get(L"Dock"), 5u);
    EXPECT_TRUE(log.lines().empty()) << log.dump();
}

Texts written;
size_t failAt = 0;
LSTATUS WINAPI failingWrite(HKEY key, const char* name, DWORD reserved, DWORD type, const BYTE* data, DWORD size) {
    written.push_back(name);
    if (written.size() == failAt) return ERROR_ACCESS_DENIED;
    return Test::systemFunction<decltype(RegSetValueExA)>(L"advapi32.dll", "RegSetValueExA")(key, name, reserved, type,
                                                                                             data, size);
}

TEST_F(OnScreenKeyboardSettings, OneValueRefused_StopsThereAndNamesIt) {
    user.addKeyboardKey();
    const ImportReplaced write("RegSetValueExA", &failingWrite);
    const Texts names{"WindowLeft", "WindowTop", "WindowWidth", "WindowHeight", "ShowNumPad", "ShowClearKey"};
    for (failAt = 1; failAt <= names.size(); ++failAt) {
        written.clear();
        EXPECT_FALSE(writeOnScreenKeyboardSettings({3, 702}, {1280, 252}));
        EXPECT_EQ(written, Texts(names.begin(), names.begin() + static_cast<ptrdiff_t>(failAt)));
        EXPECT_EQ(log.texts().back(), "Failed to set " + names[failAt - 1] + " (Error: 5)\n");
    }
    EXPECT_EQ(log.lines().size(), names.size()) << log.dump();
}

std::vector<std::wstring> asked;
INT_PTR shellAnswer = 0;
HINSTANCE WINAPI askedShell(HWND window, const wchar_t* verb, const wchar_t* file, const wchar_t* parameters,
                            const wchar_t* directory, INT show) {
    asked = {window ? L"window" : L"none",        verb,      file,
             parameters ? parameters : L"(null)", directory, std::to_wstring(show)};
    SetLastError(1223);
    return reinterpret_cast<HINSTANCE>(shellAnswer);
}

TEST_F(OnScreenKeyboardSettings, Launch_ShellIsAskedForTheSystemsKeyboard) {
    const ImportReplaced shell("ShellExecuteW", &askedShell);
    for (const INT_PTR answer : {33, 42}) {
        shellAnswer = answer;
        launchOnScreenKeyboard();
        EXPECT_EQ(asked,
                  (std::vector<std::wstring>{L"none", L"open", L"osk.exe", L"(null)", L"C:\\Windows\\System32", L"1"}));
    }
    EXPECT_TRUE(log.lines().empty()) << log.dump();
}

TEST_F(OnScreenKeyboardSettings, LaunchRefused_LastErrorLogged) {
    const ImportReplaced shell("ShellExecuteW", &askedShell);
    for (const INT_PTR answer : {0, 2, 32}) {
        shellAnswer = answer;
        launchOnScreenKeyboard();
        EXPECT_EQ(log.texts().back(), "Failed to launch OnScreenKeyboard -1223\n");
    }
    EXPECT_EQ(log.lines().size(), 3u) << log.dump();
}

TEST_F(OnScreenKeyboardSettings, SettingsCantBeWritten_KeyboardIsLaunchedAllTheSame) {
    const ImportReplaced shell("ShellExecuteW", &askedShell);
    asked.clear();
    shellAnswer = 33;
    ASSERT_EQ(FindWindowW(L"OSKMainClass", nullptr), nullptr);
    placeOnScreenKeyboard(true, {1280, 720, 1920, 1080});
    EXPECT_EQ(asked.size(), 6u);
    EXPECT_EQ(log.texts(), Texts{"Failed to open registry key (Error: 2)\n"});
}

}  // namespace
}  // namespace ZEMO::UI
