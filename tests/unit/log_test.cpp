#include "core/log.h"

#include <gmock/gmock.h>
#include <windows.h>

#include <string>
#include <thread>

#include "support/debug_log.h"

namespace ZEMO::Core {
namespace {

using Test::DebugLogCapture;
using testing::ElementsAre;

}  // namespace

TEST(DebugLogCapture, NarrowAndWideCalls_BothSeenInOrderWithTheirForm) {
    DebugLogCapture log;
    OutputDebugStringA("narrow");
    OutputDebugStringW(L"wide \xD55C");
    OutputDebugStringA("again");
    const auto lines = log.lines();
    ASSERT_EQ(lines.size(), 3u) << log.dump();
    EXPECT_EQ(lines[0].text, "narrow");
    EXPECT_FALSE(lines[0].wide);
    EXPECT_EQ(lines[1].text, "wide \xED\x95\x9C");
    EXPECT_TRUE(lines[1].wide);
    EXPECT_EQ(lines[2].text, "again");
    EXPECT_EQ(lines[0].threadId, GetCurrentThreadId());
}

TEST(DebugLogCapture, LineFromAnotherThread_WaitReturnsWithIt) {
    DebugLogCapture log;
    std::thread other([] { logDebugA("from the other thread"); });
    EXPECT_TRUE(log.waitFor("other thread")) << log.dump();
    other.join();
    ASSERT_EQ(log.lines().size(), 1u);
    EXPECT_NE(log.lines()[0].threadId, GetCurrentThreadId());
}

TEST(DebugLogCapture, TextNeverLogged_WaitEndsFalse) {
    DebugLogCapture log;
    logDebugA("something");
    EXPECT_FALSE(log.waitFor("something else", std::chrono::milliseconds(1)));
    EXPECT_FALSE(log.waitFor("something", std::chrono::milliseconds(1), 2));
}

TEST(DebugLogCapture, TwoCaptures_EachSeesItsOwnTime) {
    DebugLogCapture outer;
    logDebugA("one");
    {
        DebugLogCapture inner;
        logDebugA("two");
        EXPECT_THAT(inner.texts(), ElementsAre("two"));
    }
    logDebugA("three");
    EXPECT_THAT(outer.texts(), ElementsAre("one", "two", "three"));
    outer.clear();
    EXPECT_TRUE(outer.texts().empty());
}

TEST(DebugLogCapture, WideCallRepeatedInNarrowForm_CountsOnceYetNotARealRepetition) {
    DebugLogCapture log;
    OutputDebugStringW(L"same");
    OutputDebugStringA("same");
    OutputDebugStringW(L"");
    OutputDebugStringA("");
    EXPECT_THAT(log.texts(), ElementsAre("same", "same", "", ""));
}

TEST(Log, NullFormat_NothingPrinted) {
    DebugLogCapture log;
    logDebugA(nullptr);
    logDebugW(nullptr);
    EXPECT_TRUE(log.lines().empty()) << log.dump();
}

TEST(Log, NarrowFormat_FollowsPrintfRulesWithoutPrefixOrLineEnd) {
    DebugLogCapture log;
    logDebugA("%s=%d %5.2f %08lX %zu%%", "key", -7, 1.25, 0xBEEFul, size_t{42});
    EXPECT_THAT(log.texts(), ElementsAre("key=-7  1.25 0000BEEF 42%"));
    EXPECT_FALSE(log.lines()[0].wide);
}

TEST(Log, WideFormat_PercentSTakesWideText) {
    DebugLogCapture log;
    logDebugW(L"%s|%ls|%hs|%d|%lu", L"\xD55C\xAE00", L"two", "narrow", -1, 5ul);
    EXPECT_THAT(log.texts(), ElementsAre("\xED\x95\x9C\xEA\xB8\x80|two|narrow|-1|5"));
    EXPECT_TRUE(log.lines()[0].wide);
}

TEST(Log, EmptyFormat_EmptyLinePrinted) {
    DebugLogCapture log;
    logDebugA("%s", "");
    logDebugW(L"%s", L"");
    EXPECT_THAT(log.texts(), ElementsAre("", ""));
}

TEST(Log, TextLengthsAroundTheLimit_CutAtOneThousandAndTwenty) {
    const size_t lengths[] = {1019, 1020, 1021, 1023, 1024, 1025, 5000};
    ASSERT_EQ(std::size(lengths), 7u);
    for (const size_t length : lengths) {
        const std::string narrow(length, 'n');
        const std::wstring wide(length, L'w');
        DebugLogCapture log;
        logDebugA("%s", narrow.c_str());
        logDebugW(L"%s", wide.c_str());
        const size_t kept = length < 1020 ? length : 1020;
        EXPECT_THAT(log.texts(), ElementsAre(std::string(kept, 'n'), std::string(kept, 'w'))) << length;
    }
}

TEST(Log, LongFormatWithoutArguments_CutToo) {
    const std::string format(3000, 'f');
    const std::wstring wideFormat(3000, L'g');
    DebugLogCapture captured;
    void (*const log)(const char*, ...) = &logDebugA;  // the function itself is asked for a literal
    log(format.c_str());
    logDebugW(wideFormat.c_str());
    EXPECT_THAT(captured.texts(), ElementsAre(std::string(1020, 'f'), std::string(1020, 'g')));
}

TEST(Log, KoreanNarrowText_BytesArriveAsWritten) {
    DebugLogCapture log;
    logDebugA("to_wide: 길이 조회 실패 (err=%lu)", 5ul);
    EXPECT_THAT(log.texts(), ElementsAre("to_wide: 길이 조회 실패 (err=5)"));
}

TEST(Log, LinesOfSeveralThreads_NeverMixed) {
    DebugLogCapture log;
    constexpr int kThreads = 4, kLines = 25;
    std::vector<std::thread> threads;
    for (int t = 0; t < kThreads; ++t) {
        threads.emplace_back([t] {
            for (int i = 0; i < kLines; ++i) {
                const std::string body(200, static_cast<char>('a' + t));
                if (i % 2) {
                    logDebugA("<%s>", body.c_str());
                } else {
                    logDebugW(L"<%s>", std::wstring(body.begin(), body.end()).c_str());
                }
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    ASSERT_EQ(log.lines().size(), size_t{kThreads} * kLines);
    for (int t = 0; t < kThreads; ++t)
        EXPECT_EQ(log.count("<" + std::string(200, static_cast<char>('a' + t)) + ">"), size_t{kLines});
}

}  // namespace ZEMO::Core
