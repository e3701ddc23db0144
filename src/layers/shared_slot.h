#pragma once

#include <atomic>
#include <memory>
#include <utility>

namespace ZEMO::UI {

/// A value that the game's threads set at any time while the engine's read it. get() is a copy of one whole value, old
/// or new; nothing is held while the value's own code (a callback) runs. T{} until the first set.
template <class T>
class SharedSlot {
public:
    void set(T value) { current.store(std::make_shared<const T>(std::move(value))); }
    /// Only the first call has an effect.
    void setOnce(T value) {
        std::shared_ptr<const T> none;
        current.compare_exchange_strong(none, std::make_shared<const T>(std::move(value)));
    }
    T get() const {
        const std::shared_ptr<const T> held = current.load();
        return held ? *held : T{};
    }

private:
    std::atomic<std::shared_ptr<const T>> current;
};

}  // namespace ZEMO::UI
