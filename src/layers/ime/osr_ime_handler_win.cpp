// The system's input method manager, driven for one window. Order of one composition: the window's context comes with
// the focus, which sets language and caret; a start forgets what was; each composition message is read and placed; a
// result or the end of it leaves nothing behind. Where the characters lie is only known later, from the page, and moves
// the windows once more. All of it reads the context anew: a focus change of the page may take it away in between.
#include "layers/ime/osr_ime_handler_win.h"

#include <utility>

#include "layers/ime/ime_placement.h"
#include "layers/ime/imm_context.h"

namespace ZEMO::UI {
namespace {

constexpr uint16_t kEnglishUnitedStates = 0x0409;

}  // namespace

OsrImeHandlerWin::OsrImeHandlerWin(HWND imeWindow) : window(imeWindow) {}

OsrImeHandlerWin::~OsrImeHandlerWin() {
    // The caret is the thread's: on any other one this would be somebody else's, and the window's went with it.
    if (systemCaret && GetWindowThreadProcessId(window, nullptr) == GetCurrentThreadId()) DestroyCaret();
}

void OsrImeHandlerWin::enableIme() { ImmAssociateContextEx(window, nullptr, IACE_DEFAULT); }

void OsrImeHandlerWin::disableIme() {
    completeIfComposing();
    ImmAssociateContextEx(window, nullptr, 0);
}

void OsrImeHandlerWin::cancelIme() { notifyIfComposing(CPS_CANCEL); }

void OsrImeHandlerWin::completeIfComposing() { notifyIfComposing(CPS_COMPLETE); }

void OsrImeHandlerWin::notifyIfComposing(DWORD compositionAction) {
    if (!composing) return;
    const ImmContext context(window);
    if (!context) return;
    ImmNotifyIME(context.get(), NI_COMPOSITIONSTR, compositionAction, 0);
    resetComposition();
}

void OsrImeHandlerWin::resetComposition() {
    composing = false;
    cursorIndex = -1;
}

void OsrImeHandlerWin::setInputLanguage() {
    wchar_t name[KL_NAMELENGTH] = {};
    languageId = GetKeyboardLayoutNameW(name) ? languageIdOfLayoutName(name) : kEnglishUnitedStates;
}

void OsrImeHandlerWin::createImeCaret() {
    const uint16_t language = primaryImeLanguage(languageId);
    if (language != kImeChinese && language != kImeJapanese) return;
    if (!systemCaret) systemCaret = CreateCaret(window, nullptr, 1, 1) != FALSE;
}

void OsrImeHandlerWin::destroyImeCaret() {
    if (std::exchange(systemCaret, false)) DestroyCaret();
}

bool OsrImeHandlerWin::getResult(LPARAM flags, std::wstring& text) {
    const ImmContext context(window);
    return context && readCompositionString(context, flags, GCS_RESULTSTR, text);
}

bool OsrImeHandlerWin::getComposition(LPARAM flags, std::wstring& text, CompositionUnderlines& underlines,
                                      int& cursor) {
    const ImmContext context(window);
    if (!context || !readCompositionString(context, flags, GCS_COMPSTR, text)) return false;
    fillCompositionInfo(context, flags, text, underlines, cursor);
    composing = true;
    return true;
}

void OsrImeHandlerWin::setCompositionBounds(const CefRange& range, std::vector<CefRect> bounds) {
    compositionRange = range;
    compositionBounds = std::move(bounds);
}

void OsrImeHandlerWin::moveImeWindow() {
    if (GetFocus() != window) return;
    const std::optional<CefRect> character = imeCharacter(cursorIndex, compositionRange, compositionBounds);
    if (!character) return;
    const ImmContext context(window);
    if (!context) return;
    ImePlacement place = placeImeWindows(*character, primaryImeLanguage(languageId));
    if (place.composition) ImmSetCompositionWindow(context.get(), &*place.composition);
    ImmSetCandidateWindow(context.get(), &place.candidate);
    if (systemCaret) SetCaretPos(place.caret.x, place.caret.y);
    ImmSetCandidateWindow(context.get(), &place.exclude);
}

}  // namespace ZEMO::UI
