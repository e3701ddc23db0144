#pragma once

#include <d3d11.h>

#include <memory>

#include "core/com_pointer.h"

namespace ZEMO::UI::D3D11 {

/// The immediate context. Only the view's render thread makes calls on it.
struct Context {
    std::shared_ptr<ID3D11DeviceContext> context;
};

using SharedContext = std::shared_ptr<Context>;

/// `object` by another of its interfaces; empty when there is no object or it has none.
template <class Interface>
std::shared_ptr<Interface> queryCom(IUnknown* object) {
    Interface* found = nullptr;
    if (!object || FAILED(object->QueryInterface(IID_PPV_ARGS(&found)))) return {};
    return Core::adoptCom(found);
}

}  // namespace ZEMO::UI::D3D11
