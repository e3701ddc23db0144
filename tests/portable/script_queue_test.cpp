#include "engine/client/script/script_queue.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

namespace ZEMO::Test {
namespace {

using UI::ScriptQueue;
using Lines = std::vector<std::string>;

class ScriptQueueTest : public testing::Test {
protected:
    void ask(const std::string& id) {
        queue.evaluate(id, "script of " + id, [this, id](const std::string& result, const std::string& error) {
            answers.push_back(id + "=" + result + "/" + error);
        });
    }
    Lines sent;
    Lines answers;
    ScriptQueue queue{[this](const std::string& id, const std::string& script) {
        EXPECT_EQ(script, "script of " + id);
        sent.push_back(id);
    }};
};

}  // namespace

TEST_F(ScriptQueueTest, PageNotReady_NothingIsSentUntilTheFlushThenOldestFirst) {
    for (const char* id : {"c", "a", "b"}) ask(id);
    EXPECT_EQ(sent, Lines{});
    queue.flush();
    EXPECT_EQ(sent, (Lines{"c", "a", "b"}));
}

TEST_F(ScriptQueueTest, PageReady_SentAtOnceBehindWhatWaited) {
    ask("waiting");
    queue.flush();
    ask("later");
    EXPECT_EQ(sent, (Lines{"waiting", "later"}));
    queue.flush();
    EXPECT_EQ(sent.size(), 2u) << "a second completed page sends nothing twice";
}

TEST_F(ScriptQueueTest, NewPageOnItsWay_RequestsWaitForThatPage) {
    queue.flush();
    ask("first page");
    queue.resetReady();
    ask("second page");
    EXPECT_EQ(sent, Lines{"first page"});
    queue.flush();
    EXPECT_EQ(sent, (Lines{"first page", "second page"}));
}

TEST_F(ScriptQueueTest, Answered_BothTextsReachTheCallbackOfThatIdOnly) {
    queue.flush();
    ask("a");
    ask("b");
    queue.answer("b", "42", "");
    queue.answer("a", "", "Uncaught");
    EXPECT_EQ(answers, (Lines{"b=42/", "a=/Uncaught"}));
}

TEST_F(ScriptQueueTest, AnsweredTwice_CalledTwiceSinceTheEntryStays) {
    queue.flush();
    ask("a");
    queue.answer("a", "1", "");
    queue.answer("a", "2", "");
    EXPECT_EQ(answers, (Lines{"a=1/", "a=2/"}));
}

TEST_F(ScriptQueueTest, UnknownId_Ignored) {
    queue.flush();
    ask("a");
    queue.answer("b", "1", "");
    queue.answer("", "1", "");
    EXPECT_EQ(answers, Lines{});
}

TEST_F(ScriptQueueTest, RequestStillWaiting_HasNoAnswerYet) {
    ask("a");
    queue.answer("a", "1", "");
    EXPECT_EQ(answers, Lines{});
}

TEST_F(ScriptQueueTest, SameIdTwice_FirstCallbackStaysAndBothAreSent) {
    queue.flush();
    queue.evaluate("a", "script of a", [this](auto, auto) { answers.emplace_back("first"); });
    queue.evaluate("a", "script of a", [this](auto, auto) { answers.emplace_back("second"); });
    queue.answer("a", "", "");
    EXPECT_EQ(sent, (Lines{"a", "a"}));
    EXPECT_EQ(answers, Lines{"first"});
}

TEST_F(ScriptQueueTest, NoCallback_AnswerIsDropped) {
    queue.flush();
    queue.evaluate("a", "script of a", nullptr);
    EXPECT_NO_THROW(queue.answer("a", "1", ""));
}

TEST_F(ScriptQueueTest, CallbackAsksAgain_NoLockIsHeld) {
    queue.flush();
    queue.evaluate("a", "script of a", [this](auto, auto) { ask("b"); });
    queue.answer("a", "", "");
    EXPECT_EQ(sent, (Lines{"a", "b"}));
}

TEST_F(ScriptQueueTest, Object_FirstRegistrationOfANameStays) {
    Lines used;
    queue.addObjectCallback("o", [&](std::string message) { used.push_back("first " + message); });
    queue.addObjectCallback("o", [&](std::string message) { used.push_back("second " + message); });
    queue.addObjectMessage("o", "one");
    queue.addObjectMessage("o", "two");
    queue.invokeObject("o");
    EXPECT_EQ(used, Lines{"first one"});
}

TEST_F(ScriptQueueTest, Object_NeedsCallbackAndMessage) {
    Lines used;
    queue.addObjectCallback("no message", [&](std::string message) { used.push_back(std::move(message)); });
    queue.addObjectMessage("no callback", "text");
    for (const char* name : {"no message", "no callback", "unknown"}) queue.invokeObject(name);
    EXPECT_EQ(used, Lines{});
    queue.addObjectMessage("no message", "");
    queue.invokeObject("no message");
    EXPECT_EQ(used, Lines{""}) << "an empty message is one";
}

TEST_F(ScriptQueueTest, ObjectCallbackRegistersAnother_NoLockIsHeld) {
    std::optional<std::string> inner;
    queue.addObjectMessage("outer", "");
    queue.addObjectMessage("inner", "text");
    queue.addObjectCallback("outer", [&](auto) {
        queue.addObjectCallback("inner", [&](std::string message) { inner = std::move(message); });
        queue.invokeObject("inner");
    });
    queue.invokeObject("outer");
    EXPECT_EQ(inner, "text");
}

TEST(Fnv1aHash, KnownTexts_KnownNumbers) {
    const UI::Fnv1aHash hash;
    EXPECT_EQ(hash(""), 0xCBF29CE484222325u);
    EXPECT_EQ(hash("a"), 0xAF63DC4C8601EC8Cu);
    EXPECT_EQ(hash("foobar"), 0x85944171F73967E8u);
    EXPECT_NE(hash("\xC3\xA9"), hash("\xC3\xA8")) << "bytes above 127 count as they are";
}

}  // namespace ZEMO::Test
