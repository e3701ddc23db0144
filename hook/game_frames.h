#pragma once

#include <windows.h>

#include <zemo/rendering_mode.h>

#include <cstdint>

// Which frames are the game's own: its graphics API, found by its first present, and its window.
namespace ZEMO::GraphicsHook {

/// The API of the first frame that was presented; unknown until then. Any thread.
UI::RenderingMode gameApi();

/// A frame is about to be presented on `window` by that API: true when the page belongs into it. The first frame of the
/// process settles the API, the first one with a page the window. While no page is shown this costs two loads.
bool takesPage(UI::RenderingMode presented, HWND window);
/// The same for APIs that ask for their window first: false saves the asking.
bool mayTakePage(UI::RenderingMode presented);

/// Any thread.
bool isGameMinimised();

/// The game's window goes: no frame takes a page until another window presents one.
void leaveGameWindow();

/// OpenGL: how long the game's render thread pauses after a frame with a page in it.
void setPauseAfterFrame(uint32_t milliseconds);
uint32_t pauseAfterFrame();

}  // namespace ZEMO::GraphicsHook
