#pragma once

#include "include/internal/cef_types_wrappers.h"

typedef HWND cef_window_handle_t;
typedef HCURSOR cef_cursor_handle_t;
#define CefWindowHandle cef_window_handle_t
#define CefCursorHandle cef_cursor_handle_t

class CefWindowInfo : public CefStructBase<cef_window_info_t> {
public:
    CefWindowInfo() = default;
    explicit CefWindowInfo(const cef_window_info_t& r) : CefStructBase(r) {}
    explicit CefWindowInfo(const CefWindowInfo& r) : CefStructBase(r) {}
    CefWindowInfo& operator=(const CefWindowInfo&) = default;

    void SetAsChild(CefWindowHandle parent, const CefRect& windowBounds) {
        style = WS_CHILD | WS_CLIPCHILDREN | WS_CLIPSIBLINGS | WS_TABSTOP | WS_VISIBLE;
        parent_window = parent;
        bounds = windowBounds;
    }
    void SetAsPopup(CefWindowHandle parent, const CefString& windowName) {
        style = WS_OVERLAPPEDWINDOW | WS_CLIPCHILDREN | WS_CLIPSIBLINGS | WS_VISIBLE;
        parent_window = parent;
        bounds = {CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT, CW_USEDEFAULT};
        CefString(&this->window_name) = windowName;
    }
    /// No window: every picture goes to CefRenderHandler.  `parent` owns dialogs and menus, and may be null.
    void SetAsWindowless(CefWindowHandle parent) {
        windowless_rendering_enabled = TRUE;
        parent_window = parent;
        runtime_style = CEF_RUNTIME_STYLE_ALLOY;
    }
};
