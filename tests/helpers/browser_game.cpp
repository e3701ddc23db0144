// A game that loads the library at run time and opens a long address with a cold Chrome as the default browser, so that
// the library's loopback responder stands. Chrome is a stand-in, which only writes down the short address.
//
//   follow URL_FILE            prints the short address of the address in the file, serves until its input ends
//   leave WAY [held]           leaves with code 42 in the way named; held: while a silent client holds the responder.
//                              Sets the event that ZEMO_LEAVING names right before.
#include <winsock2.h>

#include <windows.h>

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

#include "helpers/loopback_client.h"
#include "helpers/stand_in_browser_stage.h"
#include "support/exported.h"
#include "zemo/url.h"

namespace {

using ZEMO::Test::LoopbackClient;
using ZEMO::Test::StandInBrowserStage;

constexpr UINT kLeft = 42;

void require(bool holds, const char* what) {
    if (!holds) throw std::runtime_error(what);
}

class Library {
public:
    Library() {
        // the helpers lie in a directory below the library's
        std::vector<wchar_t> path(32768);
        GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size()));
        std::wstring directory = path.data();
        for (int i = 0; i < 2; ++i) directory.resize(directory.find_last_of(L'\\'));
        module_ = LoadLibraryW((directory + L"\\ZEMOUIFramework.dll").c_str());
        require(module_, "library not loaded");
        openBrowser_ = reinterpret_cast<OpenBrowser>(ZEMO::Test::exportedUiFunction(module_, "openBrowser"));
        setCallback_ =
            reinterpret_cast<SetCallback>(ZEMO::Test::exportedUiFunction(module_, "setUIOpenExternalBrowserCallback"));
        require(openBrowser_ && setCallback_, "export missing");
    }

    void openBrowser(const std::string& url) const { openBrowser_(ZEMO::Core::URL(url)); }
    void setCallback(std::function<bool(const std::string&)> callback) const { setCallback_(std::move(callback)); }
    void free() const { require(FreeLibrary(module_), "library not freed"); }
    /// Gives up every reference there may be: other parts of the process may have taken some by the way.
    void freeAll() const {
        for (int i = 0; i < 64 && isLoaded(); ++i) FreeLibrary(module_);
    }
    static bool isLoaded() { return GetModuleHandleW(L"ZEMOUIFramework.dll") != nullptr; }

private:
    using OpenBrowser = void (*)(const ZEMO::Core::IURL&);
    using SetCallback = void (*)(std::function<bool(const std::string&)>);
    HMODULE module_ = nullptr;
    OpenBrowser openBrowser_ = nullptr;
    SetCallback setCallback_ = nullptr;
};

// The short address that the stand-in was given. What the stage changed is put back before this returns.
std::string openColdChrome(const Library& library, const std::string& url) {
    StandInBrowserStage stage;
    stage.makeDefault(L"chrome.exe");
    library.openBrowser(url);
    require(stage.waitForStarts(1), "no browser was started");
    const auto starts = stage.takeStarts();
    require(starts.size() == 1 && starts[0].arguments.size() == 1, "not one start with one argument");
    return starts[0].arguments[0];
}

unsigned short portOf(const std::string& shortAddress) {
    constexpr char kPrefix[] = "http://127.0.0.1:";
    require(shortAddress.starts_with(kPrefix), "not a short address");
    return static_cast<unsigned short>(std::stoi(shortAddress.substr(sizeof(kPrefix) - 1)));
}

int follow(const char* urlFile) {
    std::ifstream in(urlFile, std::ios::binary);
    const std::string url((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    require(!url.empty(), "no address in the file");
    const Library library;
    std::printf("%s\n", openColdChrome(library, url).c_str());
    std::fflush(stdout);
    while (std::getchar() != EOF) {
    }
    return 0;
}

void announceLeaving() {
    wchar_t name[256] = {};
    GetEnvironmentVariableW(L"ZEMO_LEAVING", name, 256);
    const HANDLE leaving = OpenEventW(EVENT_MODIFY_STATE, FALSE, name);
    require(leaving && SetEvent(leaving), "nobody waits for the leaving");
}

int leave(const std::string& way, bool isHeld) {
    const Library library;
    if (way == "free-unused") {
        library.free();
        require(!Library::isLoaded(), "library still loaded although nothing of it runs");
        announceLeaving();
        return kLeft;
    }

    const unsigned short port = portOf(openColdChrome(library, "https://x/?" + std::string(5000, 'q')));
    const auto isServing = [port] { return ZEMO::Test::exchange(port, "x") == "HTTP/1.1 400 Bad Request\r\n\r\n"; };
    require(isServing(), "responder does not answer");
    std::optional<LoopbackClient> silent;
    std::optional<LoopbackClient> behind;
    if (isHeld) {
        silent.emplace(port);
        // no answer to this one shows that the worker is in the silent client's recv
        behind.emplace(port);
        behind->setReceiveTimeout(300);
        require(behind->send("x") && behind->receiveAll().error == WSAETIMEDOUT, "worker is not held");
    }

    if (way == "return") {
        announceLeaving();
        return kLeft;
    }
    if (way == "exit") {
        announceLeaving();
        std::exit(kLeft);
    }
    if (way == "ExitProcess") {
        announceLeaving();
        ExitProcess(kLeft);
    }
    if (way == "ExitProcess-other-thread") {
        std::thread([] {
            announceLeaving();
            ExitProcess(kLeft);
        }).detach();
        Sleep(INFINITE);
    }
    if (way == "ExitProcess-callback") {
        library.setCallback([](const std::string&) -> bool {
            announceLeaving();
            ExitProcess(kLeft);
        });
        library.openBrowser("http://x");
        Sleep(INFINITE);
    }
    if (way == "FreeLibrary" || way == "FreeLibrary-ExitProcess") {
        library.freeAll();
        require(Library::isLoaded(), "library unmapped under its own thread");
        require(isHeld || isServing(), "responder does not answer after FreeLibrary");
        announceLeaving();
        if (way == "FreeLibrary-ExitProcess") ExitProcess(kLeft);
        return kLeft;
    }
    if (way == "TerminateProcess") {
        announceLeaving();
        TerminateProcess(GetCurrentProcess(), kLeft);
    }
    require(false, "unknown way");
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX);
    try {
        const std::string verb = argc > 1 ? argv[1] : "";
        if (verb == "follow" && argc == 3) return follow(argv[2]);
        if (verb == "leave" && argc >= 3) return leave(argv[2], argc > 3 && std::string(argv[3]) == "held");
        std::fprintf(stderr, "browser_game: unknown arguments\n");
    } catch (const std::exception& error) {
        std::fprintf(stderr, "browser_game: %s\n", error.what());
    }
    return 1;
}
