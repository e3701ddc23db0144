#include "engine/client/cef_handler.h"

#include "core/log.h"
#include "core/process_end.h"
#include "engine/client/close_browser_task.h"
#include "engine/client/frames/frame_consumer.h"
#include "engine/client/request/context_menu_handler.h"
#include "engine/client/script/javascript_processor.h"
#include "engine/engine_thread.h"
#include "include/cef_browser.h"
#include "layers/deck/on_screen_keyboard.h"
#include "layers/layer_manager.h"
#include "render/display_scale.h"

// The end of a view, in order: no frame is taken any more; the render thread ends; the browser reference is taken out
// of reach and a task closes that browser on the engine thread; the consumer hears that there is nothing left to show.
// The object itself lives on through the engine's references until the browser is gone. A browser that the engine
// creates after that point (the view was dropped right after show) is closed as it arrives.
namespace ZEMO::UI {

CefHandler::CefHandler(HWND viewWindow, WindowStyle style, bool closeButton, HMODULE hookModule, uint32_t sleepTime,
                       OsrFramePresentCallback framePresentCallback)
    : CefHandler(viewWindow, style, closeButton, sleepTime, [&](float scale) {
          return makeFrameConsumer(hookModule, sleepTime, std::move(framePresentCallback), scale, closeButton);
      }) {}

CefHandler::CefHandler(HWND viewWindow, WindowStyle style, bool closeButton, uint32_t sleepTime,
                       const ConsumerFactory& makeConsumer)
    : contextMenuHandler(new CefContextualMenuHandler),
      javascriptProcessor(std::make_shared<JavascriptProcessor>()),
      window(viewWindow),
      dpiScale(getWindowScale(viewWindow)),
      ime(viewWindow, dpiScale),
      input(viewWindow, dpiScale, [this](const CefRefPtr<CefBrowser>& shown) { ime.cancelImeComposition(shown); }),
      frames(viewWindow, dpiScale, closeButton, sleepTime, consumerForStyle(style, makeConsumer(dpiScale)),
             [this] { return getBrowser(); }) {
    frames.start();
    EngineClients::add(this);
}

CefHandler::~CefHandler() { EngineClients::remove(this); }

CefRefPtr<CefBrowser> CefHandler::getBrowser() {
    const std::lock_guard lock(browserMutex);
    return browser;
}

void CefHandler::letGoOfBrowser() {
    CefRefPtr<CefBrowser> closedBrowser;
    {
        const std::lock_guard lock(browserMutex);
        closedBrowser.swap(browser);
        javascriptProcessor->setBrowser(nullptr);
    }
    if (closedBrowser) CefPostTask(TID_UI, new CloseBrowserTask(closedBrowser));
}

void CefHandler::leaveEngine() {
    frames.markClosing();
    frames.stop();
    letGoOfBrowser();
}

void CefHandler::close() {
    if (Core::isProcessEnding()) {
        AddRef();  // Neither thread nor engine is there any more: the object is left to the end of the process.
        return;
    }
    frames.stop();
    ime.close();
    letGoOfBrowser();
    frames.finish(ZEMOMultiLayerManager::instance().getLayerCount() == 0);
    Core::logDebugA("html view is closed\n");
}

void CefHandler::OnAfterCreated(CefRefPtr<CefBrowser> created) {
    if (!CefCurrentlyOn(TID_UI)) return;
    EngineClients::browserCreated();
    {
        const std::lock_guard lock(browserMutex);
        if (!frames.isStopped()) {
            if (!browser) {
                browser = created;
                javascriptProcessor->setBrowser(created);
            }
            return;
        }
    }
    // The view was dropped before its browser came. Not closed here: the engine is still at work on the new browser.
    CefPostTask(TID_UI, new CloseBrowserTask(created));
}

void CefHandler::OnBeforeClose(CefRefPtr<CefBrowser> /*browser*/) {
    assert(isOnEngineThread());
    EngineClients::browserClosed();
    closeOnScreenKeyboard();  // nothing is left to type into
    if (closeWindow && !Core::isProcessEnding()) closeWindow();
}

}  // namespace ZEMO::UI
