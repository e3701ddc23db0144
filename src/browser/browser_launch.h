#pragma once

#include <functional>
#include <string>

// Opens an address in the user's own browser, outside the game. The game's settings live in a room above this one, so a
// launch brings two questions along and asks each at the moment it needs the answer.
namespace ZEMO::UI {

/// True: the game opened the address itself.
using OpenExternalBrowserCallback = std::function<bool(const std::string& url)>;

/// Both are asked on the launch's own thread, so what they read must live as long as the process.
struct BrowserLaunchSettings {
    /// The game's callback as it is set when the launch's thread begins; empty if none.
    std::function<OpenExternalBrowserCallback()> externalBrowserCallback;
    /// Whether the game shows an on-screen keyboard of its own, which marks the handheld.
    std::function<bool()> hasShowKeyboardCallback;
};

/// Opens `url` on a new detached thread and returns at once. The game's callback is called on that thread; unless it
/// answers true, the default browser opens the address. Any thread. Throws std::system_error if no thread can be
/// started; nothing else is ever reported.
void launchBrowser(std::string url, BrowserLaunchSettings settings);

/// The same for a private window, or for an ordinary one where the browser has no private mode.
void launchIncognitoBrowser(std::string url, BrowserLaunchSettings settings);

/// The work behind the game's callback, on the calling thread. The ordinary one may wait for the loopback responder.
void openBrowserProcedure(const std::string& url, const BrowserLaunchSettings& settings);
void openIncognitoBrowserProcedure(const std::string& url);

}  // namespace ZEMO::UI
