// A program that a test puts in the place of the system's on-screen keyboard. As that one does, it shows a window at
// the place that the registry tells, and ends when the window is closed.
//
//   message WM_APP   stops to answer until the event "zemo_stand_in_keyboard_wakes" is set
#include <windows.h>

namespace {

constexpr DWORD kLongestLifeMs = 120000;  // a test that died doesn't leave it behind
constexpr wchar_t kClass[] = L"OSKMainClass";

int setting(const wchar_t* name, int otherwise) {
    DWORD value = 0;
    DWORD size = sizeof value;
    const LSTATUS error =
        RegGetValueW(HKEY_CURRENT_USER, L"SOFTWARE\\Microsoft\\Osk", name, RRF_RT_REG_DWORD, nullptr, &value, &size);
    return error ? otherwise : static_cast<int>(value);
}

LRESULT CALLBACK procedure(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_APP: {
            const HANDLE wakes = CreateEventW(nullptr, TRUE, FALSE, L"zemo_stand_in_keyboard_wakes");
            WaitForSingleObject(wakes, kLongestLifeMs);
            CloseHandle(wakes);
            return 0;
        }
        case WM_TIMER:
            DestroyWindow(hwnd);
            return 0;
        case WM_DESTROY:
            PostQuitMessage(0);
            return 0;
        default:
            return DefWindowProcW(hwnd, message, wParam, lParam);
    }
}

}  // namespace

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
    WNDCLASSW description{};
    description.lpfnWndProc = procedure;
    description.hInstance = instance;
    description.lpszClassName = kClass;
    RegisterClassW(&description);
    const HWND window =
        CreateWindowExW(WS_EX_NOACTIVATE, kClass, L"", WS_POPUP, setting(L"WindowLeft", 7), setting(L"WindowTop", 8),
                        setting(L"WindowWidth", 90), setting(L"WindowHeight", 60), nullptr, nullptr, instance, nullptr);
    ShowWindow(window, SW_SHOWNOACTIVATE);  // who types keeps the focus
    SetTimer(window, 1, kLongestLifeMs, nullptr);
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
    return 0;
}
