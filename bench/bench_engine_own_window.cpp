// A view in a window of its own beside the engine's sample client, cefclient.exe, with the same page at 1920x1080: what
// the main process uses of the processors, how many pictures reach the screen, when the first one does. And what the
// view uploads against what has truly changed. The two are started by turns, each in a process of its own.
//
// Pictures are told apart on the screen, by one pixel that is another in each frame of the page, so that both are
// counted the same way. A process's time comes from the system that runs Wine where there is one: Wine answers for
// another process with the caller's own time.
#include <windows.h>

#include <GL/gl.h>

#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iterator>
#include <memory>
#include <sstream>
#include <stdexcept>

#include "core/unique_handle.h"
#include "engine/game_host.h"
#include "engine_bench/measured.h"
#include "engine_bench/pages.h"
#include "support/http_server.h"
#include "support/import_replaced.h"
#include "support/own_window.h"

namespace {

using namespace ZEMO;
using namespace ZEMO::Bench;

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;
constexpr int kRuns = 3;
constexpr auto kCounted = 8s;
constexpr char kAddressVariable[] = "ZEMO_BENCH_OWN_WINDOW";

struct Measured {
    double firstPictureMs = 0;
    double processorMs = 0;  ///< a second
    double pictures = 0;     ///< a second
};

/// Time of one process. Found once by a part of its command line.
class ProcessClock {
public:
    ProcessClock(HANDLE watched, const std::string& program) : process(watched), file(statOf(program)) {}
    double milliseconds() const {
        if (file.empty()) {
            FILETIME made{}, ended{}, kernel{}, user{};
            GetProcessTimes(process, &made, &ended, &kernel, &user);
            return (number(kernel) + number(user)) / 1e4;
        }
        std::string text = contents(file);
        std::istringstream fields(text.substr(text.rfind(')') + 2));
        const std::vector<std::string> list{std::istream_iterator<std::string>(fields), {}};
        constexpr size_t kUser = 11, kKernel = 12;  // counted from the state, the field behind the name
        constexpr double kTickMs = 10;
        if (list.size() <= kKernel) throw std::runtime_error("no times in " + file);
        return (std::stod(list[kUser]) + std::stod(list[kKernel])) * kTickMs;
    }

private:
    static double number(const FILETIME& time) {
        return static_cast<double>(ULARGE_INTEGER{{time.dwLowDateTime, time.dwHighDateTime}}.QuadPart);
    }
    static std::string contents(const std::string& name) {
        std::ifstream in(name, std::ios::binary);
        return {std::istreambuf_iterator<char>(in), {}};
    }
    /// The newest process of that program that is none of the engine's children; empty where there is no such table.
    static std::string statOf(const std::string& program) {
        std::string found;
        int newest = 0;
        WIN32_FIND_DATAA entry{};
        const HANDLE list = FindFirstFileA("Z:\\proc\\*", &entry);
        if (list == INVALID_HANDLE_VALUE) return {};
        do {
            const int id = std::atoi(entry.cFileName);
            if (id <= newest || id == 0) continue;
            const std::string folder = std::string("Z:\\proc\\") + entry.cFileName;
            const std::string line = contents(folder + "\\cmdline");
            if (line.find(program) == std::string::npos || line.find("--type=") != std::string::npos) continue;
            newest = id;
            found = folder + "\\stat";
        } while (FindNextFileA(list, &entry));
        FindClose(list);
        return found;
    }

    HANDLE process;
    std::string file;
};

/// The window of a process whose pictures count: the largest with one of these classes.
HWND findPicture(DWORD process) {
    struct Search {
        DWORD process;
        HWND found = nullptr;
        static BOOL CALLBACK child(HWND window, LPARAM parameter) {
            wchar_t name[64]{};
            GetClassNameW(window, name, 64);
            if (std::wstring(name) == L"ZEMOExtraWindowClass" || std::wstring(name) == L"Client_OsrWindow") {
                reinterpret_cast<Search*>(parameter)->found = window;
            }
            return TRUE;
        }
        static BOOL CALLBACK top(HWND window, LPARAM parameter) {
            DWORD owner = 0;
            GetWindowThreadProcessId(window, &owner);
            if (owner != reinterpret_cast<Search*>(parameter)->process) return TRUE;
            child(window, parameter);
            EnumChildWindows(window, child, parameter);
            return TRUE;
        }
    } search{process};
    EnumWindows(Search::top, reinterpret_cast<LPARAM>(&search));
    return search.found;
}

void makeLarge(HWND picture) {
    const HWND outer = GetAncestor(picture, GA_ROOT);
    RECT inner{}, frame{};
    GetClientRect(picture, &inner);
    if (inner.right == kWidth && inner.bottom == kHeight) return;
    GetWindowRect(outer, &frame);
    SetWindowPos(outer, HWND_TOPMOST, 10, 10, frame.right - frame.left + kWidth - inner.right,
                 frame.bottom - frame.top + kHeight - inner.bottom, SWP_NOACTIVATE | SWP_ASYNCWINDOWPOS);
}

COLORREF middlePixel(HDC screen, HWND picture) {
    POINT place{kWidth / 2, kHeight / 2};
    ClientToScreen(picture, &place);
    return GetPixel(screen, place.x, place.y);
}

bool isPage(COLORREF colour) { return GetGValue(colour) == 40; }

Measured measure(std::wstring command, const std::string& program) {
    STARTUPINFOW start{sizeof start};
    PROCESS_INFORMATION made{};
    const auto started = Clock::now();
    if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &made)) {
        throw std::runtime_error("cannot start " + program);
    }
    const Core::UniqueKernelHandle process(made.hProcess), thread(made.hThread);
    struct Ender {
        HANDLE process;
        ~Ender() {
            TerminateProcess(process, 0);
            WaitForSingleObject(process, 10'000);
        }
    } const ender{made.hProcess};
    const HDC screen = CreateDCW(L"DISPLAY", nullptr, nullptr, nullptr);
    const std::unique_ptr<std::remove_pointer_t<HDC>, decltype(&DeleteDC)> owner(screen, &DeleteDC);

    Measured result;
    HWND picture = nullptr;
    RECT client{};
    const auto ready = [&] {
        if (!picture) picture = findPicture(made.dwProcessId);
        if (!picture) return false;
        makeLarge(picture);
        GetClientRect(picture, &client);
        if (client.right != kWidth || client.bottom != kHeight || !isPage(middlePixel(screen, picture))) return false;
        result.firstPictureMs = milliseconds(Clock::now() - started);
        return true;
    };
    for (const auto end = started + 40s; !ready(); Sleep(5)) {
        if (Clock::now() > end) throw std::runtime_error("no picture of " + program);
    }
    Sleep(2000);
    const ProcessClock clock(made.hProcess, program);
    const double before = clock.milliseconds();
    const auto begin = Clock::now();
    COLORREF last = 0;
    int pictures = 0;
    while (Clock::now() - begin < kCounted) {
        const COLORREF now = middlePixel(screen, picture);
        if (isPage(now) && now != last) ++pictures;
        last = now;
        Sleep(6);
    }
    const double seconds = milliseconds(Clock::now() - begin) / 1000;
    result.processorMs = (clock.milliseconds() - before) / seconds;
    result.pictures = pictures / seconds;
    return result;
}

/// The view's own process.
int showView(const std::string& address) {
    Test::GameHost game({.clientWidth = 200, .clientHeight = 100, .presentCallback = false});
    Test::NavigationRecorder events;
    auto view = game.makeView(address, events);
    view->setDisplayMode(1);
    view->setSize(kWidth, kHeight);
    view->show();
    game.waitFor("its end by the driver", [] { return false; }, 90s);
    return 0;
}

std::atomic<int64_t> uploadedPixels{0};

/// Bytes that a page of one changing block makes the view upload, against the block's own.
void reportUploads(const std::string& address) {
    using Whole = void APIENTRY(GLenum, GLint, GLint, GLsizei, GLsizei, GLint, GLenum, GLenum, const void*);
    using Part = void APIENTRY(GLenum, GLint, GLint, GLint, GLsizei, GLsizei, GLenum, GLenum, const void*);
    Whole* whole = [](GLenum target, GLint level, GLint internal, GLsizei width, GLsizei height, GLint border,
                      GLenum format, GLenum type, const void* pixels) {
        uploadedPixels += int64_t{width} * height;
        Test::systemFunction<Whole>(L"opengl32.dll", "glTexImage2D")(target, level, internal, width, height, border,
                                                                     format, type, pixels);
    };
    Part* part = [](GLenum target, GLint level, GLint x, GLint y, GLsizei width, GLsizei height, GLenum format,
                    GLenum type, const void* pixels) {
        uploadedPixels += int64_t{width} * height;
        Test::systemFunction<Part>(L"opengl32.dll", "glTexSubImage2D")(target, level, x, y, width, height, format, type,
                                                                       pixels);
    };
    Test::GameHost game({.clientWidth = 200, .clientHeight = 100, .presentCallback = false});
    const Test::ImportReplaced first("glTexImage2D", whole), second("glTexSubImage2D", part);
    Test::NavigationRecorder events;
    auto view = game.makeView(address, events);
    view->setDisplayMode(1);
    view->setSize(kWidth, kHeight);
    view->show();
    if (!game.waitFor("the page", [&] { return events.has("completed"); })) throw std::runtime_error("no page");
    game.pass(2s);
    std::vector<double> uploaded;
    for (int second_ = 0; second_ < 8; ++second_) {
        const int64_t before = uploadedPixels;
        game.pass(1s);
        uploaded.push_back(static_cast<double>(uploadedPixels - before) * 4 / 1e6);
    }
    constexpr double kChanged = 30.0 * kBlockSize * kBlockSize * 4 / 1e6;
    report("block_1080p30/uploaded", "MB/s", uploaded, "block_1080p30/changed");
    report("block_1080p30/changed", "MB/s", {kChanged});
    report("block_1080p30/whole_frames", "MB/s", {30.0 * kWidth * kHeight * 4 / 1e6}, "block_1080p30/changed");
    view.reset();
}

void reportRuns(const char* name, const std::vector<Measured>& runs, const char* floor) {
    const auto row = [&](const char* what, const char* unit, double Measured::* figure) {
        std::vector<double> samples;
        for (const Measured& run : runs) samples.push_back(run.*figure);
        report(std::string(name) + what, unit, samples, floor ? floor + std::string(what) : std::string());
    };
    row("/processor_of_main_process", "ms/s", &Measured::processorMs);
    row("/pictures_on_screen", "1/s", &Measured::pictures);
    row("/first_picture", "ms", &Measured::firstPictureMs);
}

int run() {
    if (const char* address = std::getenv(kAddressVariable)) return showView(address);
    Test::HttpServer server;
    server.serveHtml("/", changingPage());
    server.serveHtml("/block", blockPage());
    const std::string address = server.url("/");
    wchar_t self[MAX_PATH]{};
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    const std::wstring wideAddress(address.begin(), address.end());
    const std::string peer = ZEMO_BENCH_PEER;
    const std::wstring peerCommand = L"\"" + std::wstring(peer.begin(), peer.end()) +
                                     L"\" --off-screen-rendering-enabled --no-sandbox --hide-controls "
                                     L"--off-screen-frame-rate=30 --url=" +
                                     wideAddress;
    std::vector<Measured> ours, theirs, inSoftware;
    for (int i = 0; i < kRuns; ++i) {
        SetEnvironmentVariableA(kAddressVariable, address.c_str());
        ours.push_back(measure(L"\"" + std::wstring(self) + L"\" --own-window-run", "--own-window-run"));
        SetEnvironmentVariableA(kAddressVariable, nullptr);
        theirs.push_back(measure(peerCommand, "cefclient.exe"));
        // With the switch that the view's engine has too.
        inSoftware.push_back(measure(peerCommand + L" --disable-gpu-compositing", "cefclient.exe"));
    }
    reportRuns("sample_client", theirs, nullptr);
    reportRuns("sample_client_without_gpu", inSoftware, nullptr);
    reportRuns("own_window", ours, "sample_client");
    reportUploads(server.url("/block"));
    return 0;
}

}  // namespace

int main() { ZEMO::Bench::leaveWith(run); }
