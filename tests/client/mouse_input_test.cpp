#include <gtest/gtest.h>

#include <format>

#include "client/input_case.h"
#include "support/import_replaced.h"

// Mouse, wheel, pointers and injected events of a window in a real page, in both styles and at two scales.
namespace ZEMO::Test {
namespace {

using Style = InputPage::Style;
using Ids = std::vector<UINT>;

constexpr std::pair<int, int> kPlaces[] = {{1, 1},     {10, 20},  {33, 44},   {65, 67},
                                           {100, 101}, {151, 77}, {200, 150}, {249, 3}};

std::vector<InputCase> moveCases(const InputPage& page) {
    std::vector<InputCase> cases;
    for (const auto& [x, y] : kPlaces) {
        cases.push_back({std::format("move to {},{}", x, y), {{WM_MOUSEMOVE, 0, page.at(x, y)}}, movedLines(x, y)});
    }
    struct Held {
        const char* name;
        WPARAM keys;
        int buttons;
        const char* modifiers;
        std::vector<int> down = {}, toggled = {};
    };
    int x = 20;
    for (const Held& h :
         {Held{"left", MK_LBUTTON, 1, ""}, Held{"right", MK_RBUTTON, 2, ""}, Held{"middle", MK_MBUTTON, 4, ""},
          Held{"all three", MK_LBUTTON | MK_RBUTTON | MK_MBUTTON, 7, ""}, Held{"Shift", MK_SHIFT, 0, "S"},
          Held{"Ctrl", MK_CONTROL, 0, "C"}, Held{"Shift, Ctrl and left", MK_SHIFT | MK_CONTROL | MK_LBUTTON, 1, "SC"},
          Held{"Alt", 0, 0, "A", {VK_MENU}}, Held{"caps lock", 0, 0, "K", {}, {VK_CAPITAL}},
          Held{"num lock", 0, 0, "N", {}, {VK_NUMLOCK}},
          // Not in the message: the keyboard's own Shift and Ctrl do not count.
          Held{"Shift and Ctrl on the keyboard", 0, 0, "", {VK_SHIFT, VK_CONTROL}},
          Held{"other buttons", MK_XBUTTON1 | MK_XBUTTON2, 0, ""}}) {
        x += 5;
        cases.push_back({.name = std::string("move with ") + h.name,
                         .messages = {{WM_MOUSEMOVE, h.keys, page.at(x, 50)}},
                         .page = movedLines(x, 50, h.buttons, h.modifiers),
                         .down = h.down,
                         .toggled = h.toggled});
    }
    return cases;
}

std::vector<InputCase> buttonCases(const InputPage& page, Style style) {
    const bool layer = style == Style::kLayer;
    std::vector<InputCase> cases;
    for (const auto& [x, y] : kPlaces) {
        const LPARAM at = page.at(x, y);
        cases.push_back(
            {std::format("left press at {},{}", x, y), {{WM_LBUTTONDOWN, MK_LBUTTON, at}}, pressedLines(x, y)});
        cases.push_back({std::format("left release at {},{}", x, y), {{WM_LBUTTONUP, 0, at}}, releasedLines(x, y)});
        const Lines right = layer ? Lines{} : pressedLines(x, y, 2) + releasedLines(x, y, 2);
        cases.push_back({std::format("right click at {},{}", x, y),
                         {{WM_RBUTTONDOWN, MK_RBUTTON, at}, {WM_RBUTTONUP, 0, at}},
                         right});
    }
    const LPARAM at = page.at(40, 50);
    // A click carries no keyboard state.
    cases.push_back(
        {.name = "click with everything held",
         .messages = {{WM_LBUTTONDOWN, MK_LBUTTON | MK_SHIFT | MK_CONTROL, at}, {WM_LBUTTONUP, MK_SHIFT, at}},
         .page = pressedLines(40, 50) + releasedLines(40, 50),
         .down = {VK_SHIFT, VK_CONTROL, VK_MENU},
         .toggled = {VK_CAPITAL, VK_NUMLOCK}});
    cases.push_back({"two clicks are no double click",
                     {{WM_LBUTTONDOWN, MK_LBUTTON, at},
                      {WM_LBUTTONUP, 0, at},
                      {WM_LBUTTONDOWN, MK_LBUTTON, at},
                      {WM_LBUTTONUP, 0, at}},
                     pressedLines(40, 50) + releasedLines(40, 50) + pressedLines(40, 50) + releasedLines(40, 50)});
    if (layer) {  // an own window does nothing with the message
        cases.push_back({"second press of a double click is a plain one",
                         {{WM_LBUTTONDBLCLK, MK_LBUTTON, at}, {WM_LBUTTONUP, 0, at}},
                         pressedLines(40, 50) + releasedLines(40, 50)});
    } else {
        cases.push_back({"message of a double click", {{WM_LBUTTONDBLCLK, MK_LBUTTON, at}}, {}});
    }
    // The other buttons are the game's.
    for (const UINT message :
         {WM_RBUTTONDBLCLK, WM_MBUTTONDOWN, WM_MBUTTONUP, WM_MBUTTONDBLCLK, WM_XBUTTONDOWN, WM_XBUTTONUP}) {
        cases.push_back({std::format("message {}", message), {{message, 0, at}}, {}, layer ? Ids{message} : Ids{}});
    }
    return cases;
}

std::vector<InputCase> wheelCases(const InputPage& page, Style style) {
    std::vector<InputCase> cases;
    const auto wheel = [&](const std::string& name, UINT message, int delta, int x, int y, const std::string& moved,
                           std::vector<int> down = {}) {
        const POINT at = page.onScreen(x, y);
        InputCase row{.name = "wheel " + name,
                      .messages = {{message, MAKEWPARAM(0, delta), MAKELPARAM(at.x, at.y)}},
                      .page = {std::format("wheel {},{} {}", x, y, moved)},
                      .down = std::move(down)};
        if (moved.empty()) row.page.clear();
        cases.push_back(row);
    };
    // The engine makes 100 pixels of a notch, and turning away from the user is up.
    for (const auto& [x, y] : kPlaces) wheel("up", WM_MOUSEWHEEL, 120, x, y, "0,-100");
    wheel("down", WM_MOUSEWHEEL, -120, 40, 50, "0,100");
    wheel("two notches", WM_MOUSEWHEEL, 240, 41, 50, "0,-200");
    wheel("part of a notch", WM_MOUSEWHEEL, 30, 42, 50, "0,-25");
    wheel("with Ctrl", WM_MOUSEWHEEL, 120, 43, 50, "0,-100", {VK_CONTROL});
    wheel("with Shift", WM_MOUSEWHEEL, 120, 44, 50, "-100,0", {VK_SHIFT});
    wheel("down with Shift", WM_MOUSEWHEEL, -120, 45, 50, "100,0", {VK_SHIFT});
    const bool layer = style == Style::kLayer;
    wheel("sideways", WM_MOUSEHWHEEL, 120, 46, 50, layer ? "-100,0" : "");
    wheel("sideways back", WM_MOUSEHWHEEL, -120, 47, 50, layer ? "100,0" : "");
    wheel("sideways with Shift", WM_MOUSEHWHEEL, 120, 48, 50, layer ? "-100,0" : "", {VK_SHIFT});
    return cases;
}

// --- pointers: a posted pointer message carries no data here and touch can't be injected, so what the system would
// tell of the pointer comes from the row. ---

POINTER_INFO pointer;
bool pointerKnown = true;

BOOL WINAPI pointerInfo(UINT32, POINTER_INFO* info) {
    *info = pointer;
    return pointerKnown;
}

InputCase pointerCase(const InputPage& page, const std::string& name, UINT message, POINTER_INPUT_TYPE type, int x,
                      int y, const Lines& lines, POINTER_BUTTON_CHANGE_TYPE change = POINTER_CHANGE_NONE,
                      POINTER_FLAGS flags = 0) {
    POINTER_INFO info{};
    info.pointerType = type;
    info.ptPixelLocation = page.onScreen(x, y);
    info.ButtonChangeType = change;
    info.pointerFlags = flags;
    return {.name = "pointer " + name, .messages = {{message, MAKEWPARAM(7, 0), 0}}, .page = lines, .before = [info] {
                pointer = info;
            }};
}

Lines touchLines(const char* pointerKind, const char* touchKind, int x, int y, int radius, int button, int buttons,
                 int force) {
    return {std::format("{} touch {},{} button {} buttons {}", pointerKind, x, y, button, buttons),
            std::format("{} {},{} radius {},{} force {}", touchKind, x, y, radius, radius, force)};
}

std::vector<InputCase> pointerCases(const InputPage& page, Style style, float scale) {
    const bool layer = style == Style::kLayer;
    std::vector<InputCase> cases;
    const int radius = scale == 1.0f ? 5 : 3;
    for (const auto& [type, name] : {std::pair{PT_TOUCH, "touch"}, std::pair{PT_PEN, "pen"}}) {
        for (const auto& [x, y] : kPlaces) {
            const std::string at = std::format("{} at {},{}", name, x, y);
            cases.push_back(pointerCase(page, at + " down", WM_POINTERDOWN, type, x, y,
                                        touchLines("pointerdown", "touchstart", x, y, radius, 0, 1, 1)));
            cases.push_back(pointerCase(page, at + " moved", WM_POINTERUPDATE, type, x + 30, y + 40,
                                        touchLines("pointermove", "touchmove", x + 30, y + 40, radius, -1, 1, 1)));
            cases.push_back(pointerCase(page, at + " up", WM_POINTERUP, type, x + 30, y + 40,
                                        touchLines("pointerup", "touchend", x + 30, y + 40, radius, 0, 0, 1)));
        }
    }
    for (const auto& [x, y] : {std::pair{12, 13}, std::pair{70, 71}}) {
        cases.push_back(pointerCase(page, "mouse moved", WM_POINTERUPDATE, PT_MOUSE, x, y, movedLines(x, y)));
        cases.push_back(pointerCase(page, "mouse moved with the left button", WM_POINTERUPDATE, PT_MOUSE, x + 1, y,
                                    movedLines(x + 1, y, 1), POINTER_CHANGE_NONE, POINTER_FLAG_FIRSTBUTTON));
        cases.push_back(pointerCase(page, "mouse moved with the right button", WM_POINTERUPDATE, PT_MOUSE, x + 2, y,
                                    movedLines(x + 2, y, 2), POINTER_CHANGE_NONE, POINTER_FLAG_SECONDBUTTON));
        cases.push_back(pointerCase(page, "mouse moved with the middle button", WM_POINTERUPDATE, PT_MOUSE, x + 3, y,
                                    movedLines(x + 3, y, 4), POINTER_CHANGE_NONE, POINTER_FLAG_THIRDBUTTON));
        cases.push_back(pointerCase(page, "mouse moved with Shift and Ctrl", WM_POINTERUPDATE, PT_MOUSE, x + 4, y,
                                    movedLines(x + 4, y, 0, "SC")));
        cases.back().down = {VK_SHIFT, VK_CONTROL};  // in place of the flags that the message lacks
        cases.push_back(pointerCase(page, "mouse left down", WM_POINTERDOWN, PT_MOUSE, x, y, pressedLines(x, y),
                                    POINTER_CHANGE_FIRSTBUTTON_DOWN));
        cases.push_back(pointerCase(page, "mouse left up", WM_POINTERUP, PT_MOUSE, x, y, releasedLines(x, y),
                                    POINTER_CHANGE_FIRSTBUTTON_UP));
        cases.push_back(pointerCase(page, "mouse right down", WM_POINTERDOWN, PT_MOUSE, x, y,
                                    layer ? Lines{} : pressedLines(x, y, 2), POINTER_CHANGE_SECONDBUTTON_DOWN));
        cases.push_back(pointerCase(page, "mouse right up", WM_POINTERUP, PT_MOUSE, x, y,
                                    layer ? Lines{} : releasedLines(x, y, 2), POINTER_CHANGE_SECONDBUTTON_UP));
    }
    for (const UINT message : {WM_POINTERDOWN, WM_POINTERUPDATE, WM_POINTERUP}) {
        InputCase row = pointerCase(page, std::format("unknown {}", message), message, PT_TOUCH, 5, 5, {});
        row.before = [] { pointerKnown = false; };
        row.after = [] { pointerKnown = true; };
        cases.push_back(row);
    }
    return cases;
}

// --- injected: posted to the game's window, so only a layer gets them ---

std::vector<InputCase> injectedCases(InputPage& page, Style style) {
    const bool layer = style == Style::kLayer;
    std::vector<InputCase> cases;
    const auto inject = [&](const char* type, const char* action, const std::string& data, int x, int y,
                            const Lines& lines, const Ids& gameOfALayer, const Ids& gameElse) {
        const LPARAM at = page.at(x, y);
        cases.push_back({.name = std::format("injected {} {} {}", type, action, data),
                         .messages = {},
                         .page = layer ? lines : Lines{},
                         .game = layer ? gameOfALayer : gameElse,
                         .inject = [=] {
                             ZEMO::UI::sendUIRemoteInputEvent(type, action, data, static_cast<SHORT>(LOWORD(at)),
                                                              static_cast<SHORT>(HIWORD(at)));
                         }});
    };
    for (const char* type : {"Click", "Touch"}) {
        for (const auto& [x, y] : {std::pair{15, 16}, std::pair{90, 91}}) {
            inject(type, "Move", "", x, y, movedLines(x, y, 1), {1226}, {1226});
            inject(type, "Down", "", x, y, pressedLines(x, y), {}, {1228});
            inject(type, "Up", "", x, y, releasedLines(x, y), {}, {WM_LBUTTONUP});
        }
    }
    inject("Wheel", "Up", "", 21, 22, {"wheel 21,22 0,-100"}, {1227}, {1227});
    inject("Wheel", "Down", "", 23, 24, {"wheel 23,24 0,100"}, {1227}, {1227});
    for (const char* b : {"66", "0x42", "0X42", "66abc", " 66"}) {
        inject("Key", "Down", b, 0, 0, {"keydown 66 b", "keypress 98 b"}, {}, {WM_KEYDOWN, WM_CHAR});
        inject("Key", "Up", b, 0, 0, {"keyup 66 b"}, {}, {WM_KEYUP});
    }
    inject("Key", "Down", "0x1B", 0, 0, {"keydown 27 Escape"}, {}, {WM_KEYDOWN, WM_CHAR});
    inject("Key", "Down", "0x0D", 0, 0, {"keydown 13 Enter", "keypress 13 Enter"}, {}, {WM_KEYDOWN, WM_CHAR});
    inject("Key", "Down", "0x25", 0, 0, {"keydown 37 ArrowLeft"}, {}, {WM_KEYDOWN});
    inject("Message", "", "text", 0, 0, {}, {1225}, {1225});  // no field has the focus
    // What is no event of the grammar posts nothing.
    for (const auto& [type, action, data] :
         {std::tuple{"click", "Down", ""}, std::tuple{"Click", "down", ""}, std::tuple{"Wheel", "Move", ""},
          std::tuple{"Key", "Move", "66"}, std::tuple{"Key", "Down", "0"}, std::tuple{"Key", "Down", "0x"},
          std::tuple{"", "", ""}}) {
        inject(type, action, data, 30, 31, {}, {}, {});
    }
    return cases;
}

void checkMouse(Style style, float scale) {
    SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    const ImportReplaced replaced("GetPointerInfo", &pointerInfo);
    InputPage page(style, scale);
    ASSERT_TRUE(page.open());
    ASSERT_FLOAT_EQ(static_cast<float>(GetDpiForWindow(page.window)) / 96.0f, scale) << "the session's scale";
    page.log([&](HWND window) { SendMessageW(window, WM_MOUSEMOVE, 0, page.at(5, 5)); });  // the cursor enters
    std::vector<InputCase> cases = moveCases(page);
    for (const auto& more : {buttonCases(page, style), wheelCases(page, style), pointerCases(page, style, scale),
                             injectedCases(page, style)})
        cases.insert(cases.end(), more.begin(), more.end());
    EXPECT_EQ(cases.size(), 174u);
    runCases(page, cases);
}

}  // namespace

TEST(MouseInput, LayerForeground_EveryEventReachesThePageAsTold) { checkMouse(Style::kLayer, 1.0f); }
TEST(MouseInput, OwnWindowForeground_EveryEventReachesThePageAsTold) { checkMouse(Style::kOwnWindow, 1.0f); }
TEST(MouseInput, Layer_EveryEventReachesThePageAsTold_Scale150) { checkMouse(Style::kLayer, 1.5f); }
TEST(MouseInput, OwnWindow_EveryEventReachesThePageAsTold_Scale150) { checkMouse(Style::kOwnWindow, 1.5f); }

}  // namespace ZEMO::Test
