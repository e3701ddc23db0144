// Stands in for a program whose engine process outlives it, which the library never does by itself. As
// cefsubprocess\cef.subprocess.exe beside itself it only sleeps; otherwise it starts that and ends.
//   linger.exe ended: the child ends soon after; linger.exe left: it stays for a minute. The exit code is 40 and 0.
#include <windows.h>

#include <cstdio>
#include <cwchar>
#include <string>

int wmain(int argc, wchar_t** argv) {
    if (argc < 2) {
        return 2;
    }
    const std::wstring what = argv[1];
    if (what == L"sleep") {
        Sleep(static_cast<DWORD>(std::wcstoul(argv[2], nullptr, 10)));
        return 0;
    }
    wchar_t program[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, program, MAX_PATH);
    std::wstring folder = program;
    folder.resize(folder.rfind(L'\\'));
    const std::wstring child = folder + L"\\cefsubprocess\\cef.subprocess.exe";
    std::wstring command = L"\"" + child + L"\" sleep " + (what == L"left" ? L"60000" : L"300");
    STARTUPINFOW start = {};
    start.cb = sizeof start;
    PROCESS_INFORMATION process = {};
    if (!CreateProcessW(child.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                        &process)) {
        std::fprintf(stderr, "cannot start the child: %lu\n", GetLastError());
        return 3;
    }
    wchar_t temporary[MAX_PATH] = {};
    GetTempPathW(MAX_PATH, temporary);
    std::printf("folder %ls\ntemporary %ls\n", folder.c_str(), temporary);
    return what == L"left" ? 0 : 40;
}
