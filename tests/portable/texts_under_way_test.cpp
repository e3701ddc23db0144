#include "core/texts_under_way.h"

#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace ZEMO::Core {
namespace {

bool nobodyIsGone(const void*) { return false; }

// Receivers are known by name only.
const void* receiver(int number) { return reinterpret_cast<const void*>(static_cast<intptr_t>(0x1000 + number)); }

std::set<const void*> goneReceivers;
int questions = 0;
bool isGone(const void* receiver) { return ++questions, goneReceivers.contains(receiver); }

TEST(TextsUnderWay, TextPut_TakenOnceByItsAddress) {
    TextsUnderWay texts(&nobodyIsGone);
    const void* const first = texts.put(receiver(1), "first");
    const void* const second = texts.put(receiver(1), std::string(1000, 's'));
    ASSERT_NE(first, nullptr);
    ASSERT_NE(first, second);
    EXPECT_EQ(texts.take(second), std::string(1000, 's'));
    EXPECT_EQ(texts.take(second), std::nullopt);
    EXPECT_EQ(texts.take(first), "first");
    EXPECT_EQ(texts.take(first), std::nullopt);
    EXPECT_EQ(texts.size(), 0u);
}

TEST(TextsUnderWay, AddressOfSomebodyElse_NothingAndNeitherReadNorFreed) {
    TextsUnderWay texts(&nobodyIsGone);
    texts.put(receiver(1), "ours");
    std::string theirs = "a game's own text";
    int onTheStack = 0;
    for (const void* foreign :
         {static_cast<const void*>(&theirs), static_cast<const void*>(&onTheStack), static_cast<const void*>(nullptr),
          reinterpret_cast<const void*>(intptr_t{1}), reinterpret_cast<const void*>(intptr_t{-1})}) {
        EXPECT_EQ(texts.take(foreign), std::nullopt);
    }
    EXPECT_EQ(theirs, "a game's own text");
    EXPECT_EQ(texts.size(), 1u);
}

TEST(TextsUnderWay, EmptyText_IsAText) {
    TextsUnderWay texts(&nobodyIsGone);
    const void* const address = texts.put(receiver(1), "");
    EXPECT_EQ(texts.take(address), "");
}

// 64 texts of a receiver that goes unseen are the most that are left over; each is asked about once in a doubling.
TEST(TextsUnderWay, ReceiverGone_ItsTextsGoAndThoseOfOthersStay) {
    goneReceivers.clear();
    questions = 0;
    TextsUnderWay texts(&isGone);
    const void* const kept = texts.put(receiver(0), "kept");
    for (int window = 1; window <= 1000; ++window) {
        for (int i = 0; i < 10; ++i) texts.put(receiver(window), "lost");
        goneReceivers.insert(receiver(window));
        ASSERT_LE(texts.size(), TextsUnderWay::kFewTexts + 1) << window;
    }
    EXPECT_EQ(texts.take(kept), "kept");
    EXPECT_LT(questions, 20'000) << "for 10,001 texts";
}

TEST(TextsUnderWay, ManyTrulyUnderWay_NoneIsLostAndQuestionsStayFew) {
    goneReceivers.clear();
    questions = 0;
    TextsUnderWay texts(&isGone);
    std::vector<const void*> addresses;
    for (int i = 0; i < 10'000; ++i) addresses.push_back(texts.put(receiver(i % 3), std::to_string(i)));
    for (int i = 0; i < 10'000; ++i) ASSERT_EQ(texts.take(addresses[i]), std::to_string(i));
    EXPECT_LT(questions, 30'000);
}

TEST(TextsUnderWay, LivingReceiverThrowsAllAway_OlderHalfGoesAtTheBound) {
    constexpr size_t kMost = 10;
    TextsUnderWay texts(&nobodyIsGone, kMost);
    std::vector<const void*> addresses;
    for (int i = 0; i < 1000; ++i) {
        addresses.push_back(texts.put(receiver(1), std::to_string(i)));
        ASSERT_LE(texts.size(), kMost) << i;
    }
    EXPECT_EQ(texts.take(addresses[999]), "999");
    EXPECT_EQ(texts.take(addresses[996]), "996");
    EXPECT_EQ(texts.take(addresses[996]), std::nullopt);
}

TEST(TextsUnderWay, FourThreadsInABurst_EachTextArrivesWholeAndOnce) {
    TextsUnderWay texts(&nobodyIsGone);
    constexpr int kEach = 2500;
    std::barrier allPut(4);
    std::atomic<int> taken{0};
    std::atomic<int> wrong{0};
    const auto takeAll = [&](const std::vector<const void*>& addresses) {
        for (int i = 0; i < kEach; ++i) {
            const auto text = texts.take(addresses[static_cast<size_t>(i)]);
            taken += text.has_value();
            wrong += text && *text != std::to_string(i);
        }
    };
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&, thread] {
            std::vector<const void*> mine;
            for (int i = 0; i < kEach; ++i) mine.push_back(texts.put(receiver(thread), std::to_string(i)));
            allPut.arrive_and_wait();            // from here on no place is used again
            std::thread doubled(takeAll, mine);  // a second message with each address
            takeAll(mine);
            doubled.join();
        });
    }
    for (std::thread& thread : threads) thread.join();
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(taken, 4 * kEach);
    EXPECT_EQ(texts.size(), 0u);
}

}  // namespace
}  // namespace ZEMO::Core
