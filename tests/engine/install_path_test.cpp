#include <gtest/gtest.h>

#include <fstream>

#include "engine/game_host.h"
#include "engine/helper_game.h"
#include "support/http_server.h"

// Where a player may have put the game, and what the library's own resources make of it. docs/local-pages.md says the
// same.
namespace ZEMO::Test {
namespace fs = std::filesystem;
namespace {

constexpr char kColored[] = "<!doctype html><style>html,body{margin:0;background:#204060}</style>";

/// A game in a folder of this name, with a page of its own beside the library.
class InstallPath : public ::testing::Test {
protected:
    void installIn(const wchar_t* name) {
        folder = copyOfLibraryFolder(name);
        std::ofstream(folder / "resources" / "html" / "probe.html") << kColored;
    }
    ~InstallPath() override {
        std::error_code ignored;
        if (!folder.empty()) fs::remove_all(folder, ignored);
    }
    fs::path library() const { return folder / "ZEMOUIFramework.dll"; }

    /// What a page on the net tells of a resource that it takes by the custom scheme.
    std::string schemeResource(const fs::path& program = {}) {
        HttpServer server;
        server.serveHtml("/there", "");
        server.serveHtml("/missing", "");
        server.serveHtml("/",
                         std::string(kColored) +
                             "<script>const i=new Image;i.onload=()=>fetch('/there');i.onerror=()=>fetch('/missing');"
                             "i.src='zemosdkcustomscheme://resources/img/mark.png'</script>");
        const std::string address = server.url("/");
        HelperGame game(library(), L"wait " + std::wstring(address.begin(), address.end()), folder, program);
        for (const auto end = std::chrono::steady_clock::now() + 90s; std::chrono::steady_clock::now() < end;
             Sleep(20)) {
            if (server.requestCount("/there") > 0) return "there";
            if (server.requestCount("/missing") > 0) return "missing";
        }
        return "no answer: " + game.output();
    }
    /// The line that a game whose local page is opened by its name prints.
    void expectLocalPage(const char* line) {
        HelperGame game(library(), L"wait page:probe", folder);
        EXPECT_TRUE(game.waitForLine(line)) << game.output();
    }

    fs::path folder;
};

/// Whether the process shows a dialog, as the system's for a file's name.
bool showsDialog(DWORD process) {
    struct Search {
        DWORD process;
        bool found;
    } search{process, false};
    EnumWindows(
        [](HWND window, LPARAM parameter) -> BOOL {
            auto& wanted = *reinterpret_cast<Search*>(parameter);
            DWORD owner = 0;
            wchar_t name[16] = {};
            GetWindowThreadProcessId(window, &owner);
            GetClassNameW(window, name, 16);
            if (owner == wanted.process && std::wstring(name) == L"#32770") wanted.found = true;
            return !wanted.found;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.found;
}

/// Whether a name with Korean letters survives the way through the code page that narrow names have here.
bool codePageHasKorean() { return GetACP() == CP_UTF8; }

}  // namespace

TEST_F(InstallPath, BlankHashAndPercent_SchemeServesItsResources) {
    installIn(L"a b # %41 1");
    EXPECT_EQ(schemeResource(), "there");
}

TEST_F(InstallPath, KoreanLetters_SchemeServesThemOnlyWhereTheCodePageIsUtf8) {
    installIn(L"게임 2");
    EXPECT_EQ(schemeResource(), codePageHasKorean() ? "there" : "missing");
}

TEST_F(InstallPath, KoreanLettersAndAManifestThatNamesUtf8_SchemeServesItsResources) {
    installIn(L"게임 3");
    const fs::path program = folder / "test_helpers" / "zemo_engine_helper.exe";
    std::ofstream(folder / "test_helpers" / "zemo_engine_helper.exe.manifest")
        << R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">
  <assemblyIdentity type="win32" name="zemo_engine_helper" version="1.0.0.0"/>
  <application><windowsSettings>
    <activeCodePage xmlns="http://schemas.microsoft.com/SMI/2019/WindowsSettings">UTF-8</activeCodePage>
  </windowsSettings></application>
</assembly>)";
    EXPECT_EQ(schemeResource(program), "there");
}

TEST_F(InstallPath, BlankAndKoreanLetters_LocalPageByNameIsShown) {
    installIn(L"게임 폴더 4");
    expectLocalPage("ready");
}

// The address ends at the mark. So do the names of the engine's databases in its cache: one of them may already lie
// where the address points, and the engine then offers it as a download.
TEST_F(InstallPath, HashInAFoldersName_LocalPageByNameIsNotFound) {
    installIn(L"a # 5");
    HelperGame game(library(), L"wait page:probe", folder);
    bool failed = false, offered = false;
    for (const auto end = std::chrono::steady_clock::now() + 45s;
         !failed && !offered && std::chrono::steady_clock::now() < end;) {
        failed = game.waitForLine("log: navigationFailed: -6", 200ms);
        offered = showsDialog(game.processId());
    }
    EXPECT_TRUE(failed || offered) << game.output();
    EXPECT_FALSE(game.waitForLine("ready", 0ms)) << game.output();
}

TEST_F(InstallPath, PercentEscapeInAFoldersName_LocalPageByNameIsNotFound) {
    installIn(L"a %41 6");
    expectLocalPage("log: navigationFailed: -6");
}

}  // namespace ZEMO::Test
