#include "render/display_scale.h"

#include <atomic>

#include "core/system_function.h"
#include "core/unique_handle.h"

namespace ZEMO::UI {
namespace {

constexpr double kDpiOfScaleOne = 96.0;
constexpr int kPerMonitorDpiAware = 2;  // PROCESS_PER_MONITOR_DPI_AWARE

enum Awareness : int { kUnknown = 0, kNotPerMonitor = 1, kPerMonitor = 2 };

// shcore.dll comes with Windows 8.1: looked up by name, and kept loaded like every system library.
Awareness queryAwareness() {
    const auto getAwareness = Core::systemFunction<HRESULT WINAPI(HANDLE process, int* awareness)>(
        LoadLibraryW(L"shcore.dll"), "GetProcessDpiAwareness");
    int awareness = 0;
    const bool known = getAwareness && SUCCEEDED(getAwareness(nullptr, &awareness));
    return known && awareness == kPerMonitorDpiAware ? kPerMonitor : kNotPerMonitor;
}

float querySystemScale() {
    const Core::WindowDc screen(nullptr);
    const int dpi = screen ? GetDeviceCaps(screen.get(), LOGPIXELSX) : 0;
    return dpi > 0 ? static_cast<float>(dpi / kDpiOfScaleOne) : 1.0f;
}

}  // namespace

bool isPerMonitorDpiAware() {
    // Written once with its final value: of two threads that come first, both ask and both get the same answer.
    static std::atomic<int> cached{kUnknown};
    int awareness = cached.load(std::memory_order_relaxed);
    if (awareness == kUnknown) {
        awareness = queryAwareness();
        cached.store(awareness, std::memory_order_relaxed);
    }
    return awareness == kPerMonitor;
}

float getWindowScale(HWND window) {
    if (window && isPerMonitorDpiAware()) {
        // Windows 10, 1607 and later.
        static const auto getDpi =
            Core::systemFunction<UINT WINAPI(HWND window)>(GetModuleHandleW(L"user32.dll"), "GetDpiForWindow");
        // 0 stands for a window that has gone meanwhile, and a scale is never 0.
        if (const UINT dpi = getDpi ? getDpi(window) : 0; dpi != 0) return static_cast<float>(dpi / kDpiOfScaleOne);
    }
    static const float systemScale = querySystemScale();
    return systemScale;
}

}  // namespace ZEMO::UI
