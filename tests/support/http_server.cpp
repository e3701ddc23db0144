#include "support/http_server.h"

#include <ws2tcpip.h>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <format>
#include <stdexcept>

namespace ZEMO::Test {
namespace {

// Readable within 50 ms? Short waits keep every thread of the server able to stop.
bool readable(SOCKET socket) {
    fd_set set;
    FD_ZERO(&set);
    FD_SET(socket, &set);
    timeval wait{0, 50'000};
    return select(0, &set, nullptr, nullptr, &wait) > 0;
}

bool sendAll(SOCKET socket, const std::string& data) {
    for (size_t sent = 0; sent < data.size();) {
        const int n = send(socket, data.data() + sent, static_cast<int>(data.size() - sent), 0);
        if (n < 1) return false;
        sent += static_cast<size_t>(n);
    }
    return true;
}

HttpServer::Request parse(const std::string& head) {
    HttpServer::Request request;
    size_t lineEnd = head.find("\r\n");
    const std::string first = head.substr(0, lineEnd);
    const size_t space = first.find(' ');
    request.method = first.substr(0, space);
    request.target = first.substr(space + 1, first.rfind(' ') - space - 1);
    for (size_t start = lineEnd + 2; start < head.size();) {
        lineEnd = std::min(head.find("\r\n", start), head.size());
        const std::string line = head.substr(start, lineEnd - start);
        start = lineEnd + 2;
        const size_t colon = line.find(':');
        if (colon == std::string::npos) continue;
        std::string name = line.substr(0, colon);
        std::transform(name.begin(), name.end(), name.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        const size_t value = line.find_first_not_of(' ', colon + 1);
        request.headers[name] = value == std::string::npos ? "" : line.substr(value);
    }
    return request;
}

}  // namespace

HttpServer::HttpServer() {
    WSADATA data;
    WSAStartup(MAKEWORD(2, 2), &data);
    listener = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    int length = sizeof address;
    if (bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address) ||
        getsockname(listener, reinterpret_cast<sockaddr*>(&address), &length) || listen(listener, SOMAXCONN)) {
        throw std::runtime_error("the test's HTTP server can't listen");
    }
    port = ntohs(address.sin_port);
    acceptor = std::thread(&HttpServer::acceptClients, this);
}

HttpServer::~HttpServer() {
    running = false;
    acceptor.join();
    for (std::thread& client : clients) client.join();
    closesocket(listener);
    WSACleanup();
}

void HttpServer::serve(const std::string& path, Response response) {
    const std::lock_guard lock(mutex);
    responses[path] = std::move(response);
}

std::string HttpServer::url(const std::string& path) const { return std::format("http://127.0.0.1:{}{}", port, path); }

std::vector<HttpServer::Request> HttpServer::requests() const {
    const std::lock_guard lock(mutex);
    return seen;
}

size_t HttpServer::requestCount(const std::string& path) const {
    const std::lock_guard lock(mutex);
    return static_cast<size_t>(std::count_if(seen.begin(), seen.end(), [&](const Request& request) {
        return request.target.substr(0, request.target.find('?')) == path;
    }));
}

void HttpServer::acceptClients() {
    while (running) {
        if (!readable(listener)) continue;
        const SOCKET client = accept(listener, nullptr, nullptr);
        if (client != INVALID_SOCKET) clients.emplace_back(&HttpServer::serveClient, this, client);
    }
}

void HttpServer::serveClient(SOCKET client) {
    std::string received;
    char buffer[8192];
    while (running) {
        if (!readable(client)) continue;
        const int n = recv(client, buffer, sizeof buffer, 0);
        if (n < 1) break;
        received.append(buffer, static_cast<size_t>(n));
        const size_t headEnd = received.find("\r\n\r\n");
        if (headEnd == std::string::npos) continue;
        Request request = parse(received.substr(0, headEnd + 2));
        const size_t bodyLength =
            request.headers.contains("content-length") ? std::stoul(request.headers["content-length"]) : 0;
        if (received.size() < headEnd + 4 + bodyLength) continue;
        request.body = received.substr(headEnd + 4, bodyLength);

        Response response{.status = 404, .body = "not here"};
        {
            const std::lock_guard lock(mutex);
            const auto found = responses.find(request.target.substr(0, request.target.find('?')));
            if (found != responses.end()) response = found->second;
            seen.push_back(std::move(request));
        }
        for (int waited = 0; running && waited < response.delayMs; waited += 20) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        const size_t promised = response.body.size() + (response.neverEnds ? 1'000'000 : 0);
        sendAll(client,
                std::format("HTTP/1.1 {} X\r\nContent-Type: {}\r\nContent-Length: {}\r\nConnection: close\r\n"
                            "Cache-Control: no-store\r\n{}\r\n{}",
                            response.status, response.contentType, promised, response.extraHeaders, response.body));
        while (response.neverEnds && running) std::this_thread::sleep_for(std::chrono::milliseconds(20));
        break;
    }
    shutdown(client, SD_SEND);
    closesocket(client);
}

}  // namespace ZEMO::Test
