#include "client/engine_task.h"
#include "client/script_page.h"
#include "core/process_messages.h"
#include "include/cef_browser.h"
#include "include/cef_frame.h"
#include "include/cef_values.h"
#include "support/import_replaced.h"

// When a request reaches a page and when its callback hears of it: before show, while pages load, come, go and die.
namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

class ScriptRequests : public ScriptPage {
protected:
    void serveSlowly(const std::string& path, const std::string& html, int delayMs) {
        server.serve(path, {.body = "<!doctype html>" + html, .delayMs = delayMs});
    }
    std::vector<std::string> results() const {
        std::vector<std::string> texts;
        for (const ScriptAnswer& answer : answers.all()) texts.push_back(answer.result + answer.error);
        return texts;
    }
};

using Results = std::vector<std::string>;

HRESULT WINAPI noNumber(GUID*) { return E_FAIL; }

}  // namespace

TEST_F(ScriptRequests, BeforeShow_NothingRunsAndTheCallbackStaysUncalled) {
    server.serveHtml("/", "<!doctype html><script>window.runs = 0</script>");
    view = game.makeView(server.url("/"), events);
    ask("++runs");
    view->show();
    ASSERT_TRUE(game.waitFor("the page", [&] { return events.has("completed"); }));
    EXPECT_EQ(resultOf("runs"), "0");
    EXPECT_EQ(answers.count(), 0u);
}

TEST_F(ScriptRequests, BeforeThePageHasLoaded_EachRunsOnceAfterTheLoadInTheOrderOfTheCalls) {
    server.serve("/late.js", {.contentType = "text/javascript", .body = "window.log = [];", .delayMs = 500});
    show("<script src=/late.js></script>");
    for (const char* name : {"c", "a", "b"}) ask("log.push('" + std::string(name) + "'), log.join('')");
    ASSERT_TRUE(answered(3));
    EXPECT_EQ(results(), (Results{"\"c\"", "\"ca\"", "\"cab\""}));
    EXPECT_TRUE(events.has("completed")) << "the page was asked before its load was over";
    EXPECT_EQ(resultOf("log.length"), "3") << "each ran once";
}

TEST_F(ScriptRequests, Reload_RequestsWaitForTheNewPage) {
    open("<title>old</title>");
    serveSlowly("/new", "<title>new</title>", 300);
    view->loadContent(addressItem(server.url("/new")));
    for (int i = 0; i < 3; ++i) ask("document.title + document.readyState");
    ASSERT_TRUE(answered(3));
    EXPECT_EQ(results(), Results(3, "\"newcomplete\""));
}

TEST_F(ScriptRequests, ReloadOfAPageThatNeverEndsLoading_RequestsReachTheNewOne) {
    server.serve("/endless", {.contentType = "image/png", .body = "x", .neverEnds = true});
    server.serve("/started", {});
    serveSlowly("/new", "<title>new</title>", 300);
    show("<title>old</title><script>fetch('/started')</script><img src=/endless>");
    ASSERT_TRUE(game.waitFor("the old page", [&] { return server.requestCount("/endless") > 0; }));
    ask("document.title");
    view->loadContent(addressItem(server.url("/new")));
    ask("document.title");
    ASSERT_TRUE(answered(2));
    EXPECT_EQ(results(), Results(2, "\"new\""));
}

TEST_F(ScriptRequests, FirstLoadFails_RequestsWaitUntilAPageHasLoaded) {
    server.serveHtml("/good", "<!doctype html><title>good</title>");
    view = game.makeView("http://127.0.0.1:1/", events);
    view->show();
    ask("document.title");
    ASSERT_TRUE(game.waitFor("the failure", [&] { return events.has("failed -312"); })) << "an address never asked for";
    game.pass(500ms);
    EXPECT_EQ(answers.count(), 0u);
    view->loadContent(addressItem(server.url("/good")));
    ASSERT_TRUE(answered(1));
    EXPECT_EQ(results(), Results{"\"good\""});
}

TEST_F(ScriptRequests, PageLeftBeforeItsPromiseSettles_CallbackIsNeverCalledAndLaterOnesAre) {
    open("");
    server.serveHtml("/next", "<!doctype html><title>next</title>");
    ask("new Promise(() => {})");
    load("/next");
    EXPECT_EQ(resultOf("document.title"), "\"next\"");
    EXPECT_EQ(answers.count(), 0u);
}

TEST_F(ScriptRequests, PageThatNavigatesByItself_NextPageAnswers) {
    server.serveHtml("/next", "<!doctype html><title>next</title>");
    open("<title>first</title>");
    const size_t before = events.count("completed");
    ask("location = '/next', 'leaving'");
    ASSERT_TRUE(game.waitFor("the next page", [&] { return events.count("completed") > before; }));
    EXPECT_EQ(resultOf("document.title"), "\"next\"");
    EXPECT_EQ(results(), Results{"\"leaving\""});
}

TEST_F(ScriptRequests, PageOfAnotherSite_AnswersToo) {
    open("<title>first</title>");
    server.serveHtml("/next", "<!doctype html><title>next</title>");
    std::string elsewhere = server.url("/next");
    elsewhere.replace(elsewhere.find("127.0.0.1"), 9, "localhost");
    view->loadContent(addressItem(elsewhere));
    EXPECT_EQ(resultOf("document.title + location.hostname"), "\"nextlocalhost\"");
    const size_t before = events.count("completed");
    view->goBack();
    ASSERT_TRUE(game.waitFor("the first page", [&] { return events.count("completed") > before; }));
    EXPECT_EQ(resultOf("document.title"), "\"first\"");
}

TEST_F(ScriptRequests, AnswerWhileTheViewIsClosed_CallbackIsNotCalled) {
    server.serve("/settled", {});
    open("");
    ask("new Promise(done => window.settle = done)");
    ask("2");  // behind the first: the page has both
    ASSERT_TRUE(answered(1));
    view->close();
    ask("settle('late'), fetch('/settled'), 3");
    ASSERT_TRUE(game.waitFor("the promise", [&] { return server.requestCount("/settled") > 0; }));
    view->show();
    EXPECT_EQ(resultOf("4"), "4");
    EXPECT_EQ(results(), Results{"2"});
}

TEST_F(ScriptRequests, PagesProcessKilled_PendingCallbacksStayUncalledAndThePageComesBack) {
    server.serve("/pending", {});
    open("<title>page</title>");
    for (int i = 0; i < 50; ++i) ask("new Promise(() => {})");
    ask("fetch('/pending'), new Promise(() => {})");
    ASSERT_TRUE(game.waitFor("the requests", [&] { return server.requestCount("/pending") > 0; }));
    killPageProcesses();
    ASSERT_TRUE(game.waitFor("the failure", [&] { return events.has("failed -600"); }));
    EXPECT_EQ(resultOf("document.title + document.readyState"), "\"pagecomplete\"") << "asked before it was back";
    EXPECT_EQ(answers.count(), 0u);
}

TEST_F(ScriptRequests, SystemHasNoIdentifier_RequestsShareOneAndTheFirstCallbackHearsAll) {
    open("");
    const ImportReplaced numbers("CoCreateGuid", &noNumber);
    const Arrivals<ScriptAnswer> second;
    ask("1");
    view->evaluateJavascript("2", [second](std::string result, std::string error) { second.add({result, error}); });
    ASSERT_TRUE(answered(2));
    EXPECT_EQ(results(), (Results{"1", "2"}));
    EXPECT_EQ(second.count(), 0u);
}

TEST_F(ScriptRequests, NoCallback_ScriptRunsAllTheSame) {
    open("");
    view->evaluateJavascript("window.ran = true", nullptr);
    EXPECT_EQ(resultOf("ran"), "true");
}

TEST_F(ScriptRequests, SubFrames_RunNothing) {
    server.serveHtml("/frame", "<!doctype html><title>frame</title>");
    open("<title>main</title><iframe src=/frame></iframe>");
    ASSERT_TRUE(game.waitFor("both loads", [&] { return events.count("completed") >= 2; }));
    int asked = 0;
    ASSERT_TRUE(runOnEngine(game, [&] {
        CefRefPtr<CefBrowser> newest;
        for (int id = 1; id <= 256; ++id) {
            if (const auto browser = CefBrowserHost::GetBrowserByIdentifier(id)) newest = browser;
        }
        std::vector<CefString> names;
        newest->GetFrameIdentifiers(names);
        for (const CefString& name : names) {
            const CefRefPtr<CefFrame> frame = newest->GetFrameByIdentifier(name);
            if (frame->IsMain()) continue;
            const CefRefPtr<CefProcessMessage> message = CefProcessMessage::Create(Core::kEvaluateJavascript);
            message->GetArgumentList()->SetString(Core::kEvaluateId, "sub");
            message->GetArgumentList()->SetString(Core::kEvaluateScript, "parent.document.title = 'changed'");
            frame->SendProcessMessage(PID_RENDERER, message);
            ++asked;
        }
    }));
    EXPECT_EQ(asked, 1);
    game.pass(500ms);
    EXPECT_EQ(resultOf("document.title"), "\"main\"");
}

}  // namespace ZEMO::Test
