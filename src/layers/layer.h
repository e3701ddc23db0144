#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

namespace ZEMO::UI {

/// How the layer manager and the native window reach a layer. handleMessage and the on... operations come on the thread
/// of the layer's window; setVisible on the thread that shows, closes or destroys a view.
class ILayer {
public:
    /// One message of the game's window. True means consumed: *result is the answer and the game never sees it.
    virtual bool handleMessage(LRESULT* result, HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) = 0;
    /// keepHookFrame is false when the last layer goes, so that the frame drawn into the game is dropped.
    virtual void setVisible(bool show, bool keepHookFrame) = 0;
    virtual void sendImeCommand(uint32_t kind, const std::u16string* text, const uint32_t* repeatCount) = 0;
    virtual void blurActiveElement() = 0;
    virtual void setSteamOverlayActive(bool active) = 0;
    virtual ~ILayer() = default;
    virtual void onSize(const RECT& client, int width, int height) = 0;
    virtual void onMaximizeRestore() = 0;
    virtual void onDestroy() = 0;
    virtual void onKillFocus() = 0;
    virtual void onClose() = 0;
};

}  // namespace ZEMO::UI
