#include "layers/cursor_restore.h"

#include <gtest/gtest.h>

#include "support/import_replaced.h"
#include "window/window_test_support.h"

namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

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

// Setting the cursor to where it is shows nowhere, so the calls are written down and passed on.
std::vector<POINT> cursorPlaces;
BOOL WINAPI watchedSetCursorPos(int x, int y) {
    static const auto system = systemFunction<decltype(SetCursorPos)>(L"user32.dll", "SetCursorPos");
    cursorPlaces.push_back({x, y});
    return system(x, y);
}

TEST_F(CursorRestoreTest, LastLayerGone_CursorIsSetToTheSamePlaceOnce) {
    const CursorAt place(321, 234);
    CursorAt::hold([&] {  // fails when the cursor is never at its place after the attempt
        const ImportReplaced replaced("SetCursorPos", watchedSetCursorPos);
        auto a = layer(game.handle());
        auto b = layer(game.handle());
        cursorPlaces.clear();
        a.reset();
        EXPECT_TRUE(cursorPlaces.empty());
        b.reset();
    });
    ASSERT_EQ(cursorPlaces.size(), 1u);
    EXPECT_EQ(cursorPlaces[0].x, 321);
    EXPECT_EQ(cursorPlaces[0].y, 234);
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

TEST_F(CursorRestoreTest, OwnWindowWithAParent_GivesTheParentsClassItsCursorBack) {
    RecordingLayer::Options options;
    options.parent = game.handle();
    options.style = WindowStyle::Window;
    auto a = ZEMOWindow::create<RecordingLayer>(options, std::make_shared<Journal>());
    EXPECT_EQ(CursorRestore::useCount(), 1);
    const HWND window = a->getWindowHandle();
    ASSERT_TRUE(IsWindow(window));
    const HCURSOR ofOwnClass = classCursor(window);
    setClassCursor(game.handle(), page);
    game.clearReceived();
    a.reset();
    EXPECT_EQ(CursorRestore::useCount(), 0);
    EXPECT_EQ(classCursor(game.handle()), own);
    EXPECT_EQ(classCursor(window), ofOwnClass);
    EXPECT_TRUE(game.waitForMessage(WM_SETCURSOR));
    const DWORD id = GetWindowThreadProcessId(window, nullptr);
    const HANDLE thread = OpenThread(SYNCHRONIZE, FALSE, id);
    PostMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_TRUE(waitForThreadEnd(id, thread));
    CloseHandle(thread);
}

}  // namespace
}  // namespace ZEMO::Test
