#pragma once

#include <windows.h>

namespace ZEMO::UI {

/// The game's own class cursor, kept while there are layers: a page's cursor is set on the window's class, and the last
/// layer gives the class back what it had. Process-wide.
class CursorRestore {
public:
    /// The first user's parent window (null for none) is the one that is given back.
    static void addUser(HWND parentWindow);
    /// With the last user: class cursor and cursor as before, then a nudge to the system and the game to look again.
    static void removeUser();
    static int useCount();
};

}  // namespace ZEMO::UI
