#include "controller/controller_scripts.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "controller/controller_pages.h"

namespace ZEMO::UI {
namespace {

// The scripts' texts as pages know them, each in one piece with its line breaks and blanks.
// clang-format off
constexpr char kBeforeStatus[] =
    "(function() {    window.gameControllerStatus = ";
constexpr char kAfterStatus[] =
    ";    const head = document.head || document.getElementsByTagName('head')[0];    "
    "const cssFiles = [        ";
constexpr char kAfterStyles[] =
    "    ];    cssFiles.forEach(href => {        const link = document.createElement('link');        "
    "link.href = href;        link.rel = 'stylesheet';        link.type = 'text/css';        "
    "head.appendChild(link);    });    const scripts = ['";
constexpr char kAfterScripts[] =
    "js/spatial_navigation.js', '";
constexpr char kEnd[] =
    "js/gamepad_navigation.js'];    scripts.forEach(src => {        "
    "const script = document.createElement('script');        script.src = src;        "
    "script.type = 'text/javascript';        script.async = false;        head.appendChild(script);    "
    "});    document.addEventListener('DOMContentLoaded', function() {        "
    "document.body.classList.add('focus_on');        "
    "console.log('Resource injection complete and <body> class updated');        "
    "const keymapDiv = document.createElement('div');        keymapDiv.className = 'keymap_info';        "
    "keymapDiv.style.display = 'none';        document.body.appendChild(keymapDiv);    });})();";
constexpr char kInputBefore[] =
    "\n            (function() {\n                try {\n                    "
    "if (typeof handleControllerInput === 'function') {\n                        handleControllerInput(";
constexpr char kInputAfter[] =
    ");\n                    } else {\n                        "
    "console.warn('handleControllerInput is not defined.');\n                    }\n                "
    "} catch (error) {\n                    "
    "console.error('Error while calling handleControllerInput:', error);\n                }\n            "
    "})();\n        ";
constexpr char kInitBefore[] =
    "\n            (function() {\n                try {\n                    "
    "if (typeof initClientGamePad === 'function') {\n                        initClientGamePad(";
constexpr char kInitAfter[] =
    ");\n                    } else {\n                        "
    "console.warn('initClientGamePad is not defined.');\n                    }\n                "
    "} catch (error) {\n                    "
    "console.error('Error while calling initClientGamePad:', error);\n                }\n            "
    "})();\n        ";
constexpr char kFocusGained[] =
    "\n            (function() {\n                try {\n                    "
    "if (typeof handleFocusGained === 'function') {\n                        "
    "handleFocusGained();\n                    }\n                } catch (error) {\n                    "
    "console.error('Error while calling handleFocusGained:', error);\n                }\n            "
    "})();\n        ";
constexpr char kFocusLost[] =
    "\n            (function() {\n                try {\n                    "
    "if (typeof handleFocusLost === 'function') {\n                        "
    "handleFocusLost();\n                    }\n                } catch (error) {\n                    "
    "console.error('Error while calling handleFocusLost:', error);\n                }\n            "
    "})();\n        ";
// clang-format on

struct Row {
    const char* page;
    const char* base;
    bool focusStyle;
};
constexpr char kScheme[] = "zemosdkcustomscheme://resources/common/";
constexpr char kFolder[] = "../../common/";
constexpr Row kRows[] = {
    {"html/idp_login", kFolder, true},
    {"html/login_stand_by", kScheme, true},
    {"html/comprehensive_banner", kFolder, true},
    {"html/server_popup", kScheme, true},
    {"html/default_popup_1", kScheme, true},
    {"html/access_popup", kFolder, true},
    {"html/steamdeck_login", kFolder, true},
    {"html/google_popup_2", kFolder, true},
    {"html/login_idp", kFolder, false},
    {"html/zemostore_popup", kFolder, true},
    {"html/unsupported_popup", kFolder, true},
    {"html/adult_certification", kFolder, true},
};
static_assert(std::size(kRows) == 12);

std::string expectedScript(const Row& row, const std::string& status) {
    const std::string base = row.base;
    const std::string focusStyle = row.focusStyle ? "'" + base + "css/focus.css', " : "";
    return kBeforeStatus + status + kAfterStatus + focusStyle + "        '" + base + "css/keymap.min.css'" +
           kAfterStyles + base + kAfterScripts + base + kEnd;
}

std::wstring wide(const std::string& ascii) { return {ascii.begin(), ascii.end()}; }

std::string scriptFor(const std::string& url, const std::string& status = "{}") {
    return ControllerScripts::buildControllerPageScript(wide(url), status);
}

bool isPage(const std::string& url) {
    const bool listed = ControllerScripts::isControllerPage(url);
    EXPECT_EQ(listed, !scriptFor(url).empty()) << url;
    return listed;
}

/// An empty folder as the current one; the one before is back at the end.
class InFolder {
public:
    InFolder() : before(std::filesystem::current_path()) {
        for (int i = 0; !create_directory(folder = before / ("controller_pages_" + std::to_string(i))); ++i) {
        }
        current_path(folder);
    }
    ~InFolder() {
        std::error_code ignored;
        current_path(before, ignored);
        remove_all(folder, ignored);
    }
    InFolder(const InFolder&) = delete;
    InFolder& operator=(const InFolder&) = delete;
    std::filesystem::path before, folder;
};

}  // namespace

TEST(ControllerPages, Table_TwelveRowsAtLoadFactorOne) {
    EXPECT_EQ(kGameControllerPageTable.size(), std::size(kRows));
    EXPECT_EQ(kGameControllerPageTable.max_load_factor(), 1.0f);
    for (const Row& row : kRows) {
        const auto found = kGameControllerPageTable.find(row.page);
        ASSERT_NE(found, kGameControllerPageTable.end()) << row.page;
        EXPECT_EQ(found->second, std::pair(row.base == kScheme, row.focusStyle)) << row.page;
    }
}

TEST(ControllerPages, Table_NoPathOccursInAnother) {
    for (const Row& a : kRows) {
        for (const Row& b : kRows) {
            if (&a == &b) continue;
            EXPECT_EQ(std::string(a.page).find(b.page), std::string::npos) << a.page << " " << b.page;
        }
    }
}

TEST(ControllerPages, Table_EachRowGivesItsWholeScript) {
    const std::string status = "{\"isConnected\":true,\"name\":\"\xED\x8C\xA8\xEB\x93\x9C\"}";
    for (const Row& row : kRows) {
        EXPECT_TRUE(isPage(row.page)) << row.page;
        EXPECT_EQ(scriptFor(row.page, status), expectedScript(row, status)) << row.page;
    }
}

TEST(ControllerPages, EmptyStatus_IsNullForThePage) {
    for (const Row& row : kRows) EXPECT_EQ(scriptFor(row.page, ""), expectedScript(row, "null")) << row.page;
    EXPECT_NE(scriptFor("html/idp_login", "").find("window.gameControllerStatus = null;"), std::string::npos);
}

TEST(ControllerPages, PageWithoutFocusStyle_LinksTheKeyHintsOnly) {
    const std::string script = scriptFor("html/login_idp/index");
    EXPECT_EQ(script.find("css/focus.css"), std::string::npos);
    EXPECT_NE(script.find("'../../common/css/keymap.min.css'"), std::string::npos);
}

TEST(ControllerPages, Table_PathAnywhereInTheTextMatches) {
    for (const char* url :
         {"html/idp_login", "html/idp_login/index", "html/idp_login_v2", "x/html/idp_login.html", "/html/idp_login",
          "html//idp_login/index", "html/./idp_login", "html/x/../idp_login", "xhtml/idp_login",
          "file:///C:/game/resources/html/idp_login/index.html", "https://example.com/html/idp_login?x=1",
          "zemosdkcustomscheme://resources/html/idp_login/index.html", "https://example.com/?page=html/idp_login"}) {
        EXPECT_TRUE(isPage(url)) << url;
    }
}

TEST(ControllerPages, Table_AnyOtherTextDoesNot) {
    for (const char* url :
         {"", "idp_login", "idp_login/index", "html", "html/", "html/start", "html/IDP_LOGIN", "HTML/idp_login",
          "html/idp_logi", "html/idp/login", "html/idp_login/../start", "html/x/idp_login", "https://example.com/",
          "html%2Fidp_login", "data:text/html,idp_login", "html/default_popup_2"}) {
        EXPECT_FALSE(isPage(url)) << url;
    }
}

TEST(ControllerPages, TwoPagesOfNearlyOneName_AreDistinct) {
    EXPECT_NE(scriptFor("html/idp_login").find("focus.css"), std::string::npos);
    EXPECT_EQ(scriptFor("html/login_idp").find("focus.css"), std::string::npos);
}

TEST(ControllerPages, TextThatIsNoUtf8_NoPageAndNoException) {
    EXPECT_NO_THROW(ControllerScripts::isControllerPage("start\xFF\xFE"));
#ifdef _WIN32  // elsewhere a path is bytes, and every byte text is one
    EXPECT_FALSE(ControllerScripts::isControllerPage("html/idp_login/\xFF\xFE"));
#endif
    EXPECT_NO_THROW(ControllerScripts::buildControllerPageScript(L"start\xDC00", ""));
}

TEST(ControllerPages, PageInAFolderThatExists_ResolvedOnDiskAndFound) {
    const InFolder in;
    const auto page = in.folder / "html" / "idp_login" / "index.html";
    create_directories(page.parent_path());
    std::ofstream(page) << "<p>";
    EXPECT_TRUE(isPage("html/idp_login/index.html"));
    EXPECT_TRUE(isPage(page.generic_string()));
    EXPECT_TRUE(isPage(page.string()));
    // With "html" in the current folder the rows are places on disk: another place is not meant.
    EXPECT_FALSE(isPage("other/html/idp_login"));
}

#ifndef _WIN32  // links need a privilege there
TEST(ControllerPages, RingOfLinks_CountsAsNoMatch) {
    const InFolder in;
    create_symlink(in.folder / "b", in.folder / "a");
    create_symlink(in.folder / "a", in.folder / "b");
    EXPECT_FALSE(isPage((in.folder / "a" / "html" / "idp_login").generic_string()));
}
#endif

TEST(ControllerScripts, InitCall_StatusStandsInItUnquoted) {
    EXPECT_EQ(ControllerScripts::buildInitClientGamePadScript("{\"a\": \"'\"}"),
              kInitBefore + std::string("{\"a\": \"'\"}") + kInitAfter);
    EXPECT_EQ(ControllerScripts::buildInitClientGamePadScript(""), kInitBefore + std::string(kInitAfter));
}

TEST(ControllerScripts, InputCall_DataStandsInItUnquoted) {
    EXPECT_EQ(ControllerScripts::buildHandleControllerInputScript("[1,\"\xED\x95\x9C\"]"),
              kInputBefore + std::string("[1,\"\xED\x95\x9C\"]") + kInputAfter);
}

TEST(ControllerScripts, FocusCalls_SayNothingWhenThePageHasNoHandler) {
    EXPECT_EQ(ControllerScripts::buildFocusGainedScript(), kFocusGained);
    EXPECT_EQ(ControllerScripts::buildFocusLostScript(), kFocusLost);
}

}  // namespace ZEMO::UI
