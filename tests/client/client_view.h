#pragma once

#include "engine/client/cef_adapter.h"
#include "engine/game_host.h"
#include "include/cef_browser.h"

namespace ZEMO::Test {

/// A browser client on the game's window with a real browser behind it, held by the test itself, so that the test can
/// send input and drive callbacks that no export reaches.
class ClientView {
public:
    struct Options {
        ZEMO::UI::WindowStyle style = ZEMO::UI::WindowStyle::Layer;
        bool closeButton = false;
        bool presentCallback = true;
        std::function<bool(const std::string&)> decide;  ///< for `events`; unset lets everything pass
    };
    ClientView(GameHost& host, const std::string& address) : ClientView(host, address, Options{}) {}
    ClientView(GameHost& host, const std::string& address, Options options);
    ~ClientView();

    CefRefPtr<CefBrowserHost> browserHost() { return adapter->getBrowser()->GetHost(); }
    /// Logical pixels of the page.
    void click(int x, int y);
    void moveMouse(int x, int y);

    CefRefPtr<ZEMO::UI::CefAdapter> adapter;
    std::shared_ptr<NavigationRecorder> events = std::make_shared<NavigationRecorder>();
    std::shared_ptr<ZEMO::UI::IZEMOWebView> facade = ZEMO::UI::createWebViewDefault();
};

}  // namespace ZEMO::Test
