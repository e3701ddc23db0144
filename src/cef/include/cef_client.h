#pragma once

#include "include/cef_audio_handler.h"
#include "include/cef_browser.h"
#include "include/cef_command_handler.h"
#include "include/cef_context_menu_handler.h"
#include "include/cef_dialog_handler.h"
#include "include/cef_display_handler.h"
#include "include/cef_download_handler.h"
#include "include/cef_drag_handler.h"
#include "include/cef_find_handler.h"
#include "include/cef_focus_handler.h"
#include "include/cef_frame_handler.h"
#include "include/cef_jsdialog_handler.h"
#include "include/cef_keyboard_handler.h"
#include "include/cef_life_span_handler.h"
#include "include/cef_load_handler.h"
#include "include/cef_permission_handler.h"
#include "include/cef_print_handler.h"
#include "include/cef_process_message.h"
#include "include/cef_render_handler.h"
#include "include/cef_request_handler.h"

/// What one browser is given: the handlers of its events.
//@client
class CefClient : public virtual CefBaseRefCounted {
public:
    virtual CefRefPtr<CefAudioHandler> GetAudioHandler() { return nullptr; }
    virtual CefRefPtr<CefCommandHandler> GetCommandHandler() { return nullptr; }
    virtual CefRefPtr<CefContextMenuHandler> GetContextMenuHandler() { return nullptr; }
    virtual CefRefPtr<CefDialogHandler> GetDialogHandler() { return nullptr; }
    virtual CefRefPtr<CefDisplayHandler> GetDisplayHandler() { return nullptr; }
    virtual CefRefPtr<CefDownloadHandler> GetDownloadHandler() { return nullptr; }
    virtual CefRefPtr<CefDragHandler> GetDragHandler() { return nullptr; }
    virtual CefRefPtr<CefFindHandler> GetFindHandler() { return nullptr; }
    virtual CefRefPtr<CefFocusHandler> GetFocusHandler() { return nullptr; }
    virtual CefRefPtr<CefFrameHandler> GetFrameHandler() { return nullptr; }
    virtual CefRefPtr<CefPermissionHandler> GetPermissionHandler() { return nullptr; }
    virtual CefRefPtr<CefJSDialogHandler> GetJSDialogHandler() { return nullptr; }
    virtual CefRefPtr<CefKeyboardHandler> GetKeyboardHandler() { return nullptr; }
    virtual CefRefPtr<CefLifeSpanHandler> GetLifeSpanHandler() { return nullptr; }
    virtual CefRefPtr<CefLoadHandler> GetLoadHandler() { return nullptr; }
    virtual CefRefPtr<CefPrintHandler> GetPrintHandler() { return nullptr; }
    virtual CefRefPtr<CefRenderHandler> GetRenderHandler() { return nullptr; }
    virtual CefRefPtr<CefRequestHandler> GetRequestHandler() { return nullptr; }
    virtual bool OnProcessMessageReceived(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                                          CefProcessId source_process, CefRefPtr<CefProcessMessage> message) {
        return false;
    }
};
