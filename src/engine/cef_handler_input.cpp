#include "engine/cef_handler.h"

// The way of input and composed text to the page. The window side calls these already; they send nothing yet.
namespace ZEMO::UI {

void CefHandler::sendMouseClick(int /*button*/, bool /*mouseUp*/, int /*x*/, int /*y*/) {}
void CefHandler::sendMouseMove(int /*x*/, int /*y*/, uint32_t /*modifiers*/) {}
void CefHandler::sendMouseWheel(WPARAM /*wParam*/, int /*x*/, int /*y*/, bool /*horizontal*/,
                                bool /*clientCoordinates*/) {}
void CefHandler::sendKey(UINT /*message*/, WPARAM /*wParam*/, LPARAM /*lParam*/) {}
void CefHandler::sendTouch(uint32_t /*id*/, int /*x*/, int /*y*/, UINT /*pointerMessage*/) {}

void CefHandler::commitImeText(const std::string& /*utf8Text*/) {}
void CefHandler::setImeProcess(uint32_t /*kind*/, const std::u16string* /*text*/, const uint32_t* /*repeatCount*/) {}
void CefHandler::onImeSetContext() {}
void CefHandler::onImeStartComposition() {}
void CefHandler::onImeComposition(LPARAM /*flags*/) {}
void CefHandler::onImeEndComposition() {}
void CefHandler::onImeFocusChange(bool /*enable*/) {}
void CefHandler::onImeBoundsChanged() {}
bool CefHandler::onImeQueryCharPosition(IMECHARPOSITION* /*position*/) { return false; }
void CefHandler::cancelImeComposition() {}

}  // namespace ZEMO::UI
