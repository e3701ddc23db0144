#include "engine_bench/timed_client.h"

#include <cstdlib>

#include "include/cef_browser.h"

namespace ZEMO::Bench {

TimedClient::TimedClient(UI::WebViewLink link, HWND window, UI::OsrFramePresentCallback present, PaintWatcher& hears)
    : CefAdapter(std::move(link), window, UI::WindowStyle::Layer, false, nullptr, 0, std::move(present)),
      watcher(hears) {}

void TimedClient::OnPaint(CefRefPtr<CefBrowser> browser, PaintElementType type, const RectList& dirtyRects,
                          const void* buffer, int width, int height) {
    watcher.beforePaint(buffer, width, height);
    const Clock::time_point started = Clock::now();
    CefAdapter::OnPaint(browser, type, dirtyRects, buffer, width, height);
    watcher.afterPaint(buffer, width, height, started, Clock::now());
}

void TimedClient::GetViewRect(CefRefPtr<CefBrowser> browser, CefRect& rect) {
    const Clock::time_point started = Clock::now();
    CefAdapter::GetViewRect(browser, rect);
    if (!inScreenInfo) watcher.answered(Clock::now() - started);
}

bool TimedClient::GetScreenInfo(CefRefPtr<CefBrowser> browser, CefScreenInfo& screen_info) {
    const Clock::time_point started = Clock::now();
    inScreenInfo = true;
    const bool answer = CefAdapter::GetScreenInfo(browser, screen_info);
    inScreenInfo = false;
    watcher.answered(Clock::now() - started);
    return answer;
}

void TimedClient::OnBeforeClose(CefRefPtr<CefBrowser> browser) {
    CefAdapter::OnBeforeClose(browser);
    ended = true;
}

TimedView::TimedView(Test::GameHost& host, const std::string& address, UI::OsrFramePresentCallback present,
                     PaintWatcher& watcher)
    : game(host), facade(UI::createWebViewDefault()) {
    client = new TimedClient({facade, events}, game.window, std::move(present), watcher);
    CefWindowInfo windowInfo;
    windowInfo.parent_window = game.window;
    windowInfo.windowless_rendering_enabled = true;
    windowInfo.runtime_style = CEF_RUNTIME_STYLE_ALLOY;
    CefBrowserSettings settings;
    settings.windowless_frame_rate = 30;
    CefBrowserHost::CreateBrowser(windowInfo, client, address, settings, nullptr, nullptr);
}

TimedView::~TimedView() {
    client->close();
    // The watcher is the caller's and goes after this: a browser that still paints would use it then.
    if (!game.waitFor("the browser's end", [&] { return client->browserEnded(); })) std::abort();
}

void TimedView::askForPaint() {
    if (const CefRefPtr<CefBrowser> browser = client->getBrowser()) browser->GetHost()->Invalidate(PET_VIEW);
}

}  // namespace ZEMO::Bench
