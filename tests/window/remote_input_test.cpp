#include <gtest/gtest.h>

#include <windows.h>

#include <psapi.h>

#include <stdexcept>

#include "core/posted_text.h"
#include "layers/window_messages.h"
#include "window/window_test_support.h"
#include "zemo/ui.h"

// Injected events as they arrive at a real window, first at a game's own procedure, then at a layer on it.
namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

constexpr UINT kEnd = WM_USER + 300;  // posted behind an event: messages come in order
constexpr LPARAM kFirstPress = 1, kRelease = 0xC0000001;

struct Row {
    const char *type, *action, *data;
    int x, y;
    UINT message;  ///< 0: nothing is posted
    WPARAM wParam;
    LPARAM lParam;
};

LPARAM scanBits(UINT key) { return static_cast<LPARAM>(MapVirtualKeyW(key, MAPVK_VK_TO_VSC)) << 16; }

std::vector<Row> rows() {
    return {
        {"Click", "Move", "", 11, 22, kMessageRemoteMouseMove, MK_LBUTTON, MAKELPARAM(11, 22)},
        {"Touch", "Move", "", -11, -22, kMessageRemoteMouseMove, MK_LBUTTON, MAKELPARAM(-11, -22)},
        {"Click", "Down", "", 11, 22, kMessageRemotePress, 1, MAKELPARAM(11, 22)},
        {"Touch", "Down", "", -11, -22, kMessageRemotePress, 1, -22 * 65536 + 0xFFF5},
        {"Click", "Up", "", 11, 22, WM_LBUTTONUP, 0, MAKELPARAM(11, 22)},
        {"Touch", "Up", "", 11, -22, WM_LBUTTONUP, 0, -22 * 65536 + 11},
        {"Wheel", "Up", "", 11, 22, kMessageRemoteWheel, 120 << 16, MAKELPARAM(11, 22)},
        {"Wheel", "Down", "", 11, 22, kMessageRemoteWheel, static_cast<WPARAM>(-120 * 65536LL), MAKELPARAM(11, 22)},
        {"Key", "Down", "0x41", 0, 0, WM_KEYDOWN, 'A', scanBits('A') | kFirstPress},
        {"Key", "Down", "65", 0, 0, WM_KEYDOWN, 'A', scanBits('A') | kFirstPress},
        {"Key", "Down", "0X1b", 0, 0, WM_KEYDOWN, VK_ESCAPE, scanBits(VK_ESCAPE) | kFirstPress},
        {"Key", "Up", "13abc", 0, 0, WM_KEYUP, VK_RETURN, scanBits(VK_RETURN) | kRelease},
        {"Key", "Up", "37", 0, 0, WM_KEYUP, VK_LEFT, scanBits(VK_LEFT) | kRelease},
        {"Click", "Press", "", 1, 1, 0, 0, 0},
        {"Wheel", "Move", "", 1, 1, 0, 0, 0},
        {"Key", "Move", "65", 0, 0, 0, 0, 0},
        {"Key", "Down", "0x", 0, 0, 0, 0, 0},
        {"Key", "Down", "0", 0, 0, 0, 0, 0},
        {"click", "Down", "", 1, 1, 0, 0, 0},
        {"message", "", "text", 0, 0, 0, 0, 0},
        {"", "", "", 0, 0, 0, 0, 0},
    };
}

/// Messages that an injected event can be; what the real mouse and keyboard make beside them is left out by the caller.
bool isInjected(const ReceivedMessage& m) {
    return m.message == WM_KEYDOWN || m.message == WM_KEYUP || m.message == WM_LBUTTONUP ||
           (m.message >= kMessageExternalText && m.message <= kMessageRemotePress);
}

/// A game whose main window the manager knows and nothing has subclassed: its own procedure sees every message.
class RemoteInputMessages : public testing::Test {
protected:
    RemoteInputMessages() { ZEMOMultiLayerManager::instance().setMainWindow(game.handle()); }
    ~RemoteInputMessages() override { ZEMOMultiLayerManager::instance().setMainWindow(nullptr); }

    std::vector<ReceivedMessage> injected() {
        PostMessageW(game.handle(), kEnd, 0, 0);
        EXPECT_TRUE(game.waitForMessage(kEnd));
        std::vector<ReceivedMessage> found;
        for (const ReceivedMessage& m : game.received()) {
            if (isInjected(m)) found.push_back(m);
        }
        game.clearReceived();
        return found;
    }

    GameWindow game;
};

TEST_F(RemoteInputMessages, Table_EachRowPostsItsMessage) {
    for (const Row& row : rows()) {
        SCOPED_TRACE(std::string(row.type) + " " + row.action + " " + row.data);
        sendUIRemoteInputEvent(row.type, row.action, row.data, row.x, row.y);
        const auto found = injected();
        ASSERT_EQ(found.size(), row.message ? 1u : 0u);
        if (!row.message) continue;
        EXPECT_EQ(found[0].message, row.message);
        EXPECT_EQ(found[0].wParam, row.wParam);
        EXPECT_EQ(found[0].lParam, row.lParam);
    }
}

TEST_F(RemoteInputMessages, Text_ComesWholeAndIsTheReceivers) {
    const std::string text("\xED\x95\x9C\0x", 5);
    for (const char* action : {"", "Down", "anything"}) {
        sendUIRemoteInputEvent("Message", action, text, 7, 7);
        const auto found = injected();
        ASSERT_EQ(found.size(), 1u) << action;
        EXPECT_EQ(found[0].message, kMessageExternalText);
        EXPECT_EQ(found[0].wParam, 0u);
        EXPECT_EQ(*Core::takePostedText(found[0].lParam), text);
    }
}

TEST_F(RemoteInputMessages, KeyThatIsNoNumber_ThrowsToTheGameAndPostsNothing) {
    EXPECT_THROW(sendUIRemoteInputEvent("Key", "Down", "abc", 0, 0), std::invalid_argument);
    EXPECT_THROW(sendUIRemoteInputEvent("Key", "Move", "abc", 0, 0), std::invalid_argument);
    EXPECT_THROW(sendUIRemoteInputEvent("Key", "Up", "0x100000000", 0, 0), std::out_of_range);
    EXPECT_TRUE(injected().empty());
}

TEST_F(RemoteInputMessages, NoMainWindow_NothingReachesTheCallersOwnQueue) {
    ZEMOMultiLayerManager::instance().setMainWindow(nullptr);
    for (const Row& row : rows()) sendUIRemoteInputEvent(row.type, row.action, row.data, row.x, row.y);
    sendUIRemoteInputEvent("Message", "", "text", 0, 0);
    MSG message;
    while (PeekMessageW(&message, reinterpret_cast<HWND>(-1), 0, 0, PM_REMOVE)) {
        EXPECT_FALSE(isInjected({message.message, message.wParam, message.lParam})) << message.message;
    }
    EXPECT_THROW(sendUIRemoteInputEvent("Key", "Down", "abc", 0, 0), std::invalid_argument);
}

TEST_F(RemoteInputMessages, TextForADeadWindow_IsFreed) {
    HWND dead;
    {
        GameWindow gone;
        dead = gone.handle();
    }
    ZEMOMultiLayerManager::instance().setMainWindow(dead);
    const auto privateBytes = [] {
        PROCESS_MEMORY_COUNTERS_EX counters{};
        counters.cb = sizeof counters;
        GetProcessMemoryInfo(GetCurrentProcess(), reinterpret_cast<PROCESS_MEMORY_COUNTERS*>(&counters),
                             sizeof counters);
        return counters.PrivateUsage;
    };
    const std::string text(100'000, 'x');
    sendUIRemoteInputEvent("Message", "", text, 0, 0);
    const size_t before = privateBytes();
    for (int i = 0; i < 2000; ++i) sendUIRemoteInputEvent("Message", "", text, 0, 0);
    EXPECT_LT(privateBytes(), before + 50'000'000) << "200 MB of texts were sent";
}

/// A layer on a subclassed game window, on top of the manager's list.
class RemoteInputLayer : public testing::Test {
protected:
    RemoteInputLayer() {
        layer = ZEMOWindow::create<RecordingLayer>(RecordingLayer::Options{.parent = fixture.game.handle()}, journal);
        layer->setCustomCursor(nullptr);
        ZEMOMultiLayerManager::instance().addLayer(layer);
        journal->clear();
    }
    ~RemoteInputLayer() override { ZEMOMultiLayerManager::instance().removeLayer(layer); }

    SubclassedGame fixture;
    std::shared_ptr<Journal> journal = std::make_shared<Journal>();
    std::shared_ptr<RecordingLayer> layer;
};

TEST_F(RemoteInputLayer, Table_EachRowIsWhatTheUserWouldHaveDone) {
    struct Effect {
        const char *type, *action, *data;
        int x, y;
        std::string line;
    };
    const auto key = [](UINT message, UINT code, LPARAM flags) {
        return text("onKey(%u,%x,%llx)", message, code, static_cast<unsigned long long>(scanBits(code) | flags));
    };
    const Effect effects[] = {
        {"Click", "Move", "", 40, 50, moveLine(40, 50, MK_LBUTTON)},
        {"Touch", "Move", "", -1, 50, moveLine(-1, 50, MK_LBUTTON)},
        {"Click", "Down", "", 40, 50, "onMouseButton(0,0,40,50)"},
        {"Touch", "Down", "", -1, -2, "onMouseButton(0,0,-1,-2)"},
        {"Click", "Up", "", 40, 50, "onMouseButton(0,1,40,50)"},
        {"Wheel", "Up", "", 40, 50, "onMouseWheel(780000,40,50,0,1)"},
        {"Wheel", "Down", "", 40, 50, "onMouseWheel(ffffffffff880000,40,50,0,1)"},
        {"Key", "Down", "65", 0, 0, key(WM_KEYDOWN, 'A', kFirstPress)},
        {"Key", "Up", "0x41", 0, 0, key(WM_KEYUP, 'A', kRelease)},
        {"Message", "", "\xED\x95\x9C", 0, 0, "onExternalText(\xED\x95\x9C)"},
    };
    for (const Effect& effect : effects) {
        journal->clear();
        sendUIRemoteInputEvent(effect.type, effect.action, effect.data, effect.x, effect.y);
        EXPECT_TRUE(journal->waitFor(effect.line)) << effect.type << " " << effect.action;
        EXPECT_EQ(journal->count(effect.line), 1u) << effect.type << " " << effect.action;
    }
}

TEST_F(RemoteInputLayer, TenThousandTextsFromFourThreads_NoneLostEachThreadsInOrder) {
    constexpr int kThreads = 4, kEach = 2500;
    std::vector<std::thread> senders;
    for (int sender = 0; sender < kThreads; ++sender) {
        senders.emplace_back([sender] {
            for (int i = 0; i < kEach; ++i) sendUIRemoteInputEvent("Message", "", text("%d:%d", sender, i), 0, 0);
        });
    }
    for (std::thread& sender : senders) sender.join();
    for (int sender = 0; sender < kThreads; ++sender) {
        ASSERT_TRUE(journal->waitFor(text("onExternalText(%d:%d)", sender, kEach - 1)));
    }
    int next[kThreads] = {};
    for (const std::string& line : journal->lines()) {
        int sender = 0, number = 0;
        if (sscanf(line.c_str(), "onExternalText(%d:%d)", &sender, &number) != 2) continue;
        ASSERT_EQ(number, next[sender]++) << line;
    }
    for (const int count : next) EXPECT_EQ(count, kEach);
}

TEST_F(RemoteInputLayer, TenThousandMixedEventsFromFourThreads_NoneLost) {
    constexpr int kThreads = 4, kRounds = 500;  // five events a round
    std::vector<std::thread> senders;
    for (int sender = 0; sender < kThreads; ++sender) {
        senders.emplace_back([sender] {
            for (int i = 0; i < kRounds; ++i) {
                sendUIRemoteInputEvent("Click", "Move", "", 100 + sender, i);
                sendUIRemoteInputEvent("Click", "Down", "", 100 + sender, i);
                sendUIRemoteInputEvent("Click", "Up", "", 100 + sender, i);
                sendUIRemoteInputEvent("Wheel", "Up", "", 100 + sender, i);
                sendUIRemoteInputEvent("Key", "Up", "37", 0, 0);
            }
        });
    }
    for (std::thread& sender : senders) sender.join();
    PostMessageW(fixture.game.handle(), kEnd, 0, 0);
    ASSERT_TRUE(fixture.game.waitForMessage(kEnd));
    size_t presses = 0, releases = 0, moves = 0, wheels = 0, keys = 0;
    for (const std::string& line : journal->lines()) {
        presses += line.starts_with("onMouseButton(0,0,10");
        releases += line.starts_with("onMouseButton(0,1,10");
        moves += line.starts_with("onMouseMove(10") && line.ends_with(",16)");
        wheels += line.starts_with("onMouseWheel(780000,10");
        keys += line.starts_with("onKey(257,25,");
    }
    const size_t each = kThreads * kRounds;
    EXPECT_EQ(presses, each);
    EXPECT_EQ(releases, each);
    EXPECT_EQ(wheels, each);
    EXPECT_EQ(keys, each);
    EXPECT_EQ(moves, each);
}

}  // namespace
}  // namespace ZEMO::Test
