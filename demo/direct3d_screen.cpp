#include "direct3d_screen.h"

#include <stdexcept>

namespace demo {

namespace {

constexpr wchar_t kScreenClass[] = L"ZemoDemoScreen";

LRESULT CALLBACK screenProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_NCHITTEST) return HTTRANSPARENT;
    if (message == WM_PAINT) return ValidateRect(window, nullptr), 0;
    return DefWindowProcW(window, message, wParam, lParam);
}

DXGI_SWAP_CHAIN_DESC chainFor(HWND window) {
    DXGI_SWAP_CHAIN_DESC wanted{};
    wanted.BufferDesc.Format = DXGI_FORMAT_B8G8R8A8_UNORM;
    wanted.SampleDesc.Count = 1;
    wanted.BufferUsage = DXGI_USAGE_RENDER_TARGET_OUTPUT;
    wanted.BufferCount = 1;
    wanted.OutputWindow = window;
    wanted.Windowed = TRUE;
    return wanted;
}

}  // namespace

Direct3DScreen::Direct3DScreen(HWND parent) {
    WNDCLASSEXW windowClass{sizeof windowClass};
    windowClass.lpfnWndProc = screenProc;
    windowClass.hInstance = GetModuleHandleW(nullptr);
    windowClass.lpszClassName = kScreenClass;
    RegisterClassExW(&windowClass);
    window = CreateWindowExW(WS_EX_NOPARENTNOTIFY, kScreenClass, nullptr, WS_CHILD | WS_VISIBLE, 0, 0, 1, 1, parent,
                             nullptr, windowClass.hInstance, nullptr);
    createChain();
}

// The chain first: it draws into the window.
Direct3DScreen::~Direct3DScreen() {
    chain.reset();
    context.reset();
    DestroyWindow(window);
}

// Loaded on demand, so that a game without it has no Direct3D in its process.
void Direct3DScreen::createChain() {
    const HMODULE library = LoadLibraryW(L"d3d11.dll");
    const auto create = reinterpret_cast<PFN_D3D11_CREATE_DEVICE_AND_SWAP_CHAIN>(
        reinterpret_cast<void*>(library ? GetProcAddress(library, "D3D11CreateDeviceAndSwapChain") : nullptr));
    const DXGI_SWAP_CHAIN_DESC wanted = chainFor(window);
    IDXGISwapChain* madeChain = nullptr;
    ID3D11Device* device = nullptr;
    ID3D11DeviceContext* madeContext = nullptr;
    if (!create || FAILED(create(nullptr, D3D_DRIVER_TYPE_HARDWARE, nullptr, 0, nullptr, 0, D3D11_SDK_VERSION, &wanted,
                                 &madeChain, &device, nullptr, &madeContext))) {
        throw std::runtime_error("no Direct3D 11");
    }
    chain.reset(madeChain);
    context.reset(madeContext);
    device->Release();  // chain and context hold it
}

void Direct3DScreen::follow(const Picture& frame) {
    if (frame.width == width && frame.height == height) return;
    width = frame.width;
    height = frame.height;
    SetWindowPos(window, nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
    chain->ResizeBuffers(0, static_cast<UINT>(width), static_cast<UINT>(height), DXGI_FORMAT_UNKNOWN, 0);
}

void Direct3DScreen::show(const Picture& frame) {
    follow(frame);
    void* found = nullptr;
    if (FAILED(chain->GetBuffer(0, __uuidof(ID3D11Texture2D), &found))) return;
    const Com<ID3D11Texture2D> buffer(static_cast<ID3D11Texture2D*>(found));
    context->UpdateSubresource(buffer.get(), 0, nullptr, frame.pixels.data(), static_cast<UINT>(width) * 4, 0);
    chain->Present(0, 0);
}

}  // namespace demo
