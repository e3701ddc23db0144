// Says what is wrong with a game's folder before it ships: one line each, and an exit code for a build server.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <string>

#include "game_folder.h"
#include "versions.h"

namespace {

using namespace ZEMO::Doctor;

enum ExitCode { kNothingWrong = 0, kErrors = 1, kUsage = 2 };

// Through the stream as UTF-8, so that a redirected report holds Korean names as they are.
void say(const std::wstring& line) {
    const int length = WideCharToMultiByte(CP_UTF8, 0, line.c_str(), -1, nullptr, 0, nullptr, nullptr);
    std::string text(static_cast<size_t>(length), '\0');
    WideCharToMultiByte(CP_UTF8, 0, line.c_str(), -1, text.data(), length, nullptr, nullptr);
    std::puts(text.c_str());
}

int count(const std::vector<Finding>& findings, Severity severity) {
    return static_cast<int>(std::ranges::count(findings, severity, &Finding::severity));
}

// True: without an error.
bool report(const std::filesystem::path& folder) {
    const std::vector<Finding> findings = examine(folder, kVersions);
    for (const Finding& finding : findings) {
        say((finding.severity == Severity::Error ? L"error    " : L"warning  ") + finding.what + L" " + finding.text);
    }
    const int errors = count(findings, Severity::Error);
    say(folder.wstring() + L": " + std::to_wstring(errors) + L" errors, " +
        std::to_wstring(count(findings, Severity::Warning)) + L" warnings (library " + kVersions.library +
        L", engine " + kVersions.engine + L")");
    return errors == 0;
}

}  // namespace

int wmain(int argumentCount, wchar_t** arguments) {
    if (argumentCount != 2) {
        std::fputs("usage: zemo_doctor FOLDER\nexit code: 0 nothing wrong, 1 errors, 2 no such folder\n", stderr);
        return kUsage;
    }
    std::error_code unreadable;
    if (!std::filesystem::is_directory(arguments[1], unreadable)) {
        say(std::wstring(L"error    ") + arguments[1] + L" is no folder that can be read");
        return kUsage;
    }
    const std::vector<std::filesystem::path> folders = libraryFolders(arguments[1]);
    if (folders.empty()) {
        say(std::wstring(L"error    ZEMOUIFramework.dll is nowhere in ") + arguments[1]);
        return kErrors;
    }
    bool good = true;
    for (const std::filesystem::path& folder : folders) good = report(folder) && good;
    return good ? kNothingWrong : kErrors;
}
