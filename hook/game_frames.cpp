#include "game_frames.h"

#include <atomic>

#include "d3d12_queue.h"
#include "gl_hook.h"
#include "page_picture.h"

namespace ZEMO::GraphicsHook {
namespace {

using UI::RenderingMode;

std::atomic<RenderingMode> api{RenderingMode::Unknown};
std::atomic<HWND> gameWindow{nullptr};
std::atomic<uint32_t> pauseMs{0};

// A game may present in a child window. Tool windows that it owns are not the game's frame.
bool isGameWindow(HWND window) {
    if (!window) return false;
    const HWND root = GetAncestor(window, GA_ROOT);
    const HWND known = gameWindow.load();
    if (known && known == root) return true;
    if (known && IsWindow(known)) return false;
    if (!root || GetWindow(root, GW_OWNER) || !IsWindowVisible(root)) return false;
    gameWindow = root;
    return true;
}

}  // namespace

UI::RenderingMode gameApi() { return api.load(); }

bool mayTakePage(UI::RenderingMode presented) {
    RenderingMode known = api.load(std::memory_order_relaxed);
    if (known == RenderingMode::Unknown && api.compare_exchange_strong(known, presented)) known = presented;
    return known == presented && pagePicture().isShown();
}

bool takesPage(UI::RenderingMode presented, HWND window) { return mayTakePage(presented) && isGameWindow(window); }

bool isGameMinimised() { return IsIconic(gameWindow.load()); }

void leaveGameWindow() {
    gameWindow = nullptr;
    releaseGlPainter();
    endQueueSearch();
}

void setPauseAfterFrame(uint32_t milliseconds) { pauseMs = milliseconds; }
uint32_t pauseAfterFrame() { return pauseMs; }

}  // namespace ZEMO::GraphicsHook
