#include "input_test.h"

#include <zemo/ui.h>

namespace demo {

namespace {

// As pages/self_test.html has them: where to act, and what shows there afterwards.
constexpr Block kPressed{"the pressed button", 28, 52, {240, 160, 32, 255}};
constexpr Block kName{"the field with the typed name", 24, 92, {40, 200, 120, 255}};
constexpr Block kChosen{"the list with the second entry chosen", 60, 92, {150, 60, 200, 255}};
constexpr Colour kSecondEntry{90, 40, 160, 255};
constexpr Block kScrolled{"the end of the scrolled part", 96, 82, {30, 170, 190, 255}};
constexpr double kFieldY = 82;

constexpr Colour kBehindButton{64, 32, 112, 255};
constexpr double kButtonInset = 38;  // from the corner to the middle of the library's close button

/// Any pixel of that colour with its like around it; x is -1 without one.
POINT find(const PageImage& image, Colour colour) {
    const auto is = [&](int x, int y) { return colourOf(image, x, y) == colour; };
    for (int y = 2; y < image.height - 2; ++y) {
        for (int x = 2; x < image.width - 2; ++x) {
            if (is(x, y) && is(x - 2, y) && is(x + 2, y) && is(x, y - 2) && is(x, y + 2)) return {x, y};
        }
    }
    return {-1, -1};
}

}  // namespace

void InputTest::onThePage() {
    reachPage();
    touch();
    click();
    type();
    choose();
    scroll();
}

HWND InputTest::reachPage() {
    HWND window = nullptr;
    stage.await([&] { return (window = stage.pageWindow()) != nullptr; },
                [] { return "there is no window for the view"; });
    hands.takeTo(window);
    return window;
}

void InputTest::awaitState(const std::string& part) {
    const auto newest = [this] { return stage.command("state?"); };
    stage.await([&] { return newest().find(part) != std::string::npos; },
                [&] { return "the page says '" + newest() + "', which does not hold '" + part + "'"; });
}

/// A page feels nothing before its first paint, and only the callback's frames tell of that: the mouse moves until the
/// page has felt it.
void InputTest::touch() {
    int moves = 0;
    stage.await(
        [&] {
            hands.moveTo(stage.px(kPressed.x) + moves++ % 2, stage.px(kPressed.y));
            return !stage.command("state?").empty();
        },
        [] { return "the page does not feel the mouse"; });
}

void InputTest::click() {
    click(kPressed.x, kPressed.y);
    awaitState("pressed=1&");
    if (stage.isCallback()) stage.awaitPage(kPressed);
}

void InputTest::type() {
    click(kName.x, kFieldY);
    hands.type("novax");
    hands.key(VK_BACK);
    hands.type("7");
    awaitState("name=nova7&");
    if (stage.isCallback()) stage.awaitPage(kName);
}

void InputTest::choose() {
    click(kChosen.x, kFieldY);
    if (stage.isCallback()) {
        POINT entry{};
        stage.await([&] { return (entry = find(stage.game.pageImage(), kSecondEntry)).x >= 0; },
                    [] { return "the open list is not in the frame"; });
        hands.click(entry.x, entry.y);
        awaitState("choice=two&");
        stage.awaitPage(kChosen);
        stage.await([&] { return find(stage.game.pageImage(), kSecondEntry).x < 0; },
                    [] { return "the list is still open in the frame"; });
    } else {
        hands.key(VK_DOWN);
        hands.key(VK_RETURN);
        awaitState("choice=two&");
    }
}

void InputTest::scroll() {
    hands.wheel(stage.px(kScrolled.x), stage.px(kScrolled.y), -3);
    awaitState("scrolled=end");
    if (stage.isCallback()) stage.awaitPage(kScrolled);
}

void InputTest::closeButton() {
    const int completed = stage.count(PageEvent::Kind::Completed);
    const std::string html = text("<!doctype html><body style='background:rgb(%d,%d,%d)'>", kBehindButton.red,
                                  kBehindButton.green, kBehindButton.blue);
    const int number = stage.game.openPage({PageSource::Kind::Html, html}, true).number();
    stage.awaitMore(PageEvent::Kind::Completed, completed,
                    "navigationCompleted of the page with the button did not come");
    const HWND window = reachPage();
    RECT client{};
    GetClientRect(window, &client);
    const int x = client.right - stage.px(kButtonInset), y = stage.px(kButtonInset);
    if (stage.isCallback()) {
        stage.awaitPage("the page with the button", 4, 4, kBehindButton);
        stage.await([&] { return colourOf(stage.game.pageImage(), x, y) != kBehindButton; },
                    [] { return "there is no close button in the frame"; });
    }
    const int asked = stage.count(PageEvent::Kind::CloseRequested);
    hands.click(x, y);
    stage.awaitMore(PageEvent::Kind::CloseRequested, asked, "closeRequested did not come");
    if (stage.game.topPage() && stage.game.topPage()->number() == number) throw Failure("the page is still there");
    // A window of its own goes after its page, and the next step looks for the window on top.
    if (window != stage.game.gameWindow().handle()) {
        stage.await([&] { return !IsWindow(window); }, [] { return "the closed page's window is still there"; });
    }
}

void InputTest::awaitAsked(const std::string& command) {
    stage.await([&] { return stage.command(command) == command; },
                [&] { return "the page did not ask for '" + command + "', but for '" + stage.command("") + "'"; });
}

void InputTest::padPage() {
    const int completed = stage.count(PageEvent::Kind::Completed);
    stage.game.openPage({PageSource::Kind::PadPage, "zemostore_popup"});
    stage.awaitMore(PageEvent::Kind::Completed, completed, "navigationCompleted of the controller page did not come");
    stage.await([this] { return stage.game.topPage()->usesPad(); },
                [] { return "the library did not say that the page uses the controller"; });
    reachPage();
    // The page's scripts come a moment after the page. Input is any expression; this one answers when they are there.
    stage.await(
        [this] {
            ZEMO::UI::sendGameControllerCustomMsgData(
                "(document.querySelector('.keymap_item') ? location.href = 'game://ready' : 0, null)");
            return !stage.command("ready").empty();
        },
        [] { return "the page's controller scripts did not start"; });
    hands.key(VK_RETURN);  // orders the first ware
    hands.key(VK_RIGHT);   // two of it
    hands.key(VK_DOWN);
    hands.key(VK_RETURN);
    awaitAsked("buy?ware=Fuel+cell&amount=2");
    const int asked = stage.count(PageEvent::Kind::CloseRequested);
    hands.key(VK_ESCAPE);  // leaves the order
    hands.key(VK_ESCAPE);  // leaves the store
    stage.awaitMore(PageEvent::Kind::CloseRequested, asked, "the page did not ask for its end");
}

}  // namespace demo
