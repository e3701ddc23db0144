#pragma once

#include <windows.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "core/singleton.h"
#include "layers/layer.h"
#include "layers/shared_slot.h"

namespace ZEMO::UI {

/// The one object of the layer side: the subclass on the game's main window, the ordered list of the layers on it, and
/// the store of what the game has set, which a new layer copies.
///
/// Threads: layerWindowProc and dispatchMessage run on the game's window thread; addLayer and removeLayer on whatever
/// thread shows, closes or drops a view; the settings may be set and read on any thread.
class ZEMOMultiLayerManager final : public ZEMO::Core::Singleton<ZEMOMultiLayerManager> {
public:
    using ScriptUseCallback = std::function<void(int)>;
    using KeyboardCallback = std::function<void(int)>;
    using ExternalBrowserCallback = std::function<bool(const std::string&)>;
    using FramePresentCallback = std::function<void(const void*, int, int, int, int, int, int)>;

    /// The library uses instance(); an object of its own is for tests of construction and destruction.
    ZEMOMultiLayerManager() = default;
    /// Takes the subclass off the main window and frees the hook module.
    ~ZEMOMultiLayerManager();

    /// On the thread of the main window. Does nothing without one, or when that window is subclassed already.
    void subclassMainWindow();
    static LRESULT CALLBACK layerWindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    /// Gives the message to the top layer. True when it is consumed: the game must not see it then.
    bool dispatchMessage(LRESULT* result, HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam);

    /// Puts `layer` on top; a layer that is on the list already stays where it is. The first layer switches the process
    /// to the real-time priority class and XInput off.
    void addLayer(std::weak_ptr<ILayer> layer);
    /// Takes `layer` off. With the list empty, the game's priority class and XInput are back.
    void removeLayer(std::weak_ptr<ILayer> layer);
    /// Entries of the list, alive or not.
    int32_t getLayerCount();

    /// Posts WM_PAINT to the main window, if there is one.
    void repaintMainWindow();
    /// `reserved` is not read.
    void setImeProcess(uint32_t kind, const std::u16string* text, const uint32_t* repeatCount, void* reserved);
    void processSteamDeckKeyboardClose();
    void setSteamOverlayActiveStatus(bool active);

    HWND getMainWindow() const { return mainWindow; }
    void setMainWindow(HWND window) { mainWindow = window; }
    HMODULE getGraphicsHookModule() const { return graphicsHookModule; }
    /// Takes the module over: it is freed with this object.
    void setGraphicsHookModule(HMODULE module) { graphicsHookModule = module; }
    uint32_t getOpenGLSleepTime() const { return openGLSleepTime; }
    void setOpenGLSleepTime(uint32_t milliseconds) { openGLSleepTime = milliseconds; }
    bool getSteamDeckKeyboardShown() const { return steamDeckKeyboardShown; }
    void setSteamDeckKeyboardShown(bool shown) { steamDeckKeyboardShown = shown; }
    bool getSteamOverlayActive() const { return steamOverlayActive; }

    std::string getGameControllerStatus() const { return gameControllerStatus.get(); }
    void setGameControllerStatus(std::string statusJson) { gameControllerStatus.set(std::move(statusJson)); }

    bool hasSteamDeckKeyboardCallback() const { return static_cast<bool>(steamDeckKeyboardCallback.get()); }
    KeyboardCallback getSteamDeckKeyboardCallback() const { return steamDeckKeyboardCallback.get(); }
    void setSteamDeckKeyboardCallback(KeyboardCallback callback) { steamDeckKeyboardCallback.set(std::move(callback)); }
    ScriptUseCallback getGameControllerScriptUseCallback() const { return gameControllerScriptUseCallback.get(); }
    void setGameControllerScriptUseCallback(ScriptUseCallback callback) {
        gameControllerScriptUseCallback.set(std::move(callback));
    }
    ExternalBrowserCallback getOpenExternalBrowserCallback() const { return openExternalBrowserCallback.get(); }
    void setOpenExternalBrowserCallback(ExternalBrowserCallback callback) {
        openExternalBrowserCallback.set(std::move(callback));
    }
    FramePresentCallback getOsrFramePresentCallback() const { return osrFramePresentCallback.get(); }
    void setOsrFramePresentCallback(FramePresentCallback callback) { osrFramePresentCallback.set(std::move(callback)); }

private:
    using LayerList = std::vector<std::weak_ptr<ILayer>>;

    std::shared_ptr<ILayer> topLayer();
    LayerList::iterator findLayer(const std::shared_ptr<ILayer>& layer);
    void appendLayer(std::weak_ptr<ILayer> layer);
    void eraseLayer(LayerList::iterator position);

    /// Held while a message goes to a layer; recursive, because a layer's handler may send to the same window.
    std::recursive_mutex messageMutex;
    /// Held while the list changes and the layers hear of it. Never waits for messageMutex, nor the other way round.
    std::mutex layersMutex;
    LayerList layers;  ///< bottom first
    /// Only for the few instructions that touch `layers` itself, never across a call to a layer: a dispatch may read
    /// the list while another thread is inside addLayer or removeLayer.
    std::mutex listAccess;
    std::atomic<size_t> layerCount = 0;  ///< size of `layers`, so that an idle dispatch needs no second lock
    uint32_t savedPriorityClass = 0;

    SharedSlot<KeyboardCallback> steamDeckKeyboardCallback;
    std::atomic<bool> steamDeckKeyboardShown = false;
    std::atomic<HWND> mainWindow = nullptr;
    std::atomic<HMODULE> graphicsHookModule = nullptr;
    std::atomic<WNDPROC> previousWindowProc = nullptr;
    std::atomic<uint32_t> openGLSleepTime = 0;  ///< milliseconds
    SharedSlot<std::string> gameControllerStatus;
    SharedSlot<ScriptUseCallback> gameControllerScriptUseCallback;
    std::atomic<bool> steamOverlayActive = false;
    SharedSlot<ExternalBrowserCallback> openExternalBrowserCallback;
    SharedSlot<FramePresentCallback> osrFramePresentCallback;
};

}  // namespace ZEMO::UI
