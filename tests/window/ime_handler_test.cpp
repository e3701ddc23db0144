#include <gtest/gtest.h>
#include <windows.h>

#include <imm.h>

#include <algorithm>
#include <chrono>
#include <format>
#include <functional>
#include <iostream>

#include "layers/ime/osr_ime_handler_win.h"
#include "support/ime_keyboard.h"

// The handler on a real window with its real input context: the system loads an input method module for the keyboard
// layout, the display's keys go to it, and its messages come to the window.
namespace ZEMO::UI::test {
namespace {

using namespace std::chrono_literals;
using ZEMO::Test::ImeKeyboard;
using ZEMO::Test::pressKeys;

constexpr wchar_t kClass[] = L"TestImeWindow";

std::string utf8(const std::wstring& wide) { return CefString(wide).ToString(); }

/// A window of this thread that reads compositions with a handler and writes down what it reads.
class ImeWindow {
public:
    ImeWindow() {
        WNDCLASSW description{};
        description.lpfnWndProc = &ImeWindow::procedure;
        description.hInstance = GetModuleHandleW(nullptr);
        description.lpszClassName = kClass;
        RegisterClassW(&description);
        window = CreateWindowExW(0, kClass, L"ime", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 60, 60, 400, 300, nullptr,
                                 nullptr, description.hInstance, nullptr);
        SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        handler = std::make_unique<OsrImeHandlerWin>(window);
        SetForegroundWindow(window);
        SetFocus(window);
    }
    ~ImeWindow() {
        handler.reset();
        SetWindowLongPtrW(window, GWLP_USERDATA, 0);
        DestroyWindow(window);
        UnregisterClassW(kClass, GetModuleHandleW(nullptr));
    }

    bool waitFor(const char* what, const std::function<bool()>& done, std::chrono::milliseconds patience = 20s) {
        const auto end = std::chrono::steady_clock::now() + patience;
        while (!done()) {
            if (std::chrono::steady_clock::now() > end) {
                std::cerr << "gave up waiting for " << what << "; there is " << ::testing::PrintToString(lines) << "\n";
                return false;
            }
            MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
            for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);) {
                TranslateMessage(&message);
                DispatchMessageW(&message);
            }
        }
        return true;
    }
    bool waitForLine(const std::string& line) {
        return waitFor(line.c_str(), [&] { return std::ranges::find(lines, line) != lines.end(); });
    }

    HWND window;
    std::unique_ptr<OsrImeHandlerWin> handler;
    std::vector<std::string> lines;

private:
    static LRESULT CALLBACK procedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
        auto* self = reinterpret_cast<ImeWindow*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA));
        if (self && self->take(message, wParam, lParam)) return 0;
        return DefWindowProcW(hwnd, message, wParam, lParam);
    }
    bool take(UINT message, WPARAM wParam, LPARAM lParam) {
        switch (message) {
            case WM_IME_STARTCOMPOSITION:
                lines.push_back("start");
                return true;
            case WM_IME_ENDCOMPOSITION:
                lines.push_back("end");
                return true;
            case WM_IME_COMPOSITION:
                onComposition(lParam);
                return true;
            case WM_CHAR:
                lines.push_back(std::format("char {}", wParam));
                return true;
            default:
                return false;
        }
    }
    void onComposition(LPARAM flags) {
        std::wstring text;
        if (handler->getResult(flags, text)) lines.push_back("result " + utf8(text));
        CompositionUnderlines underlines;
        int cursor = 0;
        if (!handler->getComposition(flags, text, underlines, cursor)) return;
        std::string line = std::format("compose {} cursor {}", utf8(text), cursor);
        for (const auto& u : underlines)
            line += std::format(" {}-{}{}", u.range.from, u.range.to, u.thick ? " thick" : "");
        lines.push_back(line);
    }
};

}  // namespace

TEST(OsrImeHandlerWin, Probe) {
    ImeWindow target;
    ImeKeyboard keyboard(LANG_KOREAN);
    ASSERT_TRUE(keyboard.isActive());
    ASSERT_TRUE(target.waitFor("the focus",
                               [&] { return GetFocus() == target.window && GetForegroundWindow() == target.window; }));
    ImeKeyboard::setOpen(target.window, true);
    EXPECT_TRUE(ImeKeyboard::isOpen(target.window));
    pressKeys({'G', 'K', 'S', VK_RETURN});
    EXPECT_TRUE(target.waitForLine("end"));
    EXPECT_EQ(target.lines, std::vector<std::string>{});
}

}  // namespace ZEMO::UI::test
