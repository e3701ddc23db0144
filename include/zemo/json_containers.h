#pragma once

#include <any>
#include <map>
#include <string>
#include <vector>

#include "zemo/export.h"

#ifdef _MSC_VER
#pragma warning(push)
#pragma warning(disable : 4251)  // standard members of exported classes: one compiler and run time for both sides
#endif

namespace ZEMO::Core {

/// A JSON object: values of any type by key, ordered by the bytes of the keys.
///
/// The library neither reads nor writes JSON text: modules of a game hand such values to each other. A container owns
/// copies of its values; copying it copies every value. A nested object or array is a value that holds a JsonContainer
/// or a JsonArrayContainer. Read a value with std::any_cast and the very type that was put in.
///
///     ZEMO::Core::JsonContainer player;
///     player.values["name"] = std::string("Mina");
///
/// Thread: one at a time for each container. Failure: only the standard library's exceptions and those of the values.
class ZEMO_API JsonContainer {
public:
    JsonContainer();
    /// Copies every value.
    JsonContainer(const JsonContainer& other);
    ~JsonContainer();
    /// Replaces all values by copies of `other`'s. `other` may be a value of this container; itself changes nothing.
    /// Where copying a value throws, this container keeps what it had.
    void operator=(const JsonContainer& other);

    std::map<std::string, std::any> values;  ///< by key (UTF-8); free to be changed
};

/// A JSON array: values of any type in order. As for JsonContainer, it owns copies of its values.
class ZEMO_API JsonArrayContainer {
public:
    JsonArrayContainer();
    /// Copies every value.
    JsonArrayContainer(const JsonArrayContainer& other);
    /// Takes over `other`'s storage and leaves it empty.
    JsonArrayContainer(JsonArrayContainer&& other) noexcept;
    ~JsonArrayContainer();
    /// Replaces all values by copies of `other`'s, in the storage that is there if it has room. `other` may be a value
    /// of this array; itself changes nothing.
    JsonArrayContainer& operator=(const JsonArrayContainer& other);
    /// Frees its own values and storage, takes over `other`'s and leaves it empty. Itself changes nothing.
    JsonArrayContainer& operator=(JsonArrayContainer&& other) noexcept;

    std::vector<std::any> values;  ///< in order; free to be changed
};

}  // namespace ZEMO::Core

#ifdef _MSC_VER
#pragma warning(pop)
#endif
