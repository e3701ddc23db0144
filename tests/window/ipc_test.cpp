#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <windows.h>

#include <chrono>
#include <future>
#include <string>
#include <vector>

#include "core/platform/ipc.h"
#include "support/debug_log.h"
#include "support/helper_process.h"
#include "zemo/platform.h"

// A text from this process to another one, the probe, which prints what its callback gets. The receiver of ipcOpen()
// stands for the life of its process: each test starts a new one.
namespace {

using namespace ZEMO::Test;
using namespace std::chrono_literals;
using testing::ElementsAre;
using ZEMO::Platform::Misc::ipcSend;

const char kOpened[] = "################       g_ZEMOWndHook is NULL ##############################\n";
const char kReceived[] = "################   Copy Data Called ##############################\n";

std::string hex(const std::string& text) {
    std::string result;
    for (const unsigned char c : text) {
        result += "0123456789abcdef"[c >> 4];
        result += "0123456789abcdef"[c & 15];
    }
    return result;
}

std::string got(const std::string& name, const std::string& text) {
    return name + " " + std::to_string(text.size()) + " " + hex(text);
}

std::string pattern(size_t size) {
    std::string text(size, ' ');
    for (size_t i = 0; i < size; ++i) text[i] = static_cast<char>('a' + i * 7 % 26);
    return text;
}

class Receiver {
public:
    explicit Receiver(const std::vector<std::wstring>& arguments)
        : process_(helperPath(L"platform_probe.exe"), arguments) {
        const auto ready = process_.line("ready");
        EXPECT_TRUE(ready) << process_.output();
        if (ready) thread_ = static_cast<DWORD>(std::stoul(ready->substr(ready->rfind(' '))));
    }
    HelperProcess& process() { return process_; }
    std::string id() const { return std::to_string(process_.id()); }
    std::string next(const std::string& name) {
        const auto line = process_.line(name + " ");
        return line ? *line : "nothing came; " + process_.output();
    }
    /// Ends its message loop; it goes on with what stands behind "pump".
    std::vector<std::string> finish() {
        EXPECT_TRUE(PostThreadMessageW(thread_, WM_QUIT, 0, 0));
        const auto lines = process_.finish();
        return lines ? *lines : std::vector<std::string>{"did not end; " + process_.output()};
    }

private:
    HelperProcess process_;
    DWORD thread_ = 0;
};

/// The names of a process's top-level windows in the order of EnumWindows, which is front to back.
std::vector<std::string> windowsOf(const std::string& processId) {
    struct Search {
        DWORD processId;
        std::vector<std::string> names;
    } search{static_cast<DWORD>(std::stoul(processId)), {}};
    EnumWindows(
        [](HWND window, LPARAM parameter) -> BOOL {
            auto& search = *reinterpret_cast<Search*>(parameter);
            DWORD owner = 0;
            GetWindowThreadProcessId(window, &owner);
            char name[100] = {};
            if (owner == search.processId && GetWindowTextA(window, name, 100) > 0) search.names.push_back(name);
            return TRUE;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.names;
}

/// Puts the window in front of all others, without activating it.
void bringToFront(const char* name) {
    const HWND window = FindWindowA("ZemoPlatformProbe", name);
    ASSERT_NE(window, nullptr) << name;
    ASSERT_TRUE(
        SetWindowPos(window, HWND_TOP, 0, 0, 0, 0, SWP_NOACTIVATE | SWP_NOMOVE | SWP_NOSIZE | SWP_NOOWNERZORDER));
}

/// ipcSend() on a thread of its own, so that a test can see whether it has returned.
class Sending {
public:
    Sending(std::string id, std::string message)
        : done_(std::async(std::launch::async, [=] { ipcSend(id, message); })) {}
    bool returns(std::chrono::milliseconds timeout = 20s) {
        return done_.wait_for(timeout) == std::future_status::ready;
    }

private:
    std::future<void> done_;
};

TEST(Ipc, TextsOfManySizes_ArriveExactly) {
    Receiver receiver({L"window", L"open=A", L"ready", L"pump"});
    const std::string texts[] = {"",
                                 "x",
                                 "안녕하세요, 게임! 😀",
                                 pattern(255),
                                 pattern(256),
                                 pattern(9999),
                                 pattern(10000),
                                 "short after long",
                                 "line\r\nbreak\ttab \x01\x7f",
                                 "\xff\xfe not UTF-8"};
    for (const std::string& text : texts) {
        ipcSend(receiver.id(), text);
        EXPECT_EQ(receiver.next("A"), got("A", text)) << text.size();
    }
}

TEST(Ipc, TenThousandBytesOfKorean_ArriveExactly) {
    std::string text = "a";
    while (text.size() < 10000) text += "글";
    ASSERT_EQ(text.size(), 10000u);
    Receiver receiver({L"window", L"open=A", L"ready", L"pump"});
    ipcSend(receiver.id(), text);
    EXPECT_EQ(receiver.next("A"), got("A", text));
}

TEST(Ipc, OneByteMoreThanTenThousand_IsDroppedWithoutAWord) {
    Receiver receiver({L"window", L"open=A", L"ready", L"pump"});
    DebugLogCapture log;
    ipcSend(receiver.id(), pattern(10001));
    ipcSend(receiver.id(), std::string(1000000, 'x'));
    EXPECT_THAT(log.texts(), ElementsAre());
    ipcSend(receiver.id(), "after");
    EXPECT_EQ(receiver.next("A"), got("A", "after"));  // the first that came
    EXPECT_THAT(receiver.finish(), testing::Contains("window 10000").Times(1));
}

TEST(Ipc, TextWithNul_ArrivesUpToIt) {
    Receiver receiver({L"window", L"open=A", L"ready", L"pump"});
    ipcSend(receiver.id(), std::string("before\0after", 12));
    EXPECT_EQ(receiver.next("A"), got("A", "before"));
}

TEST(Ipc, AnyText_BlockHasAlwaysTenThousandBytes) {
    Receiver receiver({L"window", L"open=A", L"ready", L"pump"});
    for (const size_t size : {0u, 5u, 10000u}) {
        ipcSend(receiver.id(), pattern(size));
        EXPECT_EQ(receiver.next("window"), "window 10000") << size;
    }
}

TEST(Ipc, ManyTexts_ArriveInOrder) {
    Receiver receiver({L"window", L"open=A", L"ready", L"pump"});
    for (int i = 0; i < 200; ++i) ipcSend(receiver.id(), "text " + std::to_string(i));
    for (int i = 0; i < 200; ++i) ASSERT_EQ(receiver.next("A"), got("A", "text " + std::to_string(i)));
}

TEST(Ipc, HiddenAndVisibleWindows_BothReceive) {
    for (const wchar_t* kind : {L"window", L"shown"}) {
        Receiver receiver({kind, L"open=A", L"ready", L"pump"});
        ipcSend(receiver.id(), "hello");
        EXPECT_EQ(receiver.next("A"), got("A", "hello"));
    }
}

TEST(Ipc, SeveralWindows_OnlyTheFirstOfTheSystemsListReceives) {
    Receiver receiver({L"window=one", L"window=two", L"window=three", L"open=A", L"ready", L"pump"});
    for (const char* name : {"one", "three", "two"}) {
        bringToFront(name);
        ASSERT_EQ(windowsOf(receiver.id()).front(), name);
        ipcSend(receiver.id(), name);
        EXPECT_EQ(receiver.next("A"), got("A", name));
        EXPECT_EQ(receiver.next(name), name + std::string(" 10000"));
    }
    const auto lines = receiver.finish();
    EXPECT_EQ(std::count_if(lines.begin(), lines.end(), [](auto& line) { return line.ends_with(" 10000"); }), 3)
        << receiver.process().output();
}

TEST(Ipc, OwnedWindowIsFirst_ItReceives) {
    Receiver receiver({L"window=owner", L"owned=owned", L"open=A", L"ready", L"pump"});
    bringToFront("owned");
    ASSERT_EQ(windowsOf(receiver.id()).front(), "owned");
    ipcSend(receiver.id(), "hello");
    EXPECT_EQ(receiver.next("owned"), "owned 10000");
    EXPECT_THAT(receiver.finish(), testing::IsSupersetOf({got("A", "hello"), std::string("owned 10000")}));
}

// The receiver's callback belongs to the thread that called ipcOpen(): a text for another thread's window passes it by.
TEST(Ipc, WindowOfAnotherThreadIsFirst_ThatWindowAloneSeesTheMessage) {
    Receiver receiver({L"window=own", L"threaded=other", L"open=A", L"ready", L"pump"});
    bringToFront("other");
    ASSERT_EQ(windowsOf(receiver.id()).front(), "other");
    ipcSend(receiver.id(), "past it");
    EXPECT_EQ(receiver.next("other"), "other 10000");
    bringToFront("own");
    ASSERT_EQ(windowsOf(receiver.id()).front(), "own");
    ipcSend(receiver.id(), "to it");
    EXPECT_EQ(receiver.next("A"), got("A", "to it"));
    EXPECT_THAT(receiver.finish(), testing::Not(testing::Contains(got("A", "past it"))));
}

TEST(Ipc, CallbackAndWindow_BothSeeTheMessageInThisOrder) {
    Receiver receiver({L"log", L"window", L"hook", L"open=A", L"ready", L"pump", L"logged"});
    ipcSend(receiver.id(), "one");
    EXPECT_EQ(receiver.next("window"), "window 10000");
    EXPECT_THAT(receiver.finish(),
                testing::IsSupersetOf({std::string("log ") + hex(kOpened), std::string("log ") + hex(kReceived)}));
    const auto lines = *receiver.process().finish();
    const auto at = [&](const std::string& line) { return std::find(lines.begin(), lines.end(), line); };
    // The callback, then the hook that was there before, then the window.
    EXPECT_LT(at(got("A", "one")), at("other hook"));
    EXPECT_LT(at("other hook"), at("window 10000"));
    EXPECT_NE(at("window 10000"), lines.end());
}

TEST(Ipc, SecondOpen_ChangesNothing) {
    Receiver receiver({L"log", L"window", L"open=A", L"open=B", L"open", L"logged", L"ready", L"pump"});
    ipcSend(receiver.id(), "one");
    EXPECT_EQ(receiver.next("A"), got("A", "one"));
    EXPECT_THAT(receiver.finish(), testing::AllOf(testing::Contains("log " + hex(kOpened)).Times(1),
                                                  testing::Not(testing::Contains(testing::StartsWith("B ")))));
}

TEST(Ipc, OpenedWithoutCallback_ReceivesButTellsNobody) {
    Receiver receiver({L"log", L"window", L"open", L"open=B", L"ready", L"pump", L"logged"});
    ipcSend(receiver.id(), "one");
    EXPECT_EQ(receiver.next("window"), "window 10000");
    EXPECT_THAT(receiver.finish(), testing::AllOf(testing::Contains("log " + hex(kReceived)).Times(1),
                                                  testing::Not(testing::Contains(testing::StartsWith("B ")))));
}

TEST(Ipc, NotOpened_WindowAloneSeesTheMessage) {
    Receiver receiver({L"log", L"window", L"ready", L"pump", L"logged"});
    ipcSend(receiver.id(), "one");
    EXPECT_EQ(receiver.next("window"), "window 10000");
    EXPECT_THAT(receiver.finish(), testing::Not(testing::Contains("log " + hex(kReceived))));
}

TEST(Ipc, SentByTheReceivingThread_ArrivesAsWell) {
    const auto lines = runHelper(helperPath(L"platform_probe.exe"), {L"window", L"open=A", L"to-self=own"});
    EXPECT_THAT(lines, ElementsAre(got("A", "own"), "window 10000", "done"));
}

TEST(Ipc, BlockOfAnotherSender_TextUpToNulOrEndWhateverItsData) {
    const auto lines =
        runHelper(helperPath(L"platform_probe.exe"), {L"window", L"open=A", L"self=한글 text", L"cut=abcdefgh"});
    EXPECT_THAT(lines, ElementsAre(got("A", "한글 text"), "window 12", got("A", "abcd"), "window 4", "done"));
}

TEST(Ipc, ReceiverIsBusy_SenderWaitsUntilItDispatches) {
    const std::wstring name = L"ZemoIpcBusy" + std::to_wstring(GetCurrentProcessId());
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, name.c_str());
    ASSERT_NE(event, nullptr);
    {
        Receiver receiver({L"window", L"open=A", L"ready", L"wait=" + name, L"pump"});
        Sending sending(receiver.id(), "patience");
        EXPECT_FALSE(sending.returns(400ms));
        SetEvent(event);
        EXPECT_TRUE(sending.returns()) << receiver.process().output();
        EXPECT_EQ(receiver.next("A"), got("A", "patience"));
    }
    CloseHandle(event);
}

TEST(Ipc, ReceiverEndsWhileSenderWaits_SenderReturns) {
    Receiver receiver({L"window", L"open=A", L"ready", L"wait=ZemoIpcNoSuchEvent", L"pump"});
    receiver.process().terminate();
    Sending gone(receiver.id(), "too late");
    EXPECT_TRUE(gone.returns());

    const std::wstring name = L"ZemoIpcEnds" + std::to_wstring(GetCurrentProcessId());
    const HANDLE event = CreateEventW(nullptr, TRUE, FALSE, name.c_str());
    Receiver busy({L"window", L"open=A", L"ready", L"wait=" + name});
    Sending sending(busy.id(), "in the middle");
    EXPECT_FALSE(sending.returns(300ms));
    busy.process().terminate();
    EXPECT_TRUE(sending.returns());
    CloseHandle(event);
}

TEST(Ipc, ProcessWithoutWindowOrNoProcess_DroppedWithoutAWord) {
    HelperProcess windowless(helperPath(L"platform_probe.exe"), {L"open=A", L"ready", L"wait=ZemoIpcNone", L"pump"});
    ASSERT_TRUE(windowless.line("ready"));
    DebugLogCapture log;
    ipcSend(std::to_string(windowless.id()), "hello");
    ipcSend("4294", "hello");
    ipcSend("0", "hello");
    ipcSend("-1", "hello");
    EXPECT_THAT(log.texts(), ElementsAre());
}

TEST(Ipc, ProcessIdIsNoNumber_TextOfTheExceptionIsLogged) {
    for (const std::string id :
         {"", "abc", "x12", "-", "99999999999999999999", "-99999999999999999999", "2147483648"}) {
        std::string what;
        try {
            (void)std::stol(id);
        } catch (const std::exception& error) {
            what = error.what();
        }
        ASSERT_NE(what, "") << id;
        DebugLogCapture log;
        EXPECT_NO_THROW(ipcSend(id, "hello")) << id;
        EXPECT_THAT(log.texts(), ElementsAre(what)) << id;
    }
}

TEST(Ipc, ProcessIdWithSpaceAndTail_ReadAsDecimalNumber) {
    Receiver receiver({L"window", L"open=A", L"ready", L"pump"});
    ipcSend(" +" + receiver.id() + "tail", "hello");
    EXPECT_EQ(receiver.next("A"), got("A", "hello"));
}

TEST(Ipc, BadIdAndTooLongText_IdIsReadFirst) {
    DebugLogCapture log;
    ipcSend("abc", pattern(10001));
    EXPECT_EQ(log.texts().size(), 1u);
}

// A received block is as long as its size says and nothing behind it may be read: here the next page
// is not readable.
TEST(IpcBlock, FilledWithoutNul_NothingBehindItIsRead) {
    constexpr size_t kPage = 4096, kReadable = 3 * kPage;
    auto* memory = static_cast<char*>(VirtualAlloc(nullptr, kReadable + kPage, MEM_RESERVE, PAGE_NOACCESS));
    ASSERT_NE(VirtualAlloc(memory, kReadable, MEM_COMMIT, PAGE_READWRITE), nullptr);
    char* block = memory + kReadable - 10000;
    std::fill_n(block, 10000, 'z');
    EXPECT_EQ(ZEMO::Core::textOfBlock({0, 10000, block}), std::string(10000, 'z'));
    EXPECT_EQ(ZEMO::Core::textOfBlock({0, 3, block + 9997}), "zzz");
    EXPECT_EQ(ZEMO::Core::textOfBlock({0, 0, block + 10000}), "");
    block[9999] = '\0';
    EXPECT_EQ(ZEMO::Core::textOfBlock({7, 10, block + 9990}), "zzzzzzzzz");
    VirtualFree(memory, 0, MEM_RELEASE);
}

TEST(IpcBlock, NoData_EmptyText) {
    EXPECT_EQ(ZEMO::Core::textOfBlock({0, 10000, nullptr}), "");
    EXPECT_EQ(ZEMO::Core::textOfBlock({0, 0, nullptr}), "");
}

}  // namespace
