// The smallest honest host: a window, a page in it, input, an orderly end.
#include <zemo/ui.h>

#include <windows.h>

#include <mutex>
#include <vector>

namespace ui = ZEMO::UI;

struct Frame {  // the newest frame; written on the engine's thread, drawn on the window's
    std::mutex mutex;
    std::vector<char> pixels;
    int width = 0, height = 0;
} frame;

struct Delegate : ui::ZEMOWebViewDelegate {
    void navigationStarting(std::shared_ptr<ui::IZEMOWebView>) override {}
    void navigationFailed(std::shared_ptr<ui::IZEMOWebView>, const std::error_code&) override {}
    void navigationCompleted(std::shared_ptr<ui::IZEMOWebView>) override {}
    bool navigationRequested(std::shared_ptr<ui::IZEMOWebView>, std::string) override { return false; }
    void closeRequested() override {}
};

LRESULT CALLBACK windowProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_PAINT) {
        PAINTSTRUCT paint;
        HDC dc = BeginPaint(window, &paint);
        const std::lock_guard lock(frame.mutex);
        BITMAPINFO info{{sizeof(BITMAPINFOHEADER), frame.width, -frame.height, 1, 32, BI_RGB}};
        if (frame.width)
            SetDIBitsToDevice(dc, 0, 0, frame.width, frame.height, 0, 0, 0, frame.height, frame.pixels.data(), &info,
                              DIB_RGB_COLORS);
        EndPaint(window, &paint);
        return 0;
    }
    if (message == WM_CLOSE) return PostQuitMessage(0), 0;
    return DefWindowProcW(window, message, wParam, lParam);
}

int main() {
    WNDCLASSW windowClass{CS_HREDRAW | CS_VREDRAW, windowProc};
    windowClass.lpszClassName = L"Minimal";
    windowClass.hCursor = LoadCursorW(nullptr, IDC_ARROW);
    RegisterClassW(&windowClass);
    HWND window = CreateWindowW(L"Minimal", L"Minimal", WS_OVERLAPPEDWINDOW | WS_VISIBLE, CW_USEDEFAULT, CW_USEDEFAULT,
                                960, 600, nullptr, nullptr, nullptr, nullptr);

    ui::setUIEngineOsrRenderEnabled(1);  // composite pages in software; before the start
    ui::InitUILibrary();                 // starts the engine, finds the visible window
    ui::setUIOsrFramePresentCallback([window](const void* pixels, int width, int height, int, int, int, int) {
        const std::lock_guard lock(frame.mutex);  // the engine waits: copy and return
        const auto* bytes = static_cast<const char*>(pixels);
        frame.pixels.assign(bytes, bytes + static_cast<std::size_t>(width) * height * 4);
        frame.width = width, frame.height = height;
        InvalidateRect(window, nullptr, FALSE);
    });

    const auto delegate = std::make_shared<Delegate>();  // held weakly by the view: it must outlive it
    auto view = ui::createWebViewDefault();
    view->setWebViewDelegate(delegate);
    view->loadHtml("<body style='background:#fff;font:24px Arial'>Hello from a page. <input placeholder='type here'>",
                   "");
    view->show();

    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    view->close();
    view.reset();  // the last pointer: the page ends here
    return 0;
}
