#pragma once

#include <mutex>

namespace ZEMO::Core {

/// Held while the library asks for or sets the runtime's locale: the text that tells it lives only until somebody sets
/// another one.
std::mutex& localeMutex();

/// The user's own language in UTF-8, whatever the locale was. Takes localeMutex. Any thread.
void setUserLocaleInUtf8();

}  // namespace ZEMO::Core
