#pragma once

#include <utility>

#include "include/cef_browser.h"
#include "include/cef_task.h"

namespace ZEMO::UI {

/// Closes a browser by force, on the engine thread.
class CloseBrowserTask : public CefTask {
public:
    explicit CloseBrowserTask(CefRefPtr<CefBrowser> browserToClose) : browser(std::move(browserToClose)) {}
    void Execute() override { browser->GetHost()->CloseBrowser(true); }

private:
    CefRefPtr<CefBrowser> browser;
    IMPLEMENT_REFCOUNTING(CloseBrowserTask);
};

}  // namespace ZEMO::UI
