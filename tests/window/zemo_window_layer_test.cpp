#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "core/posted_text.h"
#include "core/process_state.h"
#include "layers/cursor_restore.h"
#include "layers/input_modifiers.h"
#include "layers/messages/pointer_messages.h"
#include "layers/messages/track_mouse_leave.h"
#include "layers/window_messages.h"
#include "support/import_replaced.h"
#include "window/call_watch.h"
#include "window/cursor_file_for_test.h"
#include "window/window_test_support.h"

namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

using Lines = std::vector<std::string>;

/// A layer on a subclassed game window, on top of the process-wide manager's list.
class ZemoWindowLayer : public testing::Test {
protected:
    ~ZemoWindowLayer() override { drop(); }

    void make(RecordingLayer::Options options = {}) {
        drop();
        options.parent = fixture.game.handle();
        layer = ZEMOWindow::create<RecordingLayer>(options, journal);
        layer->setCustomCursor(nullptr);
        ZEMOMultiLayerManager::instance().addLayer(layer);
        trackMouseLeave = false;
        journal->clear();
    }

    void drop() {
        if (!layer) return;
        ZEMOMultiLayerManager::instance().removeLayer(layer);
        layer.reset();
    }

    /// What the layer was told while the message was sent, and whether the game saw it.
    struct Outcome {
        Lines calls;
        bool consumed;
        LRESULT result;
        HCURSOR cursor;  ///< after the message; cursorBefore unless it was changed
    };
    const HCURSOR cursorBefore = LoadCursorW(nullptr, IDC_WAIT);
    // Set and read around the message: the real cursor comes and goes as well.
    bool cursorEnters = false;
    bool cursorEntersNext = false;
    Outcome send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) {
        Lines calls;
        GameWindow::Probe probe;
        HCURSOR cursor = nullptr;
        game().onThread([&] {
            CursorAt::hold([&] {
                journal->clear();
                SetCursor(cursorBefore);
                trackMouseLeave = cursorEnters;
                probe = game().probe(message, wParam, lParam);
                cursorEntersNext = trackMouseLeave;
                calls = journal->lines();
                cursor = GetCursor();
            });
        });
        return {calls, !probe.gameSawIt, probe.result, cursor};
    }

    GameWindow& game() { return fixture.game; }
    HWND window() { return fixture.game.handle(); }
    POINT onScreen(POINT client) { return clientToScreen(window(), client); }

    SubclassedGame fixture;
    std::shared_ptr<Journal> journal = std::make_shared<Journal>();
    std::shared_ptr<RecordingLayer> layer;
};

struct Row {
    const char* name;
    UINT message;
    WPARAM wParam;
    LPARAM lParam;
    Lines calls;
    bool consumed;
};

constexpr LPARAM kAt = MAKELPARAM(11, 22);
constexpr LPARAM kNegative = MAKELPARAM(0xFFFB, 0xFF38);  // (-5, -200)

TEST_F(ZemoWindowLayer, EveryMessageOfTheTable_CallsItsOperationAndIsConsumedAsTold) {
    make();
    const CursorAt away(5, 5);
    const RECT c = game().client();
    const std::string client = text("%ld,%ld,%ld,%ld", c.left, c.top, c.right, c.bottom);
    const std::vector<Row> rows = {
        {"destroy", WM_DESTROY, 0, 0, {"onDestroy"}, false},
        {"size", WM_SIZE, SIZE_RESTORED, MAKELPARAM(321, 45), {"onSize(" + client + ",321,45)"}, false},
        {"activate", WM_ACTIVATE, WA_ACTIVE, 0, {"onActivated"}, false},
        {"activate by click", WM_ACTIVATE, WA_CLICKACTIVE, 0, {"onActivated"}, false},
        {"inactive but minimised", WM_ACTIVATE, MAKEWPARAM(WA_INACTIVE, 1), 0, {"onActivated"}, false},
        {"deactivate", WM_ACTIVATE, WA_INACTIVE, 0, {"onDeactivated"}, false},
        {"focus lost", WM_KILLFOCUS, 0, 0, {"onKillFocus"}, false},
        {"background", WM_ERASEBKGND, 0, 0, {}, false},
        {"frame double click", WM_NCLBUTTONDBLCLK, HTNOWHERE, 0, {"onMaximizeRestore"}, false},
        {"raw input", WM_INPUT, 0, 0, {}, true},
        {"key down", WM_KEYDOWN, 'A', 0x1E0001, {"onKey(256,41,1e0001)"}, true},
        {"key up", WM_KEYUP, 'A', 0xC01E0001, {"onKey(257,41,c01e0001)"}, true},
        {"character", WM_CHAR, 0xAC00, 1, {"onKey(258,ac00,1)"}, true},
        {"system key down", WM_SYSKEYDOWN, VK_F10, 1, {}, false},
        {"system key up", WM_SYSKEYUP, VK_F10, 1, {"onKey(261,79,1)"}, true},
        {"system character", WM_SYSCHAR, 'x', 1, {"onKey(262,78,1)"}, true},
        {"composition start", WM_IME_STARTCOMPOSITION, 0, 0, {"onImeStartComposition"}, true},
        {"composition end", WM_IME_ENDCOMPOSITION, 0, 0, {"onImeEndComposition"}, true},
        {"composition", WM_IME_COMPOSITION, 0, 0x0808, {"onImeComposition(808)"}, true},
        {"maximise", WM_SYSCOMMAND, 61488, 0, {"onMaximizeRestore"}, false},
        {"restore", WM_SYSCOMMAND, 61728, 0, {"onMaximizeRestore"}, false},
        {"minimise", WM_SYSCOMMAND, SC_MINIMIZE, 0, {}, false},
        {"mouse move",
         WM_MOUSEMOVE,
         MK_LBUTTON | MK_SHIFT,
         kNegative,
         {moveLine(-5, -200, MK_LBUTTON | MK_SHIFT)},
         true},
        {"left down", WM_LBUTTONDOWN, MK_LBUTTON, kAt, {"onMouseButton(0,0,11,22)"}, true},
        {"left double click", WM_LBUTTONDBLCLK, MK_LBUTTON, kAt, {"onMouseButton(0,0,11,22)"}, true},
        {"left up", WM_LBUTTONUP, 0, kNegative, {"onMouseButton(0,1,-5,-200)"}, true},
        {"right down", WM_RBUTTONDOWN, MK_RBUTTON, kAt, {}, true},
        {"right up", WM_RBUTTONUP, 0, kAt, {}, true},
        {"right double click", WM_RBUTTONDBLCLK, MK_RBUTTON, kAt, {}, false},
        {"middle down", WM_MBUTTONDOWN, MK_MBUTTON, kAt, {}, false},
        {"wheel", WM_MOUSEWHEEL, MAKEWPARAM(MK_CONTROL, 120), kNegative, {"onMouseWheel(780008,-5,-200,0,0)"}, true},
        {"horizontal wheel", WM_MOUSEHWHEEL, MAKEWPARAM(0, 0xFF88), kAt, {"onMouseWheel(ff880000,11,22,1,0)"}, true},
        {"character position",
         WM_IME_REQUEST,
         IMR_QUERYCHARPOSITION,
         0x1234,
         {text("onImeQueryCharPosition(%p)", reinterpret_cast<void*>(0x1234))},
         true},
        {"other input request", WM_IME_REQUEST, IMR_COMPOSITIONWINDOW, 0, {}, false},
        {"mouse left", WM_MOUSELEAVE, 0, 0, {}, false},
        {"script without text", 1224, 0, 0, {}, false},
        {"text without text", 1225, 0, 0, {}, false},
        {"remote wheel", 1227, MAKEWPARAM(0, 120), kAt, {"onMouseWheel(780000,11,22,0,1)"}, false},
        {"remote press", 1228, 1, kNegative, {"onMouseButton(0,0,-5,-200)"}, true},
        {"input method on", 1229, 1, 0, {"onImeFocusChange(1)"}, true},
        {"input method off", 1229, 0, 0, {"onImeFocusChange(0)"}, true},
        {"bounds", 1230, 0, 0, {"onImeBoundsChanged"}, true},
        {"close", WM_CLOSE, 0, 0, {}, false},
        {"paint", WM_PAINT, 0, 0, {}, false},
        {"focus gained", WM_SETFOCUS, 0, 0, {}, false},
        {"unknown private", WM_USER + 207, 1, 2, {}, false},
    };
    ASSERT_EQ(rows.size(), 46u);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const Outcome got = send(row.message, row.wParam, row.lParam);
        EXPECT_EQ(got.calls, row.calls);
        EXPECT_EQ(got.consumed, row.consumed);
        const LRESULT answered = row.message == WM_IME_REQUEST && row.consumed ? 1 : 0;
        EXPECT_EQ(got.result, row.consumed ? answered : GameWindow::kGameAnswer);
    }
    // A drag from another device.
    const Outcome remote = send(1226, MK_LBUTTON, kNegative);
    EXPECT_EQ(remote.calls, Lines{moveLine(-5, -200, MK_LBUTTON)});
    EXPECT_FALSE(remote.consumed);
}

TEST_F(ZemoWindowLayer, CharacterPositionUnknown_IsConsumedWithResultZero) {
    make();
    layer->charPositionKnown = false;
    const Outcome got = send(WM_IME_REQUEST, IMR_QUERYCHARPOSITION, 0x1234);
    EXPECT_TRUE(got.consumed);
    EXPECT_EQ(got.result, 0);
    EXPECT_EQ(got.calls.size(), 1u);
}

TEST_F(ZemoWindowLayer, LeftPressWithoutFrameConsumer_GoesToThePageAndToTheGame) {
    make({.frameConsumerActive = false});
    const CursorAt away(5, 5);
    for (const UINT message : {UINT{WM_LBUTTONDOWN}, UINT{WM_LBUTTONDBLCLK}, kMessageRemotePress}) {
        SCOPED_TRACE(message);
        const Outcome got = send(message, 1, kAt);
        EXPECT_EQ(got.calls, Lines{"onMouseButton(0,0,11,22)"});
        EXPECT_FALSE(got.consumed);
    }
    EXPECT_TRUE(send(WM_LBUTTONUP, 0, kAt).consumed);
}

TEST_F(ZemoWindowLayer, PostedTexts_ReachTheLayerOnceAndAreFreed) {
    make();
    const std::string payload(1000, 'p');  // on the heap; a leak or a double free shows under the guarded allocator
    ASSERT_TRUE(Core::postText(window(), kMessageExternalScript, payload));
    ASSERT_TRUE(journal->waitFor("onExternalScript(" + payload + ")"));
    ASSERT_TRUE(Core::postText(window(), kMessageExternalText, "\xED\x95\x9C"));
    ASSERT_TRUE(journal->waitFor("onExternalText(\xED\x95\x9C)"));
    EXPECT_TRUE(game().waitForMessage(kMessageExternalScript));  // not consumed
    EXPECT_TRUE(game().waitForMessage(kMessageExternalText));
    EXPECT_EQ(journal->count("onExternalScript(" + payload + ")"), 1u);
}

// A game that uses the numbers for messages of its own, with whatever it likes.
TEST_F(ZemoWindowLayer, GamesOwnMessageUnderATextsNumber_ReachesItWithItsPointerUntouched) {
    make();
    const auto theirs = std::make_unique<std::string>(1000, 't');
    int notAllocated = 7;
    for (const UINT message : {kMessageExternalScript, kMessageExternalText}) {
        for (const LPARAM lParam :
             {reinterpret_cast<LPARAM>(theirs.get()), reinterpret_cast<LPARAM>(&notAllocated), LPARAM{1}, LPARAM{-1}}) {
            SCOPED_TRACE(lParam);
            game().clearReceived();
            ASSERT_TRUE(PostMessageW(window(), message, 0, lParam));
            EXPECT_TRUE(game().waitForMessage(message));
        }
    }
    EXPECT_EQ(*theirs, std::string(1000, 't'));
    EXPECT_EQ(notAllocated, 7);
    for (const std::string& line : journal->lines()) EXPECT_FALSE(line.starts_with("onExternal")) << line;
}

TEST_F(ZemoWindowLayer, TextPostedToADeadWindow_ReturnsFalse) {
    make();
    EXPECT_FALSE(Core::postText(reinterpret_cast<HWND>(0x7FFF1234), kMessageExternalText, std::string(1000, 'x')));
}

TEST_F(ZemoWindowLayer, ConsumedMessagesPostedFromAnotherThread_AreHiddenFromTheGame) {
    make();
    const CursorAt away(5, 5);
    game().clearReceived();
    PostMessageW(window(), WM_KEYDOWN, 'Q', 1);
    PostMessageW(window(), kMessageImeFocus, 1, 0);
    PostMessageW(window(), WM_USER + 300, 7, 8);  // the mark behind them
    ASSERT_TRUE(game().waitForMessage(WM_USER + 300));
    EXPECT_TRUE(journal->waitFor("onKey(256,51,1)"));
    EXPECT_TRUE(journal->waitFor("onImeFocusChange(1)"));
    for (const ReceivedMessage& m : game().received()) {
        EXPECT_NE(m.message, static_cast<UINT>(WM_KEYDOWN));
        EXPECT_NE(m.message, kMessageImeFocus);
    }
}

// --- the cursor's entry and the button ---

TEST_F(ZemoWindowLayer, FirstMoveAfterMouseLeave_ReachesNoPageAndResetsTheArrow) {
    make();
    const CursorAt inside(onScreen(contentPoint(window())));
    EXPECT_FALSE(send(WM_MOUSELEAVE).consumed);
    EXPECT_TRUE(cursorEntersNext);
    bool entersAfter = true;
    HCURSOR cursorAfter = nullptr;
    TRACKMOUSEEVENT query{sizeof query, TME_QUERY, nullptr, 0};
    Lines calls;
    GameWindow::Probe first;
    game().onThread([&] {
        SetCursor(LoadCursorW(nullptr, IDC_WAIT));
        trackMouseLeave = true;
        journal->clear();
        first = game().probe(WM_MOUSEMOVE, 0, kAt);
        calls = journal->lines();
        cursorAfter = GetCursor();
        entersAfter = trackMouseLeave;
        TrackMouseEvent(&query);
    });
    EXPECT_TRUE(first.gameSawIt);
    EXPECT_EQ(calls, Lines{});
    EXPECT_EQ(cursorAfter, LoadCursorW(nullptr, IDC_ARROW));
    EXPECT_FALSE(entersAfter);
    EXPECT_EQ(query.dwFlags & TME_LEAVE, static_cast<DWORD>(TME_LEAVE));
    EXPECT_EQ(query.hwndTrack, window());

    const Outcome second = send(WM_MOUSEMOVE, 0, kAt);
    EXPECT_EQ(second.calls, Lines{moveLine(11, 22, 0)});
    EXPECT_TRUE(second.consumed);
}

TEST_F(ZemoWindowLayer, FirstMoveOnSteamDeck_GoesToThePage) {
    make({.steamDeck = true});
    cursorEnters = true;
    const Outcome got = send(WM_MOUSEMOVE, 0, kAt);
    EXPECT_EQ(got.calls, Lines{moveLine(11, 22, 0)});
    EXPECT_TRUE(got.consumed);
    EXPECT_TRUE(cursorEntersNext);
}

TEST_F(ZemoWindowLayer, CloseHit_ClicksAndHidesThePressFromPageAndGame) {
    for (const bool frameConsumerActive : {true, false}) {
        make({.frameConsumerActive = frameConsumerActive});
        layer->createCloseButton([this] { journal->add("clicked"); });
        const CursorAt onButton(onScreen(closeButtonPoint(window())));
        for (const UINT message : {WM_LBUTTONDOWN, WM_LBUTTONDBLCLK}) {
            SCOPED_TRACE(message);
            const Outcome got = send(message, MK_LBUTTON, kAt);  // the message's own place does not count
            EXPECT_EQ(got.calls, Lines{"clicked"});
            EXPECT_TRUE(got.consumed);
        }
        const Outcome up = send(WM_LBUTTONUP, 0, kAt);
        EXPECT_EQ(up.calls, Lines{"onMouseButton(0,1,11,22)"});
    }
}

TEST_F(ZemoWindowLayer, RemotePressOnTheCloseButton_ClicksByTheMessagesPlace) {
    make({.frameConsumerActive = false});
    layer->createCloseButton([this] { journal->add("clicked"); });
    const CursorAt away(5, 5);
    const POINT at = closeButtonPoint(window());
    const Outcome hit = send(kMessageRemotePress, 1, MAKELPARAM(at.x, at.y));
    EXPECT_EQ(hit.calls, Lines{"clicked"});
    EXPECT_TRUE(hit.consumed);
    const CursorAt onButton(onScreen(at));
    const Outcome miss = send(kMessageRemotePress, 1, kAt);
    EXPECT_EQ(miss.calls, Lines{"onMouseButton(0,0,11,22)"});
    EXPECT_FALSE(miss.consumed);
}

TEST_F(ZemoWindowLayer, PressInTheCornerBeforeThereIsAButton_GoesToThePage) {
    make();
    const CursorAt inCorner(onScreen(closeButtonPoint(window())));
    EXPECT_EQ(send(WM_LBUTTONDOWN, MK_LBUTTON, kAt).calls, Lines{"onMouseButton(0,0,11,22)"});
    layer->clickCloseButton();  // nothing there: no effect
}

TEST_F(ZemoWindowLayer, SecondCreateCloseButton_KeepsTheFirstAction) {
    make();
    layer->createCloseButton([this] { journal->add("first"); });
    layer->createCloseButton([this] { journal->add("second"); });
    layer->clickCloseButton();
    EXPECT_EQ(journal->lines(), Lines{"first"});
}

TEST_F(ZemoWindowLayer, CloseClickThatDropsTheLastReference_EndsTheLayerAfterTheMessage) {
    const CursorAt onButton(onScreen(closeButtonPoint(window())));
    const std::string destroyed = text("destroyed on thread %lu", GetWindowThreadProcessId(window(), nullptr));
    bool aliveInClick = false;
    std::weak_ptr<RecordingLayer> watch;
    GameWindow::Probe probe;
    CursorAt::hold([&] {  // with a layer of its own each time
        make();
        watch = layer;
        aliveInClick = false;
        layer->createCloseButton([&] {
            drop();
            aliveInClick = !watch.expired();
            journal->add("clicked");
        });
        game().onThread([&] { probe = game().probe(WM_LBUTTONDOWN, MK_LBUTTON, kAt); });
    });
    EXPECT_FALSE(probe.gameSawIt);
    EXPECT_EQ(journal->count("clicked"), 1u);
    EXPECT_TRUE(aliveInClick);
    EXPECT_TRUE(watch.expired());
    EXPECT_EQ(journal->count(destroyed), 1u);
}

TEST_F(ZemoWindowLayer, MouseMoveOverTheButton_ShowsTheHandOnce) {
    make();
    layer->createCloseButton([] {});
    const CursorAt onButton(onScreen(closeButtonPoint(window())));
    HCURSOR first = nullptr, second = nullptr;
    game().onThread([&] {
        CursorAt::hold([&] {
            {
                const CursorAt away(5, 5);  // forgets an earlier hover; then back onto the button
                CursorAt::hold([&] {
                    trackMouseLeave = false;
                    game().probe(WM_MOUSEMOVE, 0, kAt);
                });
            }
            trackMouseLeave = false;
            SetCursor(cursorBefore);
            game().probe(WM_MOUSEMOVE, 0, kAt);
            first = SetCursor(cursorBefore);
            game().probe(WM_MOUSEMOVE, 0, kAt);
            second = GetCursor();
        });
    });
    EXPECT_EQ(first, LoadCursorW(nullptr, IDC_HAND));
    EXPECT_EQ(second, cursorBefore);  // still on it: no second change
}

// --- WM_SETCURSOR ---

TEST_F(ZemoWindowLayer, SetCursorWithoutFrameConsumer_IsTheGames) {
    make({.frameConsumerActive = false});
    const CursorAt inside(onScreen(contentPoint(window())));
    EXPECT_FALSE(send(WM_SETCURSOR, reinterpret_cast<WPARAM>(window()), MAKELPARAM(HTCLIENT, WM_MOUSEMOVE)).consumed);
}

TEST_F(ZemoWindowLayer, SetCursorOutsideTheClient_IsTheGames) {
    make();
    const CursorAt outside(5, 5);
    EXPECT_FALSE(send(WM_SETCURSOR, kPageCursorMarker, 1).consumed);
}

TEST_F(ZemoWindowLayer, SetCursorInside_PageCursorIsShownAndAnyOtherIsKeptOff) {
    make();
    const CursorAt inside(onScreen(contentPoint(window())));
    const HCURSOR beam = LoadCursorW(nullptr, IDC_IBEAM);
    const Outcome page = send(WM_SETCURSOR, kPageCursorMarker, reinterpret_cast<LPARAM>(beam));
    EXPECT_TRUE(page.consumed);
    EXPECT_EQ(page.cursor, beam);
    const Outcome other = send(WM_SETCURSOR, reinterpret_cast<WPARAM>(window()), MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
    EXPECT_TRUE(other.consumed);
    EXPECT_EQ(other.cursor, cursorBefore);
}

TEST_F(ZemoWindowLayer, SetCursorOverTheButton_IsConsumedWithNoChange) {
    make({.frameConsumerActive = false});
    layer->createCloseButton([] {});
    const CursorAt onButton(onScreen(closeButtonPoint(window())));
    const LPARAM beam = reinterpret_cast<LPARAM>(LoadCursorW(nullptr, IDC_IBEAM));
    const Outcome got = send(WM_SETCURSOR, kPageCursorMarker, beam);
    EXPECT_TRUE(got.consumed);
    EXPECT_EQ(got.cursor, cursorBefore);
}

TEST_F(ZemoWindowLayer, CustomCursor_WinsExceptWithinTenPixelsOfTheEdgeLines) {
    make({.frameConsumerActive = false});
    const HCURSOR custom = LoadCursorW(nullptr, IDC_UPARROW);
    layer->setCustomCursor(custom);
    RECT frame{};
    GetWindowRect(window(), &frame);
    const LONG midX = (frame.left + frame.right) / 2, midY = (frame.top + frame.bottom) / 2;
    struct Place {
        const char* name;
        POINT at;
        bool forced;
    };
    const std::vector<Place> places = {
        {"middle", {midX, midY}, true},
        {"10 inside left", {frame.left + 10, midY}, false},
        {"11 inside left", {frame.left + 11, midY}, true},
        {"10 outside left", {frame.left - 10, midY}, false},
        {"10 inside right", {frame.right - 10, midY}, false},
        {"11 inside right", {frame.right - 11, midY}, true},
        {"10 below top", {midX, frame.top + 10}, false},
        {"11 below top", {midX, frame.top + 11}, true},
        {"10 above bottom", {midX, frame.bottom - 10}, false},
        {"11 above bottom", {midX, frame.bottom - 11}, true},
        {"far above, on the left line", {frame.left, frame.top - 60}, false},
        {"far above, off the lines", {midX, frame.top - 60}, true},
    };
    ASSERT_EQ(places.size(), 12u);
    for (const Place& place : places) {
        SCOPED_TRACE(place.name);
        const CursorAt at(place.at);
        const LPARAM beam = reinterpret_cast<LPARAM>(LoadCursorW(nullptr, IDC_IBEAM));
        const Outcome got = send(WM_SETCURSOR, kPageCursorMarker, beam);
        EXPECT_EQ(got.consumed, place.forced);
        EXPECT_EQ(got.cursor, place.forced ? custom : cursorBefore);
    }
}

TEST_F(ZemoWindowLayer, FirstEraseWithACustomCursor_PostsSetCursorOnce) {
    // How many of the library's own WM_SETCURSOR the message left in the queue, which is read only after this.
    const auto postedByErase = [&] {
        int posted = 0;
        game().onThread([&] {
            MSG message{};
            while (PeekMessageW(&message, window(), WM_SETCURSOR, WM_SETCURSOR, PM_REMOVE)) {
            }  // what the end of an earlier layer posted
            const GameWindow::Probe probe = game().probe(WM_ERASEBKGND, 0, 0);
            EXPECT_TRUE(probe.gameSawIt);
            while (PeekMessageW(&message, window(), WM_SETCURSOR, WM_SETCURSOR, PM_REMOVE)) {
                EXPECT_EQ(message.wParam, reinterpret_cast<WPARAM>(window()));
                EXPECT_EQ(message.lParam, HTCLIENT);
                ++posted;
            }
        });
        return posted;
    };
    make();
    EXPECT_EQ(postedByErase(), 0);
    layer->setCustomCursor(LoadCursorW(nullptr, IDC_UPARROW));
    EXPECT_EQ(postedByErase(), 0);  // the first one is over

    drop();
    // The end of a layer invalidates the window: that erase must be over before the next layer looks for its first one.
    game().onThread([&] { RedrawWindow(window(), nullptr, nullptr, RDW_ERASENOW | RDW_UPDATENOW); });
    make();
    layer->setCustomCursor(LoadCursorW(nullptr, IDC_UPARROW));
    EXPECT_EQ(postedByErase(), 1);
    EXPECT_EQ(postedByErase(), 0);
}

// --- input method context ---

TEST_F(ZemoWindowLayer, ImeSetContext_IsAnsweredByTheDefaultWithoutTheCompositionWindow) {
    make();
    DefaultProcedureWatch defaults(window());
    for (const WPARAM activated : {WPARAM{1}, WPARAM{0}}) {
        defaults.answer(WM_IME_SETCONTEXT, activated, 0x4000000F, 4711);
        const Outcome got = send(WM_IME_SETCONTEXT, activated, static_cast<LPARAM>(ISC_SHOWUIALL));
        EXPECT_EQ(got.calls, Lines{"onImeSetContext"});
        EXPECT_TRUE(got.consumed);
        EXPECT_TRUE(defaults.answered());
        EXPECT_EQ(got.result, 4711);
    }
}

TEST_F(ZemoWindowLayer, ImeSetContextInAPasswordField_IsConsumedWithoutTheDefaultPath) {
    make();
    DefaultProcedureWatch defaults(window());
    defaults.answer(WM_IME_SETCONTEXT, 1, 0x4000000F, 4711);
    setPasswordFieldFocused(true);
    const Outcome got = send(WM_IME_SETCONTEXT, 1, static_cast<LPARAM>(ISC_SHOWUIALL));
    setPasswordFieldFocused(false);
    EXPECT_EQ(got.calls, Lines{"onImeSetContext"});
    EXPECT_TRUE(got.consumed);
    EXPECT_EQ(got.result, 0);
    EXPECT_FALSE(defaults.answered());
}

// --- pointer messages ---
// A posted pointer message carries no data here and touch cannot be injected, so GetPointerInfo is replaced: what the
// system would have told about the pointer comes from this table.

struct FakePointer {
    bool known = true;
    POINTER_INPUT_TYPE type = PT_TOUCH;
    POINT screen{};
    POINTER_BUTTON_CHANGE_TYPE change = POINTER_CHANGE_NONE;
    POINTER_FLAGS flags = 0;
    UINT32 askedFor = 0;
};
FakePointer fakePointer;

BOOL WINAPI fakePointerInfo(UINT32 id, POINTER_INFO* info) {
    fakePointer.askedFor = id;
    if (!fakePointer.known) return FALSE;
    *info = {};
    info->pointerType = fakePointer.type;
    info->ptPixelLocation = fakePointer.screen;
    info->ButtonChangeType = fakePointer.change;
    info->pointerFlags = fakePointer.flags;
    return TRUE;
}

class ZemoWindowLayerPointer : public ZemoWindowLayer {
protected:
    ZemoWindowLayerPointer() {
        fakePointer = {};
        fakePointer.screen = onScreen({33, 44});
    }

private:
    ImportReplaced pointerInfo{"GetPointerInfo", &fakePointerInfo};  // a posted pointer message carries no data here
};

constexpr WPARAM kPointer7 = MAKEWPARAM(7, 0x1234);  // the flags in the high word are not part of the id

TEST_F(ZemoWindowLayerPointer, EveryRowOfTheTable_CallsItsOperationAndIsConsumedAsTold) {
    struct PointerRow {
        const char* name;
        POINTER_INPUT_TYPE type;
        UINT message;
        POINTER_BUTTON_CHANGE_TYPE change;
        Lines calls;
        bool alwaysConsumed;  ///< else with a frame consumer only
    };
    const std::vector<PointerRow> rows = {
        {"mouse down", PT_MOUSE, WM_POINTERDOWN, POINTER_CHANGE_FIRSTBUTTON_DOWN, {"onMouseButton(0,0,33,44)"}, false},
        {"mouse third down",
         PT_MOUSE,
         WM_POINTERDOWN,
         POINTER_CHANGE_THIRDBUTTON_DOWN,
         {"onMouseButton(0,0,33,44)"},
         false},
        {"mouse right down", PT_MOUSE, WM_POINTERDOWN, POINTER_CHANGE_SECONDBUTTON_DOWN, {}, true},
        {"mouse up", PT_MOUSE, WM_POINTERUP, POINTER_CHANGE_FIRSTBUTTON_UP, {"onMouseButton(0,1,33,44)"}, true},
        {"mouse right up", PT_MOUSE, WM_POINTERUP, POINTER_CHANGE_SECONDBUTTON_UP, {}, true},
        {"mouse move", PT_MOUSE, WM_POINTERUPDATE, POINTER_CHANGE_NONE, {moveLine(33, 44, 0)}, true},
        {"touch down", PT_TOUCH, WM_POINTERDOWN, POINTER_CHANGE_FIRSTBUTTON_DOWN, {"onPointer(582,7,33,44)"}, false},
        {"touch up", PT_TOUCH, WM_POINTERUP, POINTER_CHANGE_FIRSTBUTTON_UP, {"onPointer(583,7,33,44)"}, true},
        {"touch move", PT_TOUCH, WM_POINTERUPDATE, POINTER_CHANGE_NONE, {"onPointer(581,7,33,44)"}, true},
        {"pen right down", PT_PEN, WM_POINTERDOWN, POINTER_CHANGE_SECONDBUTTON_DOWN, {"onPointer(582,7,33,44)"}, false},
        {"pen up", PT_PEN, WM_POINTERUP, POINTER_CHANGE_SECONDBUTTON_UP, {"onPointer(583,7,33,44)"}, true},
    };
    ASSERT_EQ(rows.size(), 11u);
    const CursorAt away(5, 5);
    for (const bool frameConsumerActive : {true, false}) {
        make({.frameConsumerActive = frameConsumerActive});
        for (const PointerRow& row : rows) {
            SCOPED_TRACE(row.name);
            fakePointer.type = row.type;
            fakePointer.change = row.change;
            const Outcome got = send(row.message, kPointer7, 0);
            EXPECT_EQ(got.calls, row.calls);
            EXPECT_EQ(got.consumed, row.alwaysConsumed || frameConsumerActive);
            EXPECT_EQ(fakePointer.askedFor, 7u);
        }
    }
}

TEST_F(ZemoWindowLayerPointer, UnknownPointer_CallsNothingAndIsConsumedButForThePress) {
    fakePointer.known = false;
    for (const bool frameConsumerActive : {true, false}) {
        make({.frameConsumerActive = frameConsumerActive});
        const Outcome down = send(WM_POINTERDOWN, kPointer7, 0);
        EXPECT_EQ(down.calls, Lines{});
        EXPECT_EQ(down.consumed, frameConsumerActive);
        EXPECT_TRUE(send(WM_POINTERUP, kPointer7, 0).consumed);
        EXPECT_TRUE(send(WM_POINTERUPDATE, kPointer7, 0).consumed);
    }
}

TEST_F(ZemoWindowLayerPointer, SteamOverlayActive_LeavesPointerMessagesToTheGame) {
    make({.steamOverlayActive = true});
    for (const UINT message : {WM_POINTERUPDATE, WM_POINTERDOWN, WM_POINTERUP}) {
        const Outcome got = send(message, kPointer7, 0);
        EXPECT_EQ(got.calls, Lines{});
        EXPECT_FALSE(got.consumed);
    }
    ZEMOMultiLayerManager::instance().setSteamOverlayActiveStatus(false);
    EXPECT_TRUE(send(WM_POINTERUP, kPointer7, 0).consumed);
    ZEMOMultiLayerManager::instance().setSteamOverlayActiveStatus(true);
    EXPECT_FALSE(send(WM_POINTERUP, kPointer7, 0).consumed);
    ZEMOMultiLayerManager::instance().setSteamOverlayActiveStatus(false);
}

TEST_F(ZemoWindowLayerPointer, OnTheCloseButton_TouchClicksWithEachMessageAndTheMouseWithThePressOnly) {
    make({.frameConsumerActive = false});
    layer->createCloseButton([this] { journal->add("clicked"); });
    const CursorAt onButton(onScreen(closeButtonPoint(window())));
    for (const POINTER_INPUT_TYPE type : {PT_TOUCH, PT_PEN}) {
        fakePointer.type = type;
        for (const UINT message : {WM_POINTERDOWN, WM_POINTERUPDATE, WM_POINTERUP}) {
            const Outcome got = send(message, kPointer7, 0);
            EXPECT_EQ(got.calls, Lines{"clicked"});
            EXPECT_TRUE(got.consumed);
        }
    }
    fakePointer.type = PT_MOUSE;
    fakePointer.change = POINTER_CHANGE_SECONDBUTTON_DOWN;  // the button comes before the kind of press
    EXPECT_EQ(send(WM_POINTERDOWN, kPointer7, 0).calls, Lines{"clicked"});
    fakePointer.change = POINTER_CHANGE_FIRSTBUTTON_UP;
    EXPECT_EQ(send(WM_POINTERUP, kPointer7, 0).calls, Lines{"onMouseButton(0,1,33,44)"});
    EXPECT_EQ(send(WM_POINTERUPDATE, kPointer7, 0).calls, Lines{moveLine(33, 44, 0)});
}

TEST_F(ZemoWindowLayerPointer, MouseUpdate_MakesKeysFromThePointersFlags) {
    make();
    struct Case {
        POINTER_FLAGS flags;
        WPARAM keys;
    };
    for (const Case& c : {Case{POINTER_FLAG_FIRSTBUTTON, MK_LBUTTON}, Case{POINTER_FLAG_SECONDBUTTON, MK_RBUTTON},
                          Case{POINTER_FLAG_THIRDBUTTON, MK_MBUTTON},
                          Case{POINTER_FLAG_FIRSTBUTTON | POINTER_FLAG_THIRDBUTTON | POINTER_FLAG_INCONTACT,
                               MK_LBUTTON | MK_MBUTTON}}) {
        fakePointer.type = PT_MOUSE;
        fakePointer.flags = c.flags;
        EXPECT_EQ(send(WM_POINTERUPDATE, kPointer7, 0).calls, Lines{moveLine(33, 44, c.keys)});
    }
    Lines calls;
    fakePointer.flags = 0;
    game().onThread([&] {
        BYTE before[256], keys[256] = {};
        GetKeyboardState(before);
        keys[VK_CONTROL] = keys[VK_SHIFT] = 0x80;
        SetKeyboardState(keys);
        journal->clear();
        game().probe(WM_POINTERUPDATE, kPointer7, 0);
        calls = journal->lines();
        SetKeyboardState(before);
    });
    ASSERT_EQ(calls.size(), 1u);
    int x = 0, y = 0;
    unsigned modifiers = 0;
    ASSERT_EQ(std::sscanf(calls[0].c_str(), "onMouseMove(%d,%d,%u)", &x, &y, &modifiers), 3);
    EXPECT_EQ(modifiers & (kEventControlDown | kEventShiftDown), kEventControlDown | kEventShiftDown);
}

// --- the end ---

TEST_F(ZemoWindowLayer, Destroyed_WindowIsPaintedAnewWithItsBackground) {
    make();
    game().onThread([&] {
        ValidateRect(window(), nullptr);
        EXPECT_FALSE(GetUpdateRect(window(), nullptr, FALSE));
        drop();
        RECT update{};
        EXPECT_TRUE(GetUpdateRect(window(), &update, FALSE));
        const RECT client = game().client();
        EXPECT_TRUE(EqualRect(&update, &client));
        game().clearReceived();
        RedrawWindow(window(), nullptr, nullptr, RDW_ERASENOW);
    });
    EXPECT_TRUE(game().waitForMessage(WM_ERASEBKGND));
}

TEST_F(ZemoWindowLayer, DestroyedWithoutAWindow_NoOtherWindowIsPaintedAnew) {
    int undisturbed = 0;
    game().onThread([&] {
        for (int i = 0; i < 5; ++i) {  // a window of another test may lay this one bare meanwhile
            ValidateRect(window(), nullptr);
            layer = ZEMOWindow::create<RecordingLayer>(RecordingLayer::Options{}, journal);
            layer.reset();
            undisturbed += !GetUpdateRect(window(), nullptr, FALSE);
        }
    });
    EXPECT_GT(undisturbed, 0);
}

// --- construction ---

TEST_F(ZemoWindowLayer, LayerStyle_TakesTheParentAsItsWindow) {
    make();
    EXPECT_EQ(layer->getWindowHandle(), window());
    EXPECT_EQ(layer->getViewWindowHandle(), window());
    EXPECT_EQ(layer->getWindowStyle(), WindowStyle::Layer);
}

TEST_F(ZemoWindowLayer, ViewChild_IsTheViewWindow) {
    make();
    int stand = 0;
    const HWND child = reinterpret_cast<HWND>(0x1234);
    layer->setViewChild(std::shared_ptr<ZEMOExtraWindowForSteamdeck>(
                            std::shared_ptr<void>(), reinterpret_cast<ZEMOExtraWindowForSteamdeck*>(&stand)),
                        child);
    EXPECT_EQ(layer->getViewWindowHandle(), child);
    EXPECT_EQ(layer->getWindowHandle(), window());
    layer->setViewChild(nullptr, nullptr);
    EXPECT_EQ(layer->getViewWindowHandle(), window());
}

TEST_F(ZemoWindowLayer, NoMainWindow_LayerLivesAndEndsQuietly) {
    RecordingLayer::Options options;
    options.parent = nullptr;
    auto lone = ZEMOWindow::create<RecordingLayer>(options, journal);
    EXPECT_EQ(lone->getWindowHandle(), nullptr);
    lone->createCloseButton([] {});
    LRESULT result = 0;
    EXPECT_TRUE(lone->handleMessage(&result, nullptr, WM_KEYDOWN, 'A', 1));
    lone.reset();
    EXPECT_EQ(CursorRestore::useCount(), 0);
}

TEST_F(ZemoWindowLayer, CursorFileBesideTheLibrary_IsLoadedInTheConstructor) {
    const CursorFileBesideTheProgram file;
    make();
    RecordingLayer::Options options;
    options.parent = window();
    auto withFile = ZEMOWindow::create<RecordingLayer>(options, journal);
    EXPECT_NE(withFile->getCustomCursor(), nullptr);
}

}  // namespace
}  // namespace ZEMO::Test
