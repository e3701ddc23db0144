#pragma once

#include <string>

// Addresses that a page uses to talk to the library; the engine never loads them.
namespace ZEMO::UI {

enum class SpecialUrl : int {
    Ordinary = 0,
    GamePadInit = 1,               ///< with the status that the game gave
    GamePadInitDefaultStatus = 2,  ///< the game gave none
    NativeClose = 3,
};

/// Classifies `url`. For both game pad results, `use` and `status` are set; `gameStatus` is what the game gave last.
SpecialUrl classifySpecialUrl(const std::string& url, const std::string& gameStatus, bool& use, std::string& status);

}  // namespace ZEMO::UI
