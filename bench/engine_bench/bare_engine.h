#pragma once

#include <windows.h>

#include <atomic>
#include <functional>
#include <string>

#include "include/cef_client.h"

namespace ZEMO::Bench {

/// Starts the engine in this process on a thread of its own, with the settings and switches that the library starts it
/// with, and returns when it is ready. `cacheName`: a directory beside the program, another than the library's.
/// `childProgram`: another than the library's, by its path beside the program. The thread runs until the process ends.
/// Throws std::runtime_error when the engine does not start.
void startBareEngine(const std::wstring& cacheName, const std::wstring& childProgram = {});

/// The least client that shows a page without a window: it answers the view's size and hands each paint on.
class BareClient final : public CefClient, public CefRenderHandler, public CefLifeSpanHandler, public CefLoadHandler {
public:
    /// pixels, width, height; on the engine thread.
    using Paint = std::function<void(const void*, int, int)>;
    BareClient(int viewWidth, int viewHeight, Paint take)
        : width(viewWidth), height(viewHeight), paint(std::move(take)) {}

    /// Makes the browser as a web layer does. Any thread.
    void open(HWND parent, const std::string& address);
    /// Once a paint has come.
    void sendKey(cef_key_event_type_t type, WPARAM virtualKey, LPARAM lParam);
    void close();
    bool closed() const { return ended; }
    /// Each on the engine thread; set before `open`.
    std::function<void(const CefRefPtr<CefFrame>&)> onLoaded;
    std::function<void(const CefRefPtr<CefFrame>&, const CefRefPtr<CefProcessMessage>&)> onMessage;

    CefRefPtr<CefRenderHandler> GetRenderHandler() override { return this; }
    CefRefPtr<CefLifeSpanHandler> GetLifeSpanHandler() override { return this; }
    CefRefPtr<CefLoadHandler> GetLoadHandler() override { return this; }
    void OnLoadEnd(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame, int httpStatusCode) override;
    bool OnProcessMessageReceived(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame, CefProcessId source_process,
                                  CefRefPtr<CefProcessMessage> message) override;
    void OnAfterCreated(CefRefPtr<CefBrowser> created) override;
    void OnBeforeClose(CefRefPtr<CefBrowser> browser) override;
    void GetViewRect(CefRefPtr<CefBrowser> browser, CefRect& rect) override;
    bool GetScreenInfo(CefRefPtr<CefBrowser> browser, CefScreenInfo& screen_info) override;
    void OnPaint(CefRefPtr<CefBrowser> browser, PaintElementType type, const RectList& dirtyRects, const void* buffer,
                 int width, int height) override;

private:
    const int width, height;
    const Paint paint;
    CefRefPtr<CefBrowser> browser;  ///< engine thread; others only while it stays as it is
    std::atomic<bool> ended{false};
    IMPLEMENT_REFCOUNTING(BareClient);
};

}  // namespace ZEMO::Bench
