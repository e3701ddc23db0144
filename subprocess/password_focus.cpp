#include "password_focus.h"

#include "core/process_messages.h"
#include "include/cef_process_message.h"

namespace ZEMO::UI {
namespace {

bool isPasswordField(const CefRefPtr<CefDOMNode>& node) {
    return node && node->IsFormControlElement() &&
           node->GetFormControlElementType() == DOM_FORM_CONTROL_TYPE_INPUT_PASSWORD;
}

void report(const CefRefPtr<CefFrame>& frame, bool focused) {
    const CefRefPtr<CefProcessMessage> message = CefProcessMessage::Create(Core::kImePasswordFieldFocus);
    message->GetArgumentList()->SetBool(Core::kPasswordFieldFocused, focused);
    frame->SendProcessMessage(PID_BROWSER, message);
}

}  // namespace

void PasswordFocus::onFocusedNodeChanged(const CefRefPtr<CefBrowser>& browser, const CefRefPtr<CefFrame>& frame,
                                         const CefRefPtr<CefDOMNode>& node) {
    const int page = browser->GetIdentifier();
    if (isPasswordField(node)) {
        // Also from one password field to the next: each has its own count of what the input method may try.
        focusedIn.insert(page);
        report(frame, true);
    } else if (focusedIn.erase(page) > 0) {
        report(frame, false);
    }
}

void PasswordFocus::onBrowserDestroyed(const CefRefPtr<CefBrowser>& browser) {
    focusedIn.erase(browser->GetIdentifier());
}

}  // namespace ZEMO::UI
