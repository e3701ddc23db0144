#pragma once

#include <atomic>
#include <memory>
#include <string>
#include <vector>

#include "core/unique_handle.h"
#include "zemo/web_view.h"

namespace ZEMO::UI {

class WebLayer;

/// The object that a caller holds. It remembers what the caller wants until the first show makes the layer, and
/// forwards from then on; in the other direction it filters the browser's navigation events and hands them to the
/// caller's delegate.
///
/// Threads: the operations of IZEMOWebView on the caller's thread, those of ZEMOWebViewDelegate on the engine thread.
/// layer, pendingUrl and isOpen are written before the browser exists and only read afterwards.
class ZEMOWebViewWindow final : public IZEMOWebView,
                                public ZEMOWebViewDelegate,
                                public std::enable_shared_from_this<ZEMOWebViewWindow> {
public:
    ZEMOWebViewWindow();
    ~ZEMOWebViewWindow() override;

    // IZEMOView
    void show() override;
    void showAndWait() override;
    void close() override;
    void setViewDelegate(std::shared_ptr<ZEMOViewDelegate> delegate) override;
    void setSize(float newWidth, float newHeight) override;
    void setDisplayMode(int mode) override { displayMode = mode; }

    // IZEMOWebView
    void setWebViewDelegate(std::shared_ptr<ZEMOWebViewDelegate> delegate) override;
    void loadPage(std::string nameOrPath) override;
    void loadContent(std::shared_ptr<IZEMOWebContent> content) override;
    void loadHtml(std::string_view html, std::string_view path) override;
    void loadUrl(std::string url, std::vector<std::shared_ptr<IZEMOWebContent>> items) override;
    void reserved(std::string text) override;
    void evaluateJavascript(std::string script, std::function<void(std::string, std::string)> callback) override;
    void addJavascriptCallback(std::string name, std::function<void(std::string)> callback) override;
    std::string bindObject(std::string name, std::string message) override;
    void goBack() override;
    bool canGoBack() override;
    void goForward() override;
    bool canGoForward() override;
    bool deleteCookies(const std::string& url) override;
    void setContentItems(std::vector<std::shared_ptr<IZEMOWebContent>> items) override;
    void setCloseButtonEnabled(bool enabled) override { closeButtonEnabled = enabled; }

    // ZEMOWebViewDelegate, called by the browser client.
    void navigationStarting(std::shared_ptr<IZEMOWebView> view) override;
    void navigationFailed(std::shared_ptr<IZEMOWebView> view, const std::error_code& error) override;
    void navigationCompleted(std::shared_ptr<IZEMOWebView> view) override;
    bool navigationRequested(std::shared_ptr<IZEMOWebView> view, std::string url) override;
    void closeRequested() override {}

private:
    void createLayer();
    void startFirstLoad();
    void notifyCloseRequested();

    std::weak_ptr<ZEMOWebViewDelegate> webViewDelegate;
    std::shared_ptr<WebLayer> layer;
    std::weak_ptr<ZEMOViewDelegate> viewDelegate;
    std::shared_ptr<IZEMOWebContent> pendingContent;
    std::vector<std::shared_ptr<IZEMOWebContent>> pendingItems;
    std::string pendingUrl;
    std::string pendingHtml;
    int32_t displayMode = 0;
    Core::UniqueKernelHandle closeGate;
    bool isOpen = false;
    std::atomic<bool> isClosed{false};  ///< read on the engine thread when a script's result arrives
    int32_t width = 0;
    int32_t height = 0;
    bool closeButtonEnabled = false;
};

}  // namespace ZEMO::UI
