// Games are built apart from the library: an operation is found by its place in the class. Each test calls the places
// of an object one by one and sees which operation answers.
#include <gtest/gtest.h>

#include <cstddef>
#include <map>
#include <memory>
#include <string>
#include <unordered_map>
#include <vector>

#include "zemo/ui.h"

namespace ZEMO::Test {
namespace {

using namespace ZEMO::UI;
using Names = std::vector<std::string>;

/// Thrown by every operation of the objects below instead of an answer: so no result is made, wherever the caller
/// expected one, and no argument is looked at.
struct Answered {
    std::string name;
};
[[noreturn]] void answer(const char* name) { throw Answered{name}; }

/// Who answers in each of the first `count` places of the table that `object` begins with. All arguments are zeroed
/// memory, which is an empty text, list, function or pointer.
template <class Interface>
Names answersOf(Interface& object, std::size_t count) {
    using Place = void (*)(void*, void*, void*, void*);
    alignas(16) static std::byte empty[3][256];
    const auto* table = *reinterpret_cast<const Place* const*>(&object);
    Names names;
    for (std::size_t i = 0; i < count; ++i) {
        try {
            table[i](&object, empty[0], empty[1], empty[2]);
            names.push_back("nobody");
        } catch (const Answered& answered) {
            names.push_back(answered.name);
        }
    }
    return names;
}

struct OwnUrl : Core::IURL {
    bool isEqual(const std::string&) const override { answer("isEqual(text)"); }
    bool isEqual(std::string_view) const override { answer("isEqual(view)"); }
    bool isEqual(const IURL&) const override { answer("isEqual(IURL)"); }
    std::string getUrl() const override { answer("getUrl"); }
    std::string getScheme() const override { answer("getScheme"); }
    std::string getHost() const override { answer("getHost"); }
    std::string getPort() const override { answer("getPort"); }
    std::string getPath() const override { answer("getPath"); }
    std::string getQueryParameter(const std::string&) const override { answer("getQueryParameter"); }
    std::string getQuery() const override { answer("getQuery"); }
    std::string getFragment() const override { answer("getFragment"); }
    std::map<std::string, std::string> getQueryParameters() const override { answer("getQueryParameters"); }
    void addQueryParameter(const std::string&, const std::string&) override { answer("addQueryParameter"); }
    void addPathSegment(const std::string&) override { answer("addPathSegment"); }
    void setScheme(const std::string&) override { answer("setScheme"); }
    void setHost(const std::string&) override { answer("setHost"); }
    void setPort(const std::string&) override { answer("setPort"); }
    std::string toString() const override { answer("toString"); }
    std::string toEncodedString() const override { answer("toEncodedString"); }
};

struct OwnWebView : IZEMOWebView {
    void show() override { answer("show"); }
    void showAndWait() override { answer("showAndWait"); }
    void close() override { answer("close"); }
    void setViewDelegate(std::shared_ptr<ZEMOViewDelegate>) override { answer("setViewDelegate"); }
    void setSize(float, float) override { answer("setSize"); }
    void setDisplayMode(int) override { answer("setDisplayMode"); }
    void setWebViewDelegate(std::shared_ptr<ZEMOWebViewDelegate>) override { answer("setWebViewDelegate"); }
    void loadPage(std::string) override { answer("loadPage"); }
    void loadContent(std::shared_ptr<IZEMOWebContent>) override { answer("loadContent"); }
    void loadHtml(std::string_view, std::string_view) override { answer("loadHtml"); }
    void loadUrl(std::string, std::vector<std::shared_ptr<IZEMOWebContent>>) override { answer("loadUrl"); }
    void reserved(std::string) override { answer("reserved"); }
    void evaluateJavascript(std::string, std::function<void(std::string, std::string)>) override {
        answer("evaluateJavascript");
    }
    void addJavascriptCallback(std::string, std::function<void(std::string)>) override {
        answer("addJavascriptCallback");
    }
    std::string bindObject(std::string, std::string) override { answer("bindObject"); }
    void goBack() override { answer("goBack"); }
    bool canGoBack() override { answer("canGoBack"); }
    void goForward() override { answer("goForward"); }
    bool canGoForward() override { answer("canGoForward"); }
    bool deleteCookies(const std::string&) override { answer("deleteCookies"); }
    void setContentItems(std::vector<std::shared_ptr<IZEMOWebContent>>) override { answer("setContentItems"); }
    void setCloseButtonEnabled(bool) override { answer("setCloseButtonEnabled"); }
};

struct OwnWebViewDelegate : ZEMOWebViewDelegate {
    void navigationStarting(std::shared_ptr<IZEMOWebView>) override { answer("navigationStarting"); }
    void navigationFailed(std::shared_ptr<IZEMOWebView>, const std::error_code&) override {
        answer("navigationFailed");
    }
    void navigationCompleted(std::shared_ptr<IZEMOWebView>) override { answer("navigationCompleted"); }
    bool navigationRequested(std::shared_ptr<IZEMOWebView>, std::string) override { answer("navigationRequested"); }
    void closeRequested() override { answer("closeRequested"); }
};

struct OwnViewDelegate : ZEMOViewDelegate {
    void viewDidShow(IZEMOView*) override { answer("viewDidShow"); }
    void viewDidClose(IZEMOView*) override { answer("viewDidClose"); }
};

struct OwnWebContent : IZEMOWebContent {
    const Core::IURL& getUrl() const override { answer("getUrl"); }
    void reserved2() override { answer("2nd"); }
    int getKind() const override { answer("getKind"); }
    void reserved4() override { answer("4th"); }
    void reserved5() override { answer("5th"); }
    void reserved6() override { answer("6th"); }
    std::unordered_map<std::string, std::string> getHeaders() const override { answer("getHeaders"); }
    void reserved8() override { answer("8th"); }
    void reserved9() override { answer("9th"); }
    std::string getBody() const override { answer("getBody"); }
};

// Visual C++ gives the overloads of one name the places in reverse.
#if defined(_MSC_VER)
const Names kEquals{"isEqual(IURL)", "isEqual(view)", "isEqual(text)"};
#else
const Names kEquals{"isEqual(text)", "isEqual(view)", "isEqual(IURL)"};
#endif

TEST(InterfaceOrder, Address_OperationsInTheirPlaces) {
    Names expected = kEquals;
    for (const char* name : {"getUrl", "getScheme", "getHost", "getPort", "getPath", "getQueryParameter", "getQuery",
                             "getFragment", "getQueryParameters", "addQueryParameter", "addPathSegment", "setScheme",
                             "setHost", "setPort", "toString", "toEncodedString"}) {
        expected.push_back(name);
    }
    OwnUrl url;
    EXPECT_EQ(answersOf<Core::IURL>(url, expected.size()), expected);
}

TEST(InterfaceOrder, View_SixOperationsComeFirst) {
    const Names expected{"show", "showAndWait", "close", "setViewDelegate", "setSize", "setDisplayMode"};
    OwnWebView view;
    EXPECT_EQ(answersOf<IZEMOView>(view, expected.size()), expected);
}

TEST(InterfaceOrder, WebView_OperationsInTheirPlacesBehindTheView) {
#if !defined(_MSC_VER)
    const std::size_t destructors = 2;
#else
    const std::size_t destructors = 1;
#endif
    const Names expected{"setWebViewDelegate",
                         "loadPage",
                         "loadContent",
                         "loadHtml",
                         "loadUrl",
                         "reserved",
                         "evaluateJavascript",
                         "addJavascriptCallback",
                         "bindObject",
                         "goBack",
                         "canGoBack",
                         "goForward",
                         "canGoForward",
                         "deleteCookies",
                         "setContentItems",
                         "setCloseButtonEnabled"};
    // The view's own destructor stands between its operations and these: it is stepped over.
    struct Table {
        const void* const* places;
    };
    OwnWebView view;
    Table behind{*reinterpret_cast<const void* const* const*>(static_cast<IZEMOWebView*>(&view)) + 6 + destructors};
    EXPECT_EQ(answersOf(behind, expected.size()), expected);
}

TEST(InterfaceOrder, WebViewDelegate_OperationsInTheirPlaces) {
    const Names expected{"navigationStarting", "navigationFailed", "navigationCompleted", "navigationRequested",
                         "closeRequested"};
    OwnWebViewDelegate delegate;
    EXPECT_EQ(answersOf<ZEMOWebViewDelegate>(delegate, expected.size()), expected);
}

TEST(InterfaceOrder, ViewDelegate_OperationsInTheirPlaces) {
    const Names expected{"viewDidShow", "viewDidClose"};
    OwnViewDelegate delegate;
    EXPECT_EQ(answersOf<ZEMOViewDelegate>(delegate, expected.size()), expected);
}

TEST(InterfaceOrder, WebContent_AddressKindHeadersAndBodyInTheirPlaces) {
    const Names expected{"getUrl", "2nd", "getKind", "4th", "5th", "6th", "getHeaders", "8th", "9th", "getBody"};
    OwnWebContent content;
    EXPECT_EQ(answersOf<IZEMOWebContent>(content, expected.size()), expected);
}

// The library's own objects: the same places, declared here once more and apart from the library's headers.
struct AddressPlaces {
    virtual bool isEqual(const std::string&) const = 0;
    virtual bool isEqual(std::string_view) const = 0;
    virtual bool isEqual(const Core::IURL&) const = 0;
    virtual std::string place4() const = 0;
    virtual std::string place5() const = 0;
    virtual std::string place6() const = 0;
    virtual std::string place7() const = 0;
    virtual std::string place8() const = 0;
    virtual std::string place9(const std::string&) const = 0;
    virtual std::string place10() const = 0;
    virtual std::string place11() const = 0;
    virtual std::map<std::string, std::string> place12() const = 0;
    virtual void place13(const std::string&, const std::string&) = 0;
    virtual void place14(const std::string&) = 0;
    virtual void place15(const std::string&) = 0;
    virtual void place16(const std::string&) = 0;
    virtual void place17(const std::string&) = 0;
    virtual std::string place18() const = 0;
    virtual std::string place19() const = 0;

protected:
    ~AddressPlaces() = default;
};

TEST(InterfaceOrder, AddressOfTheLibrary_AnswersInTheSamePlaces) {
    Core::URL url("s://h:1/p?k=v%41#f");
    auto& places = *reinterpret_cast<AddressPlaces*>(static_cast<Core::IURL*>(&url));
    EXPECT_TRUE(places.isEqual(std::string("s://h:1/p?k=v%41#f")));
    EXPECT_TRUE(places.isEqual(std::string_view("s://h:1/p?k=v%41#f.", 18)));
    EXPECT_TRUE(places.isEqual(Core::URL("s://h:1/p?k=vA#f"))) << "this one decodes";
    EXPECT_EQ(places.place4(), "s://h:1/p?k=v%41#f");
    EXPECT_EQ(places.place5(), "s");
    EXPECT_EQ(places.place6(), "h");
    EXPECT_EQ(places.place7(), "1");
    EXPECT_EQ(places.place8(), "/p");
    EXPECT_EQ(places.place9("k"), "v%41");
    EXPECT_EQ(places.place10(), "k=v%41");
    EXPECT_EQ(places.place11(), "f");
    EXPECT_EQ(places.place12(), (std::map<std::string, std::string>{{"k", "v%41"}}));
    places.place13("a", "b");
    places.place14("q");
    places.place15("t");
    places.place16("i");
    places.place17("2");
    EXPECT_EQ(places.place18(), "t://i:2/p/q?a=b&k=v%41#f");
    EXPECT_EQ(places.place19(), "t://i:2/p/q?a=b&k=v%2541#f");
}

}  // namespace
}  // namespace ZEMO::Test
