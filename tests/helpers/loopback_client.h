#pragma once

#include <winsock2.h>

#include <ws2tcpip.h>

#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>

namespace ZEMO::Test {

/// A client of the loopback responder over a real socket. Every wait is limited; a failure is an exception.
class LoopbackClient {
public:
    explicit LoopbackClient(unsigned short port, const char* host = "127.0.0.1") {
        WSADATA data;
        WSAStartup(MAKEWORD(2, 2), &data);
        socket_ = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
        if (socket_ == INVALID_SOCKET) fail("socket");
        sockaddr_in address{};
        address.sin_family = AF_INET;
        address.sin_port = htons(port);
        inet_pton(AF_INET, host, &address.sin_addr);
        if (connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) fail("connect");
        setReceiveTimeout(30000);
        // Wine may not wake a blocked send when the peer resets
        const DWORD sendTimeoutMs = 5000;
        setsockopt(socket_, SOL_SOCKET, SO_SNDTIMEO, reinterpret_cast<const char*>(&sendTimeoutMs),
                   sizeof(sendTimeoutMs));
    }
    ~LoopbackClient() {
        if (socket_ != INVALID_SOCKET) closesocket(socket_);
        WSACleanup();
    }
    LoopbackClient(const LoopbackClient&) = delete;
    LoopbackClient& operator=(const LoopbackClient&) = delete;

    void setReceiveTimeout(DWORD milliseconds) {
        setsockopt(socket_, SOL_SOCKET, SO_RCVTIMEO, reinterpret_cast<const char*>(&milliseconds),
                   sizeof(milliseconds));
    }

    /// False if the peer has gone before all was sent.
    bool send(std::string_view bytes) {
        while (!bytes.empty()) {
            const int sent = ::send(socket_, bytes.data(), static_cast<int>(bytes.size()), 0);
            if (sent <= 0) return false;
            bytes.remove_prefix(static_cast<std::size_t>(sent));
        }
        return true;
    }

    void endSending() { shutdown(socket_, SD_SEND); }

    /// Closes with a reset instead of a goodbye.
    void reset() {
        const linger hard{1, 0};
        setsockopt(socket_, SOL_SOCKET, SO_LINGER, reinterpret_cast<const char*>(&hard), sizeof(hard));
        closesocket(std::exchange(socket_, INVALID_SOCKET));
    }

    struct Received {
        std::string text;
        bool ended = false;  // false: reset or timed out
        int error = 0;
    };

    /// All that comes until the responder closes.
    Received receiveAll() {
        Received received;
        char buffer[65536];
        for (;;) {
            const int size = recv(socket_, buffer, sizeof(buffer), 0);
            if (size > 0) {
                received.text.append(buffer, static_cast<std::size_t>(size));
                continue;
            }
            received.ended = size == 0;
            if (size < 0) received.error = WSAGetLastError();
            return received;
        }
    }

private:
    [[noreturn]] void fail(const char* what) {
        const std::string text = std::string("loopback client: ") + what + " " + std::to_string(WSAGetLastError());
        if (socket_ != INVALID_SOCKET) closesocket(std::exchange(socket_, INVALID_SOCKET));
        WSACleanup();
        throw std::runtime_error(text);
    }

    SOCKET socket_ = INVALID_SOCKET;
};

/// One request and the whole answer.
inline std::string exchange(unsigned short port, std::string_view request) {
    LoopbackClient client(port);
    if (!client.send(request)) throw std::runtime_error("loopback client: request not sent");
    const auto received = client.receiveAll();
    if (!received.ended) throw std::runtime_error("loopback client: no end, error " + std::to_string(received.error));
    return received.text;
}

inline std::string browserRequest(std::string_view target) {
    return "GET " + std::string(target) +
           " HTTP/1.1\r\nHost: 127.0.0.1\r\nConnection: keep-alive\r\nAccept: text/html\r\n\r\n";
}

}  // namespace ZEMO::Test
