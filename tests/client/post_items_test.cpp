#include <gtest/gtest.h>

#include <format>

#include "client/client_view.h"
#include "client/post_item.h"
#include "support/http_server.h"

// Content items against real pages: the server's own record says what was sent.
namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;
using Items = std::vector<std::shared_ptr<IZEMOWebContent>>;

/// A server whose pages are all there, and a view on one of them.
class PostItems : public ::testing::Test {
protected:
    PostItems() {
        for (const char* path : {"/", "/form", "/other", "/form/", "/FORM", "/go"}) server.serveHtml(path, "<body>ok");
    }

    void open(const std::string& path, Items items = {}) {
        view = std::make_unique<ClientView>(game, "about:blank");
        ASSERT_TRUE(game.waitFor("the empty page", [&] { return view->events->has("completed"); }));
        view->adapter->setContentItems(std::move(items));
        load(path);
    }
    void load(const std::string& path) { view->adapter->getBrowser()->GetMainFrame()->LoadURL(server.url(path)); }

    void waitForPages(size_t count) {
        EXPECT_TRUE(game.waitFor("the page", [&] { return view->events->count("completed") >= count; }));
    }

    /// The requests to `path`, once there are `count`; fewer after a time-out.
    std::vector<HttpServer::Request> requestsTo(const std::string& path, size_t count = 1) {
        EXPECT_TRUE(game.waitFor(path.c_str(), [&] { return server.requestCount(path) >= count; }));
        std::vector<HttpServer::Request> found;
        for (const HttpServer::Request& request : server.requests()) {
            if (request.target.substr(0, request.target.find('?')) == path) found.push_back(request);
        }
        found.resize(std::max(found.size(), count));
        return found;
    }
    /// A page whose script runs at once.
    void serveScript(const std::string& path, const std::string& script) {
        server.serveHtml(path, "<!doctype html><body><script>" + script + "</script>");
    }

    HttpServer server;
    GameHost game;
    std::unique_ptr<ClientView> view;
};

std::string header(const HttpServer::Request& request, const std::string& name) {
    const auto found = request.headers.find(name);
    return found == request.headers.end() ? "(none)" : found->second;
}

}  // namespace

TEST_F(PostItems, ListedAddress_SentAsPostWithItsHeadersAndBody) {
    open("/form", {postItem(server.url("/form"), "name=값&n=1",
                            {{"Content-Type", "application/x-www-form-urlencoded"}, {"X-Token", "abc"}})});
    const HttpServer::Request sent = requestsTo("/form")[0];
    EXPECT_EQ(sent.method, "POST");
    EXPECT_EQ(sent.body, "name=값&n=1");
    EXPECT_EQ(header(sent, "content-length"), "12");
    EXPECT_EQ(header(sent, "content-type"), "application/x-www-form-urlencoded");
    EXPECT_EQ(header(sent, "x-token"), "abc");
}

TEST_F(PostItems, HeadersOfTheEngine_GoneFromThePost) {
    serveScript("/", std::format("location='{}'", server.url("/go")));
    serveScript("/go", std::format("location='{}'", server.url("/form")));
    open("/", {postItem(server.url("/form"), "b", {{"X-Token", "abc"}})});
    const HttpServer::Request plain = requestsTo("/go")[0];
    EXPECT_EQ(plain.method, "GET");
    EXPECT_EQ(header(plain, "referer"), server.url("/"));
    EXPECT_NE(header(plain, "accept"), "(none)");
    const HttpServer::Request post = requestsTo("/form")[0];
    EXPECT_EQ(post.method, "POST");
    EXPECT_EQ(header(post, "x-token"), "abc");
    EXPECT_EQ(header(post, "referer"), "(none)");
    EXPECT_EQ(header(post, "upgrade-insecure-requests"), "(none)");
}

TEST_F(PostItems, BodyWithANul_SentUpToIt) {
    open("/form", {postItem(server.url("/form"), std::string("before\0after", 12))});
    EXPECT_EQ(requestsTo("/form")[0].body, "before");
}

TEST_F(PostItems, EmptyBody_PostOfLengthZero) {
    open("/form", {postItem(server.url("/form"), "", {{"X-Token", "abc"}})});
    const HttpServer::Request sent = requestsTo("/form")[0];
    EXPECT_EQ(sent.method, "POST");
    EXPECT_EQ(header(sent, "content-length"), "0");
    EXPECT_EQ(sent.body, "");
    EXPECT_EQ(header(sent, "x-token"), "abc");
}

TEST_F(PostItems, BodyOfFiveMegabytes_ArrivesWhole) {
    std::string body(5'000'000, '\0');
    for (size_t i = 0; i < body.size(); ++i) body[i] = static_cast<char>(1 + i % 255);
    open("/form", {postItem(server.url("/form"), body)});
    EXPECT_TRUE(requestsTo("/form")[0].body == body);
}

TEST_F(PostItems, EqualItems_LaterOneWinsWhole) {
    open("/form", {postItem(server.url("/form"), "first", {{"X-First", "1"}}),
                   postItem(server.url("/form"), "second", {{"X-Second", "2"}})});
    const HttpServer::Request sent = requestsTo("/form")[0];
    EXPECT_EQ(sent.body, "second");
    EXPECT_EQ(header(sent, "x-second"), "2");
    EXPECT_EQ(header(sent, "x-first"), "(none)");
}

TEST_F(PostItems, OtherKindsAndEmptyPlaces_LeaveTheRequestAlone) {
    Items items;
    for (const int kind : {-3, 0, 1, 2, 4, 3 + 256}) {
        const auto item = postItem(server.url("/form"), "body");
        item->kind = kind;
        items.push_back(item);
    }
    items.push_back(nullptr);
    open("/form", items);
    const HttpServer::Request sent = requestsTo("/form")[0];
    EXPECT_EQ(sent.method, "GET");
    EXPECT_EQ(sent.body, "");
}

TEST_F(PostItems, AddressThatDiffersByOneThing_StaysGet) {
    open("/form", {postItem(server.url("/form?a=1"), "query"), postItem(server.url("/FORM"), "capitals"),
                   postItem(server.url("/form#x"), "fragment"), postItem(server.url("/for"), "shorter"),
                   postItem(server.url("/form/a"), "longer")});
    EXPECT_EQ(requestsTo("/form")[0].method, "GET");
    load("/form?a=2");
    EXPECT_EQ(requestsTo("/form", 2)[1].method, "GET");
    load("/form?a=1");
    EXPECT_EQ(requestsTo("/form", 3)[2].body, "query");
}

TEST_F(PostItems, AddressThatTheLibrarysUrlWritesOtherwise_StaysGet) {
    open("/", {postItem(server.url("/"), "slash"), postItem(server.url("/form/"), "slash"),
               postItem(server.url("/form?b=2&a=1"), "order")});
    EXPECT_EQ(requestsTo("/")[0].method, "GET");
    waitForPages(2);
    load("/form/");
    EXPECT_EQ(requestsTo("/form/")[0].method, "GET");
    waitForPages(3);
    load("/form?b=2&a=1");
    EXPECT_EQ(requestsTo("/form")[0].method, "GET");
    waitForPages(4);
    load("/form?a=1&b=2");
    EXPECT_EQ(requestsTo("/form", 2)[1].body, "order");
}

TEST_F(PostItems, AddressWithAFragment_OnlyItsOwnItemApplies) {
    open("/form#x", {postItem(server.url("/form#x"), "with"), postItem(server.url("/form"), "without")});
    EXPECT_EQ(requestsTo("/form")[0].body, "with");
}

TEST_F(PostItems, RedirectToAListedAddress_BecomesThePost) {
    server.serve("/go", {.status = 302, .extraHeaders = "Location: /form\r\n"});
    open("/go", {postItem(server.url("/form"), "redirected", {{"X-Token", "abc"}})});
    EXPECT_EQ(requestsTo("/go")[0].method, "GET");
    const HttpServer::Request sent = requestsTo("/form")[0];
    EXPECT_EQ(sent.method, "POST");
    EXPECT_EQ(sent.body, "redirected");
    EXPECT_EQ(header(sent, "x-token"), "abc");
}

TEST_F(PostItems, RedirectOfAPost_FollowedAsTheServerSays) {
    server.serve("/form", {.status = 302, .extraHeaders = "Location: /other\r\n"});
    open("/form", {postItem(server.url("/form"), "body", {{"X-Token", "abc"}})});
    EXPECT_EQ(requestsTo("/form")[0].method, "POST");
    const HttpServer::Request target = requestsTo("/other")[0];
    EXPECT_EQ(target.method, "GET");
    EXPECT_EQ(target.body, "");
}

TEST_F(PostItems, FramePictureAndScriptsRequest_SentAsThePostToo) {
    server.serveHtml("/",
                     "<iframe src=/frame></iframe><img src=/picture><script>"
                     "fetch('/fetched');fetch('/fetched',{method:'PUT',body:'own'})</script>");
    Items items;
    for (const char* path : {"/frame", "/picture", "/fetched"}) items.push_back(postItem(server.url(path), path));
    open("/", items);
    for (const char* path : {"/frame", "/picture"}) {
        const HttpServer::Request sent = requestsTo(path)[0];
        EXPECT_EQ(sent.method + sent.body, std::string("POST") + path);
    }
    for (const HttpServer::Request& sent : requestsTo("/fetched", 2)) {
        EXPECT_EQ(sent.method + sent.body, "POST/fetched") << "the request's own method is not looked at";
    }
    EXPECT_EQ(requestsTo("/")[0].method, "GET");
}

TEST_F(PostItems, LaterLoads_StayPostsUntilTheListIsReplaced) {
    const auto item = postItem(server.url("/form"), "one");
    open("/form", {item});
    EXPECT_EQ(requestsTo("/form")[0].body, "one");
    waitForPages(2);
    item->body = "two";
    load("/form");
    EXPECT_EQ(requestsTo("/form", 2)[1].body, "two") << "its texts are read anew for each request";
    waitForPages(3);
    load("/other");
    waitForPages(4);
    load("/form");
    EXPECT_EQ(requestsTo("/form", 3)[2].method, "POST");
    EXPECT_EQ(item->bodyReads, 3);
    waitForPages(5);
    view->adapter->setContentItems({});
    load("/form");
    EXPECT_EQ(requestsTo("/form", 4)[3].method, "GET");
}

TEST_F(PostItems, ReloadOfThePage_IsThePostAgain) {
    const auto item = postItem(server.url("/form"), "one");
    open("/form", {item});
    EXPECT_EQ(requestsTo("/form")[0].body, "one");
    waitForPages(2);
    item->body = "two";
    view->adapter->getBrowser()->Reload();
    EXPECT_EQ(requestsTo("/form", 2)[1].body, "two");
}

TEST_F(PostItems, ListReplacedWhileThePageAsks_EachRequestIsOfOneItemWhole) {
    serveScript("/",
                "let n=0;const next=()=>fetch('/form').then(()=>{if(++n<150)next();else fetch('/done')});"
                "next();next();next()");
    const auto itemOf = [&](const std::string& name) {
        return postItem(server.url("/form"), name, {{"X-Name", name}});
    };
    open("/", {itemOf("0")});
    int round = 0;
    ASSERT_TRUE(game.waitFor("the page's last request", [&] {
        for (int i = 0; i < 50; ++i, ++round) view->adapter->setContentItems({itemOf(std::to_string(round))});
        return server.requestCount("/done") > 0;
    }));
    size_t names = 0;
    std::string last;
    for (const HttpServer::Request& sent : requestsTo("/form", 150)) {
        EXPECT_EQ(sent.method, "POST");
        EXPECT_EQ(header(sent, "x-name"), sent.body);
        names += std::exchange(last, sent.body) != sent.body;
    }
    EXPECT_GT(names, 20u) << "the list was not replaced while the page asked";
}

TEST_F(PostItems, HeadersThatNoServerMayGet_TheViewAndItsNextPageLiveOn) {
    open("/form",
         {postItem(server.url("/form"), "body",
                   {{"X-Korean", "값"}, {"", "empty name"}, {"X Blank", "1"}, {"X:Colon", "1"}, {"X-Good", "1"}})});
    game.pass(500ms);
    view->adapter->setContentItems({});
    load("/other");
    EXPECT_EQ(requestsTo("/other")[0].method, "GET");
}

TEST(PostItemsOfAView, FirstLoadByContent_IsThePost) {
    HttpServer server;
    server.serveHtml("/form", solidPage("#0a0"));
    GameHost game;
    NavigationRecorder events;
    const auto view = game.makeView("about:blank", events);
    view->loadContent(postItem(server.url("/form"), "body", {{"X-Token", "abc"}}));
    view->show();
    ASSERT_TRUE(game.waitFor("the page", [&] { return game.frames.pixel(9, 9) == 0xFF00AA00u; }));
    EXPECT_EQ(server.requests()[0].method, "POST");
    EXPECT_EQ(server.requests()[0].body, "body");
    // A plain address leaves the list as it is: the same address is the same POST again.
    view->loadContent(addressItem(server.url("/form")));
    ASSERT_TRUE(game.waitFor("the second load", [&] { return server.requestCount("/form") == 2; }));
    for (const HttpServer::Request& sent : server.requests()) {
        if (sent.target != "/form") continue;
        EXPECT_EQ(sent.method, "POST");
    }
}

TEST(PostItemsOfAView, FirstLoadByAddressWithItems_AndItemsSetBeforeShowAreDropped) {
    HttpServer server;
    server.serveHtml("/form", solidPage("#0a0"));
    GameHost game;
    NavigationRecorder events;
    const auto view = createWebViewDefault();
    const auto delegate = std::make_shared<NavigationRecorder>(events);
    view->setWebViewDelegate(delegate);
    view->setContentItems({postItem(server.url("/form"), "dropped")});
    view->loadUrl(server.url("/form"), {postItem(server.url("/form"), "listed")});
    view->show();
    ASSERT_TRUE(game.waitFor("the page", [&] { return game.frames.pixel(9, 9) == 0xFF00AA00u; }));
    EXPECT_EQ(server.requests()[0].body, "listed");
    view->setContentItems({postItem(server.url("/form"), "replaced")});
    view->loadContent(addressItem(server.url("/form")));
    ASSERT_TRUE(game.waitFor("the second load", [&] { return server.requestCount("/form") == 2; }));
    EXPECT_EQ(server.requests().back().body, "replaced");
}

}  // namespace ZEMO::Test
