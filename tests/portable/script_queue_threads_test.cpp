#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <barrier>
#include <map>
#include <string>
#include <thread>
#include <vector>

#include "engine/client/script/script_queue.h"

// The script queue under all its callers at once, as it is used: games ask on any thread while pages come and go and
// answer on the engine's. Built a second time under the thread sanitizer, which is what finds a missing lock.
namespace ZEMO::Test {
namespace {

using UI::ScriptQueue;

constexpr int kThreads = 4;
constexpr int kRequests = 400;  // of each thread

std::string requestId(int thread, int number) { return std::to_string(thread) + "." + std::to_string(number); }

/// What the page got, and what came back. The sender is called under the queue's lock, by one thread at a time.
struct Page {
    std::vector<std::string> sent;
    std::array<std::atomic<int>, kThreads> answered{};
    std::atomic<int> used{0};
    std::atomic<size_t> sentCount{0};
};

/// The requests of each thread, in the order in which they left.
std::map<int, std::vector<int>> byThread(const std::vector<std::string>& sent) {
    std::map<int, std::vector<int>> numbers;
    for (const std::string& id : sent) {
        numbers[std::stoi(id)].push_back(std::stoi(id.substr(id.find('.') + 1)));
    }
    return numbers;
}

std::vector<int> allInOrder() {
    std::vector<int> numbers;
    for (int number = 0; number < kRequests; ++number) numbers.push_back(number);
    return numbers;
}

void askAll(ScriptQueue& queue, Page& page, int thread) {
    for (int number = 0; number < kRequests; ++number) {
        const std::string id = requestId(thread, number);
        queue.evaluate(id, "script", [&page, thread](const std::string& result, const std::string&) {
            page.answered[thread] += result == "yes";
        });
        queue.answer(id, "yes", "");  // may be too early: the request may still wait
    }
}

void registerAll(ScriptQueue& queue, Page& page) {
    for (int number = 0; number < kRequests; ++number) {
        const std::string name = "object" + std::to_string(number % 50);
        queue.addObjectCallback(name, [&page](const std::string& message) { page.used += message == "text"; });
        queue.addObjectMessage(name, "text");
        queue.invokeObject(name);
    }
}

}  // namespace

TEST(ScriptQueueThreads, AskedWhilePagesComeAndGo_EachThreadsRequestsLeaveOnceAndInItsOrder) {
    Page page;
    ScriptQueue queue([&](const std::string& id, const std::string&) { page.sent.push_back(id); });
    std::barrier start(kThreads + 3);
    std::atomic<bool> stop = false;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&, thread] {
            start.arrive_and_wait();
            askAll(queue, page, thread);
        });
    }
    for (int user = 0; user < 2; ++user) {
        threads.emplace_back([&] {
            start.arrive_and_wait();
            registerAll(queue, page);
        });
    }
    std::thread pages([&] {
        start.arrive_and_wait();
        while (!stop) {
            queue.flush();
            queue.resetReady();
        }
    });
    for (std::thread& thread : threads) thread.join();
    stop = true;
    pages.join();
    queue.flush();
    const auto sent = byThread(page.sent);
    ASSERT_EQ(sent.size(), static_cast<size_t>(kThreads));
    for (const auto& [thread, numbers] : sent) EXPECT_EQ(numbers, allInOrder()) << "thread " << thread;
    EXPECT_EQ(page.used, 2 * kRequests);
}

TEST(ScriptQueueThreads, AnsweredOnAnotherThreadAsTheyLeave_EveryCallbackIsCalledOnce) {
    Page page;
    ScriptQueue queue([&](const std::string& id, const std::string&) {
        page.sent.push_back(id);
        page.sentCount.store(page.sent.size(), std::memory_order_release);
    });
    page.sent.reserve(size_t{kThreads} * kRequests);  // read below while it is written: it must not move
    std::barrier start(kThreads + 2);
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&, thread] {
            start.arrive_and_wait();
            for (int number = 0; number < kRequests; ++number) {
                queue.evaluate(requestId(thread, number), "script",
                               [&page, thread](const std::string&, const std::string&) { ++page.answered[thread]; });
            }
        });
    }
    threads.emplace_back([&] {
        start.arrive_and_wait();
        for (size_t next = 0; next < page.sent.capacity();) {
            if (next == page.sentCount.load(std::memory_order_acquire)) continue;
            queue.answer(page.sent.data()[next++], "", "");
        }
    });
    start.arrive_and_wait();
    queue.flush();
    for (std::thread& thread : threads) thread.join();
    for (const auto& answered : page.answered) EXPECT_EQ(answered, kRequests);
}

}  // namespace ZEMO::Test
