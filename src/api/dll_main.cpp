#include <windows.h>

extern "C" __declspec(dllexport) void setUseExternalTsfIme(int) {}
BOOL WINAPI DllMain(HINSTANCE, DWORD, LPVOID) { return TRUE; }
