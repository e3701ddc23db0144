#include "d3d12_slots.h"

namespace ZEMO::GraphicsHook {
namespace {

constexpr DWORD kPatienceMs = 1000;

Com<ID3D12Resource> uploadBuffer(ID3D12Device* device, UINT64 bytes) {
    Com<ID3D12Resource> buffer;
    const D3D12_HEAP_PROPERTIES heap{D3D12_HEAP_TYPE_UPLOAD, {}, {}, 0, 0};
    D3D12_RESOURCE_DESC wanted{};
    wanted.Dimension = D3D12_RESOURCE_DIMENSION_BUFFER;
    wanted.Width = bytes;
    wanted.Height = wanted.DepthOrArraySize = wanted.MipLevels = 1;
    wanted.SampleDesc.Count = 1;
    wanted.Layout = D3D12_TEXTURE_LAYOUT_ROW_MAJOR;
    device->CreateCommittedResource(&heap, D3D12_HEAP_FLAG_NONE, &wanted, D3D12_RESOURCE_STATE_GENERIC_READ, nullptr,
                                    __uuidof(ID3D12Resource), buffer.putVoid());
    return buffer;
}

}  // namespace

D3D12Slots::~D3D12Slots() { waitFor(signalled); }

bool D3D12Slots::make(ID3D12Device* device) {
    for (Slot& slot : slots) {
        if (FAILED(device->CreateCommandAllocator(D3D12_COMMAND_LIST_TYPE_DIRECT, __uuidof(ID3D12CommandAllocator),
                                                  slot.allocator.putVoid())))
            return false;
    }
    return SUCCEEDED(device->CreateFence(0, D3D12_FENCE_FLAG_NONE, __uuidof(ID3D12Fence), fence.putVoid())) &&
           SUCCEEDED(device->CreateCommandList(0, D3D12_COMMAND_LIST_TYPE_DIRECT, slots[0].allocator.get(), nullptr,
                                               __uuidof(ID3D12GraphicsCommandList), list.putVoid())) &&
           SUCCEEDED(list->Close());  // it is made open
}

bool D3D12Slots::waitForNext() { return waitFor(slots[next].doneAt); }

// A device that was removed has passed every value.
bool D3D12Slots::waitFor(UINT64 value) {
    if (!fence || fence->GetCompletedValue() >= value) return true;
    if (FAILED(fence->SetEventOnCompletion(value, passed.get()))) return false;
    WaitForSingleObject(passed.get(), kPatienceMs);
    return fence->GetCompletedValue() >= value;  // the event may be an earlier wait's
}

ID3D12GraphicsCommandList* D3D12Slots::begin() {
    Slot& slot = slots[next];
    slot.replaced.clear();
    if (FAILED(slot.allocator->Reset()) || FAILED(list->Reset(slot.allocator.get(), nullptr))) return nullptr;
    return list.get();
}

bool D3D12Slots::execute(ID3D12CommandQueue* queue) {
    if (FAILED(list->Close())) return false;
    ID3D12CommandList* const lists[] = {list.get()};
    queue->ExecuteCommandLists(1, lists);
    slots[next].doneAt = ++signalled;
    next = (next + 1) % kCount;
    return SUCCEEDED(queue->Signal(fence.get(), signalled));
}

D3D12Slots::Upload* D3D12Slots::upload(ID3D12Device* device, Layer layer, UINT64 bytes) {
    Upload& upload = slots[next].uploads[static_cast<size_t>(layer)];
    if (upload.bytes >= bytes) return &upload;
    upload = {uploadBuffer(device, bytes)};
    constexpr D3D12_RANGE kNothingRead{};
    void* memory = nullptr;
    if (!upload.buffer || FAILED(upload.buffer->Map(0, &kNothingRead, &memory))) return nullptr;
    upload.memory = static_cast<unsigned char*>(memory);
    upload.bytes = bytes;
    return &upload;
}

}  // namespace ZEMO::GraphicsHook
