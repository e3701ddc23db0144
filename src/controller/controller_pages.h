#pragma once

#include <filesystem>
#include <optional>
#include <unordered_map>
#include <utility>

// The pages that are operated with a game controller. Any thread: the table never changes.
namespace ZEMO::UI {

/// What a page of the table gets.
struct ControllerPage {
    /// The common files come from the custom scheme, for pages that have no folder of their own; else from the folder
    /// two levels above the page.
    bool useCustomSchemeBase = false;
    bool useFocusStyle = false;  ///< the focus style sheet, beside that of the key hints
};

using ControllerPageTable = std::unordered_map<std::filesystem::path, std::pair<bool, bool>>;

/// Page path to (useCustomSchemeBase, useFocusStyle). Never destroyed: a page may start while the process ends.
extern const ControllerPageTable& kGameControllerPageTable;

/// The row whose path occurs in `url`, both resolved as far as they exist on disk; none when the path can't be read.
std::optional<ControllerPage> findControllerPage(const std::filesystem::path& url);

}  // namespace ZEMO::UI
