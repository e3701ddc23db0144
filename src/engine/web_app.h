#pragma once

#include "include/cef_app.h"

namespace ZEMO::UI {

/// The engine's view of this process: command-line switches and the custom scheme. Engine thread.
class WebApp : public CefApp, public CefBrowserProcessHandler {
public:
    void OnBeforeCommandLineProcessing(const CefString& process_type, CefRefPtr<CefCommandLine> command_line) override;
    void OnRegisterCustomSchemes(CefRawPtr<CefSchemeRegistrar> registrar) override;
    CefRefPtr<CefResourceBundleHandler> GetResourceBundleHandler() override { return nullptr; }
    CefRefPtr<CefBrowserProcessHandler> GetBrowserProcessHandler() override { return this; }
    CefRefPtr<CefRenderProcessHandler> GetRenderProcessHandler() override { return nullptr; }

private:
    IMPLEMENT_REFCOUNTING(WebApp);
};

}  // namespace ZEMO::UI
