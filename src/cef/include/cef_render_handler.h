#pragma once

#include "include/cef_accessibility_handler.h"
#include "include/cef_browser.h"
#include "include/cef_drag_data.h"

/// Pictures of a windowless browser, on the UI thread.
//@client
class CefRenderHandler : public virtual CefBaseRefCounted {
public:
    typedef cef_drag_operations_mask_t DragOperation;
    typedef cef_drag_operations_mask_t DragOperationsMask;
    typedef cef_paint_element_type_t PaintElementType;
    typedef std::vector<CefRect> RectList;
    typedef cef_text_input_mode_t TextInputMode;

    virtual CefRefPtr<CefAccessibilityHandler> GetAccessibilityHandler() { return nullptr; }
    virtual bool GetRootScreenRect(CefRefPtr<CefBrowser> browser, CefRect& rect) { return false; }
    /// Logical pixels.  Must never be empty: the engine dies of an empty view.
    virtual void GetViewRect(CefRefPtr<CefBrowser> browser, CefRect& rect) = 0;
    virtual bool GetScreenPoint(CefRefPtr<CefBrowser> browser, int viewX, int viewY, int& screenX, int& screenY) {
        return false;
    }
    virtual bool GetScreenInfo(CefRefPtr<CefBrowser> browser, CefScreenInfo& screen_info) { return false; }
    virtual void OnPopupShow(CefRefPtr<CefBrowser> browser, bool show) {}
    virtual void OnPopupSize(CefRefPtr<CefBrowser> browser, const CefRect& rect) {}
    /// `buffer` holds width * height BGRA pixels (device pixels), first row first, and is gone after the call.
    virtual void OnPaint(CefRefPtr<CefBrowser> browser, PaintElementType type, const RectList& dirtyRects,
                         const void* buffer, int width, int height) = 0;
    virtual void OnAcceleratedPaint(CefRefPtr<CefBrowser> browser, PaintElementType type, const RectList& dirtyRects,
                                    const CefAcceleratedPaintInfo& info) {}
    virtual void GetTouchHandleSize(CefRefPtr<CefBrowser> browser, cef_horizontal_alignment_t orientation,
                                    CefSize& size) {}
    virtual void OnTouchHandleStateChanged(CefRefPtr<CefBrowser> browser, const CefTouchHandleState& state) {}
    virtual bool StartDragging(CefRefPtr<CefBrowser> browser, CefRefPtr<CefDragData> drag_data,
                               DragOperationsMask allowed_ops, int x, int y) {
        return false;
    }
    virtual void UpdateDragCursor(CefRefPtr<CefBrowser> browser, DragOperation operation) {}
    virtual void OnScrollOffsetChanged(CefRefPtr<CefBrowser> browser, double x, double y) {}
    virtual void OnImeCompositionRangeChanged(CefRefPtr<CefBrowser> browser, const CefRange& selected_range,
                                              const RectList& character_bounds) {}
    virtual void OnTextSelectionChanged(CefRefPtr<CefBrowser> browser, const CefString& selected_text,
                                        const CefRange& selected_range) {}
    virtual void OnVirtualKeyboardRequested(CefRefPtr<CefBrowser> browser, TextInputMode input_mode) {}
};
