// A text field gets the focus on a real page: who is asked for a keyboard, and where the system's own one goes.
#include <gtest/gtest.h>

#include <vector>

#include "engine/game_host.h"
#include "layers/deck/on_screen_keyboard_rules.h"
#include "support/http_server.h"
#include "support/import_replaced.h"
#include "support/keyboard_key.h"
#include "support/own_window.h"
#include "support/stand_in_keyboard.h"

namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

struct FieldCase {
    const char* markup;
    int keyboardType;
};
constexpr FieldCase kFields[] = {
    {"<input%s>", 0},
    {"<input inputmode=email%s>", 2},
    {"<input inputmode=numeric%s>", 3},
    {"<textarea%s></textarea>", 0},
    {"<div contenteditable%s>x</div>", 0},
    {"<input inputmode=tel%s>", 0},
    {"<input inputmode=url%s>", 0},
    {"<input inputmode=decimal%s>", 0},
    {"<input inputmode=search%s>", 0},
    {"<input type=password%s>", 0},
};
constexpr int kFieldCount = static_cast<int>(std::size(kFields));

POINT fieldAt(int i) { return {40 + i % 2 * 120, 15 + i / 2 * 30}; }
constexpr POINT kEmptyPlace{300, 190};
constexpr uint32_t kUnfocused = 0xFF0000FF;
uint32_t focusColour(int i) { return 0xFF000000 | static_cast<uint32_t>(40 + 20 * i) << 16; }

/// Fields at known places; the page's colour tells which has the focus.
std::string pageOfFields() {
    std::string page = "data:text/html,<body style=margin:0;background:rgb(0,0,255)>";
    for (int i = 0; i < kFieldCount; ++i) {
        const std::string attributes =
            " style='position:absolute;width:80px;height:16px;left:" + std::to_string(fieldAt(i).x - 35) +
            "px;top:" + std::to_string(fieldAt(i).y - 10) + "px' onfocus=\"document.body.style.background='rgb(" +
            std::to_string(40 + 20 * i) + ",0,0)'\" onblur=\"document.body.style.background='rgb(0,0,255)'\"";
        const std::string markup = kFields[i].markup;
        const size_t place = markup.find("%s");
        page += markup.substr(0, place) + attributes + markup.substr(place + 2);
    }
    return page;
}

class KeyboardRequest : public ::testing::Test {
protected:
    void show() {
        view = game.makeView(pageOfFields(), events);
        view->show();
        ASSERT_TRUE(game.waitFor("the page", [&] { return events.has("completed") && colour() == kUnfocused; }));
    }
    ~KeyboardRequest() override { setUIShowSteamDeckKeyboardCallback(nullptr); }
    void takeCalls() {
        processSteamDeckKeyboardClose();  // another test of this process may have left it shown
        setUIShowSteamDeckKeyboardCallback([this](int type) { types.add(type); });
    }
    uint32_t colour() const { return game.frames.pixel(kEmptyPlace.x, kEmptyPlace.y); }
    bool focused(int i) {
        return game.waitFor("the focus of a field", [&] { return colour() == focusColour(i); });
    }
    bool blurred() {
        return game.waitFor("no focus", [&] { return colour() == kUnfocused; });
    }
    void click(POINT at) {
        SendMessageW(game.window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(at.x, at.y));
        SendMessageW(game.window, WM_LBUTTONUP, 0, MAKELPARAM(at.x, at.y));
    }

    /// Keyboard types that the game was asked for, on the engine thread.
    class Types {
    public:
        void add(int type) {
            const std::lock_guard lock(mutex);
            list.push_back(type);
        }
        std::vector<int> get() const {
            const std::lock_guard lock(mutex);
            return list;
        }

    private:
        mutable std::mutex mutex;
        std::vector<int> list;
    };

    Types types;
    NavigationRecorder events;
    GameHost game;
    std::shared_ptr<IZEMOWebView> view;
};

}  // namespace

TEST_F(KeyboardRequest, FieldFocused_GameIsAskedWithTheFieldsType) {
    takeCalls();
    show();
    std::vector<int> expected;
    for (int i = 0; i < kFieldCount; ++i) {
        click(fieldAt(i));
        ASSERT_TRUE(focused(i)) << kFields[i].markup;
        expected.push_back(kFields[i].keyboardType);
        ASSERT_TRUE(game.waitFor("the game's callback", [&] { return types.get().size() == expected.size(); }))
            << kFields[i].markup;
        EXPECT_EQ(types.get(), expected) << kFields[i].markup;
        processSteamDeckKeyboardClose();
        ASSERT_TRUE(blurred()) << kFields[i].markup;
    }
    EXPECT_EQ(expected.size(), 10u);
    view.reset();
}

TEST_F(KeyboardRequest, KeyboardShown_AnotherFieldDoesNotAskAgainUntilItWasClosed) {
    takeCalls();
    show();
    click(fieldAt(0));
    ASSERT_TRUE(game.waitFor("the game's callback", [&] { return types.get().size() == 1; }));
    click(fieldAt(1));
    ASSERT_TRUE(focused(1));
    click(kEmptyPlace);  // no field: the game's keyboard stays noted as shown
    ASSERT_TRUE(blurred());
    click(fieldAt(2));
    ASSERT_TRUE(focused(2));
    game.pass(300ms);
    EXPECT_EQ(types.get(), std::vector<int>{0});
    processSteamDeckKeyboardClose();
    ASSERT_TRUE(blurred());
    click(fieldAt(2));
    ASSERT_TRUE(game.waitFor("the game's second callback", [&] { return types.get().size() == 2; }));
    EXPECT_EQ(types.get(), (std::vector<int>{0, 3}));
    view.reset();
}

TEST_F(KeyboardRequest, KeyboardClosedWithNoViewOpen_NextFocusAsksAgain) {
    takeCalls();
    show();
    click(fieldAt(0));
    ASSERT_TRUE(game.waitFor("the game's callback", [&] { return types.get().size() == 1; }));
    view->close();
    view.reset();
    processSteamDeckKeyboardClose();
    events.forget();
    show();
    click(fieldAt(1));
    ASSERT_TRUE(game.waitFor("the game's second callback", [&] { return types.get().size() == 2; }));
    EXPECT_EQ(types.get(), (std::vector<int>{0, 2}));
    view.reset();
}

// --- the system's own keyboard ---

namespace {

/// Touches can't be injected here: what the system would know about a pointer comes from the test.
POINT touchPoint{};
BOOL WINAPI touchInfo(UINT32 pointerId, POINTER_INFO* info) {
    *info = {};
    info->pointerType = PT_TOUCH;
    info->pointerId = pointerId;
    info->ptPixelLocation = touchPoint;
    return TRUE;
}

class OnScreenKeyboardRequest : public KeyboardRequest {
protected:
    void SetUp() override {
        ASSERT_TRUE(keyboard.installed()) << "the system has a keyboard of its own, which tests leave alone";
        ASSERT_EQ(findKeyboardWindow(), nullptr);
        key.create();
    }
    ~OnScreenKeyboardRequest() override { view.reset(); }

    void touch(POINT at) {
        touchPoint = at;
        ClientToScreen(game.window, &touchPoint);
        const LPARAM place = MAKELPARAM(touchPoint.x, touchPoint.y);
        SendMessageW(game.window, WM_POINTERDOWN, MAKEWPARAM(7, 0), place);
        SendMessageW(game.window, WM_POINTERUP, MAKEWPARAM(7, 0), place);
    }
    /// Moves the game's window so that this point of its client area lies on that line of the screen.
    void putOnLine(POINT client, int screenY) {
        RECT frame{};
        GetWindowRect(game.window, &frame);
        POINT now = client;
        ClientToScreen(game.window, &now);
        SetWindowPos(game.window, nullptr, frame.left, frame.top + screenY - now.y, 0, 0,
                     SWP_NOSIZE | SWP_NOZORDER | SWP_NOACTIVATE);
    }
    HWND waitForKeyboard() {
        HWND found = nullptr;
        const bool there = game.waitFor("the system's keyboard", [&] {
            found = findKeyboardWindow();
            return found && IsWindowVisible(found);
        });
        return there ? found : nullptr;
    }
    bool stands(HWND window, Rect expected) {
        return game.waitFor("the keyboard at its place", [&] {
            const RECT p = StandInKeyboard::placeOf(window);
            return Rect{p.left, p.top, p.right - p.left, p.bottom - p.top} == expected;
        });
    }
    bool hidden(HWND window) {
        return game.waitFor("the keyboard hidden", [&] { return !IsWindowVisible(window); });
    }
    static ScreenMetrics screen() {
        const auto width = static_cast<uint32_t>(GetSystemMetrics(SM_CXSCREEN));
        const auto height = static_cast<uint32_t>(GetSystemMetrics(SM_CYSCREEN));
        return {width, height, width, height};
    }

    KeyboardKey key;
    StandInKeyboard keyboard;

private:
    ImportReplaced pointerInfo{"GetPointerInfo", &touchInfo};
};

}  // namespace

TEST_F(OnScreenKeyboardRequest, FieldTouched_StartsOutOfTheTouchsWayAlsoWithoutAGameCallback) {
    show();
    const int line = screen().deviceHeight / 20 * 9;
    ASSERT_EQ(screen().deviceHeight % 20, 0u);
    putOnLine(fieldAt(0), line - 1);
    touch(fieldAt(0));
    const HWND window = waitForKeyboard();
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(stands(window, startingKeyboardPlace(true, screen())));

    // A second field: the keyboard that stands moves, and what it would read at a start stays. The line itself belongs
    // to the lower part.
    key.set(L"WindowTop", 4711);
    const auto before = key.all();
    putOnLine(fieldAt(1), line);
    touch(fieldAt(1));
    EXPECT_TRUE(stands(window, openKeyboardPlace(false, screen())));
    EXPECT_TRUE(IsWindowVisible(window));
    EXPECT_EQ(key.all(), before);
    EXPECT_TRUE(types.get().empty());
}

TEST_F(OnScreenKeyboardRequest, FieldTouched_GameIsAskedToo) {
    takeCalls();
    show();
    touch(fieldAt(1));
    EXPECT_NE(waitForKeyboard(), nullptr);
    EXPECT_TRUE(game.waitFor("the game's callback", [&] { return types.get() == std::vector<int>{2}; }));
}

TEST_F(OnScreenKeyboardRequest, FocusLeavesTheField_HiddenAndShownByTheNextTouch) {
    show();
    touch(fieldAt(0));
    const HWND window = waitForKeyboard();
    ASSERT_NE(window, nullptr);
    touch(kEmptyPlace);
    ASSERT_TRUE(hidden(window));
    touch(fieldAt(2));
    EXPECT_EQ(waitForKeyboard(), window);
}

TEST_F(OnScreenKeyboardRequest, MouseAfterATouch_NextFieldBringsNoSystemKeyboard) {
    show();
    touch(fieldAt(0));
    const HWND window = waitForKeyboard();
    ASSERT_NE(window, nullptr);
    touch(kEmptyPlace);
    ASSERT_TRUE(hidden(window));
    click(fieldAt(1));
    ASSERT_TRUE(focused(1));
    game.pass(500ms);
    EXPECT_FALSE(IsWindowVisible(window));
}

TEST_F(OnScreenKeyboardRequest, GamesWindowLosesTheFocus_Hidden) {
    show();
    touch(fieldAt(0));
    const HWND window = waitForKeyboard();
    ASSERT_NE(window, nullptr);
    SendMessageW(game.window, WM_KILLFOCUS, 0, 0);
    EXPECT_FALSE(IsWindowVisible(window));
}

TEST_F(OnScreenKeyboardRequest, ViewEnds_KeyboardIsClosed) {
    show();
    touch(fieldAt(0));
    ASSERT_NE(waitForKeyboard(), nullptr);
    view->close();
    view.reset();
    EXPECT_TRUE(game.waitFor("the keyboard's end", [] { return findKeyboardWindow() == nullptr; }));
}

// --- the window of a view on the Steam Deck ---

namespace {

/// A window of its own draws for itself, so the page tells the server what it sees.
class DeckWindow : public KeyboardRequest {
protected:
    void SetUp() override {
        server.serveHtml("/",
                         "<!doctype html><body style=margin:0><input inputmode=numeric onfocus=\"fetch('/focused')\" "
                         "style='position:absolute;left:5px;top:5px;width:80px;height:16px'>"
                         "<script>onload=()=>fetch('/size/'+innerWidth+'x'+innerHeight)</script>");
        takeCalls();
        view = game.makeView(server.url("/"), events);
        view->setDisplayMode(1);
        view->setSize(400, 300);
        view->show();
        window = findViewWindow();
        ASSERT_NE(window, nullptr);
        page = FindWindowExW(window, nullptr, L"ZEMOWindowForCEFClass", nullptr);
        ASSERT_NE(page, nullptr);
        ASSERT_TRUE(game.waitFor("the page", [&] { return events.has("completed"); }));
    }
    bool windowGone() {
        return game.waitFor("the window's end", [&] { return !IsWindow(window); });
    }

    HttpServer server;
    HWND window = nullptr;
    HWND page = nullptr;
};

}  // namespace

TEST_F(DeckWindow, Shown_PageFillsTheWindowButForTheStrip) {
    RECT client{};
    GetClientRect(window, &client);
    const std::string size = "/size/" + std::to_string(client.right) + "x" + std::to_string(client.bottom - 45);
    EXPECT_TRUE(game.waitFor(size.c_str(), [&] { return server.requestCount(size) == 1; }));
}

TEST_F(DeckWindow, FieldClicked_GameIsAskedForItsKeyboard) {
    // The engine drops the input of a page until it has painted it, which nothing tells: a player clicks again.
    const auto clickedIntoField = [&] {
        SendMessageW(page, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(40, 13));
        SendMessageW(page, WM_LBUTTONUP, 0, MAKELPARAM(40, 13));
        return server.requestCount("/focused") == 1;
    };
    ASSERT_TRUE(game.waitFor("the field's focus", clickedIntoField));
    EXPECT_TRUE(game.waitFor("the game's callback", [&] { return types.get() == std::vector<int>{3}; }));
}

TEST_F(DeckWindow, ButtonPressed_WindowCloses) {
    PostMessageW(FindWindowExW(window, nullptr, L"BUTTON", nullptr), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(20, 20));
    EXPECT_TRUE(windowGone());
}

TEST_F(DeckWindow, ViewDropped_WindowClosesWithItsBrowser) {
    view->close();
    view.reset();
    EXPECT_TRUE(windowGone());
}

}  // namespace ZEMO::Test
