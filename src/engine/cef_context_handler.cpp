#include "engine/cef_context_handler.h"

#include <cassert>
#include <utility>

#include "core/log.h"
#include "core/process_end.h"
#include "engine/engine_thread.h"
#include "include/cef_cookie.h"
#include "include/cef_task.h"

namespace ZEMO::UI {

/// The engine drops it after the last cookie, at once when there is none, and when the visit fails: its end is the one
/// signal that always comes. Engine thread.
class CefContextHandler::ZemoVisitor : public CefCookieVisitor {
public:
    // Held until the signal is given: the waiter may drop the object the moment it wakes.
    explicit ZemoVisitor(std::shared_ptr<CefContextHandler> deletion) : context(std::move(deletion)) {}
    ~ZemoVisitor() override { context->finished.set_value(); }

    bool Visit(const CefCookie& cookie, int /*count*/, int /*total*/, bool& deleteCookie) override {
        assert(isOnEngineThread());
        const std::string domain = CefString(&cookie.domain);
        if (domain.find(context->url) != std::string::npos) deleteCookie = true;
        return true;
    }

private:
    const std::shared_ptr<CefContextHandler> context;
    IMPLEMENT_REFCOUNTING(ZemoVisitor);
};

bool CefContextHandler::deleteCookies(const std::string& text) {
    if (CefCurrentlyOn(TID_UI)) {
        Core::logDebugA("cookies can't be deleted on the engine's own thread\n");
        return false;
    }
    if (Core::isProcessEnding()) return false;  // nobody would visit them any more
    const CefRefPtr<CefCookieManager> manager = CefCookieManager::GetGlobalManager(nullptr);
    if (!manager) return false;
    const std::future<void> end = finished.get_future();
    url = text;
    const bool visited = manager->VisitAllCookies(new ZemoVisitor(shared_from_this()));
    end.wait();
    return visited;
}

}  // namespace ZEMO::UI
