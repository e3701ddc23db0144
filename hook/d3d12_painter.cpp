#include "d3d12_painter.h"

#include <cstring>
#include <utility>

#include "d3d12_queue.h"
#include "log.h"

namespace ZEMO::GraphicsHook {
namespace {

using Parameter = D3D12Pipelines::Parameter;

constexpr UINT kNearest = 0;
constexpr UINT kLinear = 1;
constexpr UINT kBytesPerPixel = 4;

constexpr UINT inRows(int pixels) {
    constexpr UINT kUnit = D3D12_TEXTURE_DATA_PITCH_ALIGNMENT;
    return (static_cast<UINT>(pixels) * kBytesPerPixel + kUnit - 1) / kUnit * kUnit;
}

D3D12_RESOURCE_DESC textureOf(const Plane& plane) {
    D3D12_RESOURCE_DESC wanted{};
    wanted.Dimension = D3D12_RESOURCE_DIMENSION_TEXTURE2D;
    wanted.Width = static_cast<UINT64>(plane.getWidth());
    wanted.Height = static_cast<UINT>(plane.getHeight());
    wanted.DepthOrArraySize = wanted.MipLevels = 1;
    wanted.SampleDesc.Count = 1;
    wanted.Format = DXGI_FORMAT_B8G8R8A8_UNORM;
    return wanted;
}

void copyRows(const Plane& plane, const Box& box, unsigned char* to, UINT rowBytes) {
    for (int y = box.top; y < box.bottom; ++y, to += rowBytes) {
        std::memcpy(to, plane.row(y) + box.left, static_cast<size_t>(box.right - box.left) * kBytesPerPixel);
    }
}

Com<ID3D12Resource> backBufferOf(IDXGISwapChain* chain) {
    Com<ID3D12Resource> buffer;
    Com<IDXGISwapChain3> newer;
    if (SUCCEEDED(chain->QueryInterface(__uuidof(IDXGISwapChain3), newer.putVoid())))
        chain->GetBuffer(newer->GetCurrentBackBufferIndex(), __uuidof(ID3D12Resource), buffer.putVoid());
    return buffer;
}

D3D12_CPU_DESCRIPTOR_HANDLE writePlace(ID3D12Device* device, ID3D12DescriptorHeap* heap, UINT index) {
    const UINT step = device->GetDescriptorHandleIncrementSize(heap->GetDesc().Type);
    return {heap->GetCPUDescriptorHandleForHeapStart().ptr + static_cast<SIZE_T>(index) * step};
}

D3D12_GPU_DESCRIPTOR_HANDLE readPlace(ID3D12Device* device, ID3D12DescriptorHeap* heap, UINT index) {
    const UINT step = device->GetDescriptorHandleIncrementSize(heap->GetDesc().Type);
    return {heap->GetGPUDescriptorHandleForHeapStart().ptr + static_cast<UINT64>(index) * step};
}

}  // namespace

Com<ChainPainter> D3D12Painter::make(IDXGISwapChain* chain) {
    Com<ChainPainter> painter;
    if (auto device = deviceOf<ID3D12Device>(chain)) *painter.put() = new D3D12Painter(std::move(device));
    return painter;
}

D3D12Painter::D3D12Painter(Com<ID3D12Device> chainDevice) : device(std::move(chainDevice)) {
    isUsable = prepare();
    if (!isUsable) logLine("this Direct3D 12 device can't draw a page");
}

bool D3D12Painter::prepare() {
    if (!pipelines.make(device.get()) || !slots.make(device.get()) ||
        !makeHeap(D3D12_DESCRIPTOR_HEAP_TYPE_RTV, 1, targets) ||
        !makeHeap(D3D12_DESCRIPTOR_HEAP_TYPE_CBV_SRV_UAV, D3D12Slots::kCount * kLayers, views) ||
        !makeHeap(D3D12_DESCRIPTOR_HEAP_TYPE_SAMPLER, 2, samplers))
        return false;
    makeSampler(D3D12_FILTER_MIN_MAG_MIP_POINT, kNearest);
    makeSampler(D3D12_FILTER_MIN_MAG_MIP_LINEAR, kLinear);
    return true;
}

bool D3D12Painter::makeHeap(D3D12_DESCRIPTOR_HEAP_TYPE type, UINT count, Com<ID3D12DescriptorHeap>& heap) {
    const bool isForShaders = type != D3D12_DESCRIPTOR_HEAP_TYPE_RTV;
    const D3D12_DESCRIPTOR_HEAP_DESC wanted{
        type, count, isForShaders ? D3D12_DESCRIPTOR_HEAP_FLAG_SHADER_VISIBLE : D3D12_DESCRIPTOR_HEAP_FLAG_NONE, 0};
    return SUCCEEDED(device->CreateDescriptorHeap(&wanted, __uuidof(ID3D12DescriptorHeap), heap.putVoid()));
}

void D3D12Painter::makeSampler(D3D12_FILTER filter, UINT place) {
    D3D12_SAMPLER_DESC wanted{};
    wanted.Filter = filter;
    wanted.AddressU = wanted.AddressV = wanted.AddressW = D3D12_TEXTURE_ADDRESS_MODE_CLAMP;
    wanted.ComparisonFunc = D3D12_COMPARISON_FUNC_NEVER;
    wanted.MaxLOD = D3D12_FLOAT32_MAX;
    device->CreateSampler(&wanted, writePlace(device.get(), samplers.get(), place));
}

bool D3D12Painter::isReady() {
    if (!isUsable) return false;
    if (!queue) queue = takeQueueOf(device.get());
    return queue && slots.waitForNext();
}

void D3D12Painter::paint(IDXGISwapChain* chain, HWND window, PagePicture::Content& content) {
    const Com<ID3D12Resource> buffer = backBufferOf(chain);
    if (!buffer) return;
    isUsable = record(buffer.get(), window, content) && slots.execute(queue.get());
    list = nullptr;
    if (!isUsable) logLine("a frame can't be drawn into with Direct3D 12");
}

// A game presents its buffers in the state for that, and this is how they are left.
bool D3D12Painter::record(ID3D12Resource* buffer, HWND window, PagePicture::Content& content) {
    const D3D12_RESOURCE_DESC description = buffer->GetDesc();
    const DXGI_FORMAT format = withoutConversion(description.Format);
    list = pipelines.useFormat(device.get(), format) ? slots.begin() : nullptr;
    if (!list) return false;
    frame = {static_cast<int>(description.Width), static_cast<int>(description.Height)};
    change(buffer, D3D12_RESOURCE_STATE_PRESENT, D3D12_RESOURCE_STATE_RENDER_TARGET);
    bindFixedParts();
    bindTarget(buffer, format);
    drawing.draw(*this, content, window, frame);
    change(buffer, D3D12_RESOURCE_STATE_RENDER_TARGET, D3D12_RESOURCE_STATE_PRESENT);
    return true;
}

void D3D12Painter::bindFixedParts() {
    ID3D12DescriptorHeap* const heaps[] = {views.get(), samplers.get()};
    list->SetDescriptorHeaps(2, heaps);
    list->SetGraphicsRootSignature(pipelines.signature());
    list->IASetPrimitiveTopology(D3D_PRIMITIVE_TOPOLOGY_TRIANGLESTRIP);
}

void D3D12Painter::bindTarget(ID3D12Resource* buffer, DXGI_FORMAT format) {
    D3D12_RENDER_TARGET_VIEW_DESC view{};
    view.Format = format;
    view.ViewDimension = D3D12_RTV_DIMENSION_TEXTURE2D;
    const D3D12_CPU_DESCRIPTOR_HANDLE target = writePlace(device.get(), targets.get(), 0);
    device->CreateRenderTargetView(buffer, &view, target);
    list->OMSetRenderTargets(1, &target, FALSE, nullptr);
    const D3D12_VIEWPORT viewport{0, 0, static_cast<float>(frame.width), static_cast<float>(frame.height), 0, 1};
    list->RSSetViewports(1, &viewport);
    const D3D12_RECT all{0, 0, frame.width, frame.height};
    list->RSSetScissorRects(1, &all);
}

void D3D12Painter::upload(Layer layer, const Plane& plane, const Box& changed) {
    Texture& texture = textures[static_cast<size_t>(layer)];
    if (texture.width != plane.getWidth() || texture.height != plane.getHeight()) remake(texture, plane);
    if (!texture.resource) return;
    const UINT rowBytes = inRows(changed.right - changed.left);
    const UINT64 bytes = static_cast<UINT64>(rowBytes) * static_cast<UINT>(changed.bottom - changed.top);
    const D3D12Slots::Upload* const memory = slots.upload(device.get(), layer, bytes);
    if (!memory) return;
    copyRows(plane, changed, memory->memory, rowBytes);
    copy(texture.resource.get(), memory->buffer.get(), changed, rowBytes);
}

void D3D12Painter::remake(Texture& texture, const Plane& plane) {
    if (texture.resource) slots.keepUntilDone(std::move(texture.resource));
    texture = {};
    const D3D12_HEAP_PROPERTIES heap{D3D12_HEAP_TYPE_DEFAULT, {}, {}, 0, 0};
    const D3D12_RESOURCE_DESC wanted = textureOf(plane);
    if (FAILED(device->CreateCommittedResource(&heap, D3D12_HEAP_FLAG_NONE, &wanted,
                                               D3D12_RESOURCE_STATE_PIXEL_SHADER_RESOURCE, nullptr,
                                               __uuidof(ID3D12Resource), texture.resource.putVoid())))
        return;
    texture.width = plane.getWidth();
    texture.height = plane.getHeight();
}

void D3D12Painter::copy(ID3D12Resource* texture, ID3D12Resource* from, const Box& changed, UINT rowBytes) {
    const Box size{0, 0, changed.right - changed.left, changed.bottom - changed.top};
    D3D12_TEXTURE_COPY_LOCATION source{};
    source.pResource = from;
    source.Type = D3D12_TEXTURE_COPY_TYPE_PLACED_FOOTPRINT;
    source.PlacedFootprint.Footprint = {DXGI_FORMAT_B8G8R8A8_UNORM, static_cast<UINT>(size.right),
                                        static_cast<UINT>(size.bottom), 1, rowBytes};
    D3D12_TEXTURE_COPY_LOCATION target{};
    target.pResource = texture;
    target.Type = D3D12_TEXTURE_COPY_TYPE_SUBRESOURCE_INDEX;
    change(texture, D3D12_RESOURCE_STATE_PIXEL_SHADER_RESOURCE, D3D12_RESOURCE_STATE_COPY_DEST);
    list->CopyTextureRegion(&target, static_cast<UINT>(changed.left), static_cast<UINT>(changed.top), 0, &source,
                            nullptr);
    change(texture, D3D12_RESOURCE_STATE_COPY_DEST, D3D12_RESOURCE_STATE_PIXEL_SHADER_RESOURCE);
}

void D3D12Painter::draw(Layer layer, const Place& where) {
    const Texture& texture = textures[static_cast<size_t>(layer)];
    if (!texture.resource) return;
    const float toX = 2.0f / static_cast<float>(frame.width);
    const float toY = 2.0f / static_cast<float>(frame.height);
    const Place edges{where.left * toX - 1, 1 - where.top * toY, where.right * toX - 1, 1 - where.bottom * toY};
    const bool isOneToOne = where.right - where.left == static_cast<float>(texture.width) &&
                            where.bottom - where.top == static_cast<float>(texture.height);
    list->SetPipelineState(pipelines.pipelineOf(layer));
    list->SetGraphicsRoot32BitConstants(Parameter::kEdges, sizeof edges / sizeof(float), &edges, 0);
    bindPixels(layer, texture.resource.get());
    list->SetGraphicsRootDescriptorTable(Parameter::kSampler,
                                         readPlace(device.get(), samplers.get(), isOneToOne ? kNearest : kLinear));
    list->DrawInstanced(4, 1, 0, 0);
}

// Descriptors are the slot's: earlier frames may still read theirs.
void D3D12Painter::bindPixels(Layer layer, ID3D12Resource* texture) {
    const UINT index = static_cast<UINT>(slots.index() * kLayers + static_cast<size_t>(layer));
    device->CreateShaderResourceView(texture, nullptr, writePlace(device.get(), views.get(), index));
    list->SetGraphicsRootDescriptorTable(Parameter::kPixels, readPlace(device.get(), views.get(), index));
}

void D3D12Painter::change(ID3D12Resource* resource, D3D12_RESOURCE_STATES from, D3D12_RESOURCE_STATES to) {
    D3D12_RESOURCE_BARRIER barrier{};
    barrier.Type = D3D12_RESOURCE_BARRIER_TYPE_TRANSITION;
    barrier.Transition = {resource, D3D12_RESOURCE_BARRIER_ALL_SUBRESOURCES, from, to};
    list->ResourceBarrier(1, &barrier);
}

}  // namespace ZEMO::GraphicsHook
