#include "engine/client/script/javascript_processor.h"

#include "core/process_messages.h"
#include "include/cef_frame.h"
#include "include/cef_values.h"

namespace ZEMO::UI {

JavascriptProcessor::JavascriptProcessor()
    : queue([this](const std::string& id, const std::string& script) { send(id, script); }) {}

void JavascriptProcessor::setBrowser(CefRefPtr<CefBrowser> newBrowser) {
    const std::lock_guard lock(browserMutex);
    browser.swap(newBrowser);
}

void JavascriptProcessor::send(const std::string& id, const std::string& script) {
    CefRefPtr<CefBrowser> target;
    {
        const std::lock_guard lock(browserMutex);
        target = browser;
    }
    // A page may have closed its browser by itself, which has no frame then.
    const CefRefPtr<CefFrame> frame = target ? target->GetMainFrame() : nullptr;
    if (!frame) return;
    CefRefPtr<CefProcessMessage> message = CefProcessMessage::Create(Core::kEvaluateJavascript);
    CefRefPtr<CefListValue> arguments = message->GetArgumentList();
    arguments->SetString(Core::kEvaluateId, id);
    arguments->SetString(Core::kEvaluateScript, script);
    arguments->SetString(Core::kEvaluateResult, "");
    arguments->SetString(Core::kEvaluateError, "");
    frame->SendProcessMessage(PID_RENDERER, message);
}

void JavascriptProcessor::onEvaluated(const CefRefPtr<CefProcessMessage>& message) const {
    const CefRefPtr<CefListValue> arguments = message->GetArgumentList();
    if (!arguments) return;
    queue.answer(arguments->GetString(Core::kEvaluateId), arguments->GetString(Core::kEvaluateResult),
                 arguments->GetString(Core::kEvaluateError));
}

void JavascriptProcessor::onObjectUsed(const CefRefPtr<CefProcessMessage>& message) const {
    if (const CefRefPtr<CefListValue> arguments = message->GetArgumentList()) {
        queue.invokeObject(arguments->GetString(Core::kBindObjectName));
    }
}

}  // namespace ZEMO::UI
