#pragma once

#include <functional>

namespace ZEMO::UI {

/// A finished frame: `pixels` (bytes B, G, R, A, premultiplied, rows from top to bottom, stride frameWidth times 4),
/// `frameWidth`, `frameHeight`, then the changed rectangle `dirtyX`, `dirtyY`, `dirtyWidth`, `dirtyHeight`, all in
/// device pixels. The rectangle may be empty. Called on the engine thread, up to 30 times a second; `pixels` is valid
/// only during the call, and the call must not block: copy or upload and return. A null pointer with six zeros says
/// that there is nothing to show any more; it comes last, on the thread that drops the view, or on the engine thread
/// when a frame is just being taken. Never two calls of one view at a time.
///
/// The call does not say whose frame it is. Of two views on the game's window only the one in front paints; each brings
/// its whole frame when it comes to the front, so keep one picture, copy the changed rectangle into it, and take the
/// whole frame where its size differs from the last. An empty rectangle says that nothing changed: keep what you have.
using OsrFramePresentCallback = std::function<void(const void* pixels, int frameWidth, int frameHeight, int dirtyX,
                                                   int dirtyY, int dirtyWidth, int dirtyHeight)>;

}  // namespace ZEMO::UI
