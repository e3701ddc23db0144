// What the subclass costs each message of the game's window while no view is shown. The game's own procedure here does
// next to nothing, so that the rows differ by the way to it:
//   Procedure        the procedure called as a function: the floor of all
//   CallWindowProc   the system's call of a kept procedure: the floor of any subclass
//   LayerWindowProc  the library's subclass, with no layer
//   DispatchNoLayer  the manager's part of it alone
#include <benchmark/benchmark.h>

#include "layers/layer_manager.h"

namespace {

using ZEMO::UI::ZEMOMultiLayerManager;

LRESULT CALLBACK gameProcedure(HWND, UINT message, WPARAM wParam, LPARAM lParam) {
    return static_cast<LRESULT>(message + wParam) + lParam;
}

/// The game's window with the library's subclass on it; made once, on the benchmark's thread.
HWND subclassedWindow() {
    static const HWND window = [] {
        WNDCLASSW description{};
        description.lpfnWndProc = DefWindowProcW;
        description.hInstance = GetModuleHandleW(nullptr);
        description.lpszClassName = L"BenchDispatch";
        RegisterClassW(&description);
        const HWND made = CreateWindowExW(0, description.lpszClassName, L"", WS_OVERLAPPEDWINDOW, 0, 0, 100, 100,
                                          nullptr, nullptr, description.hInstance, nullptr);
        SetWindowLongPtrW(made, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(&gameProcedure));
        ZEMOMultiLayerManager::instance().setMainWindow(made);
        ZEMOMultiLayerManager::instance().subclassMainWindow();
        return made;
    }();
    return window;
}

constexpr UINT kMessage = WM_USER + 300;

void Procedure(benchmark::State& state) {
    WNDPROC procedure = gameProcedure;
    benchmark::DoNotOptimize(procedure);
    for (auto _ : state) benchmark::DoNotOptimize(procedure(subclassedWindow(), kMessage, 1, 2));
}

void CallWindowProcOnly(benchmark::State& state) {
    const HWND window = subclassedWindow();
    for (auto _ : state) benchmark::DoNotOptimize(CallWindowProcW(gameProcedure, window, kMessage, 1, 2));
}

void LayerWindowProc(benchmark::State& state) {
    const HWND window = subclassedWindow();
    for (auto _ : state) benchmark::DoNotOptimize(ZEMOMultiLayerManager::layerWindowProc(window, kMessage, 1, 2));
}

void DispatchNoLayer(benchmark::State& state) {
    const HWND window = subclassedWindow();
    ZEMOMultiLayerManager& manager = ZEMOMultiLayerManager::instance();
    LRESULT result = 0;
    for (auto _ : state) benchmark::DoNotOptimize(manager.dispatchMessage(&result, window, kMessage, 1, 2));
}

BENCHMARK(Procedure);
BENCHMARK(CallWindowProcOnly);
BENCHMARK(LayerWindowProc);
BENCHMARK(DispatchNoLayer);

}  // namespace
