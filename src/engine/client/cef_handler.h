#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "engine/client/frames/page_frames.h"
#include "engine/client/ime/page_ime.h"
#include "engine/client/input/page_input.h"
#include "engine/client/request/content_items.h"
#include "engine/engine_clients.h"
#include "include/cef_client.h"
#include "layers/window_events.h"
#include "render/cef_render_impl.h"
#include "zemo/ui.h"

namespace ZEMO::UI {

class JavascriptProcessor;

/// The object that the engine calls back into, one for each browser, and the way from the window side to that browser:
/// who the browser is, how it lives and ends, and where each callback goes. What a page does beside that belongs to
/// the member objects (frames, input, IME, script, requests).
///
/// Threads: engine callbacks come on the engine thread, those of a request on the engine's IO thread. The plain
/// operations come on the thread of the layer's window, close on the thread that destroys the layer. A render thread of
/// the frames' own runs from construction to close; it only uses the browser and the consumers, never the object's
/// references, since none exists yet when it starts. Lifetime: reference counted; the web layer and the engine hold it.
/// close must have run before the last reference goes.
class CefHandler : public CefClient,
                   public CefRenderHandler,
                   public CefLifeSpanHandler,
                   public CefLoadHandler,
                   public CefRequestHandler,
                   public CefDisplayHandler,
                   public CefDownloadHandler,
                   public CefResourceRequestHandler,
                   private IEngineClient {
public:
    CefHandler(HWND window, WindowStyle windowStyle, bool hasCloseButton, HMODULE hookModule, uint32_t hookSleepTime,
               OsrFramePresentCallback framePresentCallback);
    ~CefHandler() override;

    /// The browser, or null before it exists and after close. Any thread.
    CefRefPtr<CefBrowser> getBrowser();
    std::shared_ptr<JavascriptProcessor> getJavascriptProcessor() { return javascriptProcessor; }
    /// Mouse, keyboard and touch, with the browser that the caller has found by getBrowser.
    PageInput& getInput() { return input; }
    /// Composed text, with that browser.
    PageIme& getIme() { return ime; }

    /// Ends the view: the render thread is joined, the browser told to close, the consumer told that nothing is left to
    /// show. Does not wait for the browser. Must not run on the render thread.
    void close();

    /// How the view's own window is closed when its browser has gone; empty for a layer. Set before the browser exists.
    void setWindowCloser(std::function<void()> closer) { closeWindow = std::move(closer); }
    /// The view has ended, or is about to.
    bool isClosed() const { return frames.isStopped(); }
    void setNoWindow(bool value) { frames.getViewSize().setNoWindow(value); }
    void setContentItems(ContentItems::List items) { contentItems.set(std::move(items)); }
    void onWindowResized() { frames.onWindowResized(); }
    void setVisible(bool show, bool keepHookFrame) { frames.setVisible(show, keepHookFrame); }
    void markClosing() { frames.markClosing(); }
    void startWiggleResize() { frames.getViewSize().startWiggle(); }
    void showCloseButton() { frames.showCloseButton(); }

    // CefClient
    CefRefPtr<CefContextMenuHandler> GetContextMenuHandler() override { return contextMenuHandler; }
    CefRefPtr<CefDisplayHandler> GetDisplayHandler() override { return this; }
    CefRefPtr<CefDownloadHandler> GetDownloadHandler() override { return this; }
    CefRefPtr<CefLifeSpanHandler> GetLifeSpanHandler() override { return this; }
    CefRefPtr<CefLoadHandler> GetLoadHandler() override { return this; }
    CefRefPtr<CefRenderHandler> GetRenderHandler() override { return this; }
    CefRefPtr<CefRequestHandler> GetRequestHandler() override { return this; }
    bool OnProcessMessageReceived(CefRefPtr<CefBrowser> source, CefRefPtr<CefFrame> frame, CefProcessId source_process,
                                  CefRefPtr<CefProcessMessage> message) override;

    // CefLifeSpanHandler
    bool OnBeforePopup(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame, int popup_id,
                       const CefString& target_url, const CefString& target_frame_name,
                       CefLifeSpanHandler::WindowOpenDisposition target_disposition, bool user_gesture,
                       const CefPopupFeatures& popupFeatures, CefWindowInfo& windowInfo, CefRefPtr<CefClient>& client,
                       CefBrowserSettings& settings, CefRefPtr<CefDictionaryValue>& extra_info,
                       bool* no_javascript_access) override;
    void OnAfterCreated(CefRefPtr<CefBrowser> created) override;
    void OnBeforeClose(CefRefPtr<CefBrowser> browser) override;

    // CefRequestHandler, CefResourceRequestHandler: on the engine's IO thread.
    CefRefPtr<CefResourceRequestHandler> GetResourceRequestHandler(CefRefPtr<CefBrowser> source,
                                                                   CefRefPtr<CefFrame> frame,
                                                                   CefRefPtr<CefRequest> request, bool is_navigation,
                                                                   bool is_download, const CefString& request_initiator,
                                                                   bool& disable_default_handling) override;
    ReturnValue OnBeforeResourceLoad(CefRefPtr<CefBrowser> source, CefRefPtr<CefFrame> frame,
                                     CefRefPtr<CefRequest> request, CefRefPtr<CefCallback> callback) override;

    // CefDownloadHandler
    bool OnBeforeDownload(CefRefPtr<CefBrowser> source, CefRefPtr<CefDownloadItem> download_item,
                          const CefString& suggested_name, CefRefPtr<CefBeforeDownloadCallback> callback) override;
    void OnDownloadUpdated(CefRefPtr<CefBrowser> source, CefRefPtr<CefDownloadItem> download_item,
                           CefRefPtr<CefDownloadItemCallback> callback) override;

    // CefDisplayHandler
    bool OnCursorChange(CefRefPtr<CefBrowser> browser, CefCursorHandle cursor, cef_cursor_type_t type,
                        const CefCursorInfo& custom_cursor_info) override;

    // CefRenderHandler
    void GetViewRect(CefRefPtr<CefBrowser> browser, CefRect& rect) override;
    bool GetScreenInfo(CefRefPtr<CefBrowser> source, CefScreenInfo& screen_info) override;
    void OnPopupShow(CefRefPtr<CefBrowser> source, bool show) override;
    void OnPopupSize(CefRefPtr<CefBrowser> source, const CefRect& rect) override;
    void OnPaint(CefRefPtr<CefBrowser> source, PaintElementType type, const RectList& dirtyRects, const void* buffer,
                 int width, int height) override;
    void OnImeCompositionRangeChanged(CefRefPtr<CefBrowser> source, const CefRange& selected_range,
                                      const RectList& character_bounds) override;
    void OnTextSelectionChanged(CefRefPtr<CefBrowser> source, const CefString& selected_text,
                                const CefRange& selected_range) override;

protected:
    /// Makes the consumer of the frames for a view of this scale.
    using ConsumerFactory = std::function<std::unique_ptr<CefRenderImpl>(float scale)>;
    /// With a consumer of the caller's own instead of the chosen one: shows tests which calls a consumer gets.
    CefHandler(HWND window, WindowStyle windowStyle, bool hasCloseButton, uint32_t hookSleepTime,
               const ConsumerFactory& makeConsumer);
    /// A local renderer of the caller's own, for tests. Any thread.
    void setLocalRenderer(std::shared_ptr<IOsrRenderer> local) { frames.setLocalRenderer(std::move(local)); }

    HWND viewWindow() const { return window; }
    const PageInput& getInput() const { return input; }

private:
    // IEngineClient
    void leaveEngine() override;

    void letGoOfBrowser();
    void onPasswordFieldFocus(const CefRefPtr<CefBrowser>& source, const CefRefPtr<CefProcessMessage>& message);

    // Shared between threads.
    std::mutex browserMutex;  ///< guards `browser` and its hand-over to the script bridge
    CefRefPtr<CefBrowser> browser;
    ContentItems contentItems;

    // Fixed after construction.
    CefRefPtr<CefContextMenuHandler> contextMenuHandler;
    std::shared_ptr<JavascriptProcessor> javascriptProcessor;
    HWND window;
    std::function<void()> closeWindow;
    float dpiScale;  ///< device pixels for each logical pixel, taken once
    PageIme ime;
    PageInput input;
    PageFrames frames;  ///< last: its thread asks for the browser

    IMPLEMENT_REFCOUNTING(CefHandler);
};

}  // namespace ZEMO::UI
