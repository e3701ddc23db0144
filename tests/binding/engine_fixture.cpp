#include "binding/engine_fixture.h"

#include <gtest/gtest.h>
#include <tlhelp32.h>

#include <filesystem>
#include <set>
#include <vector>

#include "cef/engine_library.h"

namespace binding_test {

std::wstring programDirectory() {
    wchar_t path[1024];
    const DWORD length = GetModuleFileNameW(nullptr, path, 1024);
    return std::filesystem::path(std::wstring(path, length)).parent_path().wstring();
}

int childProcesses() {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    if (snapshot == INVALID_HANDLE_VALUE) return -1;
    std::set<DWORD> family{GetCurrentProcessId()};
    size_t before = 0;
    while (before != family.size()) {
        before = family.size();
        PROCESSENTRY32W entry{};
        entry.dwSize = sizeof entry;
        for (BOOL more = Process32FirstW(snapshot, &entry); more; more = Process32NextW(snapshot, &entry)) {
            // Wine's own desktop process may hang below the first program that opens a window.
            const bool own = _wcsicmp(entry.szExeFile, L"explorer.exe") != 0;
            if (own && family.contains(entry.th32ParentProcessID)) family.insert(entry.th32ProcessID);
        }
    }
    CloseHandle(snapshot);
    return static_cast<int>(family.size()) - 1;
}

bool waitUntil(const std::function<bool()>& done, int timeoutMs) {
    const ULONGLONG end = GetTickCount64() + static_cast<ULONGLONG>(timeoutMs);
    while (!done()) {
        if (GetTickCount64() > end) return false;
        Sleep(20);
    }
    return true;
}

// Emptied file by file: remove_all never returns under Wine while something below can not be removed.
CacheDirectory::CacheDirectory(const std::wstring& name) : path_(programDirectory() + L"\\test_cache\\" + name) {
    const bool removed = waitUntil(
        [this] {
            std::error_code error;
            std::vector<std::filesystem::path> entries;
            for (std::filesystem::recursive_directory_iterator i(path_, error), end; !error && i != end;
                 i.increment(error)) {
                entries.push_back(i->path());
            }
            for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry)
                std::filesystem::remove(*entry, error);
            std::filesystem::remove(path_, error);
            return !std::filesystem::exists(path_, error);
        },
        5000);
    EXPECT_TRUE(removed) << "the cache directory is in use";
    std::filesystem::create_directories(path_);
}

bool runEngine(CefRefPtr<CefApp> app, const std::wstring& childProgram, const std::wstring& cache,
               const std::function<void()>& started, int timeoutMs) {
    std::string reason;
    if (!cefLoadLibrary(programDirectory().c_str(), &reason)) {
        ADD_FAILURE() << reason;
        return false;
    }
    CefSettings settings;
    settings.no_sandbox = 1;
    settings.windowless_rendering_enabled = 1;
    settings.log_severity = LOGSEVERITY_DISABLE;
    CefString(&settings.browser_subprocess_path) = childProgram;
    CefString(&settings.root_cache_path) = cache;
    CefString(&settings.locales_dir_path) = programDirectory() + L"\\cefsubprocess\\locales";
    if (!CefInitialize(CefMainArgs(GetModuleHandleW(nullptr)), settings, app, nullptr)) {
        ADD_FAILURE() << "the engine did not initialize, exit code " << CefGetExitCode();
        return false;
    }
    bool timedOut = false;
    started();
    post(TID_UI, [&timedOut] { timedOut = true, CefQuitMessageLoop(); }, timeoutMs);
    CefRunMessageLoop();
    CefShutdown();
    return !timedOut;
}

bool createBrowser(CefRefPtr<CefClient> client, const std::string& address) {
    CefWindowInfo window;
    window.SetAsWindowless(nullptr);
    CefBrowserSettings settings;
    settings.windowless_frame_rate = 30;
    return CefBrowserHost::CreateBrowser(window, client, address, settings, nullptr, nullptr);
}

}  // namespace binding_test
