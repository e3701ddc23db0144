#include "child_app.h"

#include "core/resource_names.h"
#include "page_process_handler.h"

namespace ZEMO::UI {
namespace {

/// Main thread of the child.
class ChildApp : public CefApp {
public:
    void OnRegisterCustomSchemes(CefRawPtr<CefSchemeRegistrar> registrar) override {
        // As in the browser process: a child that does not know the scheme never finishes such a page.
        registrar->AddCustomScheme(Core::kCustomSchemeName, Core::kCustomSchemeOptions);
    }

    CefRefPtr<CefRenderProcessHandler> GetRenderProcessHandler() override { return pageProcess; }

private:
    const CefRefPtr<CefRenderProcessHandler> pageProcess = new PageProcessHandler;

    IMPLEMENT_REFCOUNTING(ChildApp);
};

}  // namespace

CefRefPtr<CefApp> createChildApp() { return new ChildApp; }

}  // namespace ZEMO::UI
