#pragma once

#include <functional>
#include <string>
#include <vector>

#include "zemo/export.h"

/// What a game asks about the machine, the user and its own process, and a text from one process to another.
///
/// Every function may be called on any thread, unless it says otherwise, blocks its caller until the answer is there,
/// and returns values that the caller owns. All text is UTF-8. A source that does not answer gives an empty text, an
/// empty list, 0 or false; the four functions that ask the Windows Runtime throw instead, as each says (the classes
/// stand in <zemo/winrt_error.h>). Every function that converts text of the system raises std::range_error when that
/// text is no valid UTF-16, and std::bad_alloc when there is no memory.
namespace ZEMO::Platform::Misc {

/// The platform's letter: always "W".
ZEMO_API std::string getPlatform();

/// Mobile country code. A computer has none: always empty.
ZEMO_API std::string getMcc();

/// Mobile network code: always empty, as getMcc().
ZEMO_API std::string getMnc();

/// The computer's DNS host name (without domain). Empty when the system does not tell it.
ZEMO_API std::string getDeviceName();

/// The account name of the calling thread's user. Empty when the system does not tell it.
ZEMO_API std::string getUserName();

/// The first processor's name as the firmware gives it, spaces kept. Empty when the registry key has no such text,
/// "unknown cpu" when there is no such key.
ZEMO_API std::string getCPUModel();

/// The machine's (not the process's) processor architecture: "x86", "arm", "Intel Itanium - based", "x64", "arm64", or
/// "unknown".
ZEMO_API std::string getCpuType();

/// Four dotted numbers, "major.minor.build.revision". From Windows 10 on it is the system's true version with its
/// update revision, else the file version of the system's kernel32.dll. Empty when neither can be read.
ZEMO_API std::string getOsVersion();

/// The computer's model as WMI names it. Slow (up to seconds) until it is known once, then a copy. Initialises COM on
/// the calling thread for the length of the call, multi-threaded; on a thread of another apartment kind, and when WMI
/// fails, the result is empty and the next call tries again. The first call must not race with another one.
ZEMO_API std::string getDeviceModel();

/// The display adapters' names in WMI's order. Slow until they are known once, then a copy. Needs a thread on which COM
/// is not initialised: where it is, in whatever way, nothing is asked and the list is what is known so far. The first
/// call must not race with another one.
ZEMO_API std::vector<std::string> getGPUModelList();

/// The product version in the version resource of the process's executable, "a.b.c.d". Empty without such a resource.
ZEMO_API std::string getAppVersion();

/// Physical memory that the system can use, in bytes.
ZEMO_API long long getPhysicallyInstalledSystemMemory();

/// The same in GiB (1024 * 1024 * 1024 bytes), in single precision, rounded to two decimals.
ZEMO_API double getPhysicallyInstalledSystemMemoryGB();

/// Identifier of a running process, despite the name: the first one whose executable's file name is `processName`
/// (UTF-8, with its extension, without a directory), upper and lower case alike. 0 when none runs or the system does
/// not list its processes. Raises std::range_error when `processName` is no valid UTF-8.
/// \code
/// if (long id = getProcessorID("chrome.exe")) ...
/// \endcode
ZEMO_API long getProcessorID(const std::string& processName);

/// Client width of the process's main window, in pixels as the calling thread sees them. The main window is the first
/// one in the Z order that is visible and has no owner; without one the result is 0.
ZEMO_API unsigned int getWindowWidth();

/// Client height of the same window, in pixels; 0 without one.
ZEMO_API unsigned int getWindowHeight();

/// Whether that window's client area is wider than high. A square is not; false without a window.
ZEMO_API bool getIsLandscapeWindow();

/// The user's advertising identifier; empty where the user turned it off. Raises winrt::hresult_error, or a class
/// derived from it, when the system does not answer.
ZEMO_API std::string getAdvertisingId();

/// Whether the advertising identifier is empty. Raises as getAdvertisingId().
ZEMO_API bool getIsLimitAdTracking();

/// Two-letter code of the user's home region, "KR". Raises winrt::hresult_error, or a class derived from it, when the
/// system does not answer.
ZEMO_API std::string getCountry();

/// BCP-47 tag of the first of the user's preferred languages, "ko-KR". Raises winrt::hresult_error, or a class derived
/// from it, when the system does not answer or there is no language.
ZEMO_API std::string getLanguage();

/// A TCP port that is free on 127.0.0.1 now, in decimal. Nothing reserves it: another process may take it before the
/// caller binds. Empty on failure; a line in the debug log says which step failed, or which port was found.
ZEMO_API std::string GetDynamicPort();

/// Receives the texts that other processes send with ipcSend().
///
/// Only the first call of the process counts; it stands until the process ends, and later calls do nothing. The
/// callback is copied. It runs on the thread that called ipcOpen(), which must own a top-level window and dispatch its
/// messages: `callback` runs inside that dispatch, before the window sees the message, while the sender waits. What it
/// captures must live as long as the process. It must not throw: the exception would have to cross the system's own
/// frames. An empty callback opens the receiver as well, and all texts are dropped.
ZEMO_API void ipcOpen(std::function<void(std::string)> callback);

/// Sends `message` (UTF-8, at most 10000 bytes, up to its first NUL) to the process with the decimal identifier
/// `processId`: to its first top-level window in the Z order, visible or not.
///
/// Returns when the receiver has taken it, which may be long: it must dispatch its messages. A longer message and a
/// process without a window are dropped without a word; text that is no number only writes a line to the debug log.
/// Never throws for what the caller passes.
/// \code
/// ipcSend(std::to_string(getProcessorID("launcher.exe")), R"({"event":"login"})");
/// \endcode
ZEMO_API void ipcSend(const std::string& processId, const std::string& message);

}  // namespace ZEMO::Platform::Misc

namespace ZEMO::Core {

/// Holds nothing: a name for the functions above, where a class is wanted. Any thread.
class Platform {
public:
    Platform() = default;
    /// There is nothing to copy.
    Platform(const Platform&) = default;
    /// Does nothing: there is nothing to assign.
    ZEMO_API Platform& operator=(const Platform& other) noexcept;
    /// Does nothing either.
    ZEMO_API Platform& operator=(Platform&& other) noexcept;
};

}  // namespace ZEMO::Core
