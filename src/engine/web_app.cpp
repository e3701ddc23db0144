#include "engine/web_app.h"

#include "core/process_state.h"
#include "core/resource_names.h"
#include "include/cef_command_line.h"
#include "include/cef_scheme.h"

namespace ZEMO::UI {

static_assert(Core::kCustomSchemeOptions == (CEF_SCHEME_OPTION_STANDARD | CEF_SCHEME_OPTION_CORS_ENABLED));

void WebApp::OnBeforeCommandLineProcessing(const CefString& /*process_type*/, CefRefPtr<CefCommandLine> command_line) {
    command_line->AppendSwitch("no-proxy-server");
    command_line->AppendSwitch("disable-web-security");
    command_line->AppendSwitch("disable-site-isolation-trials");
    command_line->AppendSwitch("disable-touch-adjustment");
    if (isUIEngineOsrRenderEnabled()) command_line->AppendSwitch("disable-gpu-compositing");
}

void WebApp::OnRegisterCustomSchemes(CefRawPtr<CefSchemeRegistrar> registrar) {
    registrar->AddCustomScheme(Core::kCustomSchemeName, Core::kCustomSchemeOptions);
}

}  // namespace ZEMO::UI
