#include "engine/client_scheme_handler_types.h"

#include <gtest/gtest.h>

namespace ZEMO::Test {
namespace {

using ZEMO::UI::resourceMimeType;
using ZEMO::UI::resourcePath;

struct Row {
    const char* ending;
    const char* type;
};
constexpr Row kRows[] = {
    {".css", "text/css"},     {".js", "application/x-javascript"},
    {".html", "text/html"},   {".jpg", "image/jpeg"},
    {".png", "image/png"},    {".jpeg", "image/jpeg"},
    {".gif", "image/gif"},    {".bmp", "image/bmp"},
    {".ico", "image/x-icon"}, {".tif", "image/tiff"},
    {".tiff", "image/tiff"},
};
static_assert(std::size(kRows) == 11);

std::string address(const std::string& path) { return "zemosdkcustomscheme://resources/" + path; }

}  // namespace

TEST(ResourceType, EachEnding_HasItsType) {
    for (const Row& row : kRows) {
        EXPECT_STREQ(resourceMimeType(address(std::string("folder/name") + row.ending)), row.type) << row.ending;
        EXPECT_STREQ(resourceMimeType(row.ending), row.type) << "also where nothing else stands";
    }
}

TEST(ResourceType, EndingAnywhereInTheAddress_TheFirstRowThatIsHeldDecides) {
    struct Case {
        const char* path;
        const char* type;
    };
    for (const Case& each :
         {Case{"data.json", "application/x-javascript"}, Case{"page.jsp", "application/x-javascript"},
          Case{"page.html?icon=a.png", "text/html"}, Case{"font.woff?a.css", "text/css"}, Case{"a.js.css", "text/css"},
          Case{"a.png.js", "application/x-javascript"}, Case{"a.tiffany", "image/tiff"},
          Case{"theme.css/a.svg", "text/css"}, Case{"a.svg#.gif", "image/gif"}, Case{"a.htmlx", "text/html"}}) {
        EXPECT_STREQ(resourceMimeType(address(each.path)), each.type) << each.path;
    }
}

TEST(ResourceType, OtherEndingsAndOtherLetters_AreNotServed) {
    for (const char* path : {"a.svg", "a.woff", "a.woff2", "a.ttf", "a.txt", "a.mp4", "a.webp", "a.CSS", "a.Js",
                             "a.HTML", "a.PNG", "a.htm", "css", "a", "", "a.j s"}) {
        EXPECT_EQ(resourceMimeType(address(path)), nullptr) << path;
    }
    EXPECT_EQ(resourceMimeType(""), nullptr);
    EXPECT_EQ(resourceMimeType(".j"), nullptr);
}

TEST(ResourcePath, PrefixAndDomainGo_WhereverTheyStand) {
    struct Case {
        const char* url;
        const char* path;
    };
    for (const Case& each :
         {Case{"zemosdkcustomscheme://resources/common/app.js", "/common/app.js"},
          Case{"zemosdkcustomscheme://resources/a/resources/b.js", "/a//b.js"},
          Case{"zemosdkcustomscheme://resources/myresources2/b.js", "/my2/b.js"},
          Case{"zemosdkcustomscheme://resources/.resources./a.js", "/../a.js"},
          Case{"zemosdkcustomscheme://resources/a.js?from=zemosdkcustomscheme://resources/b", "/a.js?from=/b"},
          Case{"zemosdkcustomscheme://resources/a%20b.js#x", "/a%20b.js#x"},
          Case{"zemosdkcustomscheme://resources", ""}, Case{"", ""}, Case{"other/a.js", "other/a.js"},
          Case{"zemosdkcustomscheme://resources/Resources/a.js", "/Resources/a.js"},
          Case{"resourceresourcess/a.js", "resources/a.js"}}) {
        EXPECT_EQ(resourcePath(each.url), each.path) << each.url;
    }
}

}  // namespace ZEMO::Test
