#include "zemo/json_containers.h"

#include <gmock/gmock.h>

#include <memory>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>

namespace ZEMO::Core {
namespace {

using testing::ElementsAre;
using namespace std::string_literals;

// Counts its living copies, so that a container that forgets or doubles one is seen.
struct Counted {
    static inline int alive = 0;
    int value = 0;
    explicit Counted(int v) : value(v) { ++alive; }
    Counted(const Counted& other) : value(other.value) { ++alive; }
    ~Counted() { --alive; }
};

struct ThrowsOnCopy {
    ThrowsOnCopy() = default;
    ThrowsOnCopy(const ThrowsOnCopy& other) : armed(other.armed) {
        if (armed) throw std::runtime_error("no copy");
    }
    bool armed = false;
};

template <class T>
const T& get(const std::any& value) {
    return std::any_cast<const T&>(value);
}

JsonArrayContainer arrayOfThree() {
    JsonArrayContainer array;
    array.values = {1, "two"s, 3.5};
    return array;
}

void expectThree(const JsonArrayContainer& array) {
    ASSERT_EQ(array.values.size(), 3u);
    EXPECT_EQ(get<int>(array.values[0]), 1);
    EXPECT_EQ(get<std::string>(array.values[1]), "two");
    EXPECT_EQ(get<double>(array.values[2]), 3.5);
}

static_assert(sizeof(JsonContainer) == sizeof(std::map<std::string, std::any>));
static_assert(sizeof(JsonArrayContainer) == sizeof(std::vector<std::any>));
static_assert(!std::is_polymorphic_v<JsonContainer> && !std::is_polymorphic_v<JsonArrayContainer>);
static_assert(std::is_void_v<decltype(std::declval<JsonContainer&>() = std::declval<const JsonContainer&>())>);
static_assert(std::is_same_v<decltype(std::declval<JsonArrayContainer&>() = std::declval<const JsonArrayContainer&>()),
                             JsonArrayContainer&>);
static_assert(std::is_same_v<decltype(std::declval<JsonArrayContainer&>() = std::declval<JsonArrayContainer&&>()),
                             JsonArrayContainer&>);

}  // namespace

TEST(JsonContainer, MadeNew_Empty) {
    EXPECT_TRUE(JsonContainer().values.empty());
    EXPECT_TRUE(JsonArrayContainer().values.empty());
}

TEST(JsonContainer, Keys_OrderedByBytes) {
    JsonContainer object;
    for (const char* key : {"b", "a", "B", "\xED\x95\x9C", "ab", ""}) object.values[key] = 0;
    std::vector<std::string> keys;
    for (const auto& [key, value] : object.values) keys.push_back(key);
    EXPECT_THAT(keys, ElementsAre("", "B", "a", "ab", "b", "\xED\x95\x9C"));
}

TEST(JsonContainer, CopyOfNestedValues_IndependentOfItsSource) {
    JsonContainer inner;
    inner.values["n"] = 1;
    JsonArrayContainer array;
    array.values.emplace_back(inner);
    array.values.emplace_back("text"s);
    JsonContainer source;
    source.values["array"] = array;
    source.values["null"] = std::any();
    source.values["yes"] = true;

    JsonContainer copy(source);
    std::any_cast<JsonContainer&>(std::any_cast<JsonArrayContainer&>(source.values["array"]).values[0]).values["n"] = 2;
    source.values.erase("yes");

    ASSERT_EQ(copy.values.size(), 3u);
    EXPECT_FALSE(copy.values["null"].has_value());
    EXPECT_TRUE(get<bool>(copy.values["yes"]));
    const auto& copiedArray = get<JsonArrayContainer>(copy.values["array"]);
    EXPECT_EQ(get<int>(get<JsonContainer>(copiedArray.values[0]).values.at("n")), 1);
    EXPECT_EQ(get<std::string>(copiedArray.values[1]), "text");
}

TEST(JsonContainer, AssignedToItself_KeepsItsElements) {
    JsonContainer object;
    object.values["a"] = 1;
    object.values["b"] = "two"s;
    const std::any* const first = &object.values["a"];
    const JsonContainer& same = object;
    object = same;
    ASSERT_EQ(object.values.size(), 2u);
    EXPECT_EQ(&object.values["a"], first);
    EXPECT_EQ(get<int>(object.values["a"]), 1);
    EXPECT_EQ(get<std::string>(object.values["b"]), "two");
}

TEST(JsonContainer, CopyAssigned_OldElementsGoAndNewOnesAreCopies) {
    JsonContainer target, source;
    target.values["old"] = Counted(1);
    target.values["both"] = Counted(2);
    source.values["both"] = Counted(3);
    source.values["new"] = Counted(4);
    EXPECT_EQ(Counted::alive, 4);
    target = source;
    EXPECT_EQ(Counted::alive, 4);
    ASSERT_EQ(target.values.size(), 2u);
    EXPECT_EQ(get<Counted>(target.values["both"]).value, 3);
    EXPECT_EQ(get<Counted>(target.values["new"]).value, 4);
    EXPECT_EQ(get<Counted>(source.values["new"]).value, 4);
}

TEST(JsonContainer, AssignedFromAValueOfItsOwn_HoldsWhatThatHeld) {
    JsonContainer inner, object;
    inner.values["deep"] = std::string(100, 'x');
    object.values["child"] = inner;
    object = std::any_cast<JsonContainer&>(object.values["child"]);
    ASSERT_EQ(object.values.size(), 1u);
    EXPECT_EQ(get<std::string>(object.values["deep"]), std::string(100, 'x'));
}

TEST(JsonContainer, ValueThatThrowsOnCopy_ExceptionPassesAndTargetKeepsItsOwn) {
    JsonContainer target, source;
    target.values["a"] = 1;
    source.values["bad"] = ThrowsOnCopy();
    std::any_cast<ThrowsOnCopy&>(source.values["bad"]).armed = true;
    EXPECT_THROW(target = source, std::runtime_error);
    EXPECT_EQ(get<int>(target.values["a"]), 1);
    EXPECT_THROW(JsonContainer{source}, std::runtime_error);
}

TEST(JsonArrayContainer, SourceDestroyed_CopyOfThreeIntact) {
    auto source = std::make_unique<JsonArrayContainer>(arrayOfThree());
    const JsonArrayContainer copy(*source);
    JsonArrayContainer assigned;
    assigned = *source;
    source.reset();
    expectThree(copy);
    expectThree(assigned);
}

TEST(JsonArrayContainer, MovedFrom_EmptyAndMayBeAssignedAgain) {
    JsonArrayContainer source = arrayOfThree();
    const std::any* const storage = source.values.data();
    JsonArrayContainer target(std::move(source));
    EXPECT_EQ(target.values.data(), storage);
    expectThree(target);
    EXPECT_TRUE(source.values.empty());
    EXPECT_EQ(source.values.capacity(), 0u);
    source = target;
    expectThree(source);
    expectThree(target);
}

TEST(JsonArrayContainer, MoveAssigned_OwnElementsGoAndStorageIsTakenOver) {
    {
        JsonArrayContainer target, source;
        target.values.emplace_back(Counted(1));
        source.values.emplace_back(Counted(2));
        source.values.emplace_back(Counted(3));
        const std::any* const storage = source.values.data();
        EXPECT_EQ(&(target = std::move(source)), &target);
        EXPECT_EQ(Counted::alive, 2);
        EXPECT_EQ(target.values.data(), storage);
        EXPECT_EQ(get<Counted>(target.values[1]).value, 3);
        EXPECT_TRUE(source.values.empty());
        source = arrayOfThree();
        expectThree(source);
    }
    EXPECT_EQ(Counted::alive, 0);
}

TEST(JsonArrayContainer, AssignedToItself_KeepsItsElements) {
    JsonArrayContainer array = arrayOfThree();
    const std::any* const storage = array.values.data();
    JsonArrayContainer& same = array;
    EXPECT_EQ(&(array = same), &array);
    expectThree(array);
    EXPECT_EQ(&(array = std::move(same)), &array);
    expectThree(array);
    EXPECT_EQ(array.values.data(), storage);
}

TEST(JsonArrayContainer, CopyAssignedIntoEnoughRoom_StorageReused) {
    JsonArrayContainer target;
    target.values.resize(10);
    const std::any* const storage = target.values.data();
    const JsonArrayContainer source = arrayOfThree();
    target = source;
    EXPECT_EQ(target.values.data(), storage);
    EXPECT_EQ(target.values.capacity(), 10u);
    expectThree(target);
    expectThree(source);
}

TEST(JsonArrayContainer, AssignedFromAValueOfItsOwn_HoldsWhatThatHeld) {
    for (const bool move : {false, true}) {
        JsonArrayContainer inner, outer;
        inner.values = {std::string(100, 'x'), Counted(7)};
        outer.values = {inner, 1, 2};
        auto& nested = std::any_cast<JsonArrayContainer&>(outer.values[0]);
        if (move) {
            outer = std::move(nested);
        } else {
            outer = nested;
        }
        ASSERT_EQ(outer.values.size(), 2u);
        EXPECT_EQ(get<std::string>(outer.values[0]), std::string(100, 'x'));
        EXPECT_EQ(get<Counted>(outer.values[1]).value, 7);
    }
    EXPECT_EQ(Counted::alive, 0);
}

TEST(JsonArrayContainer, WrongTypeAsked_BadAnyCast) {
    const JsonArrayContainer array = arrayOfThree();
    EXPECT_THROW(std::any_cast<long>(array.values[0]), std::bad_any_cast);
    EXPECT_EQ(std::any_cast<int>(&array.values[1]), nullptr);
}

}  // namespace ZEMO::Core
