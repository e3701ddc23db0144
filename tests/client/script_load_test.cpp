#include <atomic>
#include <format>
#include <thread>

#include "client/script_page.h"
#include "support/memory_looker.h"

// Many scripts: from one thread with results of all sizes, from four while pages load.
namespace ZEMO::Test {
namespace {

constexpr int kRequests = 100'000;
constexpr int kUnderWay = 256;  // requests that wait for their answers at a time

/// Most are small; one of a hundred has 10 KB, one of ten thousand 1 MB.
size_t sizeOf(int number) {
    if (number % 10'000 == 9'999) return 1 << 20;
    return number % 100 == 99 ? 10 << 10 : 10 + static_cast<size_t>(number) % 100;
}

std::string expectedResult(int number) {  // as JSON text
    const std::string head = std::format("\"{}:", number);
    return head + std::string(sizeOf(number) - head.size() - 1, static_cast<char>('a' + number % 26)) + '"';
}

std::string scriptFor(int number) { return std::format("answer({}, {})", number, sizeOf(number)); }

constexpr char kAnsweringPage[] = R"(<script>
    function answer(number, size) {
        const head = number + ':';
        return head + String.fromCharCode(97 + number % 26).repeat(size - head.length - 2);
    }
    </script>)";

class ScriptLoad : public ScriptPage {};

/// Counted on the engine thread.
struct Tally {
    std::atomic<int> arrived{0}, wrong{0}, disordered{0};
};

/// One thread's requests and what came back for them.
struct Caller {
    std::atomic<int> last{-1}, answered{0}, disordered{0}, wrong{0}, tooEarly{0};
};

}  // namespace

TEST_F(ScriptLoad, HundredThousandResults_EachRightOnceAndInOrder) {
    open(kAnsweringPage);
    const auto tally = std::make_shared<Tally>();
    for (int number = 0; number < kRequests; ++number) {
        ASSERT_TRUE(game.waitFor("answers", [&] { return number - tally->arrived < kUnderWay; }));
        view->evaluateJavascript(scriptFor(number), [tally, number](const std::string& result, const std::string&) {
            tally->wrong += result != expectedResult(number);
            tally->disordered += tally->arrived++ != number;
        });
    }
    ASSERT_TRUE(game.waitFor("the last answer", [&] { return tally->arrived >= kRequests; })) << tally->arrived;
    EXPECT_EQ(resultOf("'nothing follows'"), "\"nothing follows\"");
    EXPECT_EQ(tally->arrived, kRequests);
    EXPECT_EQ(tally->wrong, 0);
    EXPECT_EQ(tally->disordered, 0);
}

// Under Wine each look stops the thread that sends the results.
TEST_F(ScriptLoad, ResultsOfAMegabyteWhileOthersLookAtThePagesProcess_EachRight) {
    open("");
    ASSERT_EQ(pageProcesses().size(), 1u);
    const MemoryLooker looker(pageProcesses().front());
    for (int i = 0; i < 20; ++i) {
        const std::string letter(1, static_cast<char>('a' + i));
        ASSERT_TRUE(resultOf("'" + letter + "'.repeat(1 << 20)") == '"' + std::string(1 << 20, letter[0]) + '"') << i;
    }
}

TEST_F(ScriptLoad, ScriptsOfAMegabyte_EachRuns) {
    open("");
    for (int i = 0; i < 20; ++i) {
        ASSERT_EQ(resultOf("'" + std::string(1 << 20, 'x') + "'.length + " + std::to_string(i)),
                  std::to_string((1 << 20) + i));
    }
}

TEST_F(ScriptLoad, FourThreadsAskWhilePagesLoad_EachAnswerAtMostOnceInItsThreadsOrder) {
    constexpr int kThreads = 4, kEach = 500, kLoads = 10;
    open(kAnsweringPage);
    server.serveHtml("/next", std::string("<!doctype html>") + kAnsweringPage);
    std::vector<std::shared_ptr<Caller>> callers;
    std::vector<std::thread> threads;
    for (int i = 0; i < kThreads; ++i) {
        const auto caller = callers.emplace_back(std::make_shared<Caller>());
        threads.emplace_back([shown = view, caller] {
            for (int number = 0; number < kEach; ++number) {
                shown->evaluateJavascript(
                    scriptFor(number), [caller, number](const std::string& result, const std::string& error) {
                        // One that was under way to the page before may meet the next one while it has no script yet.
                        caller->tooEarly += error == "Uncaught ReferenceError: answer is not defined";
                        caller->wrong += error.empty() ? result != expectedResult(number)
                                                       : error != "Uncaught ReferenceError: answer is not defined";
                        caller->disordered += caller->last.exchange(number) >= number;
                        ++caller->answered;
                    });
                std::this_thread::sleep_for(2ms);  // over all the loads
            }
        });
    }
    for (int i = 0; i < kLoads; ++i) load("/next");
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(resultOf("answer(1, 11)"), expectedResult(1));
    for (const auto& caller : callers) {
        std::printf("%d of %d answered, %d too early\n", caller->answered.load(), kEach, caller->tooEarly.load());
        EXPECT_EQ(caller->wrong, 0);
        EXPECT_EQ(caller->disordered, 0);
        EXPECT_LE(caller->answered, kEach);
        EXPECT_EQ(caller->last, kEach - 1) << "what was asked of the last page is answered";
    }
}

}  // namespace ZEMO::Test
