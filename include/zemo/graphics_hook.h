#pragma once

/// The contract between the library and a graphics hook module, "ZEMOGraphicsHook.dll": for who writes such a module. A
/// game includes <zemo/ui.h> only. The library loads the module in InitUIGraphicsHook, asks it for the game's graphics
/// API until it knows, takes one renderer from it, and hands that renderer every frame of the view in front. Module and
/// library are built with the same compiler: the interfaces are C++ and a list of rectangles is a std::vector.
///
/// Threads: the module is asked for the API and for its renderer on the thread that makes the first view or on a render
/// thread of the library, never by two at a time. prepareFrame, setFrameActive(true), onPaint and the popup's calls
/// come on the engine thread; isEmpty on a render thread too; setFrameActive(false) and setNeedResize on the thread
/// that closes, hides or resizes a view; onGameWindowDestroyed on the game's window thread. All of them may come in any
/// interleaving, beside the module's own work on the game's render thread, and none may wait for that thread.

#include <windows.h>

#include <zemo/rect16.h>
#include <zemo/rendering_mode.h>

#include <cstdint>
#include <vector>

namespace ZEMO::UI {

/// The engine's shapes as a module sees them, which knows nothing of the engine.
namespace Hook {

/// What a frame shows.
enum PaintElementType : int {
    // NOLINTBEGIN(readability-identifier-naming): the engine's names
    PET_VIEW = 0,   ///< the page
    PET_POPUP = 1,  ///< its open list
    // NOLINTEND(readability-identifier-naming)
};

/// A rectangle that changed, in device pixels.
struct DirtyRect {
    int x = 0;       ///< from the left
    int y = 0;       ///< from the top
    int width = 0;   ///< to the right
    int height = 0;  ///< downward
};
/// All that changed.
using RectList = std::vector<DirtyRect>;

}  // namespace Hook

/// The popup of a page (an open list): its place and whether it shows. Its pixels come by onPaint with PET_POPUP.
class IRenderHookPopup {
public:
    /// True while no rectangle is set. The library asks the engine for paints of its own only then.
    virtual bool isEmpty() = 0;
    /// Forgets the rectangle; comes before the popup is hidden.
    virtual void clear() = 0;
    /// The popup opens or closes.
    virtual void setVisible(bool show) = 0;
    /// Left, top, right and bottom in device pixels of the view.
    virtual void setRect(const Rect16* ltrb) = 0;

protected:
    ~IRenderHookPopup() = default;
};

/// Takes the frames of the view in front. The module owns it and keeps it until the process ends.
class IRenderHookRenderer {
public:
    /// One frame: bytes B, G, R, A, premultiplied, rows from top to bottom, stride width times 4. `buffer` and
    /// `dirtyRects` (the engine's own list of what changed) are valid during the call only.
    virtual void onPaint(Hook::PaintElementType type, const Hook::RectList* dirtyRects, const void* buffer, int width,
                         int height) = 0;
    /// True before each frame, false when the view closes: nothing of it may be drawn from then on.
    virtual void setFrameActive(bool active) = 0;
    /// The same object at each call; null: the module shows no popups.
    virtual IRenderHookPopup* getPopupRenderer() = 0;
    /// Comes first for each frame. `drawCloseButton`: the module is to draw the close button.
    virtual void prepareFrame(bool drawCloseButton, Hook::PaintElementType type, const Hook::RectList* dirtyRects) = 0;
    /// Always true: the view's size has changed.
    virtual void setNeedResize(bool value) = 0;
    /// What the game gave setOpenGLSleepTime: once, before the first frame, for OpenGL only, and never 0.
    virtual void setSleepTime(uint32_t milliseconds) = 0;
    /// The game's window is being destroyed: the message as it came, before anyone else sees it.
    virtual void onGameWindowDestroyed(UINT message, WPARAM wParam, LPARAM lParam) = 0;

protected:
    ~IRenderHookRenderer() = default;
};

/// The module's exports by name, all of them required. A null renderer means that the module draws nothing.
using GetRenderModeFunction = RenderingMode();
/// The other three.
using GetRenderHookRendererFunction = IRenderHookRenderer*();
inline constexpr char kGetRenderModeHandler[] = "GetRenderModeHandler";                ///< a GetRenderModeFunction
inline constexpr char kGetD3D11RenderHookRenderer[] = "GetD3D11RenderHookRenderer";    ///< for Direct3D 11
inline constexpr char kGetD3D12RenderHookRenderer[] = "GetD3D12RenderHookRenderer";    ///< for Direct3D 12
inline constexpr char kGetOpenGLRenderHookRenderer[] = "GetOpenGLRenderHookRenderer";  ///< for OpenGL

}  // namespace ZEMO::UI
