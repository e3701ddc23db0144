#include "support/helper_process.h"

#include <stdexcept>

namespace ZEMO::Test {
namespace {

// No argument of ours ends with a backslash or holds a quotation mark: quoting is enough.
std::wstring commandLine(const std::wstring& program, const std::vector<std::wstring>& arguments) {
    std::wstring line = L"\"" + program + L"\"";
    for (const auto& argument : arguments) line += L" \"" + argument + L"\"";
    return line;
}

}  // namespace

std::wstring helperPath(const std::wstring& fileName) {
    wchar_t path[4096] = {};
    GetModuleFileNameW(nullptr, path, 4096);
    std::wstring directory = path;
    directory.resize(directory.rfind(L'\\') + 1);
    return directory + L"test_helpers\\" + fileName;
}

HelperProcess::HelperProcess(const std::wstring& program, const std::vector<std::wstring>& arguments) {
    SECURITY_ATTRIBUTES inherited{sizeof inherited, nullptr, TRUE};
    HANDLE childEnd = nullptr;
    if (!CreatePipe(&pipe_, &childEnd, &inherited, 1 << 16)) throw std::runtime_error("no pipe");
    SetHandleInformation(pipe_, HANDLE_FLAG_INHERIT, 0);
    STARTUPINFOW start{};
    start.cb = sizeof start;
    start.dwFlags = STARTF_USESTDHANDLES;
    start.hStdOutput = childEnd;
    start.hStdError = GetStdHandle(STD_ERROR_HANDLE);
    std::wstring line = commandLine(program, arguments);
    const BOOL started = CreateProcessW(nullptr, line.data(), nullptr, nullptr, TRUE, DETACHED_PROCESS, nullptr,
                                        nullptr, &start, &info_);
    CloseHandle(childEnd);
    if (!started) {
        CloseHandle(pipe_);
        throw std::runtime_error("a helper program can't be started: error " + std::to_string(GetLastError()));
    }
    reader_ = std::thread([this] { read(); });
}

HelperProcess::~HelperProcess() {
    terminate();
    reader_.join();
    CloseHandle(pipe_);
    CloseHandle(info_.hThread);
    CloseHandle(info_.hProcess);
}

void HelperProcess::terminate() {
    TerminateProcess(info_.hProcess, 1);
    WaitForSingleObject(info_.hProcess, 20000);
}

void HelperProcess::read() {
    std::string rest;
    char buffer[4096];
    DWORD size = 0;
    while (ReadFile(pipe_, buffer, sizeof buffer, &size, nullptr) && size > 0) {
        rest.append(buffer, size);
        const std::lock_guard lock(mutex_);
        for (size_t end = rest.find('\n'); end != std::string::npos; end = rest.find('\n')) {
            std::string line = rest.substr(0, end);
            while (!line.empty() && line.back() == '\r') line.pop_back();
            lines_.push_back(std::move(line));
            rest.erase(0, end + 1);
        }
        changed_.notify_all();
    }
    const std::lock_guard lock(mutex_);
    ended_ = true;
    changed_.notify_all();
}

std::optional<std::string> HelperProcess::line(const std::string& start, std::chrono::milliseconds timeout) {
    std::optional<std::string> found;
    std::unique_lock lock(mutex_);
    changed_.wait_for(lock, timeout, [&] {
        while (!found && nextLine_ < lines_.size()) {
            const std::string& line = lines_[nextLine_++];
            if (line.starts_with(start)) found = line;
        }
        return found || ended_;
    });
    return found;
}

std::optional<std::vector<std::string>> HelperProcess::finish(std::chrono::milliseconds timeout) {
    std::unique_lock lock(mutex_);
    if (!changed_.wait_for(lock, timeout, [&] { return ended_; })) return {};
    return lines_;
}

std::string HelperProcess::output() const {
    const std::lock_guard lock(mutex_);
    std::string all = "output of the helper:\n";
    for (const auto& line : lines_) all += "  " + line + "\n";
    return all;
}

std::vector<std::string> runHelper(const std::wstring& program, const std::vector<std::wstring>& arguments) {
    HelperProcess helper(program, arguments);
    const auto lines = helper.finish();
    return lines ? *lines : std::vector<std::string>{"did not end; " + helper.output()};
}

}  // namespace ZEMO::Test
