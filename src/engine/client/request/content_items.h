#pragma once

#include <atomic>
#include <memory>
#include <utility>
#include <vector>

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

private:
    std::atomic<std::shared_ptr<const List>> current{std::make_shared<const List>()};
};

}  // namespace ZEMO::UI
