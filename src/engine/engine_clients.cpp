#include "engine/engine_clients.h"

#include <mutex>
#include <unordered_set>

#include "core/never_destroyed.h"

namespace ZEMO::UI {
namespace {

struct Registry {
    std::mutex mutex;
    std::unordered_set<IEngineClient*> clients;
};

Registry& registry() {
    static Core::NeverDestroyed<Registry> instance;
    return *instance;
}

int liveBrowserCount = 0;  // engine thread

}  // namespace

void EngineClients::add(IEngineClient* client) {
    const std::lock_guard lock(registry().mutex);
    registry().clients.insert(client);
}

void EngineClients::remove(IEngineClient* client) {
    const std::lock_guard lock(registry().mutex);
    registry().clients.erase(client);
}

void EngineClients::leaveAll() {
    // Under the lock: no client can be destroyed while it leaves.
    const std::lock_guard lock(registry().mutex);
    for (IEngineClient* const client : registry().clients) client->leaveEngine();
}

void EngineClients::browserCreated() { ++liveBrowserCount; }

void EngineClients::browserClosed() { --liveBrowserCount; }

int EngineClients::liveBrowsers() { return liveBrowserCount; }

}  // namespace ZEMO::UI
