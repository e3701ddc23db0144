// The way out of a process, for the one instance behind instance():
//
// 1. The constructor pins this module before it starts the worker, so FreeLibrary never unmaps the worker's code and
//    never runs the destructor: it could not wait there, since a thread's end needs the loader's lock, which an unload
//    holds.
// 2. A return from main, exit or ExitProcess on any thread first ends every other thread, the worker too, whatever it
//    waits in (select, or recv of a client that sends nothing). Its handle is signalled from then on.
// 3. Only then are the module's static objects destroyed, still under the loader's lock. running goes false. The
//    worker's thread object is let go unwaited: nothing is left to be joined, and the thread library's own locks may
//    have been held by a thread that was ended. So may requestsMutex, which is not taken either; the requests, which
//    such a thread may have left half changed, are let go as they are. The listening socket is closed, Winsock given
//    back (its library goes after this one, because this one imports it).
// 4. TerminateProcess runs none of this; the system closes the socket.
//
// An instance of a test, or one linked into a program without the library, is destroyed with its worker alive: the join
// then takes up to one select time-out, and waits for a client that holds the worker.
#include "browser/loopback_http_manager.h"

#include <ws2tcpip.h>

#include <shellapi.h>

#include <chrono>
#include <cstddef>
#include <random>
#include <system_error>
#include <utility>

#include "browser/loopback_request.h"
#include "core/module_pin.h"
#include "core/never_destroyed.h"
#include "core/process_end.h"
#include "core/singleton.h"
#include "core/unique_socket.h"

namespace ZEMO::UI {
namespace {

// How late the worker may notice that it has to stop.
constexpr long kSelectTimeoutMicroseconds = 100000;

std::int64_t nowInTicks() {
    using Ticks = std::chrono::duration<std::int64_t, std::ratio<1, 10'000'000>>;
    return std::chrono::duration_cast<Ticks>(std::chrono::system_clock::now().time_since_epoch()).count();
}

}  // namespace

LoopbackHttpManager* LoopbackHttpManager::instance() { return &Core::Singleton<LoopbackHttpManager>::instance(); }

LoopbackHttpManager::LoopbackHttpManager() : readyFuture(readyPromise.get_future()) {
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data);
    Core::pinOwnModule();
    running = true;
    try {
        workerThread = std::thread(&LoopbackHttpManager::run, this);
    } catch (const std::system_error&) {
        // As with any other failed step of the set-up: never ready, and the game goes on.
        running = false;
    }
}

LoopbackHttpManager::~LoopbackHttpManager() {
    running = false;
    if (Core::isProcessEnding()) {
        Core::leaveUndestroyed(std::move(workerThread));
        Core::leaveUndestroyed(std::move(requests));
    } else if (workerThread.joinable()) {
        workerThread.join();
    }
    if (listenSocket != 0) {
        closesocket(listenSocket);
        listenSocket = 0;
    }
    WSACleanup();
}

void LoopbackHttpManager::waitUntilReady() { readyFuture.wait(); }

void LoopbackHttpManager::openUrl(const std::string& url) {
    const std::string address = shortAddress(registerUrl(url));
    const std::wstring wideAddress(address.begin(), address.end());  // ASCII
    ShellExecuteW(nullptr, L"open", wideAddress.c_str(), nullptr, nullptr, SW_SHOWNORMAL);
}

std::string LoopbackHttpManager::generateRequestId() {
    static std::mt19937_64 generator{std::random_device{}()};
    std::uniform_int_distribution<int> digit(0, 15);
    const std::lock_guard lock(requestsMutex);  // of the generator as well: several launches come here at a time
    for (;;) {
        std::string id;
        for (std::size_t i = 0; i < kRequestIdLength; ++i) id += "0123456789abcdef"[digit(generator)];
        if (!requests.contains(id)) return id;
    }
}

std::string LoopbackHttpManager::registerUrl(const std::string& url) {
    PendingRequest request{url, nowInTicks()};
    std::string id = generateRequestId();
    const std::lock_guard lock(requestsMutex);
    requests[id] = std::move(request);
    return id;
}

std::string LoopbackHttpManager::shortAddress(const std::string& requestId) const {
    return "http://127.0.0.1:" + port + "/?" + std::string(kRequestIdKeyword) + requestId;
}

void LoopbackHttpManager::run() {
    const SOCKET listener = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    if (listener == INVALID_SOCKET) return;
    listenSocket = listener;

    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = 0;  // the system picks a free one
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == SOCKET_ERROR) return;

    sockaddr_in bound{};
    int boundSize = sizeof(bound);
    if (getsockname(listener, reinterpret_cast<sockaddr*>(&bound), &boundSize) == 0) {
        port = std::to_string(ntohs(bound.sin_port));
    }
    if (listen(listener, SOMAXCONN) == SOCKET_ERROR) return;
    readyPromise.set_value();

    while (running) {
        fd_set readable;
        FD_ZERO(&readable);
        FD_SET(listener, &readable);
        const timeval timeout{0, kSelectTimeoutMicroseconds};
        const int ready = select(0, &readable, nullptr, nullptr, &timeout);
        if (ready == 0) continue;
        const Core::UniqueSocket client(ready > 0 ? accept(listener, nullptr, nullptr) : INVALID_SOCKET);
        if (client) {
            handleClient(client.get());
        } else {
            // Such as a socket library that another module gave back once too often: it must not cost a core.
            std::this_thread::sleep_for(std::chrono::microseconds(kSelectTimeoutMicroseconds));
        }
    }
}

void LoopbackHttpManager::handleClient(SOCKET client) {
    char received[kRequestBytesRead];
    const int size = recv(client, received, sizeof(received), 0);
    if (size >= 1) {
        const std::string response = answerTo(std::string_view(received, static_cast<std::size_t>(size)));
        send(client, response.data(), static_cast<int>(response.size()), 0);
    }
}

std::string LoopbackHttpManager::answerTo(std::string_view received) {
    const auto id = requestedId(received);
    if (!id) return std::string(kBadRequestResponse);

    const std::lock_guard lock(requestsMutex);
    const auto pending = requests.find(*id);
    if (pending == requests.end()) return std::string(kNotFoundResponse);
    std::string response = redirectResponse(pending->second.url);
    requests.erase(pending);
    return response;
}

}  // namespace ZEMO::UI
