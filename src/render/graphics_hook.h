#pragma once

#include <windows.h>

namespace ZEMO::UI {

class ZEMOGraphicsHooker {
public:
    /// The game's window is being destroyed: told to the hook module before anyone else sees the message. Without a
    /// hooker there is nobody to tell.
    static void onGameWindowDestroyed(UINT, WPARAM, LPARAM) {}
};

}  // namespace ZEMO::UI
