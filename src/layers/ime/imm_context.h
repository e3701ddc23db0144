#pragma once

#include <windows.h>

#include <imm.h>

#include "layers/ime/composition_reader.h"

namespace ZEMO::UI {

/// The input context of a window for the length of a scope, on the window's thread.
class ImmContext final : public ICompositionSource {
public:
    explicit ImmContext(HWND ofWindow) : window(ofWindow), context(ImmGetContext(ofWindow)) {}
    ~ImmContext() {
        if (context) ImmReleaseContext(window, context);
    }
    ImmContext(const ImmContext&) = delete;
    ImmContext& operator=(const ImmContext&) = delete;

    /// Null when the window has none: it is gone, or its input method is switched off.
    HIMC get() const { return context; }
    explicit operator bool() const { return context != nullptr; }

    LONG read(DWORD part, void* buffer, DWORD sizeBytes) const override {
        return ImmGetCompositionStringW(context, part, buffer, sizeBytes);
    }

private:
    HWND window;
    HIMC context;
};

}  // namespace ZEMO::UI
