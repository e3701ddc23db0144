#include <winsock2.h>

#include <windows.h>

#include <cstdio>
#include <string>

#include "core/unique_socket.h"
#include "zemo/platform.h"

namespace ZEMO::Platform::Misc {
namespace {

/// A use of the socket library; the system counts them.
class SocketLibrary {
public:
    SocketLibrary() {
        WSADATA data{};
        started = WSAStartup(MAKEWORD(2, 2), &data) == 0;
    }
    ~SocketLibrary() {
        if (started) WSACleanup();
    }
    SocketLibrary(const SocketLibrary&) = delete;
    SocketLibrary& operator=(const SocketLibrary&) = delete;

    explicit operator bool() const { return started; }

private:
    bool started = false;
};

std::string failed(const char* line) {
    OutputDebugStringA(line);
    return {};
}

std::string findFreePort() {
    const SocketLibrary library;
    if (!library) return failed("GetDynamicPort: WSAStartup failed\n");
    const Core::UniqueSocket socket(::socket(AF_INET, SOCK_STREAM, IPPROTO_TCP));
    if (!socket) return failed("GetDynamicPort: socket() failed\n");
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = 0;
    if (bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        return failed("GetDynamicPort: bind(0) failed\n");
    int size = sizeof address;
    if (getsockname(socket.get(), reinterpret_cast<sockaddr*>(&address), &size) != 0)
        return failed("GetDynamicPort: getsockname() failed\n");
    char port[16];
    std::snprintf(port, sizeof port, "%d", static_cast<int>(ntohs(address.sin_port)));
    return port;
}

}  // namespace

std::string GetDynamicPort() {
    std::string port = findFreePort();
    if (!port.empty()) OutputDebugStringA(("GetDynamicPort: success. port=" + port + "\n").c_str());
    return port;
}

}  // namespace ZEMO::Platform::Misc
