#include "api/external_browser.h"

#include <utility>

#include "browser/browser_launch.h"
#include "layers/layer_manager.h"

namespace ZEMO::UI {

void openOutsideGame(std::string url, bool privateWindow) {
    BrowserLaunchSettings settings{[] { return ZEMOMultiLayerManager::instance().getOpenExternalBrowserCallback(); },
                                   [] { return ZEMOMultiLayerManager::instance().hasSteamDeckKeyboardCallback(); }};
    if (privateWindow) {
        launchIncognitoBrowser(std::move(url), std::move(settings));
    } else {
        launchBrowser(std::move(url), std::move(settings));
    }
}

}  // namespace ZEMO::UI
