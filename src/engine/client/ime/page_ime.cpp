// Order of events. The window hears of the focus (set context), then start, compositions and end of one text; each is
// read from the window's input context and sent to the page. The page answers on the engine thread with the places of
// its characters, which travel back by a posted message and move the method's windows. A password field is reported by
// the page's process; a posted message then closes the method and takes the window's input context away, and the next
// one gives both back. The end of the view gives them back too, on the window's thread, whichever thread ends it.
#include "engine/client/ime/page_ime.h"

#include <algorithm>
#include <utility>

#include "core/log.h"
#include "core/process_state.h"
#include "layers/ime/imm_context.h"
#include "layers/window_messages.h"
#include "layers/window_thread_calls.h"
#include "render/pixel_scale.h"

namespace ZEMO::UI {
namespace {

/// So often an input method that opens in a password field is closed again; then it is left to itself.
constexpr int kMostForcedCloses = 8;

// Kinds of the game's text service, and of what it hears.
enum ImeCommand : uint32_t { kCancel = 0, kCompose = 1, kCommit = 2 };
enum ImeEvent { kSelectionChanged = 1, kCancelAsked = 2, kPasswordFocus = 3 };

void setOpenStatus(HWND window, bool open) {
    const ImmContext context(window);
    if (context) ImmSetOpenStatus(context.get(), open);
}

void notifyService(ImeEvent event, const CefRefPtr<CefBrowser>& browser, int a, int b) {
    if (const auto callback = getImeEventCallback()) callback(event, browser->GetIdentifier(), a, b);
}

void sendBackspace(const CefRefPtr<CefBrowserHost>& host) {
    CefKeyEvent key;
    key.type = KEYEVENT_RAWKEYDOWN;
    key.windows_key_code = VK_BACK;
    key.native_key_code = 0xE0001;
    host->SendKeyEvent(key);
    key.type = KEYEVENT_KEYUP;
    key.native_key_code = static_cast<int>(0xC00E0001);
    host->SendKeyEvent(key);
}

CefRange rangeOfLength(uint32_t start, size_t length) { return {start, start + static_cast<uint32_t>(length)}; }

CefRect toDevice(const CefRect& logical, float scale) {
    Rect device;
    logicalToDeviceRect(device, Rect{logical.x, logical.y, logical.width, logical.height}, scale);
    return {device.x, device.y, device.width, device.height};
}

}  // namespace

PageIme::PageIme(HWND viewWindow, float scale)
    : window(viewWindow), dpiScale(scale), imeHandler(std::make_unique<OsrImeHandlerWin>(viewWindow)) {}

PageIme::~PageIme() = default;

void PageIme::post(UINT message, WPARAM wParam) const {
    if (IsWindow(window)) PostMessageW(window, message, wParam, 0);
}

bool PageIme::imeDisabled() const { return isExternalTsfImeUsed() || imeCancelling; }

bool PageIme::isImeBlocked(const char* tag) {
    if (!isPasswordFieldFocused()) return false;
    if (!imeFocusChanging && imeReopenCount < kMostForcedCloses) closeImeOfPasswordField(tag);
    return true;
}

void PageIme::closeImeOfPasswordField(const char* tag) {
    const ImmContext context(window);
    if (!context || !ImmGetOpenStatus(context.get())) return;
    ++imeReopenCount;
    Core::logDebugA("input method closed in a password field: %s\n", tag);
    post(kMessageImeFocus, 0);
}

void PageIme::onImeSetContext() {
    if (imeDisabled() || isImeBlocked("imeSetContext") || !imeHandler) return;
    imeHandler->setInputLanguage();
    imeHandler->createImeCaret();
    imeHandler->moveImeWindow();
}

void PageIme::onImeStartComposition() {
    if (imeDisabled() || isImeBlocked("imeStartComposition") || !imeHandler) return;
    imeHandler->setInputLanguage();
    imeHandler->createImeCaret();
    imeHandler->moveImeWindow();
    imeHandler->resetComposition();
}

void PageIme::onImeEndComposition(const Browser& browser) {
    if (imeDisabled() || !browser || !imeHandler) return;
    browser->GetHost()->ImeCancelComposition();
    imeHandler->resetComposition();
    imeHandler->destroyImeCaret();
}

void PageIme::onImeComposition(const Browser& browser, LPARAM flags) {
    if (imeDisabled() || !browser || !imeHandler) return;
    const CefRefPtr<CefBrowserHost> host = browser->GetHost();
    std::wstring text;
    if (imeHandler->getResult(flags, text)) {
        host->ImeCommitText(text, CefRange::InvalidRange(), 0);
        imeHandler->resetComposition();
    }
    CompositionUnderlines underlines;
    int cursor = 0;
    if (imeHandler->getComposition(flags, text, underlines, cursor)) {
        host->ImeSetComposition(text, underlines, CefRange::InvalidRange(),
                                rangeOfLength(static_cast<uint32_t>(cursor), text.size()));
        imeHandler->setCursorIndex(cursor - 1);
        imeHandler->moveImeWindow();
        return;
    }
    onImeEndComposition(browser);
}

void PageIme::onImeFocusChange(bool enable) {
    if (!imeHandler) return;
    imeFocusChanging = true;
    if (enable) {
        imeHandler->enableIme();
        if (std::exchange(imeOpenStatusSaved, false)) setOpenStatus(window, imeSavedOpenStatus);
    } else {
        imeHandler->completeIfComposing();
        if (const ImmContext context(window); context) {
            if (!std::exchange(imeOpenStatusSaved, true)) imeSavedOpenStatus = ImmGetOpenStatus(context.get()) != FALSE;
            ImmSetOpenStatus(context.get(), FALSE);
        }
        imeHandler->disableIme();
    }
    imeFocusChanging = false;
}

std::vector<CefRect> PageIme::copyBounds(CefRange* range) {
    const std::lock_guard lock(imeBoundsMutex);
    if (range) *range = compositionRange;
    return compositionBounds;
}

void PageIme::onImeBoundsChanged() {
    if (!imeHandler) return;
    CefRange range;
    std::vector<CefRect> bounds = copyBounds(&range);
    if (bounds.empty()) return;
    imeHandler->setCompositionBounds(range, std::move(bounds));
    imeHandler->moveImeWindow();
    imeHandler->setCursorIndex(static_cast<int>(range.to > range.from ? range.to - 1 : range.from));
    imeHandler->moveImeWindow();
}

bool PageIme::onImeQueryCharPosition(IMECHARPOSITION* position) {
    if (!position || position->dwSize < sizeof *position || !IsWindow(window) || isPasswordFieldFocused()) return false;
    const std::vector<CefRect> bounds = copyBounds();
    if (bounds.empty()) return false;
    const CefRect& character = bounds[std::min<size_t>(position->dwCharPos, bounds.size() - 1)];
    position->pt = {character.x, character.y};
    ClientToScreen(window, &position->pt);
    position->cLineHeight = static_cast<UINT>(character.height);
    RECT& document = position->rcDocument;
    GetClientRect(window, &document);
    // Each corner by itself: the same rule as for the character.
    POINT corners[] = {{document.left, document.top}, {document.right, document.bottom}};
    for (POINT& corner : corners) ClientToScreen(window, &corner);
    document = {corners[0].x, corners[0].y, corners[1].x, corners[1].y};
    lastCaretPoint = position->pt;
    return true;
}

void PageIme::cancelImeComposition(const Browser& browser) {
    if (!browser) return;
    if (isExternalTsfImeUsed()) return notifyService(kCancelAsked, browser, 0, 0);
    if (!imeHandler || !imeHandler->isComposing()) return;
    imeCancelling = true;
    browser->GetHost()->ImeFinishComposingText(false);
    imeHandler->cancelIme();
    imeHandler->destroyImeCaret();
    imeCancelling = false;
}

void PageIme::setImeProcess(const Browser& browser, uint32_t kind, const std::u16string* text,
                            const uint32_t* repeatCount) {
    if (!browser) return;
    const CefRefPtr<CefBrowserHost> host = browser->GetHost();
    if (kind == kCancel) host->ImeCancelComposition();
    if (kind == kCompose && text) {
        for (uint32_t i = 0; repeatCount && i < *repeatCount; ++i) sendBackspace(host);
        host->ImeSetComposition(CefString(*text), {}, CefRange::InvalidRange(), rangeOfLength(0, text->size()));
    }
    if (kind == kCommit && text) host->ImeCommitText(CefString(*text), CefRange::InvalidRange(), 0);
}

void PageIme::commitImeText(const Browser& browser, const std::string& utf8Text) {
    if (browser) browser->GetHost()->ImeCommitText(utf8Text, CefRange::InvalidRange(), 0);
}

void PageIme::onPasswordFieldFocus(const Browser& browser, bool focused) {
    {
        const std::lock_guard lock(closeMutex);
        if (closed) return;  // the page may have sent it before it heard of the end
        setPasswordFieldFocused(focused);
        imeReopenCount = 0;
    }
    passwordFocused = focused;
    post(kMessageImeFocus, focused ? 0 : 1);
    notifyService(kPasswordFocus, browser, focused ? 1 : 0, 0);
}

void PageIme::onPageGone(const Browser& browser) {
    if (passwordFocused) onPasswordFieldFocus(browser, false);
}

void PageIme::onImeCompositionRangeChanged(const Browser& browser, const CefRange& range,
                                           const CefRenderHandler::RectList& characterBounds) {
    std::vector<CefRect> bounds;
    bounds.reserve(characterBounds.size());
    for (const CefRect& character : characterBounds) bounds.push_back(toDevice(character, dpiScale));
    if (!isExternalTsfImeUsed() && !isClosed()) {
        {
            const std::lock_guard lock(imeBoundsMutex);
            compositionRange = range;
            compositionBounds = bounds;
        }
        post(kMessageImeBounds, 0);
    }
    reportBounds(browser, bounds);
}

void PageIme::reportBounds(const Browser& browser, const std::vector<CefRect>& bounds) const {
    const auto callback = getImeCompositionBoundsCallback();
    if (!callback) return;
    std::vector<Rect> onScreen;
    onScreen.reserve(bounds.size());
    for (const CefRect& character : bounds) {
        POINT corner{character.x, character.y};
        ClientToScreen(window, &corner);
        onScreen.push_back({corner.x, corner.y, character.width, character.height});
    }
    callback(browser->GetIdentifier(), onScreen.empty() ? nullptr : onScreen.data(),
             static_cast<uint32_t>(onScreen.size()));
}

void PageIme::onTextSelectionChanged(const Browser& browser, const CefRange& range) {
    notifyService(kSelectionChanged, browser, static_cast<int>(range.from), static_cast<int>(range.to));
}

bool PageIme::isClosed() {
    const std::lock_guard lock(closeMutex);
    return closed;
}

void PageIme::close() {
    {
        const std::lock_guard lock(closeMutex);
        if (std::exchange(closed, true)) return;
        setPasswordFieldFocused(false);
    }
    // The handler ends on the window's thread, with the method as it was; a window that is gone has nothing to restore.
    std::shared_ptr<OsrImeHandlerWin> ending = std::move(imeHandler);
    callOnWindowThread(window, [ending, viewWindow = window, restore = std::exchange(imeOpenStatusSaved, false),
                                open = imeSavedOpenStatus] {
        ending->enableIme();
        if (restore) setOpenStatus(viewWindow, open);
    });
}

}  // namespace ZEMO::UI
