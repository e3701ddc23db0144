#pragma once

#include <zemo/web_content.h>

#include <atomic>
#include <memory>
#include <string>
#include <unordered_map>

namespace ZEMO::Test {

/// A content item as a game writes it, a POST one unless told otherwise. Its answers may be changed from one load to
/// the next; it counts how often its body was asked for.
class PostItem : public ZEMO::UI::IZEMOWebContent {
public:
    using Headers = std::unordered_map<std::string, std::string>;
    explicit PostItem(const std::string& address, std::string bodyText = {}, Headers headerTexts = {})
        : body(std::move(bodyText)), headers(std::move(headerTexts)), url(address) {}

    const ZEMO::Core::IURL& getUrl() const override { return url; }
    int getKind() const override { return kind; }
    Headers getHeaders() const override { return headers; }
    std::string getBody() const override {
        ++bodyReads;
        return body;
    }

    int kind = kKindPost;
    std::string body;
    Headers headers;
    mutable std::atomic<int> bodyReads{0};

private:
    ZEMO::Core::URL url;
};

inline std::shared_ptr<PostItem> postItem(const std::string& address, std::string body = {},
                                          PostItem::Headers headers = {}) {
    return std::make_shared<PostItem>(address, std::move(body), std::move(headers));
}

}  // namespace ZEMO::Test
