#include "api/external_browser.h"

#include <windows.h>

#include <shellapi.h>

#include <thread>
#include <utility>

#include "core/module_paths.h"
#include "layers/layer_manager.h"

namespace ZEMO::UI {

void openExternalBrowser(std::string url, bool /*privateWindow*/) {
    std::thread([url = std::move(url)] {
        if (const auto callback = ZEMOMultiLayerManager::instance().getOpenExternalBrowserCallback();
            callback && callback(url)) {
            return;
        }
        ShellExecuteW(nullptr, L"open", Core::to_wide(url).c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    }).detach();
}

}  // namespace ZEMO::UI
