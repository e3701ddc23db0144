#include <gtest/gtest.h>

#include <algorithm>
#include <future>
#include <thread>

#include "client/engine_task.h"
#include "client/page_report.h"
#include "engine/cef_context_handler.h"
#include "include/cef_cookie.h"
#include "support/debug_log.h"

// Cookies that a server and the engine's own store hold, before and after each kind of deletion.
namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

/// "name@domain" of each cookie, sorted.
class CookieNames : public CefCookieVisitor {
public:
    using Names = std::vector<std::string>;
    explicit CookieNames(std::shared_ptr<std::promise<Names>> answer) : promise(std::move(answer)) {}
    ~CookieNames() override {
        std::sort(names.begin(), names.end());
        promise->set_value(names);
    }
    bool Visit(const CefCookie& cookie, int, int, bool&) override {
        names.push_back(CefString(&cookie.name).ToString() + "@" + CefString(&cookie.domain).ToString());
        return true;
    }

private:
    std::shared_ptr<std::promise<Names>> promise;
    Names names;
    IMPLEMENT_REFCOUNTING(CookieNames);
};

class CookieIsSet : public CefSetCookieCallback {
public:
    explicit CookieIsSet(std::shared_ptr<std::promise<bool>> answer) : promise(std::move(answer)) {}
    void OnComplete(bool success) override { promise->set_value(success); }

private:
    std::shared_ptr<std::promise<bool>> promise;
    IMPLEMENT_REFCOUNTING(CookieIsSet);
};

class Cookies : public ::testing::Test {
protected:
    Cookies() : view(createWebViewDefault()) {}
    void SetUp() override { ASSERT_TRUE(view->deleteCookies("")) << "what an earlier test left"; }
    void TearDown() override { view->deleteCookies(""); }

    /// As a server of that address would set it.
    void set(const std::string& address, const std::string& name, const std::string& domain = {}) {
        CefCookie cookie;
        CefString(&cookie.name) = name;
        CefString(&cookie.value) = "value";
        CefString(&cookie.domain) = domain;
        const auto done = std::make_shared<std::promise<bool>>();
        ASSERT_TRUE(CefCookieManager::GetGlobalManager(nullptr)->SetCookie(address, cookie, new CookieIsSet(done)));
        auto result = done->get_future();
        ASSERT_EQ(result.wait_for(kPatience), std::future_status::ready);
        ASSERT_TRUE(result.get()) << address << " " << name;
    }
    CookieNames::Names stored() {
        const auto answer = std::make_shared<std::promise<CookieNames::Names>>();
        CefCookieManager::GetGlobalManager(nullptr)->VisitAllCookies(new CookieNames(answer));
        auto result = answer->get_future();
        EXPECT_EQ(result.wait_for(kPatience), std::future_status::ready);
        return result.get();
    }
    /// Four cookies: of a domain, its dotted form, a sub-domain, another domain.
    void setFour() {
        set("http://shop.test/", "host");
        set("http://shop.test/", "dotted", "shop.test");
        set("http://www.shop.test/a", "sub");
        set("http://other.test/", "other");
        ASSERT_EQ(stored(),
                  (CookieNames::Names{"dotted@.shop.test", "host@shop.test", "other@other.test", "sub@www.shop.test"}));
    }

    GameHost game;
    std::shared_ptr<IZEMOWebView> view;
};

const CookieNames::Names kAllFour{"dotted@.shop.test", "host@shop.test", "other@other.test", "sub@www.shop.test"};

}  // namespace

TEST_F(Cookies, NoCookies_ReturnsAtOnceTrue) {
    EXPECT_TRUE(stored().empty());
    EXPECT_TRUE(view->deleteCookies(""));
    EXPECT_TRUE(view->deleteCookies("shop.test"));
}

TEST_F(Cookies, EmptyText_EmptiesTheStore) {
    setFour();
    EXPECT_TRUE(view->deleteCookies(""));
    EXPECT_EQ(stored(), CookieNames::Names{});
}

TEST_F(Cookies, BareDomain_MatchesItselfItsDottedFormAndItsSubDomains) {
    setFour();
    EXPECT_TRUE(view->deleteCookies("shop.test"));
    EXPECT_EQ(stored(), CookieNames::Names{"other@other.test"});
}

TEST_F(Cookies, PartOfADomain_MatchesEveryDomainThatHoldsIt) {
    setFour();
    EXPECT_TRUE(view->deleteCookies("www.sh"));
    EXPECT_EQ(stored(), (CookieNames::Names{"dotted@.shop.test", "host@shop.test", "other@other.test"}));
    EXPECT_TRUE(view->deleteCookies(".shop"));
    EXPECT_EQ(stored(), (CookieNames::Names{"host@shop.test", "other@other.test"}));
    EXPECT_TRUE(view->deleteCookies("t"));
    EXPECT_EQ(stored(), CookieNames::Names{});
}

TEST_F(Cookies, TextThatNoDomainHolds_DeletesNothing) {
    setFour();
    for (const char* text : {"SHOP.TEST", "Shop.test", "http://shop.test", "http://shop.test/", "shop.test/a",
                             "www.shop.test.longer", "a.www.shop.test", "shop_test", "*", " "}) {
        EXPECT_TRUE(view->deleteCookies(text)) << text;
        EXPECT_EQ(stored(), kAllFour) << text;
    }
}

TEST_F(Cookies, SetByAServer_NoLongerSentAfterTheirDeletion) {
    HttpServer server;
    server.serve("/login", {.body = solidPage("#0a0"),
                            .extraHeaders = "Set-Cookie: login=1; HttpOnly\r\nSet-Cookie: kept=2; Max-Age=3600\r\n"});
    server.serveHtml("/shop", solidPage("#00a"));
    NavigationRecorder events;
    const auto shown = game.makeView(server.url("/login"), events);
    shown->show();
    ASSERT_TRUE(game.waitFor("the login", [&] { return game.frames.pixel(9, 9) == 0xFF00AA00u; }));
    const auto cookieSent = [&] {
        const size_t before = server.requestCount("/shop");
        shown->loadContent(addressItem(server.url("/shop")));
        EXPECT_TRUE(game.waitFor("the shop", [&] { return server.requestCount("/shop") > before; }));
        std::string sent;
        for (const HttpServer::Request& request : server.requests()) {
            if (request.target != "/shop") continue;
            const auto cookie = request.headers.find("cookie");
            sent = cookie == request.headers.end() ? "" : cookie->second;
        }
        return sent;
    };
    EXPECT_EQ(cookieSent(), "login=1; kept=2");
    EXPECT_EQ(stored().size(), 2u);
    EXPECT_TRUE(shown->deleteCookies("elsewhere.test"));
    EXPECT_EQ(cookieSent(), "login=1; kept=2");
    EXPECT_TRUE(shown->deleteCookies("127.0.0.1"));
    EXPECT_EQ(stored().size(), 0u);
    EXPECT_EQ(cookieSent(), "");
}

TEST_F(Cookies, ViewNeverShown_DeletesForAllViews) {
    setFour();
    EXPECT_TRUE(createWebViewDefault()->deleteCookies(""));
    EXPECT_TRUE(stored().empty());
}

TEST_F(Cookies, PagesThatKeepSettingThem_GoOnWhileTheyAreDeleted) {
    PageReports reports;
    reports.server.serveHtml("/", "<body>" + reports.script() +
                                      "<script>let n=0;const t=setInterval(()=>{document.cookie='c'+(n%20)+'='+n;"
                                      "if(++n==400){clearInterval(t);report('set '+n)}},2)</script>");
    NavigationRecorder events;
    const auto first = game.makeView(reports.server.url("/"), events);
    const auto second = game.makeView(reports.server.url("/"), events);
    first->show();
    second->show();
    int deletions = 0;
    ASSERT_TRUE(game.waitFor("both pages' last cookie", [&] {
        EXPECT_TRUE(view->deleteCookies(""));
        ++deletions;
        return reports.server.requestCount("/report") == 2;
    }));
    EXPECT_GT(deletions, 5);
    EXPECT_EQ(reports.wait(game, 0), "set 400");
    EXPECT_EQ(reports.wait(game, 1), "set 400");
    EXPECT_TRUE(view->deleteCookies(""));
    EXPECT_EQ(stored(), CookieNames::Names{});
}

TEST_F(Cookies, DeletedFromTwoThreadsAtOnce_EachCallReturnsTrueAndTakesItsOwn) {
    for (int i = 0; i < 10; ++i) {
        setFour();
        std::atomic<int> returned{0};
        const auto deleteOn = [&](const char* text) {
            return std::thread([&, text] { returned += createWebViewDefault()->deleteCookies(text); });
        };
        std::thread one = deleteOn("shop.test");
        std::thread two = deleteOn("other.test");
        one.join();
        two.join();
        EXPECT_EQ(returned, 2);
        EXPECT_EQ(stored(), CookieNames::Names{});
    }
}

TEST_F(Cookies, CallHasReturned_NothingOfItIsLeftInTheEngine) {
    setFour();
    const auto deletion = std::make_shared<CefContextHandler>();
    EXPECT_TRUE(deletion->deleteCookies("other"));
    EXPECT_TRUE(game.waitFor("the visitor's end", [&] { return deletion.use_count() == 1; }));
    EXPECT_THROW(deletion->deleteCookies(""), std::future_error) << "each call has an object of its own";
}

TEST_F(Cookies, OnTheEnginesThread_RefusedWithALineInTheLog) {
    setFour();
    DebugLogCapture log;
    bool answer = true;
    ASSERT_TRUE(runOnEngine(game, [&] { answer = view->deleteCookies(""); }));
    EXPECT_FALSE(answer);
    EXPECT_TRUE(log.contains("cookies can't be deleted on the engine's own thread"));
    EXPECT_EQ(stored(), kAllFour);
}

}  // namespace ZEMO::Test
