#pragma once

#include <windows.h>

#include <filesystem>
#include <stdexcept>

#include "helpers/hook_recording.h"

namespace ZEMO::Test {

inline std::filesystem::path programDirectory() {
    wchar_t path[1024];
    GetModuleFileNameW(nullptr, path, 1024);
    return std::filesystem::path(path).parent_path();
}

/// The hook module that records, loaded for the rest of the process.
inline HMODULE loadRecordingHook() {
    const auto file = programDirectory() / L"test_helpers" / L"recording_hook" / L"ZEMOGraphicsHook.dll";
    return LoadLibraryW(file.c_str());
}

inline HookRecording& recordingOf(HMODULE module) {
    const FARPROC get = module ? GetProcAddress(module, "hookRecording") : nullptr;
    if (!get) throw std::runtime_error("the recording hook module is not there");
    return *reinterpret_cast<HookRecordingFunction*>(reinterpret_cast<void*>(get))();
}

}  // namespace ZEMO::Test
