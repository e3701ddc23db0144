#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <climits>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "core/posted_text.h"
#include "layers/cursor_restore.h"
#include "layers/messages/pointer_messages.h"
#include "layers/messages/track_mouse_leave.h"
#include "layers/window_messages.h"
#include "render/display_scale.h"
#include "render/pixel_scale.h"
#include "support/debug_log.h"
#include "support/image_bytes.h"
#include "support/import_replaced.h"
#include "support/scratch_directory.h"
#include "window/call_watch.h"
#include "window/cursor_file_for_test.h"
#include "window/window_test_support.h"

namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

using Lines = std::vector<std::string>;

/// The narrow button is smaller than the wide one, so that the choice between them shows.
class TwoSizes : public XButton {
public:
    TwoSizes() : XButton(1.0f) { sizeNarrow = 24; }
};

/// Only what was sent from another thread, that is by the test: the system's own messages to a fresh window (focus,
/// size, a mouse that passes) come at any time.
class OwnLayer : public RecordingLayer {
public:
    OwnLayer(const Options& options, std::shared_ptr<Journal> allLines, std::shared_ptr<Journal> sentLines)
        : RecordingLayer(options, allLines), everything(std::move(allLines)), sent(std::move(sentLines)) {
        setListener([this](const std::string& line) {
            everything->add(line);
            if (InSendMessageEx(nullptr) & ISMEX_SEND) sent->add(line);
        });
    }

    bool twoSizes = false;

private:
    std::unique_ptr<IXbtn> makeCloseButton() const override {
        return twoSizes ? std::make_unique<TwoSizes>() : RecordingLayer::makeCloseButton();
    }
    std::shared_ptr<Journal> everything, sent;
};

constexpr LPARAM kAt = MAKELPARAM(11, 22);

class ZemoWindowOwn : public testing::Test {
protected:
    ~ZemoWindowOwn() override { closeAll(); }

    void make(RecordingLayer::Options options = {}) {
        closeAll();
        options.style = WindowStyle::Window;
        layer = ZEMOWindow::create<OwnLayer>(options, everything, sent);
        layer->setCustomCursor(nullptr);
        window = layer->getWindowHandle();
        threadId = GetWindowThreadProcessId(window, nullptr);
        thread = OpenThread(SYNCHRONIZE, FALSE, threadId);
    }

    void closeAll() {
        layer.reset();
        if (!thread) return;
        if (IsWindow(window)) PostMessageW(window, WM_CLOSE, 0, 0);
        EXPECT_TRUE(waitForThreadEnd(threadId, thread));
        CloseHandle(thread);
        thread = nullptr;
        everything->clear();
        sent->clear();
    }

    struct Outcome {
        Lines calls;
        LRESULT result = 0;
        bool byDefault = false;  ///< with a watch only
    };
    static constexpr LRESULT kDefaultAnswer = 4711;
    /// With a watch, the default procedure's answer to this message is kDefaultAnswer.
    Outcome send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0, DefaultProcedureWatch* defaults = nullptr) {
        Outcome got;
        CursorAt::hold([&] {
            sent->clear();
            DWORD_PTR answer = 0;
            if (defaults) defaults->answer(message, wParam, lParam, kDefaultAnswer);
            EXPECT_TRUE(SendMessageTimeoutW(window, message, wParam, lParam, SMTO_NORMAL, 20000, &answer)) << message;
            got = {sent->lines(), static_cast<LRESULT>(answer), defaults && defaults->answered()};
        });
        return got;
    }

    /// A press at `place` of a window that was made by `prepare` and then got this width brings `wanted`. The window
    /// manager may answer an earlier size or place late, and the window has that again for a while or for good; so one
    /// of ten windows must show it. Says what came last.
    testing::AssertionResult pressBrings(const Lines& wanted, int width, const std::function<void()>& prepare,
                                         const std::function<POINT()>& place) {
        Lines calls;
        LONG last = 0;
        for (int windows = 0; windows < 10; ++windows) {
            prepare();
            EXPECT_TRUE(SetWindowPos(window, nullptr, 40, 40, width, 500, SWP_NOZORDER));
            const CursorAt at([&] { return onScreen(place()); });
            calls = send(WM_LBUTTONDOWN, MK_LBUTTON, kAt).calls;
            RECT frame{};
            GetWindowRect(window, &frame);
            last = frame.right - frame.left;
            if (last == width && calls == wanted) return testing::AssertionSuccess();
        }
        return testing::AssertionFailure() << testing::PrintToString(calls) << " in a window " << last << " wide";
    }

    POINT onScreen(POINT client) { return clientToScreen(window, client); }

    std::shared_ptr<Journal> everything = std::make_shared<Journal>();
    std::shared_ptr<Journal> sent = std::make_shared<Journal>();
    std::shared_ptr<OwnLayer> layer;
    HWND window = nullptr;
    DWORD threadId = 0;
    HANDLE thread = nullptr;
};

constexpr LPARAM kNegative = MAKELPARAM(0xFFFB, 0xFF38);  // (-5, -200)

// --- the window ---

TEST_F(ZemoWindowOwn, Made_WindowStandsBeforeTheConstructorReturns) {
    const DebugLogCapture log;
    make({.size = {640, 400}, .title = "A title \xE4"});
    ASSERT_TRUE(IsWindow(window));
    EXPECT_TRUE(IsWindowVisible(window));
    EXPECT_EQ(layer->getWindowStyle(), WindowStyle::Window);
    EXPECT_EQ(layer->getViewWindowHandle(), window);
    EXPECT_NE(threadId, GetCurrentThreadId());
    EXPECT_NE(GetWindowLongPtrW(window, GWLP_USERDATA), 0);

    wchar_t text[64] = {};
    GetClassNameW(window, text, 64);
    EXPECT_STREQ(text, L"ZEMOExtraWindowClass");
    GetWindowTextW(window, text, 64);
    EXPECT_STREQ(text, L"A title \u00E4");  // byte for byte
    EXPECT_EQ(GetWindowLongPtrW(window, GWL_STYLE) & WS_OVERLAPPEDWINDOW, WS_OVERLAPPEDWINDOW);
    EXPECT_EQ(GetWindowLongPtrW(window, GWL_EXSTYLE) & (WS_EX_TOPMOST | WS_EX_TOOLWINDOW), 0);
    EXPECT_EQ(GetClassLongPtrW(window, GCL_STYLE), static_cast<ULONG_PTR>(CS_DBLCLKS));
    EXPECT_EQ(GetClassLongPtrW(window, GCLP_HCURSOR), reinterpret_cast<ULONG_PTR>(LoadCursorW(nullptr, IDC_ARROW)));

    const float scale = getWindowScale(nullptr);
    RECT frame{};
    GetWindowRect(window, &frame);
    EXPECT_EQ(frame.right - frame.left, logicalToDevice(640, scale));
    EXPECT_EQ(frame.bottom - frame.top, logicalToDevice(400, scale));
    EXPECT_EQ(frame.left, (GetSystemMetrics(SM_CXSCREEN) - (frame.right - frame.left)) / 2);
    EXPECT_EQ(frame.top, (GetSystemMetrics(SM_CYSCREEN) - (frame.bottom - frame.top)) / 2);

    EXPECT_EQ(log.count("create window style: WindowStyle::Window\n"), 1u) << log.dump();
}

TEST_F(ZemoWindowOwn, SecondWindow_ReusesTheClass) {
    make();
    auto otherEverything = std::make_shared<Journal>();
    RecordingLayer::Options options;
    options.style = WindowStyle::Window;
    auto other = ZEMOWindow::create<OwnLayer>(options, otherEverything, std::make_shared<Journal>());
    ASSERT_TRUE(IsWindow(other->getWindowHandle()));
    const DWORD otherThread = GetWindowThreadProcessId(other->getWindowHandle(), nullptr);
    EXPECT_NE(otherThread, threadId);
    const HANDLE handle = OpenThread(SYNCHRONIZE, FALSE, otherThread);
    PostMessageW(other->getWindowHandle(), WM_CLOSE, 0, 0);
    EXPECT_TRUE(waitForThreadEnd(otherThread, handle));
    CloseHandle(handle);
    EXPECT_TRUE(IsWindow(window));
}

TEST_F(ZemoWindowOwn, Parent_BecomesTheOwner) {
    GameWindow game;
    make({.parent = game.handle()});
    EXPECT_EQ(GetWindow(window, GW_OWNER), game.handle());
    closeAll();
}

TEST_F(ZemoWindowOwn, WindowThatCannotBeCreated_LeavesNoHandleAndNoCrash) {
    RecordingLayer::Options options;
    options.style = WindowStyle::Window;
    options.parent = reinterpret_cast<HWND>(0x7FFF1234);  // no such window
    auto lone = ZEMOWindow::create<OwnLayer>(options, everything, sent);
    EXPECT_EQ(lone->getWindowHandle(), nullptr);
    EXPECT_EQ(lone->getViewWindowHandle(), nullptr);
    lone->createCloseButton([] {});
    lone.reset();
}

TEST_F(ZemoWindowOwn, SteamDeck_MakesTheClassBackgroundBlack) {
    make({.steamDeck = true});
    const auto brush = reinterpret_cast<HBRUSH>(GetClassLongPtrW(window, GCLP_HBRBACKGROUND));
    LOGBRUSH description{};
    ASSERT_NE(GetObjectW(brush, sizeof description, &description), 0);
    EXPECT_EQ(description.lbStyle, static_cast<UINT>(BS_SOLID));
    EXPECT_EQ(description.lbColor, 0u);
}

// Where the system looks for a relative name differs, and the library's own icon may lie there: the file to be read
// instead is named here, the rest of the call goes on as it came.
std::wstring iconFile;
struct IconCall {
    HINSTANCE module;
    std::wstring name;
    UINT type;
    int width, height;
    UINT flags;
};
std::optional<IconCall> iconCall;
HANDLE WINAPI redirectedLoadImage(HINSTANCE module, LPCWSTR name, UINT type, int width, int height, UINT flags) {
    static const auto system = systemFunction<decltype(LoadImageW)>(L"user32.dll", "LoadImageW");
    if (!IS_INTRESOURCE(name) && std::wstring_view(name).ends_with(L"zemowindow.ico")) {
        iconCall = {module, name, type, width, height, flags};
        name = iconFile.c_str();
    }
    return system(module, name, type, width, height, flags);
}

/// The class is registered anew, with an icon file of the test's or without one.
class ZemoWindowOwnClass : public ZemoWindowOwn {
protected:
    ZemoWindowOwnClass() {
        forgetClass();
        iconCall.reset();
        iconFile = (directory.path() / "window.ico").wstring();
    }
    ~ZemoWindowOwnClass() override {
        closeAll();
        forgetClass();
    }
    static void forgetClass() {
        EXPECT_TRUE(UnregisterClassW(L"ZEMOExtraWindowClass", GetModuleHandleW(nullptr)) ||
                    GetLastError() == ERROR_CLASS_DOES_NOT_EXIST);
    }

    ScratchDirectory directory;
    ImportReplaced replaced{"LoadImageW", redirectedLoadImage};
};

TEST_F(ZemoWindowOwnClass, Registered_IconIsAskedForByItsRelativeName) {
    make();
    ASSERT_TRUE(iconCall);
    EXPECT_EQ(iconCall->module, nullptr);
    EXPECT_EQ(iconCall->name, L"resources/zemowindow.ico");
    EXPECT_EQ(iconCall->type, static_cast<UINT>(IMAGE_ICON));
    EXPECT_EQ(iconCall->width, 0);
    EXPECT_EQ(iconCall->height, 0);
    EXPECT_EQ(iconCall->flags, static_cast<UINT>(LR_LOADFROMFILE | LR_DEFAULTSIZE | LR_SHARED));
}

TEST_F(ZemoWindowOwnClass, IconFile_IsTheLargeAndTheSmallIcon) {
    const auto orange = [](int, int) { return 0xFFFF8040u; };
    directory.write(L"window.ico", makeCursorFile(1, {{32, 32, orange}}));
    make();
    const auto icon = reinterpret_cast<HICON>(GetClassLongPtrW(window, GCLP_HICON));
    EXPECT_EQ(reinterpret_cast<HICON>(GetClassLongPtrW(window, GCLP_HICONSM)), icon);
    ICONINFO info{};
    ASSERT_TRUE(GetIconInfo(icon, &info));
    EXPECT_TRUE(info.fIcon);
    const HDC screen = GetDC(nullptr);
    const HDC memory = CreateCompatibleDC(screen);
    const HGDIOBJ formerly = SelectObject(memory, info.hbmColor);
    EXPECT_EQ(GetPixel(memory, 16, 16), RGB(0xFF, 0x80, 0x40));
    SelectObject(memory, formerly);
    DeleteDC(memory);
    ReleaseDC(nullptr, screen);
    DeleteObject(info.hbmColor);
    DeleteObject(info.hbmMask);
}

TEST_F(ZemoWindowOwnClass, SecondWindow_HasTheFirstOnesIconAndLoadsNone) {
    directory.write(L"window.ico", makeCursorFile(1, {{32, 32, [](int, int) { return 0xFFFF8040u; }}}));
    make();
    const ULONG_PTR icon = GetClassLongPtrW(window, GCLP_HICON);
    EXPECT_NE(icon, 0u);
    iconCall.reset();
    make();
    EXPECT_FALSE(iconCall) << "a shared icon can't be freed";
    EXPECT_EQ(GetClassLongPtrW(window, GCLP_HICON), icon);
}

TEST_F(ZemoWindowOwnClass, NoIconFile_WindowWithoutAnIcon) {
    make();
    ASSERT_TRUE(IsWindow(window));
    EXPECT_EQ(GetClassLongPtrW(window, GCLP_HICON), 0u);
    EXPECT_EQ(GetClassLongPtrW(window, GCLP_HICONSM), 0u);
}

TEST_F(ZemoWindowOwnClass, Registered_BackgroundIsTheValueOne) {
    make();
    EXPECT_EQ(GetClassLongPtrW(window, GCLP_HBRBACKGROUND), 1u);
}

// --- the size ---

std::atomic<int> createdWidth, createdHeight;
HWND WINAPI watchedCreateWindow(DWORD exStyle, LPCWSTR name, LPCWSTR title, DWORD style, int x, int y, int width,
                                int height, HWND parent, HMENU menu, HINSTANCE instance, LPVOID argument) {
    static const auto system = systemFunction<decltype(CreateWindowExW)>(L"user32.dll", "CreateWindowExW");
    createdWidth = width;
    createdHeight = height;
    return system(exStyle, name, title, style, x, y, width, height, parent, menu, instance, argument);
}

TEST_F(ZemoWindowOwn, SizeOfAnyTwoNumbers_WindowStandsAndAnswers) {
    const float scale = getWindowScale(nullptr);
    for (const Size size : {Size{INT_MAX, INT_MAX}, Size{0, 0}, Size{-1, -1}, Size{INT_MIN, INT_MIN},
                            Size{INT_MIN, 300}, Size{400, INT_MAX}}) {
        SCOPED_TRACE(text("%d, %d", size.width, size.height));
        const ImportReplaced replaced("CreateWindowExW", watchedCreateWindow);
        make({.size = size});
        EXPECT_EQ(createdWidth, logicalToDevice(size.width, scale));
        EXPECT_EQ(createdHeight, logicalToDevice(size.height, scale));
        ASSERT_TRUE(IsWindow(window));
        EXPECT_EQ(send(WM_CHAR, 'A', 1).calls, Lines{"onKey(258,41,1)"});
        closeAll();
    }
}

// The system's scale is asked for once in a process, so that another one needs a process of its own: this program runs
// the test once more there, with another answer for the dots of the screen.
int WINAPI fakeDeviceCaps(HDC dc, int index) {
    static const auto system = systemFunction<decltype(GetDeviceCaps)>(L"gdi32.dll", "GetDeviceCaps");
    return index == LOGPIXELSX ? 144 : system(dc, index);
}

int madeAtAnotherScale() {
    const ImportReplaced replaced("GetDeviceCaps", fakeDeviceCaps);
    RecordingLayer::Options options;
    options.style = WindowStyle::Window;
    options.size = {401, 300};
    auto layer = ZEMOWindow::create<RecordingLayer>(options, std::make_shared<Journal>());
    RECT frame{};
    GetWindowRect(layer->getWindowHandle(), &frame);
    std::fprintf(stderr, "%ld by %ld\n", frame.right - frame.left, frame.bottom - frame.top);
    return frame.right - frame.left == 601 && frame.bottom - frame.top == 450 ? 42 : 43;
}

TEST_F(ZemoWindowOwn, SystemScaleOfOneAndAHalf_DeviceSizeIsOneAndAHalfTimesTheLogical) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(ExitProcess(static_cast<UINT>(madeAtAnotherScale())), testing::ExitedWithCode(42), "601 by 450");
}

// --- a constructor that fails ---

#ifdef __MINGW32__

int __cdecl failingStat(const wchar_t* path, struct _stat64* result) {
    static const auto system = systemFunction<decltype(_wstat64)>(L"ucrtbase.dll", "_wstat64");
    if (!std::wstring_view(path).ends_with(L"customcursor.cur")) return system(path, result);
    errno = EACCES;
    return -1;
}

// No real file gives such a status everywhere, so the C runtime's answer for this one name is the test's.
TEST_F(ZemoWindowOwn, CursorLoaderThatThrowsOnTheWindowsThread_ConstructorThrowsAndTheWindowIsGone) {
    RecordingLayer::Options options;
    options.style = WindowStyle::Window;
    options.title = "a window that must not stay";
    // Nobody knows when that window's thread has ended: a connection to the display that stays keeps the display's
    // library from freeing its state then, while the next window's thread opens its own.
    const GameWindow connected;
    {
        const ImportReplaced replaced("_wstat64", failingStat);
        EXPECT_THROW(ZEMOWindow::create<OwnLayer>(options, everything, sent), std::filesystem::filesystem_error);
        EXPECT_EQ(FindWindowW(L"ZEMOExtraWindowClass", L"a window that must not stay"), nullptr);
    }
    EXPECT_EQ(CursorRestore::useCount(), 0);
    make(options);
    EXPECT_EQ(FindWindowW(L"ZEMOExtraWindowClass", L"a window that must not stay"), window);
}

#endif

TEST_F(ZemoWindowOwn, CursorFileBesideTheLibrary_IsLoadedBeforeTheConstructorReturns) {
    const CursorFileBesideTheProgram file;
    RecordingLayer::Options options;
    options.style = WindowStyle::Window;
    auto withFile = ZEMOWindow::create<OwnLayer>(options, everything, sent);
    EXPECT_NE(withFile->getCustomCursor(), nullptr);
    const DWORD id = GetWindowThreadProcessId(withFile->getWindowHandle(), nullptr);
    const HANDLE handle = OpenThread(SYNCHRONIZE, FALSE, id);
    PostMessageW(withFile->getWindowHandle(), WM_CLOSE, 0, 0);
    EXPECT_TRUE(waitForThreadEnd(id, handle));
    CloseHandle(handle);
}

// --- the table ---

TEST_F(ZemoWindowOwn, EveryMessageOfTheTable_CallsItsOperationAndAnswersAsTold) {
    make();
    const CursorAt away(5, 5);
    RECT c{};
    GetClientRect(window, &c);
    const std::string client = text("%ld,%ld,%ld,%ld", c.left, c.top, c.right, c.bottom);
    struct Row {
        const char* name;
        UINT message;
        WPARAM wParam;
        LPARAM lParam;
        Lines calls;
        bool byDefault = false;  ///< the system's default procedure answers; else the answer is 0
    };
    const std::vector<Row> rows = {
        {"size", WM_SIZE, SIZE_RESTORED, MAKELPARAM(321, 45), {"onSize(" + client + ",321,45)"}},
        {"activate", WM_ACTIVATE, WA_ACTIVE, 0, {"onActivated"}},
        {"inactive but minimised", WM_ACTIVATE, MAKEWPARAM(WA_INACTIVE, 1), 0, {"onActivated"}},
        {"deactivate", WM_ACTIVATE, WA_INACTIVE, 0, {"onDeactivated"}},
        {"focus lost", WM_KILLFOCUS, 0, 0, {"onKillFocus"}},
        {"frame double click", WM_NCLBUTTONDBLCLK, HTNOWHERE, 0, {"onMaximizeRestore"}, true},
        {"key down", WM_KEYDOWN, 'A', 0x1E0001, {"onKey(256,41,1e0001)"}},
        {"key up", WM_KEYUP, 'A', 0xC01E0001, {"onKey(257,41,c01e0001)"}},
        {"character", WM_CHAR, 0xAC00, 1, {"onKey(258,ac00,1)"}},
        {"system key down", WM_SYSKEYDOWN, VK_F10, 1, {"onKey(260,79,1)"}},
        {"system key up", WM_SYSKEYUP, VK_F10, 1, {"onKey(261,79,1)"}},
        {"system character", WM_SYSCHAR, 'x', 1, {"onKey(262,78,1)"}},
        {"composition start", WM_IME_STARTCOMPOSITION, 0, 0, {"onImeStartComposition"}},
        {"composition end", WM_IME_ENDCOMPOSITION, 0, 0, {"onImeEndComposition"}},
        {"composition", WM_IME_COMPOSITION, 0, 0x0808, {"onImeComposition(808)"}},
        {"mouse move", WM_MOUSEMOVE, MK_LBUTTON | MK_SHIFT, kNegative, {moveLine(-5, -200, MK_LBUTTON | MK_SHIFT)}},
        {"left down", WM_LBUTTONDOWN, MK_LBUTTON, kAt, {"onMouseButton(0,0,11,22)"}},
        {"left up", WM_LBUTTONUP, 0, kNegative, {"onMouseButton(0,1,-5,-200)"}},
        {"right down", WM_RBUTTONDOWN, MK_RBUTTON, kAt, {"onMouseButton(2,0,11,22)"}},
        {"right up", WM_RBUTTONUP, 0, kAt, {"onMouseButton(2,1,11,22)"}},
        {"wheel", WM_MOUSEWHEEL, MAKEWPARAM(MK_CONTROL, 120), kNegative, {"onMouseWheel(780008,-5,-200,0,0)"}},
        {"input method context", WM_IME_SETCONTEXT, 1, ISC_SHOWUIALL, {"onImeSetContext"}},
        {"script without text", 1224, 0, 0, {}},
        {"input method on", 1229, 1, 0, {"onImeFocusChange(1)"}},
        {"input method off", 1229, 0, 0, {"onImeFocusChange(0)"}},
        {"bounds", 1230, 0, 0, {"onImeBoundsChanged"}},
        // No handling in this path:
        {"left double click", WM_LBUTTONDBLCLK, MK_LBUTTON, kAt, {}, true},
        {"horizontal wheel", WM_MOUSEHWHEEL, MAKEWPARAM(0, 120), kAt, {}, true},
        {"external text", 1225, 0, 0, {}, true},
        {"remote move", 1226, 1, kAt, {}, true},
        {"remote wheel", 1227, MAKEWPARAM(0, 120), kAt, {}, true},
        {"remote press", 1228, 1, kAt, {}, true},
        {"raw input", WM_INPUT, 0, 0, {}, true},
    };
    ASSERT_EQ(rows.size(), 33u);
    DefaultProcedureWatch defaults(window);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const Outcome got = send(row.message, row.wParam, row.lParam, &defaults);
        EXPECT_EQ(got.calls, row.calls);
        EXPECT_EQ(got.result, row.byDefault ? kDefaultAnswer : 0);
        EXPECT_EQ(got.byDefault, row.byDefault);
    }
}

TEST_F(ZemoWindowOwn, MouseLeaveState_DoesNotHoldBackAMove) {
    make();
    trackMouseLeave = true;
    EXPECT_EQ(send(WM_MOUSEMOVE, 0, kAt).calls, Lines{moveLine(11, 22, 0)});
    EXPECT_TRUE(trackMouseLeave);
}

TEST_F(ZemoWindowOwn, MaximizeAndRestore_AreToldAndThenDone) {
    make();
    EXPECT_EQ(send(WM_SYSCOMMAND, SC_MAXIMIZE).calls.front(), "onMaximizeRestore");
    EXPECT_TRUE(IsZoomed(window));
    EXPECT_EQ(send(WM_SYSCOMMAND, SC_RESTORE).calls.front(), "onMaximizeRestore");
    EXPECT_FALSE(IsZoomed(window));
    for (const std::string& line : send(WM_SYSCOMMAND, SC_MINIMIZE).calls) EXPECT_NE(line, "onMaximizeRestore");
    EXPECT_TRUE(IsIconic(window));
}

TEST_F(ZemoWindowOwn, CharacterPosition_IsAnsweredWithOneOrByTheDefault) {
    make();
    DefaultProcedureWatch defaults(window);
    const Lines asked{text("onImeQueryCharPosition(%p)", reinterpret_cast<void*>(0x1234))};
    const Outcome known = send(WM_IME_REQUEST, IMR_QUERYCHARPOSITION, 0x1234, &defaults);
    EXPECT_EQ(known.calls, asked);
    EXPECT_EQ(known.result, 1);
    EXPECT_FALSE(known.byDefault);
    layer->charPositionKnown = false;
    const Outcome unknown = send(WM_IME_REQUEST, IMR_QUERYCHARPOSITION, 0x1234, &defaults);
    EXPECT_EQ(unknown.calls, asked);
    EXPECT_EQ(unknown.result, kDefaultAnswer);
    const Outcome other = send(WM_IME_REQUEST, IMR_COMPOSITIONWINDOW, 0, &defaults);
    EXPECT_EQ(other.calls, Lines{});
    EXPECT_EQ(other.result, kDefaultAnswer);
}

TEST_F(ZemoWindowOwn, PostedScript_ReachesTheLayerOnce) {
    make();
    const std::string payload(1000, 'p');
    ASSERT_TRUE(Core::postText(window, kMessageExternalScript, payload));
    EXPECT_TRUE(everything->waitFor("onExternalScript(" + payload + ")"));
    EXPECT_EQ(everything->count("onExternalScript(" + payload + ")"), 1u);
}

TEST_F(ZemoWindowOwn, PostedFromAnotherThread_ArriveInOrderOnTheWindowsThread) {
    make();
    PostMessageW(window, WM_KEYDOWN, 'Q', 1);
    PostMessageW(window, kMessageImeFocus, 1, 0);
    PostMessageW(window, kMessageImeBounds, 0, 0);
    ASSERT_TRUE(everything->waitFor("onImeBoundsChanged"));
    const Lines lines = everything->lines();
    const auto key = std::find(lines.begin(), lines.end(), "onKey(256,51,1)");
    const auto focus = std::find(lines.begin(), lines.end(), "onImeFocusChange(1)");
    EXPECT_NE(key, lines.end());
    EXPECT_LT(key, focus);
}

// --- the cursor ---

TEST_F(ZemoWindowOwn, SetCursor_CustomThenButtonThenDefault) {
    make();
    RECT frame{};
    GetWindowRect(window, &frame);
    const WPARAM self = reinterpret_cast<WPARAM>(window);
    const LPARAM inClient = MAKELPARAM(HTCLIENT, WM_MOUSEMOVE);
    std::atomic<HCURSOR> seen = nullptr;
    layer->duringKey = [&] { seen = GetCursor(); };  // read on the window's thread
    const auto cursorAfter = [&] {
        send(WM_KEYDOWN, 1, 1);
        return seen.load();
    };
    const HCURSOR custom = LoadCursorW(nullptr, IDC_UPARROW);
    layer->setCustomCursor(custom);
    {
        const CursorAt inside([this] { return onScreen(contentPoint(window)); });
        EXPECT_EQ(send(WM_SETCURSOR, self, inClient).result, 1);
        EXPECT_EQ(cursorAfter(), custom);
    }
    {
        const CursorAt onEdge(frame.left + 10, (frame.top + frame.bottom) / 2);
        EXPECT_EQ(send(WM_SETCURSOR, self, inClient).result, 0);  // the default: the class's arrow
        EXPECT_EQ(cursorAfter(), LoadCursorW(nullptr, IDC_ARROW));
    }
    layer->setCustomCursor(nullptr);
    layer->createCloseButton([] {});
    {
        const CursorAt onButton([this] { return onScreen(closeButtonPoint(window)); });
        EXPECT_EQ(send(WM_SETCURSOR, self, inClient).result, 1);
    }
    {
        const CursorAt inside([this] { return onScreen(contentPoint(window)); });
        EXPECT_EQ(send(WM_SETCURSOR, self, inClient).result, 0);
        // No private form here: a page's cursor is not taken from the message.
        const LPARAM beam = reinterpret_cast<LPARAM>(LoadCursorW(nullptr, IDC_IBEAM));
        send(WM_SETCURSOR, kPageCursorMarker, beam);
        EXPECT_NE(cursorAfter(), reinterpret_cast<HCURSOR>(beam));
    }
}

// --- the close button ---

TEST_F(ZemoWindowOwn, CloseHit_ClearsTheUserDataFirstAndThePageSeesNothing) {
    make();
    std::atomic<LONG_PTR> userDataInClick = -1;
    layer->createCloseButton([&] {
        userDataInClick = GetWindowLongPtrW(window, GWLP_USERDATA);
        sent->add("clicked");
    });
    const CursorAt onButton([this] { return onScreen(closeButtonPoint(window)); });
    DWORD_PTR answer = 1;
    CursorAt::hold([&] { SendMessageTimeoutW(window, WM_LBUTTONDOWN, MK_LBUTTON, kAt, SMTO_NORMAL, 20000, &answer); });
    EXPECT_EQ(answer, 0u);
    EXPECT_EQ(sent->count("clicked"), 1u);
    EXPECT_EQ(sent->count("onMouseButton(0,0,11,22)"), 0u);
    EXPECT_EQ(userDataInClick, 0);
    // From here on the window does not look for the layer, which is still there.
    sent->clear();
    send(WM_KEYDOWN, 'A', 1);
    EXPECT_EQ(sent->lines(), Lines{});
}

TEST_F(ZemoWindowOwn, CloseClickThatDropsTheLastReference_EndsTheLayerOnTheWindowsThread) {
    make();
    const std::string destroyed = text("destroyed on thread %lu", threadId);
    layer->createCloseButton([this] {
        layer.reset();
        everything->add("clicked");
    });
    const CursorAt onButton([this] { return onScreen(closeButtonPoint(window)); });
    CursorAt::hold([&] {
        DWORD_PTR answer = 0;
        SendMessageTimeoutW(window, WM_LBUTTONDOWN, MK_LBUTTON, kAt, SMTO_NORMAL, 20000, &answer);
    });
    EXPECT_TRUE(everything->waitFor("clicked"));
    EXPECT_TRUE(everything->waitFor(destroyed));
    EXPECT_TRUE(IsWindow(window));
}

TEST_F(ZemoWindowOwn, Resized_TheButtonIsFoundAtItsNewPlace) {
    const auto prepare = [this] {
        make();
        layer->createCloseButton([this] { sent->add("clicked"); });
    };
    EXPECT_TRUE(pressBrings({"clicked"}, 900, prepare, [this] { return closeButtonPoint(window); }));
}

TEST_F(ZemoWindowOwn, ResizedAcrossTheThreshold_ButtonTakesItsOtherSize) {
    struct Case {
        int before, after;
        LONG fromRight, fromTop;  ///< within the wide button and outside of the narrow one
        bool hit;
    };
    for (const Case& one : {Case{640, 1000, 55, 55, true}, Case{1000, 640, 55, 55, false}}) {
        SCOPED_TRACE(one.after);
        const auto prepare = [&] {
            make();
            layer->twoSizes = true;
            ASSERT_TRUE(SetWindowPos(window, nullptr, 40, 40, one.before, 500, SWP_NOZORDER));
            layer->createCloseButton([this] { sent->add("clicked"); });
        };
        const auto place = [&] {
            RECT client{};
            GetClientRect(window, &client);
            return POINT{client.right - one.fromRight, one.fromTop};
        };
        EXPECT_TRUE(pressBrings({one.hit ? "clicked" : "onMouseButton(0,0,11,22)"}, one.after, prepare, place));
    }
}

// --- pointer messages: GetPointerInfo is replaced, because a posted pointer message carries no data here ---

struct FakePointer {
    bool known = true;
    POINTER_INPUT_TYPE type = PT_TOUCH;
    POINT screen{};
    POINTER_BUTTON_CHANGE_TYPE change = POINTER_CHANGE_NONE;
};
FakePointer fakePointer;

BOOL WINAPI fakePointerInfo(UINT32, POINTER_INFO* info) {
    if (!fakePointer.known) return FALSE;
    *info = {};
    info->pointerType = fakePointer.type;
    info->ptPixelLocation = fakePointer.screen;
    info->ButtonChangeType = fakePointer.change;
    info->pointerFlags = POINTER_FLAG_SECONDBUTTON;
    return TRUE;
}

class ZemoWindowOwnPointer : public ZemoWindowOwn {
protected:
    void makePointer() {
        make({.steamOverlayActive = true});  // not asked for in this path
        fakePointer = {};
        fakePointer.screen = onScreen({33, 44});
    }
    ~ZemoWindowOwnPointer() override { closeAll(); }

private:
    ImportReplaced pointerInfo{"GetPointerInfo", &fakePointerInfo};
};

constexpr WPARAM kPointer7 = MAKEWPARAM(7, 0x1234);

TEST_F(ZemoWindowOwnPointer, EveryRowOfTheTable_CallsItsOperationAndAnswersZero) {
    makePointer();
    const CursorAt away(5, 5);
    struct Row {
        const char* name;
        POINTER_INPUT_TYPE type;
        UINT message;
        POINTER_BUTTON_CHANGE_TYPE change;
        std::string call;
    };
    const std::vector<Row> rows = {
        {"mouse down", PT_MOUSE, WM_POINTERDOWN, POINTER_CHANGE_FIRSTBUTTON_DOWN, "onMouseButton(0,0,33,44)"},
        {"mouse right down", PT_MOUSE, WM_POINTERDOWN, POINTER_CHANGE_SECONDBUTTON_DOWN, "onMouseButton(2,0,33,44)"},
        {"mouse third down", PT_MOUSE, WM_POINTERDOWN, POINTER_CHANGE_THIRDBUTTON_DOWN, "onMouseButton(0,0,33,44)"},
        {"mouse up", PT_MOUSE, WM_POINTERUP, POINTER_CHANGE_FIRSTBUTTON_UP, "onMouseButton(0,1,33,44)"},
        {"mouse right up", PT_MOUSE, WM_POINTERUP, POINTER_CHANGE_SECONDBUTTON_UP, "onMouseButton(2,1,33,44)"},
        {"mouse move", PT_MOUSE, WM_POINTERUPDATE, POINTER_CHANGE_NONE, moveLine(33, 44, MK_RBUTTON)},
        {"touch down", PT_TOUCH, WM_POINTERDOWN, POINTER_CHANGE_FIRSTBUTTON_DOWN, "onPointer(582,7,33,44)"},
        {"touch move", PT_TOUCH, WM_POINTERUPDATE, POINTER_CHANGE_NONE, "onPointer(581,7,33,44)"},
        {"touch up", PT_TOUCH, WM_POINTERUP, POINTER_CHANGE_FIRSTBUTTON_UP, "onPointer(583,7,33,44)"},
        {"pen right down", PT_PEN, WM_POINTERDOWN, POINTER_CHANGE_SECONDBUTTON_DOWN, "onPointer(582,7,33,44)"},
    };
    ASSERT_EQ(rows.size(), 10u);
    DefaultProcedureWatch defaults(window);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        fakePointer.type = row.type;
        fakePointer.change = row.change;
        const Outcome got = send(row.message, kPointer7, 0, &defaults);
        EXPECT_EQ(got.calls, Lines{row.call});
        EXPECT_EQ(got.result, 0);
        EXPECT_FALSE(got.byDefault);
    }
    fakePointer.known = false;
    for (const UINT message : {WM_POINTERDOWN, WM_POINTERUPDATE, WM_POINTERUP}) {
        const Outcome got = send(message, kPointer7, 0, &defaults);
        EXPECT_EQ(got.calls, Lines{});
        EXPECT_EQ(got.result, 0);
        EXPECT_FALSE(got.byDefault);
    }
}

TEST_F(ZemoWindowOwnPointer, TouchOnTheCloseButton_ClicksAndKeepsTheUserData) {
    makePointer();
    layer->createCloseButton([this] { sent->add("clicked"); });
    const CursorAt onButton([this] { return onScreen(closeButtonPoint(window)); });
    for (const UINT message : {WM_POINTERDOWN, WM_POINTERUPDATE, WM_POINTERUP})
        EXPECT_EQ(send(message, kPointer7, 0).calls, Lines{"clicked"});
    EXPECT_NE(GetWindowLongPtrW(window, GWLP_USERDATA), 0);
    fakePointer.type = PT_MOUSE;
    EXPECT_EQ(send(WM_POINTERUP, kPointer7, 0).calls, Lines{"onMouseButton(0,1,33,44)"});
    EXPECT_EQ(send(WM_POINTERUPDATE, kPointer7, 0).calls, Lines{moveLine(33, 44, MK_RBUTTON)});
}

TEST_F(ZemoWindowOwnPointer, MousePressOnTheCloseButton_ClearsTheUserDataAndClicks) {
    makePointer();
    layer->createCloseButton([this] { sent->add(text("clicked %d", GetWindowLongPtrW(window, GWLP_USERDATA) != 0)); });
    const CursorAt onButton([this] { return onScreen(closeButtonPoint(window)); });
    fakePointer.type = PT_MOUSE;
    fakePointer.change = POINTER_CHANGE_SECONDBUTTON_DOWN;
    CursorAt::hold([&] {
        DWORD_PTR answer = 0;
        SendMessageTimeoutW(window, WM_POINTERDOWN, kPointer7, 0, SMTO_NORMAL, 20000, &answer);
    });
    EXPECT_EQ(sent->lines(), Lines{"clicked 0"});
}

// --- the end ---

TEST_F(ZemoWindowOwn, Closed_IsToldThenDestroyedAndTheThreadEnds) {
    const DebugLogCapture log;
    make();
    PostMessageW(window, WM_CLOSE, 0, 0);
    ASSERT_TRUE(waitForThreadEnd(threadId, thread));
    EXPECT_FALSE(IsWindow(window));
    EXPECT_EQ(everything->count("onClose"), 1u);
    EXPECT_EQ(everything->count("onDestroy"), 0u);  // onClose is the notice
    EXPECT_EQ(log.count("ZEMOWindow WM Close"), 1u) << log.dump();
    EXPECT_EQ(log.count("Post Message Destroy"), 1u) << log.dump();
    layer->clickCloseButton();
    layer.reset();  // the window is gone long since
}

TEST_F(ZemoWindowOwn, LayerGone_WindowStaysUntilItsCloseAndTheThreadEndsThen) {
    make();
    layer.reset();
    EXPECT_EQ(GetWindowLongPtrW(window, GWLP_USERDATA), 0);
    EXPECT_TRUE(IsWindow(window));
    EXPECT_TRUE(IsWindowVisible(window));
    for (const UINT message : {WM_KEYDOWN, WM_MOUSEMOVE, WM_LBUTTONDOWN, WM_SIZE, WM_SETCURSOR, WM_IME_SETCONTEXT,
                               WM_ACTIVATE, WM_POINTERDOWN}) {
        DWORD_PTR answer = 0;
        EXPECT_TRUE(SendMessageTimeoutW(window, message, 0, 0, SMTO_NORMAL, 20000, &answer)) << message;
    }
    EXPECT_TRUE(IsWindow(window));
    PostMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_TRUE(waitForThreadEnd(threadId, thread));
    EXPECT_FALSE(IsWindow(window));
}

TEST_F(ZemoWindowOwn, LastReferenceDroppedDuringAMessage_LayerLivesUntilTheMessageIsDone) {
    make();
    const HANDLE entered = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    const HANDLE leave = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    layer->duringKey = [&] {
        SetEvent(entered);
        WaitForSingleObject(leave, 20000);
        everything->add("key done");
    };
    PostMessageW(window, WM_KEYDOWN, 'A', 1);
    ASSERT_EQ(WaitForSingleObject(entered, 20000), WAIT_OBJECT_0);
    std::weak_ptr<ZEMOWindow> watch = layer;
    layer.reset();  // does not wait for the window's thread
    EXPECT_FALSE(watch.expired());
    SetEvent(leave);
    const std::string destroyed = text("destroyed on thread %lu", threadId);
    ASSERT_TRUE(everything->waitFor(destroyed));
    const Lines lines = everything->lines();
    EXPECT_LT(std::find(lines.begin(), lines.end(), "key done"), std::find(lines.begin(), lines.end(), destroyed));
    CloseHandle(entered);
    CloseHandle(leave);
}

TEST_F(ZemoWindowOwn, LastReferenceDroppedInOnClose_WindowIsDestroyedAndTheThreadEnds) {
    make();
    layer->duringClose = [this] { layer.reset(); };
    PostMessageW(window, WM_CLOSE, 0, 0);
    EXPECT_TRUE(waitForThreadEnd(threadId, thread));
    EXPECT_FALSE(IsWindow(window));
    EXPECT_EQ(everything->count(text("destroyed on thread %lu", threadId)), 1u);
}

TEST_F(ZemoWindowOwn, LayersComeAndGoUnderABusyWindow_NothingCrashes) {
    for (int round = 0; round < 15; ++round) {
        make();
        std::atomic<bool> stop = false;
        std::thread sender([&] {
            const HWND target = window;
            while (!stop) {
                PostMessageW(target, WM_KEYDOWN, 'A', 1);
                PostMessageW(target, kMessageImeBounds, 0, 0);
                DWORD_PTR answer = 0;
                SendMessageTimeoutW(target, WM_MOUSEMOVE, 0, kAt, SMTO_NORMAL, 20000, &answer);
            }
        });
        EXPECT_TRUE(everything->waitFor("onKey(256,41,1)"));
        layer.reset();
        stop = true;
        sender.join();
    }
}

// A destroyed window's handle comes round to another window only after very many, so what is looked at is whether the
// handle is touched at all.
std::atomic<HWND> touchOf = nullptr;
std::atomic<int> touches = 0;
LONG_PTR WINAPI watchedSetWindowLong(HWND hwnd, int index, LONG_PTR value) {
    static const auto system = systemFunction<decltype(SetWindowLongPtrW)>(L"user32.dll", "SetWindowLongPtrW");
    if (hwnd == touchOf) ++touches;
    return system(hwnd, index, value);
}

TEST_F(ZemoWindowOwn, DestroyedAfterItsWindow_LeavesTheHandleAlone) {
    make();
    touchOf = window;
    touches = 0;
    const ImportReplaced replaced("SetWindowLongPtrW", watchedSetWindowLong);
    PostMessageW(window, WM_CLOSE, 0, 0);
    ASSERT_TRUE(waitForThreadEnd(threadId, thread));
    layer.reset();
    EXPECT_EQ(touches, 0);
}

TEST_F(ZemoWindowOwn, DestroyedBeforeItsWindow_ClearsTheUserDataOnce) {
    make();
    touchOf = window;
    touches = 0;
    const ImportReplaced replaced("SetWindowLongPtrW", watchedSetWindowLong);
    layer.reset();
    EXPECT_EQ(touches, 1);
    EXPECT_EQ(GetWindowLongPtrW(window, GWLP_USERDATA), 0);
}

TEST(OwnWindowLinkTest, WindowDestroyed_HandleOfAnotherWindowByNowIsLeftAlone) {
    const HWND other = CreateWindowExW(0, L"STATIC", L"", 0, 0, 0, 9, 9, HWND_MESSAGE, nullptr, nullptr, nullptr);
    SetWindowLongPtrW(other, GWLP_USERDATA, 4711);
    OwnWindowLink link;
    link.windowCreated(other);
    link.windowDestroyed(other);
    link.clearUserData();
    EXPECT_EQ(GetWindowLongPtrW(other, GWLP_USERDATA), 4711);
    link.windowCreated(other);  // alive: its data goes
    link.clearUserData();
    EXPECT_EQ(GetWindowLongPtrW(other, GWLP_USERDATA), 0);
    DestroyWindow(other);
}

}  // namespace
}  // namespace ZEMO::Test
