#pragma once

#include "layers/messages/window_message.h"
#include "layers/zemo_window.h"

namespace ZEMO::UI {

/// What a layer does with each message of the game's window; layer_table.cpp says which function gets which message.
/// True means consumed: *result is the answer, and the game never sees the message. On the window's thread.
struct ZEMOWindow::LayerStyle {
    using Handler = bool (*)(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);
    /// Null for a message that is the game's alone.
    static Handler find(UINT message);

    // layer_table.cpp
    static bool destroy(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);
    static bool size(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);
    static bool activate(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);
    static bool killFocus(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);
    static bool eraseBackground(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);
    static bool captionDoubleClick(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);
    static bool systemCommand(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);
    static bool consume(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);
    static bool key(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);

    // cursor_messages.cpp
    static bool setCursor(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);

    // mouse_messages.cpp
    static bool mouseMove(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);
    static bool leftDown(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);
    static bool leftUp(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);
    static bool wheel(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);
    static bool wheelSideways(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);
    static bool mouseLeave(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);

    // pointer_messages.cpp
    static bool pointer(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);

    // ime_messages.cpp
    static bool imeStart(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);
    static bool imeEnd(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);
    static bool imeComposition(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);
    static bool imeSetContext(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);
    static bool imeRequest(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);

    // private_messages.cpp
    static bool externalScript(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);
    static bool externalText(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);
    static bool remoteMouseMove(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);
    static bool remoteWheel(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);
    static bool remotePress(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);
    static bool imeFocus(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);
    static bool imeBounds(ZEMOWindow& layer, LRESULT* result, const WindowMessage& m);
};

}  // namespace ZEMO::UI
