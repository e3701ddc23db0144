#include "browser/browser_rules.h"

#include <algorithm>
#include <cwctype>
#include <string_view>

namespace ZEMO::UI {
namespace {

struct PrivateMode {
    std::wstring_view executable;
    std::wstring_view flag;
};

constexpr PrivateMode kPrivateModes[] = {
    {L"", L""},
    {L"firefox.exe", L"-private-window"},
    {L"waterfox.exe", L"-private-window"},
    {L"librewolf.exe", L"-private-window"},
    {L"msedge.exe", L"--inprivate"},
    {L"opera.exe", L"--private"},
    // An association may point to these launchers instead of to a browser.
    {L"launchwinapp.exe", L""},
    {L"openwith.exe", L""},
    {L"rundll32.exe", L""},
};
constexpr std::wstring_view kUsualPrivateFlag = L"--incognito";

}  // namespace

const wchar_t* browserProtocolOf(const std::string& url) { return url.starts_with("https://") ? L"https" : L"http"; }

std::wstring extractExecutable(const std::wstring& commandLine) {
    if (commandLine.empty()) return {};
    if (commandLine.front() == L'"') {
        const auto end = commandLine.find(L'"', 1);
        return end == std::wstring::npos ? std::wstring() : commandLine.substr(1, end - 1);
    }
    return commandLine.substr(0, commandLine.find(L' '));
}

std::wstring browserExecutableName(const std::wstring& path) {
    const auto separator = path.find_last_of(L"\\/");
    std::wstring name = separator == std::wstring::npos ? path : path.substr(separator + 1);
    std::transform(name.begin(), name.end(), name.begin(),
                   [](wchar_t c) { return static_cast<wchar_t>(std::towlower(static_cast<std::wint_t>(c))); });
    return name;
}

std::wstring privateModeFlag(const std::wstring& executableName) {
    for (const auto& mode : kPrivateModes) {
        if (executableName == mode.executable) return std::wstring(mode.flag);
    }
    return std::wstring(kUsualPrivateFlag);
}

std::wstring privateWindowParameters(const std::wstring& flag, const std::wstring& url) {
    return flag + L" \"" + url + L"\"";
}

bool takesLoopbackRoute(std::size_t urlBytes, const BrowserSituation& situation) {
    const bool isColdChrome = situation.defaultExecutable == kChromeExecutable && !situation.isChromeRunning;
    const bool isColdWhale = situation.defaultExecutable == kWhaleExecutable && !situation.isWhaleRunning;
    return urlBytes > kLongestDirectUrlBytes && (isColdChrome || isColdWhale) && !situation.hasShowKeyboardCallback;
}

}  // namespace ZEMO::UI
