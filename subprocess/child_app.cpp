#include "child_app.h"

namespace ZEMO::UI {
namespace {

/// Main thread of the child.
class ChildApp : public CefApp {
public:
    void OnRegisterCustomSchemes(CefRawPtr<CefSchemeRegistrar> registrar) override {
        // As in the browser process: a child that does not know the scheme never finishes such a page.
        registrar->AddCustomScheme("zemosdkcustomscheme", CEF_SCHEME_OPTION_STANDARD | CEF_SCHEME_OPTION_CORS_ENABLED);
    }

private:
    IMPLEMENT_REFCOUNTING(ChildApp);
};

}  // namespace

CefRefPtr<CefApp> createChildApp() { return new ChildApp; }

}  // namespace ZEMO::UI
