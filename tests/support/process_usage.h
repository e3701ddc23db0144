#pragma once

#include <windows.h>

#include <cstddef>

namespace ZEMO::Test {

/// What this process holds, counted one by one: Wine answers 0 to the questions for the counts of handles and of GDI
/// and USER objects, and for private memory.
struct ProcessUsage {
    size_t threads = 0;
    size_t handles = 0;         ///< of every kind but the next two
    size_t keys = 0;            ///< registry keys
    size_t sections = 0;        ///< shared memory
    size_t bytes = 0;           ///< private memory
    size_t gdi = 0;             ///< device contexts, bitmaps and the like
    size_t deviceContexts = 0;  ///< of these
    size_t windows = 0;         ///< top-level ones, and their children
};

ProcessUsage processUsage();

}  // namespace ZEMO::Test
