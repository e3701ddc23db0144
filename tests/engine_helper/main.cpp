// A small game for tests of whole processes: it loads the library by the path it is given, as a game's launcher would,
// opens a view on a page of one colour, says "ready", and leaves in the way it is told.
//   zemo_engine_helper.exe LIBRARY WAY [MILLISECONDS | ADDRESS | page:NAME | held]
// With MILLISECONDS it leaves that long after the view was shown, whatever the page has come to. With ADDRESS it opens
// that page, with NAME the local page of that name; it must show the same colour. Held, it is ready until the test sets
// the event that has its process id in its name. WAY: return, static, global, exit, exit-in-callback,
// exit-callback-blocked, exitprocess, exitprocess-thread,
//   exitprocess-engine-blocked, freelibrary, terminate, wait (until killed), drop, return-started-twice
#include <windows.h>

#include <winternl.h>

#include <zemo/ui.h>

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <thread>

#include "engine/child_processes.h"

namespace {

constexpr int kExitCode = 7;
constexpr int kFailed = 3;
constexpr uint32_t kColor = 0xFF204060u;

std::atomic<bool> seen{false};
std::atomic<int> frameWidth{0};
std::atomic<int> frameCount{0};

template <class Function>
Function* find(HMODULE library, const char* name) {
    const auto address = reinterpret_cast<void*>(GetProcAddress(library, name));
    if (!address) {
        std::printf("no export %s\n", name);
        std::exit(kFailed);
    }
    return reinterpret_cast<Function*>(address);
}

void say(const char* word) {
    std::printf("%s\n", word);
    std::fflush(stdout);
}

// The library's log goes to the debugger; here each line also goes to the test that started this program.
LONG CALLBACK printLog(EXCEPTION_POINTERS* info) {
    constexpr DWORD kNarrowLine = 0x40010006;
    constexpr DWORD kWideLine = 0x4001000A;
    const EXCEPTION_RECORD& record = *info->ExceptionRecord;
    if (record.ExceptionCode == kNarrowLine) {
        std::printf("log: %s\n", reinterpret_cast<const char*>(record.ExceptionInformation[1]));
    } else if (record.ExceptionCode == kWideLine) {
        std::printf("log: %ls\n", reinterpret_cast<const wchar_t*>(record.ExceptionInformation[1]));
    }
    // What the engine does to a process in which it can't go on.
    if (record.ExceptionCode == EXCEPTION_BREAKPOINT || record.ExceptionCode == EXCEPTION_ILLEGAL_INSTRUCTION) {
        std::printf("fatal\n");
    }
    std::fflush(stdout);
    return EXCEPTION_CONTINUE_SEARCH;
}

void pumpUntilSet(HANDLE event) {
    while (MsgWaitForMultipleObjects(1, &event, FALSE, INFINITE, QS_ALLINPUT) != WAIT_OBJECT_0) {
        for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);) DispatchMessageW(&message);
    }
}

bool pump(int milliseconds, const std::atomic<bool>* until) {
    const ULONGLONG end = GetTickCount64() + milliseconds;
    while (!until || !*until) {
        if (GetTickCount64() >= end) return false;
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 20, QS_ALLINPUT);
        for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);) DispatchMessageW(&message);
    }
    return true;
}

std::shared_ptr<ZEMO::UI::IZEMOWebView>& staticView() {
    static std::shared_ptr<ZEMO::UI::IZEMOWebView> view;  // destroyed by exit, with the engine still running
    return view;
}

// Destroyed by exit after the library's own hook there.
std::shared_ptr<ZEMO::UI::IZEMOWebView> globalView;

std::atomic<bool> exitInCallback{false};
std::atomic<bool> blockInCallback{false};
std::atomic<bool> callbackBlocked{false};

// What a lock that nobody gives up any more does to the engine's library: its entry point never comes back. The
// loader's lock is kept, so that no thread comes by before the process ends.
void blockEngineEntryPoint() {
    const HMODULE ntdll = GetModuleHandleW(L"ntdll.dll");
    using LockLoader = NTSTATUS(NTAPI*)(ULONG, ULONG*, ULONG_PTR*);
    const auto lock = reinterpret_cast<LockLoader>(reinterpret_cast<void*>(GetProcAddress(ntdll, "LdrLockLoaderLock")));
    ULONG_PTR cookie = 0;
    auto* const engine = reinterpret_cast<BYTE*>(GetModuleHandleW(L"libcef.dll"));
    if (!engine || !lock || lock(0, nullptr, &cookie) < 0) std::exit(kFailed);
    const auto& dos = *reinterpret_cast<const IMAGE_DOS_HEADER*>(engine);
    const auto& headers = *reinterpret_cast<const IMAGE_NT_HEADERS*>(engine + dos.e_lfanew);
    BYTE* const entry = engine + headers.OptionalHeader.AddressOfEntryPoint;
    constexpr BYTE kJumpToItself[] = {0xEB, 0xFE};
    DWORD before = 0;
    if (!VirtualProtect(entry, sizeof kJumpToItself, PAGE_EXECUTE_READWRITE, &before)) std::exit(kFailed);
    std::copy(std::begin(kJumpToItself), std::end(kJumpToItself), entry);
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    if (argc < 3) return kFailed;
    const std::wstring way = argv[2];
    AddVectoredExceptionHandler(1, &printLog);
    const HMODULE library = LoadLibraryW(argv[1]);
    if (!library) {
        std::printf("not loaded: %lu\n", GetLastError());
        return kFailed;
    }
    const HWND window = CreateWindowExW(0, L"STATIC", L"helper", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 60, 60, 400, 300,
                                        nullptr, nullptr, nullptr, nullptr);
    find<void(int)>(library, "_ZN4ZEMO2UI27setUIEngineOsrRenderEnabledEi")(1);
    find<void()>(library, "_ZN4ZEMO2UI13InitUILibraryEv")();
    if (way == L"return-started-twice") find<void()>(library, "_ZN4ZEMO2UI13InitUILibraryEv")();
    say("started");
    find<void(ZEMO::UI::OsrFramePresentCallback)>(
        library, "_ZN4ZEMO2UI28setUIOsrFramePresentCallbackESt8functionIFvPKviiiiiiEE")(
        [](const void* pixels, int width, int height, int, int, int, int) {
            if (exitInCallback) {
                exitInCallback = false;
                std::exit(kExitCode);
            }
            while (blockInCallback) {
                callbackBlocked = true;
                Sleep(10);
            }
            if (!pixels || width < 2 || height < 2) return;
            ++frameCount;
            frameWidth = width;
            if (static_cast<const uint32_t*>(pixels)[width + 1] == kColor) seen = true;
        });
    auto view = find<std::shared_ptr<ZEMO::UI::IZEMOWebView>()>(library, "_ZN4ZEMO2UI20createWebViewDefaultEv")();
    const std::wstring option = argc > 3 ? argv[3] : L"";
    const bool address = option.starts_with(L"http");
    const bool local = option.starts_with(L"page:");
    if (local) {
        view->loadPage(std::string(option.begin() + 5, option.end()));
    } else {
        view->loadHtml(address
                           ? "<script>location.replace('" + std::string(option.begin(), option.end()) + "')</script>"
                           : "<!doctype html><style>html,body{margin:0;background:#204060}</style>",
                       "");
    }
    view->show();
    const bool held = option == L"held";
    const std::wstring eventName = L"zemo engine helper " + std::to_wstring(GetCurrentProcessId());
    const HANDLE mayLeave = held ? CreateEventW(nullptr, TRUE, FALSE, eventName.c_str()) : nullptr;
    if (!option.empty() && !address && !local && !held) {
        pump(std::stoi(option), nullptr);
    } else if (!pump(60'000, &seen)) {
        std::printf("no page: %d frames, %s\n", frameCount.load(), ZEMO::Test::childrenText().c_str());
        std::fflush(stdout);
        TerminateProcess(GetCurrentProcess(), kFailed);
    }
    say("ready");
    if (held) pumpUntilSet(mayLeave);

    if (way == L"wait") {
        pump(120'000, nullptr);
        return kExitCode;
    }
    if (way == L"drop") {
        view.reset();
        DestroyWindow(window);
        say("leaving");
        return kExitCode;
    }
    if (way == L"global") {
        globalView = std::move(view);
        say("leaving");
        return kExitCode;
    }
    if (way == L"static") {
        staticView() = std::move(view);
        say("leaving");
        return kExitCode;
    }
    // In every other way the view stays open to the end.
    [[maybe_unused]] static auto* const keptOpen =
        std::make_unique<std::shared_ptr<ZEMO::UI::IZEMOWebView>>(std::move(view)).release();
    if (way == L"freelibrary") {
        int calls = 0;
        while (calls < 100 && FreeLibrary(library)) ++calls;
        say(GetModuleHandleW(L"ZEMOUIFramework.dll") ? "still mapped" : "unmapped");
        pump(300, nullptr);  // its threads go on
        say("leaving");
        return kExitCode;
    }
    if (way == L"exit-callback-blocked") {
        blockInCallback = true;
        pump(30'000, &callbackBlocked);
    }
    say("leaving");
    if (way == L"exit-in-callback") {
        exitInCallback = true;
        pump(60'000, nullptr);
        return kFailed;
    }
    if (way == L"exitprocess-engine-blocked") {
        blockEngineEntryPoint();
        ExitProcess(kExitCode);
    }
    if (way == L"exit") std::exit(kExitCode);
    if (way == L"exitprocess") ExitProcess(kExitCode);
    if (way == L"terminate") TerminateProcess(GetCurrentProcess(), kExitCode);
    if (way == L"exitprocess-thread") {
        std::thread([] { ExitProcess(kExitCode); }).detach();
        pump(60'000, nullptr);
        return kFailed;
    }
    return kExitCode;  // "return", "return-started-twice"
}
