#pragma once

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

#include "layers/ime/composition_reader.h"

namespace ZEMO::UI {

/// The input method of one window, for a page that has no window of its own: reads what the user composes, and keeps
/// the method's windows at the page's caret.
///
/// Thread: the window's, also the destructor, but for construction. Each operation that needs the window's input
/// context does nothing when there is none.
class OsrImeHandlerWin {
public:
    explicit OsrImeHandlerWin(HWND imeWindow);
    virtual ~OsrImeHandlerWin();
    /// The window gets its default input context back.
    virtual void enableIme();
    /// Completes what is being composed, then takes the input context away.
    virtual void disableIme();
    virtual void cancelIme();
    OsrImeHandlerWin(const OsrImeHandlerWin&) = delete;
    OsrImeHandlerWin& operator=(const OsrImeHandlerWin&) = delete;

    void completeIfComposing();
    void resetComposition();
    /// From the first composition string to a result, an end or a cancel.
    bool isComposing() const { return composing; }

    void setInputLanguage();
    /// Chinese and Japanese methods look for a caret of the system's to find their place.
    void createImeCaret();
    void destroyImeCaret();

    // `flags` is the lParam of WM_IME_COMPOSITION. False when the message has no such text.
    bool getResult(LPARAM flags, std::wstring& text);
    bool getComposition(LPARAM flags, std::wstring& text, CompositionUnderlines& underlines, int& cursor);

    /// `bounds`: one rectangle for each character of `range`, in client pixels. Moves nothing yet.
    void setCompositionBounds(const CefRange& range, std::vector<CefRect> bounds);
    /// The character that the windows belong to, in the page's count; -1 for the beginning of the range.
    void setCursorIndex(int index) { cursorIndex = index; }
    /// Places composition and candidate windows; nothing while the window has no focus.
    void moveImeWindow();

private:
    void notifyIfComposing(DWORD compositionAction);

    bool composing = false;
    std::vector<CefRect> compositionBounds;
    uint16_t languageId = LANG_USER_DEFAULT;
    bool systemCaret = false;
    int cursorIndex = -1;
    CefRange compositionRange;
    HWND window;
};

}  // namespace ZEMO::UI
