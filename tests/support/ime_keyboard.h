#pragma once

#include <windows.h>

#include <initializer_list>

namespace ZEMO::Test {

/// A keyboard of this thread whose layout belongs to the tests' own input method module (tests/helpers/test_ime): the
/// system loads the module and asks it about each key. The layout before comes back at the end.
class ImeKeyboard {
public:
    /// `language`: LANG_KOREAN, LANG_JAPANESE or LANG_CHINESE, whose word the module knows.
    explicit ImeKeyboard(WORD language);
    ~ImeKeyboard();
    ImeKeyboard(const ImeKeyboard&) = delete;
    ImeKeyboard& operator=(const ImeKeyboard&) = delete;

    /// Whether the system has taken the module and the layout.
    bool isActive() const { return active; }
    /// What the user's key for it does: the method of this window composes, or leaves the keys alone.
    static void setOpen(HWND window, bool open);
    static bool isOpen(HWND window);

private:
    HKL before;
    HKL layout;
    bool active = false;
};

/// Presses and releases the keys, one after the other, as a user does: they go to the window that has the focus.
void pressKeys(std::initializer_list<WORD> virtualKeys);
/// The same with Shift held.
void pressKeysWithShift(std::initializer_list<WORD> virtualKeys);

}  // namespace ZEMO::Test
