#pragma once

#include "zemo/winrt_error.h"

// The Windows Runtime by its plain binary interface, for builds without the C++ projection: activation, strings and
// errors as the projection treats them. Nothing is linked: combase.dll is looked up when first used.
#if !ZEMO_WINRT_PROJECTION

#include <winstring.h>

#include <atomic>
#include <memory>
#include <string>

#include "core/com_pointer.h"

namespace ZEMO::Core {

/// Raises the exception for a failing HRESULT, with what the failing side told this thread about it.
void checkRuntime(HRESULT result);

/// Owns a string of the runtime.
class RuntimeString {
public:
    RuntimeString() = default;
    explicit RuntimeString(const std::wstring& text);
    ~RuntimeString();
    RuntimeString(const RuntimeString&) = delete;
    RuntimeString& operator=(const RuntimeString&) = delete;

    HSTRING get() const { return value; }
    /// For a call that fills it; only while it is empty.
    HSTRING* out() { return &value; }
    /// UTF-8; what is no valid UTF-16 is replaced by the system.
    std::string utf8() const;

private:
    HSTRING value = nullptr;
};

/// The activation factory of a class, by the system's registration, else by a DLL named after a part of the class's
/// name beside the program. A thread on which COM is not initialised works in the process's multi-threaded apartment,
/// which is then kept. Raises on failure.
void activationFactory(const wchar_t* className, REFIID interfaceId, void** factory);

/// Whether any thread may use `object`.
bool isAgile(IUnknown* object);

/// Keeps the module that holds the object's code, whatever COM thinks of it later.
void pinServer(IUnknown* object);

/// The factory of one class, looked up at the first use that succeeds, then kept until the process ends. A factory that
/// is bound to its apartment is not kept, as the next caller's may be another one. Make it static; any thread.
template <class Factory>
class RuntimeFactory {
public:
    explicit constexpr RuntimeFactory(const wchar_t* name) : className(name) {}
    RuntimeFactory(const RuntimeFactory&) = delete;
    RuntimeFactory& operator=(const RuntimeFactory&) = delete;

    std::shared_ptr<Factory> get() {
        if (Factory* ready = kept.load(std::memory_order_acquire)) {
            ready->AddRef();
            return adoptCom(ready);
        }
        Factory* raw = nullptr;
        activationFactory(className, __uuidof(Factory), reinterpret_cast<void**>(&raw));
        auto factory = adoptCom(raw);
        Factory* none = nullptr;
        if (isAgile(raw) && kept.compare_exchange_strong(none, raw, std::memory_order_acq_rel)) {
            raw->AddRef();  // never given back: when the process ends, COM is gone first
            pinServer(raw);
        }
        return factory;
    }

private:
    const wchar_t* const className;
    std::atomic<Factory*> kept{nullptr};
};

}  // namespace ZEMO::Core
#endif
