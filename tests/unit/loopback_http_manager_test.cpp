// The responder over real sockets.
#include "browser/loopback_http_manager.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "helpers/loopback_client.h"
#include "helpers/loopback_peer.h"
#include "helpers/stand_in_browser_stage.h"
#include "support/import_replaced.h"

namespace ZEMO::UI {
namespace {

using namespace std::chrono_literals;
using namespace std::string_literals;
using Peer = LoopbackHttpManagerPeer;
using Test::browserRequest;
using Test::exchange;
using Test::ImportReplaced;
using Test::LoopbackClient;
using Test::StandInBrowserStage;
using Clock = std::chrono::steady_clock;

constexpr auto kBadRequest = "HTTP/1.1 400 Bad Request\r\n\r\n";
constexpr auto kNotFound = "HTTP/1.1 404 Not Found\r\n\r\n";

std::string found(const std::string& url) { return "HTTP/1.1 302 Found\r\nLocation: " + url + "\r\n\r\n"; }

class LoopbackHttp : public testing::Test {
protected:
    LoopbackHttp() { manager->waitUntilReady(); }

    std::string add(const std::string& url) { return Peer::registerUrl(*manager, url); }
    unsigned short port() const { return Peer::port(*manager); }
    std::string get(const std::string& target) const { return exchange(port(), browserRequest(target)); }

    std::unique_ptr<LoopbackHttpManager> manager = std::make_unique<LoopbackHttpManager>();
};

TEST_F(LoopbackHttp, RegisteredAddress_RedirectedOnceThen404) {
    const std::string id = add("https://x/y?z=1");
    EXPECT_EQ(get("/?requestId=" + id), found("https://x/y?z=1"));
    EXPECT_EQ(get("/?requestId=" + id), kNotFound);
    EXPECT_EQ(Peer::pendingCount(*manager), 0u);
}

TEST_F(LoopbackHttp, Favicon_BadRequest) {
    const std::string id = add("https://x");
    EXPECT_EQ(get("/favicon.ico"), kBadRequest);
    EXPECT_EQ(get("/?requestId=" + id), found("https://x"));
}

TEST_F(LoopbackHttp, IdentifierInBodyOrReferer_WorksAsInTheQuery) {
    const std::string inBody = add("https://body");
    EXPECT_EQ(exchange(port(), "POST / HTTP/1.1\r\nContent-Length: 26\r\n\r\nrequestId=" + inBody),
              found("https://body"));
    const std::string inReferer = add("https://referer");
    EXPECT_EQ(
        exchange(port(), "GET /favicon.ico HTTP/1.1\r\nReferer: http://127.0.0.1/?requestId=" + inReferer + "\r\n\r\n"),
        found("https://referer"));
}

TEST_F(LoopbackHttp, IdentifierAtTheVeryEndOfWhatIsRead_Works) {
    const std::string id = add("https://x");
    std::string request(4095 - 26, '/');
    request += "requestId=" + id;
    ASSERT_EQ(request.size(), 4095u);
    EXPECT_EQ(exchange(port(), request), found("https://x"));
}

TEST_F(LoopbackHttp, ShortIdentifier_NotFound) {
    const std::string id = add("https://x");
    EXPECT_EQ(exchange(port(), "GET /?requestId=" + id.substr(0, 15)), kNotFound);
    EXPECT_EQ(exchange(port(), "GET /?requestId="), kNotFound);
    EXPECT_EQ(exchange(port(), "requestId"), kBadRequest);
    EXPECT_EQ(Peer::pendingCount(*manager), 1u);
}

TEST_F(LoopbackHttp, UnknownIdentifier_NotFound) { EXPECT_EQ(get("/?requestId=0123456789abcdef"), kNotFound); }

TEST_F(LoopbackHttp, UpperCaseIdentifier_NotFound) {
    std::string id;
    do {
        id = add("https://x");
    } while (id.find_first_of("abcdef") == std::string::npos);
    std::string upper = id;
    for (char& c : upper) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    EXPECT_EQ(get("/?requestId=" + upper), kNotFound);
    EXPECT_EQ(get("/?requestId=" + id), found("https://x"));
}

TEST_F(LoopbackHttp, TextBehindIdentifier_CutForTheLookup) {
    EXPECT_EQ(exchange(port(), "requestId=" + add("https://x") + " HTTP/1.1"), found("https://x"));
    EXPECT_EQ(exchange(port(), "requestId=" + add("https://y") + "0123"), found("https://y"));
}

TEST_F(LoopbackHttp, NulInRequest_EndsIt) {
    const std::string id = add("https://x");
    EXPECT_EQ(exchange(port(), "GET /\0?requestId="s + id), kBadRequest);
    EXPECT_EQ(exchange(port(), "GET /?requestId="s + id.substr(0, 8) + '\0' + id.substr(8)), kNotFound);
    EXPECT_EQ(exchange(port(), "\0"s), kBadRequest);
    EXPECT_EQ(exchange(port(), "GET /?requestId="s + id + '\0'), found("https://x"));
}

TEST_F(LoopbackHttp, ClientClosesWithoutSending_NoAnswerAndWorkerGoesOn) {
    {
        LoopbackClient silent(port());
        silent.endSending();
        const auto received = silent.receiveAll();
        EXPECT_TRUE(received.ended);
        EXPECT_EQ(received.text, "");
    }
    {
        LoopbackClient gone(port());
    }
    LoopbackClient(port()).reset();
    EXPECT_EQ(get("/?requestId=" + add("https://x")), found("https://x"));
}

TEST_F(LoopbackHttp, SlowClient_OnlyItsFirstPieceIsRead) {
    const std::string id = add("https://x");
    LoopbackClient slow(port());
    ASSERT_TRUE(slow.send("GET /?reques"));
    EXPECT_EQ(slow.receiveAll().text, kBadRequest);
    slow.send("tId=" + id);
    EXPECT_EQ(Peer::pendingCount(*manager), 1u);
    EXPECT_EQ(get("/?requestId=" + id), found("https://x"));
}

// What lies unread when the responder closes may turn its goodbye into a reset, so the answer may be cut; it must never
// be anything else, and the next client is served.
struct Seen {
    std::atomic<DWORD> clientThread{0};
    decltype(&::recv) recv = nullptr;
    decltype(&::send) send = nullptr;
    std::mutex mutex;
    std::vector<int> asked, got;
    std::vector<std::string> answers;
};
Seen seen;

// What the worker reads and answers, seen in this program's imports: where more was sent than is read, the connection
// is reset behind the answer, and the system may drop the answer before the client has it.
class LoopbackReads : public LoopbackHttp {
protected:
    LoopbackReads() {
        seen.clientThread = GetCurrentThreadId();
        seen.asked.clear();
        seen.got.clear();
        seen.answers.clear();
        seen.recv = ZEMO::Test::systemFunction<decltype(::recv)>(L"ws2_32.dll", "recv");
        seen.send = ZEMO::Test::systemFunction<decltype(::send)>(L"ws2_32.dll", "send");
        receiving.emplace("recv", &noteReceive);
        sending.emplace("send", &noteSend);
    }
    ~LoopbackReads() override { manager.reset(); }  // the worker's last calls come before the imports are put back

    static int WSAAPI noteReceive(SOCKET socket, char* buffer, int size, int flags) {
        const int got = seen.recv(socket, buffer, size, flags);
        if (GetCurrentThreadId() == seen.clientThread) return got;
        const std::lock_guard lock(seen.mutex);
        seen.asked.push_back(size);
        seen.got.push_back(got);
        return got;
    }
    static int WSAAPI noteSend(SOCKET socket, const char* bytes, int size, int flags) {
        if (GetCurrentThreadId() != seen.clientThread) {
            const std::lock_guard lock(seen.mutex);
            seen.answers.emplace_back(bytes, static_cast<std::size_t>(size));
        }
        return seen.send(socket, bytes, size, flags);
    }
    /// All that the worker answered to one request; it is done when the client sees the end.
    static std::vector<std::string> answersTo(unsigned short port, const std::string& request) {
        LoopbackClient client(port);
        client.send(request);
        const auto received = client.receiveAll();
        EXPECT_NE(received.error, WSAETIMEDOUT) << "neither an end nor a reset";
        const std::lock_guard lock(seen.mutex);
        return seen.answers;
    }

private:
    std::optional<ImportReplaced> receiving;
    std::optional<ImportReplaced> sending;
};

TEST_F(LoopbackReads, HugeRequest_ReadOnceUpTo4095BytesAndWorkerGoesOn) {
    const std::string id = add("https://x");
    std::string request(1 << 20, 'h');
    request.replace(4096, 26, "requestId=" + id);
    EXPECT_EQ(answersTo(port(), request), std::vector<std::string>{kBadRequest});
    EXPECT_EQ(seen.asked, std::vector<int>{4095});
    EXPECT_EQ(Peer::pendingCount(*manager), 1u);
    EXPECT_EQ(get("/?requestId=" + id), found("https://x"));
}

TEST_F(LoopbackReads, KeywordEndsAtByte4096_BadRequest) {
    const std::string id = add("https://x");
    EXPECT_EQ(answersTo(port(), std::string(4096 - 10, 'h') + "requestId=" + id),
              std::vector<std::string>{kBadRequest});
    EXPECT_EQ(seen.got, std::vector<int>{4095});
    EXPECT_EQ(Peer::pendingCount(*manager), 1u);
}

TEST_F(LoopbackReads, KeywordEndsAtByte4095_NotFoundForItHasNoIdentifier) {
    const std::string id = add("https://x");
    EXPECT_EQ(answersTo(port(), std::string(4095 - 10, 'h') + "requestId=" + id), std::vector<std::string>{kNotFound});
    EXPECT_EQ(Peer::pendingCount(*manager), 1u);
}

// The answer fits the socket's buffer: Wine may not wake a send that is blocked when the peer resets.
TEST_F(LoopbackHttp, ClientResetsBeforeItsAnswer_WorkerGoesOn) {
    for (int i = 0; i < 50; ++i) {
        LoopbackClient broken(port());
        ASSERT_TRUE(broken.send("GET /?requestId=" + add(std::string(60'000, 'b'))));
        broken.reset();
    }
    EXPECT_EQ(get("/?requestId=" + add("https://x")), found("https://x"));
}

TEST_F(LoopbackHttp, AddressOfTwoMegabytes_ArrivesWhole) {
    std::string url = "https://x/?";
    while (url.size() < 2'000'000) url += static_cast<char>('!' + url.size() % 90);
    EXPECT_EQ(get("/?requestId=" + add(url)), found(url));
}

TEST_F(LoopbackHttp, OddAddresses_SentAsRegistered) {
    for (const std::string& url :
         {""s, "a b"s, "x\r\nSet-Cookie: y"s, "\xff\x80"s, "https://x/한글?%41%zz"s, "a\0b"s}) {
        EXPECT_EQ(get("/?requestId=" + add(url)), found(url));
    }
}

TEST_F(LoopbackHttp, ThousandRequestsInARow_EachAnsweredAndNoneLeft) {
    std::set<std::string> ids;
    for (int i = 0; i < 1000; ++i) {
        const std::string url = "https://x/" + std::to_string(i);
        const std::string id = add(url);
        ASSERT_EQ(id.size(), 16u);
        ASSERT_EQ(id.find_first_not_of("0123456789abcdef"), std::string::npos) << id;
        ASSERT_TRUE(ids.insert(id).second) << id;
        ASSERT_EQ(get("/?requestId=" + id), found(url)) << i;
    }
    EXPECT_EQ(Peer::pendingCount(*manager), 0u);
}

TEST_F(LoopbackHttp, ManyIdentifiers_EveryDigitAtEveryPlace) {
    std::set<char> digits[16];
    for (int i = 0; i < 1000; ++i) {
        const std::string id = add("x");
        for (std::size_t place = 0; place < 16; ++place) digits[place].insert(id[place]);
    }
    for (const auto& atPlace : digits) EXPECT_EQ(atPlace.size(), 16u);
    EXPECT_EQ(Peer::pendingCount(*manager), 1000u);
}

TEST_F(LoopbackHttp, ClientsAtOnce_ServedOneAfterTheOther) {
    std::vector<std::future<bool>> clients;
    for (int i = 0; i < 8; ++i) {
        const std::string url = "https://x/" + std::to_string(i);
        const std::string id = add(url);
        clients.push_back(std::async(std::launch::async, [this, id, url] {
            return get("/?requestId=" + id) == found(url) && get("/?requestId=" + id) == kNotFound;
        }));
    }
    for (auto& client : clients) EXPECT_TRUE(client.get());
}

TEST_F(LoopbackHttp, SameIdentifierByTwoClientsAtOnce_OneRedirectOne404) {
    for (int i = 0; i < 50; ++i) {
        const std::string id = add("https://x");
        auto other = std::async(std::launch::async, [this, id] { return get("/?requestId=" + id); });
        std::vector<std::string> answers{get("/?requestId=" + id), other.get()};
        std::sort(answers.begin(), answers.end());
        ASSERT_EQ(answers, (std::vector<std::string>{found("https://x"), kNotFound}));
    }
}

TEST_F(LoopbackHttp, SilentClient_HoldsTheOthersUntilItGoes) {
    const std::string id = add("https://x");
    auto silent = std::make_unique<LoopbackClient>(port());
    LoopbackClient waiting(port());
    ASSERT_TRUE(waiting.send("GET /?requestId=" + id));
    // more than twice the worker's own time-out passes without an answer
    waiting.setReceiveTimeout(300);
    EXPECT_EQ(waiting.receiveAll().error, WSAETIMEDOUT);
    EXPECT_EQ(Peer::pendingCount(*manager), 1u);

    waiting.setReceiveTimeout(30000);
    silent.reset();
    EXPECT_EQ(waiting.receiveAll().text, found("https://x"));
}

TEST_F(LoopbackHttp, SilentClient_HoldsTheStopUntilItGoes) {
    LoopbackClient silent(port());
    LoopbackClient behind(port());
    std::promise<void> stopped;
    auto isStopped = stopped.get_future();
    std::thread stopping([&] {
        manager.reset();
        stopped.set_value();
    });
    EXPECT_EQ(isStopped.wait_for(400ms), std::future_status::timeout);
    silent.reset();
    EXPECT_EQ(isStopped.wait_for(30s), std::future_status::ready);
    stopping.join();
}

TEST_F(LoopbackHttp, Idle_StopsWithinAboutOneSelectTimeout) {
    const unsigned short oldPort = port();
    auto shortest = Clock::duration::max();
    for (int i = 0; i < 5; ++i) {
        const auto start = Clock::now();
        manager.reset();
        shortest = std::min(shortest, Clock::now() - start);
        if (i < 4) {
            manager = std::make_unique<LoopbackHttpManager>();
            manager->waitUntilReady();
        }
    }
    // the best of five, because the machine may be busy with something else
    EXPECT_LT(shortest, 200ms);
    EXPECT_THROW(LoopbackClient client(oldPort), std::runtime_error);
}

TEST_F(LoopbackHttp, StopWithAddressesPending_Clean) {
    for (int i = 0; i < 100; ++i) add("https://x/" + std::to_string(i));
    manager.reset();
    manager = std::make_unique<LoopbackHttpManager>();
    manager->waitUntilReady();
    EXPECT_EQ(Peer::pendingCount(*manager), 0u);
}

TEST_F(LoopbackHttp, Ready_StaysReadyForEveryWaiter) {
    for (int i = 0; i < 100; ++i) manager->waitUntilReady();
    auto other = std::async(std::launch::async, [this] { manager->waitUntilReady(); });
    EXPECT_EQ(other.wait_for(30s), std::future_status::ready);
}

TEST_F(LoopbackHttp, Port_ChosenBySystemAndOnTheLoopbackAddressOnly) {
    EXPECT_EQ(Peer::portText(*manager), std::to_string(port()));
    EXPECT_GT(port(), 0);
    LoopbackHttpManager second;
    second.waitUntilReady();
    EXPECT_NE(Peer::port(second), port());
    // also a loopback address, but not the one that is bound
    EXPECT_THROW(LoopbackClient client(port(), "127.0.0.2"), std::runtime_error);
}

TEST_F(LoopbackHttp, Registration_KeepsTheTimeIn100NanosecondsSince1970) {
    const auto now = [] {
        FILETIME time;
        GetSystemTimeAsFileTime(&time);
        const auto since1601 = (static_cast<std::int64_t>(time.dwHighDateTime) << 32) | time.dwLowDateTime;
        return since1601 - 116444736000000000;
    };
    constexpr std::int64_t kSecond = 10'000'000;
    const std::int64_t before = now();
    const std::int64_t createdAt = Peer::createdAt(*manager, add("x"));
    EXPECT_GE(createdAt, before - kSecond);
    EXPECT_LE(createdAt, now() + kSecond);
}

TEST(LoopbackHttpInstance, EveryThread_GetsTheSame) {
    std::vector<std::future<LoopbackHttpManager*>> askers;
    for (int i = 0; i < 8; ++i) {
        askers.push_back(std::async(std::launch::async, [] {
            LoopbackHttpManager::instance()->waitUntilReady();
            return LoopbackHttpManager::instance();
        }));
    }
    for (auto& asker : askers) EXPECT_EQ(asker.get(), LoopbackHttpManager::instance());
}

TEST_F(LoopbackHttp, OpenUrl_StartsTheDefaultBrowserWithTheShortAddress) {
    StandInBrowserStage stage;
    stage.makeDefault(L"chrome.exe");
    const std::string url = "https://x/" + std::string(5000, 'q');
    manager->openUrl(url);
    const auto starts = stage.takeStarts();
    ASSERT_EQ(starts.size(), 1u);
    ASSERT_EQ(starts[0].arguments.size(), 1u);
    const std::string prefix = "http://127.0.0.1:" + Peer::portText(*manager) + "/?requestId=";
    const std::string& address = starts[0].arguments[0];
    ASSERT_EQ(address.substr(0, prefix.size()), prefix);
    ASSERT_EQ(address.size(), prefix.size() + 16);
    EXPECT_EQ(get(address.substr(address.find("/?"))), found(url));
}

TEST_F(LoopbackHttp, OpenUrlByManyThreads_EachAddressReachesItsBrowser) {
    StandInBrowserStage stage;
    stage.makeDefault(L"whale.exe");
    std::vector<std::thread> launches;
    for (int i = 0; i < 6; ++i) {
        launches.emplace_back([this, i] { manager->openUrl("https://x/" + std::to_string(i)); });
    }
    for (auto& launch : launches) launch.join();
    std::set<std::string> answers;
    for (const auto& start : stage.takeStarts()) {
        ASSERT_EQ(start.arguments.size(), 1u);
        answers.insert(get(start.arguments[0].substr(start.arguments[0].find("/?"))));
    }
    std::set<std::string> expected;
    for (int i = 0; i < 6; ++i) expected.insert(found("https://x/" + std::to_string(i)));
    EXPECT_EQ(answers, expected);
}

TEST_F(LoopbackHttp, BrowserDoesNotStart_AddressStaysPending) {
    StandInBrowserStage stage;  // no default browser
    manager->openUrl("https://x");
    EXPECT_EQ(Peer::pendingCount(*manager), 1u);
    EXPECT_TRUE(stage.takeStarts().empty());
}

}  // namespace
}  // namespace ZEMO::UI
