#include <gtest/gtest.h>

#include <winsock2.h>

#include <windows.h>

#include <string>
#include <vector>

#include "support/debug_log.h"
#include "support/import_replaced.h"
#include "zemo/platform.h"

namespace {

using ZEMO::Platform::Misc::GetDynamicPort;
using ZEMO::Test::DebugLogCapture;
using ZEMO::Test::ImportReplaced;
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
decltype(&::WSAStartup) realStartup = nullptr;
decltype(&::WSACleanup) realCleanup = nullptr;
int WSAAPI countedStartup(WORD version, WSADATA* data) {
    const int failed = realStartup(version, data);
    started += failed == 0;
    return failed;
}
int WSAAPI countedCleanup() {
    const int failed = realCleanup();
    ended += failed == 0;
    return failed;
}

TEST(PlatformPort, Done_SocketLibraryIsGivenBack) {
    const ImportReplaced startup("WSAStartup", &countedStartup);
    const ImportReplaced cleanup("WSACleanup", &countedCleanup);
    realStartup = startup.original<decltype(realStartup)>();
    realCleanup = cleanup.original<decltype(realCleanup)>();
    started = ended = 0;
    EXPECT_NE(GetDynamicPort(), "");
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

int WSAAPI notedStartup(WORD version, WSADATA*) {
    EXPECT_EQ(version, 0x0202);
    return answer("startup", WSASYSNOTREADY);
}
SOCKET WSAAPI notedSocket(int family, int type, int protocol) {
    EXPECT_TRUE(family == AF_INET && type == SOCK_STREAM && protocol == IPPROTO_TCP);
    return answer("open", -1) ? INVALID_SOCKET : 77;
}
int WSAAPI notedBind(SOCKET handle, const sockaddr* name, int size) {
    const auto* address = reinterpret_cast<const sockaddr_in*>(name);
    EXPECT_EQ(handle, 77u);
    EXPECT_EQ(size, static_cast<int>(sizeof(sockaddr_in)));
    EXPECT_EQ(address->sin_family, AF_INET);
    EXPECT_EQ(address->sin_addr.s_addr, htonl(INADDR_LOOPBACK));
    EXPECT_EQ(address->sin_port, 0);
    return answer("bind", SOCKET_ERROR);
}
int WSAAPI notedName(SOCKET, sockaddr* name, int*) {
    reinterpret_cast<sockaddr_in*>(name)->sin_port = htons(50123);
    return answer("name", SOCKET_ERROR);
}
int WSAAPI notedClose(SOCKET handle) {
    EXPECT_EQ(handle, 77u);
    return answer("close", 0);
}
int WSAAPI notedCleanup() { return answer("cleanup", 0); }

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
    const ImportReplaced startup("WSAStartup", &notedStartup), open("socket", &notedSocket), bound("bind", &notedBind),
        name("getsockname", &notedName), close("closesocket", &notedClose), cleanup("WSACleanup", &notedCleanup);
    for (const auto& row : kRows) {
        DebugLogCapture log;
        calls.clear();
        failing = row.step;
        EXPECT_EQ(GetDynamicPort(), row.port) << row.step;
        EXPECT_EQ(log.texts(), Lines{row.line}) << row.step;
        EXPECT_EQ(calls, row.calls) << row.step;
    }
}

}  // namespace
