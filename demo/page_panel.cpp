#include "page_panel.h"

#include "built_in_pages.h"
#include "text.h"

#include <zemo/url.h>

#include <utility>

namespace demo {

namespace {

constexpr std::string_view kGameScheme = "game://";

/// A plain address as a content item.
class WebAddress : public ZEMO::UI::IZEMOWebContent {
public:
    explicit WebAddress(const std::string& address) : url(address) {}
    const ZEMO::Core::IURL& getUrl() const override { return url; }
    int getKind() const override { return 0; }

private:
    ZEMO::Core::URL url;
};

}  // namespace

void PageEventQueue::push(PageEvent event) {
    const std::lock_guard lock(mutex);
    events.push_back(std::move(event));
}

std::vector<PageEvent> PageEventQueue::takeAll() {
    const std::lock_guard lock(mutex);
    return std::exchange(events, {});
}

/// Both delegates in one object. Everything here may run on the engine's thread.
class PagePanel::Listener : public ZEMO::UI::ZEMOWebViewDelegate, public ZEMO::UI::ZEMOViewDelegate {
public:
    Listener(int number, std::shared_ptr<PageEventQueue> queue) : page(number), events(std::move(queue)) {}

    void viewDidShow(ZEMO::UI::IZEMOView*) override { note(PageEvent::Kind::Shown); }
    void viewDidClose(ZEMO::UI::IZEMOView*) override { note(PageEvent::Kind::Closed); }

    void navigationStarting(std::shared_ptr<ZEMO::UI::IZEMOWebView>) override { note(PageEvent::Kind::Started); }
    void navigationCompleted(std::shared_ptr<ZEMO::UI::IZEMOWebView>) override { note(PageEvent::Kind::Completed); }
    void navigationFailed(std::shared_ptr<ZEMO::UI::IZEMOWebView>, const std::error_code& error) override {
        events->push({PageEvent::Kind::Failed, page, error.value(), {}});
    }

    /// A link to game://something is the page's way to ask the game for something. True: the page stays where it is.
    bool navigationRequested(std::shared_ptr<ZEMO::UI::IZEMOWebView>, std::string url) override {
        if (!url.starts_with(kGameScheme)) return false;
        std::string command = url.substr(kGameScheme.size());
        while (command.ends_with('/')) command.pop_back();
        events->push({PageEvent::Kind::Command, page, 0, std::move(command)});
        return true;
    }

    /// The view may not be dropped from in here: this runs inside it. The game does that, in its next frame.
    void closeRequested() override { note(PageEvent::Kind::CloseRequested); }

private:
    void note(PageEvent::Kind kind) { events->push({kind, page, 0, {}}); }

    const int page;
    const std::shared_ptr<PageEventQueue> events;
};

PagePanel::PagePanel(const Settings& chosen, std::shared_ptr<PageEventQueue> queue)
    : settings(chosen),
      events(std::move(queue)),
      listener(std::make_shared<Listener>(chosen.number, events)),
      view(ZEMO::UI::createWebViewDefault()) {
    view->setWebViewDelegate(listener);
    view->setViewDelegate(listener);
    view->setDisplayMode(settings.isOwnWindow ? 1 : 0);
    view->setSize(settings.width, settings.height);
    view->setCloseButtonEnabled(settings.hasCloseButton);
}

PagePanel::~PagePanel() = default;

void PagePanel::load(const PageSource& source) {
    switch (source.kind) {
        case PageSource::Kind::BuiltIn: {
            // Given as text; the path only says where "../" in the page would lead.
            const std::string html = builtInPage(source.text);
            view->loadHtml(html, "html/");
            break;
        }
        case PageSource::Kind::Html:
            // The byte order mark says that the text is UTF-8, also for a text that doesn't say so itself.
            view->loadHtml("\xEF\xBB\xBF" + source.text, "html/");
            break;
        case PageSource::Kind::Address:
            // Before the first show, with an item in the list, loadUrl takes the text as it is; an empty list would
            // make it the name of a local page. An open view takes web addresses by loadContent alone.
            if (!shown) {
                view->loadUrl(source.text, {std::make_shared<WebAddress>(source.text)});
            } else {
                view->loadContent(std::make_shared<WebAddress>(source.text));
            }
            break;
        case PageSource::Kind::LocalPage:
            view->loadPage(source.text);
            break;
        case PageSource::Kind::PadPage:
            // The library knows such pages by their place, so a bare name would not do.
            view->loadPage(toUtf8((ZEMO::UI::getLocalHTMLResourcePath() / toWide(source.text) / L"index").wstring()));
            break;
    }
}

void PagePanel::show() {
    view->show();
    shown = true;
}

void PagePanel::close() {
    view->close();
    shown = false;
}

void PagePanel::run(const std::string& script) {
    view->evaluateJavascript(script, [](std::string, std::string) {});
}

void PagePanel::ask(const std::string& script) {
    view->evaluateJavascript(script, [events = events, page = number()](std::string result, const std::string& error) {
        if (error.empty()) events->push({PageEvent::Kind::Answer, page, 0, std::move(result)});
    });
}

void PagePanel::bind(const std::string& name) {
    // The first registration of a name stays, so the second document changes nothing here; but it has no object yet.
    view->addJavascriptCallback(name, [events = events, page = number()](std::string message) {
        events->push({PageEvent::Kind::Called, page, 0, std::move(message)});
    });
    run(view->bindObject(name, name));
}

}  // namespace demo
