#include <gtest/gtest.h>
#include <windows.h>

#include <any>
#include <memory>
#include <string>
#include <typeinfo>
#include <utility>

#include "zemo/json_containers.h"

// Linked with the real library, as a game is: the containers' operations run in the library's code, the values are made
// and read by this program's. Each side has its own runtime and its own instance of every std::any manager.
namespace ZEMO::Core {
namespace {

using namespace std::string_literals;

// A type that only this program knows.
struct GameValue {
    static inline int alive = 0;
    std::string text;
    explicit GameValue(std::string t) : text(std::move(t)) { ++alive; }
    GameValue(const GameValue& other) : text(other.text) { ++alive; }
    ~GameValue() { --alive; }
};

JsonContainer nested() {
    JsonContainer inner;
    inner.values["deep"] = std::string(200, 'd');
    JsonArrayContainer array;
    array.values.emplace_back(inner);
    array.values.emplace_back(std::string(100, 'a'));
    array.values.emplace_back(7);
    JsonContainer object;
    object.values["array"] = array;
    object.values["own"] = GameValue("game");
    return object;
}

void expectNested(const JsonContainer& object) {
    ASSERT_EQ(object.values.size(), 2u);
    const auto* const array = std::any_cast<JsonArrayContainer>(&object.values.at("array"));
    ASSERT_NE(array, nullptr);
    ASSERT_EQ(array->values.size(), 3u);
    const auto* const inner = std::any_cast<JsonContainer>(&array->values[0]);
    ASSERT_NE(inner, nullptr);
    EXPECT_EQ(std::any_cast<std::string>(inner->values.at("deep")), std::string(200, 'd'));
    EXPECT_EQ(std::any_cast<std::string>(array->values[1]), std::string(100, 'a'));
    EXPECT_EQ(std::any_cast<int>(array->values[2]), 7);
    const auto* const own = std::any_cast<GameValue>(&object.values.at("own"));
    ASSERT_NE(own, nullptr);
    EXPECT_EQ(own->text, "game");
    EXPECT_EQ(std::any_cast<int>(&object.values.at("own")), nullptr);
}

}  // namespace

#if defined(__GNUC__)
TEST(JsonAcrossBoundary, Operations_RunInTheLibrary) {
    const HMODULE library = GetModuleHandleW(L"ZEMOUIFramework.dll");
    ASSERT_NE(library, nullptr);
    EXPECT_NE(library, GetModuleHandleW(nullptr));
    // The exported copy constructor of each class, by the name that the compiler gives it.
    EXPECT_NE(GetProcAddress(library, "_ZN4ZEMO4Core13JsonContainerC1ERKS1_"), nullptr);
    EXPECT_NE(GetProcAddress(library, "_ZN4ZEMO4Core18JsonArrayContainerC1EOS1_"), nullptr);
}
#endif

TEST(JsonAcrossBoundary, CopiesMadeInTheLibrary_ReadInTheProgram) {
    {
        auto source = std::make_unique<JsonContainer>(nested());
        JsonContainer copy(*source);
        JsonContainer assigned;
        assigned.values["old"] = GameValue("old");
        assigned = *source;
        source.reset();
        expectNested(copy);
        expectNested(assigned);
    }
    EXPECT_EQ(GameValue::alive, 0);
}

TEST(JsonAcrossBoundary, CopiesMadeInTheProgram_ReadAndCopiedByTheLibrary) {
    {
        const JsonContainer fromLibrary(nested());
        JsonContainer own;
        own.values = fromLibrary.values;   // the map's own copy: all in the program
        expectNested(JsonContainer(own));  // and back through the library
    }
    EXPECT_EQ(GameValue::alive, 0);
}

TEST(JsonAcrossBoundary, ArraysMovedAndAssigned_NothingLostNothingLeft) {
    {
        JsonArrayContainer array;
        for (int i = 0; i < 100; ++i) array.values.emplace_back(GameValue(std::to_string(i)));
        JsonArrayContainer moved(std::move(array));
        EXPECT_TRUE(array.values.empty());
        array = moved;
        EXPECT_EQ(GameValue::alive, 200);
        moved = std::move(array);
        EXPECT_EQ(GameValue::alive, 100);
        ASSERT_EQ(moved.values.size(), 100u);
        for (int i = 0; i < 100; ++i)
            EXPECT_EQ(std::any_cast<const GameValue&>(moved.values[static_cast<size_t>(i)]).text, std::to_string(i));
        moved.values.emplace_back("grown in the program"s);
        JsonArrayContainer copy(moved);
        EXPECT_EQ(std::any_cast<std::string>(copy.values.back()), "grown in the program");
    }
    EXPECT_EQ(GameValue::alive, 0);
}

TEST(JsonAcrossBoundary, ExceptionOfAValuesCopy_PassesThroughTheLibrary) {
    struct Throws {
        Throws() = default;
        Throws(const Throws& other) : copies(other.copies + 1) {
            if (copies > 1) throw std::string("copied too often");
        }
        int copies = 0;
    };
    JsonArrayContainer array;
    array.values.emplace_back(Throws());
    EXPECT_THROW(JsonArrayContainer copy(array), std::string);
}

}  // namespace ZEMO::Core
