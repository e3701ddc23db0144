// A page in a window of its own, beside the game's: no callback, no drawing by the game.
//   own_window [address]
#include <zemo/ui.h>

#include <windows.h>

namespace ui = ZEMO::UI;

struct Delegate : ui::ZEMOWebViewDelegate {
    void navigationStarting(std::shared_ptr<ui::IZEMOWebView>) override {}
    void navigationFailed(std::shared_ptr<ui::IZEMOWebView>, const std::error_code&) override {}
    void navigationCompleted(std::shared_ptr<ui::IZEMOWebView>) override {}
    bool navigationRequested(std::shared_ptr<ui::IZEMOWebView>, std::string) override { return false; }
    void closeRequested() override { PostThreadMessageW(gameThread, WM_QUIT, 0, 0); }  // the window's thread calls

    const DWORD gameThread = GetCurrentThreadId();
};

int main(int count, char** arguments) {
    CreateWindowW(L"Static", L"the game", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 640, 400, nullptr, nullptr, nullptr,
                  nullptr);
    ui::setUIEngineOsrRenderEnabled(1);
    ui::InitUILibrary();

    const auto delegate = std::make_shared<Delegate>();  // held weakly by the view: it must outlive it
    auto view = ui::createWebViewDefault();
    view->setWebViewDelegate(delegate);
    view->setDisplayMode(1);
    view->setSize(800, 500);
    view->setCloseButtonEnabled(true);
    if (count > 1) {
        view->loadContent(std::make_shared<ui::ZEMOAddressContent>(arguments[1]));
    } else {
        view->loadHtml("<body style='background:#123;color:#fff;font:32px Arial'>A window of its own", "");
    }
    view->show();

    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
    view->close();
    view.reset();  // the window goes with the view
    return 0;
}
