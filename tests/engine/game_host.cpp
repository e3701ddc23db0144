#include "engine/game_host.h"

#include <algorithm>
#include <cstdio>
#include <format>
#include <iostream>
#include <ostream>

#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb_image_write.h>

namespace ZEMO::Test {
namespace {

constexpr wchar_t kGameClass[] = L"ZEMOTestGameWindow";

bool windowIsShared = false;
HWND sharedWindow = nullptr;
bool libraryStarted = false;

// Wakes the waiting game thread whenever a recorder has something new.
HANDLE wakeEvent() {
    static const HANDLE event = CreateEventW(nullptr, FALSE, FALSE, nullptr);
    return event;
}

class AddressItem final : public ZEMO::UI::IZEMOWebContent {
public:
    explicit AddressItem(const std::string& address) : url(address) {}
    const ZEMO::Core::IURL& getUrl() const override { return url; }
    int getKind() const override { return 0; }

private:
    ZEMO::Core::URL url;
};

}  // namespace

std::ostream& operator<<(std::ostream& out, const FrameRect& rect) {
    return out << std::format("({}, {}) {}x{}", rect.x, rect.y, rect.width, rect.height);
}

ZEMO::UI::OsrFramePresentCallback FrameRecorder::callback() {
    return [record = record](const void* pixels, int width, int height, int x, int y, int w, int h) {
        record->take(pixels, width, height, {x, y, w, h});
    };
}

void FrameRecorder::Record::take(const void* pixels, int width, int height, FrameRect dirty) {
    {
        const std::lock_guard lock(mutex);
        calls.push_back({width, height, dirty, pixels == nullptr, std::chrono::steady_clock::now()});
        if (pixels) {
            const auto* source = static_cast<const uint32_t*>(pixels);
            if (imageWidth != width || imageHeight != height) {
                imageWidth = width;
                imageHeight = height;
                image.assign(static_cast<size_t>(width) * height, 0);
            }
            for (int y = dirty.y; y < dirty.y + dirty.height; ++y) {
                const size_t offset = static_cast<size_t>(y) * width + dirty.x;
                std::copy_n(source + offset, dirty.width, image.begin() + static_cast<std::ptrdiff_t>(offset));
            }
            matches = matches && std::equal(image.begin(), image.end(), source);
        }
    }
    SetEvent(wakeEvent());
}

std::vector<Frame> FrameRecorder::frames() const {
    const std::lock_guard lock(record->mutex);
    return record->calls;
}

size_t FrameRecorder::frameCount() const {
    const std::lock_guard lock(record->mutex);
    return record->calls.size();
}

Frame FrameRecorder::lastFrame() const {
    const std::lock_guard lock(record->mutex);
    return record->calls.empty() ? Frame{} : record->calls.back();
}

uint32_t FrameRecorder::pixel(int x, int y) const {
    const std::lock_guard lock(record->mutex);
    if (x < 0 || y < 0 || x >= record->imageWidth || y >= record->imageHeight) return 0;
    return record->image[static_cast<size_t>(y) * record->imageWidth + x];
}

std::vector<uint32_t> FrameRecorder::picture(int* width, int* height) const {
    const std::lock_guard lock(record->mutex);
    *width = record->imageWidth;
    *height = record->imageHeight;
    return record->image;
}

bool FrameRecorder::replayMatches() const {
    const std::lock_guard lock(record->mutex);
    return record->matches;
}

void FrameRecorder::forgetFrames() {
    const std::lock_guard lock(record->mutex);
    record->calls.clear();
}

bool FrameRecorder::savePng(const std::string& path) const {
    int width = 0;
    int height = 0;
    std::vector<uint32_t> pixels = picture(&width, &height);
    for (uint32_t& pixel : pixels) {
        pixel = (pixel & 0xFF00FF00u) | ((pixel >> 16) & 0xFFu) | ((pixel & 0xFFu) << 16);
    }
    return width > 0 && stbi_write_png(path.c_str(), width, height, 4, pixels.data(), width * 4) != 0;
}

void NavigationRecorder::add(std::string event) {
    {
        const std::lock_guard lock(record->mutex);
        record->list.push_back(std::move(event));
    }
    SetEvent(wakeEvent());
}

void NavigationRecorder::navigationStarting(std::shared_ptr<ZEMO::UI::IZEMOWebView>) { add("starting"); }

void NavigationRecorder::navigationFailed(std::shared_ptr<ZEMO::UI::IZEMOWebView>, const std::error_code& error) {
    add(std::format("failed {}", error.value()));
}

void NavigationRecorder::navigationCompleted(std::shared_ptr<ZEMO::UI::IZEMOWebView>) { add("completed"); }

bool NavigationRecorder::navigationRequested(std::shared_ptr<ZEMO::UI::IZEMOWebView>, std::string url) {
    const bool handled = decide && decide(url);
    add("requested " + url);
    return handled;
}

void NavigationRecorder::closeRequested() { add("closeRequested"); }

std::vector<std::string> NavigationRecorder::events() const {
    const std::lock_guard lock(record->mutex);
    return record->list;
}

size_t NavigationRecorder::count(const std::string& event) const {
    const std::lock_guard lock(record->mutex);
    return static_cast<size_t>(std::ranges::count(record->list, event));
}

void NavigationRecorder::forget() {
    const std::lock_guard lock(record->mutex);
    record->list.clear();
}

std::shared_ptr<ZEMO::UI::IZEMOWebContent> addressItem(const std::string& address) {
    return std::make_shared<AddressItem>(address);
}

LRESULT CALLBACK GameHost::windowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (auto* host = reinterpret_cast<GameHost*>(GetWindowLongPtrW(hwnd, GWLP_USERDATA))) {
        host->gameMessages.push_back({message, wParam, lParam});
    }
    if (message == WM_PAINT) {
        ValidateRect(hwnd, nullptr);
        return 0;
    }
    return DefWindowProcW(hwnd, message, wParam, lParam);
}

void GameHost::shareWindow() { windowIsShared = true; }

GameHost::GameHost(Options options) {
    if (options.mainWindow) makeWindow(options);
    if (options.disableGpuCompositing) ZEMO::UI::setUIEngineOsrRenderEnabled(1);
    if (options.startLibrary && !(windowIsShared && libraryStarted)) {
        ZEMO::UI::InitUILibrary();
        libraryStarted = true;
    }
    if (options.presentCallback) ZEMO::UI::setUIOsrFramePresentCallback(frames.callback());
}

void GameHost::makeWindow(const Options& options) {
    window = sharedWindow;
    if (!window) {
        WNDCLASSW windowClass{};
        windowClass.lpfnWndProc = &GameHost::windowProc;
        windowClass.hInstance = GetModuleHandleW(nullptr);
        windowClass.hCursor = LoadCursorW(nullptr, IDC_CROSS);
        windowClass.lpszClassName = kGameClass;
        RegisterClassW(&windowClass);
        RECT rect{0, 0, options.clientWidth, options.clientHeight};
        AdjustWindowRect(&rect, WS_OVERLAPPEDWINDOW, FALSE);
        window = CreateWindowExW(0, kGameClass, L"game", WS_OVERLAPPEDWINDOW, 40, 40, rect.right - rect.left,
                                 rect.bottom - rect.top, nullptr, nullptr, GetModuleHandleW(nullptr), nullptr);
        if (windowIsShared) sharedWindow = window;
    }
    dispatchWaiting();  // what the last host left is nobody's
    fetchedMessages.clear();
    SetWindowLongPtrW(window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    ShowWindow(window, SW_SHOWNORMAL);
    pass(50ms);
    resizeClient(options.clientWidth, options.clientHeight);
}

void GameHost::remakeWindow(int clientWidth, int clientHeight) {
    SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    DestroyWindow(window);
    sharedWindow = nullptr;
    makeWindow({.clientWidth = clientWidth, .clientHeight = clientHeight});
}

GameHost::~GameHost() {
    ZEMO::UI::setUIOsrFramePresentCallback(nullptr);
    if (!window) return;
    SetWindowLongPtrW(window, GWLP_USERDATA, 0);
    if (window != sharedWindow) DestroyWindow(window);
}

std::shared_ptr<ZEMO::UI::IZEMOWebView> GameHost::makeView(const std::string& address, NavigationRecorder& recorder) {
    auto view = ZEMO::UI::createWebViewDefault();
    delegates.push_back(std::make_shared<NavigationRecorder>(recorder));
    view->setWebViewDelegate(delegates.back());
    view->loadContent(addressItem(address));
    return view;
}

bool GameHost::waitFor(const char* what, const std::function<bool()>& done, std::chrono::milliseconds timeout) {
    const auto end = std::chrono::steady_clock::now() + timeout;
    const HANDLE wake = wakeEvent();
    while (!done()) {
        if (std::chrono::steady_clock::now() >= end) {
            std::cerr << "gave up waiting for " << what << "; " << frames.frameCount()
                      << " frames, child processes: " << childrenText() << std::endl;
            return false;
        }
        MsgWaitForMultipleObjects(1, &wake, FALSE, 20, QS_ALLINPUT);
        dispatchWaiting();
    }
    return true;
}

void GameHost::dispatchWaiting() {
    for (MSG message; PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE);) {
        if (message.hwnd == window) fetchedMessages.push_back({message.message, message.wParam, message.lParam});
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

void GameHost::pass(std::chrono::milliseconds span) {
    const auto end = std::chrono::steady_clock::now() + span;
    while (std::chrono::steady_clock::now() < end) {
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 10, QS_ALLINPUT);
        dispatchWaiting();
    }
}

void GameHost::resizeClient(int width, int height) {
    // The window manager has the last word on a size; ask until the client area is right.
    for (int attempt = 0; attempt < 20; ++attempt) {
        RECT client{};
        GetClientRect(window, &client);
        if (client.right == width && client.bottom == height) return;
        RECT outer{};
        GetWindowRect(window, &outer);
        SetWindowPos(window, nullptr, 0, 0, outer.right - outer.left + width - client.right,
                     outer.bottom - outer.top + height - client.bottom, SWP_NOMOVE | SWP_NOZORDER | SWP_NOACTIVATE);
        pass(30ms);
    }
    std::cerr << "the game window did not take the size " << width << "x" << height << std::endl;
}

std::string solidPage(const std::string& cssColor) {
    return "<!doctype html><style>html,body{margin:0;height:100%;background:" + cssColor + "}</style>";
}

}  // namespace ZEMO::Test
