#pragma once

#include <winsock2.h>

#include <atomic>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace ZEMO::Test {

/// A small HTTP server on 127.0.0.1 that a test owns: it serves what the test registers, on a port of the system's
/// choice, and records every request as the engine sent it.
class HttpServer {
public:
    struct Request {
        std::string method;
        std::string target;                          ///< path and query as sent
        std::map<std::string, std::string> headers;  ///< names in lower case
        std::string body;
    };
    struct Response {
        int status = 200;
        std::string contentType = "text/html; charset=utf-8";
        std::string body;
        std::string extraHeaders;  ///< whole lines, each with its line end
        int delayMs = 0;           ///< before the answer, cut short when the server stops
        bool neverEnds = false;    ///< promises more than it sends and keeps the connection open
    };

    HttpServer();
    ~HttpServer();
    HttpServer(const HttpServer&) = delete;
    HttpServer& operator=(const HttpServer&) = delete;

    /// Serves `path` (without query). A later call replaces the answer.
    void serve(const std::string& path, Response response);
    void serveHtml(const std::string& path, const std::string& html) { serve(path, {.body = html}); }

    /// "http://127.0.0.1:port" + path
    std::string url(const std::string& path) const;
    std::vector<Request> requests() const;
    size_t requestCount(const std::string& path) const;

private:
    void acceptClients();
    void serveClient(SOCKET client);

    SOCKET listener;
    int port = 0;
    std::atomic<bool> running{true};
    mutable std::mutex mutex;
    std::map<std::string, Response> responses;
    std::vector<Request> seen;
    std::vector<std::thread> clients;
    std::thread acceptor;
};

}  // namespace ZEMO::Test
