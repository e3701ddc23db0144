#pragma once

#include <windows.h>

namespace ZEMO::Core {

/// Waits for `event`, `milliseconds` at most (INFINITE for no end). Takes nothing off this thread's queue; messages
/// that other threads send are answered meanwhile, since the thread waited for may be in the middle of one. False when
/// the time is up, or the wait can't be.
bool waitServingSentMessages(HANDLE event, DWORD milliseconds);

}  // namespace ZEMO::Core
