// The examples of docs/requests.md, as they stand there.
#include "requests_examples.inc"

#include <gtest/gtest.h>

namespace ZEMO::Test {

TEST(DocsExample, OwnHostsOnly_LetsThroughItsHostsAndNothingElse) {
    OwnHostsOnly delegate;
    const auto refused = [&](const char* url) { return delegate.navigationRequested(nullptr, url); };
    for (const char* url :
         {"https://shop.example.com", "https://shop.example.com/", "https://shop.example.com/a/b?c=d#e",
          "https://login.example.com/?next=https://other.example/"}) {
        EXPECT_FALSE(refused(url)) << url;
    }
    for (const char* url :
         {"http://shop.example.com/", "https://example.com/", "https://evilshop.example.com/",
          "https://shop.example.com.evil.example/", "https://shop.example.com:8443/",
          "https://shop.example.com:pw@evil.example/", "https://shop.example.com@evil.example/",
          "https://evil.example/https://shop.example.com/", "https://evil.example?https://shop.example.com/",
          "https://evil.example#shop.example.com", "//shop.example.com/", "file:///shop.example.com/x",
          "data:text/html,shop.example.com", "javascript:alert(1)", "about:blank",
          "zemosdkcustomscheme://resources/a.html", "mailto:a@shop.example.com", "shop.example.com", ""}) {
        EXPECT_TRUE(refused(url)) << url;
    }
}

TEST(DocsExample, LoginRequest_IsAPostItemOfItsExactAddress) {
    const LoginRequest request("https://shop.example.com/login", "abc");
    EXPECT_EQ(request.getUrl().getUrl(), "https://shop.example.com/login");
    EXPECT_EQ(request.getKind(), 3);
    EXPECT_EQ(request.getHeaders().at("Authorization"), "Bearer abc");
    EXPECT_EQ(request.getBody(), R"({"game": "zemo"})");
    openStore(*ZEMO::UI::createWebViewDefault(), "abc");
}

}  // namespace ZEMO::Test
