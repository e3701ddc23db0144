#include "engine_bench/engine_run.h"

#include <windows.h>

#include <tlhelp32.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "core/unique_handle.h"
#include "engine/game_host.h"
#include "engine_bench/bare_engine.h"
#include "engine_bench/frame_watch.h"
#include "engine_bench/measured.h"
#include "engine_bench/pages.h"
#include "engine_bench/script_times.h"

namespace ZEMO::Bench {
namespace {

constexpr char kOrderVariable[] = "ZEMO_BENCH_ORDER";
constexpr char kResultVariable[] = "ZEMO_BENCH_RESULT";
constexpr DWORD kRunLimitMs = 90'000;
constexpr auto kHelpersLimit = 20s;
/// A game opens its first view long after it has started the engine; after this the engine's own start is over. A rate
/// does not ask for it.
constexpr auto kSettle = 1s;
/// The rate of a page that has just appeared is not yet its own.
constexpr auto kWarmUp = 1s;
constexpr wchar_t kBareCache[] = L"bench_cache";

std::string toText(const RunOrder& order) {
    return std::format("{} {} {} {} {:d} {}", order.host == Host::Library ? "library" : "bare", order.width,
                       order.height, order.countSeconds, order.runsScripts, order.address);
}

RunOrder orderFrom(const std::string& text) {
    RunOrder order;
    std::string host;
    std::istringstream words(text);
    words >> host >> order.width >> order.height >> order.countSeconds >> order.runsScripts >> order.address;
    if (!words || (host != "library" && host != "bare")) throw std::runtime_error("no order: " + text);
    order.host = host == "library" ? Host::Library : Host::Bare;
    return order;
}

void require(bool held, const char* what) {
    if (!held) throw std::runtime_error(std::string("no ") + what);
}

/// The part that is the same for both hosts: waits for the frames and turns their times into the result.
RunResult watchFrames(Test::GameHost& game, FrameWatch& watch, Clock::time_point started, int countSeconds) {
    RunResult result;
    require(game.waitFor("first frame", [&] { return watch.firstFrame().has_value(); }), "first frame");
    result.firstFrameMs = milliseconds(*watch.firstFrame() - started);
    if (countSeconds == 0) {
        require(game.waitFor("page", [&] { return watch.pageShown().has_value(); }), "frame that shows the page");
        result.pageShownMs = milliseconds(*watch.pageShown() - started);
        return result;
    }
    require(game.waitFor("animation", [&] { return watch.pictureCount() > 5; }), "animation");
    game.pass(kWarmUp);
    (void)watch.takePictures();
    const auto begin = Clock::now();
    const auto end = begin + std::chrono::seconds(countSeconds);
    game.pass(std::chrono::seconds(countSeconds) + 50ms);
    std::vector<Clock::time_point> pictures = watch.takePictures();
    std::erase_if(pictures, [&](Clock::time_point time) { return time < begin || time >= end; });
    require(pictures.size() > 1, "new pictures");
    result.pictures = static_cast<int>(pictures.size());
    result.framesPerSecond = (result.pictures - 1) * 1000.0 / milliseconds(pictures.back() - pictures.front());
    return result;
}

RunResult runLibrary(const RunOrder& order) {
    Test::GameHost game({.clientWidth = order.width, .clientHeight = order.height, .presentCallback = false});
    if (order.countSeconds == 0) game.pass(kSettle);
    FrameWatch watch(order.width, order.height, kStillPixel);
    UI::setUIOsrFramePresentCallback([&watch](const void* pixels, int width, int height, int, int, int, int) {
        watch.frame(pixels, width, height);
    });
    Test::NavigationRecorder events;
    const auto started = Clock::now();
    auto view = game.makeView(order.address, events);
    view->show();
    const RunResult result = watchFrames(game, watch, started, order.countSeconds);
    view->close();
    view.reset();
    return result;
}

RunResult runBare(const RunOrder& order) {
    Test::GameHost game({.clientWidth = order.width,
                         .clientHeight = order.height,
                         .presentCallback = false,
                         .startLibrary = false});  // the window alone, and the switch for software compositing
    startBareEngine(kBareCache);
    if (order.countSeconds == 0) game.pass(kSettle);
    FrameWatch watch(order.width, order.height, kStillPixel);
    const CefRefPtr<BareClient> client =
        new BareClient(order.width, order.height,
                       [&watch](const void* pixels, int width, int height) { watch.frame(pixels, width, height); });
    const auto started = Clock::now();
    client->open(game.window, order.address);
    const RunResult result = watchFrames(game, watch, started, order.countSeconds);
    client->close();
    require(game.waitFor("the browser's end", [&] { return client->closed(); }), "end of the browser");
    return result;
}

RunResult runOrder(const RunOrder& order) {
    if (order.runsScripts) return {.scripts = order.host == Host::Library ? timeLibrary(order) : timeBare(order)};
    return order.host == Host::Library ? runLibrary(order) : runBare(order);
}

int carryOut() {
    const char* file = std::getenv(kResultVariable);
    require(file != nullptr, "place for the result");
    const RunOrder order = orderFrom(std::getenv(kOrderVariable));
    const RunResult result = runOrder(order);
    std::ofstream out(file);
    out << result.firstFrameMs << ' ' << result.pageShownMs << ' ' << result.pictures << ' ' << result.framesPerSecond;
    for (const std::vector<double>& times : result.scripts) {
        out << ' ' << times.size();
        for (const double time : times) out << ' ' << time;
    }
    out << " done\n";
    return 0;
}

std::wstring programPath() {
    wchar_t path[1024];
    return std::wstring(path, GetModuleFileNameW(nullptr, path, 1024));
}

/// Whether helpers of that engine still run. By name: a desktop of Wine's may hang below the first program with a
/// window.
bool hasHelpers(DWORD processId) {
    const Core::UniqueFileHandle snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32FirstW(snapshot.get(), &entry); more; more = Process32NextW(snapshot.get(), &entry)) {
        if (entry.th32ParentProcessID == processId && _wcsicmp(entry.szExeFile, L"cef.subprocess.exe") == 0)
            return true;
    }
    return false;
}

/// The engine's helpers end a moment after their host; until then they would take time from the next run.
void waitForHelpers(DWORD processId) {
    const auto end = Clock::now() + kHelpersLimit;
    while (hasHelpers(processId)) {
        if (Clock::now() > end) throw std::runtime_error("an engine's helpers outlive their run");
        Sleep(20);
    }
}

std::string contentOf(const std::filesystem::path& file) {
    std::ifstream in(file);
    return {std::istreambuf_iterator<char>(in), {}};
}

}  // namespace

RunResult runInOwnProcess(const RunOrder& order) {
    const std::filesystem::path program = programPath();
    const std::filesystem::path results = program.parent_path() / "bench_result.txt";
    const std::filesystem::path errors = program.parent_path() / "bench_result.txt.err";
    std::error_code ignored;
    std::filesystem::remove(results, ignored);
    SetEnvironmentVariableA(kOrderVariable, toText(order).c_str());
    SetEnvironmentVariableW(L"ZEMO_BENCH_RESULT", results.c_str());

    // Nothing is inherited: a helper of the engine that lives on must not hold this program's output open.
    std::wstring commandLine = L"\"" + program.wstring() + L"\"";
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION made{};
    if (!CreateProcessW(program.c_str(), commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &startup,
                        &made)) {
        throw std::runtime_error(std::format("the run does not start: error {}", GetLastError()));
    }
    const Core::UniqueKernelHandle process(made.hProcess);
    const Core::UniqueKernelHandle thread(made.hThread);
    if (WaitForSingleObject(process.get(), kRunLimitMs) != WAIT_OBJECT_0) {
        TerminateProcess(process.get(), 1);
        WaitForSingleObject(process.get(), kRunLimitMs);
    }
    DWORD code = 1;
    GetExitCodeProcess(process.get(), &code);
    waitForHelpers(made.dwProcessId);

    RunResult result;
    std::string word;
    std::istringstream words(contentOf(results));
    words >> result.firstFrameMs >> result.pageShownMs >> result.pictures >> result.framesPerSecond;
    for (std::vector<double>& times : result.scripts) {
        size_t count = 0;
        words >> count;
        times.resize(words ? count : 0);
        for (double& time : times) words >> time;
    }
    words >> word;
    const std::string said = contentOf(errors);
    std::filesystem::remove(results, ignored);
    std::filesystem::remove(errors, ignored);
    if (code != 0 || word != "done") {
        throw std::runtime_error(std::format("run \"{}\" ended with {}: {}", toText(order), code, said));
    }
    return result;
}

void mainOfRuns(int (*drive)()) {
    if (!std::getenv(kOrderVariable)) {
        // Wine takes a desktop down a moment after its last user, and a run that starts right then finds none.
        CreateWindowExW(0, L"STATIC", L"desktop holder", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
        ReleaseDC(nullptr, GetDC(nullptr));
        leaveWith(drive);
    }
    if (const char* file = std::getenv(kResultVariable)) {
        // A process that inherits nothing has nowhere to complain.
        if (!std::freopen((std::string(file) + ".err").c_str(), "w", stderr)) std::abort();
    }
    leaveWith(carryOut);
}

}  // namespace ZEMO::Bench
