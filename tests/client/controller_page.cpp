#include "client/controller_page.h"

#include <gtest/gtest.h>

#include <cstring>
#include <format>

#include "controller/controller_scripts.h"
#include "core/resource_paths.h"
#include "include/cef_frame.h"

namespace ZEMO::Test {
namespace {

using ZEMO::UI::ControllerScripts;

constexpr char kReady[] = "document.readyState + document.querySelectorAll('.keymap_item').length";

std::string localPage(const std::string& page) {
    const std::u8string folder = ZEMO::Core::getLocalHtmlDirectory().u8string();
    return "file:///" + std::string(folder.begin(), folder.end()) + "/" + page + ".html";
}

int hexDigit(char c) { return c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10; }

std::string percentDecoded(const std::string& text) {
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%' || i + 2 >= text.size()) {
            out += text[i];
            continue;
        }
        out += static_cast<char>(hexDigit(text[i + 1]) * 16 + hexDigit(text[i + 2]));
        i += 2;
    }
    return out;
}

}  // namespace

ControllerPage::ControllerPage(GameHost& host, const std::string& page, const std::string& status)
    : game(host), view(host, localPage(page)) {
    view.events->decide = [](const std::string& url) { return !url.starts_with("file:"); };
    game.waitFor("the page's start", [&] { return view.events->has("starting"); });
    // Whatever the page's own row says, its files come from the folder: the scheme is another test's.
    run(ControllerScripts::buildControllerPageScript(L"html/idp_login", status));
}

void ControllerPage::run(const std::string& script) {
    const CefRefPtr<CefBrowser> browser = view.adapter->getBrowser();
    if (const CefRefPtr<CefFrame> frame = browser ? browser->GetMainFrame() : nullptr)
        frame->ExecuteJavaScript(script, "", 0);
}

bool ControllerPage::waitUntilReady() {
    return game.waitFor("the page", [&] { return view.events->has("completed"); }) && waitFor(kReady, "complete3");
}

// The page tells it as an address that it asks for, which the view's delegate hears and refuses.
std::string ControllerPage::ask(const std::string& expression) {
    const std::string start = std::format("probe://answer/?{}=", ++questions);
    run("location.href = '" + start + "' + encodeURIComponent(String((() => { try { return " + expression +
        "; } catch (fault) { return fault; } })()));");
    const std::string answer = requested(start);
    return answer.empty() ? answer : percentDecoded(answer.substr(start.size()));
}

bool ControllerPage::waitFor(const std::string& expression, const std::string& value) {
    std::string last;
    const bool reached = game.waitFor(expression.c_str(), [&] { return (last = ask(expression)) == value; });
    if (!reached) ADD_FAILURE() << expression << " is " << last << " instead of " << value;
    return reached;
}

void ControllerPage::send(const std::string& data) { run(ControllerScripts::buildHandleControllerInputScript(data)); }

void ControllerPage::presses(std::initializer_list<const char*> buttons) {
    for (const char* button : buttons) press(button);
}

void ControllerPage::type(const std::string& text) {
    constexpr const char* kRows[] = {"1234567890", "qwertyuiop", "asdfghjkl@", "zxcvbnm.-_"};
    for (const char c : text) {
        for (int row = 0; row < 4; ++row) {
            const char* found = std::strchr(kRows[row], c);
            if (!found) continue;
            const int column = static_cast<int>(found - kRows[row]);
            for (; keyRow > row; --keyRow) press("up");
            for (; keyRow < row; ++keyRow) press("down");
            for (; keyColumn > column; --keyColumn) press("left");
            for (; keyColumn < column; ++keyColumn) press("right");
        }
        press("0");
    }
    keyRow = 1, keyColumn = 0;  // where the keyboard begins when it is opened again
}

std::string ControllerPage::requested(const std::string& start) {
    std::string found;
    game.waitFor(start.c_str(), [&] {
        for (const std::string& event : view.events->events()) {
            if (event.starts_with("requested " + start)) found = event.substr(10);
        }
        return !found.empty();
    });
    return found;
}

}  // namespace ZEMO::Test
