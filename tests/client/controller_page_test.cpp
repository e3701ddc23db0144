#include <gtest/gtest.h>

#include "client/controller_page.h"
#include "controller/controller_scripts.h"

// The pages that lie beside the library, and the common files that make them usable with a pad, on the real engine.
// What the page hears goes through the library's own call scripts.
namespace ZEMO::Test {
namespace {

constexpr char kConnected[] =
    R"({"isConnected": true, "primaryBtn": "0", "secondaryBtn": "1", "secondaryBtnText": "Leave"})";
constexpr char kFocused[] = "document.activeElement.name || document.activeElement.textContent.trim()";
constexpr char kMarked[] = "document.querySelector('.pad_marked')?.dataset.key";
constexpr char kHints[] =
    "getComputedStyle(document.querySelector('.keymap_info')).display == 'none' ? 'hidden' : "
    "Array.from(document.querySelectorAll('.keymap_item'), e => e.textContent).join()";

class ControllerPages : public ::testing::Test {
protected:
    GameHost game{{.clientWidth = 1000, .clientHeight = 700}};
};

}  // namespace

TEST_F(ControllerPages, LoginPagePlayedByPadAlone_FormIsSubmittedWithWhatWasEntered) {
    ControllerPage page(game, "idp_login/index", kConnected);
    ASSERT_TRUE(page.waitUntilReady());
    ASSERT_TRUE(page.waitFor(kFocused, "name")) << "the page says where a controller begins";
    page.press("0");
    page.type("anna7");
    page.press("1");
    page.press("down");
    EXPECT_TRUE(page.waitFor(kFocused, "password"));
    page.press("0");
    page.type("q1w2");
    page.presses({"3", "2"});  // a blank, and away with it
    page.press("9");
    EXPECT_TRUE(page.waitFor("document.forms[0].password.value", "q1w2"));
    EXPECT_TRUE(page.waitFor("document.querySelectorAll('.pad_keyboard').length", "0"));
    page.press("down");
    EXPECT_TRUE(page.waitFor(kFocused, "region"));
    page.presses({"0", "down", "down", "0"});
    EXPECT_TRUE(page.waitFor("document.forms[0].region.value", "north_america"));
    page.press("right");
    EXPECT_TRUE(page.waitFor(kFocused, "keep"));
    page.presses({"0", "down"});
    page.press("left");
    EXPECT_TRUE(page.waitFor(kFocused, "Sign in"));
    page.press("0");
    EXPECT_EQ(page.requested("game://login"), "game://login?name=anna7&password=q1w2&region=north_america&keep=1");
}

TEST_F(ControllerPages, IncompleteForm_NotSubmittedAndTheFirstGapHasTheFocus) {
    ControllerPage page(game, "idp_login/index", kConnected);
    ASSERT_TRUE(page.waitUntilReady());
    page.presses({"down", "down", "down", "0"});
    EXPECT_TRUE(page.waitFor(kFocused, "name"));
    for (const std::string& event : page.view.events->events()) EXPECT_EQ(event.find("game://"), std::string::npos);
}

TEST_F(ControllerPages, SecondaryButton_ClicksThePagesWayBack) {
    ControllerPage page(game, "idp_login/index", kConnected);
    ASSERT_TRUE(page.waitUntilReady());
    page.press("1");
    EXPECT_FALSE(page.requested("zemosdk://nativeclose").empty());
}

TEST_F(ControllerPages, ServerPage_ChosenServerIsSubmitted) {
    ControllerPage page(game, "server_popup/index", kConnected);
    ASSERT_TRUE(page.waitUntilReady());
    ASSERT_TRUE(page.waitFor("document.activeElement.value", "vega"));
    page.presses({"right"});
    EXPECT_TRUE(page.waitFor("document.activeElement.value", "altair"));
    page.presses({"down", "0"});
    EXPECT_TRUE(page.waitFor("document.forms[0].server.value", "rigel"));
    page.press("down");
    page.press("left");
    EXPECT_TRUE(page.waitFor(kFocused, "Travel there"));
    page.press("0");
    EXPECT_EQ(page.requested("game://server"), "game://server?server=rigel");
}

TEST_F(ControllerPages, StorePage_ScrolledWareIsBoughtInItsDialog) {
    ControllerPage page(game, "zemostore_popup/index", kConnected);
    ASSERT_TRUE(page.waitUntilReady());
    for (int i = 0; i < 3; ++i) page.press("down");
    EXPECT_TRUE(page.waitFor("document.activeElement.textContent.startsWith('Old radio')", "true"));
    EXPECT_EQ(page.ask("(() => { const r = document.activeElement.getBoundingClientRect(), s = "
                       "document.getElementById('shelf').getBoundingClientRect(); "
                       "return r.top >= s.top && r.bottom <= s.bottom })()"),
              "true")
        << "scrolled into view";
    page.press("0");
    EXPECT_TRUE(page.waitFor("order.open + document.activeElement.name", "trueamount"));
    page.presses({"right", "right", "right", "left"});
    EXPECT_TRUE(page.waitFor("document.querySelector('output').value", "3"));
    page.presses({"up", "up"});
    EXPECT_TRUE(page.waitFor(kFocused, "amount")) << "an open dialog keeps the focus";
    page.presses({"down", "left"});
    EXPECT_TRUE(page.waitFor(kFocused, "Buy"));
    page.press("0");
    EXPECT_EQ(page.requested("game://buy"), "game://buy?ware=Old+radio&amount=3");
    page.press("1");
    EXPECT_TRUE(page.waitFor("order.open", "false"));
}

TEST_F(ControllerPages, Status_DecidesButtonsAndHints) {
    ControllerPage page(game, "idp_login/index",
                        R"({"isConnected": true, "primaryBtn": "1", "secondaryBtn": "0", "secondaryBtnText": ""})");
    ASSERT_TRUE(page.waitUntilReady());
    EXPECT_TRUE(page.waitFor(kHints, "Move,BType,ABack"));
    page.press("1");
    EXPECT_TRUE(page.waitFor("document.querySelectorAll('.pad_keyboard').length", "1"));
    EXPECT_TRUE(page.waitFor(kHints, "Move,BPress,XDelete,YSpace,ADone"));
    page.press("0");
    EXPECT_TRUE(page.waitFor("document.querySelectorAll('.pad_keyboard').length", "0"));
    page.run(ZEMO::UI::ControllerScripts::buildInitClientGamePadScript(kConnected));
    EXPECT_TRUE(page.waitFor(kHints, "Move,AType,BLeave"));
    EXPECT_EQ(page.ask("gameControllerStatus.secondaryBtnText"), "Leave");
    page.run(ZEMO::UI::ControllerScripts::buildInitClientGamePadScript(R"({"isConnected": false})"));
    EXPECT_TRUE(page.waitFor(kHints, "hidden"));
}

TEST_F(ControllerPages, KoreanPage_HintsInItsLanguage) {
    ControllerPage page(game, "idp_login/index", kConnected);
    ASSERT_TRUE(page.waitUntilReady());
    page.run("document.documentElement.lang = 'ko'");
    page.press("down");
    EXPECT_TRUE(page.waitFor(kHints, "\xEC\x9D\xB4\xEB\x8F\x99,A\xEC\x9E\x85\xEB\xA0\xA5,BLeave"));
}

TEST_F(ControllerPages, NoStatusYet_PageAsksForIt) {
    ControllerPage page(game, "idp_login/index", "");
    EXPECT_EQ(page.requested("zemosdk://gamepadinit"), "zemosdk://gamepadinit?use=true");
}

TEST_F(ControllerPages, FocusLostAndRegained_StyleGoesAndComesAndAHeldDirectionEnds) {
    ControllerPage page(game, "zemostore_popup/index", kConnected);
    ASSERT_TRUE(page.waitUntilReady());
    EXPECT_TRUE(page.waitFor("document.body.classList.contains('focus_on')", "true"));
    page.send(R"({"button": 13, "pressed": true})");
    page.run(ZEMO::UI::ControllerScripts::buildFocusLostScript());
    EXPECT_TRUE(page.waitFor("document.body.classList.contains('focus_on')", "false"));
    EXPECT_TRUE(page.waitFor(kHints, "hidden"));
    const std::string before = page.ask(kFocused);
    game.pass(700ms);  // longer than a held direction waits before it goes on
    EXPECT_EQ(page.ask(kFocused), before);
    page.run(ZEMO::UI::ControllerScripts::buildFocusGainedScript());
    EXPECT_TRUE(page.waitFor("document.body.classList.contains('focus_on')", "true"));
    EXPECT_TRUE(page.waitFor(kHints, "Move,ASelect,BLeave"));
}

TEST_F(ControllerPages, HeldDirection_RepeatsUntilReleased) {
    ControllerPage page(game, "zemostore_popup/index", kConnected);
    ASSERT_TRUE(page.waitUntilReady());
    ASSERT_TRUE(page.waitFor("document.activeElement.textContent.startsWith('Fuel cell')", "true"));
    page.send(R"({"axes": [0, 1, 0, 0]})");
    EXPECT_TRUE(page.waitFor(kFocused, "Leave")) << "four rows further down";
    page.send(R"({"axes": [0, -0.5, 0, 0]})");  // still beyond where a tilted stick counts as let go
    EXPECT_TRUE(
        page.waitFor("document.activeElement.textContent.startsWith('Fuel cell') || "
                     "document.activeElement.textContent.startsWith('Star chart')",
                     "true"));
    page.send(R"({"axes": [0, 0.1, 0, 0]})");
    const std::string before = page.ask(kFocused);
    game.pass(700ms);
    EXPECT_EQ(page.ask(kFocused), before);
}

TEST_F(ControllerPages, InputThatIsNone_ChangesNothing) {
    ControllerPage page(game, "idp_login/index", kConnected);
    ASSERT_TRUE(page.waitUntilReady());
    for (const char* data : {"null", "1", "\"up\"", "{}", "[]", "[null, {}]", R"({"button": "sideways"})",
                             R"({"button": 99})", R"({"button": null})", R"({"axes": []})", R"({"axes": 7})",
                             R"({"button": "toString"})", R"({"button": 13, "pressed": false})"}) {
        page.send(data);
    }
    EXPECT_EQ(page.ask(kFocused), "name");
    EXPECT_EQ(page.ask("document.querySelectorAll('.pad_panel').length"), "0");
}

TEST_F(ControllerPages, ScreenKeyboard_ShiftSymbolsAndCaret) {
    ControllerPage page(game, "idp_login/index", kConnected);
    ASSERT_TRUE(page.waitUntilReady());
    page.press("0");
    ASSERT_TRUE(page.waitFor(kMarked, "q"));
    page.presses({"down", "down", "down"});
    EXPECT_TRUE(page.waitFor(kMarked, "shift"));
    page.presses({"down", "left"});
    EXPECT_TRUE(page.waitFor(kMarked, "shift")) << "the edge is the end";
    page.presses({"0", "up", "0"});
    EXPECT_TRUE(page.waitFor("document.forms[0].elements.name.value", "Z"));
    EXPECT_TRUE(page.waitFor(kMarked, "z")) << "one capital for one press";
    page.presses({"down", "right", "0"});
    EXPECT_TRUE(page.waitFor(kMarked, "letters"));
    page.presses({"up", "0"});
    EXPECT_TRUE(page.waitFor("document.forms[0].elements.name.value.length", "2"));
    page.run("document.querySelector('[data-key=left]').click(); document.querySelector('[data-key=remove]').click()");
    EXPECT_TRUE(page.waitFor("document.forms[0].elements.name.value.length", "1"));
    EXPECT_NE(page.ask("document.forms[0].elements.name.value"), "Z") << "the one before the caret went";
    EXPECT_EQ(page.ask("document.activeElement.name"), "name") << "the field kept the focus";
}

}  // namespace ZEMO::Test
