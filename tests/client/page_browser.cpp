#include "client/page_browser.h"

namespace ZEMO::Test {

void createBrowser(HWND parent, const CefRefPtr<CefClient>& client, const std::string& address) {
    CefWindowInfo windowInfo;
    windowInfo.parent_window = parent;
    windowInfo.windowless_rendering_enabled = true;
    windowInfo.runtime_style = CEF_RUNTIME_STYLE_ALLOY;
    CefBrowserSettings settings;
    settings.windowless_frame_rate = 30;
    CefBrowserHost::CreateBrowser(windowInfo, client, address, settings, nullptr, nullptr);
}

void clickPage(const CefRefPtr<CefBrowserHost>& page, int x, int y) {
    CefMouseEvent event;
    event.x = x;
    event.y = y;
    page->SendMouseMoveEvent(event, false);
    page->SendMouseClickEvent(event, MBT_LEFT, false, 1);
    page->SendMouseClickEvent(event, MBT_LEFT, true, 1);
}

}  // namespace ZEMO::Test
