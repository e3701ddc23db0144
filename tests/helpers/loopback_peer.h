#pragma once

#include <chrono>
#include <string>

#include "browser/loopback_http_manager.h"

namespace ZEMO::UI {

/// Registers an address as openUrl does, but starts no browser; so that a thousand requests need no thousand processes.
struct LoopbackHttpManagerPeer {
    static std::string registerUrl(LoopbackHttpManager& manager, const std::string& url) {
        return manager.registerUrl(url);
    }
    static std::string shortAddress(const LoopbackHttpManager& manager, const std::string& id) {
        return manager.shortAddress(id);
    }
    static unsigned short port(const LoopbackHttpManager& manager) {
        return static_cast<unsigned short>(std::stoi(manager.port));
    }
    static std::string portText(const LoopbackHttpManager& manager) { return manager.port; }
    /// True when the server listens within `time`.
    static bool isReadyWithin(LoopbackHttpManager& manager, std::chrono::milliseconds time) {
        return manager.readyFuture.wait_for(time) == std::future_status::ready;
    }
    static bool isToldToStop(const LoopbackHttpManager& manager) { return !manager.running; }
    static std::size_t pendingCount(LoopbackHttpManager& manager) {
        const std::lock_guard lock(manager.requestsMutex);
        return manager.requests.size();
    }
    static std::int64_t createdAt(LoopbackHttpManager& manager, const std::string& id) {
        const std::lock_guard lock(manager.requestsMutex);
        return manager.requests.at(id).createdAt;
    }
};

}  // namespace ZEMO::UI
