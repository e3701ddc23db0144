#include <gtest/gtest.h>

#include <regex>

#include "client/client_view.h"
#include "core/process_state.h"
#include "engine/cef_module.h"
#include "engine/web_app.h"
#include "include/cef_command_line.h"
#include "include/cef_scheme.h"
#include "layers/layer_manager.h"
#include "support/debug_log.h"
#include "support/http_server.h"

// How the engine is started, and exports that only show something while it runs.
namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

/// The switches that the library adds for one of the engine's processes, in the real engine's own command line.
std::string addedSwitches(const CefString& processType) {
    const CefRefPtr<CefCommandLine> line = CefCommandLine::CreateCommandLine();
    line->InitFromString("game.exe");
    const CefRefPtr<WebApp> app = new WebApp;
    app->OnBeforeCommandLineProcessing(processType, line);
    return line->GetCommandLineString().ToString();
}

/// Stands in for the engine's registrar, which only the engine can make and nothing can be read from.
class SchemeRecorder : public CefSchemeRegistrar {
public:
    bool AddCustomScheme(const CefString& name, int options) override {
        schemes.emplace_back(name.ToString(), options);
        return true;
    }
    std::vector<std::pair<std::string, int>> schemes;
};

std::wstring userLocale(LCTYPE what) {
    wchar_t text[100] = {};
    GetLocaleInfoW(MAKELCID(GetUserDefaultUILanguage(), SORT_DEFAULT), what, text, 100);
    return text;
}

constexpr char kFourSwitches[] =
    "game.exe --no-proxy-server --disable-web-security --disable-site-isolation-trials --disable-touch-adjustment";

}  // namespace

TEST(EngineStart, SoftwareCompositing_FifthSwitchOnlyWhenAskedForAndAnyProcessTypeAlike) {
    GameHost game;
    for (const char* type : {"", "renderer", "gpu-process"}) {
        setUIEngineOsrRenderEnabled(0);
        EXPECT_EQ(addedSwitches(type), kFourSwitches);
        setUIEngineOsrRenderEnabled(-5);
        EXPECT_EQ(addedSwitches(type), std::string(kFourSwitches) + " --disable-gpu-compositing");
    }
}

TEST(EngineStart, CustomScheme_RegisteredAsStandardWithCrossOriginRequests) {
    SchemeRecorder registrar;
    const CefRefPtr<WebApp> app = new WebApp;
    app->OnRegisterCustomSchemes(&registrar);
    EXPECT_EQ(registrar.schemes, (std::vector<std::pair<std::string, int>>{{"zemosdkcustomscheme", 17}}));
}

TEST(EngineStart, RequestOfAPage_AcceptsTheLanguagesOfTheUsersInterface) {
    HttpServer server;
    server.serveHtml("/", solidPage("#0f0"));
    GameHost game;
    ClientView view(game, server.url("/"));
    ASSERT_TRUE(game.waitFor("the request", [&] { return server.requestCount("/") == 1; }));
    // The engine adds a falling quality to each but the first language.
    std::string accepted;
    for (const HttpServer::Request& request : server.requests()) {
        if (request.target == "/")
            accepted = std::regex_replace(request.headers.at("accept-language"), std::regex(";q=[0-9.]+"), "");
    }
    const std::wstring expected =
        buildLanguageText(userLocale(LOCALE_SISO639LANGNAME), userLocale(LOCALE_SISO3166CTRYNAME));
    EXPECT_EQ(accepted, CefString(expected).ToString());
    EXPECT_GT(expected.size(), 2u);
}

TEST(EngineStart, CompositingSetAfterTheStart_ValueFlipsAndTheEngineGoesOn) {
    GameHost game({.disableGpuCompositing = false});
    ASSERT_FALSE(isUIEngineOsrRenderEnabled());
    setUIEngineOsrRenderEnabled(1);
    EXPECT_TRUE(isUIEngineOsrRenderEnabled());
    HttpServer server;
    server.serveHtml("/", solidPage("#0f0"));
    ClientView view(game, server.url("/"));
    EXPECT_TRUE(game.waitFor("the page", [&] { return game.frames.pixel(10, 10) == 0xFF00FF00u; }));
    setUIEngineOsrRenderEnabled(0);
    EXPECT_FALSE(isUIEngineOsrRenderEnabled());
}

TEST(EngineStart, LanguageUpdatedWhileRunning_PagesKeepTheirs) {
    HttpServer server;
    server.serveHtml("/", solidPage("#0f0"));
    GameHost game;
    const auto languageOf = [&](const std::string& path) {
        server.serveHtml(path, solidPage("#0f0"));
        ClientView view(game, server.url(path));
        EXPECT_TRUE(game.waitFor("completion", [&] { return view.events->has("completed"); }));
        for (const HttpServer::Request& request : server.requests()) {
            if (request.target == path) return request.headers.at("accept-language");
        }
        return std::string();
    };
    const std::string before = languageOf("/before");
    EXPECT_FALSE(before.empty());
    updateUILanguage("fr-FR");
    EXPECT_EQ(languageOf("/after"), before);
}

TEST(EngineStart, Started_XInputIsLoadedBeforeTheFirstView) {
    ASSERT_EQ(GetModuleHandleW(L"xinput1_4.dll"), nullptr);
    GameHost game;
    EXPECT_NE(GetModuleHandleW(L"xinput1_4.dll"), nullptr) << "loading it takes as long as several frames of a game";
}

TEST(EngineStart, SecondTestView_ReleasesTheFirst) {
    GameHost game;
    auto& manager = ZEMOMultiLayerManager::instance();
    createWebViewTEST();
    EXPECT_EQ(manager.getLayerCount(), 1);
    createWebViewTEST();
    EXPECT_EQ(manager.getLayerCount(), 1) << "the first one left the list when it was released";
    EXPECT_TRUE(game.waitFor("one page process", [&] {
        size_t pages = 0;
        for (const DWORD child : childProcesses()) pages += childType(child) == "renderer";
        return pages == 1;
    }));
}

TEST(EngineStart, StopWithoutAnEngine_DoesNothing) {
    const DebugLogCapture log;
    CefModule::stop();
    CefModule::abandon();
    EXPECT_TRUE(log.lines().empty()) << log.dump();
}

TEST(EngineStart, LanguageText_LanguageAndCountryUnchecked) {
    EXPECT_EQ(buildLanguageText(L"ko", L"KR"), L"ko-KR,ko");
    EXPECT_EQ(buildLanguageText(L"ko", L""), L"ko-,ko");
    EXPECT_EQ(buildLanguageText(L"", L""), L"-,");
}

}  // namespace ZEMO::Test
