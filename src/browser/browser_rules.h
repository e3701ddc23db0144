#pragma once

#include <cstddef>
#include <string>

// What the launch of an external browser decides, without asking the system anything. All are pure: any thread.
namespace ZEMO::UI {

/// An address longer than this many bytes does not go through the shell when the browser has to be started first.
inline constexpr std::size_t kLongestDirectUrlBytes = 800;

inline constexpr wchar_t kChromeExecutable[] = L"chrome.exe";
inline constexpr wchar_t kWhaleExecutable[] = L"whale.exe";

/// L"https" if `url` begins exactly with "https://", otherwise L"http": upper case and every other scheme count as
/// http.
const wchar_t* browserProtocolOf(const std::string& url);

/// The executable of a command line: the text inside the leading quotes, or up to the first blank. Empty if the quote
/// is never closed.
std::wstring extractExecutable(const std::wstring& commandLine);

/// Last component of `path` in lower case; empty for an empty path.
std::wstring browserExecutableName(const std::wstring& path);

/// The switch that makes a browser open a private window. `executableName` is in lower case. Empty for an empty name
/// and for the system's launchers, which pass no switch on to the browser behind them.
std::wstring privateModeFlag(const std::wstring& executableName);

/// Parameters that open `url` in a private window. The address stands in quotes, nothing in it is escaped.
std::wstring privateWindowParameters(const std::wstring& flag, const std::wstring& url);

/// What is known of the machine when an ordinary launch picks its way.
struct BrowserSituation {
    std::wstring defaultExecutable;  // lower case, without directory
    bool isChromeRunning = false;
    bool isWhaleRunning = false;
    bool hasShowKeyboardCallback = false;  // marks the handheld
};

/// True if the address has to go through the loopback redirect: it is long, the default browser is one of the two that
/// lose a long address at a cold start, that very browser is not running, and this is not the handheld.
bool takesLoopbackRoute(std::size_t urlBytes, const BrowserSituation& situation);

}  // namespace ZEMO::UI
