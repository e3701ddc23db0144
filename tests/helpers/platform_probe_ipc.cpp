#include <windows.h>

#include <cstdio>
#include <future>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>

#include "helpers/platform_probe.h"
#include "support/debug_log.h"
#include "zemo/platform.h"

// The receiver's side, printed in hexadecimal so that every byte shows:
//   window, shown   a hidden or a visible top-level window, whose WM_COPYDATA prints "window LENGTH", or "NAME LENGTH"
//                   for window=NAME
//   owned=NAME      a hidden window that the last one owns
//   threaded=NAME   a hidden window of a thread of its own, which dispatches its messages
//   open=NAME       ipcOpen() with a callback that prints "NAME LENGTH HEX"; open without a name: an empty callback
//   hook            an ordinary hook, which prints "other hook" when the chain reaches it
//   log             captures the debug log from here on; logged: prints it, "log HEX" a call
//   ready           "ready PROCESS THREAD"
//   wait=EVENT      blocks without dispatching messages until the named event is set
//   pump            dispatches messages until WM_QUIT
//   self=TEXT       a WM_COPYDATA from this thread with the text and its NUL; cut=TEXT: with its first four bytes
//   to-self=TEXT    ipcSend() to this process
namespace ZEMO::Test {
namespace {

std::unique_ptr<DebugLogCapture> capture;
HWND lastWindow = nullptr;

void printHex(const std::string& text) {
    for (const unsigned char c : text) std::printf("%02x", c);
    std::puts("");
    std::fflush(stdout);
}

LRESULT CALLBACK windowProcedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_COPYDATA) {
        wchar_t name[100] = {};
        GetWindowTextW(window, name, 100);
        std::printf("%ls %lu\n", name, reinterpret_cast<const COPYDATASTRUCT*>(lParam)->cbData);
        std::fflush(stdout);
        return TRUE;
    }
    return DefWindowProcW(window, message, wParam, lParam);
}

HWND makeWindow(const std::wstring& name, bool visible, HWND owner) {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = windowProcedure;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = L"ZemoPlatformProbe";
    RegisterClassW(&windowClass);  // the second time it is there already
    const HWND window = CreateWindowExW(0, windowClass.lpszClassName, name.empty() ? L"window" : name.c_str(),
                                        WS_POPUP | (visible ? WS_VISIBLE : 0u), 0, 0, 320, 200, owner, nullptr,
                                        windowClass.hInstance, nullptr);
    if (!window) std::puts("no window");
    return window;
}

LRESULT CALLBACK otherHook(int code, WPARAM wParam, LPARAM lParam) {
    if (code >= 0 && reinterpret_cast<const CWPSTRUCT*>(lParam)->message == WM_COPYDATA) std::puts("other hook");
    return CallNextHookEx(nullptr, code, wParam, lParam);
}

void openReceiver(const std::string& name) {
    if (name.empty()) return Platform::Misc::ipcOpen({});
    Platform::Misc::ipcOpen([name, thread = GetCurrentThreadId()](std::string text) {
        std::printf("%s%s %zu ", name.c_str(), thread == GetCurrentThreadId() ? "" : "(other thread)", text.size());
        printHex(text);
    });
}

std::string utf8(const std::wstring& text) {
    const int units = static_cast<int>(text.size());
    std::string result(
        static_cast<size_t>(WideCharToMultiByte(CP_UTF8, 0, text.c_str(), units, nullptr, 0, nullptr, nullptr)), '\0');
    WideCharToMultiByte(CP_UTF8, 0, text.c_str(), units, result.data(), static_cast<int>(result.size()), nullptr,
                        nullptr);
    return result;
}

void waitWithoutMessages(const std::wstring& name) {
    const HANDLE event = OpenEventW(SYNCHRONIZE, FALSE, name.c_str());
    std::printf("waited %lu\n", event ? WaitForSingleObject(event, 60000) : GetLastError());
    if (event) CloseHandle(event);
}

void pump() {
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
}

void makeThreadedWindow(const std::wstring& name) {
    auto made = std::make_shared<std::promise<void>>();
    auto isMade = made->get_future();
    std::thread([name, made] {
        makeWindow(name, false, nullptr);
        made->set_value();
        pump();
    }).detach();  // it ends with the process
    isMade.wait();
}

}  // namespace

bool runIpcCommand(const std::wstring& name, const std::wstring& argument) {
    if (name == L"window" || name == L"shown") {
        lastWindow = makeWindow(argument, name == L"shown", nullptr);
    } else if (name == L"owned") {
        lastWindow = makeWindow(argument, false, lastWindow);
    } else if (name == L"threaded") {
        makeThreadedWindow(argument);
    } else if (name == L"open") {
        openReceiver(utf8(argument));
    } else if (name == L"hook") {
        SetWindowsHookExW(WH_CALLWNDPROC, otherHook, nullptr, GetCurrentThreadId());
    } else if (name == L"log") {
        capture = std::make_unique<DebugLogCapture>();
    } else if (name == L"logged") {
        for (const std::string& line : capture->texts()) {
            std::printf("log ");
            printHex(line);
        }
        capture->clear();
    } else if (name == L"ready") {
        std::printf("ready %lu %lu\n", GetCurrentProcessId(), GetCurrentThreadId());
    } else if (name == L"wait") {
        waitWithoutMessages(argument);
    } else if (name == L"pump") {
        pump();
    } else if (name == L"self" || name == L"cut") {
        std::string text = utf8(argument);
        COPYDATASTRUCT block{99, name == L"cut" ? 4 : static_cast<DWORD>(text.size() + 1), text.data()};
        SendMessageW(lastWindow, WM_COPYDATA, 0, reinterpret_cast<LPARAM>(&block));
    } else if (name == L"to-self") {
        Platform::Misc::ipcSend(std::to_string(GetCurrentProcessId()), utf8(argument));
    } else {
        return false;
    }
    return true;
}

}  // namespace ZEMO::Test
