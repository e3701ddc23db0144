#include <gtest/gtest.h>

#include <clocale>
#include <filesystem>

#include "engine/game_host.h"
#include "layers/layer_manager.h"
#include "support/http_server.h"

// The start-up for tests, and the hook module that it loads.
namespace ZEMO::Test {
namespace {

namespace fs = std::filesystem;
using namespace ZEMO::UI;

constexpr wchar_t kHookName[] = L"ZEMOGraphicsHook.dll";

fs::path programDirectory() {
    wchar_t path[1024];
    GetModuleFileNameW(nullptr, path, 1024);
    return fs::path(path).parent_path();
}

ZEMOMultiLayerManager& manager() { return ZEMOMultiLayerManager::instance(); }

/// The stub module beside the program for as long as this lives; no other test may meet it.
class StagedHookModule {
public:
    StagedHookModule() {
        fs::copy_file(programDirectory() / L"test_helpers" / kHookName, staged, fs::copy_options::overwrite_existing);
    }
    ~StagedHookModule() {
        manager().setGraphicsHookModule(nullptr);
        while (const HMODULE loaded = GetModuleHandleW(kHookName)) FreeLibrary(loaded);
        std::error_code ignored;
        fs::remove(staged, ignored);
    }

private:
    fs::path staged = programDirectory() / kHookName;
};

}  // namespace

TEST(TestStart, EngineRunning_ResultSubclassLocaleAndPage) {
    HttpServer server;
    server.serveHtml("/", solidPage("#314159"));
    GameHost game({.startLibrary = false});
    const std::string utf8 = std::setlocale(LC_ALL, ".UTF8");
    ASSERT_NE(utf8, std::setlocale(LC_ALL, "C"));
    EXPECT_EQ(InitUILibraryTEST(), -1);
    EXPECT_EQ(manager().getMainWindow(), game.window);
    EXPECT_EQ(GetWindowLongPtrW(game.window, GWLP_WNDPROC),
              reinterpret_cast<LONG_PTR>(&ZEMOMultiLayerManager::layerWindowProc));
    EXPECT_EQ(std::setlocale(LC_ALL, nullptr), utf8);
    EXPECT_EQ(manager().getGraphicsHookModule(), nullptr) << "there is no hook module here";
    NavigationRecorder events;
    auto view = game.makeView(server.url("/"), events);
    view->show();
    EXPECT_TRUE(game.waitFor("the page", [&] { return game.frames.pixel(9, 9) == 0xFF314159u; }));
}

TEST(TestStart, HookModuleThere_TestStartLoadsIt) {
    const StagedHookModule staged;
    GameHost game({.startLibrary = false});
    EXPECT_EQ(InitUILibraryTEST(), -1);
    const HMODULE loaded = GetModuleHandleW(kHookName);
    EXPECT_TRUE(loaded);
    EXPECT_EQ(manager().getGraphicsHookModule(), loaded);
}

TEST(GraphicsHook, NoModule_HandleIsNull) {
    InitUIGraphicsHook();
    EXPECT_EQ(manager().getGraphicsHookModule(), nullptr);
}

TEST(GraphicsHook, ModuleThere_HandleIsStoredAndASecondCallStoresTheSame) {
    const StagedHookModule staged;
    InitUIGraphicsHook();
    const HMODULE loaded = GetModuleHandleW(kHookName);
    ASSERT_TRUE(loaded);
    EXPECT_EQ(manager().getGraphicsHookModule(), loaded);
    InitUIGraphicsHook();
    EXPECT_EQ(manager().getGraphicsHookModule(), loaded);
}

TEST(GraphicsHook, ModuleGoneAfterTheFirstCall_SecondCallStoresNull) {
    {
        const StagedHookModule staged;
        InitUIGraphicsHook();
        ASSERT_TRUE(manager().getGraphicsHookModule());
    }
    InitUIGraphicsHook();
    EXPECT_EQ(manager().getGraphicsHookModule(), nullptr);
}

}  // namespace ZEMO::Test
