#include <windows.h>

#include <utility>

#include "api/external_browser.h"
#include "api/file_select_view.h"
#include "api/library_start.h"
#include "api/zemo_web_view_window.h"
#include "controller/remote_input.h"
#include "core/posted_text.h"
#include "core/process_state.h"
#include "core/resource_paths.h"
#include "layers/layer_manager.h"
#include "layers/window_messages.h"
#include "zemo/locale_setter.h"
#include "zemo/ui.h"

namespace ZEMO::UI {
namespace {

ZEMOMultiLayerManager& manager() { return ZEMOMultiLayerManager::instance(); }

uint32_t scanCodeOf(uint32_t virtualKey) { return MapVirtualKeyW(virtualKey, MAPVK_VK_TO_VSC); }

}  // namespace

void InitUILibrary() {
    startLibrary(true);
    LocaleSetter().setUTF8PreservePreSettedLocale();
}

void InitUIGraphicsHook() { loadGraphicsHook(); }

void activeFocusMainWindow() {
    const HWND window = manager().getMainWindow();
    const DWORD windowThread = GetWindowThreadProcessId(window, nullptr);
    if (!AttachThreadInput(GetCurrentThreadId(), windowThread, TRUE)) return;
    SetForegroundWindow(window);
    BringWindowToTop(window);
    AttachThreadInput(GetCurrentThreadId(), windowThread, FALSE);
}

std::shared_ptr<IZEMOWebView> createWebViewDefault() { return std::make_shared<ZEMOWebViewWindow>(); }

std::shared_ptr<IZEMOFileSelectView> createFileSelectViewDialog() { return std::make_shared<ZEMOFileSelectViewImpl>(); }

std::filesystem::path getLocalHTMLResourcePath() { return Core::getLocalHtmlDirectory(); }

void openBrowser(const ZEMO::Core::IURL& url) { openOutsideGame(url.getUrl(), false); }

void openIncognitoBrowser(const ZEMO::Core::IURL& url) { openOutsideGame(url.getUrl(), true); }

void processSteamDeckKeyboardClose() { manager().processSteamDeckKeyboardClose(); }

void sendGameControllerCustomMsgData(const std::string& data) {
    // A view's own window is owned by the game's: it gets the text when it is the one in front.
    const HWND mainWindow = manager().getMainWindow();
    const HWND foreground = GetForegroundWindow();
    if (!mainWindow || !foreground) return;  // every window without an owner would pass for an owned one
    if (foreground != mainWindow && GetWindow(foreground, GW_OWNER) != mainWindow) return;
    Core::postText(foreground, kMessageExternalScript, data);
}

void sendGameControllerStatus(const std::string& statusJson) { manager().setGameControllerStatus(statusJson); }

void sendUIRemoteInputEvent(const std::string& type, const std::string& action, const std::string& data, int x, int y) {
    const auto message = remoteInputMessage(type, action, data, x, y, scanCodeOf);  // a bad key throws, window or not
    const HWND window = manager().getMainWindow();
    if (!window) return;  // a post without a window would go to this thread's own queue
    if (message) PostMessageW(window, message->message, message->wParam, message->lParam);
    if (isRemoteText(type)) Core::postText(window, kMessageExternalText, data);
}

void setOpenGLSleepTime(unsigned int ms) { manager().setOpenGLSleepTime(ms); }

void setUIEngineOsrRenderEnabled(int enabled) { setUIEngineOsrRenderEnabledFlag(enabled != 0); }

void setUIGameControllerScriptUseCallback(std::function<void(int)> callback) {
    manager().setGameControllerScriptUseCallback(std::move(callback));
}

void setUIOpenExternalBrowserCallback(std::function<bool(const std::string&)> callback) {
    manager().setOpenExternalBrowserCallback(std::move(callback));
}

void setUIOsrFramePresentCallback(OsrFramePresentCallback callback) {
    manager().setOsrFramePresentCallback(std::move(callback));
}

void setUIShowSteamDeckKeyboardCallback(std::function<void(int)> callback) {
    manager().setSteamDeckKeyboardCallback(std::move(callback));
}

void setUISteamOverlayActiveStatus(bool active) { manager().setSteamOverlayActiveStatus(active); }

void updateUILanguage(const char* /*language*/) {}

}  // namespace ZEMO::UI
