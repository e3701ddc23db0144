#pragma once

#include <future>
#include <memory>
#include <string>

namespace ZEMO::UI {

/// One deletion of cookies, as one blocking call: made with std::make_shared for each, and dropped after it. All views
/// share the engine's one cookie store.
class CefContextHandler : public std::enable_shared_from_this<CefContextHandler> {
public:
    /// Deletes every cookie whose domain contains `text` (all of them for an empty one), and returns when the engine
    /// has gone through them. False when they can't be reached: there is no engine, it has ended, or this is its own
    /// thread, which would wait for itself. A second call on one object throws std::future_error. Any other thread.
    bool deleteCookies(const std::string& text);

private:
    class ZemoVisitor;

    std::promise<void> finished;  ///< kept when the engine has dropped the visitor
    std::string url;              ///< the text to look for
};

}  // namespace ZEMO::UI
