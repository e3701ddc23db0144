#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>

namespace ZEMO::UI {

/// 64-bit FNV-1a over the bytes.
struct Fnv1aHash {
    size_t operator()(std::string_view text) const noexcept {
        uint64_t hash = 0xCBF29CE484222325ull;
        for (const char c : text) hash = (hash ^ static_cast<unsigned char>(c)) * 0x100000001B3ull;
        return hash;
    }
};

/// The tables of one page's script bridge, without the engine: requests that wait for the page, answers that are
/// awaited, objects by name.
///
/// Any thread. Requests leave in the order of their calls, also those that arrive while older ones are just being sent:
/// the sender is called under the lock and must not come back here. Callbacks are called with no lock held.
class ScriptQueue {
public:
    using ResultCallback = std::function<void(std::string, std::string)>;
    using ObjectCallback = std::function<void(std::string)>;
    /// Takes one request to the page: its id and its script.
    using Sender = std::function<void(const std::string& id, const std::string& script)>;

    explicit ScriptQueue(Sender requestSender);

    /// Sends now when the page is ready, else with the next completed page, oldest first.
    void evaluate(std::string id, std::string script, ResultCallback callback);
    /// The page is ready: what waits is sent.
    void flush();
    /// A new page is on its way: requests wait again.
    void resetReady();
    /// Hands the two results to the callback of `id`; an unknown id is ignored. The entry stays after its answer.
    void answer(const std::string& id, std::string result, std::string error) const;

    /// The first registration of a name stays.
    void addObjectCallback(std::string name, ObjectCallback callback);
    void addObjectMessage(std::string name, std::string message);
    /// The page used the object: its callback gets the message registered for it, when there are both.
    void invokeObject(const std::string& name) const;

private:
    struct QueuedEvaluation {
        ResultCallback callback;
        std::string script;
        std::string id;
    };
    template <class T>
    using Table = std::unordered_map<std::string, T, Fnv1aHash>;

    void sendLocked(const std::string& id, const std::string& script, ResultCallback callback);

    Sender send;
    mutable std::mutex mutex;  ///< guards all below
    Table<ResultCallback> pendingResults;
    std::deque<QueuedEvaluation> queuedEvaluations;
    Table<ObjectCallback> objectCallbacks;
    Table<std::string> objectMessages;
    bool pageReady = false;
};

}  // namespace ZEMO::UI
