#include <gtest/gtest.h>

#include <atomic>
#include <future>
#include <memory>
#include <thread>

#include "browser/loopback_http_manager.h"
#include "helpers/loopback_client.h"
#include "helpers/loopback_peer.h"
#include "support/import_replaced.h"

// The responder when its socket can't be set up. The system's calls can't be made to fail here, so the entries of this
// program's import table are replaced for the time of a test; all other calls are the real ones.
namespace ZEMO::UI {
namespace {

using namespace std::chrono_literals;
using Peer = LoopbackHttpManagerPeer;
using Test::ImportReplaced;

std::atomic<int> calls{0};
std::atomic<int> opened{0};
std::atomic<int> closed{0};
decltype(&::socket) realSocket = nullptr;
decltype(&::closesocket) realClose = nullptr;

SOCKET WSAAPI noSocket(int, int, int) { return ++calls, WSASetLastError(WSAEMFILE), INVALID_SOCKET; }
int WSAAPI noBind(SOCKET, const sockaddr*, int) { return ++calls, WSASetLastError(WSAEADDRINUSE), SOCKET_ERROR; }
int WSAAPI noListen(SOCKET, int) { return ++calls, WSASetLastError(WSAENOBUFS), SOCKET_ERROR; }
int WSAAPI noName(SOCKET, sockaddr*, int*) { return ++calls, WSASetLastError(WSAEFAULT), SOCKET_ERROR; }
SOCKET WSAAPI countedSocket(int family, int type, int protocol) { return ++opened, realSocket(family, type, protocol); }
std::promise<void> mayBind;
decltype(&::bind) realBind = nullptr;
int WSAAPI lateBind(SOCKET socket, const sockaddr* address, int size) {
    ++calls;
    mayBind.get_future().wait_for(20s);
    return realBind(socket, address, size);
}
int WSAAPI countedClose(SOCKET socket) { return ++closed, realClose(socket); }

class LoopbackSetup : public testing::Test {
protected:
    LoopbackSetup() {
        calls = opened = closed = 0;
        realSocket = socketEntry.original<decltype(realSocket)>();
        realClose = closeEntry.original<decltype(realClose)>();
    }
    /// A manager whose worker has met the failing call: never ready, and its end is not held up by anything.
    void expectNeverReady(int sockets) {
        {
            LoopbackHttpManager manager;
            for (int i = 0; calls == 0 && i < 20'000; ++i) std::this_thread::sleep_for(1ms);
            EXPECT_EQ(calls, 1) << "the worker did not come to the failing call";
            EXPECT_FALSE(Peer::isReadyWithin(manager, 300ms));
            EXPECT_EQ(Peer::registerUrl(manager, "https://x").size(), 16u) << "an address may still come in";
        }
        EXPECT_EQ(calls, 1) << "it is not tried again";
        EXPECT_EQ(opened, sockets);
        EXPECT_EQ(closed, sockets) << "no socket is left";
    }

    ImportReplaced socketEntry{"socket", &countedSocket};
    ImportReplaced closeEntry{"closesocket", &countedClose};
};

TEST_F(LoopbackSetup, NoSocket_NeverReadyAndEndsCleanly) {
    const ImportReplaced failing("socket", &noSocket);
    expectNeverReady(0);
}

TEST_F(LoopbackSetup, NotBound_NeverReadyAndSocketIsClosedAtTheEnd) {
    const ImportReplaced failing("bind", &noBind);
    expectNeverReady(1);
}

TEST_F(LoopbackSetup, NotListening_NeverReadyAndSocketIsClosedAtTheEnd) {
    const ImportReplaced failing("listen", &noListen);
    expectNeverReady(1);
}

// The end has begun while the worker is still on its way to its port: it comes that far, serves nobody and goes.
TEST_F(LoopbackSetup, StoppedBeforeReady_EndsCleanlyAndNothingListens) {
    const ImportReplaced late("bind", &lateBind);
    realBind = late.original<decltype(realBind)>();
    mayBind = {};
    auto manager = std::make_unique<LoopbackHttpManager>();
    const LoopbackHttpManager& ending = *manager;
    for (int i = 0; calls == 0 && i < 20'000; ++i) std::this_thread::sleep_for(1ms);
    ASSERT_EQ(calls, 1) << "the worker did not come to its port";
    EXPECT_FALSE(Peer::isToldToStop(ending));
    auto end = std::async(std::launch::async, [&manager] { manager.reset(); });
    for (int i = 0; !Peer::isToldToStop(ending) && i < 20'000; ++i) std::this_thread::sleep_for(1ms);
    EXPECT_TRUE(Peer::isToldToStop(ending));
    EXPECT_EQ(end.wait_for(100ms), std::future_status::timeout) << "the worker is not waited for";
    mayBind.set_value();
    ASSERT_EQ(end.wait_for(20s), std::future_status::ready);
    EXPECT_EQ(opened, 1);
    EXPECT_EQ(closed, 1);
}

TEST_F(LoopbackSetup, PortNotTold_ReadyWithAnEmptyPort) {
    const ImportReplaced failing("getsockname", &noName);
    {
        LoopbackHttpManager manager;
        EXPECT_TRUE(Peer::isReadyWithin(manager, 20s));
        EXPECT_EQ(Peer::portText(manager), "");
        EXPECT_EQ(Peer::shortAddress(manager, "0123456789abcdef"), "http://127.0.0.1:/?requestId=0123456789abcdef");
    }
    EXPECT_EQ(opened, 1);
    EXPECT_EQ(closed, 1);
}

}  // namespace
}  // namespace ZEMO::UI
