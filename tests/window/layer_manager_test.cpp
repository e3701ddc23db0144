#include "layers/layer_manager.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <latch>
#include <system_error>

#include "layers/window_messages.h"
#include "support/import_replaced.h"
#include "window/window_test_support.h"

namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

using Lines = std::vector<std::string>;

/// A layer that only writes down what the manager tells it; the native window's part has its own tests.
class PlainLayer : public ILayer {
public:
    PlainLayer(std::string ownName, std::shared_ptr<Journal> sharedJournal)
        : name(std::move(ownName)), journal(std::move(sharedJournal)) {}
    ~PlainLayer() override {
        if (duringDestruction) duringDestruction();
    }

    bool consumes = true;
    LRESULT answer = 77;
    std::function<void(UINT)> duringMessage;
    std::function<void()> duringSetVisible;
    std::function<void()> duringIme;
    std::function<void()> duringDestruction;

    bool handleMessage(LRESULT* result, HWND, UINT message, WPARAM wParam, LPARAM lParam) override {
        // Only what tests send themselves; a real window receives much more.
        if (message == WM_DESTROY || (message >= WM_USER && message < WM_APP))
            journal->add(name + text(".message(%u,%llu,%lld)", message, static_cast<unsigned long long>(wParam),
                                     static_cast<long long>(lParam)));
        if (message < WM_USER || message >= WM_APP) return false;
        *result = answer;
        if (duringMessage) duringMessage(message);
        return consumes;
    }
    void setVisible(bool show, bool keepHookFrame) override {
        journal->add(name + text(".setVisible(%d,%d)", show, keepHookFrame));
        if (duringSetVisible) duringSetVisible();
    }
    void sendImeCommand(uint32_t kind, const std::u16string* string, const uint32_t* repeatCount) override {
        journal->add(name + text(".ime(%u,%zu,%u)", kind, string ? string->size() : 0, repeatCount ? *repeatCount : 0));
        if (duringIme) duringIme();
    }
    void blurActiveElement() override { journal->add(name + ".blur"); }
    void setSteamOverlayActive(bool active) override { journal->add(name + text(".overlay(%d)", active)); }
    void onSize(const RECT&, int, int) override {}
    void onMaximizeRestore() override {}
    void onDestroy() override {}
    void onKillFocus() override {}
    void onClose() override {}

private:
    std::string name;
    std::shared_ptr<Journal> journal;
};

// Without a controller nobody can read back whether XInput is on, so the calls of XInputEnable are recorded instead of
// the system's being made: the library looks the function up by its name.
std::vector<BOOL> xinputCalls;
void WINAPI recordXInput(BOOL enable) { xinputCalls.push_back(enable); }
decltype(&::GetProcAddress) systemGetProcAddress = nullptr;
FARPROC WINAPI findXInputHere(HMODULE module, LPCSTR name) {
    const bool isXInput = reinterpret_cast<ULONG_PTR>(name) > 0xFFFF && std::strcmp(name, "XInputEnable") == 0;
    if (!isXInput) return systemGetProcAddress(module, name);
    return reinterpret_cast<FARPROC>(reinterpret_cast<void*>(&recordXInput));
}

constexpr UINT kProbe = WM_USER + 300;

class LayerManager : public testing::Test {
protected:
    LayerManager() {
        xinputCalls.clear();
        systemGetProcAddress = lookUp.original<decltype(&::GetProcAddress)>();
        SetPriorityClass(GetCurrentProcess(), BELOW_NORMAL_PRIORITY_CLASS);
        EXPECT_EQ(GetPriorityClass(GetCurrentProcess()), static_cast<DWORD>(BELOW_NORMAL_PRIORITY_CLASS));
    }
    ~LayerManager() override { SetPriorityClass(GetCurrentProcess(), NORMAL_PRIORITY_CLASS); }

    std::shared_ptr<PlainLayer> layer(const char* name) { return std::make_shared<PlainLayer>(name, journal); }

    static DWORD priority() { return GetPriorityClass(GetCurrentProcess()); }
    static bool isRaised() { return priority() == REALTIME_PRIORITY_CLASS || priority() == HIGH_PRIORITY_CLASS; }

    const HMODULE xinput = LoadLibraryW(L"xinput1_4.dll");  ///< there, as after the library's start
    ImportReplaced lookUp{"GetProcAddress", &findXInputHere};
    std::shared_ptr<Journal> journal = std::make_shared<Journal>();
    ZEMOMultiLayerManager manager;  ///< one of the test's own, always empty at first
    LRESULT result = -1;
};

TEST_F(LayerManager, NoLayer_EveryMessageGoesToTheGameButTheTwoImeMessages) {
    for (UINT message = 0; message < 0x1000; ++message) {
        const bool ime = message == 1229 || message == 1230;
        result = -1;
        EXPECT_EQ(manager.dispatchMessage(&result, nullptr, message, 1, 2), ime) << message;
        EXPECT_EQ(result, ime ? 0 : -1) << message;
    }
}

TEST_F(LayerManager, TopLayer_GetsTheMessageAndItsAnswerDecides) {
    const auto a = layer("a");
    manager.addLayer(a);
    journal->clear();
    EXPECT_TRUE(manager.dispatchMessage(&result, nullptr, kProbe, 3, -4));
    EXPECT_EQ(result, 77);
    EXPECT_EQ(journal->lines(), Lines{"a.message(1324,3,-4)"});
    a->consumes = false;
    EXPECT_FALSE(manager.dispatchMessage(&result, nullptr, kProbe, 3, -4));
}

TEST_F(LayerManager, ImeMessages_AreConsumedWithZeroWhateverTheLayerAnswers) {
    const auto a = layer("a");
    manager.addLayer(a);
    for (const bool consumes : {true, false}) {
        for (const UINT message : {kMessageImeFocus, kMessageImeBounds}) {
            a->consumes = consumes;
            journal->clear();
            EXPECT_TRUE(manager.dispatchMessage(&result, nullptr, message, 1, 0));
            EXPECT_EQ(result, 0);
            EXPECT_EQ(journal->lines(), Lines{text("a.message(%u,1,0)", message)});
        }
    }
}

TEST_F(LayerManager, TwoLayers_OnlyTheTopSeesInput) {
    const auto a = layer("a"), b = layer("b");
    manager.addLayer(a);
    manager.addLayer(b);
    journal->clear();
    b->consumes = false;
    EXPECT_FALSE(manager.dispatchMessage(&result, nullptr, kProbe, 0, 0));
    EXPECT_EQ(journal->lines(), Lines{"b.message(1324,0,0)"});
}

TEST_F(LayerManager, ExpiredTop_HidesTheLayersUnderItUntilItIsGone) {
    const auto a = layer("a");
    manager.addLayer(a);
    {
        const auto b = layer("b");
        manager.addLayer(b);
    }
    journal->clear();
    EXPECT_FALSE(manager.dispatchMessage(&result, nullptr, kProbe, 0, 0));
    EXPECT_TRUE(manager.dispatchMessage(&result, nullptr, kMessageImeFocus, 0, 0));
    manager.setImeProcess(1, nullptr, nullptr, nullptr);
    EXPECT_EQ(journal->lines(), Lines{});
    EXPECT_EQ(manager.getLayerCount(), 2);
}

TEST_F(LayerManager, HandlerThatSendsAgain_ReentersTheDispatch) {
    const auto a = layer("a");
    manager.addLayer(a);
    journal->clear();
    a->duringMessage = [&](UINT message) {
        LRESULT inner = 0;
        if (message == kProbe) manager.dispatchMessage(&inner, nullptr, kProbe + 1, 0, 0);
    };
    EXPECT_TRUE(manager.dispatchMessage(&result, nullptr, kProbe, 0, 0));
    EXPECT_EQ(journal->lines(), (Lines{"a.message(1324,0,0)", "a.message(1325,0,0)"}));
}

TEST_F(LayerManager, HandlerThatThrows_LeavesTheLockFree) {
    const auto a = layer("a");
    manager.addLayer(a);
    a->duringMessage = [](UINT) { throw std::runtime_error("handler"); };
    EXPECT_THROW(manager.dispatchMessage(&result, nullptr, kProbe, 0, 0), std::runtime_error);
    a->duringMessage = nullptr;
    bool answered = false;
    std::thread other([&] { answered = manager.dispatchMessage(&result, nullptr, kProbe, 0, 0); });
    other.join();
    EXPECT_TRUE(answered);
}

/// Runs `work` on another thread and waits a bounded time: false when it hangs (the thread is joined by join()).
class Elsewhere {
public:
    explicit Elsewhere(std::function<void()> work) : done(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {
        thread = std::thread([this, work = std::move(work)] {
            work();
            SetEvent(done);
        });
    }
    ~Elsewhere() {
        thread.join();
        CloseHandle(done);
    }
    bool endsWithin(DWORD milliseconds) { return WaitForSingleObject(done, milliseconds) == WAIT_OBJECT_0; }

private:
    HANDLE done;
    std::thread thread;
};

/// Counts how many threads are inside of something at a time. Each stays for a moment, so that the others get there.
class Inside {
public:
    void visit() {
        if (++threads > 1) together = true;
        Sleep(1);
        --threads;
        ++visits;
    }
    std::atomic<int> threads = 0;
    std::atomic<int> visits = 0;
    std::atomic<bool> together = false;
};

constexpr int kVisits = 100;  // of each thread, while the other one goes on

TEST_F(LayerManager, MessagesDispatchedOnTwoThreads_HandlersNeverRunTogether) {
    const auto a = layer("a");
    manager.addLayer(a);
    Inside handler;
    std::atomic<int> done[2] = {};
    a->duringMessage = [&](UINT message) {
        handler.visit();
        ++done[message - kProbe];
    };
    const auto work = [&](UINT number) {
        LRESULT r = 0;
        while (done[0] < kVisits || done[1] < kVisits) {
            manager.dispatchMessage(&r, nullptr, kProbe + number, 0, 0);
            Sleep(1);  // lets the other one have the lock
        }
    };
    std::thread other(work, 1);
    work(0);
    other.join();
    EXPECT_FALSE(handler.together);
}

TEST_F(LayerManager, ImeCommandsAndChangesOfTheList_NeverRunTogether) {
    const auto a = layer("a"), b = layer("b");
    manager.addLayer(a);
    Inside layers;
    std::atomic<int> commands = 0, changes = 0;
    for (const auto& each : {a, b}) {
        each->duringIme = [&] {
            layers.visit();
            ++commands;
        };
        each->duringSetVisible = [&] {
            layers.visit();
            ++changes;
        };
    }
    const auto enough = [&] { return commands >= kVisits && changes >= kVisits; };
    std::thread ime([&] {
        while (!enough()) {
            manager.setImeProcess(1, nullptr, nullptr, nullptr);
            Sleep(1);  // lets the other one have the lock
        }
    });
    while (!enough()) {
        manager.addLayer(b);
        manager.removeLayer(b);
        Sleep(1);
    }
    ime.join();
    EXPECT_FALSE(layers.together);
}

TEST_F(LayerManager, LayerBeingAddedOnAnotherThread_DispatchDoesNotWaitAndReachesIt) {
    const auto a = layer("a"), b = layer("b");
    manager.addLayer(a);
    const HANDLE entered = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    const HANDLE leave = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    a->duringSetVisible = [&] {
        SetEvent(entered);
        WaitForSingleObject(leave, 40'000);
    };
    journal->clear();
    {
        Elsewhere adding([&] { manager.addLayer(b); });
        EXPECT_EQ(WaitForSingleObject(entered, 20'000), WAIT_OBJECT_0);
        for (const UINT message : {kProbe, kMessageImeFocus}) {
            Elsewhere dispatch([&] {
                LRESULT r = 0;
                EXPECT_TRUE(manager.dispatchMessage(&r, nullptr, message, 0, 0));
            });
            const bool ended = dispatch.endsWithin(20'000);
            EXPECT_TRUE(ended) << message;
            if (!ended) SetEvent(leave);
        }
        EXPECT_EQ(journal->lines(), (Lines{"a.setVisible(0,1)", "b.message(1324,0,0)", "b.message(1229,0,0)"}));
        SetEvent(leave);
    }
    CloseHandle(entered);
    CloseHandle(leave);
}

TEST_F(LayerManager, RunningHandler_NeitherTheListWaitsForItNorAnyoneForAnImeMessage) {
    const auto a = layer("a");
    manager.addLayer(a);
    const HANDLE entered = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    const HANDLE leave = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    a->duringMessage = [&](UINT message) {
        if (message != kProbe && message != kMessageImeFocus) return;
        SetEvent(entered);
        WaitForSingleObject(leave, 20000);
    };
    {
        Elsewhere handler([&] {
            LRESULT r = 0;
            manager.dispatchMessage(&r, nullptr, kProbe, 0, 0);
        });
        ASSERT_EQ(WaitForSingleObject(entered, 20000), WAIT_OBJECT_0);
        // The list's lock is another one: neither waits for the running handler.
        Elsewhere list([&] { EXPECT_EQ(manager.getLayerCount(), 1); });
        EXPECT_TRUE(list.endsWithin(20000));
        const auto b = layer("b");
        Elsewhere change([&] {
            manager.addLayer(b);
            manager.removeLayer(b);
        });
        EXPECT_TRUE(change.endsWithin(20000));
        SetEvent(leave);
    }
    ResetEvent(entered);
    ResetEvent(leave);
    {
        Elsewhere handler([&] {
            LRESULT r = 0;
            manager.dispatchMessage(&r, nullptr, kMessageImeFocus, 0, 0);
        });
        ASSERT_EQ(WaitForSingleObject(entered, 20000), WAIT_OBJECT_0);
        Elsewhere second([&] {
            LRESULT r = 0;
            manager.dispatchMessage(&r, nullptr, kProbe + 1, 0, 0);
        });
        EXPECT_TRUE(second.endsWithin(20000));
        SetEvent(leave);
    }
    CloseHandle(entered);
    CloseHandle(leave);
}

TEST_F(LayerManager, LayerThatEndsInItsHandler_DiesAfterTheLockIsFree) {
    auto a = layer("a");
    manager.addLayer(a);
    bool lockWasFree = false;
    PlainLayer* raw = a.get();
    raw->duringMessage = [&](UINT) {
        manager.removeLayer(a);
        a.reset();
    };
    raw->duringDestruction = [&] {
        Elsewhere other([&] {
            LRESULT r = 0;
            manager.dispatchMessage(&r, nullptr, kProbe, 0, 0);
        });
        lockWasFree = other.endsWithin(5000);
    };
    EXPECT_TRUE(manager.dispatchMessage(&result, nullptr, kProbe, 0, 0));
    EXPECT_TRUE(lockWasFree);
}

// --- the list ---

TEST_F(LayerManager, FirstLayer_RaisesThePriorityAndSwitchesXInputOff) {
    const auto a = layer("a");
    manager.addLayer(a);
    EXPECT_TRUE(isRaised());
    EXPECT_EQ(xinputCalls, std::vector<BOOL>{FALSE});
    EXPECT_EQ(journal->lines(), (Lines{"a.setVisible(0,1)", "a.setVisible(1,1)"}));
    EXPECT_EQ(manager.getLayerCount(), 1);
}

TEST_F(LayerManager, SecondLayerAdded_BothAreHiddenThenTheNewOneIsShown) {
    const auto a = layer("a"), b = layer("b");
    manager.addLayer(a);
    journal->clear();
    manager.addLayer(b);
    EXPECT_EQ(journal->lines(), (Lines{"a.setVisible(0,1)", "b.setVisible(0,1)", "b.setVisible(1,1)"}));
    EXPECT_EQ(manager.getLayerCount(), 2);
    EXPECT_EQ(xinputCalls.size(), 1u);
}

TEST_F(LayerManager, SameLayerAddedTwice_ChangesNothing) {
    const auto a = layer("a"), b = layer("b");
    manager.addLayer(a);
    manager.addLayer(b);
    journal->clear();
    manager.addLayer(a);
    manager.addLayer(b);
    EXPECT_EQ(journal->lines(), Lines{});
    EXPECT_EQ(manager.getLayerCount(), 2);
    EXPECT_EQ(xinputCalls.size(), 1u);
    manager.dispatchMessage(&result, nullptr, kProbe, 0, 0);
    EXPECT_EQ(journal->lines(), Lines{"b.message(1324,0,0)"});
}

TEST_F(LayerManager, TopOfTwoRemoved_IsHiddenAndTheOtherShown) {
    const auto a = layer("a"), b = layer("b");
    manager.addLayer(a);
    manager.addLayer(b);
    journal->clear();
    manager.removeLayer(b);
    EXPECT_EQ(journal->lines(), (Lines{"b.setVisible(0,1)", "a.setVisible(1,1)"}));
    EXPECT_EQ(manager.getLayerCount(), 1);
    EXPECT_TRUE(isRaised());
    EXPECT_EQ(xinputCalls.size(), 1u);
}

TEST_F(LayerManager, LowerOfThreeRemoved_KeepsTheOrderOfTheOthers) {
    const auto a = layer("a"), b = layer("b"), c = layer("c");
    for (const auto& each : {a, b, c}) manager.addLayer(each);
    journal->clear();
    manager.removeLayer(a);
    EXPECT_EQ(journal->lines(), (Lines{"a.setVisible(0,1)", "c.setVisible(1,1)"}));
    journal->clear();
    manager.removeLayer(c);
    EXPECT_EQ(journal->lines(), (Lines{"c.setVisible(0,1)", "b.setVisible(1,1)"}));
}

TEST_F(LayerManager, OnlyLayerRemoved_IsToldToDropItsFrameAndTheProcessIsAsBefore) {
    const auto a = layer("a");
    manager.addLayer(a);
    journal->clear();
    manager.removeLayer(a);
    EXPECT_EQ(journal->lines(), Lines{"a.setVisible(0,0)"});
    EXPECT_EQ(priority(), static_cast<DWORD>(BELOW_NORMAL_PRIORITY_CLASS));
    EXPECT_EQ(xinputCalls, (std::vector<BOOL>{FALSE, TRUE}));
    EXPECT_EQ(manager.getLayerCount(), 0);
}

TEST_F(LayerManager, LayerAddedAgain_SavesThePriorityOfThatTime) {
    const auto a = layer("a");
    manager.addLayer(a);
    manager.removeLayer(a);
    SetPriorityClass(GetCurrentProcess(), IDLE_PRIORITY_CLASS);
    manager.addLayer(a);
    EXPECT_TRUE(isRaised());
    manager.removeLayer(a);
    EXPECT_EQ(priority(), static_cast<DWORD>(IDLE_PRIORITY_CLASS));
}

TEST_F(LayerManager, SecondRemove_RestoresOnceMore) {
    const auto a = layer("a");
    manager.addLayer(a);
    manager.removeLayer(a);
    journal->clear();
    SetPriorityClass(GetCurrentProcess(), NORMAL_PRIORITY_CLASS);
    manager.removeLayer(a);
    EXPECT_EQ(journal->lines(), Lines{});
    EXPECT_EQ(priority(), static_cast<DWORD>(BELOW_NORMAL_PRIORITY_CLASS));
    EXPECT_EQ(xinputCalls, (std::vector<BOOL>{FALSE, TRUE, TRUE}));
}

TEST_F(LayerManager, UnknownLayerRemoved_ShowsTheTopAgainAndChangesNothingElse) {
    const auto a = layer("a"), stranger = layer("s");
    manager.addLayer(a);
    journal->clear();
    manager.removeLayer(stranger);
    EXPECT_EQ(journal->lines(), Lines{"a.setVisible(1,1)"});
    EXPECT_EQ(manager.getLayerCount(), 1);
    EXPECT_TRUE(isRaised());
}

TEST_F(LayerManager, LayerReleasedWithoutRemove_LeavesItsEntryAndXInputOff) {
    std::weak_ptr<ILayer> expired;
    {
        const auto a = layer("a");
        manager.addLayer(a);
        expired = a;
    }
    manager.removeLayer(expired);
    EXPECT_EQ(manager.getLayerCount(), 1);
    EXPECT_TRUE(isRaised());
    EXPECT_EQ(xinputCalls, std::vector<BOOL>{FALSE});
    EXPECT_FALSE(manager.dispatchMessage(&result, nullptr, kProbe, 0, 0));
    // The next layer is neither the first (nothing is saved again) nor hidden by the entry under it.
    const auto b = layer("b");
    journal->clear();
    manager.addLayer(b);
    EXPECT_EQ(journal->lines(), (Lines{"b.setVisible(0,1)", "b.setVisible(1,1)"}));
    manager.removeLayer(b);
    EXPECT_EQ(manager.getLayerCount(), 1);
    EXPECT_TRUE(isRaised());
}

TEST_F(LayerManager, ExpiredLayerAdded_TakesAPlace) {
    manager.addLayer(std::weak_ptr<ILayer>());
    EXPECT_EQ(manager.getLayerCount(), 1);
    manager.addLayer(std::weak_ptr<ILayer>());  // matches nothing
    EXPECT_EQ(manager.getLayerCount(), 2);
    EXPECT_TRUE(isRaised());
}

TEST_F(LayerManager, ListChangedDuringDispatch_NeverTearsTheListApart) {
    const auto base = layer("base");
    manager.addLayer(base);
    std::atomic<bool> stop = false;
    std::atomic<int> handled = 0;
    base->duringMessage = [&](UINT) { ++handled; };
    std::thread window([&] {
        while (!stop) {
            LRESULT r = 0;
            manager.dispatchMessage(&r, nullptr, WM_USER + 1, 0, 0);
            manager.dispatchMessage(&r, nullptr, kMessageImeBounds, 0, 0);
        }
    });
    for (int round = 0; round < 300; ++round) {
        std::vector<std::shared_ptr<PlainLayer>> more;
        for (int i = 0; i < 5; ++i) manager.addLayer(more.emplace_back(layer("x")));
        for (const auto& each : more) manager.removeLayer(each);
    }
    // The window's thread may come late on a busy machine: let it reach the base layer once.
    const auto deadline = std::chrono::steady_clock::now() + kPatience;
    while (handled == 0 && std::chrono::steady_clock::now() < deadline) std::this_thread::yield();
    stop = true;
    window.join();
    EXPECT_GT(handled, 0);
    EXPECT_EQ(manager.getLayerCount(), 1);
}

// --- what is forwarded to the top layer ---

TEST_F(LayerManager, ImeProcess_GoesToTheTopLayerWithItsArguments) {
    const auto a = layer("a"), b = layer("b");
    const std::u16string hangul = u"\uD55C\uAE00";
    const uint32_t repeat = 5;
    int reserved = 0;
    manager.setImeProcess(1, &hangul, &repeat, nullptr);  // nobody there
    manager.addLayer(a);
    manager.addLayer(b);
    journal->clear();
    manager.setImeProcess(1, &hangul, &repeat, &reserved);
    manager.setImeProcess(0, nullptr, nullptr, nullptr);
    EXPECT_EQ(journal->lines(), (Lines{"b.ime(1,2,5)", "b.ime(0,0,0)"}));
}

TEST_F(LayerManager, SteamDeckKeyboardClose_BlursTheTopLayerAndClearsTheFlag) {
    const auto a = layer("a");
    manager.addLayer(a);
    journal->clear();
    manager.setSteamDeckKeyboardShown(true);
    manager.processSteamDeckKeyboardClose();
    EXPECT_EQ(journal->lines(), Lines{"a.blur"});
    EXPECT_FALSE(manager.getSteamDeckKeyboardShown());
}

TEST_F(LayerManager, SteamDeckKeyboardCloseWithoutLayer_ClearsTheFlag) {
    manager.setSteamDeckKeyboardShown(true);
    manager.processSteamDeckKeyboardClose();
    EXPECT_FALSE(manager.getSteamDeckKeyboardShown());
}

TEST_F(LayerManager, SteamOverlay_IsStoredAndForwardedToTheTopOnly) {
    manager.setSteamOverlayActiveStatus(true);
    EXPECT_TRUE(manager.getSteamOverlayActive());
    const auto a = layer("a"), b = layer("b");
    manager.addLayer(a);
    manager.addLayer(b);
    journal->clear();
    manager.setSteamOverlayActiveStatus(false);
    EXPECT_EQ(journal->lines(), Lines{"b.overlay(0)"});
    EXPECT_FALSE(manager.getSteamOverlayActive());
}

// --- the store ---

TEST_F(LayerManager, Settings_StartEmptyAndKeepWhatIsSet) {
    EXPECT_EQ(manager.getMainWindow(), nullptr);
    EXPECT_EQ(manager.getGraphicsHookModule(), nullptr);
    EXPECT_EQ(manager.getOpenGLSleepTime(), 0u);
    EXPECT_FALSE(manager.getSteamDeckKeyboardShown());
    EXPECT_FALSE(manager.getSteamOverlayActive());
    EXPECT_EQ(manager.getGameControllerStatus(), "");
    EXPECT_FALSE(manager.hasSteamDeckKeyboardCallback());
    EXPECT_FALSE(manager.getSteamDeckKeyboardCallback());
    EXPECT_FALSE(manager.getGameControllerScriptUseCallback());
    EXPECT_FALSE(manager.getOpenExternalBrowserCallback());
    EXPECT_FALSE(manager.getOsrFramePresentCallback());

    manager.setOpenGLSleepTime(0xFFFFFFFF);
    EXPECT_EQ(manager.getOpenGLSleepTime(), 0xFFFFFFFFu);
    manager.setGameControllerStatus("{\"isConnected\": true}");
    EXPECT_EQ(manager.getGameControllerStatus(), "{\"isConnected\": true}");
    int kind = -1, use = -1, width = -1;
    std::string address;
    manager.setSteamDeckKeyboardCallback([&](int k) { kind = k; });
    manager.setGameControllerScriptUseCallback([&](int u) { use = u; });
    manager.setOpenExternalBrowserCallback([&](const std::string& a) {
        address = a;
        return true;
    });
    manager.setOsrFramePresentCallback([&](const void*, int w, int, int, int, int, int) { width = w; });
    EXPECT_TRUE(manager.hasSteamDeckKeyboardCallback());
    manager.getSteamDeckKeyboardCallback()(2);
    manager.getGameControllerScriptUseCallback()(1);
    EXPECT_TRUE(manager.getOpenExternalBrowserCallback()("https://a.test/"));
    manager.getOsrFramePresentCallback()(nullptr, 640, 0, 0, 0, 0, 0);
    EXPECT_EQ(kind, 2);
    EXPECT_EQ(use, 1);
    EXPECT_EQ(address, "https://a.test/");
    EXPECT_EQ(width, 640);
    manager.setSteamDeckKeyboardCallback({});
    EXPECT_FALSE(manager.hasSteamDeckKeyboardCallback());
}

TEST_F(LayerManager, CallbackGot_IsACopyThatALaterSetDoesNotChange) {
    int calls = 0;
    manager.setGameControllerScriptUseCallback([&](int) { ++calls; });
    const auto copy = manager.getGameControllerScriptUseCallback();
    manager.setGameControllerScriptUseCallback({});
    copy(0);
    EXPECT_EQ(calls, 1);
}

TEST_F(LayerManager, StatusSetWhileItIsRead_IsAlwaysOneWholeText) {
    const std::string a(300, 'a'), b(500, 'b');
    manager.setGameControllerStatus(a);
    std::atomic<bool> stop = false;
    std::atomic<int> torn = 0;
    std::thread reader([&] {
        while (!stop) {
            const std::string got = manager.getGameControllerStatus();
            if (got != a && got != b) ++torn;
        }
    });
    for (int i = 0; i < 20000; ++i) manager.setGameControllerStatus(i % 2 ? a : b);
    stop = true;
    reader.join();
    EXPECT_EQ(torn, 0);
}

TEST(LayerManagerInstance, EveryThread_GetsTheSameObject) {
    ZEMOMultiLayerManager* other = nullptr;
    std::thread thread([&] { other = &ZEMOMultiLayerManager::instance(); });
    thread.join();
    EXPECT_EQ(other, &ZEMOMultiLayerManager::instance());
}

// --- the subclass, on a real window ---

TEST_F(LayerManager, SubclassWithoutMainWindow_TouchesNothing) {
    manager.subclassMainWindow();
    LRESULT r = 0;
    EXPECT_FALSE(manager.dispatchMessage(&r, nullptr, WM_PAINT, 0, 0));
}

TEST_F(LayerManager, Destroyed_GivesTheWindowItsProcedureBackAndFreesTheHookModule) {
    GameWindow game;
    wchar_t system[MAX_PATH];
    GetSystemDirectoryW(system, MAX_PATH);
    const HMODULE module = LoadLibraryW((std::wstring(system) + L"\\msimg32.dll").c_str());
    ASSERT_NE(module, nullptr);
    game.onThread([&] {  // no message in between: the window's messages would go to the process-wide object
        const LONG_PTR before = GetWindowLongPtrW(game.handle(), GWLP_WNDPROC);
        {
            ZEMOMultiLayerManager own;
            own.setMainWindow(game.handle());
            own.setGraphicsHookModule(module);
            own.subclassMainWindow();
            EXPECT_EQ(GetWindowLongPtrW(game.handle(), GWLP_WNDPROC),
                      reinterpret_cast<LONG_PTR>(&ZEMOMultiLayerManager::layerWindowProc));
            own.subclassMainWindow();  // again: must not become its own predecessor
        }
        EXPECT_EQ(GetWindowLongPtrW(game.handle(), GWLP_WNDPROC), before);
    });
    EXPECT_EQ(GetModuleHandleW(L"msimg32.dll"), nullptr);
}

TEST_F(LayerManager, HookModulesOfEightThreadsAtOnce_AllAreFreedWithIt) {
    constexpr int kThreads = 8;
    constexpr int kModules = 2000;
    const wchar_t* const name = L"msimg32.dll";
    HMODULE module = nullptr;
    // Loaded before: the loader lets one thread in at a time, and they would not meet.
    for (int i = 0; i < kThreads * kModules; ++i) {
        module = LoadLibraryExW(name, nullptr, LOAD_LIBRARY_SEARCH_SYSTEM32);
        ASSERT_TRUE(module);
    }
    {
        ZEMOMultiLayerManager own;
        std::latch start(kThreads);
        std::vector<std::jthread> threads;
        for (int thread = 0; thread < kThreads; ++thread) {
            threads.emplace_back([&] {
                start.arrive_and_wait();
                for (int i = 0; i < kModules; ++i) own.setGraphicsHookModule(module);
            });
        }
        threads.clear();
        EXPECT_EQ(own.getGraphicsHookModule(), module);
    }
    EXPECT_EQ(GetModuleHandleW(name), nullptr) << "each load is freed once";
}

TEST_F(LayerManager, SubclassedWindowWithoutLayer_LetsTheGameAnswer) {
    SubclassedGame fixture;
    for (const UINT message : {UINT{WM_KEYDOWN}, UINT{WM_MOUSEWHEEL}, UINT{WM_DESTROY}, UINT{WM_INPUT}, kProbe}) {
        const auto probe = fixture.game.probe(message, 5, 6);
        EXPECT_TRUE(probe.gameSawIt) << message;
        EXPECT_EQ(probe.result, GameWindow::kGameAnswer) << message;
    }
    for (const UINT message : {kMessageImeFocus, kMessageImeBounds}) {
        const auto probe = fixture.game.probe(message, 1, 0);
        EXPECT_FALSE(probe.gameSawIt) << message;
        EXPECT_EQ(probe.result, 0) << message;
    }
}

TEST_F(LayerManager, SubclassedWindow_ConsumedMessagesAreHiddenFromTheGame) {
    SubclassedGame fixture;
    auto& shared = ZEMOMultiLayerManager::instance();
    const auto a = layer("a");
    shared.addLayer(a);
    const auto consumed = fixture.game.probe(kProbe, 5, 6);
    EXPECT_FALSE(consumed.gameSawIt);
    EXPECT_EQ(consumed.result, 77);
    a->consumes = false;
    const auto passed = fixture.game.probe(kProbe, 5, 6);
    EXPECT_TRUE(passed.gameSawIt);
    EXPECT_EQ(passed.result, GameWindow::kGameAnswer);
    shared.removeLayer(a);
    const auto after = fixture.game.probe(kProbe, 5, 6);
    EXPECT_TRUE(after.gameSawIt);
}

TEST_F(LayerManager, SubclassedWindow_SubclassedAgainStillReachesTheGame) {
    SubclassedGame fixture;
    fixture.game.onThread([] { ZEMOMultiLayerManager::instance().subclassMainWindow(); });
    EXPECT_TRUE(fixture.game.probe(kProbe, 1, 1).gameSawIt);
}

TEST_F(LayerManager, PostedFromAnotherThread_TheLayerAnswersOnTheWindowsThread) {
    SubclassedGame fixture;
    auto& shared = ZEMOMultiLayerManager::instance();
    const auto a = layer("a");
    std::atomic<DWORD> thread = 0;
    a->duringMessage = [&](UINT) { thread = GetCurrentThreadId(); };
    shared.addLayer(a);
    PostMessageW(fixture.game.handle(), kProbe, 8, 9);
    EXPECT_TRUE(journal->waitFor("a.message(1324,8,9)"));
    fixture.game.onThread([] {});  // behind the handler
    EXPECT_EQ(thread, GetWindowThreadProcessId(fixture.game.handle(), nullptr));
    shared.removeLayer(a);
}

TEST_F(LayerManager, RepaintMainWindow_PostsAPaintMessage) {
    ZEMOMultiLayerManager::instance().repaintMainWindow();  // no window: no effect
    SubclassedGame fixture;
    fixture.game.onThread([&] {
        MSG message{};
        const ULONGLONG end = GetTickCount64() + 20'000;
        bool painted = true;  // the display may ask for it late
        while (painted && GetTickCount64() < end) {
            while (PeekMessageW(&message, fixture.game.handle(), 0, 0, PM_REMOVE)) DispatchMessageW(&message);
            ValidateRect(fixture.game.handle(), nullptr);
            painted = PeekMessageW(&message, fixture.game.handle(), WM_PAINT, WM_PAINT, PM_NOREMOVE) != FALSE;
        }
        EXPECT_FALSE(painted);
        ZEMOMultiLayerManager::instance().repaintMainWindow();
        EXPECT_TRUE(PeekMessageW(&message, fixture.game.handle(), WM_PAINT, WM_PAINT, PM_REMOVE));
        EXPECT_EQ(message.wParam, 0u);
        EXPECT_EQ(message.lParam, 0);
    });
}

TEST_F(LayerManager, WindowDestroyed_LayerHearsOfItAndTheGameToo) {
    const auto a = layer("a");
    {
        SubclassedGame fixture;
        ZEMOMultiLayerManager::instance().addLayer(a);
        journal->clear();
        const auto probe = fixture.game.probe(WM_DESTROY, 0, 0);
        EXPECT_TRUE(probe.gameSawIt);
        EXPECT_EQ(journal->lines(), Lines{"a.message(2,0,0)"});
    }
    ZEMOMultiLayerManager::instance().removeLayer(a);
}

}  // namespace
}  // namespace ZEMO::Test
