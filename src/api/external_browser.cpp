#include "api/external_browser.h"

#include <utility>

#include "browser/browser_launch.h"
#include "layers/layer_manager.h"

namespace ZEMO::UI {

void openExternalBrowser(std::string url, bool privateWindow) {
    BrowserLaunchSettings settings{[] { return ZEMOMultiLayerManager::instance().getOpenExternalBrowserCallback(); },
                                   [] { return ZEMOMultiLayerManager::instance().hasSteamDeckKeyboardCallback(); }};
    if (privateWindow) {
        openIncognitoExternalBrowser(std::move(url), std::move(settings));
    } else {
        openExternalBrowser(std::move(url), std::move(settings));
    }
}

}  // namespace ZEMO::UI
