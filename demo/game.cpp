#include "game.h"

#include "text.h"
#include "ui_library.h"

#include <charconv>
#include <cstdio>
#include <fstream>
#include <utility>

namespace demo {

namespace {

constexpr auto kFrameTime = std::chrono::microseconds(16667);
/// Of what the exchange sells, in the order of its page's list, and of the workshop's paint. A page says what it wants,
/// never what that costs.
constexpr std::array kPrices{320, 180, 90, 240, 60, 40};

double secondsSince(Clock::time_point moment) { return std::chrono::duration<double>(Clock::now() - moment).count(); }

template <class... Args>
std::wstring format(const wchar_t* pattern, Args... args) {
    wchar_t text[160];
    std::swprintf(text, std::size(text), pattern, args...);
    return text;
}

int hexDigit(char c) { return c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10; }

/// A form's text as the page wrote it.
std::string formDecoded(std::string_view text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '%' && i + 2 < text.size()) {
            decoded += static_cast<char>(hexDigit(text[i + 1]) * 16 + hexDigit(text[i + 2]));
            i += 2;
        } else {
            decoded += text[i] == '+' ? ' ' : text[i];
        }
    }
    return decoded;
}

/// A text as a script writes it.
std::string quoted(const std::string& text) {
    std::string script = "'";
    for (const char c : text) {
        if (c == '\'' || c == '\\') script += '\\';
        if (static_cast<unsigned char>(c) >= ' ') script += c;
    }
    return script + "'";
}

/// The value of `name` in "buy?ware=Tea&amount=2".
std::string parameter(const std::string& command, const std::string& name) {
    for (auto at = command.find('?'); at != std::string::npos; at = command.find('&', at + 1)) {
        if (command.compare(at + 1, name.size() + 1, name + "=") != 0) continue;
        const auto begin = at + name.size() + 2;
        return formDecoded(std::string_view(command).substr(begin, command.find('&', begin) - begin));
    }
    return {};
}

}  // namespace

Game::Game(const Options& chosen)
    : options(chosen),
      window(L"Outpost", chosen.size),
      surface(std::make_shared<PageSurface>()),
      events(std::make_shared<PageEventQueue>()),
      pad(chosen.hasPadKeys || chosen.isSelfTest),
      emblem(events) {
    window.onModalFrame = [this] { drawFrame(); };
    window.onKey = [this](unsigned key) {
        if (key == VK_F10)
            pages.empty() ? void(openPage(this->options.page)) : topPage()->isShown() ? hidePages() : showPages();
        if (key == VK_F12) savePictures();
        if (key == VK_ESCAPE) leaving = true;
    };
    window.onMessage = [this](const MSG& message) { return pad.takeMessage(message); };
    if (options.isDirect3D) screen = std::make_unique<Direct3DScreen>(window.handle());
    drawFrame();  // something to look at while the engine starts
    startUiLibrary(options, surface, events);
    pad.poll();  // the first page may be one for the controller
}

Game::~Game() {
    // Views before the window they are drawn on, the newest first.
    while (!pages.empty()) closeTopPage();
}

PagePanel& Game::openPage(const PageSource& source, bool hasCloseButton) {
    const PixelSize client = window.clientSize();
    PagePanel::Settings settings;
    settings.number = nextPageNumber++;
    settings.isOwnWindow = options.mode == Mode::Window;
    // A page for a controller asks for its end by the button.
    settings.hasCloseButton = hasCloseButton || options.hasCloseButton || source.kind == PageSource::Kind::PadPage;
    settings.width = 0.75f * static_cast<float>(client.width) / window.scale();
    settings.height = 0.75f * static_cast<float>(client.height) / window.scale();
    auto panel = std::make_unique<PagePanel>(settings, events);
    panel->load(source);
    surface->expectAnotherView();
    panel->show();
    pages.push_back(std::move(panel));
    return *pages.back();
}

void Game::closeTopPage() {
    if (pages.empty()) return;
    surface->expectAnotherView();
    pages.back()->close();
    pages.pop_back();  // the last pointer to the view: its page ends here
    surface->expectAnotherView();
}

void Game::hidePages() {
    for (auto page = pages.rbegin(); page != pages.rend(); ++page) (*page)->close();
}

void Game::showPages() {
    surface->expectAnotherView();
    for (auto& page : pages) page->show();
}

void Game::play(double seconds) {
    const auto begin = Clock::now();
    while (!leaving && !window.isCloseRequested() && (seconds <= 0 || secondsSince(begin) < seconds)) playFrame();
}

bool Game::playUntil(const std::function<bool()>& isDone, double seconds) {
    const auto begin = Clock::now();
    while (!isDone()) {
        if (secondsSince(begin) > seconds) return false;
        playFrame();
    }
    return true;
}

void Game::playFrame() {
    // A frame that came late moves the beat; it does not make the next ones hurry.
    nextFrameAt = std::max(nextFrameAt + kFrameTime, Clock::now());
    window.handleMessagesUntil(nextFrameAt);
    handlePageEvents();
    pollPad();
    drawFrame();
}

void Game::pollPad() {
    const bool isUsed = topPage() && topPage()->isShown() && topPage()->usesPad();
    if (isUsed != pad.isInUse()) {
        pad.setInUse(isUsed);
        if (!options.isSelfTest) std::printf("the controller plays %s\n", isUsed ? "the page" : "the game");
        window.setTitle(isUsed ? L"Outpost (the controller plays the page)" : L"Outpost");
    }
    pad.poll();
}

bool Game::isWindowLent() const { return options.mode == Mode::Local && !pages.empty() && pages.back()->isShown(); }

void Game::drawFrame() {
    const auto begin = Clock::now();
    const PixelSize size = window.clientSize();
    if (size.width < 1 || size.height < 1 || isWindowLent()) return;  // minimised, or not the game's picture

    update = surface->take(image);
    if (!update.changed.isEmpty()) {
        quad.upload(image, update.changed);
        figures.uploads += 1;
        figures.uploadedPixels += static_cast<std::uint64_t>(update.changed.area());
        figures.uploadMs.add(milliseconds(Clock::now() - begin));
    }

    updateHud();
    scene.draw(size.width, size.height, secondsSince(startedAt));
    hud.draw(size.width, size.height, window.scale(), hudText);
    if (onSceneDrawn) onSceneDrawn();
    // close() leaves the last frame where it is, so a closed page is not drawn even though there is a picture of it.
    const bool isPageDrawn = update.isVisible && topPage() && topPage()->isShown();
    if (isPageDrawn) quad.draw();
    if (onFrameDrawn) onFrameDrawn();
    presentFrame(size);

    const auto end = Clock::now();
    figures.frames += 1;
    figures.frameMs.add(milliseconds(end - begin));
    if (isPageDrawn && !update.changed.isEmpty()) figures.toFrameMs.add(milliseconds(end - update.since));
}

void Game::presentFrame(PixelSize size) {
    screen ? screen->show(pictureOfBackBuffer(size.width, size.height)) : window.swapBuffers();
}

void Game::handlePageEvents() {
    for (const PageEvent& event : events->takeAll()) {
        const bool isTop = topPage() && topPage()->number() == event.page;
        for (auto& page : pages) {
            if (page->number() == event.page && event.kind == PageEvent::Kind::Completed) page->noteLoaded();
        }
        handlePageEvent(event, isTop);
        if (onPageEvent) onPageEvent(event);
    }
}

void Game::handlePageEvent(const PageEvent& event, bool isTop) {
    if (event.kind == PageEvent::Kind::Completed) tellPage();
    // Only the game's own pages may buy.
    if (event.kind == PageEvent::Kind::Completed && isTop && hasOwnPages()) topPage()->bind("store");
    // A call carries nothing of the page's own: what is wanted, the game asks for.
    if (event.kind == PageEvent::Kind::Called && isTop) topPage()->ask("window.nextOrder?.()");
    if (event.kind == PageEvent::Kind::Answer && isTop) sell(*topPage(), event.text);
    if (event.kind == PageEvent::Kind::Failed) std::printf("page %d: load error %d\n", event.page, event.value);
    if (event.kind == PageEvent::Kind::Command && isTop) handleCommand(event.text);
    if (event.kind == PageEvent::Kind::Chosen && topPage())
        topPage()->run("window.onEmblem?.(" + quoted(event.text) + ")");
    // The callback doesn't say which view; it is the one in front that has the controller.
    if (event.kind == PageEvent::Kind::PadUse && topPage()) topPage()->notePadUse(event.value != 0);
    // The user closed the view's own window: what is left is an empty view.
    const bool isWindowGone = event.kind == PageEvent::Kind::Closed && options.mode == Mode::Window;
    if (isWindowGone && isTop && topPage()->isShown()) closeTopPage();
    if (event.kind == PageEvent::Kind::CloseRequested && isTop) closeTopPage();
}

void Game::handleCommand(const std::string& command) {
    if (!options.isSelfTest) std::printf("the page asks: %s\n", command.c_str());
    const std::string name = command.substr(0, command.find_first_of("/?"));
    if (name == "close") {
        closeTopPage();
    } else if (name == "dialog") {
        openPage({PageSource::Kind::BuiltIn, "dialog"});
    } else if (name == "station") {
        openPage({PageSource::Kind::PadPage, "zemostore_popup"});
    } else if (name == "workshop") {
        openPage({PageSource::Kind::LocalPage, "workshop"});
    } else if (name == "emblem") {
        emblem.open(topPage()->number());
    } else if (name == "register") {
        notice = L"Ship: " + toWide(parameter(command, "name")) + L", " + toWide(parameter(command, "class"));
    } else if (name == "claim") {
        credits += 250;
        scene.celebrate(secondsSince(startedAt));
        tellPage();
    } else if (name == "ship") {
        notice = L"Ship: " + toWide(parameter(command, "name")) + L", " + toWide(parameter(command, "dock"));
    } else if (name == "buy") {
        notice = L"Bought: " + toWide(parameter(command, "amount") + " x " + parameter(command, "ware"));
    } else if (name == "login") {
        notice = L"Welcome, " + toWide(parameter(command, "name"));
    }
}

void Game::sell(PagePanel& buyer, const std::string& order) {
    std::size_t number = kPrices.size();
    std::from_chars(order.data(), order.data() + order.size(), number);
    if (number >= kPrices.size()) return;  // nothing was ordered
    const bool isAffordable = kPrices[number] <= credits;
    if (isAffordable) credits -= kPrices[number];
    buyer.run("onGame({credits: " + std::to_string(credits) + (isAffordable ? ", sold: " : ", refused: ") +
              std::to_string(number) + "})");
}

void Game::tellPage() {
    PagePanel* page = topPage();
    if (!page || !page->isLoaded() || !hasOwnPages()) return;
    page->run("window.onGame && onGame({credits: " + std::to_string(credits) + "});");
}

void Game::updateHud() {
    const double passed = secondsSince(hudUpdatedAt);
    if (passed < 0.5) return;
    const std::uint64_t pageFrames = surface->figures().frames;
    const double span = framesAtHudUpdate ? passed : secondsSince(startedAt);
    const double gameRate = static_cast<double>(figures.frames - framesAtHudUpdate) / span;
    const double pageRate = static_cast<double>(pageFrames - pageFramesAtHudUpdate) / span;
    hudUpdatedAt = Clock::now();
    framesAtHudUpdate = figures.frames;
    pageFramesAtHudUpdate = pageFrames;

    const bool isShown = topPage() && topPage()->isShown();
    hudText.title = L"OUTPOST";
    hudText.status = format(L"Credits %d", credits) + (notice.empty() ? L"" : L"    " + notice);
    hudText.figures = format(L"game %.0f fps", gameRate);
    if (options.mode == Mode::Callback && update.isVisible && isShown) {
        hudText.figures += format(L"    page %d x %d, %.0f fps", image.width, image.height, pageRate);
    }
    hudText.keys = keyHints(isShown);
}

std::wstring Game::keyHints(bool isPageShown) const {
    if (!isPageShown) return L"F10  show the page    F12  save pictures    Esc  leave";
    if (!pad.isInUse()) return L"F10  hide the page";
    if (pad.isKeyboard()) return L"F10  hide the page    Arrows, Enter, Esc  the page's controller";
    return pad.isConnected() ? L"F10  hide the page    Controller connected"
                             : L"F10  hide the page    No controller found";
}

void Game::savePictures() {
    const PixelSize size = window.clientSize();
    Picture frame;
    const auto before = std::exchange(onFrameDrawn, [&] { frame = pictureOfBackBuffer(size.width, size.height); });
    drawFrame();
    onFrameDrawn = before;
    const auto save = [](const std::filesystem::path& file, const Picture& picture) {
        if (picture.pixels.empty()) return;
        writePng(file, picture);
        std::printf("saved %s (%d x %d)\n", toUtf8(file.wstring()).c_str(), picture.width, picture.height);
    };
    save(options.screenshot.empty() ? options.out / "page.png" : options.screenshot, pictureOfPage(image));
    save(options.out / "frame.png", frame);
    save(options.out / "display.png", pictureOfDisplay(window.handle()));
}

void Game::reportFigures() {
    figures.seconds = secondsSince(startedAt);
    const CallbackFigures callback = surface->figures();
    if (options.hasFigures) std::printf("%s", figuresAsText(callback, figures).c_str());
    const auto file = options.json.empty() ? options.out / "figures.json" : options.json;
    if (file.has_parent_path()) std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << figuresAsJson(callback, figures);
}

}  // namespace demo
