#pragma once

#include "include/cef_base.h"
#include "include/cef_drag_data.h"
#include "include/cef_frame.h"
#include "include/cef_request_context.h"

class CefBrowserHost;
class CefClient;

/// A page and its history.  Any thread of the browser process, unless an operation says otherwise.
//@engine
class CefBrowser : public virtual CefBaseRefCounted {
public:
    virtual bool IsValid() = 0;
    virtual CefRefPtr<CefBrowserHost> GetHost() = 0;
    virtual bool CanGoBack() = 0;
    virtual void GoBack() = 0;
    virtual bool CanGoForward() = 0;
    virtual void GoForward() = 0;
    virtual bool IsLoading() = 0;
    virtual void Reload() = 0;
    virtual void ReloadIgnoreCache() = 0;
    virtual void StopLoad() = 0;
    virtual int GetIdentifier() = 0;
    virtual bool IsSame(CefRefPtr<CefBrowser> that) = 0;
    virtual bool IsPopup() = 0;
    virtual bool HasDocument() = 0;
    virtual CefRefPtr<CefFrame> GetMainFrame() = 0;
    virtual CefRefPtr<CefFrame> GetFocusedFrame() = 0;
    virtual CefRefPtr<CefFrame> GetFrameByIdentifier(const CefString& identifier) = 0;
    //@optional name
    virtual CefRefPtr<CefFrame> GetFrameByName(const CefString& name) = 0;
    virtual size_t GetFrameCount() = 0;
    virtual void GetFrameIdentifiers(std::vector<CefString>& identifiers) = 0;
    virtual void GetFrameNames(std::vector<CefString>& names) = 0;
};

/// The host side of a page: life, size, input, pictures.
//@engine
class CefBrowserHost : public virtual CefBaseRefCounted {
public:
    typedef cef_drag_operations_mask_t DragOperationsMask;
    typedef cef_mouse_button_type_t MouseButtonType;
    typedef cef_paint_element_type_t PaintElementType;

    //@optional url
    static bool CreateBrowser(const CefWindowInfo& windowInfo, CefRefPtr<CefClient> client, const CefString& url,
                              const CefBrowserSettings& settings, CefRefPtr<CefDictionaryValue> extra_info,
                              CefRefPtr<CefRequestContext> request_context);
    //@optional url
    static CefRefPtr<CefBrowser> CreateBrowserSync(const CefWindowInfo& windowInfo, CefRefPtr<CefClient> client,
                                                   const CefString& url, const CefBrowserSettings& settings,
                                                   CefRefPtr<CefDictionaryValue> extra_info,
                                                   CefRefPtr<CefRequestContext> request_context);
    static CefRefPtr<CefBrowser> GetBrowserByIdentifier(int browser_id);

    virtual CefRefPtr<CefBrowser> GetBrowser() = 0;
    virtual void CloseBrowser(bool force_close) = 0;
    virtual bool TryCloseBrowser() = 0;
    virtual bool IsReadyToBeClosed() = 0;
    virtual void SetFocus(bool focus) = 0;
    virtual CefWindowHandle GetWindowHandle() = 0;
    virtual CefWindowHandle GetOpenerWindowHandle() = 0;
    virtual int GetOpenerIdentifier() = 0;
    virtual bool HasView() = 0;
    virtual CefRefPtr<CefClient> GetClient() = 0;
    virtual CefRefPtr<CefRequestContext> GetRequestContext() = 0;
    virtual bool CanZoom(cef_zoom_command_t command) = 0;
    virtual void Zoom(cef_zoom_command_t command) = 0;
    virtual double GetDefaultZoomLevel() = 0;
    virtual double GetZoomLevel() = 0;
    virtual void SetZoomLevel(double zoomLevel) = 0;
    virtual void StartDownload(const CefString& url) = 0;
    virtual void Print() = 0;
    virtual void Find(const CefString& searchText, bool forward, bool matchCase, bool findNext) = 0;
    virtual void StopFinding(bool clearSelection) = 0;
    virtual void ShowDevTools(const CefWindowInfo& windowInfo, CefRefPtr<CefClient> client,
                              const CefBrowserSettings& settings, const CefPoint& inspect_element_at) = 0;
    virtual void CloseDevTools() = 0;
    virtual bool HasDevTools() = 0;
    virtual bool SendDevToolsMessage(const void* message, size_t message_size) = 0;
    virtual int ExecuteDevToolsMethod(int message_id, const CefString& method,
                                      CefRefPtr<CefDictionaryValue> params) = 0;
    virtual void ReplaceMisspelling(const CefString& word) = 0;
    virtual void AddWordToDictionary(const CefString& word) = 0;
    virtual bool IsWindowRenderingDisabled() = 0;
    virtual void WasResized() = 0;
    virtual void WasHidden(bool hidden) = 0;
    virtual void NotifyScreenInfoChanged() = 0;
    virtual void Invalidate(PaintElementType type) = 0;
    virtual void SendExternalBeginFrame() = 0;
    virtual void SendKeyEvent(const CefKeyEvent& event) = 0;
    virtual void SendMouseClickEvent(const CefMouseEvent& event, MouseButtonType type, bool mouseUp,
                                     int clickCount) = 0;
    virtual void SendMouseMoveEvent(const CefMouseEvent& event, bool mouseLeave) = 0;
    virtual void SendMouseWheelEvent(const CefMouseEvent& event, int deltaX, int deltaY) = 0;
    virtual void SendTouchEvent(const CefTouchEvent& event) = 0;
    virtual void SendCaptureLostEvent() = 0;
    virtual void NotifyMoveOrResizeStarted() = 0;
    virtual int GetWindowlessFrameRate() = 0;
    virtual void SetWindowlessFrameRate(int frame_rate) = 0;
    //@optional text
    virtual void ImeSetComposition(const CefString& text, const std::vector<CefCompositionUnderline>& underlines,
                                   const CefRange& replacement_range, const CefRange& selection_range) = 0;
    //@optional text
    virtual void ImeCommitText(const CefString& text, const CefRange& replacement_range, int relative_cursor_pos) = 0;
    virtual void ImeFinishComposingText(bool keep_selection) = 0;
    virtual void ImeCancelComposition() = 0;
    virtual void DragTargetDragEnter(CefRefPtr<CefDragData> drag_data, const CefMouseEvent& event,
                                     DragOperationsMask allowed_ops) = 0;
    virtual void DragTargetDragOver(const CefMouseEvent& event, DragOperationsMask allowed_ops) = 0;
    virtual void DragTargetDragLeave() = 0;
    virtual void DragTargetDrop(const CefMouseEvent& event) = 0;
    virtual void DragSourceEndedAt(int x, int y, DragOperationsMask op) = 0;
    virtual void DragSourceSystemDragEnded() = 0;
    virtual void SetAccessibilityState(cef_state_t accessibility_state) = 0;
    virtual void SetAutoResizeEnabled(bool enabled, const CefSize& min_size, const CefSize& max_size) = 0;
    virtual void SetAudioMuted(bool mute) = 0;
    virtual bool IsAudioMuted() = 0;
    virtual bool IsFullscreen() = 0;
    virtual void ExitFullscreen(bool will_cause_resize) = 0;
    virtual bool CanExecuteChromeCommand(int command_id) = 0;
    virtual void ExecuteChromeCommand(int command_id, cef_window_open_disposition_t disposition) = 0;
    virtual bool IsRenderProcessUnresponsive() = 0;
    virtual cef_runtime_style_t GetRuntimeStyle() = 0;
};
