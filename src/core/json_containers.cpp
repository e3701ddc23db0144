#include "zemo/json_containers.h"

#include <iterator>
#include <utility>

namespace ZEMO::Core {

JsonContainer::JsonContainer() = default;
JsonContainer::JsonContainer(const JsonContainer&) = default;
JsonContainer::~JsonContainer() = default;

// Copied before anything goes: the source may be a value inside this container.
void JsonContainer::operator=(const JsonContainer& other) {
    if (this == &other) return;
    auto copies = other.values;
    values.swap(copies);
}

JsonArrayContainer::JsonArrayContainer() = default;
JsonArrayContainer::JsonArrayContainer(const JsonArrayContainer&) = default;
JsonArrayContainer::JsonArrayContainer(JsonArrayContainer&& other) noexcept : values(std::exchange(other.values, {})) {}
JsonArrayContainer::~JsonArrayContainer() = default;

// As above; the copies then move into the storage that is there.
JsonArrayContainer& JsonArrayContainer::operator=(const JsonArrayContainer& other) {
    if (this == &other) return *this;
    auto copies = other.values;
    values.assign(std::make_move_iterator(copies.begin()), std::make_move_iterator(copies.end()));
    return *this;
}

// The source's values are out of reach before this container's own go: it may be one of them, or this very array.
JsonArrayContainer& JsonArrayContainer::operator=(JsonArrayContainer&& other) noexcept {
    auto taken = std::exchange(other.values, {});
    values.swap(taken);
    return *this;
}

}  // namespace ZEMO::Core
