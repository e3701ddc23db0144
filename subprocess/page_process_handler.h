#pragma once

#include "include/cef_render_process_handler.h"
#include "password_focus.h"
#include "script_host.h"

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
    void OnContextCreated(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefFrame> frame,
                          CefRefPtr<CefV8Context> context) override {
        scriptHost.onContextCreated(frame, context);
    }
    void OnContextReleased(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefFrame> /*frame*/,
                           CefRefPtr<CefV8Context> context) override {
        scriptHost.onContextReleased(context);
    }
    bool OnProcessMessageReceived(CefRefPtr<CefBrowser> /*browser*/, CefRefPtr<CefFrame> frame,
                                  CefProcessId /*source_process*/, CefRefPtr<CefProcessMessage> message) override {
        return scriptHost.onMessage(frame, message);
    }

private:
    PasswordFocus passwordFocus;
    ScriptHost scriptHost;

    IMPLEMENT_REFCOUNTING(PageProcessHandler);
};

}  // namespace ZEMO::UI
