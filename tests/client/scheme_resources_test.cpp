#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <format>

#include "client/client_view.h"
#include "client/page_report.h"
#include "client/resource_tree.h"
#include "engine/client_scheme_handler.h"
#include "support/debug_log.h"
#include "support/image_bytes.h"
#include "support/import_replaced.h"

// Files beside the library, by real pages through the custom scheme.
namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

/// A view on a page of the scheme that asks for files and tells what came.
class SchemeResources : public ::testing::Test {
protected:
    SchemeResources() : tree(L"scheme_test") {}

    /// Opens a page of the scheme whose script is `script`; it may use get(name) and report(text).
    void openPage(const std::string& script) {
        tree.write(L"page.html", "<!doctype html><meta charset=utf-8><body>" + reports.script() + R"(<script>
            // "status type length first-bytes", or "cancelled"
            function get(address){return new Promise(done=>{const x=new XMLHttpRequest;x.open('GET',address);
              x.responseType='arraybuffer';x.onerror=()=>done('cancelled');
              x.onload=()=>{const b=new Uint8Array(x.response);done(x.status+' '+x.getResponseHeader('Content-Type')+' '
                +b.length+' '+String.fromCharCode(...b.slice(0,20)))};x.send()})}
            )" + script + "</script>");
        view = std::make_unique<ClientView>(game, tree.url("page.html"));
    }
    /// What a page of the scheme gets for each of these addresses, one a line.
    std::vector<std::string> got(const std::vector<std::string>& addresses) {
        std::string list;
        for (const std::string& address : addresses) list += "'" + address + "',";
        openPage("(async()=>{const lines=[];for(const a of [" + list +
                 "])lines.push(await get(a));report(lines.join('\\n'))})()");
        std::vector<std::string> lines;
        const std::string text = reports.wait(game);
        for (size_t start = 0, end = 0; start <= text.size(); start = end + 1) {
            end = std::min(text.find('\n', start), text.size());
            lines.push_back(text.substr(start, end - start));
        }
        lines.resize(addresses.size());
        return lines;
    }

    GameHost game;
    ResourceTree tree;
    PageReports reports;
    std::unique_ptr<ClientView> view;
};

int accessDenied(const wchar_t*, struct _stat64*) {
    errno = EACCES;
    return -1;
}

}  // namespace

TEST_F(SchemeResources, Page_LoadsItsScriptStyleAndPicture) {
    tree.write(L"style.css", "html,body{margin:0;background:#0a141e;height:100%}");
    tree.write(L"script.js", "window.fromScript='ran'");
    const Bytes png = makePng(3, 2, [](int, int) { return 0xFF0000FFu; });
    tree.write(L"img/picture.png", std::string(png.begin(), png.end()));
    openPage(
        "</script><link rel=stylesheet href=style.css><script src=script.js></script><img id=i src=img/picture.png>"
        "<script>onload=()=>report(window.fromScript+' '+i.naturalWidth+'x'+i.naturalHeight)");
    EXPECT_EQ(reports.wait(game), "ran 3x2");
    EXPECT_TRUE(game.waitFor("the style's colour", [&] { return game.frames.pixel(300, 190) == 0xFF0A141Eu; }));
    EXPECT_FALSE(view->events->has("failed -300"));
}

TEST_F(SchemeResources, CommonFolder_IsBelowTheLibrarysHtmlFolder) {
    const std::filesystem::path file = tree.root / "common" / "app.js";
    std::ofstream(file) << "common";
    EXPECT_EQ(got({"zemosdkcustomscheme://resources/common/app.js"}),
              std::vector<std::string>{"200 application/x-javascript 6 common"});
    std::filesystem::remove(file);
}

TEST_F(SchemeResources, EachServedEnding_AnsweredWithItsTypeAndItsBytes) {
    struct Row {
        const char* ending;
        const char* type;
    };
    constexpr Row kRows[] = {{"css", "text/css"},
                             {"js", "application/x-javascript"},
                             {"html", "text/html"},
                             {"jpg", "image/jpeg"},
                             {"png", "image/png"},
                             {"jpeg", "image/jpeg"},
                             {"gif", "image/gif"},
                             {"bmp", "image/bmp"},
                             {"ico", "image/x-icon"},
                             {"tif", "image/tiff"},
                             {"tiff", "image/tiff"},
                             {"json", "application/x-javascript"},
                             {"jsp", "application/x-javascript"}};
    static_assert(std::size(kRows) == 13);
    std::vector<std::string> addresses;
    for (const Row& row : kRows) {
        const std::string name = std::string("file.") + row.ending;
        tree.write(std::wstring(name.begin(), name.end()), std::string("bytes of ") + row.ending);
        addresses.push_back(name);
    }
    const std::vector<std::string> lines = got(addresses);
    for (size_t i = 0; i < std::size(kRows); ++i) {
        const std::string bytes = std::string("bytes of ") + kRows[i].ending;
        EXPECT_EQ(lines[i], std::format("200 {} {} {}", kRows[i].type, bytes.size(), bytes)) << kRows[i].ending;
    }
}

TEST_F(SchemeResources, OtherEndings_Cancelled) {
    std::vector<std::string> addresses;
    for (const char* name :
         {"a.svg", "a.woff", "a.woff2", "a.ttf", "a.txt", "a.mp4", "a.webp", "b.CSS", "b.Js", "b.HTML"}) {
        tree.write(std::wstring(name, name + std::strlen(name)), "there");
        addresses.emplace_back(name);
    }
    for (const std::string& line : got(addresses)) EXPECT_EQ(line, "cancelled");
}

TEST_F(SchemeResources, MissingFilesAndFolders_AnsweredEmptyWithTheTypeOfTheirName) {
    std::filesystem::create_directories(tree.base / "folder.css");
    DebugLogCapture log;
    EXPECT_EQ(got({"none.css", "none/none.png", "folder.css", "folder.css/"}),
              (std::vector<std::string>{"200 text/css 0 ", "200 image/png 0 ", "200 text/css 0 ", "200 text/css 0 "}));
    EXPECT_TRUE(log.contains("resource is missing: " + tree.url("none.css"))) << log.dump();
}

TEST_F(SchemeResources, QueryOrFragmentBehindAFilesName_IsPartOfTheNameLookedFor) {
    tree.write(L"a.css", "style");
    tree.write(L"b.html", "page");
    tree.write(L"c.svg", "picture");
    EXPECT_EQ(got({"a.css", "a.css?v=1", "b.html?icon=x.png", "c.svg?as=.css", "a.css#x"}),
              (std::vector<std::string>{"200 text/css 5 style", "200 text/css 0 ", "200 text/html 0 ",
                                        "200 text/css 0 ", "200 text/css 0 "}));
}

TEST_F(SchemeResources, EmptyFile_AnsweredEmpty) {
    tree.write(L"empty.js", "");
    EXPECT_EQ(got({"empty.js"}), std::vector<std::string>{"200 application/x-javascript 0 "});
}

TEST_F(SchemeResources, SchemesCapitals_AreTheSameAndAFilesNameHasWindowsRules) {
    tree.write(L"a.css", "style");
    EXPECT_EQ(got({"ZEMOSDKCUSTOMSCHEME://RESOURCES/scheme_test/a.css", "A.css"}),
              (std::vector<std::string>{"200 text/css 5 style", "200 text/css 5 style"}));
}

TEST_F(SchemeResources, NamesThatAnAddressEscapes_NotFoundUnderTheirOwnName) {
    tree.write(L"a b.css", "blank");
    tree.write(L"한글.css", "Korean");
    tree.write(L"a%20c.css", "escaped");
    EXPECT_EQ(
        got({"a b.css", "한글.css", "a c.css", "%61.css"}),
        (std::vector<std::string>{"200 text/css 0 ", "200 text/css 0 ", "200 text/css 7 escaped", "200 text/css 0 "}));
}

TEST_F(SchemeResources, DomainsWordInAPath_IsTakenOut) {
    tree.write(L"folder/a.css", "found");
    EXPECT_EQ(got({"folderresources/a.css", "resourcesfolder/a.css", "folder/resources/a.css"}),
              (std::vector<std::string>(3, "200 text/css 5 found")));
}

TEST_F(SchemeResources, PageClimbsOutOfTheFolder_GetsWhatLiesThere) {
    const std::filesystem::path outside = tree.root.parent_path() / "outside.css";
    std::ofstream(outside) << "outside";
    EXPECT_EQ(got({"zemosdkcustomscheme://resources/.resources./outside.css",
                   "zemosdkcustomscheme://resources/../outside.css"}),
              (std::vector<std::string>{"200 text/css 7 outside", "200 text/css 0 "}))
        << "the engine takes plain steps out of an address by itself";
    std::filesystem::remove(outside);
}

TEST_F(SchemeResources, FileOfFiftyMegabytes_ArrivesWhole) {
    std::string bytes(50 * 1024 * 1024, '\0');
    uint32_t sum = 0;
    for (size_t i = 0; i < bytes.size(); ++i) {
        const auto byte = static_cast<uint8_t>((i * 2654435761u) >> 13);
        bytes[i] = static_cast<char>(byte);
        sum = sum * 31 + byte;
    }
    tree.write(L"big.js", bytes);
    openPage(
        "const x=new XMLHttpRequest;x.open('GET','big.js');x.responseType='arraybuffer';x.onload=()=>{"
        "let h=0;const b=new Uint8Array(x.response);for(let i=0;i<b.length;i++)h=(Math.imul(h,31)+b[i])>>>0;"
        "report(b.length+' '+h)};x.send()");
    EXPECT_EQ(reports.wait(game), std::format("{} {}", bytes.size(), sum));
}

TEST_F(SchemeResources, FortyRequestsAtOnce_EachGetsItsOwnFile) {
    std::string expected;
    for (int i = 0; i < 40; ++i) {
        const std::string bytes(static_cast<size_t>(1 + i * 70'001), static_cast<char>('!' + i));
        tree.write(L"f" + std::to_wstring(i) + L".js", bytes);
        expected += std::format("{}:{};", bytes.size(), '!' + i);
    }
    openPage(
        "Promise.all([...Array(40).keys()].map(i=>new Promise(done=>{const x=new XMLHttpRequest;"
        "x.open('GET','f'+i+'.js');x.responseType='arraybuffer';x.onload=()=>{const b=new Uint8Array(x.response);"
        "done(b.length+':'+(b.every(v=>v==b[0])?b[0]:'mixed')+';')};x.send()}))).then(r=>report(r.join('')))");
    EXPECT_EQ(reports.wait(game), expected);
}

TEST_F(SchemeResources, PageOfAnUnservedType_IsAFailedNavigationAndTheViewGoesOn) {
    DebugLogCapture log;
    view = std::make_unique<ClientView>(game, tree.url("page.svg"));
    EXPECT_TRUE(game.waitFor("the failure",
                             [&] { return view->events->has("failed -2") || view->events->has("failed -302"); }));
    EXPECT_TRUE(log.contains("resource of a type that is not served: " + tree.url("page.svg"))) << log.dump();
    tree.write(L"next.html", "<body>" + reports.script() + "<script>report('next')</script>");
    view->adapter->getBrowser()->GetMainFrame()->LoadURL(tree.url("next.html"));
    EXPECT_EQ(reports.wait(game), "next");
}

// One handler by itself, with the engine's own response object.
TEST(SchemeHandler, Headers_TypeStatusAndLengthAndNothingElse) {
    GameHost game;
    const ResourceTree tree(L"handler_test");
    tree.write(L"a.png", "12345");
    CefRefPtr<ClientSchemeHandler> handler = new ClientSchemeHandler;
    ASSERT_TRUE(handler->loadResource(tree.url("a.png")));
    const CefRefPtr<CefResponse> response = CefResponse::Create();
    int64_t length = -1;
    CefString redirect;
    handler->GetResponseHeaders(response, length, redirect);
    EXPECT_EQ(response->GetMimeType().ToString(), "image/png");
    EXPECT_EQ(response->GetStatus(), 200);
    EXPECT_EQ(response->GetStatusText().ToString(), "");
    CefResponse::HeaderMap headers;
    response->GetHeaderMap(headers);
    EXPECT_TRUE(headers.empty());
    EXPECT_EQ(length, 5);
    EXPECT_TRUE(redirect.empty());
}

TEST(SchemeHandler, Read_HandsOutPieceByPieceThenSaysItIsOver) {
    GameHost game;
    const ResourceTree tree(L"handler_test");
    tree.write(L"a.js", "1234567");
    tree.write(L"empty.js", "");
    CefRefPtr<ClientSchemeHandler> handler = new ClientSchemeHandler;
    ASSERT_TRUE(handler->loadResource(tree.url("a.js")));
    std::string text;
    char piece[3];
    int read = -1;
    while (handler->Read(piece, 3, read, nullptr)) text += std::string(piece, static_cast<size_t>(read)) + "|";
    EXPECT_EQ(text, "123|456|7|");
    EXPECT_EQ(read, 0);
    EXPECT_FALSE(handler->Read(piece, 3, read, nullptr)) << "and stays over";
    CefRefPtr<ClientSchemeHandler> empty = new ClientSchemeHandler;
    ASSERT_TRUE(empty->loadResource(tree.url("empty.js")));
    read = -1;
    EXPECT_FALSE(empty->Read(piece, 3, read, nullptr));
    EXPECT_EQ(read, 0);
}

TEST(SchemeHandler, OperationsLeftToTheEnginesBase_SayThatTheyDoNothing) {
    CefRefPtr<ClientSchemeHandler> handler = new ClientSchemeHandler;
    int64_t skipped = 7;
    EXPECT_FALSE(handler->Skip(1, skipped, nullptr));
    EXPECT_EQ(skipped, -2);
    int read = 7;
    EXPECT_FALSE(handler->ReadResponse(nullptr, 1, read, nullptr));
    EXPECT_EQ(read, -2);
    EXPECT_FALSE(handler->ProcessRequest(nullptr, nullptr));
}

TEST(SchemeHandler, SystemDoesNotSayWhatStandsThere_ErrorOfTheStandardLibrary) {
    GameHost game;
    // No test's user is refused anything here, so the runtime's answer is made up.
    const ImportReplaced refused("_wstat64", &accessDenied);
    CefRefPtr<ClientSchemeHandler> handler = new ClientSchemeHandler;
    try {
        handler->loadResource("zemosdkcustomscheme://resources/a.css");
        FAIL() << "no error";
    } catch (const std::filesystem::filesystem_error& error) {
        EXPECT_NE(std::string(error.what()).find("status"), std::string::npos) << error.what();
    }
}

TEST(SchemeHandler, FileHeldByAnotherProgram_IsEmptyNotPartOfIt) {
    GameHost game;
    const ResourceTree tree(L"handler_test");
    const std::filesystem::path file = tree.write(L"held.css", "held");
    const HANDLE held = CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(held, INVALID_HANDLE_VALUE);
    DebugLogCapture log;
    CefRefPtr<ClientSchemeHandler> handler = new ClientSchemeHandler;
    EXPECT_TRUE(handler->loadResource(tree.url("held.css")));
    char piece[8];
    int read = -1;
    EXPECT_FALSE(handler->Read(piece, 8, read, nullptr));
    CloseHandle(held);
    EXPECT_TRUE(log.contains("resource can't be read")) << log.dump();
}

}  // namespace ZEMO::Test
