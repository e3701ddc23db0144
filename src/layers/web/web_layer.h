#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "engine/client/cef_adapter.h"
#include "layers/shared_slot.h"
#include "layers/zemo_window.h"

namespace ZEMO::UI {

/// Joins a native window, or a layer on the game's window, to one browser: creates the browser with the first load,
/// navigates it with each later one, and forwards the window's events to it.
///
/// Threads: load operations and setVisible on the caller's thread, the window's events on the window's thread,
/// onNavigationCompleted and handleSpecialUrl on the engine thread. The facade holds the only strong reference.
class WebLayer final : public ZEMOWindow {
public:
    struct Settings {
        WebViewLink delegate;
        WindowStyle windowStyle = WindowStyle::Layer;
        Size size;
        HWND parentWindow = nullptr;
        HMODULE hookModule = nullptr;
        uint32_t hookSleepTime = 0;
        bool hasSteamDeckKeyboard = false;
        std::function<void(bool)> controllerScriptUseCallback;
        bool steamOverlayActive = false;
        OsrFramePresentCallback framePresentCallback;
        std::function<void()> closeButtonAction;  ///< its presence asks for a close button
    };
    explicit WebLayer(Settings settings);
    ~WebLayer() override;

    // `reload` false creates the browser, true navigates it.
    void loadHtml(std::string_view html, std::string_view path, bool reload);
    void loadUrl(std::string url, std::vector<std::shared_ptr<IZEMOWebContent>> items, bool reload);
    void loadPage(std::string nameOrPath, bool reload);
    void loadContent(std::shared_ptr<IZEMOWebContent> content, bool reload);

    void evaluateJavascript(std::string id, std::string script, std::function<void(std::string, std::string)> callback);
    void addJavascriptCallback(std::string name, std::function<void(std::string)> callback);
    void bindObject(std::string name, std::string message);

    // Only once the browser exists.
    void goBack();
    void goForward();
    bool canGoBack();
    bool canGoForward();

    void setContentItems(std::vector<std::shared_ptr<IZEMOWebContent>> items);
    /// The first handler set stays.
    void setWindowCloseHandler(std::function<void()> handler);
    void setLayerDestroyHandler(std::function<void()> handler);
    void injectControllerScript(const std::string& script);
    void onNavigationCompleted();
    /// Acts on a reserved address. False: an ordinary one.
    bool handleSpecialUrl(const std::string& url);

    // ILayer
    void setVisible(bool show, bool keepHookFrame) override;
    void sendImeCommand(uint32_t kind, const std::u16string* text, const uint32_t* repeatCount) override;
    void blurActiveElement() override;
    void onSize(const RECT& client, int width, int height) override;
    void onMaximizeRestore() override;
    void onDestroy() override;
    void onKillFocus() override;
    void onClose() override;

    // IInputEvents
    void onMouseButton(int button, bool up, int x, int y) override;
    void onMouseMove(int x, int y, uint32_t modifiers) override;
    void onMouseWheel(WPARAM wParam, int x, int y, bool horizontal, bool clientCoordinates) override;
    void onKey(UINT message, WPARAM wParam, LPARAM lParam) override;
    void onPointer(UINT message, uint32_t pointerId, int x, int y) override;

    // IIMEEvents
    void onImeSetContext() override;
    void onImeStartComposition() override;
    void onImeComposition(LPARAM flags) override;
    void onImeEndComposition() override;
    void onImeFocusChange(bool enable) override;
    void onImeBoundsChanged() override;
    bool onImeQueryCharPosition(IMECHARPOSITION* position) override;

    // IFocusEvents, IExternalInputEvents
    void onActivated() override;
    void onDeactivated() override;
    void onExternalScript(const std::string& payload) override;
    void onExternalText(const std::string& text) override;

private:
    void createBrowser(const std::string& address);
    void navigate(const std::string& address);
    void runInMainFrame(const std::string& script, bool withFrameUrl);
    /// Calls `use` with the browser, if there is one: what is tested is what is used.
    template <class Use>
    void withBrowser(Use use) {
        const CefRefPtr<CefBrowser> browser = adapter ? adapter->getBrowser() : nullptr;
        if (browser) use(browser);
    }

    CefRefPtr<CefAdapter> adapter;
    bool browserRequested = false;                    ///< the engine has taken the request for a browser
    std::atomic<bool> controllerScriptActive{false};  ///< written on the engine thread, read on the window's
    // Set on the caller's thread while an own window's thread may be running them already.
    SharedSlot<std::function<void()>> windowCloseHandler;
    SharedSlot<std::function<void()>> layerDestroyHandler;
    std::function<void()> closeButtonAction;
    std::function<void(bool)> controllerScriptUseCallback;
};

}  // namespace ZEMO::UI
