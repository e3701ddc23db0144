#pragma once

#include <windows.h>

#include <imm.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "include/cef_browser.h"
#include "include/cef_render_handler.h"
#include "layers/ime/osr_ime_handler_win.h"

namespace ZEMO::UI {

/// Text input of one page: what the window's input method composes goes to the page, where the page shows it goes back
/// to the method's windows. A game that brings its own text service takes the method's place through callbacks.
///
/// Threads: the window's, unless an operation says otherwise. What begins on the engine thread gets there by a posted
/// message. A null browser makes an operation that takes one do nothing.
class PageIme {
public:
    using Browser = CefRefPtr<CefBrowser>;

    /// `dpiScale`: device pixels of the window for each logical pixel of the page. Any thread.
    PageIme(HWND window, float dpiScale);
    ~PageIme();
    PageIme(const PageIme&) = delete;
    PageIme& operator=(const PageIme&) = delete;

    // Messages of the window.
    void onImeSetContext();
    void onImeStartComposition();
    void onImeComposition(const Browser& browser, LPARAM flags);
    void onImeEndComposition(const Browser& browser);
    void onImeFocusChange(bool enable);
    void onImeBoundsChanged();
    bool onImeQueryCharPosition(IMECHARPOSITION* position);

    /// Ends what is being composed, where a press moves the caret.
    void cancelImeComposition(const Browser& browser);

    // The game's own text service. Any thread.
    void setImeProcess(const Browser& browser, uint32_t kind, const std::u16string* text, const uint32_t* repeatCount);
    void commitImeText(const Browser& browser, const std::string& utf8Text);

    // Engine thread.
    void onPasswordFieldFocus(const Browser& browser, bool focused);
    void onImeCompositionRangeChanged(const Browser& browser, const CefRange& range,
                                      const CefRenderHandler::RectList& characterBounds);
    /// The page's process died, without a word about its focus.
    void onPageGone(const Browser& browser);
    void onTextSelectionChanged(const Browser& browser, const CefRange& range);

    /// The end of the view: the window's input method is as it was before a password field had the focus. Any thread;
    /// does not wait for the window's. Nothing comes from the window any more.
    void close();

private:
    bool imeDisabled() const;
    /// `tag` names the message for the log.
    bool isImeBlocked(const char* tag);
    void closeImeOfPasswordField(const char* tag);
    bool isClosed();
    std::vector<CefRect> copyBounds(CefRange* range = nullptr);
    void post(UINT message, WPARAM wParam) const;
    void reportBounds(const Browser& browser, const std::vector<CefRect>& bounds) const;

    const HWND window;
    const float dpiScale;

    // Shared between threads.
    std::mutex imeBoundsMutex;  ///< guards the next two; never held during a call of the system or the engine
    CefRange compositionRange;
    std::vector<CefRect> compositionBounds;  ///< window pixels
    std::atomic<int> imeReopenCount{0};      ///< forced closes for one password field
    std::mutex closeMutex;                   ///< no password focus is noted after the end
    bool closed = false;

    bool passwordFocused = false;  ///< engine thread: the page's last report

    // Window's thread; what it wrote is read once more by close, after the last message.
    std::unique_ptr<OsrImeHandlerWin> imeHandler;
    bool imeCancelling = false;       ///< a composition is being ended
    bool imeOpenStatusSaved = false;  ///< imeSavedOpenStatus holds a value to restore
    bool imeSavedOpenStatus = false;
    bool imeFocusChanging = false;
    POINT lastCaretPoint{-1, -1};  ///< screen pixels
};

}  // namespace ZEMO::UI
