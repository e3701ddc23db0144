#pragma once

#include <cstddef>
#include <functional>
#include <type_traits>
#include <utility>

/// Shared pointer to an object that counts its own references (AddRef and Release).
template <class T>
class scoped_refptr {
public:
    typedef T element_type;

    constexpr scoped_refptr() noexcept = default;
    constexpr scoped_refptr(std::nullptr_t) noexcept {}
    scoped_refptr(T* object) : ptr_(object) {
        if (ptr_) ptr_->AddRef();
    }
    scoped_refptr(const scoped_refptr& other) : scoped_refptr(other.ptr_) {}
    scoped_refptr(scoped_refptr&& other) noexcept : ptr_(std::exchange(other.ptr_, nullptr)) {}
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    scoped_refptr(const scoped_refptr<U>& other) : scoped_refptr(static_cast<T*>(other.get())) {}
    template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
    scoped_refptr(scoped_refptr<U>&& other) noexcept : ptr_(other.ptr_) {
        other.ptr_ = nullptr;
    }
    ~scoped_refptr() {
        if (ptr_) ptr_->Release();
    }

    // By value: assigning to itself is safe, and the old object is released after the new one is in place.
    scoped_refptr& operator=(scoped_refptr other) noexcept {
        swap(other);
        return *this;
    }
    scoped_refptr& operator=(std::nullptr_t) {
        reset();
        return *this;
    }

    T* get() const { return ptr_; }
    T& operator*() const { return *ptr_; }
    T* operator->() const { return ptr_; }
    explicit operator bool() const { return ptr_ != nullptr; }
    void reset() { scoped_refptr().swap(*this); }
    void swap(scoped_refptr& other) noexcept { std::swap(ptr_, other.ptr_); }
    [[nodiscard]] T* release() { return std::exchange(ptr_, nullptr); }

private:
    template <class U>
    friend class scoped_refptr;
    T* ptr_ = nullptr;
};

template <class T, class U>
bool operator==(const scoped_refptr<T>& a, const scoped_refptr<U>& b) {
    return a.get() == b.get();
}
template <class T, class U>
bool operator==(const scoped_refptr<T>& a, const U* b) {
    return a.get() == b;
}
template <class T>
bool operator==(const scoped_refptr<T>& a, std::nullptr_t) {
    return a.get() == nullptr;
}
template <class T, class U>
bool operator<(const scoped_refptr<T>& a, const scoped_refptr<U>& b) {
    return std::less<>()(static_cast<const void*>(a.get()), static_cast<const void*>(b.get()));
}

template <class T>
scoped_refptr<T> WrapRefCounted(T* object) {
    return scoped_refptr<T>(object);
}
