#include "client/script_page.h"

// Objects that a page calls the game through.
namespace ZEMO::Test {
namespace {

class ScriptObjects : public ScriptPage {
protected:
    bool usedTimes(size_t count) {
        return game.waitFor("the calls", [&] { return used.count() >= count; }, 10s) && used.count() == count;
    }
    /// What the page sent so far has arrived: answers and calls take the same way.
    void settle() { EXPECT_EQ(resultOf("'settled'"), "\"settled\""); }
};

using Texts = std::vector<std::string>;

}  // namespace

TEST_F(ScriptObjects, BindingScript_IsTheEightPiecesAsTheyStand) {
    open("");
    EXPECT_EQ(view->bindObject("store", "token"),
              "window.BindObjectAsync(\"store\").then(function(result) {store.postMessage(\"store\",'token');})");
    EXPECT_EQ(view->bindObject("q\"", "it's"),
              "window.BindObjectAsync(\"q\"\").then(function(result) {q\".postMessage(\"q\"\",'it's');})")
        << "nothing is escaped";
    EXPECT_EQ(view->bindObject("", ""), "window.BindObjectAsync(\"\").then(function(result) {.postMessage(\"\",'');})");
}

TEST_F(ScriptObjects, BindingScriptRun_CallbackGetsTheGamesOwnText) {
    open("");
    const std::string script = bind("store", "token 7");
    EXPECT_EQ(evaluate(script), (ScriptAnswer{"", ""}));
    ASSERT_TRUE(usedTimes(1));
    EXPECT_EQ(used.all(), Texts{"token 7"});
}

TEST_F(ScriptObjects, PageUsesTheObjectLater_CallbackRunsEachTimeWithTheSameText) {
    open("");
    ASSERT_EQ(evaluate(bind("store", "token")).error, "");
    ASSERT_TRUE(usedTimes(1));
    EXPECT_EQ(resultOf("store.postMessage('page', 'text'), store.postMessage()"), "");
    ASSERT_TRUE(usedTimes(3));
    EXPECT_EQ(used.all(), Texts(3, "token"));
}

TEST_F(ScriptObjects, PageBindsByItself_GetsTheObjectAsThePromisesResult) {
    open("");
    (void)bind("store", "token");
    EXPECT_EQ(evaluate("BindObjectAsync('store').then(bound => { bound.postMessage(); return bound === store; })"),
              (ScriptAnswer{"true", ""}));
    ASSERT_TRUE(usedTimes(1));
    EXPECT_EQ(resultOf("BindObjectAsync('store').then(again => again === store)"), "true");
    EXPECT_EQ(resultOf("window.BindObjectAsync('store') instanceof Promise"), "true");
}

TEST_F(ScriptObjects, TwoCallbacksForOneName_FirstStays) {
    open("");
    const Arrivals<std::string> second;
    const std::string script = bind("store", "token");
    view->addJavascriptCallback("store", [second](std::string text) { second.add(std::move(text)); });
    ASSERT_EQ(evaluate(script).error, "");
    ASSERT_TRUE(usedTimes(1));
    settle();
    EXPECT_EQ(second.count(), 0u);
}

TEST_F(ScriptObjects, TwoMessagesForOneName_FirstStaysAndEachScriptHasItsOwn) {
    open("");
    const std::string first = bind("store", "one");
    const std::string second = view->bindObject("store", "two");
    EXPECT_TRUE(second.ends_with("'two');})")) << second;
    ASSERT_EQ(evaluate(second).error, "");
    ASSERT_EQ(evaluate(first).error, "");
    ASSERT_TRUE(usedTimes(2));
    EXPECT_EQ(used.all(), Texts(2, "one"));
}

TEST_F(ScriptObjects, BoundBeforeShow_ScriptComesButNothingIsStored) {
    server.serveHtml("/", "<!doctype html>");
    view = game.makeView(server.url("/"), events);
    view->addJavascriptCallback("early", [mine = used](std::string text) { mine.add(std::move(text)); });
    const std::string script = view->bindObject("store", "token");
    EXPECT_EQ(script,
              "window.BindObjectAsync(\"store\").then(function(result) {store.postMessage(\"store\",'token');})");
    view->show();
    view->addJavascriptCallback("store", [mine = used](std::string text) { mine.add(std::move(text)); });
    EXPECT_EQ(evaluate(script), (ScriptAnswer{"", ""}));
    EXPECT_EQ(evaluate(view->bindObject("early", "token")), (ScriptAnswer{"", ""}));
    settle();
    EXPECT_EQ(used.count(), 0u);
}

TEST_F(ScriptObjects, CallbackOrMessageMissing_PagesCallDoesNothing) {
    open("");
    view->addJavascriptCallback("silent", [mine = used](std::string text) { mine.add(std::move(text)); });
    EXPECT_EQ(evaluate("BindObjectAsync('silent').then(o => o.postMessage())"), (ScriptAnswer{"", ""}));
    EXPECT_EQ(evaluate(view->bindObject("nobody", "token")), (ScriptAnswer{"", ""}));
    EXPECT_EQ(evaluate("BindObjectAsync('unknown').then(o => o.postMessage())"), (ScriptAnswer{"", ""}));
    settle();
    EXPECT_EQ(used.count(), 0u);
}

TEST_F(ScriptObjects, NewDocument_IsBoundAgainByTheSameScript) {
    server.serveHtml("/next", "<!doctype html><title>next</title>");
    open("");
    const std::string script = bind("store", "token");
    ASSERT_EQ(evaluate(script).error, "");
    load("/next");
    EXPECT_EQ(resultOf("document.title + typeof store"), "\"nextundefined\"");
    ASSERT_EQ(evaluate(script).error, "");
    ASSERT_TRUE(usedTimes(2));
}

TEST_F(ScriptObjects, NameThatThePageUsesItself_IsTakenOver) {
    open("<div id=element></div><script>var variable = 5;</script>");
    ASSERT_EQ(evaluate(bind("element", "e")).error, "");
    ASSERT_EQ(evaluate(bind("variable", "v")).error, "");
    ASSERT_TRUE(usedTimes(2));
    EXPECT_EQ(used.all(), (Texts{"e", "v"}));
}

TEST_F(ScriptObjects, NameThatCannotBeTaken_PromiseIsRejectedAndThePageStays) {
    open("<title>page</title>");
    EXPECT_EQ(errorOf("BindObjectAsync('location')"),
              "Uncaught (in promise) TypeError: Cannot redefine property: location");
    EXPECT_EQ(errorOf("BindObjectAsync()"), "Uncaught (in promise) TypeError: Cannot redefine property: undefined");
    EXPECT_EQ(resultOf("document.title"), "\"page\"");
}

TEST_F(ScriptObjects, TextThatBreaksTheScript_ErrorComesAndThePageDoesNotRunIt) {
    open("");
    EXPECT_EQ(errorOf(bind("store", "it's")), "Uncaught SyntaxError: missing ) after argument list");
    settle();
    EXPECT_EQ(used.count(), 0u);
    EXPECT_EQ(evaluate("BindObjectAsync('store').then(o => o.postMessage())").error, "") << "the text itself is stored";
    ASSERT_TRUE(usedTimes(1));
    EXPECT_EQ(used.all(), Texts{"it's"});
}

TEST_F(ScriptObjects, SubFrames_HaveNoWayToBind) {
    server.serveHtml("/frame", "<!doctype html>");
    open("<iframe src=/frame></iframe>");
    ASSERT_TRUE(game.waitFor("both loads", [&] { return events.count("completed") >= 2; }));
    EXPECT_EQ(resultOf("typeof BindObjectAsync + typeof frames[0].BindObjectAsync"), "\"functionundefined\"");
}

TEST_F(ScriptObjects, TenThousandCalls_AllArrive) {
    open("");
    ASSERT_EQ(evaluate(bind("store", "token")).error, "");
    ASSERT_EQ(evaluate("for (let i = 0; i < 10000; ++i) store.postMessage()").error, "");
    EXPECT_TRUE(usedTimes(10001)) << used.count();
}

TEST_F(ScriptObjects, CallbackAsksThePage_AnswerComes) {
    open("<script>let order = 'fuel';</script>");
    const std::weak_ptr<ZEMO::UI::IZEMOWebView> weak = view;
    view->addJavascriptCallback("store", [weak, mine = answers](std::string) {
        if (const auto page = weak.lock()) {
            page->evaluateJavascript("order", [mine](std::string result, std::string error) {
                mine.add({std::move(result), std::move(error)});
            });
        }
    });
    ASSERT_EQ(evaluate(view->bindObject("store", "token")).error, "");
    ASSERT_TRUE(answered(1));
    EXPECT_EQ(answers.all().front(), (ScriptAnswer{"\"fuel\"", ""}));
}

}  // namespace ZEMO::Test
