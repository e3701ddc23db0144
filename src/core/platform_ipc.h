#pragma once

#include <windows.h>

#include <functional>
#include <string>

namespace ZEMO::Core {

/// The thread's hook, null until ipcOpen() succeeds. Never removed.
extern HHOOK g_ZEMOWndHook;

/// The text in a received block. `copiedBySystem` says that the block came from another thread or process: then it is
/// exactly cbData bytes long, and a text that fills it has no NUL in it. A block of this thread is the sender's own
/// NUL-terminated text, whatever cbData says.
std::string textOfBlock(const COPYDATASTRUCT& block, bool copiedBySystem);

}  // namespace ZEMO::Core
