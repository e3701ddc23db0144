#include "engine/javascript_processor.h"

#include "include/cef_frame.h"
#include "include/cef_process_message.h"
#include "include/cef_values.h"

namespace ZEMO::UI {

void JavascriptProcessor::evaluate(std::string id, std::string script, ResultCallback callback) {
    if (pageReady) return send(id, script, std::move(callback));
    queuedEvaluations.push_back({std::move(callback), std::move(script), std::move(id)});
}

void JavascriptProcessor::send(const std::string& id, const std::string& script, ResultCallback callback) {
    pendingResults.emplace(id, std::move(callback));
    CefRefPtr<CefProcessMessage> message = CefProcessMessage::Create(kEvaluateJavascript);
    CefRefPtr<CefListValue> arguments = message->GetArgumentList();
    arguments->SetString(0, id);
    arguments->SetString(1, script);
    arguments->SetString(2, "");
    arguments->SetString(3, "");
    // A page may have closed its browser by itself, which has no frame then.
    const CefRefPtr<CefFrame> frame = browser ? browser->GetMainFrame() : nullptr;
    if (frame) frame->SendProcessMessage(PID_RENDERER, message);
}

void JavascriptProcessor::addObjectCallback(std::string name, std::function<void(std::string)> callback) {
    objectCallbacks.emplace(std::move(name), std::move(callback));
}

void JavascriptProcessor::addObjectMessage(std::string name, std::string message) {
    objectMessages.emplace(std::move(name), std::move(message));
}

void JavascriptProcessor::invokeObject(const std::string& name) {
    const auto message = objectMessages.find(name);
    const auto callback = objectCallbacks.find(name);
    if (message == objectMessages.end() || callback == objectCallbacks.end()) return;
    callback->second(message->second);
}

void JavascriptProcessor::flushQueuedEvaluations() {
    pageReady = true;
    while (!queuedEvaluations.empty()) {
        QueuedEvaluation oldest = std::move(queuedEvaluations.front());
        queuedEvaluations.pop_front();
        send(oldest.id, oldest.script, std::move(oldest.callback));
    }
}

}  // namespace ZEMO::UI
