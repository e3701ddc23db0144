#pragma once

#include <atomic>
#include <memory>
#include <utility>
#include <vector>

#include "include/cef_request.h"
#include "zemo/web_content.h"

namespace ZEMO::UI {

/// The content items of one view, replaced as a whole by the caller's thread and read on the engine's IO thread: a
/// reader keeps the list that it took, whatever is set meanwhile.
class ContentItems {
public:
    using List = std::vector<std::shared_ptr<IZEMOWebContent>>;

    void set(List items) { current.store(std::make_shared<const List>(std::move(items))); }
    /// Never null.
    std::shared_ptr<const List> get() const { return current.load(); }

    /// Makes `request`, which is about to be sent, the POST of each item of kind 3 whose address it has, so that the
    /// last of equal items wins. The game's items are called. IO thread.
    void applyTo(const CefRefPtr<CefRequest>& request) const;

private:
    std::atomic<std::shared_ptr<const List>> current{std::make_shared<const List>()};
};

}  // namespace ZEMO::UI
