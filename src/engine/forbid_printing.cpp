#include "engine/forbid_printing.h"

#include "core/log.h"
#include "include/cef_request_context.h"
#include "include/cef_values.h"

namespace ZEMO::UI {

void forbidPrinting() {
    const CefRefPtr<CefRequestContext> context = CefRequestContext::GetGlobalContext();
    const CefRefPtr<CefValue> no = CefValue::Create();
    if (!context || !no) return;
    no->SetBool(false);
    CefString error;
    if (!context->SetPreference("printing.enabled", no, error)) {
        Core::logDebugA("printing can't be forbidden: %s\n", error.ToString().c_str());
    }
}

}  // namespace ZEMO::UI
