#include "core/never_destroyed.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <thread>

namespace ZEMO::Core {
namespace {

TEST(NeverDestroyed, ScopeEnds_ObjectIsLeftAsItIs) {
    const auto watched = std::make_shared<int>(7);
    {
        NeverDestroyed<std::shared_ptr<int>> kept(watched);
        EXPECT_EQ(**kept, 7);
        EXPECT_EQ(watched.use_count(), 2);
    }
    EXPECT_EQ(watched.use_count(), 2);
}

TEST(NeverDestroyed, WithoutArguments_IsThereAndCanBeAssigned) {
    static NeverDestroyed<std::string> text;
    EXPECT_TRUE(text->empty());
    *text = "a text";
    EXPECT_EQ(*text, "a text");
}

TEST(NeverDestroyed, ValueLeft_WhatItOwnsStays) {
    auto owned = std::make_shared<int>(7);
    const std::weak_ptr<int> watched = owned;
    leaveUndestroyed(std::move(owned));
    EXPECT_FALSE(watched.expired());
    // The destructor of a thread that was not joined would end the process.
    leaveUndestroyed(std::thread([] {}));
}

}  // namespace
}  // namespace ZEMO::Core
