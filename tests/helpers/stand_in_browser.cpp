// A program that tests copy as chrome.exe, firefox.exe, ... and register as the default browser. It writes down how it
// was started and ends.
//
//   (any arguments)                     writes PID.record into the directory that ZEMO_STAND_IN_RECORDS names (or into
//   its
//                                       own) and counts up the semaphore that ZEMO_STAND_IN_SEMAPHORE names
//   --stand-in-wait READY END           a browser that is already running: sets the event READY, ends with the event
//   END
#include <windows.h>

#include <cstdio>
#include <string>
#include <vector>

namespace {

constexpr DWORD kLongestLifeMs = 120000;  // a test that died doesn't leave it behind

std::wstring environment(const wchar_t* name) {
    std::wstring value(GetEnvironmentVariableW(name, nullptr, 0), L'\0');
    if (value.empty()) return value;
    value.resize(GetEnvironmentVariableW(name, value.data(), static_cast<DWORD>(value.size())));
    return value;
}

std::wstring ownPath() {
    std::vector<wchar_t> path(32768);
    GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    return path.data();
}

std::wstring workingDirectory() {
    std::vector<wchar_t> path(32768);
    GetCurrentDirectoryW(static_cast<DWORD>(path.size()), path.data());
    return path.data();
}

// One field a line; a field's own line ends could not be told from those.
void appendField(std::string& record, const char* name, std::wstring value) {
    for (wchar_t& c : value) {
        if (c == L'\n') c = L'\x2424';
    }
    const int size = static_cast<int>(value.size());
    std::string utf8(static_cast<std::size_t>(size) * 3, '\0');
    utf8.resize(static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, value.c_str(), size, utf8.data(),
                                                             static_cast<int>(utf8.size()), nullptr, nullptr)));
    record.append(name).append("=").append(utf8).append("\n");
}

int waitForEnd(const wchar_t* readyName, const wchar_t* endName) {
    const HANDLE ready = OpenEventW(EVENT_MODIFY_STATE, FALSE, readyName);
    const HANDLE end = OpenEventW(SYNCHRONIZE, FALSE, endName);
    if (!ready || !end || !SetEvent(ready)) return 2;
    return WaitForSingleObject(end, kLongestLifeMs) == WAIT_OBJECT_0 ? 0 : 3;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc == 4 && std::wstring(argv[1]) == L"--stand-in-wait") return waitForEnd(argv[2], argv[3]);

    const std::wstring executable = ownPath();
    std::wstring directory = environment(L"ZEMO_STAND_IN_RECORDS");
    if (directory.empty()) directory = executable.substr(0, executable.find_last_of(L'\\'));

    std::string record;
    appendField(record, "executable", executable);
    appendField(record, "directory", workingDirectory());
    STARTUPINFOW startup{};
    GetStartupInfoW(&startup);
    const bool isTold = (startup.dwFlags & STARTF_USESHOWWINDOW) != 0;
    appendField(record, "show", isTold ? std::to_wstring(startup.wShowWindow) : L"-1");
    for (int i = 1; i < argc; ++i) appendField(record, "argument", argv[i]);

    const std::wstring name = directory + L"\\" + std::to_wstring(GetCurrentProcessId());
    FILE* file = _wfopen((name + L".part").c_str(), L"wb");
    if (!file || std::fwrite(record.data(), 1, record.size(), file) != record.size() || std::fclose(file) != 0)
        return 4;
    // a reader sees whole records only
    if (!MoveFileW((name + L".part").c_str(), (name + L".record").c_str())) return 5;

    const std::wstring semaphoreName = environment(L"ZEMO_STAND_IN_SEMAPHORE");
    if (semaphoreName.empty()) return 0;
    const HANDLE semaphore = OpenSemaphoreW(SEMAPHORE_MODIFY_STATE, FALSE, semaphoreName.c_str());
    return semaphore && ReleaseSemaphore(semaphore, 1, nullptr) ? 0 : 6;
}
