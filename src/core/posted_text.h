#pragma once

#include <windows.h>

#include <optional>
#include <string>

// A text that rides in a posted window message. The sender gives it up with a successful post; the receiver takes it
// exactly once. The library knows the addresses of its own texts: a game may use the same message number for messages
// of its own, with any lParam, which these functions neither read nor free. Any thread; from the moment on when the
// system ends the process, nothing is posted or taken any more (a thread that is gone may hold the lock).
namespace ZEMO::Core {

/// Posts `text` to `window` as `message`, with a wParam of 0 and the text's address as lParam. False when the post
/// failed or there is no window; the text is freed then. The text of a message that dies with its window is freed with
/// one of the next posts.
bool postText(HWND window, UINT message, std::string text);

/// The receiver's end: the text of a message's lParam. Nothing for an lParam of 0, one that no post of the library is
/// under way with, and the second of two messages with one lParam.
std::optional<std::string> takePostedText(LPARAM lParam);

/// For a receiver that has no use for the message: frees its text, if it has one.
void dropPostedText(LPARAM lParam);

}  // namespace ZEMO::Core
