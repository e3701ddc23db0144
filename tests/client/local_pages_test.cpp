#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>

#include "client/page_report.h"
#include "client/resource_tree.h"
#include "support/image_bytes.h"

// What each kind of page gets of the local resources: the table of docs/local-pages.md.
namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;

/// Tells the names of the kinds of resource that came.
constexpr char kProbe[] = R"(<script>
const base='zemosdkcustomscheme://resources/local_test/';
const limited=p=>Promise.race([p,new Promise(r=>setTimeout(()=>r('hangs'),8000))]).catch(()=>'no');
const loaded=(e,where)=>new Promise(r=>{e.onload=()=>r(true);e.onerror=()=>r(false);where&&where.append(e)});
const element=(name,set)=>Object.assign(document.createElement(name),set);
const probes={
 script:async()=>await loaded(element('script',{src:base+'a.js'}),document.head)&&window.ran===1,
 module:async()=>await loaded(element('script',{type:'module',src:base+'m.js'}),document.head)&&window.moduleRan===1,
 style:async()=>await loaded(element('link',{rel:'stylesheet',href:base+'a.css'}),document.head)&&
   getComputedStyle(document.body).paddingLeft==='7px',
 image:async()=>{const i=new Image;i.src=base+'a.png';return await loaded(i)&&i.naturalWidth===3},
 font:async()=>(await new FontFace('a','url('+base+'a.ttf)').load()).status==='loaded',
 renamedFont:async()=>(await new FontFace('b','url('+base+'a.js.ttf)').load()).status==='loaded',
 fetch:async()=>(await (await fetch(base+'data.json')).text())==='[1]',
 xhr:()=>new Promise(r=>{const x=new XMLHttpRequest;x.open('GET',base+'data.json');
   x.onload=()=>r(x.responseText==='[1]');x.onerror=()=>r(false);x.send()}),
 frame:async()=>{const f=element('iframe',{src:base+'frame.html'});
   const told=new Promise(r=>onmessage=e=>r(e.data==='in frame'));document.body.append(f);return told},
};
onload=async()=>{let text='';for(const name in probes){const r=await limited(probes[name]());
  text+=r===true?name+' ':r==='hangs'?name+':hangs ':''}report(text)};
</script>)";

/// A TrueType file of the system's. Wine names them by their whole path, Windows by their place in its folder.
std::filesystem::path systemFont() {
    wchar_t windows[MAX_PATH] = {};
    GetWindowsDirectoryW(windows, MAX_PATH);
    HKEY fonts = nullptr;
    RegOpenKeyExW(HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\Windows NT\\CurrentVersion\\Fonts", 0, KEY_READ, &fonts);
    std::filesystem::path found;
    for (DWORD i = 0; found.empty(); ++i) {
        wchar_t name[256];
        wchar_t file[1024] = {};
        DWORD nameLength = 256;
        DWORD bytes = sizeof file - sizeof *file;
        if (RegEnumValueW(fonts, i, name, &nameLength, nullptr, nullptr, reinterpret_cast<BYTE*>(file), &bytes)) break;
        const std::filesystem::path path = std::filesystem::path(windows) / L"Fonts" / file;
        // An ordinary one: the engine refuses some, as those of signs alone.
        const bool isOrdinary = std::wstring_view(name).starts_with(L"Arial (");
        if (isOrdinary && path.extension() == L".ttf" && std::filesystem::exists(path)) found = path;
    }
    RegCloseKey(fonts);
    return found;
}

class LocalPages : public ::testing::Test {
protected:
    LocalPages() : tree(L"local_test") {
        tree.write(L"a.js", "window.ran=1");
        tree.write(L"m.js", "window.moduleRan=1;export default 1");
        tree.write(L"a.css", "body{padding-left:7px}");
        const Bytes png = makePng(3, 2, [](int, int) { return 0xFF0000FFu; });
        tree.write(L"a.png", std::string(png.begin(), png.end()));
        tree.write(L"data.json", "[1]");
        tree.write(L"frame.html", "<script>parent.postMessage('in frame','*')</script>");
        for (const wchar_t* name : {L"a.ttf", L"a.js.ttf"}) std::filesystem::copy_file(systemFont(), tree.base / name);
        page = "<!doctype html><meta charset=utf-8><body>" + reports.script() + kProbe;
    }

    /// The report of the page that `load` makes a view load.
    std::string reportOf(const std::function<void(IZEMOWebView&)>& load) {
        const auto view = createWebViewDefault();
        const auto delegate = std::make_shared<NavigationRecorder>();
        view->setWebViewDelegate(delegate);
        load(*view);
        view->show();
        return reports.wait(game);
    }

    GameHost game;
    ResourceTree tree;
    PageReports reports;
    std::string page;
};

constexpr char kFromOutside[] = "script style image frame ";

}  // namespace

TEST_F(LocalPages, TextPage_GetsWhatTheGuideSays) {
    EXPECT_EQ(reportOf([&](IZEMOWebView& view) { view.loadHtml(page, ""); }), kFromOutside);
}

TEST_F(LocalPages, HttpPage_GetsWhatTheGuideSays) {
    reports.server.serveHtml("/page", page);
    EXPECT_EQ(reportOf([&](IZEMOWebView& view) { view.loadContent(addressItem(reports.server.url("/page"))); }),
              kFromOutside);
}

TEST_F(LocalPages, FilePage_GetsWhatTheGuideSays) {
    std::ofstream(tree.root / "local_test_page.html", std::ios::binary) << page;
    EXPECT_EQ(reportOf([&](IZEMOWebView& view) { view.loadPage("local_test_page"); }), kFromOutside);
    std::filesystem::remove(tree.root / "local_test_page.html");
}

TEST_F(LocalPages, SchemePage_GetsWhatTheGuideSays) {
    tree.write(L"page.html", page);
    EXPECT_EQ(reportOf([&](IZEMOWebView& view) { view.loadContent(addressItem(tree.url("page.html"))); }),
              "script module style image renamedFont xhr frame ");
}

TEST_F(LocalPages, TextPagesParentSteps_LeadToTheFolderAboveItsPath) {
    const std::string html = "<!doctype html><meta charset=utf-8><body>" + reports.script() +
                             "<link rel=stylesheet href='../a.css'><script src='../a.js'></script><img id=i "
                             "src='../a.png'><script>onload=()=>report('size '+i.naturalWidth+window.ran+"
                             "getComputedStyle(document.body).paddingLeft)</script>";
    EXPECT_EQ(reportOf([&](IZEMOWebView& view) { view.loadHtml(html, "anywhere/local_test/page.html"); }),
              "size 317px");
}

}  // namespace ZEMO::Test
