#pragma once

#include "engine/engine_thread.h"
#include "include/cef_context_menu_handler.h"

namespace ZEMO::UI {

/// A page in a game has no context menu: the engine shows none for an empty model.
class CefContextualMenuHandler : public CefContextMenuHandler {
public:
    void OnBeforeContextMenu(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame> frame,
                             CefRefPtr<CefContextMenuParams> params, CefRefPtr<CefMenuModel> model) override {
        assert(isOnEngineThread());
        (void)browser, (void)frame, (void)params;
        model->Clear();
    }

private:
    IMPLEMENT_REFCOUNTING(CefContextualMenuHandler);
};

}  // namespace ZEMO::UI
