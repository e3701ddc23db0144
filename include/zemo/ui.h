#pragma once

/// The library's whole public interface.
///
/// Order of use: setUIEngineOsrRenderEnabled; InitUILibrary; InitUIGraphicsHook if the game wants that road; the
/// callback and setting exports; then views. A view copies the settings when it is first shown. Unless a line says
/// otherwise, call these on the thread that owns the game's main window. None reports failure by value; what goes wrong
/// is a line in the debug log (OutputDebugString). Text is UTF-8.

#include <zemo/export.h>
#include <zemo/file_select_view.h>
#include <zemo/frame_present.h>
#include <zemo/json_containers.h>
#include <zemo/locale_setter.h>
#include <zemo/platform.h>
#include <zemo/ready_content.h>
#include <zemo/string_util.h>
#include <zemo/url.h>
#include <zemo/view.h>
#include <zemo/web_content.h>
#include <zemo/web_view.h>

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

namespace ZEMO::UI {

/// Window messages (WM_USER + 200 to WM_USER + 206) that the library posts to the game's main window and to its own. A
/// game should not use these numbers for messages of its own to that window: one that it posts there is taken for the
/// library's while a view is shown, though a pointer that it carries is neither read nor freed.
inline constexpr unsigned int kFirstReservedMessage = 1224;
inline constexpr unsigned int kLastReservedMessage = 1230;

/// Starts the engine on a thread of the library and returns when it is ready (0.3 to 0.5 s); finds the game's main
/// window (the process's first visible top-level window without an owner) and takes its messages first from then on.
/// Makes the C runtime's narrow strings UTF-8; language and country of the game's locale stay (see LocaleSetter).
/// Call once, on the game's main thread, when that window is visible. Throws std::system_error when the thread can't be
/// started.
/// The engine ends with the process. A return from main and exit stop it in order, in 0.2 s as a rule and two seconds
/// at most: no frame and no event of a page comes from then on, and views that are still held show nothing more.
/// ExitProcess ends it where it is; what a page stored in the last half minute may be lost then.
ZEMO_API void InitUILibrary();

/// Loads ZEMOGraphicsHook.dll; views shown afterwards draw into the game's own frame. No effect when it is missing.
ZEMO_API void InitUIGraphicsHook();

/// Brings the game's main window to the foreground. Any thread.
ZEMO_API void activeFocusMainWindow();

/// A new, inert web view. The caller owns it; see IZEMOWebView.
ZEMO_API std::shared_ptr<IZEMOWebView> createWebViewDefault();

/// A new "open file" dialog. The caller owns it.
ZEMO_API std::shared_ptr<IZEMOFileSelectView> createFileSelectViewDialog();

/// resources/html beside the library, absolute, with forward slashes only; empty when the library's place is unknown.
/// Any thread.
ZEMO_API std::filesystem::path getLocalHTMLResourcePath();

/// Opens the address in the user's external browser, on a thread of its own; returns at once. Any thread. The callback
/// of setUIOpenExternalBrowserCallback is asked first. The text goes to the system's shell as it is, which opens
/// whatever is registered for it: look at the scheme of what a page gave. Throws std::system_error when the thread
/// can't be started.
ZEMO_API void openBrowser(const ZEMO::Core::IURL& url);

/// The same in a private window, where that browser has one.
ZEMO_API void openIncognitoBrowser(const ZEMO::Core::IURL& url);

/// The game's on-screen keyboard went away: the page's text field loses the focus.
ZEMO_API void processSteamDeckKeyboardClose();

/// Controller input for the page in front, as a script expression (JSON): the page's handleControllerInput gets it. Any
/// thread; returns at once, the page hears of it from the window's message. Dropped unless the game's main window, or a
/// view's window that it owns, is in the foreground, and while the page does not use the controller scripts.
///   sendGameControllerCustomMsgData(R"({"button": "down"})");
ZEMO_API void sendGameControllerCustomMsgData(const std::string& data);

/// The controller's state, a JSON object, for the next page load and the next page that asks for it. Nothing is sent to
/// an open page. Any thread.
ZEMO_API void sendGameControllerStatus(const std::string& statusJson);

/// Injects an input event into the page in front, as the user would have made it. Any thread; posted to the main
/// window, so the events of one thread keep their order. `x` and `y` are client pixels of that window, signed 16 bits.
///
/// | type               | action                 | data                                                      |
/// |--------------------|------------------------|-----------------------------------------------------------|
/// | "Click" or "Touch" | "Move", "Down" or "Up" | ignored; a move is one with the left button held          |
/// | "Wheel"            | "Up" or "Down"         | ignored; one notch                                        |
/// | "Key"              | "Down" or "Up"         | virtual key, decimal, or hexadecimal with 0x in front     |
/// | "Message"          | ignored                | text for the focused field, UTF-8                         |
///
/// Anything else does nothing. Throws std::invalid_argument or std::out_of_range for a key that is no 32-bit number.
///   sendUIRemoteInputEvent("Key", "Down", "0x0D", 0, 0);
ZEMO_API void sendUIRemoteInputEvent(const std::string& type, const std::string& action, const std::string& data, int x,
                                     int y);

/// Milliseconds, handed to an OpenGL graphics hook once. Read when a view is first shown.
ZEMO_API void setOpenGLSleepTime(unsigned int ms);

/// Non-zero: pages are composited by the engine in software ("disable-gpu-compositing"). Only before InitUILibrary.
ZEMO_API void setUIEngineOsrRenderEnabled(int enabled);

/// Told 1 when a page uses the controller scripts, 0 when not: on the engine thread when that changes, on the window's
/// thread each time the view gets the focus. Read when a view is first shown. Must not block.
ZEMO_API void setUIGameControllerScriptUseCallback(std::function<void(int)> callback);

/// Asked, on a thread of the library, before an address goes to the external browser; true: the game has opened it.
ZEMO_API void setUIOpenExternalBrowserCallback(std::function<bool(const std::string&)> callback);

/// Takes the frames of views shown afterwards (unless a graphics hook does).
ZEMO_API void setUIOsrFramePresentCallback(OsrFramePresentCallback callback);

/// Asked to show the game's on-screen keyboard: 0 text, 2 e-mail, 3 numbers; on the engine thread. Read when a view is
/// first shown.
ZEMO_API void setUIShowSteamDeckKeyboardCallback(std::function<void(int)> callback);

/// While true, the view in front ignores pointer messages.
ZEMO_API void setUISteamOverlayActiveStatus(bool active);

/// No effect; kept for callers. The browser language is fixed when the engine starts.
ZEMO_API void updateUILanguage(const char* language);

}  // namespace ZEMO::UI

/// The plain entry points: unmangled names, for callers that look them up by name.
extern "C" {

/// (event kind, browser id, a, b): 1 text selection from a to b; 2 cancel the composition; 3 a password field gained
/// (a = 1) or lost (a = 0) the focus.
typedef void (*ZEMOImeEventCallback)(int eventKind, int browserId, int a, int b);

/// `rects`: `count` rectangles of four 32-bit integers (x, y, width, height), null for a count of 0; valid during the
/// call.
typedef void (*ZEMOImeCompositionBoundsCallback)(int browserId, const void* rects, uint32_t count);

/// A test start-up: like InitUILibrary without the custom scheme, always with the graphics hook. Returns a negative
/// value when the engine runs.
ZEMO_API int InitUILibraryTEST();

/// Opens a view on a fixed public page and shows it; the one before is released.
ZEMO_API void createWebViewTEST();

/// Stores the pointer; called on the engine thread. Null switches it off.
ZEMO_API void registerImeCompositionBoundsCallback(ZEMOImeCompositionBoundsCallback callback);

/// Stores the pointer; called on the engine thread or a window's thread. Null switches it off.
ZEMO_API void registerImeEventCallback(ZEMOImeEventCallback callback);

/// An outside IME's step for the page in front: kind 0 cancels, 1 composes `text` after `*repeatCount` backspaces, 2
/// commits `text`. Both pointers may be null and are read during the call; `reserved` is ignored. No view: no effect.
ZEMO_API void setImeProcess(uint32_t kind, const std::u16string* text, const uint32_t* repeatCount, void* reserved);

/// Non-zero: the game brings its own text service, the window's IMM32 road stays unused.
ZEMO_API void setUseExternalTsfIme(int enabled);
}
