#pragma once

#include <windows.h>

#include <functional>

// The way of work to a window's thread that does not depend on a layer being left to hear a message: the end of a view
// takes it, whose layer is just going.
namespace ZEMO::UI {

/// Runs `call` on the thread of `window`: at once when that is the calling one, else when that thread next takes a
/// message. Never waits, so it can't block on a thread that waits for the caller. Dropped unrun when the window goes
/// before: what it would have set went with the window. `window` is the game's main window, an own window, or a child
/// of one. Any thread.
void callOnWindowThread(HWND window, std::function<void()> call);

/// For the procedures of those windows, before anything else: true when `message` was such a call, which is done then.
bool runWindowThreadCalls(HWND window, UINT message);

}  // namespace ZEMO::UI
