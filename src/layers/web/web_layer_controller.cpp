#include "controller/controller_scripts.h"
#include "layers/layer_manager.h"
#include "layers/web/special_url.h"
#include "layers/web/web_layer.h"

// What the page and the game tell each other of the controller. The page's side comes on the engine thread (a page that
// begins, a reserved address), the game's and the focus on the window's thread. Scripts may be run from either.
namespace ZEMO::UI {

void WebLayer::injectControllerScript(const std::string& script) {
    // Once for a layer: a later page of it has the scripts only after one has turned them off.
    if (controllerScriptActive || !adapter) return;
    runInMainFrame(script, false);
    controllerScriptActive = true;
    reportControllerScriptUse();
}

bool WebLayer::handleSpecialUrl(const std::string& url) {
    bool use = false;
    std::string status;
    switch (classifySpecialUrl(url, ZEMOMultiLayerManager::instance().getGameControllerStatus(), use, status)) {
        case SpecialUrl::Ordinary:
            return false;
        case SpecialUrl::NativeClose:
            clickCloseButton();
            return true;
        case SpecialUrl::GamePadInit:
        case SpecialUrl::GamePadInitDefaultStatus:
            break;
    }
    controllerScriptActive = use;
    if (use) runInMainFrame(ControllerScripts::buildInitClientGamePadScript(status), true);
    reportControllerScriptUse();
    return true;
}

void WebLayer::reportControllerScriptUse() {
    if (controllerScriptUseCallback) controllerScriptUseCallback(controllerScriptActive);
}

void WebLayer::onActivated() {
    if (controllerScriptActive) runInMainFrame(ControllerScripts::buildFocusGainedScript(), true);
    reportControllerScriptUse();  // also for a page that never used it: the game may have shown another view meanwhile
}

void WebLayer::onDeactivated() {
    if (controllerScriptActive) runInMainFrame(ControllerScripts::buildFocusLostScript(), true);
}

void WebLayer::onExternalScript(const std::string& payload) {
    if (controllerScriptActive) runInMainFrame(ControllerScripts::buildHandleControllerInputScript(payload), true);
}

}  // namespace ZEMO::UI
