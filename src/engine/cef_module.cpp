#include "engine/cef_module.h"

#include <exception>

#include "core/log.h"
#include "core/module_paths.h"
#include "core/module_pin.h"
#include "core/never_destroyed.h"
#include "core/process_end.h"
#include "core/sent_messages.h"
#include "engine/engine_clients.h"
#include "engine/engine_files.h"
#include "engine/engine_library.h"
#include "engine/engine_thread.h"
#include "engine/forbid_printing.h"
#include "engine/runtime_selection.h"
#include "engine/web_app.h"
#include "include/cef_app.h"

// Start and stop, in order.
//
// Start: the caller's thread makes the module object and the engine thread and waits. The engine thread pins the
// library and libcef in memory, chooses cache and child program, initialises the engine, signals, and stays in the
// engine's loop.
//
// Stop: a quit task ends that loop, the engine shuts down on its own thread, the thread is joined, the lock file goes.
// This needs a living engine thread. A program that returns from main or calls exit leaves it alive long enough: a hook
// of the C runtime closes what is open and stops the engine in that order, for two seconds at most (stopAtExit). An
// ExitProcess does not: the system takes all other threads away before the module entry point hears of it. There is
// nobody left to run the quit task, so only the lock is given up, and the engine's library is not called any more,
// since it would wait for a lock that one of those threads held (abandon); the engine's child processes see their pipes
// close and end. FreeLibrary can't unmap the library once the engine has started: the engine keeps threads of its own
// that no shutdown ends, and waiting for the engine thread under the loader's lock would hang, since that thread needs
// the loader to finish. Hence the pin.
namespace ZEMO::UI {
namespace {

constexpr int kNameCharacters = 100;

// At an exit: for all of it, for the browsers to close, between two looks at them.
constexpr DWORD kExitMs = 2000;
constexpr ULONGLONG kCloseMs = 1000;
constexpr int64_t kCloseCheckMs = 10;

// Outlives every static object's destructor: at process end the engine thread may be gone with the object in use.
std::shared_ptr<CefModule>& cefModuleInstance() {
    static Core::NeverDestroyed<std::shared_ptr<CefModule>> instance;
    return *instance;
}

std::wstring localeName(LCTYPE what) {
    wchar_t buffer[kNameCharacters] = {};
    GetLocaleInfoW(MAKELCID(GetUserDefaultUILanguage(), SORT_DEFAULT), what, buffer, kNameCharacters);
    return buffer;
}

// Names every missing file in the log. False when the engine can't live without one of them.
bool hasNeededFiles(const std::wstring& basePath) {
    bool complete = true;
    for (const MissingEngineFile& file : findMissingEngineFiles(basePath)) {
        Core::logDebugW(L"engine file is missing: %s\n", file.name.c_str());
        complete = complete && !file.needed;
    }
    return complete;
}

// Ends the engine's loop once every browser has closed, or when they have had their time.
class QuitWhenClosedTask : public CefTask {
public:
    explicit QuitWhenClosedTask(ULONGLONG endTime) : deadline(endTime) {}
    void Execute() override {
        if (EngineClients::liveBrowsers() == 0 || GetTickCount64() >= deadline) return CefQuitMessageLoop();
        CefPostDelayedTask(TID_UI, this, kCloseCheckMs);
    }

private:
    ULONGLONG deadline;
    IMPLEMENT_REFCOUNTING(QuitWhenClosedTask);
};

class ForbidPrintingTask : public CefTask {
public:
    void Execute() override { forbidPrinting(); }

private:
    IMPLEMENT_REFCOUNTING(ForbidPrintingTask);
};

class LeaveTask : public CefTask {
public:
    void Execute() override {
        EngineClients::leaveAll();
        CefPostTask(TID_UI, new QuitWhenClosedTask(GetTickCount64() + kCloseMs));
    }

private:
    IMPLEMENT_REFCOUNTING(LeaveTask);
};

}  // namespace

std::wstring buildLanguageText(const std::wstring& language, const std::wstring& country) {
    return language + L"-" + country + L"," + language;
}

void CefModule::QuitTask::Execute() { CefQuitMessageLoop(); }

int CefModule::start(HINSTANCE instance) {
    // A second caller waits here until the first one's engine is ready.
    static std::mutex startMutex;
    static bool threadStarted = false;
    const std::lock_guard starting(startMutex);
    if (threadStarted) return -1;
    std::shared_ptr<CefModule> module(new CefModule(instance));
    cefModuleInstance() = module;
    std::weak_ptr<CefModule> watched = module;
    // A plain pointer: the module object is kept until the thread was joined, or for ever.
    module->engineThread = std::make_shared<std::thread>(&CefModule::engineThreadMain, module.get());
    threadStarted = true;
    {
        std::unique_lock lock(module->readyMutex);
        module->readyCondition.wait(lock, [&watched] {
            const std::shared_ptr<CefModule> alive = watched.lock();
            return !alive || alive->ready;
        });
    }
    Core::logDebugA("cef module is ready\n");
    Core::callAtExit([] { stopAtExit(); });
    return -1;
}

void CefModule::stop() {
    const std::shared_ptr<CefModule> module = cefModuleInstance();
    if (!module) return;
    if (module->engineThread) {
        CefPostTask(TID_UI, new QuitTask);
        module->engineThread->join();
        module->engineThread.reset();
    }
    module->releaseLock();
    cefModuleInstance().reset();
}

void CefModule::stopAtExit() {
    const std::shared_ptr<CefModule> module = cefModuleInstance();
    if (!module || Core::isShutdownInProgress() || engineThreadId == GetCurrentThreadId()) return;
    Core::markProcessEnding();
    if (WaitForSingleObject(module->stopped.get(), 0) != WAIT_OBJECT_0) CefPostTask(TID_UI, new LeaveTask);
    if (!Core::waitServingSentMessages(module->stopped.get(), kExitMs)) {
        Core::logDebugA("cef is still running at exit\n");
        return;
    }
    module->releaseLock();
}

void CefModule::abandon() {
    if (const std::shared_ptr<CefModule>& module = cefModuleInstance()) module->releaseLock();
    skipEngineDetach();
}

CefModule::~CefModule() {
    if (engineThread && engineThread->joinable()) engineThread->detach();
}

void CefModule::releaseLock() {
    releaseCacheLock(cachePath, cacheLockHandle);
    cacheLockHandle = INVALID_HANDLE_VALUE;
}

void CefModule::signalReady() {
    {
        // Under the lock although `ready` is atomic: a waiter between its test and its sleep must not miss this.
        const std::lock_guard lock(readyMutex);
        ready = true;
    }
    readyCondition.notify_all();
}

void CefModule::engineThreadMain() {
    Core::logDebugA("cef initializing ... \n");
    Core::pinOwnModule();
    engineThreadId = GetCurrentThreadId();
    runEngine();
    SetEvent(stopped.get());
    // At an exit the process ends from here on at any moment. A thread on its own way out may be taken away with a lock
    // of the engine or the runtime held that the modules then wait for; this one holds none.
    if (Core::isProcessEnding()) Sleep(INFINITE);
}

void CefModule::runEngine() {
    const std::wstring basePath = Core::libraryBaseDirectory();
    const bool engineLoaded = loadEngineLibrary(basePath);
    try {
        cleanupStaleCaches(basePath);
    } catch (const std::exception& error) {
        Core::logDebugA("cache cleanup failed: %s\n", error.what());
    } catch (...) {
        Core::logDebugA("cache cleanup failed: unknown error\n");
    }

    cachePath = selectCacheDirectory(basePath);
    cacheLockHandle = openCacheLock(cachePath);
    const bool hasFiles = hasNeededFiles(basePath);
    const std::wstring subprocess = selectSubprocess(basePath);
    const bool hasSubprocess = GetFileAttributesW(subprocess.c_str()) != INVALID_FILE_ATTRIBUTES;
    if (!hasSubprocess) Core::logDebugW(L"cef child program is missing: %s\n", subprocess.c_str());
    if (!engineLoaded || !hasFiles || !hasSubprocess) {
        // It would end the whole game: for a missing file at once, for the child program after a few tries.
        Core::logDebugA("cef is not started; no view will show a page\n");
        signalReady();
        return;
    }
    // The language text names no pak of its own, also as a locale: the engine then falls back to its default pak.
    const std::wstring languages =
        buildLanguageText(localeName(LOCALE_SISO639LANGNAME), localeName(LOCALE_SISO3166CTRYNAME));
    CefSettings settings;
    settings.no_sandbox = true;
    settings.multi_threaded_message_loop = false;
    settings.windowless_rendering_enabled = true;
    CefString(&settings.cache_path).FromWString(cachePath);
    CefString(&settings.browser_subprocess_path).FromWString(subprocess);
    CefString(&settings.locales_dir_path).FromWString(basePath + L"\\cefsubprocess\\locales");
    CefString(&settings.locale).FromWString(languages);
    CefString(&settings.accept_language_list).FromWString(languages);

    CefRefPtr<WebApp> app = new WebApp;
    const bool initialized = CefInitialize(CefMainArgs(moduleInstance), settings, app, nullptr);
    Core::logDebugA("cef is initialized.\n");
    CefPostTask(TID_UI, new ForbidPrintingTask);  // ahead of the first browser, which is made by a task too
    signalReady();
    if (!initialized) {
        Core::logDebugA("cef refused to start; no view will show a page\n");
        return;
    }
    CefRunMessageLoop();
    Core::logDebugA("cef shutting down\n");
    CefShutdown();
    Core::logDebugA("cef is shutdown\n");
}

}  // namespace ZEMO::UI
