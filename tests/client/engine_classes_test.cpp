#include <gtest/gtest.h>

#include "engine/game_host.h"
#include "include/cef_process_message.h"

// What the engine's classes do by themselves, with either binding.
namespace ZEMO::Test {

TEST(EngineClasses, MessageWithoutAName_IsNotMade) {
    const GameHost game;
    EXPECT_EQ(CefProcessMessage::Create(""), nullptr);
    EXPECT_NE(CefProcessMessage::Create("name"), nullptr);
}

}  // namespace ZEMO::Test
