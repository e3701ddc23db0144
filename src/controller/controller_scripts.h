#pragma once

#include <string>
#include <string_view>

namespace ZEMO::UI {

/// The scripts by which a page of the game's own is operated with a game controller. They are not part of this build
/// yet: no page is a controller page and every script is empty, which the web layer takes as nothing to run.
class ControllerScripts {
public:
    static bool isControllerPage(std::string_view /*url*/) { return false; }
    static std::string buildControllerPageScript(const std::wstring& /*url*/, const std::string& /*status*/) {
        return {};
    }
    static std::string buildInitClientGamePadScript(const std::string& /*status*/) { return {}; }
    static std::string buildHandleControllerInputScript(const std::string& /*data*/) { return {}; }
    static std::string buildFocusGainedScript() { return {}; }
    static std::string buildFocusLostScript() { return {}; }
};

}  // namespace ZEMO::UI
