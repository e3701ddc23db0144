#include "layers/deck/on_screen_keyboard.h"

#include <windows.h>

#include <shellapi.h>

#include "core/log.h"
#include "core/unique_handle.h"

namespace ZEMO::UI {
namespace {

constexpr wchar_t kKeyboardClass[] = L"OSKMainClass";
constexpr char kKeyboardKey[] = "SOFTWARE\\Microsoft\\Osk";
/// The shell's answers below this one are errors.
constexpr INT_PTR kFirstShellSuccess = 33;

HWND findKeyboard() { return FindWindowW(kKeyboardClass, nullptr); }

/// A window can be shown, hidden and moved only with its own thread's help: one that does not answer would hold up the
/// engine, or the game.
bool answers(HWND keyboard) { return !IsHungAppWindow(keyboard); }

void startAtPlace(const Rect& place) {
    writeOnScreenKeyboardSettings({place.x, place.y}, {place.width, place.height});
    launchOnScreenKeyboard();
}

void moveToPlace(HWND keyboard, const Rect& place) {
    // Not activated: that would take the game's focus, and with it hide the keyboard again.
    constexpr UINT kFlags = SWP_SHOWWINDOW | SWP_NOACTIVATE;
    if (answers(keyboard)) SetWindowPos(keyboard, nullptr, place.x, place.y, place.width, place.height, kFlags);
}

LSTATUS writeSetting(HKEY key, const KeyboardSetting& setting) {
    const DWORD value = setting.value;
    return RegSetValueExA(key, setting.name, 0, REG_DWORD, reinterpret_cast<const BYTE*>(&value), sizeof value);
}

}  // namespace

void placeOnScreenKeyboard(const bool& atBottom, const ScreenMetrics& metrics) {
    if (const HWND keyboard = findKeyboard())
        moveToPlace(keyboard, openKeyboardPlace(atBottom, metrics));
    else
        startAtPlace(startingKeyboardPlace(atBottom, metrics));
}

void hideOnScreenKeyboard() {
    const HWND keyboard = findKeyboard();
    if (keyboard && answers(keyboard)) ShowWindow(keyboard, SW_HIDE);
}

void closeOnScreenKeyboard() {
    if (const HWND keyboard = findKeyboard()) PostMessageW(keyboard, WM_CLOSE, 0, 0);
}

void launchOnScreenKeyboard() {
    const auto answer = reinterpret_cast<INT_PTR>(
        ShellExecuteW(nullptr, L"open", L"osk.exe", nullptr, L"C:\\Windows\\System32", SW_SHOWNORMAL));
    if (answer < kFirstShellSuccess) Core::logDebugA("Failed to launch OnScreenKeyboard -%lu\n", GetLastError());
}

bool writeOnScreenKeyboardSettings(const Point& position, const Size& size) {
    Core::UniqueRegistryKey key;
    if (const LSTATUS error = RegOpenKeyExA(HKEY_CURRENT_USER, kKeyboardKey, 0, KEY_SET_VALUE, key.put())) {
        Core::logDebugA("Failed to open registry key (Error: %ld)\n", error);
        return false;
    }
    for (const KeyboardSetting& setting : keyboardSettings(position, size)) {
        if (const LSTATUS error = writeSetting(key.get(), setting)) {
            key.reset();
            Core::logDebugA("Failed to set %s (Error: %ld)\n", setting.name, error);
            return false;
        }
    }
    return true;
}

}  // namespace ZEMO::UI
