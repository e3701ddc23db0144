#include "core/platform_port.h"

#include <cstdio>

#include "zemo/platform.h"

namespace ZEMO::Core {

std::string findFreePort(const PortCalls& calls) {
    WSADATA data{};
    if (calls.startup(MAKEWORD(2, 2), &data) != 0) {
        OutputDebugStringA("GetDynamicPort: WSAStartup failed\n");
        return {};
    }
    struct Cleanup {
        const PortCalls& calls;
        ~Cleanup() { calls.cleanup(); }
    };
    sockaddr_in address{};
    {
        const Cleanup cleanup{calls};
        const SOCKET handle = calls.open(AF_INET, SOCK_STREAM, IPPROTO_TCP);
        if (handle == INVALID_SOCKET) {
            OutputDebugStringA("GetDynamicPort: socket() failed\n");
            return {};
        }
        struct Close {
            const PortCalls& calls;
            SOCKET handle;
            ~Close() { calls.close(handle); }
        } const close{calls, handle};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        address.sin_port = 0;
        if (calls.bindTo(handle, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
            OutputDebugStringA("GetDynamicPort: bind(0) failed\n");
            return {};
        }
        int size = sizeof address;
        if (calls.name(handle, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
            OutputDebugStringA("GetDynamicPort: getsockname() failed\n");
            return {};
        }
    }
    char port[16];
    std::snprintf(port, sizeof port, "%d", static_cast<int>(ntohs(address.sin_port)));
    OutputDebugStringA(("GetDynamicPort: success. port=" + std::string(port) + "\n").c_str());
    return port;
}

}  // namespace ZEMO::Core

namespace ZEMO::Platform::Misc {

std::string GetDynamicPort() { return Core::findFreePort({}); }

}  // namespace ZEMO::Platform::Misc
