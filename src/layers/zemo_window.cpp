#include "layers/zemo_window.h"

#include "layers/cursor_restore.h"
#include "layers/messages/window_message.h"

namespace ZEMO::UI {

ZEMOWindow::ZEMOWindow(const char* name, WindowStyle style, Size size, HWND parent, bool hasFrameConsumer,
                       bool onSteamDeck, bool hasSteamOverlay)
    : parentWindow(parent),
      title(name),
      windowStyle(style),
      width(size.width),
      height(size.height),
      frameConsumerActive(hasFrameConsumer),
      steamDeck(onSteamDeck),
      steamOverlayActive(hasSteamOverlay) {
    if (windowStyle == WindowStyle::Layer) {
        window = parentWindow;
        customCursor = customCursorLoader.load();
    } else {
        createOwnWindow();
    }
    CursorRestore::addUser(parentWindow);
}

ZEMOWindow::~ZEMOWindow() {
    if (ownWindow) ownWindow->clearUserData();
    CursorRestore::removeUser();
    if (window) InvalidateRect(window, nullptr, TRUE);
    viewChild.reset();
    closeButtonShown = nullptr;
    closeButton.reset();
}

void ZEMOWindow::createCloseButton(std::function<void()> callback) {
    if (closeButton) return;
    std::unique_ptr<IXbtn> button = makeCloseButton();
    RECT client{};
    GetClientRect(window, &client);
    button->onResize(client);
    button->setClickCallback(std::move(callback));
    closeButton = std::move(button);
    closeButtonShown.store(closeButton.get(), std::memory_order_release);
}

std::function<void()> ZEMOWindow::ownWindowCloser() const {
    if (!ownWindow) return nullptr;
    return [link = ownWindow, target = getViewWindowHandle()] { link->postClose(target); };
}

void ZEMOWindow::clickCloseButton() {
    if (IXbtn* button = closeButtonIfShown()) button->click();
}

bool ZEMOWindow::isOnCloseButton(const WindowMessage& m) const {
    IXbtn* button = closeButtonIfShown();
    return button && button->hitTest(m.cursor(), m.client());
}

void ZEMOWindow::setViewChild(std::shared_ptr<ZEMOExtraWindowForSteamdeck> child, HWND childWindow) {
    viewChild = std::move(child);
    viewChildWindow = childWindow;
}

}  // namespace ZEMO::UI
