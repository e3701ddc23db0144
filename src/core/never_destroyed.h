#pragma once

#include <utility>

namespace ZEMO::Core {

/// A T whose destructor never runs. Make it static: for what threads, windows or a game's static objects may still use
/// when this module's static objects go, and for what nobody may touch any more once the other threads are gone.
/// Construction is that of T, in place; a global without arguments is there before any code runs where T's is.
template <class T>
class NeverDestroyed {
public:
    template <class... Arguments>
    constexpr explicit NeverDestroyed(Arguments&&... arguments) : object(std::forward<Arguments>(arguments)...) {}
    ~NeverDestroyed() {}  // a member of a union is not destroyed by itself
    NeverDestroyed(const NeverDestroyed&) = delete;
    NeverDestroyed& operator=(const NeverDestroyed&) = delete;

    T& operator*() { return object; }
    T* operator->() { return &object; }

private:
    union {
        T object;
    };
};

/// Lets go of `value` and leaves what it owns as it is, for the rest of the process: neither joined, closed nor freed.
/// For what a thread that the system has ended may have been at work on.
template <class T>
void leaveUndestroyed(T value) {
    const NeverDestroyed<T> left(std::move(value));
}

}  // namespace ZEMO::Core
