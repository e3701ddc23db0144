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
#include "core/unique_handle.h"
#include "layers/game_settings.h"
#include "layers/layer.h"

namespace ZEMO::UI {

/// The one object of the layer side: the subclass on the game's main window, the ordered list of the layers on it, and
/// the way to what the game has set.
///
/// Threads: layerWindowProc and dispatchMessage run on the game's window thread; addLayer and removeLayer on whatever
/// thread shows, closes or drops a view; the settings may be set and read on any thread.
class ZEMOMultiLayerManager final : public ZEMO::Core::Singleton<ZEMOMultiLayerManager> {
public:
    /// The library uses instance(); an object of its own is for tests of construction and destruction.
    ZEMOMultiLayerManager() = default;
    /// Takes the subclass off the main window and frees the hook module.
    ~ZEMOMultiLayerManager();

    /// On the thread of the main window. Does nothing without one, or when that window is subclassed already.
    void subclassMainWindow();
    /// When the main window has been destroyed (a game may make a new one for another display mode), looks for it again
    /// and subclasses what it finds. A window that lives is never left, and where none was found at the start, none is
    /// looked for. Any thread.
    void replaceLostMainWindow();
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
    void setMainWindow(HWND window);
    HMODULE getGraphicsHookModule() const { return graphicsHookModule; }
    /// Takes the module over: it is freed with this object. Any thread.
    void setGraphicsHookModule(HMODULE module);
    // What the game has set, each forwarded to the settings.
    uint32_t getOpenGLSleepTime() const { return settings.getOpenGLSleepTime(); }
    void setOpenGLSleepTime(uint32_t milliseconds) { settings.setOpenGLSleepTime(milliseconds); }
    bool getSteamDeckKeyboardShown() const { return settings.getSteamDeckKeyboardShown(); }
    void setSteamDeckKeyboardShown(bool shown) { settings.setSteamDeckKeyboardShown(shown); }
    bool getSteamOverlayActive() const { return settings.getSteamOverlayActive(); }
    std::string getGameControllerStatus() const { return settings.getGameControllerStatus(); }
    void setGameControllerStatus(std::string status) { settings.setGameControllerStatus(std::move(status)); }
    bool hasSteamDeckKeyboardCallback() const { return settings.hasSteamDeckKeyboardCallback(); }
    auto getSteamDeckKeyboardCallback() const { return settings.getSteamDeckKeyboardCallback(); }
    void setSteamDeckKeyboardCallback(GameSettings::KeyboardCallback callback) {
        settings.setSteamDeckKeyboardCallback(std::move(callback));
    }
    auto getGameControllerScriptUseCallback() const { return settings.getGameControllerScriptUseCallback(); }
    void setGameControllerScriptUseCallback(GameSettings::ScriptUseCallback callback) {
        settings.setGameControllerScriptUseCallback(std::move(callback));
    }
    auto getOpenExternalBrowserCallback() const { return settings.getOpenExternalBrowserCallback(); }
    void setOpenExternalBrowserCallback(GameSettings::ExternalBrowserCallback callback) {
        settings.setOpenExternalBrowserCallback(std::move(callback));
    }
    auto getOsrFramePresentCallback() const { return settings.getOsrFramePresentCallback(); }
    void setOsrFramePresentCallback(OsrFramePresentCallback callback) {
        settings.setOsrFramePresentCallback(std::move(callback));
    }

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

    GameSettings settings;
    std::atomic<HWND> mainWindow = nullptr;
    std::mutex mainWindowMutex;                     ///< one search for a new one at a time
    std::atomic<bool> mainWindowDestroyed = false;  ///< its handle may be another window's by now
    std::atomic<HMODULE> graphicsHookModule = nullptr;
    std::mutex hookModulesMutex;
    std::vector<Core::UniqueModule> hookModules;  ///< each that was loaded: a view may still use an older one
    std::atomic<WNDPROC> previousWindowProc = nullptr;
};

}  // namespace ZEMO::UI
