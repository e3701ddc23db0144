#pragma once

#include <winsock2.h>

#include <atomic>
#include <cstdint>
#include <future>
#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

namespace ZEMO::UI {

/// Hands a very long address to a browser that is not running yet: the browser is started with a short address on
/// 127.0.0.1, and the answer to that address is a redirect to the long one, which so never passes through a command
/// line. Each short address works once; one that no browser asks for is kept until the process ends.
///
/// One instance serves the process. Its worker thread owns the sockets and serves one client after the other; openUrl
/// runs on the threads of the launches.
class LoopbackHttpManager {
public:
    /// The process's instance; the first call starts the server and keeps this module loaded.
    static LoopbackHttpManager* instance();

    /// Instances of their own are for tests and benchmarks.
    LoopbackHttpManager();
    /// Stops the server; waits for a client that holds the worker.
    virtual ~LoopbackHttpManager();
    LoopbackHttpManager(const LoopbackHttpManager&) = delete;
    LoopbackHttpManager& operator=(const LoopbackHttpManager&) = delete;

    /// Blocks until the server listens; for ever if it could not be set up. Any thread, any number of times.
    void waitUntilReady();

    /// Opens `url` in the default browser by way of a short address. Any thread, once waitUntilReady has returned.
    void openUrl(const std::string& url);

private:
    friend struct LoopbackHttpManagerPeer;  // tests and benchmarks: registers an address without starting a browser

    struct PendingRequest {
        std::string url;
        std::int64_t createdAt = 0;  // 100 ns since the Unix epoch; there is no expiry
    };

    std::string generateRequestId();
    std::string registerUrl(const std::string& url);
    std::string shortAddress(const std::string& requestId) const;
    void run();
    void handleClient(SOCKET client);
    std::string answerTo(std::string_view received);

    // Written by the worker before readyPromise is fulfilled, read only after it: that ordering is their lock.
    std::string port;  // decimal; stays empty if the system does not tell it
    SOCKET listenSocket = 0;

    std::thread workerThread;
    std::atomic<bool> running{false};

    // Shared by the worker and the launches, under requestsMutex.
    std::map<std::string, PendingRequest> requests;
    std::mutex requestsMutex;

    std::promise<void> readyPromise;
    std::future<void> readyFuture;
};

}  // namespace ZEMO::UI
