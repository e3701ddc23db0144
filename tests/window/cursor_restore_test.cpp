#include "layers/cursor_restore.h"

#include <gtest/gtest.h>

#include "window/window_test_support.h"

namespace ZEMO::UI::test {
namespace {

class CursorRestoreTest : public testing::Test {
protected:
    std::shared_ptr<RecordingLayer> layer(HWND parent) {
        RecordingLayer::Options options;
        options.parent = parent;
        return ZEMOWindow::create<RecordingLayer>(options, std::make_shared<Journal>());
    }
    static HCURSOR classCursor(HWND window) {
        return reinterpret_cast<HCURSOR>(GetClassLongPtrW(window, GCLP_HCURSOR));
    }
    static void setClassCursor(HWND window, HCURSOR cursor) {
        SetClassLongPtrW(window, GCLP_HCURSOR, static_cast<LONG_PTR>(reinterpret_cast<ULONG_PTR>(cursor)));
    }

    GameWindow game;
    const HCURSOR own = LoadCursorW(nullptr, IDC_CROSS);
    const HCURSOR page = LoadCursorW(nullptr, IDC_IBEAM);
};

TEST_F(CursorRestoreTest, LastLayerGone_ClassCursorIsBackAndASetCursorIsPosted) {
    ASSERT_EQ(classCursor(game.handle()), own);
    game.onThread([&] {
        auto a = layer(game.handle());
        auto b = layer(game.handle());
        EXPECT_EQ(CursorRestore::useCount(), 2);
        setClassCursor(game.handle(), page);
        SetCursor(page);
        MSG message{};
        while (PeekMessageW(&message, game.handle(), WM_SETCURSOR, WM_SETCURSOR, PM_REMOVE)) {
        }
        a.reset();
        EXPECT_EQ(classCursor(game.handle()), page);
        EXPECT_EQ(GetCursor(), page);
        EXPECT_FALSE(PeekMessageW(&message, game.handle(), WM_SETCURSOR, WM_SETCURSOR, PM_REMOVE));
        b.reset();
        EXPECT_EQ(CursorRestore::useCount(), 0);
        EXPECT_EQ(classCursor(game.handle()), own);
        EXPECT_EQ(GetCursor(), own);
        ASSERT_TRUE(PeekMessageW(&message, game.handle(), WM_SETCURSOR, WM_SETCURSOR, PM_REMOVE));
        EXPECT_EQ(message.wParam, reinterpret_cast<WPARAM>(game.handle()));
        EXPECT_EQ(message.lParam, 0x2000001);
    });
}

TEST_F(CursorRestoreTest, FirstLayersWindow_IsTheOneThatIsGivenBack) {
    GameWindow second({200, 200, 500, 500});
    auto a = layer(game.handle());
    auto b = layer(second.handle());
    second.clearReceived();
    a.reset();
    setClassCursor(game.handle(), page);  // one class for both test windows
    game.clearReceived();
    b.reset();
    EXPECT_EQ(classCursor(game.handle()), own);
    EXPECT_TRUE(game.waitForMessage(WM_SETCURSOR));
    second.onThread([] {});
    for (const ReceivedMessage& m : second.received()) EXPECT_FALSE(m.message == WM_SETCURSOR && m.lParam == 0x2000001);
}

TEST_F(CursorRestoreTest, CursorPlace_StaysWhereItWas) {
    const CursorAt place(321, 234);
    int ended = 0;
    CursorAt::hold([&] {  // fails when the cursor is never at its place after the attempt
        layer(game.handle()).reset();
        ++ended;
    });
    EXPECT_GT(ended, 0);
}

TEST_F(CursorRestoreTest, NoParent_NothingIsRestored) {
    auto a = layer(nullptr);
    setClassCursor(game.handle(), page);
    a.reset();
    EXPECT_EQ(CursorRestore::useCount(), 0);
    EXPECT_EQ(classCursor(game.handle()), page);
    setClassCursor(game.handle(), own);
}

TEST_F(CursorRestoreTest, ParentDestroyedFirst_LastLayerEndsQuietly) {
    std::shared_ptr<RecordingLayer> a;
    {
        GameWindow shortLived({200, 200, 500, 500});
        a = layer(shortLived.handle());
    }
    a.reset();
    EXPECT_EQ(CursorRestore::useCount(), 0);
}

TEST_F(CursorRestoreTest, NextFirstLayer_SavesTheCursorOfThatTime) {
    layer(game.handle()).reset();
    setClassCursor(game.handle(), page);
    auto a = layer(game.handle());
    setClassCursor(game.handle(), LoadCursorW(nullptr, IDC_WAIT));
    a.reset();
    EXPECT_EQ(classCursor(game.handle()), page);
    setClassCursor(game.handle(), own);
}

}  // namespace
}  // namespace ZEMO::UI::test
