#include "hook/d3d12_game.h"

#include "patch.h"

namespace ZEMO::Test {
namespace {

using GraphicsHook::Com;
using PresentFunction = HRESULT STDMETHODCALLTYPE(IDXGISwapChain*, UINT, UINT);

constexpr size_t kPresent = 8;
PresentFunction* systemPresent = nullptr;
Presented frame;
bool isRead = true;
D3D12Game* game = nullptr;  ///< the one that presents: a chain does not tell its queue

// Not imported: the module tries Direct3D 12 in every game that has loaded it, and this program's others have not.
Com<ID3D12Device> makeDevice() {
    Com<ID3D12Device> device;
    const auto create = reinterpret_cast<PFN_D3D12_CREATE_DEVICE>(
        reinterpret_cast<void*>(GetProcAddress(LoadLibraryW(L"d3d12.dll"), "D3D12CreateDevice")));
    create(nullptr, D3D_FEATURE_LEVEL_11_0, __uuidof(ID3D12Device), device.putVoid());
    return device;
}

Com<ID3D12Resource> readBackBuffer(ID3D12Device* device, UINT64 bytes) {
    Com<ID3D12Resource> buffer;
    const D3D12_HEAP_PROPERTIES heap{D3D12_HEAP_TYPE_READBACK, {}, {}, 0, 0};
    D3D12_RESOURCE_DESC wanted{};
    wanted.Dimension = D3D12_RESOURCE_DIMENSION_BUFFER;
    wanted.Width = bytes;
    wanted.Height = wanted.DepthOrArraySize = wanted.MipLevels = 1;
    wanted.SampleDesc.Count = 1;
    wanted.Layout = D3D12_TEXTURE_LAYOUT_ROW_MAJOR;
    device->CreateCommittedResource(&heap, D3D12_HEAP_FLAG_NONE, &wanted, D3D12_RESOURCE_STATE_COPY_DEST, nullptr,
                                    __uuidof(ID3D12Resource), buffer.putVoid());
    return buffer;
}

// To B, G, R, A.
uint32_t turned(uint32_t pixel, DXGI_FORMAT format) {
    if (format != DXGI_FORMAT_R8G8B8A8_UNORM) return pixel;
    return (pixel & 0xFF00FF00) | (pixel & 0xFF) << 16 | (pixel >> 16 & 0xFF);
}

void change(ID3D12GraphicsCommandList* list, ID3D12Resource* resource, D3D12_RESOURCE_STATES from,
            D3D12_RESOURCE_STATES to) {
    D3D12_RESOURCE_BARRIER barrier{};
    barrier.Transition = {resource, D3D12_RESOURCE_BARRIER_ALL_SUBRESOURCES, from, to};
    list->ResourceBarrier(1, &barrier);
}

}  // namespace

D3D12Game::D3D12Game(HWND gameWindow) : window(gameWindow), device(makeDevice()) {
    game = this;
    if (!device) return;
    const D3D12_COMMAND_QUEUE_DESC direct{};
    device->CreateCommandQueue(&direct, __uuidof(ID3D12CommandQueue), queue.putVoid());
    device->CreateCommandAllocator(D3D12_COMMAND_LIST_TYPE_DIRECT, __uuidof(ID3D12CommandAllocator),
                                   allocator.putVoid());
    device->CreateCommandList(0, D3D12_COMMAND_LIST_TYPE_DIRECT, allocator.get(), nullptr,
                              __uuidof(ID3D12GraphicsCommandList), list.putVoid());
    const D3D12_DESCRIPTOR_HEAP_DESC one{D3D12_DESCRIPTOR_HEAP_TYPE_RTV, 1, D3D12_DESCRIPTOR_HEAP_FLAG_NONE, 0};
    device->CreateDescriptorHeap(&one, __uuidof(ID3D12DescriptorHeap), targets.putVoid());
    device->CreateFence(0, D3D12_FENCE_FLAG_NONE, __uuidof(ID3D12Fence), fence.putVoid());
    remake();
}

void D3D12Game::remake() {
    chain = {};
    Com<IDXGIFactory4> factory;
    CreateDXGIFactory1(__uuidof(IDXGIFactory4), factory.putVoid());
    DXGI_SWAP_CHAIN_DESC1 wanted{};
    wanted.Format = DXGI_FORMAT_B8G8R8A8_UNORM;
    wanted.SampleDesc.Count = 1;
    wanted.BufferUsage = DXGI_USAGE_RENDER_TARGET_OUTPUT;
    wanted.BufferCount = 2;
    wanted.SwapEffect = DXGI_SWAP_EFFECT_FLIP_DISCARD;
    Com<IDXGISwapChain1> made;
    if (SUCCEEDED(factory->CreateSwapChainForHwnd(queue.get(), window, &wanted, nullptr, nullptr, made.put())))
        made->QueryInterface(__uuidof(IDXGISwapChain3), chain.putVoid());
}

Com<ID3D12Resource> D3D12Game::backBuffer() const {
    Com<ID3D12Resource> buffer;
    chain->GetBuffer(chain->GetCurrentBackBufferIndex(), __uuidof(ID3D12Resource), buffer.putVoid());
    return buffer;
}

void D3D12Game::present() {
    draw();
    swap();
}

void D3D12Game::draw() { fill(backBuffer().get()); }

void D3D12Game::fill(ID3D12Resource* buffer) {
    const D3D12_CPU_DESCRIPTOR_HANDLE target = targets->GetCPUDescriptorHandleForHeapStart();
    device->CreateRenderTargetView(buffer, nullptr, target);
    change(list.get(), buffer, D3D12_RESOURCE_STATE_PRESENT, D3D12_RESOURCE_STATE_RENDER_TARGET);
    constexpr float kColour[] = {40 / 255.0f, 80 / 255.0f, 120 / 255.0f, 1};
    list->ClearRenderTargetView(target, kColour, 0, nullptr);
    change(list.get(), buffer, D3D12_RESOURCE_STATE_RENDER_TARGET, D3D12_RESOURCE_STATE_PRESENT);
    execute();
}

// Waits, so that one list and one allocator are enough.
void D3D12Game::execute() {
    list->Close();
    ID3D12CommandList* const lists[] = {list.get()};
    queue->ExecuteCommandLists(1, lists);
    queue->Signal(fence.get(), ++signalled);
    fence->SetEventOnCompletion(signalled, nullptr);
    allocator->Reset();
    list->Reset(allocator.get(), nullptr);
}

void D3D12Game::read(ID3D12Resource* buffer) {
    const D3D12_RESOURCE_DESC description = buffer->GetDesc();
    D3D12_TEXTURE_COPY_LOCATION to{};
    UINT64 bytes = 0;
    device->GetCopyableFootprints(&description, 0, 1, 0, &to.PlacedFootprint, nullptr, nullptr, &bytes);
    const Com<ID3D12Resource> copy = readBackBuffer(device.get(), bytes);
    to.pResource = copy.get();
    to.Type = D3D12_TEXTURE_COPY_TYPE_PLACED_FOOTPRINT;
    D3D12_TEXTURE_COPY_LOCATION from{};
    from.pResource = buffer;
    change(list.get(), buffer, D3D12_RESOURCE_STATE_PRESENT, D3D12_RESOURCE_STATE_COPY_SOURCE);
    list->CopyTextureRegion(&to, 0, 0, 0, &from, nullptr);
    change(list.get(), buffer, D3D12_RESOURCE_STATE_COPY_SOURCE, D3D12_RESOURCE_STATE_PRESENT);
    execute();
    frame.width = static_cast<int>(description.Width);
    frame.height = static_cast<int>(description.Height);
    frame.pixels.clear();
    ++frame.count;
    void* mapped = nullptr;
    if (FAILED(copy->Map(0, nullptr, &mapped))) return;
    for (UINT y = 0; y < description.Height; ++y) {
        const auto* row = reinterpret_cast<const uint32_t*>(static_cast<const char*>(mapped) +
                                                            size_t{y} * to.PlacedFootprint.Footprint.RowPitch);
        for (int x = 0; x < frame.width; ++x) frame.pixels.push_back(turned(row[x], description.Format));
    }
    copy->Unmap(0, nullptr);
}

HRESULT STDMETHODCALLTYPE D3D12Game::readAndPresent(IDXGISwapChain* any, UINT interval, UINT flags) {
    if (isRead && game && any == game->chain.get()) game->read(game->backBuffer().get());
    return systemPresent(any, interval, flags);
}

bool D3D12Game::followWindow() {
    RECT client{};
    GetClientRect(window, &client);
    if (client.right < 1 || client.bottom < 1) return true;  // minimised: nothing to present
    return resize(static_cast<UINT>(client.right), static_cast<UINT>(client.bottom)) == S_OK;
}

size_t D3D12Game::liveObjects() const {
    device->AddRef();
    return device->Release();
}

size_t D3D12Game::end() {
    if (game == this) game = nullptr;
    if (!device) return 0;
    chain = {};
    fence = {};
    targets = {};
    list = {};
    allocator = {};
    queue = {};
    ID3D12Device* const last = device.get();
    last->AddRef();
    device = {};
    return last->Release();
}

void D3D12Game::watchFrames(HMODULE) {
    if (systemPresent) return;
    systemPresent = reinterpret_cast<PresentFunction*>(
        GraphicsHook::patchTable(chain.get(), kPresent, reinterpret_cast<void*>(&D3D12Game::readAndPresent)));
}

void D3D12Game::setReading(bool read) { isRead = read; }
Presented& D3D12Game::presented() { return frame; }

}  // namespace ZEMO::Test
