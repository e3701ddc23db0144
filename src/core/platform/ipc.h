#pragma once

#include <windows.h>

#include <functional>
#include <string>

namespace ZEMO::Core {

/// The thread's hook, null until ipcOpen() succeeds. Never removed.
extern HHOOK g_ZEMOWndHook;

/// The text in a received block: up to its first NUL, and to the block's end where it has none, as a text of the
/// greatest length has. The system copies exactly cbData bytes for a receiver, also for one on the sender's own thread;
/// what lies behind them is not ours to read.
std::string textOfBlock(const COPYDATASTRUCT& block);

}  // namespace ZEMO::Core
