// The subclass on the game's main window. Order of events:
//
// 1. subclassMainWindow keeps the window's procedure before it puts layerWindowProc in its place, so that no message
//    finds the one without the other.
// 2. Each message then comes to layerWindowProc on the game's window thread. Calls of other threads that wait for that
//    one run first, and are no business of a layer or the game. WM_DESTROY is first told to the graphics
//    hook. The top layer, the last entry of the list, gets the message with messageMutex held; consumed, it ends here,
//    else it goes on to the kept procedure with no lock held. The private IME messages go to the layer with no lock at
//    all and never on to the game.
// 3. A layer may end in its own handler: the dispatch holds a strong reference, given up after the lock.
// 4. The destructor runs with the library's static objects, after the engine has stopped, and puts the procedure back.
//
// Changes of the list take layersMutex, through all the layers' setVisible calls. They do not wait for a running
// dispatch, nor does a dispatch wait for them.
#include "layers/layer_manager.h"

#include <algorithm>

#include "core/posted_text.h"
#include "layers/main_window.h"
#include "layers/window_messages.h"
#include "layers/window_thread_calls.h"
#include "layers/xinput_switch.h"
#include "render/hook/graphics_hooker.h"

namespace ZEMO::UI {

namespace {

bool carriesText(UINT message) { return message == kMessageExternalScript || message == kMessageExternalText; }
bool isPrivateImeMessage(UINT message) { return message == kMessageImeFocus || message == kMessageImeBounds; }

}  // namespace

ZEMOMultiLayerManager::~ZEMOMultiLayerManager() {
    if (const WNDPROC previous = previousWindowProc)
        SetWindowLongPtrW(mainWindow, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(previous));
    ZEMOGraphicsHooker::instance().forgetRenderer();  // it goes with the module
}

void ZEMOMultiLayerManager::setGraphicsHookModule(HMODULE module) {
    const std::lock_guard lock(hookModulesMutex);
    if (module) hookModules.emplace_back(module);
    graphicsHookModule = module;
}

void ZEMOMultiLayerManager::subclassMainWindow() {
    const HWND window = mainWindow;
    const auto current = reinterpret_cast<WNDPROC>(GetWindowLongPtrW(window, GWLP_WNDPROC));
    // A second subclass would make the procedure its own predecessor.
    if (!current || current == &layerWindowProc) return;
    const WNDPROC before = previousWindowProc.exchange(current);
    const LONG_PTR replaced = SetWindowLongPtrW(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&layerWindowProc));
    previousWindowProc = replaced ? reinterpret_cast<WNDPROC>(replaced) : before;
}

void ZEMOMultiLayerManager::setMainWindow(HWND window) {
    mainWindow = window;
    mainWindowDestroyed = false;
}

void ZEMOMultiLayerManager::replaceLostMainWindow() {
    const std::lock_guard lock(mainWindowMutex);
    const HWND lost = mainWindow;
    if (!lost || (!mainWindowDestroyed && IsWindow(lost))) return;
    const HWND found = findMainWindow();
    if (!found) return;
    previousWindowProc = nullptr;
    setMainWindow(found);
    subclassMainWindow();
}

LRESULT CALLBACK ZEMOMultiLayerManager::layerWindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (runWindowThreadCalls(hwnd, message)) return 0;
    if (message == WM_DESTROY) ZEMOGraphicsHooker::instance().onGameWindowDestroyed(message, wParam, lParam);
    ZEMOMultiLayerManager& manager = instance();
    LRESULT result = 0;
    if (manager.dispatchMessage(&result, hwnd, message, wParam, lParam)) return result;
    const WNDPROC previous = manager.previousWindowProc;
    if (message == WM_NCDESTROY && hwnd == manager.mainWindow) manager.mainWindowDestroyed = true;
    return previous ? CallWindowProcW(previous, hwnd, message, wParam, lParam)
                    : DefWindowProcW(hwnd, message, wParam, lParam);
}

bool ZEMOMultiLayerManager::dispatchMessage(LRESULT* result, HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    std::shared_ptr<ILayer> layer;  // outlives the lock: the layer's end may be long
    if (isPrivateImeMessage(message)) {
        {
            const std::lock_guard lock(messageMutex);
            layer = topLayer();
        }
        if (layer) layer->handleMessage(result, hwnd, message, wParam, lParam);
        *result = 0;
        return true;
    }
    const std::lock_guard lock(messageMutex);
    if (layerCount.load(std::memory_order_acquire) != 0) layer = topLayer();
    if (layer) return layer->handleMessage(result, hwnd, message, wParam, lParam);
    if (carriesText(message)) Core::dropPostedText(lParam);  // nobody is there to take it
    return false;
}

void ZEMOMultiLayerManager::addLayer(std::weak_ptr<ILayer> layer) {
    std::vector<std::shared_ptr<ILayer>> inUse;  // a layer whose last reference this turns out to be ends unlocked
    const std::lock_guard lock(layersMutex);
    if (layers.empty()) {
        savedPriorityClass = GetPriorityClass(GetCurrentProcess());
        SetPriorityClass(GetCurrentProcess(), REALTIME_PRIORITY_CLASS);
        setXInputEnabled(false);
    }
    if (findLayer(layer.lock()) != layers.end()) return;
    appendLayer(layer);
    const bool keepHookFrame = !layers.empty();
    for (const std::weak_ptr<ILayer>& entry : layers) {
        if (const auto& alive = inUse.emplace_back(entry.lock())) alive->setVisible(false, keepHookFrame);
    }
    if (const auto& added = inUse.emplace_back(layer.lock())) added->setVisible(true, keepHookFrame);
}

void ZEMOMultiLayerManager::removeLayer(std::weak_ptr<ILayer> layer) {
    const std::shared_ptr<ILayer> removed = layer.lock();  // both end unlocked, should this be their last reference
    std::shared_ptr<ILayer> top;
    const std::lock_guard lock(layersMutex);
    if (const auto position = findLayer(removed); position != layers.end()) {
        eraseLayer(position);
        removed->setVisible(false, !layers.empty());
    }
    if (layers.empty()) {
        SetPriorityClass(GetCurrentProcess(), savedPriorityClass);
        setXInputEnabled(true);
    } else {
        top = layers.back().lock();
        if (top) top->setVisible(true, true);
    }
}

int32_t ZEMOMultiLayerManager::getLayerCount() {
    const std::lock_guard lock(layersMutex);
    return static_cast<int32_t>(layers.size());
}

void ZEMOMultiLayerManager::repaintMainWindow() {
    if (const HWND window = mainWindow) PostMessageW(window, WM_PAINT, 0, 0);
}

void ZEMOMultiLayerManager::setImeProcess(uint32_t kind, const std::u16string* text, const uint32_t* repeatCount,
                                          void*) {
    std::shared_ptr<ILayer> layer;  // ends unlocked, should this be its last reference
    const std::lock_guard lock(layersMutex);
    layer = topLayer();
    if (layer) layer->sendImeCommand(kind, text, repeatCount);
}

void ZEMOMultiLayerManager::processSteamDeckKeyboardClose() {
    if (const std::shared_ptr<ILayer> layer = topLayer()) layer->blurActiveElement();
    settings.setSteamDeckKeyboardShown(false);
}

void ZEMOMultiLayerManager::setSteamOverlayActiveStatus(bool active) {
    settings.setSteamOverlayActive(active);
    if (const std::shared_ptr<ILayer> layer = topLayer()) layer->setSteamOverlayActive(active);
}

std::shared_ptr<ILayer> ZEMOMultiLayerManager::topLayer() {
    const std::lock_guard lock(listAccess);
    return layers.empty() ? nullptr : layers.back().lock();
}

ZEMOMultiLayerManager::LayerList::iterator ZEMOMultiLayerManager::findLayer(const std::shared_ptr<ILayer>& layer) {
    if (!layer) return layers.end();
    return std::find_if(layers.begin(), layers.end(),
                        [&](const std::weak_ptr<ILayer>& entry) { return entry.lock() == layer; });
}

void ZEMOMultiLayerManager::appendLayer(std::weak_ptr<ILayer> layer) {
    const std::lock_guard lock(listAccess);
    layers.push_back(std::move(layer));
    layerCount.store(layers.size(), std::memory_order_release);
}

void ZEMOMultiLayerManager::eraseLayer(LayerList::iterator position) {
    const std::lock_guard lock(listAccess);
    layers.erase(position);
    layerCount.store(layers.size(), std::memory_order_release);
}

}  // namespace ZEMO::UI
