#pragma once

#include <atomic>
#include <cstdint>
#include <functional>
#include <string>
#include <utility>

#include "core/game_callback.h"
#include "layers/shared_slot.h"
#include "zemo/ui.h"

namespace ZEMO::UI {

/// What the game has set: callbacks, flags, texts. A new layer copies them. Any thread; a callback that is fetched once
/// the process ends is empty.
class GameSettings {
public:
    using ScriptUseCallback = std::function<void(int)>;
    using KeyboardCallback = std::function<void(int)>;
    using ExternalBrowserCallback = std::function<bool(const std::string&)>;

    uint32_t getOpenGLSleepTime() const { return openGLSleepTime; }
    void setOpenGLSleepTime(uint32_t milliseconds) { openGLSleepTime = milliseconds; }
    bool getSteamDeckKeyboardShown() const { return steamDeckKeyboardShown; }
    void setSteamDeckKeyboardShown(bool shown) { steamDeckKeyboardShown = shown; }
    bool getSteamOverlayActive() const { return steamOverlayActive; }
    void setSteamOverlayActive(bool active) { steamOverlayActive = active; }
    std::string getGameControllerStatus() const { return gameControllerStatus.get(); }
    void setGameControllerStatus(std::string statusJson) { gameControllerStatus.set(std::move(statusJson)); }

    bool hasSteamDeckKeyboardCallback() const { return static_cast<bool>(steamDeckKeyboardCallback.get()); }
    KeyboardCallback getSteamDeckKeyboardCallback() const {
        return Core::unlessProcessEnds(steamDeckKeyboardCallback.get());
    }
    void setSteamDeckKeyboardCallback(KeyboardCallback callback) { steamDeckKeyboardCallback.set(std::move(callback)); }
    ScriptUseCallback getGameControllerScriptUseCallback() const {
        return Core::unlessProcessEnds(gameControllerScriptUseCallback.get());
    }
    void setGameControllerScriptUseCallback(ScriptUseCallback callback) {
        gameControllerScriptUseCallback.set(std::move(callback));
    }
    ExternalBrowserCallback getOpenExternalBrowserCallback() const {
        return Core::unlessProcessEnds(openExternalBrowserCallback.get());
    }
    void setOpenExternalBrowserCallback(ExternalBrowserCallback callback) {
        openExternalBrowserCallback.set(std::move(callback));
    }
    OsrFramePresentCallback getOsrFramePresentCallback() const {
        return Core::unlessProcessEnds(osrFramePresentCallback.get());
    }
    void setOsrFramePresentCallback(OsrFramePresentCallback callback) {
        osrFramePresentCallback.set(std::move(callback));
    }

private:
    std::atomic<uint32_t> openGLSleepTime = 0;  ///< milliseconds
    std::atomic<bool> steamDeckKeyboardShown = false;
    std::atomic<bool> steamOverlayActive = false;
    SharedSlot<std::string> gameControllerStatus;
    SharedSlot<KeyboardCallback> steamDeckKeyboardCallback;
    SharedSlot<ScriptUseCallback> gameControllerScriptUseCallback;
    SharedSlot<ExternalBrowserCallback> openExternalBrowserCallback;
    SharedSlot<OsrFramePresentCallback> osrFramePresentCallback;
};

}  // namespace ZEMO::UI
