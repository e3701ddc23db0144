#include <gtest/gtest.h>
#include <windows.h>

#include <memory>
#include <string>
#include <typeinfo>

#include "zemo/string_util.h"
#include "zemo/url.h"

// Linked with the real library, as a game is.
namespace ZEMO::Core {
namespace {

using namespace std::string_literals;

// What a game may hand in instead of the library's own address.
class GameUrl : public IURL {
public:
    bool isEqual(const std::string&) const override { return false; }
    bool isEqual(std::string_view) const override { return false; }
    bool isEqual(const IURL&) const override { return false; }
    std::string getUrl() const override { return "x://h/" + std::string(100, 'p') + "%41"; }
    std::string getScheme() const override { return ""; }
    std::string getHost() const override { return ""; }
    std::string getPort() const override { return ""; }
    std::string getPath() const override { return ""; }
    std::string getQueryParameter(const std::string&) const override { return ""; }
    std::string getQuery() const override { return ""; }
    std::string getFragment() const override { return ""; }
    std::map<std::string, std::string> getQueryParameters() const override { return {}; }
    void addQueryParameter(const std::string&, const std::string&) override {}
    void addPathSegment(const std::string&) override {}
    void setScheme(const std::string&) override {}
    void setHost(const std::string&) override {}
    void setPort(const std::string&) override {}
    std::string toString() const override { return ""; }
    std::string toEncodedString() const override { return ""; }
};

// A game's class on top of the library's.
class NamedUrl : public URL {
public:
    using URL::URL;
    std::string getHost() const override { return "named"; }
};

}  // namespace

TEST(UrlAcrossBoundary, AddressOfTheGame_ReadByTheLibrary) {
    ASSERT_NE(GetModuleHandleW(L"ZEMOUIFramework.dll"), nullptr);
    const GameUrl game;
    EXPECT_TRUE(URL("x://h/" + std::string(100, 'p') + "A").isEqual(game));
    EXPECT_FALSE(URL("x://h").isEqual(game));
}

TEST(UrlAcrossBoundary, LibrarysUrl_MadeReadAndDeletedThroughItsInterface) {
    const std::unique_ptr<IURL> url = std::make_unique<URL>("https://host:1/" + std::string(100, 'p') + "?k=v#f");
    url->addQueryParameter("long", std::string(200, 'v'));
    EXPECT_EQ(url->getQueryParameters().size(), 2u);
    EXPECT_EQ(url->getPath().size(), 101u);
    EXPECT_NE(dynamic_cast<URL*>(url.get()), nullptr);
    const IURL& object = *url;
    EXPECT_TRUE(typeid(object) == typeid(URL));
}

TEST(UrlAcrossBoundary, ClassDerivedInTheGame_HeardByTheLibrary) {
    const NamedUrl url("x://h/p");
    EXPECT_EQ(url.getUrl(), "x://named/p");
    const std::shared_ptr<IURL> shared = std::make_shared<NamedUrl>("file:a");
    EXPECT_EQ(shared->toString(), "file://named");
}

TEST(StringsAcrossBoundary, ResultsOfTheLibrary_OwnedByTheProgram) {
    std::string text = std::string(50, ' ') + std::string(500, 'x') + " ";
    StringUtil::trimString(text);
    EXPECT_EQ(text.size(), 500u);
    auto pieces = StringUtil::splitString(StringUtil::base64Encode(text) + "," + text, ',');
    ASSERT_EQ(pieces.size(), 2u);
    pieces.resize(100, text);
    EXPECT_EQ(StringUtil::base64DecodeString(pieces[0]), text);
    EXPECT_EQ(StringUtil::hexStrToByte(StringUtil::StrToHexStr(text)).size(), 500u);
    StringUtil a, b;
    a = b;
    a = StringUtil();
    EXPECT_EQ(StringUtil::getRandomData(3).size(), 6u);
}

}  // namespace ZEMO::Core
