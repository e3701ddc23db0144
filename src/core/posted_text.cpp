#include "core/posted_text.h"

#include <utility>

#include "core/never_destroyed.h"
#include "core/process_end.h"
#include "core/texts_under_way.h"

namespace ZEMO::Core {
namespace {

// Windows outlive static objects and go on taking their messages.
TextsUnderWay& textsUnderWay() {
    static NeverDestroyed<TextsUnderWay> texts(
        [](const void* window) { return !IsWindow(static_cast<HWND>(const_cast<void*>(window))); });
    return *texts;
}

}  // namespace

bool postText(HWND window, UINT message, std::string text) {
    // A message for no window would go to the calling thread, which has no procedure that could take it.
    if (!window || isShutdownInProgress()) return false;
    const void* const address = textsUnderWay().put(window, std::move(text));
    // Under way before the post: the receiver may be there before PostMessage returns.
    if (PostMessageW(window, message, 0, reinterpret_cast<LPARAM>(address))) return true;
    textsUnderWay().take(address);
    return false;
}

std::optional<std::string> takePostedText(LPARAM lParam) {
    if (lParam == 0 || isShutdownInProgress()) return {};
    return textsUnderWay().take(reinterpret_cast<const void*>(lParam));
}

void dropPostedText(LPARAM lParam) { takePostedText(lParam); }

}  // namespace ZEMO::Core
