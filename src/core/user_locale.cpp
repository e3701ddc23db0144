#include "core/user_locale.h"

#include <clocale>

namespace ZEMO::Core {

std::mutex& localeMutex() {
    static std::mutex oneAtATime;
    return oneAtATime;
}

void setUserLocaleInUtf8() {
    const std::lock_guard lock(localeMutex());
    std::setlocale(LC_ALL, ".UTF8");
}

}  // namespace ZEMO::Core
