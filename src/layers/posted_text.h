#pragma once

#include <windows.h>

#include <memory>
#include <string>

// A text that rides in a posted window message. The sender gives it up with a successful post and frees it when the
// post fails; the receiver takes it exactly once. These two functions are the only places that know.
namespace ZEMO::UI {

/// Posts `text` to `window` as `message`. False when the post failed; the text is freed then.
inline bool postText(HWND window, UINT message, std::string text) {
    auto owned = std::make_unique<std::string>(std::move(text));
    if (!PostMessageW(window, message, 0, reinterpret_cast<LPARAM>(owned.get()))) return false;
    owned.release();  // the receiver's now
    return true;      // NOLINT(clang-analyzer-cplusplus.NewDeleteLeaks)
}

/// The receiver's end: takes over the text of a message's lParam. Empty for an lParam of 0.
inline std::shared_ptr<std::string> takePostedText(LPARAM lParam) {
    return std::shared_ptr<std::string>(reinterpret_cast<std::string*>(lParam));
}

}  // namespace ZEMO::UI
