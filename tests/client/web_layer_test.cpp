#include <gtest/gtest.h>

#include "client/engine_task.h"
#include "engine/game_host.h"
#include "include/cef_browser.h"
#include "layers/web/web_layer.h"
#include "support/http_server.h"

// The layer that joins a window to a browser, held by the test itself, on the game's real window with the real engine.
namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

class PlainItem : public IZEMOWebContent {
public:
    PlainItem(const std::string& address, int itemKind) : url(address), kind(itemKind) {}
    const ZEMO::Core::IURL& getUrl() const override { return url; }
    int getKind() const override { return kind; }

private:
    ZEMO::Core::URL url;
    int kind;
};

class WebLayerTest : public ::testing::Test {
protected:
    std::shared_ptr<WebLayer> makeLayer(std::function<void(bool)> useCallback = nullptr) {
        WebLayer::Settings settings;
        settings.delegate = {facade, events};
        settings.size = {320, 200};
        settings.parentWindow = game.window;
        settings.framePresentCallback = game.frames.callback();
        settings.controllerScriptUseCallback = std::move(useCallback);
        return ZEMOWindow::create<WebLayer>(std::move(settings));
    }
    GameHost game;
    std::shared_ptr<NavigationRecorder> events = std::make_shared<NavigationRecorder>();
    std::shared_ptr<IZEMOWebView> facade = createWebViewDefault();
};

}  // namespace

TEST_F(WebLayerTest, SecondWindowCloseHandler_Ignored) {
    const auto layer = makeLayer();
    int first = 0;
    layer->setWindowCloseHandler([&] { ++first; });
    layer->setWindowCloseHandler([] { ADD_FAILURE() << "the second handler ran"; });
    layer->onClose();
    EXPECT_EQ(first, 1);
}

TEST_F(WebLayerTest, SecondLayerDestroyHandler_Ignored) {
    const auto layer = makeLayer();
    int first = 0;
    layer->setLayerDestroyHandler([&] { ++first; });
    layer->setLayerDestroyHandler([] { ADD_FAILURE() << "the second handler ran"; });
    layer->onDestroy();
    EXPECT_EQ(first, 1);
}

TEST_F(WebLayerTest, GamesWindowDestroyed_CloseIsRequestedOnce) {
    NavigationRecorder heard;
    auto view = game.makeView("data:text/html,x", heard);
    view->show();
    ASSERT_TRUE(game.waitFor("the page", [&] { return heard.has("completed"); }));
    ASSERT_FALSE(heard.has("closeRequested"));
    SetWindowLongPtrW(game.window, GWLP_USERDATA, 0);
    DestroyWindow(game.window);
    game.window = nullptr;
    EXPECT_EQ(heard.count("closeRequested"), 1u);
    view.reset();
}

TEST_F(WebLayerTest, OpenLayerLoadsAPageNamedLikeAPath_AddressIsTheLocalPagesAllTheSame) {
    const auto layer = makeLayer();
    layer->loadPage("start", false);
    ASSERT_TRUE(game.waitFor("the first page", [&] { return events->has("completed"); }));
    events->forget();
    layer->loadPage("C:/pages/a", true);
    ASSERT_TRUE(game.waitFor("the request", [&] { return !events->events().empty(); }));
    const std::string request = events->events().front();
    EXPECT_TRUE(request.starts_with("requested file:///")) << request;
    EXPECT_TRUE(request.ends_with("/resources/html/C:/pages/a.html")) << request;
}

TEST_F(WebLayerTest, PostItemLoaded_StaysWithTheBrowserClientAndAPlainOneDoesNot) {
    HttpServer server;
    server.serveHtml("/", solidPage("#123"));
    const auto layer = makeLayer();
    const auto first = std::make_shared<PlainItem>(server.url("/"), IZEMOWebContent::kKindPost);
    layer->loadContent(first, false);
    EXPECT_EQ(first.use_count(), 2) << "the client keeps it";
    ASSERT_TRUE(game.waitFor("the page", [&] { return events->has("completed"); }));
    const auto plain = std::make_shared<PlainItem>(server.url("/"), 0);
    layer->loadContent(plain, true);
    EXPECT_EQ(plain.use_count(), 1) << "a plain address is only loaded";
    EXPECT_EQ(first.use_count(), 2) << "and leaves the list alone";
    const auto second = std::make_shared<PlainItem>(server.url("/"), IZEMOWebContent::kKindPost);
    layer->loadContent(second, true);
    EXPECT_EQ(second.use_count(), 2);
    EXPECT_EQ(first.use_count(), 1) << "the list holds that one item";
}

TEST_F(WebLayerTest, AddressLoadedWithItems_TheyReplaceTheOnesBefore) {
    const auto layer = makeLayer();
    const auto first = std::make_shared<PlainItem>("https://a.test/", 0);
    const auto second = std::make_shared<PlainItem>("https://b.test/", 0);
    layer->loadUrl("start", {first}, false);
    EXPECT_EQ(first.use_count(), 2) << "the client keeps it";
    ASSERT_TRUE(game.waitFor("the page", [&] { return events->has("completed"); }));
    layer->loadUrl("start", {second}, true);
    EXPECT_EQ(second.use_count(), 2);
    EXPECT_EQ(first.use_count(), 1);
}

TEST_F(WebLayerTest, BrowserMade_PaintsAtThirtyFramesASecond) {
    const auto layer = makeLayer();
    layer->loadPage("start", false);
    ASSERT_TRUE(game.waitFor("the page", [&] { return events->has("completed"); }));
    int rate = 0;
    ASSERT_TRUE(runOnEngine(game, [&] {
        const CefRefPtr<CefBrowser> browser = CefBrowserHost::GetBrowserByIdentifier(1);
        rate = browser ? browser->GetHost()->GetWindowlessFrameRate() : -1;
    }));
    EXPECT_EQ(rate, 30);
}

TEST_F(WebLayerTest, ControllerScriptAskedForWithoutABrowser_UseCallbackIsCalled) {
    std::vector<bool> used;
    const auto layer = makeLayer([&](bool value) { used.push_back(value); });
    EXPECT_TRUE(layer->handleSpecialUrl("zemosdk://gamepadinit?use=true"));
    EXPECT_TRUE(layer->handleSpecialUrl("zemosdk://gamepadinit?use=false"));
    EXPECT_EQ(used, (std::vector<bool>{true, false}));
}

}  // namespace ZEMO::Test
