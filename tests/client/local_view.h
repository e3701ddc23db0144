#pragma once

#include <mutex>

#include "client/client_view.h"
#include "support/shown_pictures.h"

namespace ZEMO::Test {

/// What the engine hands over for one view, kept whole: the picture that the view's window must show.
class EngineFrames {
public:
    void paint(CefRenderHandler::PaintElementType type, const void* buffer, int width, int height);
    void popupShown(bool shown);
    /// Device pixels.
    void popupPlaced(const CefRect& rect);

    /// Page and open popup over the plain background. Of a popup that reaches past an edge this has what the view has.
    ShownPicture expected() const;
    /// What the engine's own frame has at this place.
    uint32_t pixel(int x, int y) const;
    bool popupPainted() const;
    size_t viewPaints() const;
    size_t popupPaints() const;
    /// The kinds of paints in order: V and P.
    std::string order() const;

private:
    struct Image {
        int width = 0, height = 0;
        std::vector<uint32_t> pixels;
    };
    mutable std::mutex access;
    Image view, popup;
    CefRect popupRect;
    bool popupVisible = false;
    std::string paints;
};

/// A browser client on the game's window that the library draws itself, with neither hook nor present callback, and
/// with a real browser behind it.
class LocalView {
public:
    struct Options {
        ZEMO::UI::WindowStyle style = ZEMO::UI::WindowStyle::Layer;
        bool closeButton = false;
    };
    LocalView(GameHost& host, const std::string& address) : LocalView(host, address, Options{}) {}
    LocalView(GameHost& host, const std::string& address, Options options);
    ~LocalView();

    CefRefPtr<CefBrowserHost> browserHost() { return adapter->getBrowser()->GetHost(); }
    /// Logical pixels of the page.
    void click(int x, int y);
    /// Waits until the window's newest picture is the engine's newest frame over the background, with the close icon if
    /// there is one: equal where the page is opaque or clear, within one step where it is blended, within two in the
    /// icon's square.
    bool waitForPicture(const char* what, const std::function<bool()>& holds);

    const std::shared_ptr<EngineFrames> frames = std::make_shared<EngineFrames>();
    std::shared_ptr<NavigationRecorder> events = std::make_shared<NavigationRecorder>();
    CefRefPtr<ZEMO::UI::CefAdapter> adapter;
    ShownPictures pictures;

private:
    std::string difference() const;
    std::shared_ptr<ZEMO::UI::IZEMOWebView> facade = ZEMO::UI::createWebViewDefault();
    GameHost& game;
    const bool closeButton;
};

}  // namespace ZEMO::Test
