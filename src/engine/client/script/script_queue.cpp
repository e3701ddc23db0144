#include "engine/client/script/script_queue.h"

#include <utility>

namespace ZEMO::UI {

ScriptQueue::ScriptQueue(Sender requestSender) : send(std::move(requestSender)) {}

void ScriptQueue::evaluate(std::string id, std::string script, ResultCallback callback) {
    const std::lock_guard lock(mutex);
    if (pageReady) return sendLocked(id, script, std::move(callback));
    queuedEvaluations.push_back({std::move(callback), std::move(script), std::move(id)});
}

void ScriptQueue::sendLocked(const std::string& id, const std::string& script, ResultCallback callback) {
    pendingResults.emplace(id, std::move(callback));
    send(id, script);
}

void ScriptQueue::flush() {
    const std::lock_guard lock(mutex);
    pageReady = true;
    while (!queuedEvaluations.empty()) {
        QueuedEvaluation oldest = std::move(queuedEvaluations.front());
        queuedEvaluations.pop_front();
        sendLocked(oldest.id, oldest.script, std::move(oldest.callback));
    }
}

void ScriptQueue::resetReady() {
    const std::lock_guard lock(mutex);
    pageReady = false;
}

void ScriptQueue::answer(const std::string& id, std::string result, std::string error) const {
    ResultCallback callback;
    {
        const std::lock_guard lock(mutex);
        const auto entry = pendingResults.find(id);
        if (entry == pendingResults.end()) return;
        callback = entry->second;
    }
    if (callback) callback(std::move(result), std::move(error));
}

void ScriptQueue::addObjectCallback(std::string name, ObjectCallback callback) {
    const std::lock_guard lock(mutex);
    objectCallbacks.emplace(std::move(name), std::move(callback));
}

void ScriptQueue::addObjectMessage(std::string name, std::string message) {
    const std::lock_guard lock(mutex);
    objectMessages.emplace(std::move(name), std::move(message));
}

void ScriptQueue::invokeObject(const std::string& name) const {
    ObjectCallback callback;
    std::string text;
    {
        const std::lock_guard lock(mutex);
        const auto message = objectMessages.find(name);
        const auto registered = objectCallbacks.find(name);
        if (message == objectMessages.end() || registered == objectCallbacks.end()) return;
        text = message->second;
        callback = registered->second;
    }
    if (callback) callback(std::move(text));
}

}  // namespace ZEMO::UI
