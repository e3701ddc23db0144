#include "engine/client/cef_handler.h"

// The way of composed text to the page. The window side calls these already; they send nothing yet.
namespace ZEMO::UI {

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
