#pragma once

#include <windows.h>

#include <imm.h>

#include <cstdint>
#include <string>

// What a native window's messages become. All operations come on the thread of that window; coordinates are client
// pixels of the device unless told otherwise.
namespace ZEMO::UI {

enum class WindowStyle : int32_t {
    Layer = 0,   ///< on the game's own window
    Window = 1,  ///< a top-level window of the library's, on a thread of its own
};

class IIMEEvents {
public:
    virtual void onImeSetContext() = 0;
    virtual void onImeStartComposition() = 0;
    virtual void onImeComposition(LPARAM flags) = 0;
    virtual void onImeEndComposition() = 0;
    virtual void onImeFocusChange(bool enable) = 0;
    virtual void onImeBoundsChanged() = 0;
    virtual bool onImeQueryCharPosition(IMECHARPOSITION* position) = 0;

protected:
    ~IIMEEvents() = default;
};

/// The buttons of onMouseButton.
inline constexpr int kLeftButton = 0;
inline constexpr int kMiddleButton = 1;
inline constexpr int kRightButton = 2;

class IInputEvents {
public:
    /// button: kLeftButton or kRightButton.
    virtual void onMouseButton(int button, bool up, int x, int y) = 0;
    /// modifiers: the engine's EVENTFLAG_ bits.
    virtual void onMouseMove(int x, int y, uint32_t modifiers) = 0;
    /// The wheel delta is the high word of wParam. With clientCoordinates false, x and y are screen coordinates.
    virtual void onMouseWheel(WPARAM wParam, int x, int y, bool horizontal, bool clientCoordinates) = 0;
    virtual void onKey(UINT message, WPARAM wParam, LPARAM lParam) = 0;
    virtual void onPointer(UINT message, uint32_t pointerId, int x, int y) = 0;

protected:
    ~IInputEvents() = default;
};

class IFocusEvents {
public:
    virtual void onActivated() = 0;
    virtual void onDeactivated() = 0;

protected:
    ~IFocusEvents() = default;
};

class IExternalInputEvents {
public:
    virtual void onExternalScript(const std::string& payload) = 0;
    virtual void onExternalText(const std::string& text) = 0;

protected:
    ~IExternalInputEvents() = default;
};

}  // namespace ZEMO::UI
