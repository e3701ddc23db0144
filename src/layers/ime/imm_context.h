#pragma once

#include <windows.h>

#include <imm.h>

#include "layers/ime/composition_reader.h"

namespace ZEMO::UI {

/// The input context of a window for the length of a scope, on the window's thread.
class ImmContext final : public ICompositionSource {
public:
    explicit ImmContext(HWND window) : window_(window), context_(ImmGetContext(window)) {}
    ~ImmContext() {
        if (context_) ImmReleaseContext(window_, context_);
    }
    ImmContext(const ImmContext&) = delete;
    ImmContext& operator=(const ImmContext&) = delete;

    /// Null when the window has none: it is gone, or its input method is switched off.
    HIMC get() const { return context_; }
    explicit operator bool() const { return context_ != nullptr; }

    LONG read(DWORD part, void* buffer, DWORD sizeBytes) const override {
        return ImmGetCompositionStringW(context_, part, buffer, sizeBytes);
    }

private:
    HWND window_;
    HIMC context_;
};

}  // namespace ZEMO::UI
