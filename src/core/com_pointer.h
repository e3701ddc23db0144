#pragma once

#include <memory>

namespace ZEMO::Core {

/// Takes over the one reference that a call handed out, and gives it back with the last copy. Null stays null. The last
/// copy goes on a thread that may use the object, while COM is initialised there.
template <class Interface>
std::shared_ptr<Interface> adoptCom(Interface* object) {
    return {object, [](Interface* p) {
                if (p) p->Release();
            }};
}

}  // namespace ZEMO::Core
