#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <string>
#include <string_view>
#include <unordered_map>

#include "include/cef_browser.h"

namespace ZEMO::UI {

/// Names of the process messages that go between this process and the page's process.
inline constexpr char kEvaluateJavascript[] = "evaluateJavascript";
inline constexpr char kBindObjectAsync[] = "BindObjectAsync";
inline constexpr char kImePasswordFieldFocus[] = "imePasswordFieldFocus";

/// 64-bit FNV-1a over the bytes.
struct Fnv1aHash {
    size_t operator()(std::string_view text) const noexcept {
        uint64_t hash = 0xCBF29CE484222325ull;
        for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3ull;
        return hash;
    }
};

/// This process's half of the script bridge, one for each browser client. Requests come on the caller's thread, answers
/// and page events on the engine thread; there is no lock, callers start loads and evaluations from one thread.
class JavascriptProcessor {
public:
    using ResultCallback = std::function<void(std::string, std::string)>;
    using ResultMap = std::unordered_map<std::string, ResultCallback, Fnv1aHash>;

    /// The browser to send to; null drops what is sent from now on. Under the client's browser lock.
    void setBrowser(CefRefPtr<CefBrowser> newBrowser) { browser = std::move(newBrowser); }
    /// Sends now when the page is ready, else with the next completed page, oldest first.
    void evaluate(std::string id, std::string script, ResultCallback callback);
    /// The first registration of a name stays.
    void addObjectCallback(std::string name, std::function<void(std::string)> callback);
    void addObjectMessage(std::string name, std::string message);
    /// The page used the object: its callback gets the message registered for it.
    void invokeObject(const std::string& name);
    /// Answers awaited, by request id. An entry stays after its answer.
    ResultMap& getPendingResults() { return pendingResults; }
    void flushQueuedEvaluations();
    void resetPageReady() { pageReady = false; }

private:
    struct QueuedEvaluation {
        ResultCallback callback;
        std::string script;
        std::string id;
    };
    void send(const std::string& id, const std::string& script, ResultCallback callback);

    CefRefPtr<CefBrowser> browser;
    ResultMap pendingResults;
    std::deque<QueuedEvaluation> queuedEvaluations;
    std::unordered_map<std::string, std::function<void(std::string)>, Fnv1aHash> objectCallbacks;
    std::unordered_map<std::string, std::string, Fnv1aHash> objectMessages;
    bool pageReady = false;
};

}  // namespace ZEMO::UI
