// The Steam Deck variant: real windows, real messages, real clicks.
#include "layers/deck/extra_window.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <vector>

#include "core/asset_paths.h"
#include "core/unique_handle.h"
#include "window/call_watch.h"
#include "window/window_test_support.h"

namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

constexpr wchar_t kParentClass[] = L"TestExtraWindowParent";
constexpr WPARAM kOurs = 0x5A5A;  ///< marks the messages that a test sends
constexpr UINT kEndMark = WM_APP + 7;

/// A top-level window on another thread that writes down the messages that a test marked, and closes for nobody.
class Parent {
public:
    explicit Parent(GameWindow& threadOwner, int clientWidth = 640, int clientHeight = 400) : owner(threadOwner) {
        owner.onThread([&] { open(clientWidth, clientHeight); });
    }
    ~Parent() {
        owner.onThread([&] { DestroyWindow(window); });
    }
    Parent(const Parent&) = delete;
    Parent& operator=(const Parent&) = delete;

    /// The marked messages up to now, in their order.
    std::vector<std::string> marked() {
        PostMessageW(window, kEndMark, kOurs, 0);
        const std::string end = line(kEndMark, kOurs, 0);
        EXPECT_TRUE(journal.waitFor(end));
        std::vector<std::string> lines = journal.lines();
        std::erase(lines, end);
        journal.clear();
        return lines;
    }
    static std::string line(UINT message, WPARAM wParam, LPARAM lParam) {
        return text("%u,%llx,%llx", message, static_cast<unsigned long long>(wParam),
                    static_cast<unsigned long long>(lParam));
    }

    GameWindow& owner;
    HWND window = nullptr;
    Journal journal;

private:
    void open(int clientWidth, int clientHeight) {
        WNDCLASSEXW description{};
        description.cbSize = sizeof description;
        description.lpfnWndProc = procedure;
        description.hInstance = GetModuleHandleW(nullptr);
        description.lpszClassName = kParentClass;
        RegisterClassExW(&description);
        window = CreateWindowExW(WS_EX_TOPMOST, kParentClass, L"", WS_POPUP | WS_VISIBLE, 150, 120, clientWidth,
                                 clientHeight, nullptr, nullptr, description.hInstance, this);
    }
    static LRESULT CALLBACK procedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
        if (message == WM_NCCREATE)
            SetWindowLongPtrW(hwnd, GWLP_USERDATA,
                              reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTW*>(lParam)->lpCreateParams));
        auto* self = reinterpret_cast<Parent*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
        if (self && (wParam == kOurs || message == WM_CLOSE)) {
            self->journal.add(line(message, wParam, lParam));
            return 0;
        }
        return DefWindowProcW(hwnd, message, wParam, lParam);
    }
};

HWND buttonOf(HWND parent) { return FindWindowExW(parent, nullptr, L"BUTTON", nullptr); }

RECT placeIn(HWND parent, HWND child) {
    RECT place{};
    GetWindowRect(child, &place);
    MapWindowPoints(nullptr, parent, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

void expectPlace(const RECT& place, int left, int top, int right, int bottom) {
    EXPECT_EQ(place.left, left);
    EXPECT_EQ(place.top, top);
    EXPECT_EQ(place.right, right);
    EXPECT_EQ(place.bottom, bottom);
}

class ExtraWindow : public testing::Test {
protected:
    std::shared_ptr<ZEMOExtraWindowForSteamdeck> make(Parent& parent, int width = 640, int height = 400) {
        std::shared_ptr<ZEMOExtraWindowForSteamdeck> made;
        game.onThread([&] { made = std::make_shared<ZEMOExtraWindowForSteamdeck>(parent.window, width, height); });
        return made;
    }
    LRESULT send(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
        DWORD_PTR answer = 0;
        EXPECT_TRUE(SendMessageTimeoutW(window, message, wParam, lParam, SMTO_NORMAL, 20000, &answer)) << message;
        return static_cast<LRESULT>(answer);
    }

    GameWindow game;
};

TEST_F(ExtraWindow, Made_ViewFillsTheClientAreaButForTheStrip) {
    Parent parent(game);
    const auto extra = make(parent);
    const HWND view = extra->getViewWindow();
    ASSERT_TRUE(IsWindow(view));
    EXPECT_EQ(GetParent(view), parent.window);
    expectPlace(placeIn(parent.window, view), 0, 0, 640, 355);
    EXPECT_EQ(GetWindowLongPtrW(view, GWL_STYLE) & (WS_CHILD | WS_VISIBLE | WS_CAPTION | WS_BORDER),
              WS_CHILD | WS_VISIBLE);
    wchar_t name[64] = {};
    GetClassNameW(view, name, 64);
    EXPECT_STREQ(name, L"ZEMOWindowForCEFClass");
    GetWindowTextW(view, name, 64);
    EXPECT_STREQ(name, L"cef window");
}

TEST_F(ExtraWindow, Made_ViewClassAsTheEngineNeedsIt) {
    Parent parent(game);
    const HWND view = make(parent)->getViewWindow();
    WNDCLASSEXW description{};
    description.cbSize = sizeof description;
    ASSERT_TRUE(GetClassInfoExW(GetModuleHandleW(nullptr), L"ZEMOWindowForCEFClass", &description));
    EXPECT_EQ(description.style, static_cast<UINT>(CS_DBLCLKS));
    EXPECT_EQ(description.hCursor, LoadCursorW(nullptr, IDC_ARROW));
    EXPECT_EQ(description.hbrBackground, reinterpret_cast<HBRUSH>(1));
    EXPECT_EQ(description.hIcon, nullptr);
    EXPECT_EQ(description.lpszMenuName, nullptr);
    EXPECT_EQ(GetClassLongPtrW(view, GCLP_HMODULE), reinterpret_cast<ULONG_PTR>(GetModuleHandleW(nullptr)));
}

TEST_F(ExtraWindow, Made_ButtonStandsInTheLowerRightCorner) {
    Parent parent(game);
    const auto extra = make(parent);
    const HWND button = buttonOf(parent.window);
    ASSERT_TRUE(IsWindow(button));
    expectPlace(placeIn(parent.window, button), 595, 355, 640, 400);
    EXPECT_EQ(GetWindowLongPtrW(button, GWL_STYLE) & 0xFFFFFFFF, 0x50000000);
    EXPECT_EQ(GetWindowTextLengthW(button), 0);
}

TEST_F(ExtraWindow, ViewMessages_PostedOnUnchangedOrSwallowed) {
    const struct {
        UINT message;
        bool posted;
    } cases[] = {{WM_ACTIVATE, true},  {WM_CLOSE, true},      {WM_MOUSEMOVE, true},    {WM_LBUTTONDOWN, true},
                 {WM_LBUTTONUP, true}, {WM_MOUSEWHEEL, true}, {WM_RBUTTONDOWN, false}, {WM_RBUTTONUP, false}};
    Parent parent(game);
    const HWND view = make(parent)->getViewWindow();
    const DefaultProcedureWatch defaults(view);
    for (const auto& c : cases) {
        const LPARAM at = MAKELPARAM(c.message, 33);
        EXPECT_EQ(send(view, c.message, kOurs, at), 0) << c.message;
        const std::vector<std::string> expected =
            c.posted ? std::vector{Parent::line(c.message, kOurs, at)} : std::vector<std::string>{};
        EXPECT_EQ(parent.marked(), expected) << c.message;
    }
    EXPECT_TRUE(IsWindow(view));
}

TEST_F(ExtraWindow, OtherViewMessages_TakeTheSystemsDefaultWay) {
    Parent parent(game);
    const HWND view = make(parent)->getViewWindow();
    DefaultProcedureWatch defaults(view);
    for (const UINT message : {WM_KEYDOWN, WM_CHAR, WM_SETCURSOR, WM_ERASEBKGND, WM_MOUSEHWHEEL, WM_LBUTTONDBLCLK,
                               WM_MBUTTONDOWN, WM_CONTEXTMENU, WM_IME_SETCONTEXT, WM_USER + 205}) {
        defaults.answer(message, kOurs, 9, 4711);
        EXPECT_EQ(send(view, message, kOurs, 9), 4711) << message;
        EXPECT_TRUE(parent.marked().empty()) << message;
    }
}

TEST_F(ExtraWindow, ButtonPressed_ParentIsAskedToCloseAndTheButtonStillActs) {
    Parent parent(game);
    const auto extra = make(parent);
    const HWND button = buttonOf(parent.window);
    // The button holds the mouse while it is pushed, and a move of the real one, elsewhere, lifts it: so its state is
    // asked for before its thread takes another message.
    const auto stateAfter = [&](UINT message) {
        LRESULT state = 0;
        game.onThread([&] {
            SendMessageW(button, message, 0, MAKELPARAM(5, 5));
            state = SendMessageW(button, BM_GETSTATE, 0, 0);
        });
        return state & BST_PUSHED;
    };
    EXPECT_FALSE(stateAfter(WM_NULL));
    EXPECT_TRUE(stateAfter(WM_LBUTTONDOWN));
    EXPECT_EQ(parent.marked(), std::vector{Parent::line(WM_CLOSE, 0, 0)});
    EXPECT_FALSE(stateAfter(WM_LBUTTONUP));
    EXPECT_TRUE(parent.marked().empty());
}

TEST_F(ExtraWindow, ButtonMessagesOtherThanAPress_CloseNothing) {
    Parent parent(game);
    const auto extra = make(parent);
    const HWND button = buttonOf(parent.window);
    for (const UINT message : {WM_MOUSEMOVE, WM_LBUTTONUP, WM_RBUTTONDOWN, WM_RBUTTONUP, WM_KEYDOWN})
        send(button, message, 0, MAKELPARAM(5, 5));
    EXPECT_TRUE(parent.marked().empty());
}

/// The pixels of a square, 32 bits each, upper byte cleared.
std::vector<uint32_t> pixelsOf(HDC source, int size) {
    const Core::UniqueHandle<HDC, &DeleteDC> memory(CreateCompatibleDC(source));
    BITMAPINFO info{};
    info.bmiHeader = {sizeof info.bmiHeader, size, -size, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    void* bits = nullptr;
    const Core::UniqueHandle<HBITMAP, &DeleteObject> section(
        CreateDIBSection(memory.get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
    const HGDIOBJ before = SelectObject(memory.get(), section.get());
    BitBlt(memory.get(), 0, 0, size, size, source, 0, 0, SRCCOPY);
    GdiFlush();
    std::vector<uint32_t> pixels(static_cast<const uint32_t*>(bits), static_cast<const uint32_t*>(bits) + size * size);
    SelectObject(memory.get(), before);
    for (uint32_t& pixel : pixels) pixel &= 0xFFFFFF;
    return pixels;
}

/// The shipped bitmap, shrunk as the system shrinks.
std::vector<uint32_t> shrunkBitmap(int size) {
    const Core::WindowDc screen(nullptr);
    const Core::UniqueHandle<HBITMAP, &DeleteObject> bitmap(static_cast<HBITMAP>(
        LoadImageW(nullptr, Core::closeBitmapPath().c_str(), IMAGE_BITMAP, 0, 0, LR_LOADFROMFILE)));
    EXPECT_TRUE(bitmap);
    const Core::UniqueHandle<HDC, &DeleteDC> from(CreateCompatibleDC(screen.get()));
    const Core::UniqueHandle<HDC, &DeleteDC> to(CreateCompatibleDC(screen.get()));
    const Core::UniqueHandle<HBITMAP, &DeleteObject> target(CreateCompatibleBitmap(screen.get(), size, size));
    const HGDIOBJ fromBefore = SelectObject(from.get(), bitmap.get());
    const HGDIOBJ toBefore = SelectObject(to.get(), target.get());
    StretchBlt(to.get(), 0, 0, size, size, from.get(), 0, 0, 140, 140, SRCCOPY);
    auto pixels = pixelsOf(to.get(), size);
    SelectObject(from.get(), fromBefore);
    SelectObject(to.get(), toBefore);
    return pixels;
}

TEST_F(ExtraWindow, ButtonPainted_ShowsTheWholeBitmapShrunk) {
    const auto expected = shrunkBitmap(45);
    ASSERT_FALSE(std::all_of(expected.begin(), expected.end(), [&](uint32_t pixel) { return pixel == expected[0]; }));
    Parent parent(game);
    const auto extra = make(parent);
    std::vector<uint32_t> shown;
    game.onThread([&] {
        const HWND button = buttonOf(parent.window);
        RedrawWindow(button, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
        RECT rest{};
        EXPECT_FALSE(GetUpdateRect(button, &rest, FALSE));  // all is painted, so no paint follows for ever
        shown = pixelsOf(Core::WindowDc(button).get(), 45);
    });
    EXPECT_EQ(shown, expected);
}

TEST_F(ExtraWindow, DroppedOnAnotherThread_WindowsStandUntilTheirParentGoes) {
    HWND view = nullptr;
    HWND button = nullptr;
    {
        Parent parent(game);
        auto extra = make(parent);
        view = extra->getViewWindow();
        button = buttonOf(parent.window);
        extra.reset();  // this thread is not theirs
        EXPECT_TRUE(IsWindow(view));
        EXPECT_TRUE(IsWindow(button));
        send(view, WM_LBUTTONDOWN, kOurs, 3);
        EXPECT_EQ(parent.marked(), std::vector{Parent::line(WM_LBUTTONDOWN, kOurs, 3)});
    }
    EXPECT_FALSE(IsWindow(view));
    EXPECT_FALSE(IsWindow(button));
}

TEST_F(ExtraWindow, ALaterOne_TakesTheMessagesOfAllViews) {
    Parent first(game);
    Parent second(game);
    const HWND firstView = make(first)->getViewWindow();
    const HWND secondView = make(second)->getViewWindow();
    send(firstView, WM_LBUTTONDOWN, kOurs, 1);
    send(secondView, WM_LBUTTONDOWN, kOurs, 2);
    EXPECT_EQ(second.marked(),
              (std::vector{Parent::line(WM_LBUTTONDOWN, kOurs, 1), Parent::line(WM_LBUTTONDOWN, kOurs, 2)}));
    EXPECT_TRUE(first.marked().empty());
    for (const HWND parent : {first.window, second.window}) {
        RECT rest{};
        game.onThread([&] {
            RedrawWindow(buttonOf(parent), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
            EXPECT_FALSE(GetUpdateRect(buttonOf(parent), &rest, FALSE));
        });
    }
}

TEST_F(ExtraWindow, NoParent_LeavesNoViewAndEndsQuietly) {
    std::shared_ptr<ZEMOExtraWindowForSteamdeck> extra;
    game.onThread([&] { extra = std::make_shared<ZEMOExtraWindowForSteamdeck>(nullptr, 640, 400); });
    EXPECT_EQ(extra->getViewWindow(), nullptr);
}

// --- in a view's own window ---

class ExtraWindowOfAView : public testing::Test {
protected:
    ExtraWindowOfAView() {
        RecordingLayer::Options options;
        options.style = WindowStyle::Window;
        options.size = {640, 400};
        options.steamDeck = true;
        layer = ZEMOWindow::create<RecordingLayer>(options, journal);
        window = layer->getWindowHandle();
        threadId = GetWindowThreadProcessId(window, nullptr);
        thread.reset(OpenThread(SYNCHRONIZE, FALSE, threadId));
        SetWindowPos(window, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    }
    ~ExtraWindowOfAView() override {
        layer.reset();
        if (IsWindow(window)) PostMessageW(window, WM_CLOSE, 0, 0);
        EXPECT_TRUE(waitForThreadEnd(threadId, thread.get()));
    }

    /// A press and release of the real mouse on a point of the window's client area.
    void click(int x, int y, DWORD down, DWORD up) {
        const CursorAt place(clientToScreen(window, {x, y}));
        INPUT input[2] = {};
        input[0].type = input[1].type = INPUT_MOUSE;
        input[0].mi.dwFlags = down;
        input[1].mi.dwFlags = up;
        CursorAt::hold([&] { EXPECT_EQ(SendInput(2, input, sizeof *input), 2u); });
    }

    std::shared_ptr<Journal> journal = std::make_shared<Journal>();
    std::shared_ptr<RecordingLayer> layer;
    HWND window = nullptr;
    DWORD threadId = 0;
    Core::UniqueKernelHandle thread;
};

TEST_F(ExtraWindowOfAView, Made_EngineGetsTheViewAndThePageFillsTheWindow) {
    const HWND view = layer->getViewWindowHandle();
    ASSERT_TRUE(IsWindow(view));
    EXPECT_NE(view, window);
    EXPECT_EQ(GetParent(view), window);
    EXPECT_EQ(GetWindowThreadProcessId(view, nullptr), threadId);
    RECT client{};
    GetClientRect(window, &client);
    expectPlace(placeIn(window, view), 0, 0, client.right, client.bottom - 45);
    expectPlace(placeIn(window, buttonOf(window)), client.right - 45, client.bottom - 45, client.right, client.bottom);
}

TEST_F(ExtraWindowOfAView, LeftClickOnTheView_ReachesTheLayerAtThatPlace) {
    click(120, 130, MOUSEEVENTF_LEFTDOWN, MOUSEEVENTF_LEFTUP);
    EXPECT_TRUE(journal->waitFor("onMouseButton(0,0,120,130)"));
    EXPECT_TRUE(journal->waitFor("onMouseButton(0,1,120,130)"));
}

TEST_F(ExtraWindowOfAView, RightClickOnTheView_DoesNothingAtAll) {
    click(120, 130, MOUSEEVENTF_RIGHTDOWN, MOUSEEVENTF_RIGHTUP);
    click(50, 60, MOUSEEVENTF_LEFTDOWN, MOUSEEVENTF_LEFTUP);
    ASSERT_TRUE(journal->waitFor("onMouseButton(0,1,50,60)"));
    EXPECT_EQ(journal->count("onMouseButton(2,0,120,130)"), 0u);
    EXPECT_EQ(journal->count("onMouseButton(2,1,120,130)"), 0u);
}

TEST_F(ExtraWindowOfAView, ClickOnTheButton_ClosesTheWindow) {
    RECT client{};
    GetClientRect(window, &client);
    click(client.right - 20, client.bottom - 20, MOUSEEVENTF_LEFTDOWN, MOUSEEVENTF_LEFTUP);
    EXPECT_TRUE(journal->waitFor("onClose"));
    EXPECT_TRUE(waitForThreadEnd(threadId, thread.get()));
    EXPECT_FALSE(IsWindow(window));
}

TEST_F(ExtraWindowOfAView, ViewAskedToClose_ClosesTheWindow) {
    PostMessageW(layer->getViewWindowHandle(), WM_CLOSE, 0, 0);
    EXPECT_TRUE(journal->waitFor("onClose"));
    EXPECT_TRUE(waitForThreadEnd(threadId, thread.get()));
}

TEST_F(ExtraWindowOfAView, LayerDroppedOnAnotherThread_WindowAndViewStand) {
    const HWND view = layer->getViewWindowHandle();
    layer.reset();
    EXPECT_TRUE(IsWindow(window));
    EXPECT_TRUE(IsWindow(view));
    PostMessageW(view, WM_CLOSE, 0, 0);
    EXPECT_TRUE(waitForThreadEnd(threadId, thread.get()));
    EXPECT_FALSE(IsWindow(view));
}

}  // namespace
}  // namespace ZEMO::Test
