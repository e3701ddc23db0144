// Both exports that open a browser, as a game calls them, with what else the game can set. Chrome is the default
// browser and does not run, so that a long address shows whether the redirect is used.
#include <gtest/gtest.h>
#include <winsock2.h>

#include <windows.h>

#include <atomic>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "helpers/loopback_client.h"
#include "helpers/stand_in_browser_stage.h"
#include "zemo/ui.h"

namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;
using namespace std::chrono_literals;
using Open = void (*)(const Core::IURL&);

const struct {
    const char* name;
    Open open;
    bool isPrivate;
} kExports[] = {{"openBrowser", &openBrowser, false}, {"openIncognitoBrowser", &openIncognitoBrowser, true}};

std::string addressOf(std::size_t bytes) {
    std::string url = "https://example.test/a?q=";
    while (url.size() < bytes) url += static_cast<char>('a' + url.size() % 26);
    return url;
}

/// What the game's callback was told. It may outlive its test, should a launch hang.
class Told {
public:
    /// A callback that answers `answer`, after `gate` if there is one.
    static std::function<bool(const std::string&)> callback(std::shared_ptr<Told> told, bool answer) {
        return [told, answer](const std::string& url) {
            const std::shared_future<void> gate = told->gate_;
            if (gate.valid()) gate.wait_for(30s);
            const std::lock_guard lock(told->mutex_);
            told->urls_.push_back(url);
            told->threadId_ = GetCurrentThreadId();
            HANDLE thread = nullptr;
            DuplicateHandle(GetCurrentProcess(), GetCurrentThread(), GetCurrentProcess(), &thread, SYNCHRONIZE, FALSE,
                            0);
            told->threads_.push_back(thread);
            ReleaseSemaphore(told->called_, 1, nullptr);
            return answer;
        };
    }
    ~Told() {
        for (const HANDLE thread : threads_) CloseHandle(thread);
        CloseHandle(called_);
    }

    void holdUntil(std::shared_future<void> gate) { gate_ = std::move(gate); }
    /// Waits for one call, then for the end of the launch that made it: from then on it starts nothing more.
    bool waitForLaunch() {
        if (WaitForSingleObject(called_, 30000) != WAIT_OBJECT_0) return false;
        const std::lock_guard lock(mutex_);
        return WaitForSingleObject(threads_.back(), 30000) == WAIT_OBJECT_0;
    }
    std::vector<std::string> urls() {
        const std::lock_guard lock(mutex_);
        return urls_;
    }
    DWORD threadId() {
        const std::lock_guard lock(mutex_);
        return threadId_;
    }

private:
    const HANDLE called_ = CreateSemaphoreW(nullptr, 0, 100, nullptr);
    std::mutex mutex_;
    std::vector<std::string> urls_;
    std::vector<HANDLE> threads_;
    DWORD threadId_ = 0;
    std::shared_future<void> gate_;
};

class OpenBrowserExports : public testing::Test {
protected:
    OpenBrowserExports() { stage.makeDefault(L"chrome.exe"); }
    ~OpenBrowserExports() override {
        setUIOpenExternalBrowserCallback({});
        setUIShowSteamDeckKeyboardCallback({});
    }

    /// The arguments of the one browser that a launch starts.
    std::vector<std::string> started() {
        EXPECT_TRUE(stage.waitForStarts(1)) << "no browser was started";
        const auto starts = stage.takeStarts();
        EXPECT_EQ(starts.size(), 1u);
        return starts.size() == 1 ? starts[0].arguments : std::vector<std::string>{};
    }
    static std::vector<std::string> directly(bool isPrivate, const std::string& url) {
        return isPrivate ? std::vector<std::string>{"--incognito", url} : std::vector<std::string>{url};
    }
    static void expectRedirect(const std::vector<std::string>& arguments, const std::string& url) {
        constexpr char kPrefix[] = "http://127.0.0.1:";
        ASSERT_EQ(arguments.size(), 1u);
        ASSERT_TRUE(arguments[0].starts_with(kPrefix)) << arguments[0];
        const auto port = static_cast<unsigned short>(std::stoi(arguments[0].substr(sizeof kPrefix - 1)));
        const std::string target = arguments[0].substr(arguments[0].find('/', sizeof kPrefix));
        EXPECT_EQ(ZEMO::Test::exchange(port, browserRequest(target)),
                  "HTTP/1.1 302 Found\r\nLocation: " + url + "\r\n\r\n");
    }

    StandInBrowserStage stage;
};

TEST_F(OpenBrowserExports, NothingSet_SystemBrowserOpensLongAddressByRedirectOrPrivately) {
    for (const auto& row : kExports) {
        for (const std::size_t bytes : {40u, 800u, 801u}) {
            SCOPED_TRACE(row.name + std::string(" ") + std::to_string(bytes));
            const std::string url = addressOf(bytes);
            row.open(Core::URL(url));
            if (!row.isPrivate && bytes > 800) {
                expectRedirect(started(), url);
            } else {
                EXPECT_EQ(started(), directly(row.isPrivate, url));
            }
        }
    }
}

TEST_F(OpenBrowserExports, KeyboardCallbackIsSet_LongAddressGoesDirectly) {
    setUIShowSteamDeckKeyboardCallback([](int) {});
    for (const auto& row : kExports) {
        SCOPED_TRACE(row.name);
        row.open(Core::URL(addressOf(801)));
        EXPECT_EQ(started(), directly(row.isPrivate, addressOf(801)));
    }
}

TEST_F(OpenBrowserExports, KeyboardCallbackIsTakenAway_LongAddressIsRedirectedAgain) {
    setUIShowSteamDeckKeyboardCallback([](int) {});
    setUIShowSteamDeckKeyboardCallback({});
    openBrowser(Core::URL(addressOf(801)));
    expectRedirect(started(), addressOf(801));
}

TEST_F(OpenBrowserExports, CallbackAnswersTrue_ToldOnceOnAnotherThreadAndNothingStarts) {
    for (const auto& row : kExports) {
        for (const std::size_t bytes : {40u, 801u}) {
            SCOPED_TRACE(row.name + std::string(" ") + std::to_string(bytes));
            const auto told = std::make_shared<Told>();
            setUIOpenExternalBrowserCallback(Told::callback(told, true));
            row.open(Core::URL(addressOf(bytes)));
            ASSERT_TRUE(told->waitForLaunch());
            EXPECT_EQ(told->urls(), std::vector<std::string>{addressOf(bytes)});
            EXPECT_NE(told->threadId(), GetCurrentThreadId());
            EXPECT_TRUE(stage.takeStarts().empty());
        }
    }
}

TEST_F(OpenBrowserExports, CallbackAnswersFalse_ToldOnceAndTheSystemBrowserOpens) {
    for (const auto& row : kExports) {
        SCOPED_TRACE(row.name);
        const auto told = std::make_shared<Told>();
        setUIOpenExternalBrowserCallback(Told::callback(told, false));
        row.open(Core::URL(addressOf(40)));
        ASSERT_TRUE(told->waitForLaunch());
        EXPECT_EQ(told->urls(), std::vector<std::string>{addressOf(40)});
        EXPECT_EQ(started(), directly(row.isPrivate, addressOf(40)));
    }
}

TEST_F(OpenBrowserExports, CallbackAnswersFalseOnTheHandheld_LongAddressGoesDirectly) {
    setUIShowSteamDeckKeyboardCallback([](int) {});
    const auto told = std::make_shared<Told>();
    setUIOpenExternalBrowserCallback(Told::callback(told, false));
    openBrowser(Core::URL(addressOf(801)));
    ASSERT_TRUE(told->waitForLaunch());
    EXPECT_EQ(started(), std::vector<std::string>{addressOf(801)});
}

TEST_F(OpenBrowserExports, CallbackIsReplaced_OnlyTheLaterOneIsTold) {
    for (const auto& row : kExports) {
        SCOPED_TRACE(row.name);
        const auto first = std::make_shared<Told>(), second = std::make_shared<Told>();
        setUIOpenExternalBrowserCallback(Told::callback(first, true));
        setUIOpenExternalBrowserCallback(Told::callback(second, true));
        row.open(Core::URL(addressOf(40)));
        ASSERT_TRUE(second->waitForLaunch());
        EXPECT_EQ(second->urls().size(), 1u);
        EXPECT_TRUE(first->urls().empty());
        EXPECT_EQ(first.use_count(), 1) << "the library lets the earlier one go";
    }
}

TEST_F(OpenBrowserExports, CallbackIsTakenAway_NobodyIsToldAndTheSystemBrowserOpens) {
    for (const auto& row : kExports) {
        SCOPED_TRACE(row.name);
        const auto told = std::make_shared<Told>();
        setUIOpenExternalBrowserCallback(Told::callback(told, true));
        setUIOpenExternalBrowserCallback({});
        row.open(Core::URL(addressOf(40)));
        EXPECT_EQ(started(), directly(row.isPrivate, addressOf(40)));
        EXPECT_TRUE(told->urls().empty());
    }
}

/// A game's own address. Only its text may be asked for; it tells how often and where.
class GameUrl : public Core::IURL {
public:
    explicit GameUrl(std::string text) : text_(std::move(text)) {}
    mutable int reads = 0;
    mutable DWORD threadId = 0;

    std::string getUrl() const override {
        ++reads;
        threadId = GetCurrentThreadId();
        return text_;
    }
    bool isEqual(const std::string&) const override { return wrong(), false; }
    bool isEqual(std::string_view) const override { return wrong(), false; }
    bool isEqual(const IURL&) const override { return wrong(), false; }
    std::string getScheme() const override { return wrong(); }
    std::string getHost() const override { return wrong(); }
    std::string getPort() const override { return wrong(); }
    std::string getPath() const override { return wrong(); }
    std::string getQueryParameter(const std::string&) const override { return wrong(); }
    std::string getQuery() const override { return wrong(); }
    std::string getFragment() const override { return wrong(); }
    std::map<std::string, std::string> getQueryParameters() const override {
        return wrong(), std::map<std::string, std::string>{};
    }
    void addQueryParameter(const std::string&, const std::string&) override { wrong(); }
    void addPathSegment(const std::string&) override { wrong(); }
    void setScheme(const std::string&) override { wrong(); }
    void setHost(const std::string&) override { wrong(); }
    void setPort(const std::string&) override { wrong(); }
    std::string toString() const override { return wrong(); }
    std::string toEncodedString() const override { return wrong(); }

private:
    static std::string wrong() {
        ADD_FAILURE() << "something else than the text was asked for";
        return {};
    }
    const std::string text_;
};

// The launch stands at the game's callback while the address goes: from then on nothing may read it.
TEST_F(OpenBrowserExports, AddressOfTheGame_ReadOnceByTheCallerAndFreeToGoAfterwards) {
    const std::string text = "game:not/ours?%41 " + std::string(100, 'x');
    for (const auto& row : kExports) {
        SCOPED_TRACE(row.name);
        const auto told = std::make_shared<Told>();
        std::promise<void> gone;
        told->holdUntil(gone.get_future());
        setUIOpenExternalBrowserCallback(Told::callback(told, true));
        {
            const GameUrl url(text);
            row.open(url);
            EXPECT_EQ(url.reads, 1);
            EXPECT_EQ(url.threadId, GetCurrentThreadId());
        }
        gone.set_value();
        ASSERT_TRUE(told->waitForLaunch());
        EXPECT_EQ(told->urls(), std::vector<std::string>{text});
    }
}

}  // namespace
}  // namespace ZEMO::Test
