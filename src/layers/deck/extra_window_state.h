#pragma once

#include <windows.h>

#include <atomic>

namespace ZEMO::UI {

/// What the procedures of the Steam Deck variant's windows share, since they have no instance to reach: one set for the
/// process, overwritten by each further window. Written and read on the threads of such windows.
struct ExtraWindowState {
    std::atomic<HWND> extraWindowParent = nullptr;
    std::atomic<WNDPROC> extraButtonPreviousProc = nullptr;
};

inline ExtraWindowState& extraWindowState() {
    static constinit ExtraWindowState state;
    return state;
}

}  // namespace ZEMO::UI
