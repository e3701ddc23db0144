#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <string>
#include <vector>

namespace ZEMO::Test {

/// What the recording hook module is told to answer and what it has heard. The module hands its only one out by the
/// export "hookRecording".
struct HookRecording {
    struct Call {
        std::string text;
        DWORD thread = 0;
    };

    std::mutex mutex;  ///< guards what follows, up to the flags
    /// To GetRenderModeHandler, one after the other; the last one stays.
    std::vector<int> modes{4};
    std::vector<Call> calls;
    std::vector<uint32_t> view;  ///< pixels of the last PET_VIEW paint
    int viewWidth = 0, viewHeight = 0;
    std::vector<uint32_t> popup;
    int popupWidth = 0, popupHeight = 0;

    std::atomic<bool> hasRenderer{true};
    std::atomic<bool> hasPopup{true};
    std::atomic<bool> popupEmpty{true};  ///< set and cleared by the popup's own calls, and by a test
    std::atomic<const void*> lastBuffer{nullptr};

    std::vector<std::string> texts() {
        const std::lock_guard lock(mutex);
        std::vector<std::string> all;
        for (const Call& call : calls) all.push_back(call.text);
        return all;
    }
    size_t count(const std::string& text) {
        size_t found = 0;
        for (const std::string& call : texts()) found += call.starts_with(text);
        return found;
    }
    void forget() {
        const std::lock_guard lock(mutex);
        calls.clear();
    }
    void answer(std::vector<int> next) {
        const std::lock_guard lock(mutex);
        modes = std::move(next);
    }
};

using HookRecordingFunction = HookRecording*();

}  // namespace ZEMO::Test
