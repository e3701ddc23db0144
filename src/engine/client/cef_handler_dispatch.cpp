#include <windows.h>

#include <shellapi.h>

#include "core/process_end.h"
#include "core/process_messages.h"
#include "engine/client/cef_handler.h"
#include "engine/client/request/downloads.h"
#include "engine/client/script/javascript_processor.h"
#include "engine/engine_thread.h"
#include "include/cef_browser.h"
#include "include/cef_process_message.h"
#include "include/cef_values.h"
#include "include/wrapper/cef_helpers.h"
#include "layers/window_messages.h"

// Where each callback of the engine goes. They come on the engine thread, the two of a request on its IO thread.
namespace ZEMO::UI {

bool CefHandler::OnProcessMessageReceived(CefRefPtr<CefBrowser> source, CefRefPtr<CefFrame> /*frame*/,
                                          CefProcessId /*source_process*/, CefRefPtr<CefProcessMessage> message) {
    assert(isOnEngineThread());
    if (Core::isProcessEnding()) return false;  // what the game's callbacks use may be gone
    const std::string name = message->GetName();
    if (name == Core::kEvaluateJavascript) {
        javascriptProcessor->onEvaluated(message);
    } else if (name == Core::kBindObjectAsync) {
        javascriptProcessor->onObjectUsed(message);
    } else if (name == Core::kImePasswordFieldFocus) {
        onPasswordFieldFocus(source, message);
    } else {
        return false;
    }
    return true;
}

void CefHandler::onPasswordFieldFocus(const CefRefPtr<CefBrowser>& source,
                                      const CefRefPtr<CefProcessMessage>& message) {
    const CefRefPtr<CefListValue> arguments = message->GetArgumentList();
    if (!arguments) return;  // a page's process can't be trusted
    ime.onPasswordFieldFocus(source, arguments->GetBool(Core::kPasswordFieldFocused));
}

bool CefHandler::OnBeforePopup(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefFrame> /*frame*/, int /*popup_id*/,
                               const CefString& target_url, const CefString& /*target_frame_name*/,
                               CefLifeSpanHandler::WindowOpenDisposition /*target_disposition*/, bool /*user_gesture*/,
                               const CefPopupFeatures& /*popupFeatures*/, CefWindowInfo& /*windowInfo*/,
                               CefRefPtr<CefClient>& /*client*/, CefBrowserSettings& /*settings*/,
                               CefRefPtr<CefDictionaryValue>& /*extra_info*/, bool* /*no_javascript_access*/) {
    assert(isOnEngineThread());
    // A game has no room for a second browser window: the target belongs to the user's own browser.
    ShellExecuteW(nullptr, L"open", target_url.ToWString().c_str(), nullptr, nullptr, SW_SHOWNORMAL);
    return true;
}

CefRefPtr<CefResourceRequestHandler> CefHandler::GetResourceRequestHandler(CefRefPtr<CefBrowser> /*source*/,
                                                                           CefRefPtr<CefFrame> /*frame*/,
                                                                           CefRefPtr<CefRequest> /*request*/,
                                                                           bool /*is_navigation*/, bool /*is_download*/,
                                                                           const CefString& /*request_initiator*/,
                                                                           bool& /*disable_default_handling*/) {
    CEF_REQUIRE_IO_THREAD();
    return this;
}

CefHandler::ReturnValue CefHandler::OnBeforeResourceLoad(CefRefPtr<CefBrowser> /*source*/,
                                                         CefRefPtr<CefFrame> /*frame*/, CefRefPtr<CefRequest> request,
                                                         CefRefPtr<CefCallback> /*callback*/) {
    CEF_REQUIRE_IO_THREAD();
    contentItems.applyTo(request);
    return RV_CONTINUE;
}

bool CefHandler::OnBeforeDownload(CefRefPtr<CefBrowser> /*source*/, CefRefPtr<CefDownloadItem> /*download_item*/,
                                  const CefString& suggested_name, CefRefPtr<CefBeforeDownloadCallback> callback) {
    assert(isOnEngineThread());
    proposeDownload(suggested_name, callback);
    return false;  // the callback has been run all the same
}

void CefHandler::OnDownloadUpdated(CefRefPtr<CefBrowser> /*source*/, CefRefPtr<CefDownloadItem> download_item,
                                   CefRefPtr<CefDownloadItemCallback> /*callback*/) {
    assert(isOnEngineThread());
    reportDownload(download_item, getBrowser());
}

bool CefHandler::OnCursorChange(CefRefPtr<CefBrowser> /*browser*/, CefCursorHandle cursor, cef_cursor_type_t /*type*/,
                                const CefCursorInfo& /*custom_cursor_info*/) {
    assert(isOnEngineThread());
    if (!IsWindow(window)) return false;
    if (frames.isDrawnByGame()) {
        PostMessageW(window, WM_SETCURSOR, kPageCursorMarker, reinterpret_cast<LPARAM>(cursor));
        return true;
    }
    // A call that comes late must not undo the cursor that the end of the view, or the view in front, has put there.
    frames.whileShown([&] {
        SetClassLongPtrW(window, GCLP_HCURSOR, reinterpret_cast<LONG_PTR>(cursor));
        SetCursor(cursor);
    });
    return true;
}

void CefHandler::GetViewRect(CefRefPtr<CefBrowser> /*browser*/, CefRect& rect) {
    assert(isOnEngineThread());
    frames.getViewSize().getViewRect(rect);
}

bool CefHandler::GetScreenInfo(CefRefPtr<CefBrowser> source, CefScreenInfo& screen_info) {
    assert(isOnEngineThread());
    if (!IsWindow(window)) return false;
    CefRect view;
    GetViewRect(source, view);
    return frames.getViewSize().getScreenInfo(view, screen_info);
}

void CefHandler::OnPaint(CefRefPtr<CefBrowser> source, PaintElementType type, const RectList& dirtyRects,
                         const void* buffer, int width, int height) {
    assert(isOnEngineThread());
    frames.onPaint(source, type, dirtyRects, buffer, width, height);
}

void CefHandler::OnPopupShow(CefRefPtr<CefBrowser> source, bool show) {
    assert(isOnEngineThread());
    frames.onPopupShow(source, show);
}

void CefHandler::OnPopupSize(CefRefPtr<CefBrowser> source, const CefRect& rect) {
    assert(isOnEngineThread());
    frames.onPopupSize(source, rect);
}

void CefHandler::OnImeCompositionRangeChanged(CefRefPtr<CefBrowser> source, const CefRange& selected_range,
                                              const RectList& character_bounds) {
    assert(isOnEngineThread());
    ime.onImeCompositionRangeChanged(source, selected_range, character_bounds);
}

void CefHandler::OnTextSelectionChanged(CefRefPtr<CefBrowser> source, const CefString& /*selected_text*/,
                                        const CefRange& selected_range) {
    assert(isOnEngineThread());
    ime.onTextSelectionChanged(source, selected_range);
}

}  // namespace ZEMO::UI
