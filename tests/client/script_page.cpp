#include "client/script_page.h"

namespace ZEMO::Test {

void ScriptPage::show(const std::string& html) {
    server.serveHtml("/", "<!doctype html>" + html);
    view = game.makeView(server.url("/"), events);
    view->show();
}

void ScriptPage::open(const std::string& html) {
    show(html);
    ASSERT_TRUE(game.waitFor("the page", [&] { return events.has("completed"); }));
}

void ScriptPage::load(const std::string& path) {
    const size_t before = events.count("completed");
    view->loadContent(addressItem(server.url(path)));
    ASSERT_TRUE(game.waitFor("the next page", [&] { return events.count("completed") > before; }));
}

ScriptAnswer ScriptPage::evaluate(const std::string& script) {
    const Arrivals<ScriptAnswer> mine;
    view->evaluateJavascript(
        script, [mine](std::string result, std::string error) { mine.add({std::move(result), std::move(error)}); });
    if (!game.waitFor("the answer", [&] { return mine.count() > 0; })) return {"no answer", "no answer"};
    return mine.all().front();
}

void ScriptPage::ask(const std::string& script) {
    view->evaluateJavascript(script, [mine = answers](std::string result, std::string error) {
        mine.add({std::move(result), std::move(error)});
    });
}

std::string ScriptPage::bind(const std::string& name, const std::string& message) {
    view->addJavascriptCallback(name, [mine = used](std::string text) { mine.add(std::move(text)); });
    return view->bindObject(name, message);
}

std::vector<DWORD> pageProcesses() {
    std::vector<DWORD> pages = childProcesses();
    std::erase_if(pages, [](DWORD child) { return childType(child) != "renderer"; });
    return pages;
}

void killPageProcesses() {
    for (const DWORD page : pageProcesses()) killProcess(page);
}

}  // namespace ZEMO::Test
