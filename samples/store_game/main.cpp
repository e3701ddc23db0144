// A game with a login and a store in pages of its own, and messages both ways: a page calls the game by the name of a
// bound object, the game asks the page what is meant, decides, and tells it.
#include <zemo/ui.h>

#include <windows.h>

#include <cstdlib>
#include <map>
#include <mutex>
#include <vector>

namespace ui = ZEMO::UI;

namespace {

constexpr UINT kLoggedIn = WM_APP, kWantsToBuy = WM_APP + 1, kCloseView = WM_APP + 2;  // from the engine's thread

struct Frame {  // the newest frame; written on the engine's thread, drawn on the window's
    std::mutex mutex;
    std::vector<char> pixels;
    int width = 0, height = 0;
} frame;

HWND window = nullptr;
std::shared_ptr<ui::IZEMOWebView> view;

// Engine thread: nothing here may block, so everything goes to the window's thread.
struct Delegate : ui::ZEMOWebViewDelegate {
    void navigationStarting(std::shared_ptr<ui::IZEMOWebView>) override {}
    void navigationFailed(std::shared_ptr<ui::IZEMOWebView>, const std::error_code&) override {}
    void navigationCompleted(std::shared_ptr<ui::IZEMOWebView>) override {}
    bool navigationRequested(std::shared_ptr<ui::IZEMOWebView>, std::string url) override {
        return url.starts_with("http");  // this game's pages are all local
    }
    void closeRequested() override { PostMessageW(window, kCloseView, 0, 0); }
};

void takeFrame(const void* pixels, int width, int height, int, int, int, int) {
    const std::lock_guard lock(frame.mutex);  // the engine waits: copy and return
    const auto* bytes = static_cast<const char*>(pixels);
    frame.pixels.assign(bytes, bytes + std::size_t{4} * width * height);
    frame.width = width, frame.height = height;
    InvalidateRect(window, nullptr, FALSE);
}

void draw() {
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(window, &paint);
    const std::lock_guard lock(frame.mutex);
    BITMAPINFO info{};
    info.bmiHeader = {sizeof(BITMAPINFOHEADER), frame.width, -frame.height, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
    if (frame.width) {
        SetDIBitsToDevice(dc, 0, 0, frame.width, frame.height, 0, 0, 0, frame.height, frame.pixels.data(), &info,
                          DIB_RGB_COLORS);
    }
    EndPaint(window, &paint);
}

// Asks the page, and posts the answer, JSON text of at most two digits here, to the window.
void ask(const char* script, UINT message) {
    view->evaluateJavascript(script, [message](const std::string& result, const std::string& error) {
        if (error.empty()) PostMessageW(window, message, static_cast<WPARAM>(std::atoi(result.c_str())), 0);
    });
}

// A page of its own is trusted no more than any other: the prices are the game's.
void sell(int item) {
    static int credits = 100;
    static const std::map<int, int> prices = {{0, 30}, {1, 80}};
    const auto price = prices.find(item);
    const bool sold = price != prices.end() && price->second <= credits;
    if (sold) credits -= price->second;
    view->evaluateJavascript("answer(" + std::string(sold ? "true" : "false") + ", " + std::to_string(credits) + ")",
                             [](const std::string&, const std::string&) {});
}

void openView(const std::shared_ptr<Delegate>& delegate) {
    view = ui::createWebViewDefault();
    view->setWebViewDelegate(delegate);
    view->setCloseButtonEnabled(true);
    view->loadPage("login");
    view->show();
    // What a page may call. The text is the game's own: it says which object was called, never what the page wants.
    view->bindObject("game_login", "login");
    view->addJavascriptCallback("game_login", [](const std::string&) { PostMessageW(window, kLoggedIn, 0, 0); });
    view->bindObject("game_buy", "buy");
    view->addJavascriptCallback("game_buy", [](const std::string&) { ask("chosen()", kWantsToBuy); });
}

LRESULT CALLBACK windowProc(HWND target, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
        case WM_PAINT:
            return draw(), 0;
        case WM_CLOSE:
            return PostQuitMessage(0), 0;
        case kLoggedIn:
            return view ? view->loadPage("store") : void(), 0;
        case kWantsToBuy:
            return view ? sell(static_cast<int>(wParam)) : void(), 0;
        case kCloseView:
            return view.reset(), 0;
        default:
            return DefWindowProcW(target, message, wParam, lParam);
    }
}

}  // namespace

int main() {
    WNDCLASSW windowClass{};
    windowClass.lpfnWndProc = windowProc;
    windowClass.lpszClassName = L"StoreGame";
    windowClass.hCursor = LoadCursor(nullptr, IDC_ARROW);
    RegisterClassW(&windowClass);
    window = CreateWindowW(L"StoreGame", L"A game with a store", WS_OVERLAPPEDWINDOW | WS_VISIBLE, CW_USEDEFAULT,
                           CW_USEDEFAULT, 960, 600, nullptr, nullptr, nullptr, nullptr);
    ui::setUIEngineOsrRenderEnabled(1);
    ui::InitUILibrary();
    ui::setUIOsrFramePresentCallback(
        [](const void* pixels, int width, int height, int x, int y, int dirtyWidth, int dirtyHeight) {
            if (pixels) takeFrame(pixels, width, height, x, y, dirtyWidth, dirtyHeight);
        });
    const auto delegate = std::make_shared<Delegate>();  // held weakly by the view: it must outlive it
    openView(delegate);

    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    view.reset();
    return 0;
}
