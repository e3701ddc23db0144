#include <gtest/gtest.h>

#include "core/platform_port.h"
#include "support/debug_log.h"
#include "zemo/platform.h"

namespace {

using ZEMO::Core::findFreePort;
using ZEMO::Core::PortCalls;
using ZEMO::Platform::Misc::GetDynamicPort;
using ZEMO::Test::DebugLogCapture;
using Lines = std::vector<std::string>;

TEST(PlatformPort, Asked_GivesAPortThatCanBeBound) {
    DebugLogCapture log;
    const std::string port = GetDynamicPort();
    ASSERT_EQ(log.texts(), Lines{"GetDynamicPort: success. port=" + port + "\n"});
    const int number = std::stoi(port);
    ASSERT_EQ(std::to_string(number), port);
    ASSERT_TRUE(number > 0 && number < 65536) << port;

    WSADATA data{};
    ASSERT_EQ(WSAStartup(MAKEWORD(2, 2), &data), 0);
    const SOCKET listener = socket(AF_INET, SOCK_STREAM, IPPROTO_TCP);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<u_short>(number));
    EXPECT_EQ(bind(listener, reinterpret_cast<sockaddr*>(&address), sizeof address), 0) << WSAGetLastError();
    EXPECT_EQ(listen(listener, 1), 0);
    closesocket(listener);
    WSACleanup();
}

// The real calls, counted.
int started = 0, ended = 0;

TEST(PlatformPort, Done_SocketLibraryIsGivenBack) {
    PortCalls counted;
    counted.startup = [](WORD version, WSADATA* data) {
        const int failed = WSAStartup(version, data);
        started += failed == 0;
        return failed;
    };
    counted.cleanup = [] {
        const int failed = WSACleanup();
        ended += failed == 0;
        return failed;
    };
    started = ended = 0;
    EXPECT_NE(findFreePort(counted), "");
    EXPECT_EQ(started, 1);
    EXPECT_EQ(ended, 1);
}

// The system's calls can't be made to fail here, so these stand in for them; they note who was called.
std::string calls;
std::string failing;

int answer(const char* name, int failure) {
    calls += calls.empty() ? name : std::string(" ") + name;
    return failing == name ? failure : 0;
}

PortCalls failingCalls() {
    PortCalls made;
    made.startup = [](WORD version, WSADATA*) {
        EXPECT_EQ(version, 0x0202);
        return answer("startup", WSASYSNOTREADY);
    };
    made.open = [](int family, int type, int protocol) -> SOCKET {
        EXPECT_TRUE(family == AF_INET && type == SOCK_STREAM && protocol == IPPROTO_TCP);
        return answer("open", -1) ? INVALID_SOCKET : 77;
    };
    made.bindTo = [](SOCKET handle, const sockaddr* name, int size) {
        const auto* address = reinterpret_cast<const sockaddr_in*>(name);
        EXPECT_EQ(handle, 77u);
        EXPECT_EQ(size, static_cast<int>(sizeof(sockaddr_in)));
        EXPECT_EQ(address->sin_family, AF_INET);
        EXPECT_EQ(address->sin_addr.s_addr, inet_addr("127.0.0.1"));
        EXPECT_EQ(address->sin_port, 0);
        return answer("bind", SOCKET_ERROR);
    };
    made.name = [](SOCKET, sockaddr* name, int*) {
        reinterpret_cast<sockaddr_in*>(name)->sin_port = htons(50123);
        return answer("name", SOCKET_ERROR);
    };
    made.close = [](SOCKET handle) {
        EXPECT_EQ(handle, 77u);
        return answer("close", 0);
    };
    made.cleanup = [] { return answer("cleanup", 0); };
    return made;
}

TEST(PlatformPort, StepFails_ItsLineIsLoggedAndTheRestGivenBack) {
    const struct {
        const char* step;
        const char* port;
        const char* line;
        const char* calls;
    } kRows[] = {
        {"startup", "", "GetDynamicPort: WSAStartup failed\n", "startup"},
        {"open", "", "GetDynamicPort: socket() failed\n", "startup open cleanup"},
        {"bind", "", "GetDynamicPort: bind(0) failed\n", "startup open bind close cleanup"},
        {"name", "", "GetDynamicPort: getsockname() failed\n", "startup open bind name close cleanup"},
        {"none", "50123", "GetDynamicPort: success. port=50123\n", "startup open bind name close cleanup"},
    };
    for (const auto& row : kRows) {
        DebugLogCapture log;
        calls.clear();
        failing = row.step;
        EXPECT_EQ(findFreePort(failingCalls()), row.port) << row.step;
        EXPECT_EQ(log.texts(), Lines{row.line}) << row.step;
        EXPECT_EQ(calls, row.calls) << row.step;
    }
}

}  // namespace
