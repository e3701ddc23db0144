#pragma once

#include <string>
#include <string_view>

namespace ZEMO::UI {

/// The scripts by which a page is operated with a game controller, as text; whoever has a browser runs them. Stateless,
/// any thread. Status and data go into the script as they are: each must be an expression, as a JSON text is.
class ControllerScripts {
public:
    /// Whether `url`, UTF-8, belongs to the pages that are operated with a controller. False when it is no path.
    static bool isControllerPage(std::string_view url);
    /// Hands the page the status and loads the common style sheets and scripts into it. Empty for any other page.
    static std::string buildControllerPageScript(const std::wstring& url, const std::string& status);

    // Calls of what the page's scripts provide. A page without the first two says so on its console.
    static std::string buildInitClientGamePadScript(const std::string& status);
    static std::string buildHandleControllerInputScript(const std::string& data);
    static std::string buildFocusGainedScript();
    static std::string buildFocusLostScript();
};

}  // namespace ZEMO::UI
