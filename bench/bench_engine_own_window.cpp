// A view in a window of its own beside the engine's sample client, cefclient.exe, with the same page at 1920x1080: what
// the main process uses of the processors, how many pictures reach the screen, when the first one does. And what the
// view uploads against what has truly changed. The two are started by turns, each in a process of its own.
//
// Pictures are told apart on the screen, by one pixel that is another in each frame of the page, so that both are
// counted the same way. Where a software rasterizer draws, the sample client as it comes shows none
// (engine_bench/peer_context.cpp): it runs as it comes, for its time alone, and with that mended. A process's time
// comes from the system that runs Wine where there is one: Wine answers for another process with the caller's own time.
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
#include "engine_bench/counted_swaps.h"
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
    double paints = 0;       ///< a second, with those that bring the same picture once more
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

bool isLarge(HWND picture) {
    RECT client{};
    return GetClientRect(picture, &client) && client.right == kWidth && client.bottom == kHeight;
}

/// Asks for the size, and again where the program had its own idea of it by then.
class LargeWindow {
public:
    bool operator()(HWND picture) {
        if (isLarge(picture)) return true;
        if (Clock::now() < next) return false;
        next = Clock::now() + 1s;
        const HWND outer = GetAncestor(picture, GA_ROOT);
        RECT inner{}, frame{};
        GetClientRect(picture, &inner);
        GetWindowRect(outer, &frame);
        SetWindowPos(outer, HWND_TOPMOST, 10, 10, frame.right - frame.left + kWidth - inner.right,
                     frame.bottom - frame.top + kHeight - inner.bottom, SWP_NOACTIVATE | SWP_ASYNCWINDOWPOS);
        return false;
    }

private:
    Clock::time_point next{};
};

/// The pixel in the middle of a window, as the screen has it.
class MiddlePixel {
public:
    COLORREF operator()(HWND picture) const {
        POINT place{kWidth / 2, kHeight / 2};
        ClientToScreen(picture, &place);
        return GetPixel(screen.get(), place.x, place.y);
    }

private:
    std::unique_ptr<std::remove_pointer_t<HDC>, decltype(&DeleteDC)> screen{
        CreateDCW(L"DISPLAY", nullptr, nullptr, nullptr), &DeleteDC};
};

bool isPage(COLORREF colour) { return GetGValue(colour) == 40; }

/// A program that is measured. Ends with the object.
class Program {
public:
    explicit Program(std::wstring command) {
        STARTUPINFOW start{sizeof start};
        PROCESS_INFORMATION made{};
        if (!CreateProcessW(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start, &made)) {
            throw std::runtime_error("a program does not start");
        }
        process.reset(made.hProcess);
        CloseHandle(made.hThread);
        id = made.dwProcessId;
    }
    ~Program() {
        TerminateProcess(process.get(), 0);
        WaitForSingleObject(process.get(), 10'000);
    }
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    HANDLE handle() const { return process.get(); }
    HWND picture() const { return findPicture(id); }

    /// The system's own modules lie at one place in all processes, and LoadLibraryW has the form of a thread's
    /// function.
    void load(const std::wstring& module) const {
        const size_t size = (module.size() + 1) * sizeof(wchar_t);
        void* const name = VirtualAllocEx(handle(), nullptr, size, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
        auto* const loader = Test::systemFunction<DWORD WINAPI(void*)>(L"kernel32.dll", "LoadLibraryW");
        DWORD loaded = 0;
        if (name && WriteProcessMemory(handle(), name, module.c_str(), size, nullptr)) {
            const Core::UniqueKernelHandle thread(CreateRemoteThread(handle(), nullptr, 0, loader, name, 0, nullptr));
            WaitForSingleObject(thread.get(), 20'000);
            GetExitCodeThread(thread.get(), &loaded);
        }
        if (!loaded) throw std::runtime_error("the sample client does not take the module that keeps its context");
    }

private:
    Core::UniqueKernelHandle process;
    DWORD id = 0;
};

/// What is measured, and how.
struct Client {
    std::string program;  ///< a part of its command line
    std::wstring command;
    std::wstring module = {};  ///< loaded into it
    bool shown = true;         ///< its pictures reach the screen
};

Measured measure(const Client& client) {
    const auto started = Clock::now();
    const Program program(client.command);
    if (!client.module.empty()) program.load(client.module);
    const MiddlePixel middle;
    LargeWindow enlarge;
    Measured result;
    HWND picture = nullptr;
    const auto ready = [&] {
        if (!picture) picture = program.picture();
        if (!picture) return false;
        return enlarge(picture) && (!client.shown || isPage(middle(picture)));
    };
    for (const auto end = started + 40s; !ready(); Sleep(5)) {
        if (Clock::now() > end) throw std::runtime_error("no picture of " + client.program);
    }
    result.firstPictureMs = milliseconds(Clock::now() - started);
    Sleep(client.shown ? 2000 : 8000);  // nothing tells when the other has begun
    const ProcessClock clock(program.handle(), client.program);
    const double before = clock.milliseconds();
    const double swaps = swapsOf(picture);
    const auto begin = Clock::now();
    COLORREF last = 0;
    int pictures = 0;
    while (Clock::now() - begin < kCounted) {
        const COLORREF now = middle(picture);
        if (isPage(now) && now != last) ++pictures;
        last = now;
        Sleep(6);
    }
    const double seconds = milliseconds(Clock::now() - begin) / 1000;
    result.processorMs = (clock.milliseconds() - before) / seconds;
    result.pictures = pictures / seconds;
    result.paints = (swapsOf(picture) - swaps) / seconds;
    return result;
}

/// The view's own process.
int showView(const std::string& address) {
    Test::GameHost game({.clientWidth = 200, .clientHeight = 100, .presentCallback = false});
    const Test::ImportReplaced swaps("SwapBuffers", &countedSwap);
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

void reportRuns(const std::string& name, const std::vector<Measured>& runs, bool shown, const std::string& floor) {
    const auto row = [&](const char* what, const char* unit, double Measured::* figure) {
        std::vector<double> samples;
        for (const Measured& run : runs) samples.push_back(run.*figure);
        report(name + what, unit, samples, floor.empty() ? floor : floor + what);
    };
    row("/processor_of_main_process", "ms/s", &Measured::processorMs);
    if (!shown) return;
    row("/pictures_on_screen", "1/s", &Measured::pictures);
    row("/paints", "1/s", &Measured::paints);
    row("/first_picture", "ms", &Measured::firstPictureMs);
}

std::wstring wide(const std::string& text) { return {text.begin(), text.end()}; }

std::wstring ownFile() {
    wchar_t self[MAX_PATH]{};
    GetModuleFileNameW(nullptr, self, MAX_PATH);
    return self;
}

int run() {
    if (const char* address = std::getenv(kAddressVariable)) return showView(address);
    Test::HttpServer server;
    server.serveHtml("/", changingPage());
    server.serveHtml("/block", blockPage());
    const std::string address = server.url("/");
    const std::wstring peer = L"\"" + wide(ZEMO_BENCH_PEER) +
                              L"\" --off-screen-rendering-enabled --no-sandbox --hide-controls "
                              L"--off-screen-frame-rate=30 --url=" +
                              wide(address);
    const std::wstring self = ownFile();
    const std::wstring module = self.substr(0, self.find_last_of(L'\\') + 1) + L"test_helpers\\bench_peer_context.dll";
    const Client own{"--own-window-run", L"\"" + self + L"\" --own-window-run"};
    const Client asItComes{"cefclient.exe", peer, {}, false};
    const Client shown{"cefclient.exe", peer, module};
    // With the switch that the view's engine has too.
    const Client inSoftware{"cefclient.exe", peer + L" --disable-gpu-compositing", module};
    std::vector<Measured> ours, theirs, theirsShown, theirsInSoftware;
    for (int i = 0; i < kRuns; ++i) {
        SetEnvironmentVariableA(kAddressVariable, address.c_str());
        ours.push_back(measure(own));
        SetEnvironmentVariableA(kAddressVariable, nullptr);
        theirs.push_back(measure(asItComes));
        theirsShown.push_back(measure(shown));
        theirsInSoftware.push_back(measure(inSoftware));
    }
    reportRuns("sample_client_as_it_comes", theirs, false, {});
    reportRuns("sample_client", theirsShown, true, {});
    reportRuns("sample_client_without_gpu", theirsInSoftware, true, {});
    reportRuns("own_window", ours, true, "sample_client");
    reportUploads(server.url("/block"));
    return 0;
}

}  // namespace

int main() { ZEMO::Bench::leaveWith(run); }
