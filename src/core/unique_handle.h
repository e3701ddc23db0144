#pragma once

#include <windows.h>

#include <cstdint>
#include <utility>

namespace ZEMO::Core {

/// Owns one Windows thing: its type, the function that gives it back, the value that stands for none. Movable, not
/// copyable. Giving the thing back leaves GetLastError as it was, so a failure can be read after a guard has gone.
/// Thread: that of the thing itself; destroy it where the system wants it destroyed.
template <class T, auto close, intptr_t invalid = 0>
class UniqueHandle {
public:
    UniqueHandle() = default;
    explicit UniqueHandle(T value) : owned(value) {}
    UniqueHandle(UniqueHandle&& other) noexcept : owned(other.release()) {}
    UniqueHandle& operator=(UniqueHandle&& other) noexcept {
        reset(other.release());
        return *this;
    }
    ~UniqueHandle() { reset(); }

    T get() const { return owned; }
    explicit operator bool() const { return owned != none(); }

    /// The thing without its owner: the caller gives it back.
    [[nodiscard]] T release() { return std::exchange(owned, none()); }

    /// Gives back what it owns and owns `value` from now on. Its own value again changes nothing.
    void reset(T value = none()) {
        if (value == owned) return;
        const T old = std::exchange(owned, value);
        if (old == none()) return;
        const DWORD lastError = GetLastError();
        close(old);
        SetLastError(lastError);
    }

    /// For functions that hand a thing out through a pointer; what is owned before goes back first.
    T* put() {
        reset();
        return &owned;
    }

private:
    static T none() { return (T)invalid; }  // a pointer, or a number such as a socket

    T owned = none();
};

/// Kernel objects whose creation answers null on failure: events, mutexes, threads, processes, mappings.
using UniqueKernelHandle = UniqueHandle<HANDLE, &CloseHandle>;
/// Handles whose creation answers INVALID_HANDLE_VALUE on failure: files, snapshots.
using UniqueFileHandle = UniqueHandle<HANDLE, &CloseHandle, -1>;
using UniqueModule = UniqueHandle<HMODULE, &FreeLibrary>;
using UniqueRegistryKey = UniqueHandle<HKEY, &RegCloseKey>;
using UniqueIcon = UniqueHandle<HICON, &DestroyIcon>;
using UniqueCursor = UniqueHandle<HCURSOR, &DestroyCursor>;

/// The device context of a window, or of the whole screen for a null window. It goes back on the thread that took it.
class WindowDc {
public:
    explicit WindowDc(HWND owner) : window(owner), dc(GetDC(owner)) {}
    ~WindowDc() {
        if (!dc) return;
        const DWORD lastError = GetLastError();
        ReleaseDC(window, dc);
        SetLastError(lastError);
    }
    WindowDc(const WindowDc&) = delete;
    WindowDc& operator=(const WindowDc&) = delete;

    /// Null when the window has gone.
    HDC get() const { return dc; }
    explicit operator bool() const { return dc != nullptr; }

private:
    HWND window;
    HDC dc;
};

}  // namespace ZEMO::Core
