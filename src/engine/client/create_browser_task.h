#pragma once

#include <string>
#include <utility>

#include "core/process_end.h"
#include "engine/client/cef_handler.h"
#include "include/cef_browser.h"
#include "include/cef_task.h"

namespace ZEMO::UI {

/// Makes the browser of a view, on the engine thread. A view that is gone by then costs no page process.
class CreateBrowserTask : public CefTask {
public:
    CreateBrowserTask(HWND parentWindow, CefRefPtr<CefHandler> browserClient, std::string firstAddress)
        : parent(parentWindow), client(std::move(browserClient)), address(std::move(firstAddress)) {}

    void Execute() override {
        if (client->isClosed() || Core::isProcessEnding()) return;
        CefWindowInfo windowInfo;
        windowInfo.parent_window = parent;
        windowInfo.windowless_rendering_enabled = true;
        windowInfo.runtime_style = CEF_RUNTIME_STYLE_ALLOY;
        CefBrowserSettings settings;
        settings.windowless_frame_rate = kFrameRate;
        CefBrowserHost::CreateBrowser(windowInfo, client, address, settings, nullptr, nullptr);
    }

private:
    static constexpr int kFrameRate = 30;

    HWND parent;
    CefRefPtr<CefHandler> client;
    std::string address;
    IMPLEMENT_REFCOUNTING(CreateBrowserTask);
};

}  // namespace ZEMO::UI
