#pragma once

#include <windows.h>

#include <cstdlib>
#include <memory>

namespace ZEMO::Core {

/// One process-wide T, made on first use by whichever thread comes first and deleted with the library's static objects.
/// A failure of that one step has no recovery: it ends the process.
template <class T>
class Singleton {
public:
    static T& instance() {
        static INIT_ONCE once = INIT_ONCE_STATIC_INIT;
        static std::unique_ptr<T> object;
        BOOL pending = FALSE;
        if (!InitOnceBeginInitialize(&once, 0, &pending, nullptr)) std::abort();
        if (pending) {
            try {
                object.reset(new T);
            } catch (...) {
                std::abort();
            }
            if (!InitOnceComplete(&once, 0, nullptr)) std::abort();
        }
        return *object;
    }

    Singleton(const Singleton&) = delete;
    Singleton& operator=(const Singleton&) = delete;

protected:
    Singleton() = default;
    ~Singleton() = default;
};

}  // namespace ZEMO::Core
