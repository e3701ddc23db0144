#include "d3d12_queue.h"

#include <atomic>
#include <mutex>
#include <utility>

#include "log.h"
#include "patch.h"

namespace ZEMO::GraphicsHook {
namespace {

constexpr size_t kExecuteCommandLists = 10;  // in the table of ID3D12CommandQueue
using ExecuteFunction = void STDMETHODCALLTYPE(ID3D12CommandQueue*, UINT, ID3D12CommandList* const*);

ExecuteFunction* systemExecute = nullptr;
std::atomic<bool> isSearching{false};
std::mutex mutex;                                                   // guards what follows
Com<ID3D12CommandQueue>& lastQueue = *new Com<ID3D12CommandQueue>;  // never destroyed: the game's threads outlive it

// A queue that falls out goes outside the lock: it may be the last to hold it.
Com<ID3D12CommandQueue> exchangeLast(Com<ID3D12CommandQueue> queue, bool goOn) {
    const std::lock_guard lock(mutex);
    isSearching = goOn;
    std::swap(lastQueue, queue);
    return queue;
}

void keep(ID3D12CommandQueue* queue) {
    if (queue->GetDesc().Type != D3D12_COMMAND_LIST_TYPE_DIRECT) return;
    Com<ID3D12CommandQueue> held;
    queue->QueryInterface(__uuidof(ID3D12CommandQueue), held.putVoid());
    const std::lock_guard lock(mutex);
    if (isSearching) std::swap(lastQueue, held);
}

// Once the queue is known this costs a load.
void STDMETHODCALLTYPE execute(ID3D12CommandQueue* queue, UINT count, ID3D12CommandList* const* lists) {
    if (isSearching.load(std::memory_order_relaxed)) keep(queue);
    systemExecute(queue, count, lists);
}

bool isOf(ID3D12Device* device, ID3D12CommandQueue* queue) {
    Com<ID3D12Device> own;
    return SUCCEEDED(queue->GetDevice(__uuidof(ID3D12Device), own.putVoid())) && own.get() == device;
}

}  // namespace

void watchQueues(ID3D12CommandQueue* any) {
    systemExecute = reinterpret_cast<ExecuteFunction*>((*reinterpret_cast<void***>(any))[kExecuteCommandLists]);
    if (!patchTable(any, kExecuteCommandLists, reinterpret_cast<void*>(&execute)))
        logLine("the command queue's table is not ours");
}

Com<ID3D12CommandQueue> takeQueueOf(ID3D12Device* device) {
    Com<ID3D12CommandQueue> found = exchangeLast({}, false);
    if (found && isOf(device, found.get())) return found;
    exchangeLast({}, true);
    return {};
}

void endQueueSearch() { exchangeLast({}, false); }

}  // namespace ZEMO::GraphicsHook
