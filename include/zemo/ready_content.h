#pragma once

#include <zemo/url.h>
#include <zemo/web_content.h>

#include <string>
#include <unordered_map>
#include <utility>

// Ready content for the two usual needs. Both live in the game alone: the library sees IZEMOWebContent. They never
// change once made, so that the engine's threads may read them at any time.
namespace ZEMO::UI {

/// A web address, loaded as a browser would.
///   view->loadContent(std::make_shared<ZEMO::UI::ZEMOAddressContent>("https://example.com/news"));
class ZEMOAddressContent : public IZEMOWebContent {
public:
    /// `address`: UTF-8, with its scheme.
    explicit ZEMOAddressContent(const std::string& address) : url(address) {}

    const ZEMO::Core::IURL& getUrl() const override { return url; }
    int getKind() const override { return 0; }

private:
    const ZEMO::Core::URL url;
};

/// A web address that is sent a form or a token: every request of the page to exactly this address becomes the same
/// POST, also a reload, until the view gets other items.
///   view->loadContent(std::make_shared<ZEMO::UI::ZEMOPostContent>(
///       "https://example.com/login", "token=" + token,
///       std::unordered_map<std::string, std::string>{{"Content-Type", "application/x-www-form-urlencoded"}}));
class ZEMOPostContent : public IZEMOWebContent {
public:
    /// `address` as the engine asks for it, with a path that ends in a name: ZEMO::Core::URL drops a slash at the end
    /// and sorts the query, so such an address never matches. `body` ends at its first NUL. `headers`, UTF-8, replace
    /// all headers that the engine had set.
    ZEMOPostContent(const std::string& address, std::string body,
                    std::unordered_map<std::string, std::string> headers = {})
        : url(address), sentBody(std::move(body)), sentHeaders(std::move(headers)) {}

    const ZEMO::Core::IURL& getUrl() const override { return url; }
    int getKind() const override { return kKindPost; }
    std::unordered_map<std::string, std::string> getHeaders() const override { return sentHeaders; }
    std::string getBody() const override { return sentBody; }

private:
    const ZEMO::Core::URL url;
    const std::string sentBody;
    const std::unordered_map<std::string, std::string> sentHeaders;
};

}  // namespace ZEMO::UI
