#include <gtest/gtest.h>

#include <deque>
#include <format>

#include "client/client_view.h"
#include "client/engine_task.h"
#include "core/process_state.h"
#include "support/http_server.h"

// The child program's reports of password fields, with real pages: what the game's text service hears of them.
namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

std::mutex reportsMutex;
std::vector<int> reports;

void onImeEvent(int event, int /*browserId*/, int a, int /*b*/) {
    if (event != 3) return;
    const std::lock_guard lock(reportsMutex);
    reports.push_back(a);
}

std::vector<int> heard() {
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
        setImeEventCallback(nullptr);
        view.reset();
        const std::lock_guard lock(reportsMutex);
        reports.clear();
    }

    void open(const std::string& address) {
        view.emplace(game, address);
        ASSERT_TRUE(game.waitFor("the page", [&] { return view->events->has("completed"); }));
        ASSERT_TRUE(game.waitFor("every frame", [&] { return server.requestCount("/ready") > 0; }));
    }
    void run(const std::string& script) {
        view->adapter->getBrowser()->GetMainFrame()->ExecuteJavaScript(script, "", 0);
    }
    void runAndExpect(const std::string& script, const std::vector<int>& expected) {
        run(script);
        EXPECT_TRUE(game.waitFor(
            script.c_str(), [&] { return heard() == expected; }, 5s))
            << "heard " << ::testing::PrintToString(heard());
        EXPECT_EQ(isPasswordFieldFocused(), !expected.empty() && expected.back() == 1);
    }

    HttpServer server;
    GameHost game;
    std::optional<ClientView> view;
};

constexpr char kReady[] = "<script>onload=()=>fetch('/ready')</script>";

}  // namespace

TEST_F(PasswordFocusTest, FieldsOfTheMainFrame) {
    server.serve("/ready", {});
    server.serveHtml(
        "/", std::string("<!doctype html><input id=a><input id=p type=password><input id=q TYPE=PassWord>") + kReady);
    open(server.url("/"));
    run("a.focus()");
    runAndExpect("p.focus()", {1});
    runAndExpect("q.focus()", {1, 1});
    runAndExpect("a.focus()", {1, 1, 0});
    runAndExpect("p.focus()", {1, 1, 0, 1});
    runAndExpect("p.blur()", {1, 1, 0, 1, 0});
}

TEST_F(PasswordFocusTest, ShadowTrees) {
    server.serve("/ready", {});
    server.serveHtml(
        "/", std::string("<!doctype html><input id=a><div id=h></div><div id=c></div><script>"
                         "const s=h.attachShadow({mode:'open'});s.innerHTML='<div></div><input id=t>';const "
                         "n=s.firstChild.attachShadow({mode:'open'});n.innerHTML='<input type=password>';"
                         "window.inner=n.firstChild;const k=c.attachShadow({mode:'closed'});k.innerHTML='<input "
                         "type=password>';window.hidden2=k.firstChild;window.t2=s.getElementById('t');</script>") +
                 kReady);
    open(server.url("/"));
    runAndExpect("inner.focus()", {1});
    runAndExpect("t2.focus()", {1, 0});
    runAndExpect("hidden2.focus()", {1, 0, 1});
    runAndExpect("a.focus()", {1, 0, 1, 0});
}

TEST_F(PasswordFocusTest, SubFrames) {
    server.serve("/ready", {});
    server.serveHtml("/f", "<!doctype html><input id=t><input id=p type=password>");
    server.serveHtml(
        "/",
        std::string("<!doctype html><input id=a><input id=p type=password><iframe id=f src=/f></iframe>") + kReady);
    open(server.url("/"));
    run("a.focus()");
    runAndExpect("f.contentWindow.p.focus()", {1});
    runAndExpect("a.focus()", {1, 0});
    runAndExpect("f.contentWindow.p.focus()", {1, 0, 1});
    runAndExpect("p.focus()", {1, 0, 1, 0, 1});
    runAndExpect("f.contentWindow.t.focus()", {1, 0, 1, 0, 1, 0});
    runAndExpect("f.contentWindow.p.focus()", {1, 0, 1, 0, 1, 0, 1});
    runAndExpect("f.remove()", {1, 0, 1, 0, 1, 0, 1, 0});
}

TEST_F(PasswordFocusTest, Navigation) {
    server.serve("/ready", {});
    server.serveHtml("/next", "<!doctype html><input id=a>");
    server.serveHtml("/", std::string("<!doctype html><input id=a><input id=p type=password>") + kReady);
    open(server.url("/"));
    runAndExpect("p.focus()", {1});
    runAndExpect("location='/next'", {1, 0});
}

TEST_F(PasswordFocusTest, CrossSiteNavigation) {
    server.serve("/ready", {});
    server.serveHtml("/next", "<!doctype html><input id=a>");
    server.serveHtml("/", std::string("<!doctype html><input id=a><input id=p type=password>") + kReady);
    open(server.url("/"));
    runAndExpect("p.focus()", {1});
    runAndExpect("location=location.href.replace('127.0.0.1','localhost')+'next'", {1, 0});
}

TEST_F(PasswordFocusTest, Killed) {
    server.serve("/ready", {});
    server.serveHtml("/", std::string("<!doctype html><input id=a><input id=p type=password>") + kReady);
    open(server.url("/"));
    runAndExpect("p.focus()", {1});
    for (DWORD c : childProcesses()) if (childType(c) == "renderer") killProcess(c);
    runAndExpect(";", {1, 0});
}

TEST_F(PasswordFocusTest, CrossSiteFrames) {
    server.serve("/ready", {});
    std::string distant = server.url("/f");
    distant.replace(distant.find("127.0.0.1"), 9, "localhost");
    server.serveHtml("/f", "<!doctype html><input id=t><input id=p type=password><script>onmessage=e=>{eval(e.data)}</script>");
    server.serveHtml("/", std::string("<!doctype html><input id=a><input id=p type=password><iframe id=f src='" + distant + "'></iframe>") + kReady);
    open(server.url("/"));
    run("a.focus()");
    runAndExpect("f.contentWindow.postMessage('p.focus()','*')", {1});
    runAndExpect("a.focus()", {1, 0});
    runAndExpect("f.contentWindow.postMessage('p.focus()','*')", {1, 0, 1});
    int n = 0; for (DWORD c : childProcesses()) n += childType(c) == "renderer";
    EXPECT_EQ(n, 2);
    run("p.focus()");
    game.pass(2s);
    EXPECT_EQ(heard(), std::vector<int>{});
    run("f.contentWindow.postMessage('p.focus()','*')");
    game.pass(2s);
    EXPECT_EQ(heard(), std::vector<int>{});
    run("f.remove()");
    game.pass(2s);
    EXPECT_EQ(heard(), std::vector<int>{});
}

TEST_F(PasswordFocusTest, FieldRemoved) {
    server.serve("/ready", {});
    server.serveHtml("/", std::string("<!doctype html><input id=a><input id=p type=password>") + kReady);
    open(server.url("/"));
    runAndExpect("p.focus()", {1});
    runAndExpect("p.remove()", {1, 0});
}

}  // namespace ZEMO::Test
