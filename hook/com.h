#pragma once

#include <utility>

namespace ZEMO::GraphicsHook {

/// Owns one reference of a COM object.
template <class Interface>
class Com {
public:
    Com() = default;
    Com(Com&& other) noexcept : object(std::exchange(other.object, nullptr)) {}
    Com& operator=(Com&& other) noexcept {
        std::swap(object, other.object);
        return *this;
    }
    ~Com() {
        if (object) object->Release();
    }

    Interface* get() const { return object; }
    Interface* operator->() const { return object; }
    explicit operator bool() const { return object != nullptr; }
    Interface* const* list() const { return &object; }
    /// For calls that hand an object out; null before.
    Interface** put() { return &object; }
    void** putVoid() { return reinterpret_cast<void**>(&object); }

private:
    Interface* object = nullptr;
};

}  // namespace ZEMO::GraphicsHook
