#pragma once

#include <optional>

#include "layers/messages/window_message.h"
#include "layers/zemo_window.h"

namespace ZEMO::UI {

/// What a view does with each message of its own window; own_table.cpp says which function gets which message. An
/// empty answer asks for the system's default. On the window's thread.
struct ZEMOWindow::OwnStyle {
    using Handler = OwnResult (*)(ZEMOWindow& layer, const WindowMessage& m);
    /// Null for a message that takes the system's default way.
    static Handler find(UINT message);

    // own_table.cpp
    static OwnResult destroy(ZEMOWindow& layer, const WindowMessage& m);
    static OwnResult size(ZEMOWindow& layer, const WindowMessage& m);
    static OwnResult activate(ZEMOWindow& layer, const WindowMessage& m);
    static OwnResult killFocus(ZEMOWindow& layer, const WindowMessage& m);
    static OwnResult close(ZEMOWindow& layer, const WindowMessage& m);
    static OwnResult captionDoubleClick(ZEMOWindow& layer, const WindowMessage& m);
    static OwnResult systemCommand(ZEMOWindow& layer, const WindowMessage& m);
    static OwnResult key(ZEMOWindow& layer, const WindowMessage& m);

    // cursor_messages.cpp
    static OwnResult setCursor(ZEMOWindow& layer, const WindowMessage& m);

    // mouse_messages.cpp
    static OwnResult mouseMove(ZEMOWindow& layer, const WindowMessage& m);
    static OwnResult leftDown(ZEMOWindow& layer, const WindowMessage& m);
    static OwnResult leftUp(ZEMOWindow& layer, const WindowMessage& m);
    static OwnResult rightDown(ZEMOWindow& layer, const WindowMessage& m);
    static OwnResult rightUp(ZEMOWindow& layer, const WindowMessage& m);
    static OwnResult wheel(ZEMOWindow& layer, const WindowMessage& m);

    // pointer_messages.cpp
    static OwnResult pointer(ZEMOWindow& layer, const WindowMessage& m);

    // ime_messages.cpp
    static OwnResult imeStart(ZEMOWindow& layer, const WindowMessage& m);
    static OwnResult imeEnd(ZEMOWindow& layer, const WindowMessage& m);
    static OwnResult imeComposition(ZEMOWindow& layer, const WindowMessage& m);
    static OwnResult imeSetContext(ZEMOWindow& layer, const WindowMessage& m);
    static OwnResult imeRequest(ZEMOWindow& layer, const WindowMessage& m);

    // private_messages.cpp
    static OwnResult externalScript(ZEMOWindow& layer, const WindowMessage& m);
    static OwnResult imeFocus(ZEMOWindow& layer, const WindowMessage& m);
    static OwnResult imeBounds(ZEMOWindow& layer, const WindowMessage& m);
};

}  // namespace ZEMO::UI
