#pragma once

#include "include/cef_render_process_handler.h"
#include "password_focus.h"

namespace ZEMO::UI {

/// What the engine tells a page's process. Each concern is a member, and one line here forwards to it.
///
/// Thread: the process's main one.
class PageProcessHandler : public CefRenderProcessHandler {
public:
    void OnBrowserDestroyed(CefRefPtr<CefBrowser> browser) override { passwordFocus.onBrowserDestroyed(browser); }
    void OnFocusedNodeChanged(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                              CefRefPtr<CefDOMNode> node) override {
        passwordFocus.onFocusedNodeChanged(browser, frame, node);
    }

private:
    PasswordFocus passwordFocus;

    IMPLEMENT_REFCOUNTING(PageProcessHandler);
};

}  // namespace ZEMO::UI
