#pragma once

#include <windows.h>

#include <cstdint>

#include "support/import_replaced.h"

namespace ZEMO::Bench {

/// How often a program has swapped stands in a property of its window, where another process reads it.
inline constexpr wchar_t kSwaps[] = L"ZemoBenchSwaps";

inline BOOL WINAPI countedSwap(HDC device) {
    static uintptr_t swaps = 0;
    SetPropW(WindowFromDC(device), kSwaps, reinterpret_cast<HANDLE>(++swaps));
    return Test::systemFunction<BOOL WINAPI(HDC)>(L"gdi32.dll", "SwapBuffers")(device);
}

inline double swapsOf(HWND window) {
    return static_cast<double>(reinterpret_cast<uintptr_t>(GetPropW(window, kSwaps)));
}

}  // namespace ZEMO::Bench
