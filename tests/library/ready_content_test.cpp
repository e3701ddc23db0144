#include <gtest/gtest.h>

#include "zemo/ui.h"

// The content classes that the headers bring ready-made, as the library reads them: through the interface.
namespace ZEMO::Test {
namespace {

using Headers = std::unordered_map<std::string, std::string>;

}  // namespace

TEST(ReadyContent, Address_IsNoPostAndHasNeitherHeadersNorBody) {
    const std::shared_ptr<ZEMO::UI::IZEMOWebContent> content =
        std::make_shared<ZEMO::UI::ZEMOAddressContent>("https://example.com/news?id=7#top");
    EXPECT_EQ(content->getUrl().getUrl(), "https://example.com/news?id=7#top");
    EXPECT_NE(content->getKind(), ZEMO::UI::IZEMOWebContent::kKindPost);
    EXPECT_EQ(content->getHeaders(), Headers());
    EXPECT_EQ(content->getBody(), "");
}

TEST(ReadyContent, Post_IsOneWithItsHeadersAndBody) {
    const Headers headers = {{"Content-Type", "application/x-www-form-urlencoded"}, {"X-Token", "열쇠"}};
    const std::shared_ptr<ZEMO::UI::IZEMOWebContent> content =
        std::make_shared<ZEMO::UI::ZEMOPostContent>("https://example.com/login", "token=열쇠&a=b", headers);
    EXPECT_EQ(content->getUrl().getUrl(), "https://example.com/login");
    EXPECT_EQ(content->getKind(), ZEMO::UI::IZEMOWebContent::kKindPost);
    EXPECT_EQ(content->getHeaders(), headers);
    EXPECT_EQ(content->getBody(), "token=열쇠&a=b");
}

TEST(ReadyContent, PostWithoutHeaders_HasNone) {
    const ZEMO::UI::ZEMOPostContent content("https://example.com/", "");
    EXPECT_EQ(content.getHeaders(), Headers());
    EXPECT_EQ(content.getBody(), "");
}

}  // namespace ZEMO::Test
