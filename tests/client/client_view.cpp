#include "client/client_view.h"

#include "client/page_browser.h"

namespace ZEMO::Test {

ClientView::ClientView(GameHost& host, const std::string& address, Options options) {
    events->decide = options.decide;
    adapter = new ZEMO::UI::CefAdapter({facade, events}, host.window, options.style, options.closeButton, nullptr, 0,
                                       options.presentCallback ? host.frames.callback() : nullptr);
    createBrowser(host.window, adapter, address);
}

ClientView::~ClientView() { adapter->close(); }

void ClientView::click(int x, int y) { clickPage(browserHost(), x, y); }

void ClientView::moveMouse(int x, int y) {
    CefMouseEvent event;
    event.x = x;
    event.y = y;
    browserHost()->SendMouseMoveEvent(event, false);
}

}  // namespace ZEMO::Test
