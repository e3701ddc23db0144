// A page into a PNG file, in the fewest lines: a window, a view, frames through the callback.
#include <zemo/ui.h>

#include <windows.h>

#include <objidl.h>

#include <gdiplus.h>

#include <atomic>
#include <cstring>
#include <vector>

namespace ui = ZEMO::UI;

// Written by the engine's thread until `complete`, read by the window's after it.
static std::vector<char> pixels;
static int pageWidth = 0, pageHeight = 0;
static std::atomic<bool> loaded = false, complete = false;

struct Delegate : ui::ZEMOWebViewDelegate {
    void navigationStarting(std::shared_ptr<ui::IZEMOWebView>) override {}
    void navigationFailed(std::shared_ptr<ui::IZEMOWebView>, const std::error_code&) override {}
    void navigationCompleted(std::shared_ptr<ui::IZEMOWebView>) override { loaded = true; }
    bool navigationRequested(std::shared_ptr<ui::IZEMOWebView>, std::string) override { return false; }
    void closeRequested() override {}
};

static void takeFrame(const void* frame, int width, int height, int, int, int, int) {
    if (!frame || !loaded || complete) return;
    const auto* bytes = static_cast<const char*>(frame);
    pixels.assign(bytes, bytes + std::size_t{4} * width * height);
    pageWidth = width, pageHeight = height;
    complete = true;
}

static bool writePng(const wchar_t* file) {
    constexpr CLSID kPng = {0x557cf406, 0x1a04, 0x11d3, {0x9a, 0x73, 0x00, 0x00, 0xf8, 0x1e, 0xf3, 0x2e}};
    ULONG_PTR token = 0;
    const Gdiplus::GdiplusStartupInput input;
    Gdiplus::GdiplusStartup(&token, &input, nullptr);
    const bool written = Gdiplus::Bitmap(pageWidth, pageHeight, pageWidth * 4, PixelFormat32bppPARGB,
                                         reinterpret_cast<BYTE*>(pixels.data()))
                             .Save(file, &kPng, nullptr) == Gdiplus::Ok;
    Gdiplus::GdiplusShutdown(token);
    return written;
}

int main() {
    CreateWindowW(L"Static", L"frame to PNG", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 800, 500, nullptr, nullptr,
                  nullptr, nullptr);
    ui::setUIEngineOsrRenderEnabled(1);
    ui::InitUILibrary();
    ui::setUIOsrFramePresentCallback(takeFrame);
    const auto delegate = std::make_shared<Delegate>();
    const auto view = ui::createWebViewDefault();
    view->setWebViewDelegate(delegate);
    view->loadHtml("<body style='background:#123;color:#fff;font:40px Arial'>Hello from a page", "");
    view->show();

    MSG message;
    const ULONGLONG end = GetTickCount64() + 30'000;
    while (!complete && GetTickCount64() < end) {
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    }
    view->close();
    return complete && writePng(L"page.png") ? 0 : 1;
}
