#include "engine/helper_game.h"

#include <gtest/gtest.h>
#include <tlhelp32.h>

#include <format>
#include <functional>
#include <stdexcept>

#include "core/detached_thread.h"

namespace ZEMO::Test {

std::filesystem::path programDirectory() {
    wchar_t path[1024];
    GetModuleFileNameW(nullptr, path, 1024);
    return std::filesystem::path(path).parent_path();
}

std::filesystem::path copyOfLibraryFolder(const wchar_t* name) {
    const std::filesystem::path from = programDirectory();
    const std::filesystem::path to = from / name;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(from)) {
        const std::filesystem::path relative = std::filesystem::relative(entry.path(), from);
        const std::wstring first = relative.begin()->wstring();
        if (first == name || first.starts_with(L"cache") || first == L"tmp" || first == L"stage") continue;
        if (entry.is_directory()) {
            std::filesystem::create_directories(to / relative);
        } else if (entry.path().extension() != L".exe" || relative.has_parent_path()) {
            std::filesystem::create_directories((to / relative).parent_path());
            // Wine names a process by whichever link of its file was opened first, and tests tell processes by their
            // names: programs are copied.
            const bool isProgram = entry.path().extension() == L".exe";
            std::error_code notLinked;
            if (!isProgram) std::filesystem::create_hard_link(entry.path(), to / relative, notLinked);
            if (isProgram || notLinked) std::filesystem::copy_file(entry.path(), to / relative);
        }
    }
    return to;
}

namespace {

/// Full name of its program; empty when the system does not tell it.
std::wstring programOf(DWORD id) {
    const HANDLE process = OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, id);
    if (!process) return {};
    wchar_t path[1024];
    DWORD length = 1024;
    if (!QueryFullProcessImageNameW(process, 0, path, &length)) length = 0;
    CloseHandle(process);
    return {path, length};
}

void forEachProcess(const std::function<void(const PROCESSENTRY32W&)>& see) {
    const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0);
    if (snapshot == INVALID_HANDLE_VALUE) throw std::runtime_error("the system does not list its processes");
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32FirstW(snapshot, &entry); more; more = Process32NextW(snapshot, &entry)) see(entry);
    CloseHandle(snapshot);
}

}  // namespace

std::vector<DWORD> processesBelow(const std::filesystem::path& directory) {
    std::vector<DWORD> found;
    const std::wstring below = directory.wstring() + L"\\";
    forEachProcess([&](const PROCESSENTRY32W& entry) {
        const std::wstring image = programOf(entry.th32ProcessID);
        if (_wcsnicmp(image.c_str(), below.c_str(), below.size()) == 0) found.push_back(entry.th32ProcessID);
    });
    return found;
}

std::string allProcesses() {
    std::string list;
    forEachProcess([&](const PROCESSENTRY32W& entry) {
        const auto narrow = [](const std::wstring& text) { return std::filesystem::path(text).string(); };
        list += std::format("{} of {}: {}, {}\n", entry.th32ProcessID, entry.th32ParentProcessID,
                            narrow(entry.szExeFile), narrow(programOf(entry.th32ProcessID)));
    });
    return list;
}

HelperGame::HelperGame(const std::filesystem::path& library, const std::wstring& way,
                       const std::filesystem::path& workingDirectory, std::filesystem::path program) {
    SECURITY_ATTRIBUTES inherit{sizeof inherit, nullptr, TRUE};
    HANDLE pipe = nullptr;
    HANDLE write = nullptr;
    CreatePipe(&pipe, &write, &inherit, 0);
    SetHandleInformation(pipe, HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = write;
    startup.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    if (program.empty()) program = programDirectory() / L"test_helpers" / L"zemo_engine_helper.exe";
    std::wstring line = std::format(L"\"{}\" \"{}\" {}", program.wstring(), library.wstring(), way);
    // Without a console: Wine may keep the console host of a killed program, and with it this program's output.
    const BOOL started = CreateProcessW(program.c_str(), line.data(), nullptr, nullptr, TRUE, DETACHED_PROCESS, nullptr,
                                        workingDirectory.c_str(), &startup, &process);
    CloseHandle(write);
    if (!started) {
        const DWORD error = GetLastError();
        CloseHandle(pipe);
        throw std::runtime_error(std::format("the helper game did not start: {}", error));
    }
    Core::runDetached([pipe, into = lines] { readLines(pipe, *into); });
}

HelperGame::~HelperGame() {
    kill();
    {
        std::unique_lock lock(lines->mutex);
        if (!lines->arrived.wait_for(lock, std::chrono::seconds(20), [this] { return lines->finished; })) {
            ADD_FAILURE() << "somebody still holds the output of a game that has ended:\n" << allProcesses();
        }
    }
    CloseHandle(process.hThread);
    CloseHandle(process.hProcess);
}

void HelperGame::readLines(HANDLE pipe, Output& into) {
    char buffer[256];
    for (DWORD n = 0; ReadFile(pipe, buffer, sizeof buffer, &n, nullptr) && n > 0;) {
        const std::lock_guard lock(into.mutex);
        for (DWORD i = 0; i < n; ++i) {
            if (buffer[i] != '\r') into.text += buffer[i];
        }
        into.arrived.notify_all();
    }
    CloseHandle(pipe);
    const std::lock_guard lock(into.mutex);
    into.finished = true;
    into.arrived.notify_all();
}

bool HelperGame::waitForLine(const std::string& line, std::chrono::milliseconds timeout) {
    std::unique_lock lock(lines->mutex);
    const auto there = [&] { return ("\n" + lines->text).find("\n" + line + "\n") != std::string::npos; };
    lines->arrived.wait_for(lock, timeout, [&] { return there() || lines->finished; });
    return there();
}

void HelperGame::letLeave() const {
    const std::wstring name = L"zemo engine helper " + std::to_wstring(processId());
    const HANDLE event = OpenEventW(EVENT_MODIFY_STATE, FALSE, name.c_str());
    if (!event) throw std::runtime_error("the helper game was not started held");
    SetEvent(event);
    CloseHandle(event);
}

bool HelperGame::waitForEnd(std::chrono::milliseconds timeout) {
    if (WaitForSingleObject(process.hProcess, static_cast<DWORD>(timeout.count())) != WAIT_OBJECT_0) return false;
    // Its last lines may still be on their way through the pipe.
    std::unique_lock lock(lines->mutex);
    lines->arrived.wait_for(lock, std::chrono::seconds(10), [&] { return lines->finished; });
    return true;
}

DWORD HelperGame::exitCode() const {
    DWORD code = 0;
    GetExitCodeProcess(process.hProcess, &code);
    return code;
}

void HelperGame::kill() {
    TerminateProcess(process.hProcess, 1);
    WaitForSingleObject(process.hProcess, 10'000);
}

std::string HelperGame::output() const {
    const std::lock_guard lock(lines->mutex);
    return lines->text;
}

}  // namespace ZEMO::Test
