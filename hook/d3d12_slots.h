#pragma once

#include <windows.h>

#include <d3d12.h>

#include <array>
#include <memory>
#include <type_traits>
#include <vector>

#include "com.h"
#include "page_drawing.h"

namespace ZEMO::GraphicsHook {

/// A command list, and what a frame needs until the graphics processor is done with it: its memory for commands and for
/// pixels on their way. Frames take slots in turn; one is free again when the fence has passed its frame.
class D3D12Slots {
public:
    D3D12Slots() = default;
    /// Waits for the last frame.
    ~D3D12Slots();
    D3D12Slots(const D3D12Slots&) = delete;
    D3D12Slots& operator=(const D3D12Slots&) = delete;

    static constexpr size_t kCount = 3;

    struct Upload {
        Com<ID3D12Resource> buffer;
        unsigned char* memory = nullptr;  ///< mapped as long as it lives
        UINT64 bytes = 0;
    };

    bool make(ID3D12Device* device);
    /// Whether the next slot is free; waits for it, a second at most.
    bool waitForNext();
    /// The next slot's frame begins: the list to record it, null when the device is gone.
    ID3D12GraphicsCommandList* begin();
    /// It ends, after all that `queue` executes already. False when nothing of it was executed.
    bool execute(ID3D12CommandQueue* queue);

    /// In this frame, from `begin` to `execute`: its slot, memory for a layer's pixels (null without any), and a place
    /// for what earlier frames may still use.
    size_t index() const { return next; }
    Upload* upload(ID3D12Device* device, Layer layer, UINT64 bytes);
    void keepUntilDone(Com<ID3D12Resource> resource) { slots[next].replaced.push_back(std::move(resource)); }

private:
    struct Slot {
        Com<ID3D12CommandAllocator> allocator;
        std::array<Upload, kLayers> uploads;
        std::vector<Com<ID3D12Resource>> replaced;
        UINT64 doneAt = 0;
    };
    struct CloseHandleOf {
        void operator()(HANDLE handle) const { CloseHandle(handle); }
    };

    bool waitFor(UINT64 value);

    std::array<Slot, kCount> slots;
    size_t next = 0;
    Com<ID3D12GraphicsCommandList> list;
    Com<ID3D12Fence> fence;
    UINT64 signalled = 0;
    std::unique_ptr<std::remove_pointer_t<HANDLE>, CloseHandleOf> passed{CreateEventW(nullptr, FALSE, FALSE, nullptr)};
};

}  // namespace ZEMO::GraphicsHook
