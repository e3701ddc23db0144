#include <gtest/gtest.h>

#include <mutex>
#include <optional>

#include "client/client_view.h"
#include "core/process_state.h"
#include "support/http_server.h"

// The child program's reports of password fields, with real pages: what the game's text service hears of them.
namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;
using Reports = std::vector<int>;

std::mutex reportsMutex;
Reports reports;

void onImeEvent(int event, int /*browserId*/, int a, int /*b*/) {
    if (event != 3) return;
    const std::lock_guard lock(reportsMutex);
    reports.push_back(a);
}

Reports heard() {
    const std::lock_guard lock(reportsMutex);
    return reports;
}

class PasswordFocusTest : public ::testing::Test {
protected:
    PasswordFocusTest() {
        setPasswordFieldFocused(false);  // the last test may have ended in a field
        setImeEventCallback(&onImeEvent);
    }
    ~PasswordFocusTest() override {
        view.reset();
        setImeEventCallback(nullptr);
        const std::lock_guard lock(reportsMutex);
        reports.clear();
    }

    void open(const std::string& html) {
        server.serve("/ready", {});
        server.serveHtml("/", "<!doctype html>" + html + "<script>onload = () => fetch('/ready')</script>");
        view.emplace(game, server.url("/"));
        ASSERT_TRUE(game.waitFor("the page", [&] { return view->events->has("completed"); }));
        ASSERT_TRUE(game.waitFor("every frame", [&] { return server.requestCount("/ready") > 0; }));
    }
    void run(const std::string& script) {
        view->adapter->getBrowser()->GetMainFrame()->ExecuteJavaScript(script, "", 0);
    }
    /// Runs the script; what was heard so far is `expected` then.
    void runAndHear(const std::string& script, const Reports& expected) {
        run(script);
        EXPECT_TRUE(game.waitFor(
            script.c_str(), [&] { return heard() == expected; }, 10s))
            << "heard " << ::testing::PrintToString(heard());
        EXPECT_EQ(isPasswordFieldFocused(), !expected.empty() && expected.back() == 1) << script;
    }

    HttpServer server;
    GameHost game;
    std::optional<ClientView> view;
};

}  // namespace

TEST_F(PasswordFocusTest, FieldsOfThePage_GainAndLossAreReportedAndNothingElse) {
    open("<input id=a><textarea id=t></textarea><input id=p type=password><input id=q TYPE=PassWord>");
    run("a.focus(); t.focus(); a.focus()");
    runAndHear("p.focus()", {1});
    runAndHear("q.focus()", {1, 1});
    runAndHear("a.focus()", {1, 1, 0});
    runAndHear("p.focus()", {1, 1, 0, 1});
    runAndHear("p.blur()", {1, 1, 0, 1, 0});
}

TEST_F(PasswordFocusTest, FieldRemovedWithItsFocus_CountsAsLeft) {
    open("<input id=p type=password>");
    runAndHear("p.focus()", {1});
    runAndHear("p.remove()", {1, 0});
}

TEST_F(PasswordFocusTest, FieldsInOpenNestedAndClosedShadowTrees_Reported) {
    open(R"(<input id=a><div id=o></div><div id=c></div><script>
        const outer = o.attachShadow({mode: 'open'});
        outer.innerHTML = '<div></div><input>';
        const inner = outer.firstChild.attachShadow({mode: 'open'});
        inner.innerHTML = '<input type=password>';
        const closed = c.attachShadow({mode: 'closed'});
        closed.innerHTML = '<input type=password>';
        window.nested = inner.firstChild, window.plain = outer.lastChild, window.concealed = closed.firstChild;
        </script>)");
    runAndHear("nested.focus()", {1});
    runAndHear("plain.focus()", {1, 0});
    runAndHear("concealed.focus()", {1, 0, 1});
    runAndHear("a.focus()", {1, 0, 1, 0});
}

TEST_F(PasswordFocusTest, FieldsInASubFrame_EachWayBetweenFramesEndsRight) {
    server.serveHtml("/frame", "<!doctype html><input id=t><input id=p type=password>");
    open("<input id=a><input id=p type=password><iframe id=f src=/frame></iframe>");
    run("a.focus()");
    runAndHear("f.contentWindow.p.focus()", {1});
    runAndHear("a.focus()", {1, 0});
    runAndHear("f.contentWindow.p.focus()", {1, 0, 1});
    runAndHear("p.focus()", {1, 0, 1, 0, 1});
    runAndHear("f.contentWindow.t.focus()", {1, 0, 1, 0, 1, 0});
    runAndHear("f.contentWindow.p.focus()", {1, 0, 1, 0, 1, 0, 1});
    runAndHear("f.remove()", {1, 0, 1, 0, 1, 0, 1, 0});
}

TEST_F(PasswordFocusTest, FieldInAFrameOfAnotherSite_Reported) {
    std::string elsewhere = server.url("/frame");
    elsewhere.replace(elsewhere.find("127.0.0.1"), 9, "localhost");
    server.serveHtml("/frame", "<!doctype html><input id=p type=password><script>onmessage = () => p.focus()</script>");
    open("<input id=a><iframe id=f src='" + elsewhere + "'></iframe>");
    runAndHear("f.contentWindow.postMessage('', '*')", {1});
    runAndHear("a.focus()", {1, 0});
}

TEST_F(PasswordFocusTest, PageLeftWithTheFocusInItsField_CountsAsLeft) {
    server.serveHtml("/next", "<!doctype html><input>");
    open("<input id=p type=password>");
    runAndHear("p.focus()", {1});
    runAndHear("location = '/next'", {1, 0});
}

TEST_F(PasswordFocusTest, PageLeftForAnotherSite_CountsAsLeft) {
    server.serveHtml("/next", "<!doctype html><input>");
    open("<input id=p type=password>");
    runAndHear("p.focus()", {1});
    runAndHear("location = location.href.replace('127.0.0.1', 'localhost') + 'next'", {1, 0});
}

TEST_F(PasswordFocusTest, PagesProcessKilled_CountsAsLeft) {
    open("<input id=p type=password>");
    runAndHear("p.focus()", {1});
    for (const DWORD child : childProcesses()) {
        if (childType(child) == "renderer") killProcess(child);
    }
    EXPECT_TRUE(game.waitFor("the report", [] { return heard() == Reports{1, 0}; }));
    EXPECT_FALSE(isPasswordFieldFocused());
}

TEST_F(PasswordFocusTest, ViewClosedWithTheFocusInItsField_NoFieldIsFocused) {
    open("<input id=p type=password>");
    runAndHear("p.focus()", {1});
    view.reset();
    EXPECT_FALSE(isPasswordFieldFocused());
}

}  // namespace ZEMO::Test
