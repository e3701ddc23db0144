#pragma once

#include "core/geometry.h"
#include "layers/deck/on_screen_keyboard_rules.h"

// The system's own on-screen keyboard, for touch input on a machine without the game's keyboard. It is a program of its
// own: nothing here waits for it, and one that has stopped to answer is left alone. Nothing reports failure but the
// debug log. Any thread; the engine thread and the threads of windows in practice.
namespace ZEMO::UI {

/// Moves the keyboard to its place, or starts it there. It reads its place from the registry as it starts.
void placeOnScreenKeyboard(const bool& atBottom, const ScreenMetrics& metrics);
void hideOnScreenKeyboard();
/// Asks it to end.
void closeOnScreenKeyboard();

void launchOnScreenKeyboard();
/// Position in device pixels, size in logical ones. False, with a log line, at the first value that can't be written; a
/// user who never had the keyboard lacks the key, and it stays so.
bool writeOnScreenKeyboardSettings(const Point& position, const Size& size);

}  // namespace ZEMO::UI
