#include "helpers/stand_in_browser_stage.h"

#include <windows.h>

#include <tlhelp32.h>

#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace ZEMO::Test {
namespace {

namespace fs = std::filesystem;

constexpr DWORD kWaitMs = 60000;

void require(bool holds, const char* what) {
    if (!holds) throw std::runtime_error(std::string("stand-in browser: ") + what);
}

fs::path standInProgram() {
    std::vector<wchar_t> path(32768);
    GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
    // helpers lie in a directory beside the tests; the helpers themselves use the stage as well
    const fs::path own = fs::path(path.data()).parent_path();
    const fs::path beside = own / L"test_helpers" / L"stand_in_browser.exe";
    return fs::exists(beside) ? beside : own / L"stand_in_browser.exe";
}

BrowserStart readRecord(const fs::path& file) {
    BrowserStart start;
    std::ifstream in(file, std::ios::binary);
    for (std::string line; std::getline(in, line);) {
        const auto equals = line.find('=');
        const std::string name = line.substr(0, equals);
        const std::string value = line.substr(equals + 1);
        if (name == "executable") start.executable = value;
        if (name == "directory") start.directory = value;
        if (name == "show") start.showCommand = std::stoi(value);
        if (name == "argument") start.arguments.push_back(value);
    }
    return start;
}

}  // namespace

std::string toUtf8(const std::wstring& text) {
    std::string utf8(text.size() * 3, '\0');
    utf8.resize(
        static_cast<std::size_t>(WideCharToMultiByte(CP_UTF8, 0, text.c_str(), static_cast<int>(text.size()),
                                                     utf8.data(), static_cast<int>(utf8.size()), nullptr, nullptr)));
    return utf8;
}

StandInBrowserStage::StandInBrowserStage() {
    machine_ = CreateMutexW(nullptr, FALSE, L"Local\\ZEMO stand-in browsers");
    require(machine_, "no mutex");
    const DWORD waited = WaitForSingleObject(machine_, 100000);
    require(waited == WAIT_OBJECT_0 || waited == WAIT_ABANDONED, "another stage did not end");

    const std::wstring id = std::to_wstring(GetCurrentProcessId());
    const std::wstring semaphoreName = L"Local\\ZEMO stand-in starts " + id;
    semaphore_ = CreateSemaphoreW(nullptr, 0, 100000, semaphoreName.c_str());
    require(semaphore_, "no semaphore");

    directory_ = (fs::temp_directory_path() / (L"zemo 브라우저 " + id)).wstring();
    fs::remove_all(directory_);
    fs::create_directories(directory_);
    SetEnvironmentVariableW(L"ZEMO_STAND_IN_RECORDS", directory_.c_str());
    SetEnvironmentVariableW(L"ZEMO_STAND_IN_SEMAPHORE", semaphoreName.c_str());

    keyPath_ = L"Software\\ZEMO stand-in classes " + id;
    RegDeleteTreeW(HKEY_CURRENT_USER, keyPath_.c_str());
    require(RegCreateKeyExW(HKEY_CURRENT_USER, keyPath_.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS,
                            nullptr, &classes_, nullptr) == ERROR_SUCCESS,
            "no registry key");
    require(RegOverridePredefKey(HKEY_CLASSES_ROOT, classes_) == ERROR_SUCCESS, "associations not replaced");
}

StandInBrowserStage::~StandInBrowserStage() {
    stopRunning();
    waitForLaunched();
    RegOverridePredefKey(HKEY_CLASSES_ROOT, nullptr);
    RegCloseKey(classes_);
    RegDeleteTreeW(HKEY_CURRENT_USER, keyPath_.c_str());
    SetEnvironmentVariableW(L"ZEMO_STAND_IN_RECORDS", nullptr);
    SetEnvironmentVariableW(L"ZEMO_STAND_IN_SEMAPHORE", nullptr);
    // a program that has just ended may hold its file for a moment
    std::error_code error;
    for (int i = 0; i < 250 && fs::exists(directory_, error); ++i) {
        fs::remove_all(directory_, error);
        if (error) Sleep(20);
    }
    CloseHandle(semaphore_);
    ReleaseMutex(machine_);
    CloseHandle(machine_);
}

std::wstring StandInBrowserStage::install(const std::wstring& name) {
    const fs::path target = fs::path(directory_) / name;
    if (!fs::exists(target)) fs::copy_file(standInProgram(), target);
    installed_.insert(target.filename().wstring());
    return target.wstring();
}

void StandInBrowserStage::setCommand(const std::wstring& scheme, const std::wstring& command) {
    const auto write = [&](const std::wstring& key, const wchar_t* name, const std::wstring& value) {
        require(RegSetKeyValueW(classes_, key.c_str(), name, REG_SZ, value.c_str(),
                                static_cast<DWORD>((value.size() + 1) * sizeof(wchar_t))) == ERROR_SUCCESS,
                "association not written");
    };
    // a volatile key takes volatile children only
    HKEY made = nullptr;
    const std::wstring commandKey = scheme + L"\\shell\\open\\command";
    require(RegCreateKeyExW(classes_, commandKey.c_str(), 0, nullptr, REG_OPTION_VOLATILE, KEY_ALL_ACCESS, nullptr,
                            &made, nullptr) == ERROR_SUCCESS,
            "association not made");
    RegCloseKey(made);
    write(scheme, nullptr, L"URL:" + scheme);
    write(scheme, L"URL Protocol", L"");
    write(commandKey, nullptr, command);
}

void StandInBrowserStage::makeDefault(const std::wstring& name) {
    const std::wstring command = L"\"" + install(name) + L"\" \"%1\"";
    setCommand(L"http", command);
    setCommand(L"https", command);
}

void StandInBrowserStage::removeDefaults() { RegDeleteTreeW(classes_, nullptr); }

void StandInBrowserStage::startRunning(const std::wstring& name) {
    const std::wstring path = install(name);
    const std::wstring tag = std::to_wstring(GetCurrentProcessId()) + L" " + name;
    const std::wstring readyName = L"Local\\ZEMO stand-in ready " + tag;
    const std::wstring endName = L"Local\\ZEMO stand-in end " + tag;
    const HANDLE ready = CreateEventW(nullptr, TRUE, FALSE, readyName.c_str());
    const HANDLE end = CreateEventW(nullptr, TRUE, FALSE, endName.c_str());
    std::wstring command = L"\"" + path + L"\" --stand-in-wait \"" + readyName + L"\" \"" + endName + L"\"";
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION made{};
    require(CreateProcessW(path.c_str(), command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup, &made),
            "a running browser was not started");
    CloseHandle(made.hThread);
    running_.push_back({made.hProcess, made.dwProcessId, end});
    const bool isReady = WaitForSingleObject(ready, kWaitMs) == WAIT_OBJECT_0;
    CloseHandle(ready);
    require(isReady, "a running browser did not come up");
}

void StandInBrowserStage::stopRunning() {
    for (const Running& browser : running_) {
        SetEvent(browser.end);
        WaitForSingleObject(browser.process, kWaitMs);
        CloseHandle(browser.process);
        CloseHandle(browser.end);
    }
    running_.clear();
}

bool StandInBrowserStage::waitForStarts(int count, std::chrono::milliseconds timeout) {
    const auto end = std::chrono::steady_clock::now() + timeout;
    for (int i = 0; i < count; ++i) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - std::chrono::steady_clock::now());
        if (left.count() <= 0) return false;
        if (WaitForSingleObject(semaphore_, static_cast<DWORD>(left.count())) != WAIT_OBJECT_0) return false;
    }
    return true;
}

// A start is done when the shell returns, so a process that was started shows in the snapshot or has already ended.
void StandInBrowserStage::waitForLaunched() {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof(entry);
    for (BOOL more = Process32FirstW(snapshot, &entry); more; more = Process32NextW(snapshot, &entry)) {
        if (entry.th32ParentProcessID != GetCurrentProcessId()) continue;
        if (!installed_.contains(entry.szExeFile)) continue;  // such as the engine's own processes
        bool isRunningBrowser = false;
        for (const Running& browser : running_) isRunningBrowser |= browser.processId == entry.th32ProcessID;
        if (isRunningBrowser) continue;
        const HANDLE process = OpenProcess(SYNCHRONIZE, FALSE, entry.th32ProcessID);
        if (!process) continue;
        WaitForSingleObject(process, kWaitMs);
        CloseHandle(process);
    }
    CloseHandle(snapshot);
}

std::vector<BrowserStart> StandInBrowserStage::takeStarts() {
    waitForLaunched();
    std::vector<BrowserStart> starts;
    for (const auto& file : fs::directory_iterator(directory_)) {
        if (file.path().extension() == L".record") starts.push_back(readRecord(file.path()));
    }
    for (const auto& file : fs::directory_iterator(directory_)) {
        if (file.path().extension() == L".record") fs::remove(file.path());
    }
    while (WaitForSingleObject(semaphore_, 0) == WAIT_OBJECT_0) {
    }
    return starts;
}

}  // namespace ZEMO::Test
