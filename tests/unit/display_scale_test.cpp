#include "render/display_scale.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "core/unique_handle.h"
#include "layers/close_button.h"
#include "support/import_replaced.h"

// The awareness of a process is remembered from the first question on, so each state needs a process of its own: every
// test starts this program again with the name of a probe in its environment. The probe runs there before main, prints
// what it missed and answers by its exit code.
namespace ZEMO::UI {
namespace {

using Core::UniqueKernelHandle;

constexpr const char* kProbeVariable = "ZEMO_TEST_DPI_PROBE";
constexpr int kProbePassed = 42;
constexpr int kProbeFailed = 43;
constexpr int kUndeclared = -1;

bool probeFailed = false;
void check(bool holds, const char* claim) {
    if (holds) return;
    probeFailed = true;
    std::fprintf(stderr, "missed in the probe: %s\n", claim);
}

float systemScale() {
    const Core::WindowDc screen(nullptr);
    return static_cast<float>(GetDeviceCaps(screen.get(), LOGPIXELSX)) / 96.0f;
}

class ProbeWindow {
public:
    ProbeWindow() { check(handle_ != nullptr, "window made"); }
    ~ProbeWindow() { DestroyWindow(handle_); }
    ProbeWindow(const ProbeWindow&) = delete;
    ProbeWindow& operator=(const ProbeWindow&) = delete;
    HWND get() const { return handle_; }

private:
    HWND handle_ = CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
};

// Declares the awareness, checks that the system took it, and gives back what the system says in the end.
int declareAwareness(int awareness) {
    const HMODULE shcore = LoadLibraryW(L"shcore.dll");
    const auto set = reinterpret_cast<HRESULT(WINAPI*)(int)>(GetProcAddress(shcore, "SetProcessDpiAwareness"));
    const auto get = reinterpret_cast<HRESULT(WINAPI*)(HANDLE, int*)>(GetProcAddress(shcore, "GetProcessDpiAwareness"));
    check(awareness == kUndeclared || SUCCEEDED(set(awareness)), "awareness declared");
    int actual = -1;
    check(SUCCEEDED(get(nullptr, &actual)), "awareness read back");
    check(awareness == kUndeclared || actual == awareness, "declared awareness in force");
    return actual;
}

void probeScale(int awareness) {
    const bool perMonitor = declareAwareness(awareness) == 2;
    const ProbeWindow window;
    check(isPerMonitorDpiAware() == perMonitor, "awareness as declared");
    check(isPerMonitorDpiAware() == perMonitor, "same answer to the second question");
    check(getWindowScale(nullptr) == systemScale(), "system scale without a window");
    const float expected = perMonitor ? static_cast<float>(GetDpiForWindow(window.get())) / 96.0f : systemScale();
    check(expected > 0.0f, "scale above 0");
    check(getWindowScale(window.get()) == expected, "window's scale");
}

// Windows of several scales need monitors of several scales, so the answers of GetDpiForWindow (looked up by its name)
// are the test's here. 0 stands for a window that the system does not know.
UINT dpiOfWindows = 0;
HWND askedFor = nullptr;
UINT WINAPI fakeDpiForWindow(HWND window) {
    askedFor = window;
    return dpiOfWindows;
}

const auto systemGetProcAddress =
    ZEMO::Test::systemFunction<decltype(GetProcAddress)>(L"kernel32.dll", "GetProcAddress");
bool hasGetDpiForWindow = true;
FARPROC WINAPI getProcAddressWithFakeDpi(HMODULE module, const char* name) {
    if (reinterpret_cast<ULONG_PTR>(name) < 0x10000 || std::strcmp(name, "GetDpiForWindow") != 0)
        return systemGetProcAddress(module, name);
    check(module == GetModuleHandleW(L"user32.dll"), "looked for in user32.dll");
    return hasGetDpiForWindow ? reinterpret_cast<FARPROC>(&fakeDpiForWindow) : nullptr;
}

void probeOtherScale(int awareness) {
    const bool perMonitor = declareAwareness(awareness) == 2;
    const ZEMO::Test::ImportReplaced replaced("GetProcAddress", getProcAddressWithFakeDpi);
    const ProbeWindow window;
    for (const UINT dpi : {120u, 144u, 240u}) {
        dpiOfWindows = dpi;
        const float scale = static_cast<float>(dpi) / 96.0f;
        check(scale != systemScale(), "a scale that the system does not have");
        check(getWindowScale(window.get()) == (perMonitor ? scale : systemScale()), "scale of this window");
        check(askedFor == (perMonitor ? window.get() : nullptr), "asked for this window");
        check(getWindowScale(nullptr) == systemScale(), "system scale without a window");
    }
    dpiOfWindows = 0;
    check(getWindowScale(window.get()) == systemScale(), "system scale for a window without dots");
}

void probeNoDpiForWindow(int awareness) {
    check(declareAwareness(awareness) == 2, "per-monitor aware");
    const ZEMO::Test::ImportReplaced replaced("GetProcAddress", getProcAddressWithFakeDpi);
    hasGetDpiForWindow = false;
    dpiOfWindows = 144;
    const ProbeWindow window;
    check(getWindowScale(window.get()) == systemScale(), "system scale where windows have none");
}

void probeMoved(int awareness) {
    check(declareAwareness(awareness) == 2, "per-monitor aware");
    const ZEMO::Test::ImportReplaced replaced("GetProcAddress", getProcAddressWithFakeDpi);
    const ProbeWindow window;
    dpiOfWindows = 144;
    XButton button(window.get());
    dpiOfWindows = 192;
    check(getWindowScale(window.get()) == 2.0f, "the monitor's scale is another now");
    const RECT client{0, 0, 2000, 600};
    button.onResize(client);
    check(button.hitTest({1916, 30}, client) && button.hitTest({1969, 83}, client), "within at scale 1.5");
    check(!button.hitTest({1915, 30}, client) && !button.hitTest({1916, 29}, client), "outside, left and above");
    check(!button.hitTest({1970, 83}, client) && !button.hitTest({1969, 84}, client), "outside, right and below");
}

void probeRemembered(int awareness) {
    check(!isPerMonitorDpiAware(), "not per-monitor aware at the start");
    check(declareAwareness(awareness) == 2, "per-monitor aware afterwards");
    check(!isPerMonitorDpiAware(), "first answer kept");
    const ProbeWindow window;
    check(getWindowScale(window.get()) == systemScale(), "system scale kept");
}

void probeThreads(int awareness) {
    const bool perMonitor = declareAwareness(awareness) == 2;
    std::vector<int> answers(8, -1);
    std::vector<std::thread> threads;
    for (int& answer : answers) threads.emplace_back([&answer] { answer = isPerMonitorDpiAware(); });
    for (std::thread& thread : threads) thread.join();
    for (const int answer : answers) check(answer == int{perMonitor}, "same answer on every thread");
}

void probeWindowGone(int awareness) {
    declareAwareness(awareness);
    HWND gone = nullptr;
    {
        const ProbeWindow window;
        gone = window.get();
    }
    check(getWindowScale(gone) == systemScale(), "system scale for a window that has gone");
}

// A session has one scale, so the screen's dots are the test's here. `dots`: what the system says at the first
// question.
int dotsOfTheScreen = 0;
int WINAPI fakeDeviceCaps(HDC, int what) {
    check(what == LOGPIXELSX, "asked for dots across");
    return dotsOfTheScreen;
}
void probeSystemScale(int dots) {
    const ZEMO::Test::ImportReplaced replaced("GetDeviceCaps", fakeDeviceCaps);
    dotsOfTheScreen = dots;
    const float expected = dots == 0 ? 1.0f : static_cast<float>(dots) / 96.0f;
    check(getWindowScale(nullptr) == expected, "dots of 96 to the scale, 1 without dots");
    dotsOfTheScreen = 240;
    check(getWindowScale(nullptr) == expected, "asked for once");
}

struct Probe {
    const char* name;
    void (*run)(int awareness);
};
constexpr Probe kProbes[] = {{"scale", probeScale},
                             {"other scale", probeOtherScale},
                             {"no function", probeNoDpiForWindow},
                             {"moved", probeMoved},
                             {"remembered", probeRemembered},
                             {"threads", probeThreads},
                             {"window gone", probeWindowGone},
                             {"system scale", probeSystemScale}};

const bool isTestProcess = [] {
    char request[64] = {};
    if (GetEnvironmentVariableA(kProbeVariable, request, sizeof request) == 0) return true;
    const std::string text = request;  // "name:awareness"
    const size_t colon = text.find(':');
    bool found = false;
    for (const Probe& probe : kProbes) {
        if (text.substr(0, colon) != probe.name) continue;
        found = true;
        probe.run(std::atoi(text.c_str() + colon + 1));
    }
    check(found, "known probe");
    ExitProcess(probeFailed ? kProbeFailed : kProbePassed);
}();

int runProbe(const std::string& name, int awareness) {
    EXPECT_TRUE(isTestProcess);
    wchar_t program[1024] = {};
    GetModuleFileNameW(nullptr, program, 1024);
    SetEnvironmentVariableA(kProbeVariable, (name + ":" + std::to_string(awareness)).c_str());
    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION info{};
    const BOOL started =
        CreateProcessW(program, nullptr, nullptr, nullptr, TRUE, DETACHED_PROCESS, nullptr, nullptr, &startup, &info);
    SetEnvironmentVariableA(kProbeVariable, nullptr);
    if (!started) return -1;
    const UniqueKernelHandle process(info.hProcess), thread(info.hThread);
    if (WaitForSingleObject(process.get(), 60000) != WAIT_OBJECT_0) {
        TerminateProcess(process.get(), 1);
        ADD_FAILURE() << name << " did not end within a minute";
        return -1;
    }
    DWORD code = 0;
    GetExitCodeProcess(process.get(), &code);
    return static_cast<int>(code);
}

}  // namespace

TEST(DisplayScale, ProcessUnaware_SystemScaleForEveryWindow) { EXPECT_EQ(runProbe("scale", 0), kProbePassed); }

TEST(DisplayScale, ProcessSystemAware_SystemScaleForEveryWindow) { EXPECT_EQ(runProbe("scale", 1), kProbePassed); }

TEST(DisplayScale, ProcessPerMonitorAware_WindowsOwnScale) { EXPECT_EQ(runProbe("scale", 2), kProbePassed); }

TEST(DisplayScale, WindowOfAnotherScaleInAPerMonitorAwareProcess_HasItsOwn) {
    EXPECT_EQ(runProbe("other scale", 2), kProbePassed);
}

TEST(DisplayScale, WindowOfAnotherScaleInAnUnawareProcess_HasTheSystems) {
    EXPECT_EQ(runProbe("other scale", 0), kProbePassed);
}

TEST(DisplayScale, WindowOfAnotherScaleInASystemAwareProcess_HasTheSystems) {
    EXPECT_EQ(runProbe("other scale", 1), kProbePassed);
}

TEST(DisplayScale, SystemWithoutScalesOfWindows_SystemScale) { EXPECT_EQ(runProbe("no function", 2), kProbePassed); }

TEST(DisplayScale, WindowMovedToAMonitorOfAnotherScale_CloseButtonKeepsItsFirstScale) {
    EXPECT_EQ(runProbe("moved", 2), kProbePassed);
}

TEST(DisplayScale, ProcessThatDeclaredNothing_FollowsWhatTheSystemGaveIt) {
    EXPECT_EQ(runProbe("scale", kUndeclared), kProbePassed);
}

TEST(DisplayScale, AwarenessDeclaredAfterTheFirstQuestion_FirstAnswerStays) {
    EXPECT_EQ(runProbe("remembered", 2), kProbePassed);
}

TEST(DisplayScale, FirstQuestionFromSeveralThreads_OneAnswer) { EXPECT_EQ(runProbe("threads", 2), kProbePassed); }

TEST(DisplayScale, SystemScale_DotsOfTheScreenAskedForOnce) {
    EXPECT_EQ(runProbe("system scale", 144), kProbePassed);
    EXPECT_EQ(runProbe("system scale", 96), kProbePassed);
}

TEST(DisplayScale, SystemWithoutDots_ScaleOne) { EXPECT_EQ(runProbe("system scale", 0), kProbePassed); }

TEST(DisplayScale, WindowGone_ScaleIsNeverZero) { EXPECT_EQ(runProbe("window gone", 2), kProbePassed); }

}  // namespace ZEMO::UI
