#include "browser/browser_launch.h"

#include <windows.h>

#include <shellapi.h>

#include <utility>

#include "browser/browser_rules.h"
#include "browser/default_browser.h"
#include "browser/loopback_http_manager.h"
#include "core/detached_thread.h"
#include "core/log.h"
#include "core/module_paths.h"
#include "core/module_pin.h"
#include "zemo/platform.h"

namespace ZEMO::UI {
namespace {

// ShellExecuteW's answers up to this one are errors.
constexpr INT_PTR kLastShellError = 32;

INT_PTR shellOpen(const std::wstring& file, const wchar_t* parameters) {
    return reinterpret_cast<INT_PTR>(ShellExecuteW(nullptr, L"open", file.c_str(), parameters, nullptr, SW_SHOWNORMAL));
}

// The shell chooses the browser itself.
void openDirectly(const std::string& url) {
    const std::wstring address = Core::to_wide(url);
    if (address.empty()) {
        Core::logDebugW(L"openBrowser: URL 변환 실패로 중단 (length=%zu)", url.size());
        return;
    }
    shellOpen(address, nullptr);
}

void openByRedirect(const std::string& url) {
    LoopbackHttpManager::instance()->waitUntilReady();
    LoopbackHttpManager::instance()->openUrl(url);
}

BrowserSituation currentSituation(const std::string& url, const BrowserLaunchSettings& settings) {
    BrowserSituation situation;
    situation.defaultExecutable = browserExecutableName(getDefaultBrowserPath(browserProtocolOf(url)));
    situation.isChromeRunning = Platform::Misc::getProcessorID("chrome.exe") != 0;
    situation.isWhaleRunning = Platform::Misc::getProcessorID("whale.exe") != 0;
    situation.hasShowKeyboardCallback = settings.hasShowKeyboardCallback && settings.hasShowKeyboardCallback();
    return situation;
}

bool gameTakesOver(const std::string& url, const BrowserLaunchSettings& settings) {
    if (!settings.externalBrowserCallback) return false;
    // a copy: the game may replace its callback while this one runs
    const OpenExternalBrowserCallback callback = settings.externalBrowserCallback();
    return callback && callback(url);
}

}  // namespace

void openBrowserProcedure(const std::string& url, const BrowserLaunchSettings& settings) {
    if (takesLoopbackRoute(url.size(), currentSituation(url, settings))) {
        openByRedirect(url);
    } else {
        openDirectly(url);
    }
}

void openIncognitoBrowserProcedure(const std::string& url) {
    const std::wstring address = Core::to_wide(url);
    if (address.empty()) {
        Core::logDebugW(L"openIncognitoBrowser: URL 변환 실패로 중단 (length=%zu)", url.size());
        return;
    }

    const std::wstring path = getDefaultBrowserPath(browserProtocolOf(url));
    const std::wstring executable = browserExecutableName(path);
    const std::wstring flag = privateModeFlag(executable);
    if (path.empty() || flag.empty()) {
        Core::logDebugW(L"openIncognitoBrowser: 사생활 모드 플래그 결정 실패. exePath=[%ls] exeName=[%ls]",
                        path.c_str(), executable.c_str());
    } else {
        const INT_PTR result = shellOpen(path, privateWindowParameters(flag, address).c_str());
        if (result > kLastShellError) return;
        Core::logDebugW(L"openIncognitoBrowser: ShellExecute 실패(%lld). exe=%ls flag=%ls",
                        static_cast<long long>(result), path.c_str(), flag.c_str());
    }
    openDirectly(url);
}

void launchBrowser(std::string url, BrowserLaunchSettings settings) {
    Core::pinOwnModule();
    Core::runDetached([url = std::move(url), settings = std::move(settings)] {
        if (!gameTakesOver(url, settings)) openBrowserProcedure(url, settings);
    });
}

void launchIncognitoBrowser(std::string url, BrowserLaunchSettings settings) {
    Core::pinOwnModule();
    Core::runDetached([url = std::move(url), settings = std::move(settings)] {
        if (!gameTakesOver(url, settings)) openIncognitoBrowserProcedure(url);
    });
}

}  // namespace ZEMO::UI
