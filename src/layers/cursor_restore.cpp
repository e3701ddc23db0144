#include "layers/cursor_restore.h"

#include <memory>
#include <mutex>

namespace ZEMO::UI {

namespace {

struct CursorRestoreState {
    int useCount = 0;
    HWND window = nullptr;
    ULONG_PTR savedClassCursor = 0;
};

/// An own window's layer may end on that window's thread while another one starts: what is saved must never be a page's
/// cursor that is just being taken back. No call under it waits for another thread.
std::mutex stateAccess;
std::unique_ptr<CursorRestoreState> cursorRestoreState;

void restore(const CursorRestoreState& state) {
    if (!state.window) return;
    if (state.savedClassCursor) {
        SetClassLongPtrW(state.window, GCLP_HCURSOR, static_cast<LONG_PTR>(state.savedClassCursor));
        SetCursor(reinterpret_cast<HCURSOR>(state.savedClassCursor));
    }
    POINT cursor;
    if (GetCursorPos(&cursor)) SetCursorPos(cursor.x, cursor.y);
    if (IsWindow(state.window))
        PostMessageW(state.window, WM_SETCURSOR, reinterpret_cast<WPARAM>(state.window),
                     MAKELPARAM(HTCLIENT, WM_MOUSEMOVE));
}

}  // namespace

void CursorRestore::addUser(HWND parentWindow) {
    const std::lock_guard lock(stateAccess);
    if (!cursorRestoreState) {
        cursorRestoreState = std::make_unique<CursorRestoreState>();
        cursorRestoreState->window = parentWindow;
        if (parentWindow) cursorRestoreState->savedClassCursor = GetClassLongPtrW(parentWindow, GCLP_HCURSOR);
    }
    ++cursorRestoreState->useCount;
}

void CursorRestore::removeUser() {
    const std::lock_guard lock(stateAccess);
    if (!cursorRestoreState || --cursorRestoreState->useCount > 0) return;
    restore(*cursorRestoreState);
    cursorRestoreState.reset();
}

int CursorRestore::useCount() {
    const std::lock_guard lock(stateAccess);
    return cursorRestoreState ? cursorRestoreState->useCount : 0;
}

}  // namespace ZEMO::UI
