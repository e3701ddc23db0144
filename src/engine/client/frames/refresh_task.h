#pragma once

#include <utility>

#include "include/cef_browser.h"
#include "include/cef_task.h"

namespace ZEMO::UI {

/// Has the engine ask for the view's size anew and paint the whole page.
class RefreshTask : public CefTask {
public:
    explicit RefreshTask(CefRefPtr<CefBrowser> browserToPaint) : browser(std::move(browserToPaint)) {}
    void Execute() override {
        browser->GetHost()->WasResized();
        browser->GetHost()->Invalidate(PET_VIEW);
    }

private:
    CefRefPtr<CefBrowser> browser;
    IMPLEMENT_REFCOUNTING(RefreshTask);
};

}  // namespace ZEMO::UI
