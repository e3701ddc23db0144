#include "layers/web/page_address.h"

#include <gtest/gtest.h>

namespace ZEMO::UI {
namespace {

bool endsWith(const std::string& text, const std::string& end) { return text.ends_with(end); }

}  // namespace

TEST(PageAddress, WebAddressInMixedCase_StaysAsItIs) {
    for (const char* address : {"http://Host/Path?Q=1#F", "HTTPS://Example.COM/", "hTTp://x", "https://"}) {
        EXPECT_EQ(firstLoadAddress(address), address);
    }
}

TEST(PageAddress, NameOfLocalPage_FileAddressInTheResourceTree) {
    for (const std::string& address : {firstLoadAddress("start"), firstPageAddress("start"), localPageAddress("start"),
                                       reloadPageAddress("start")}) {
        EXPECT_TRUE(address.starts_with("file:///")) << address;
        EXPECT_TRUE(endsWith(address, "/resources/html/start.html")) << address;
        EXPECT_EQ(address.find('\\'), std::string::npos) << address;
    }
}

TEST(PageAddress, KoreanName_StaysUtf8) {
    EXPECT_TRUE(endsWith(localPageAddress("공지/시작"), "/resources/html/공지/시작.html"));
    EXPECT_TRUE(endsWith(reloadPageAddress("공지"), "/resources/html/공지.html"));
}

TEST(PageAddress, PathWithDrive_GetsHtmlAndForwardSlashes) {
    EXPECT_EQ(firstPageAddress("C:\\pages\\a"), "C:/pages/a.html");
}

TEST(PageAddress, WebAddressAsPage_CountsAsAPath) { EXPECT_EQ(firstPageAddress("http://h/p"), "http://h/p.html"); }

TEST(PageAddress, HtmlReferences_LeaveByTheSchemeBelowThePagesParent) {
    struct Case {
        const char *path, *html, *result;
    };
    const Case cases[] = {
        {"C:/x/html/p.html", "<img src=../img/a.png>", "<img src=zemosdkcustomscheme://resources/html/img/a.png>"},
        {"C:\\x\\html\\p.html", "../a ../b",
         "zemosdkcustomscheme://resources/html/a zemosdkcustomscheme://resources/html/b"},
        {"html/p.html", "../a", "zemosdkcustomscheme://resources/html/a"},
        {"p.html", "../a", "zemosdkcustomscheme://resources/p.html/a"},
        {"", "../a", "zemosdkcustomscheme://resources//a"},
        {"x/html/p.html", "no reference ./a", "no reference ./a"},
        {"x/html/p.html", "../../a", "zemosdkcustomscheme://resources/html/zemosdkcustomscheme://resources/html/a"},
    };
    for (const Case& each : cases) EXPECT_EQ(rebaseHtml(each.html, each.path), each.result) << each.path;
}

}  // namespace ZEMO::UI
