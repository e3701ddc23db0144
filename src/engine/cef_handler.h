#pragma once

#include <windows.h>

#include <imm.h>

#include <atomic>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

#include "core/unique_handle.h"
#include "include/cef_client.h"
#include "include/cef_task.h"
#include "layers/window_events.h"
#include "render/cef_render_impl.h"
#include "render/osr_renderer.h"
#include "zemo/ui.h"

namespace ZEMO::UI {

class JavascriptProcessor;

/// The object that the engine calls back into, one for each browser, and the way from the window side to that browser.
///
/// Threads: engine callbacks come on the engine thread. The plain operations come on the thread of the layer's window,
/// close on the thread that destroys the layer. A render thread of its own runs from construction to close; it only
/// uses the browser and the consumers, never the object's references, since none exists yet when it starts. Lifetime:
/// reference counted; the web layer and the engine hold it. close must have run before the last reference goes.
class CefHandler : public CefClient,
                   public CefRenderHandler,
                   public CefLifeSpanHandler,
                   public CefLoadHandler,
                   public CefRequestHandler,
                   public CefDisplayHandler,
                   public CefDownloadHandler,
                   public CefResourceRequestHandler {
public:
    CefHandler(HWND window, WindowStyle windowStyle, bool hasCloseButton, HMODULE hookModule, uint32_t hookSleepTime,
               OsrFramePresentCallback framePresentCallback);
    ~CefHandler() override;

    /// The browser, or null before it exists and after close. Any thread.
    CefRefPtr<CefBrowser> getBrowser();
    std::shared_ptr<JavascriptProcessor> getJavascriptProcessor() { return javascriptProcessor; }

    /// As the process exits: ends every view's use of the engine without a word to its consumer, whose game may be half
    /// gone. The views stay as they are and show nothing more. Engine thread.
    static void leaveEngine();
    /// Browsers that the engine has made and not closed yet. Engine thread.
    static int liveBrowsers();

    /// Ends the view: the render thread is joined, the browser told to close, the consumer told that nothing is left to
    /// show. Does not wait for the browser. Must not run on the render thread.
    void close();

    // Input, in device pixels of the window. Not forwarded to the page yet.
    void sendMouseClick(int button, bool mouseUp, int x, int y);
    void sendMouseMove(int x, int y, uint32_t modifiers);
    void sendMouseWheel(WPARAM wParam, int x, int y, bool horizontal, bool clientCoordinates);
    void sendKey(UINT message, WPARAM wParam, LPARAM lParam);
    void sendTouch(uint32_t id, int x, int y, UINT pointerMessage);

    // Text input. Not forwarded to the page yet.
    void commitImeText(const std::string& utf8Text);
    void setImeProcess(uint32_t kind, const std::u16string* text, const uint32_t* repeatCount);
    void onImeSetContext();
    void onImeStartComposition();
    void onImeComposition(LPARAM flags);
    void onImeEndComposition();
    void onImeFocusChange(bool enable);
    void onImeBoundsChanged();
    bool onImeQueryCharPosition(IMECHARPOSITION* position);
    void cancelImeComposition();

    void setNoWindow(bool value) { noWindow = value; }
    void setContentItems(std::vector<std::shared_ptr<IZEMOWebContent>> items) { contentItems = std::move(items); }
    void onWindowResized();
    void setVisible(bool show, bool keepHookFrame);
    /// No further frame is taken; the window is going away.
    void markClosing() { closing.exchange(true); }
    /// After a maximise or restore: a few slightly smaller sizes force the page to lay out anew.
    void startWiggleResize() { wiggleResize = true; }
    /// The close button may be drawn from now on.
    void showCloseButton() { closeButtonShown = true; }

    // CefClient
    CefRefPtr<CefContextMenuHandler> GetContextMenuHandler() override { return contextMenuHandler; }
    CefRefPtr<CefDisplayHandler> GetDisplayHandler() override { return this; }
    CefRefPtr<CefDownloadHandler> GetDownloadHandler() override { return this; }
    CefRefPtr<CefLifeSpanHandler> GetLifeSpanHandler() override { return this; }
    CefRefPtr<CefLoadHandler> GetLoadHandler() override { return this; }
    CefRefPtr<CefRenderHandler> GetRenderHandler() override { return this; }
    CefRefPtr<CefRequestHandler> GetRequestHandler() override { return this; }
    bool OnProcessMessageReceived(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame, CefProcessId source_process,
                                  CefRefPtr<CefProcessMessage> message) override;

    // CefLifeSpanHandler
    bool OnBeforePopup(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame, int popup_id,
                       const CefString& target_url, const CefString& target_frame_name,
                       CefLifeSpanHandler::WindowOpenDisposition target_disposition, bool user_gesture,
                       const CefPopupFeatures& popupFeatures, CefWindowInfo& windowInfo, CefRefPtr<CefClient>& client,
                       CefBrowserSettings& settings, CefRefPtr<CefDictionaryValue>& extra_info,
                       bool* no_javascript_access) override;
    void OnAfterCreated(CefRefPtr<CefBrowser> browser) override;
    void OnBeforeClose(CefRefPtr<CefBrowser> browser) override;

    // CefDisplayHandler
    bool OnCursorChange(CefRefPtr<CefBrowser> browser, CefCursorHandle cursor, cef_cursor_type_t type,
                        const CefCursorInfo& custom_cursor_info) override;

    // CefRenderHandler
    void GetViewRect(CefRefPtr<CefBrowser> browser, CefRect& rect) override;
    bool GetScreenInfo(CefRefPtr<CefBrowser> browser, CefScreenInfo& screen_info) override;
    void OnPopupShow(CefRefPtr<CefBrowser> browser, bool show) override;
    void OnPopupSize(CefRefPtr<CefBrowser> browser, const CefRect& rect) override;
    void OnPaint(CefRefPtr<CefBrowser> browser, PaintElementType type, const RectList& dirtyRects, const void* buffer,
                 int width, int height) override;
    void OnTextSelectionChanged(CefRefPtr<CefBrowser> browser, const CefString& selected_text,
                                const CefRange& selected_range) override;

protected:
    /// Makes the consumer of the frames for a view of this scale.
    using ConsumerFactory = std::function<std::unique_ptr<CefRenderImpl>(float scale)>;
    /// With a consumer of the caller's own instead of the chosen one: shows tests which calls a consumer gets.
    CefHandler(HWND window, WindowStyle windowStyle, bool hasCloseButton, uint32_t hookSleepTime,
               const ConsumerFactory& makeConsumer);
    /// A local renderer of the caller's own, for tests. Any thread.
    void setLocalRenderer(std::shared_ptr<IOsrRenderer> local) { renderer.store(std::move(local)); }

    HWND viewWindow() const { return window; }
    /// Posts a message to the view's window when that lives.
    void postToWindow(UINT message, WPARAM wParam, LPARAM lParam) const;

private:
    void takeFrame(const CefRefPtr<CefBrowser>& source, PaintElementType type, const RectList& dirtyRects,
                   const void* buffer, int width, int height);
    void ensureRenderer();
    void refreshBrowser();
    void renderThreadMain();
    bool waitForNextCycle();
    void stopRenderThread();
    void letGoOfBrowser();
    void onPasswordFieldFocus(CefRefPtr<CefBrowser> browser, bool focused);

    // Shared between threads.
    std::mutex browserMutex;  ///< guards `browser` and its hand-over to the script bridge
    CefRefPtr<CefBrowser> browser;
    std::atomic<bool> clearPending{false};  ///< the consumer has still to hear that nothing is left to show
    std::recursive_timed_mutex paintMutex;  ///< one frame or the end of frames; held while the consumer is called
    std::atomic<std::shared_ptr<IOsrRenderer>> renderer;
    std::atomic<bool> needResize{false};
    std::atomic<bool> stopped{false};
    std::atomic<bool> visible{true};
    std::atomic<bool> closing{false};
    std::atomic<bool> wiggleResize{false};
    Core::UniqueKernelHandle stopEvent;  ///< set with `stopped`: ends the render thread's wait

    // Engine thread.
    int wiggleCount = 10;
    bool closeButtonShown = false;

    // Fixed after construction, but for noWindow and contentItems, which are set before the browser exists.
    CefRefPtr<CefContextMenuHandler> contextMenuHandler;
    std::shared_ptr<JavascriptProcessor> javascriptProcessor;
    std::vector<std::shared_ptr<IZEMOWebContent>> contentItems;
    HWND window;
    WindowStyle windowStyle;
    bool noWindow = false;
    bool hasCloseButton;
    uint32_t hookSleepTime;
    float dpiScale;  ///< device pixels for each logical pixel, taken once
    std::unique_ptr<CefRenderImpl> renderImpl;
    std::mutex renderThreadMutex;  ///< one join, of the view's end or of the exit
    std::thread renderThread;

    IMPLEMENT_REFCOUNTING(CefHandler);
};

}  // namespace ZEMO::UI
