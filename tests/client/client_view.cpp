#include "client/client_view.h"

namespace ZEMO::Test {

ClientView::ClientView(GameHost& host, const std::string& address, Options options) {
    events->decide = options.decide;
    adapter = new ZEMO::UI::CefAdapter({facade, events}, host.window, options.style, options.closeButton, nullptr, 0,
                                       options.presentCallback ? host.frames.callback() : nullptr);
    CefWindowInfo windowInfo;
    windowInfo.parent_window = host.window;
    windowInfo.windowless_rendering_enabled = true;
    windowInfo.runtime_style = CEF_RUNTIME_STYLE_ALLOY;
    CefBrowserSettings settings;
    settings.windowless_frame_rate = 30;
    CefBrowserHost::CreateBrowser(windowInfo, adapter, address, settings, nullptr, nullptr);
}

ClientView::~ClientView() { adapter->close(); }

void ClientView::click(int x, int y) {
    CefMouseEvent event;
    event.x = x;
    event.y = y;
    browserHost()->SendMouseMoveEvent(event, false);
    browserHost()->SendMouseClickEvent(event, MBT_LEFT, false, 1);
    browserHost()->SendMouseClickEvent(event, MBT_LEFT, true, 1);
}

void ClientView::moveMouse(int x, int y) {
    CefMouseEvent event;
    event.x = x;
    event.y = y;
    browserHost()->SendMouseMoveEvent(event, false);
}

}  // namespace ZEMO::Test
