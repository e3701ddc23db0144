#pragma once

#include <windows.h>

#include <d3d11.h>

#include <memory>

#include "pictures.h"

namespace demo {

/// Shows the game's frames by a Direct3D 11 swap chain, for a game of that kind. Lies over the whole client area of the
/// game's window and lets the mouse through to it. Game thread.
class Direct3DScreen {
public:
    /// Throws std::runtime_error when there is no Direct3D 11. `parent` must outlive it.
    explicit Direct3DScreen(HWND parent);
    ~Direct3DScreen();
    Direct3DScreen(const Direct3DScreen&) = delete;
    Direct3DScreen& operator=(const Direct3DScreen&) = delete;

    /// The swap chain takes the picture's size.
    void show(const Picture& frame);

private:
    struct Releaser {
        void operator()(IUnknown* object) const { object->Release(); }
    };
    template <class Interface>
    using Com = std::unique_ptr<Interface, Releaser>;

    void createChain();
    void follow(const Picture& frame);

    HWND window = nullptr;
    int width = 0, height = 0;
    Com<IDXGISwapChain> chain;
    Com<ID3D11DeviceContext> context;
};

}  // namespace demo
