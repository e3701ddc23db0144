#include "core/detached_thread.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <memory>

namespace ZEMO::Core {
namespace {

/// An event that says when it is not the one it was made as: handle numbers are used again.
class NamedByItself {
public:
    NamedByItself() : event(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}
    ~NamedByItself() { EXPECT_TRUE(CloseHandle(event)) << "somebody else closed it"; }
    NamedByItself(const NamedByItself&) = delete;
    NamedByItself& operator=(const NamedByItself&) = delete;
    void set() const { EXPECT_TRUE(SetEvent(event)); }
    bool wait() const { return WaitForSingleObject(event, 10'000) == WAIT_OBJECT_0; }

private:
    HANDLE event;
};

TEST(DetachedThread, ManyShortOnes_EachRunsAndNoHandleOfTheGameIsTouched) {
    std::atomic<int> ran{0};
    for (int i = 0; i < 2000; ++i) {
        const NamedByItself done;
        runDetached([&] {
            ++ran;
            done.set();
        });
        ASSERT_TRUE(done.wait()) << "after " << i << " threads";
    }
    EXPECT_EQ(ran, 2000);
}

TEST(DetachedThread, WorksOwnData_DestroyedWithTheThread) {
    const auto done = std::make_shared<NamedByItself>();
    auto data = std::shared_ptr<int>(std::make_unique<int>(7).release(), [done](int* value) {
        std::default_delete<int>()(value);
        done->set();
    });
    std::atomic<int> seen{0};
    runDetached([data = std::move(data), &seen] { seen = *data; });
    EXPECT_TRUE(done->wait());
    EXPECT_EQ(seen, 7);
}

}  // namespace
}  // namespace ZEMO::Core
