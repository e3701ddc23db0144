// Keeps a session's desktop while tests come and go on it: the system takes a desktop down a moment after its last user
// has ended, and a program that starts right then finds none. Says "ready"; ends with the session.
#include <windows.h>

#include <cstdio>

int main() {
    CreateWindowExW(0, L"STATIC", L"desktop holder", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    const HDC screen = GetDC(nullptr);
    ReleaseDC(nullptr, screen);
    std::puts(screen ? "ready" : "no desktop");
    std::fflush(stdout);
    if (!screen) return 1;
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) DispatchMessageW(&message);
    return 0;
}
