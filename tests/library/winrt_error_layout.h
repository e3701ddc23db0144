#pragma once

#include <cstddef>
#include <vector>

namespace ZEMO::Test {

/// What a module must agree on with another about a class: here its size and alignment, and where its parts answer
/// from.
template <class Error>
std::vector<size_t> layoutOf() {
    return {sizeof(Error), alignof(Error), sizeof(decltype(Error().code())), sizeof(decltype(Error().message()))};
}

/// As a file sees it that has no projection on its include path.
std::vector<size_t> layoutWithoutProjection();

}  // namespace ZEMO::Test
