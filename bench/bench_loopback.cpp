// Requests a second of the loopback responder, next to the least a server on this machine can do: accept, recv, send
// the same bytes, close. Client and server are in one process, on two threads; each request is a connection of its own.
#include <winsock2.h>

#include <benchmark/benchmark.h>
#include <ws2tcpip.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <thread>

#include "browser/loopback_request.h"
#include "helpers/loopback_client.h"
#include "helpers/loopback_peer.h"

namespace {

using ZEMO::UI::LoopbackHttpManager;
using Peer = ZEMO::UI::LoopbackHttpManagerPeer;

struct AddressSize {
    const char* name;
    std::size_t bytes;
};

constexpr AddressSize kSizes[] = {{"1kB", 1000}, {"60kB", 60000}};

std::string addressOf(const AddressSize& size) { return "https://x/?" + std::string(size.bytes - 11, 'q'); }

/// Answers every request with the same bytes and knows nothing else.
class BareServer {
public:
    explicit BareServer(std::string answer) : answer_(std::move(answer)) {
        WSADATA data;
        WSAStartup(MAKEWORD(2, 2), &data);
        listener_ = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        int size = sizeof(address);
        if (bind(listener_, reinterpret_cast<const sockaddr*>(&address), size) != 0 ||
            getsockname(listener_, reinterpret_cast<sockaddr*>(&address), &size) != 0 ||
            listen(listener_, SOMAXCONN) != 0) {
            throw std::runtime_error("bare server");
        }
        port_ = ntohs(address.sin_port);
        worker_ = std::thread([this] { serve(); });
    }
    ~BareServer() {
        stop_ = true;
        {
            ZEMO::Test::LoopbackClient wakes(port_);
        }
        worker_.join();
        closesocket(listener_);
        WSACleanup();
    }

    unsigned short port() const { return port_; }

private:
    void serve() {
        char received[4096];
        while (!stop_) {
            const SOCKET client = accept(listener_, nullptr, nullptr);
            if (recv(client, received, sizeof(received), 0) > 0) {
                send(client, answer_.data(), static_cast<int>(answer_.size()), 0);
            }
            closesocket(client);
        }
    }

    std::string answer_;
    SOCKET listener_ = INVALID_SOCKET;
    unsigned short port_ = 0;
    std::atomic<bool> stop_{false};
    std::thread worker_;
};

void bareLoop(benchmark::State& state, const AddressSize& size) {
    const std::string answer = ZEMO::UI::redirectResponse(addressOf(size));
    BareServer server(answer);
    const std::string request = ZEMO::Test::browserRequest("/?requestId=0123456789abcdef");
    for (auto _ : state) {
        if (ZEMO::Test::exchange(server.port(), request) != answer) state.SkipWithError("wrong answer");
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
}

// The registration is part of a request's cost: every identifier works once.
void responder(benchmark::State& state, const AddressSize& size) {
    LoopbackHttpManager manager;
    manager.waitUntilReady();
    const std::string url = addressOf(size);
    const std::string answer = ZEMO::UI::redirectResponse(url);
    for (auto _ : state) {
        const std::string request = ZEMO::Test::browserRequest("/?requestId=" + Peer::registerUrl(manager, url));
        if (ZEMO::Test::exchange(Peer::port(manager), request) != answer) state.SkipWithError("wrong answer");
    }
    state.SetItemsProcessed(static_cast<std::int64_t>(state.iterations()));
    state.SetLabel(std::string("floor=accept_recv_send_close/") + size.name);
}

[[maybe_unused]] const bool kRegistered = [] {
    const struct {
        const char* name;
        void (*run)(benchmark::State&, const AddressSize&);
    } cases[] = {{"accept_recv_send_close", bareLoop}, {"loopback_redirect", responder}};
    for (const AddressSize& size : kSizes) {
        for (const auto& one : cases) {
            benchmark::RegisterBenchmark((std::string(one.name) + "/" + size.name).c_str(),
                                         [run = one.run, &size](benchmark::State& state) { run(state, size); })
                ->Unit(benchmark::kMicrosecond)
                ->UseRealTime();
        }
    }
    return true;
}();

}  // namespace
