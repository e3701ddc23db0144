#pragma once

#include <string>
#include <string_view>

namespace ZEMO::Core {

/// `text` as JSON text, as a page's own JSON.stringify has it: short escapes where there are some, and a surrogate
/// without its partner as an escape. Any thread.
std::u16string jsonQuoted(std::u16string_view text);

}  // namespace ZEMO::Core
