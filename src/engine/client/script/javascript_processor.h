#pragma once

#include <mutex>
#include <string>
#include <utility>

#include "engine/client/script/script_queue.h"
#include "include/cef_browser.h"
#include "include/cef_process_message.h"

namespace ZEMO::UI {

/// This process's half of the script bridge, one for each browser client: requests become messages to the page's
/// process, its messages become calls. Requests on any thread, the page's messages on the engine thread.
class JavascriptProcessor {
public:
    using ResultCallback = ScriptQueue::ResultCallback;

    JavascriptProcessor();

    /// The browser to send to; null drops what is sent from now on. Under the client's browser lock.
    void setBrowser(CefRefPtr<CefBrowser> newBrowser);
    /// Sends now when the page is ready, else with the next completed page, oldest first.
    void evaluate(std::string id, std::string script, ResultCallback callback) {
        queue.evaluate(std::move(id), std::move(script), std::move(callback));
    }
    /// The first registration of a name stays.
    void addObjectCallback(std::string name, std::function<void(std::string)> callback) {
        queue.addObjectCallback(std::move(name), std::move(callback));
    }
    void addObjectMessage(std::string name, std::string message) {
        queue.addObjectMessage(std::move(name), std::move(message));
    }
    void flushQueuedEvaluations() { queue.flush(); }
    void resetPageReady() { queue.resetReady(); }

    /// Two of the page's messages; one without arguments is ignored, since a page's process can't be trusted.
    void onEvaluated(const CefRefPtr<CefProcessMessage>& message) const;
    void onObjectUsed(const CefRefPtr<CefProcessMessage>& message) const;

private:
    void send(const std::string& id, const std::string& script);

    std::mutex browserMutex;
    CefRefPtr<CefBrowser> browser;
    ScriptQueue queue;
};

}  // namespace ZEMO::UI
