#pragma once

#include <windows.h>

#include <d3d12.h>

#include "com.h"

// The queue that a Direct3D 12 game fills its back buffers with. No swap chain tells it, so it is caught as it
// executes: while it is searched for, and only then, the direct queue that executed last is kept.
namespace ZEMO::GraphicsHook {

/// Leads the calls of all queues here, by the table that they share with `any`.
void watchQueues(ID3D12CommandQueue* any);

/// The direct queue of `device` that executed last since the search began, which ends with it. Null: the search begins
/// or goes on, so ask with the next frame.
Com<ID3D12CommandQueue> takeQueueOf(ID3D12Device* device);

/// Ends a search without a result: nothing of the game is kept.
void endQueueSearch();

}  // namespace ZEMO::GraphicsHook
