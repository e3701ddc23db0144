#pragma once

#include <windows.h>

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace ZEMO::UI {

/// One row of a window style's table. The rows stand in the order of their numbers, so that a message is found in a few
/// comparisons.
template <class Handler>
struct MessageRow {
    UINT message;
    Handler handler;
};

template <class Handler, size_t rows>
constexpr bool isInOrder(const MessageRow<Handler> (&table)[rows]) {
    for (size_t i = 1; i < rows; ++i) {
        if (table[i - 1].message >= table[i].message) return false;
    }
    return true;
}

/// Null for a message that has no row.
template <class Handler, size_t rows>
Handler findHandler(const MessageRow<Handler> (&table)[rows], UINT message) {
    const auto* const row =
        std::lower_bound(std::begin(table), std::end(table), message,
                         [](const MessageRow<Handler>& entry, UINT wanted) { return entry.message < wanted; });
    return row != std::end(table) && row->message == message ? row->handler : nullptr;
}

}  // namespace ZEMO::UI
