#include "browser/loopback_request.h"

#include <gtest/gtest.h>

#include <cstring>
#include <iterator>
#include <memory>
#include <optional>
#include <string>

namespace ZEMO::UI {
namespace {

using namespace std::string_literals;

// A heap block of exactly the text's size, so that a sanitizer or a guard page sees one byte too many.
std::optional<std::string> read(const std::string& text) {
    const auto block = std::make_unique<char[]>(text.size());
    std::memcpy(block.get(), text.data(), text.size());
    return requestedId(std::string_view(block.get(), text.size()));
}

const std::string kId = "0123456789abcdef";

struct RequestCase {
    std::string received;
    std::optional<std::string> id;
};

const RequestCase kRequests[] = {
    // what a browser sends
    {"GET /?requestId=" + kId + " HTTP/1.1\r\nHost: 127.0.0.1:1\r\n\r\n", kId},
    {"GET /favicon.ico HTTP/1.1\r\nHost: 127.0.0.1:1\r\n\r\n", std::nullopt},
    {"GET /favicon.ico HTTP/1.1\r\nReferer: http://127.0.0.1:1/?requestId=" + kId + "\r\n\r\n", kId},
    {"POST / HTTP/1.1\r\nContent-Length: 26\r\n\r\nrequestId=" + kId, kId},
    // where the keyword may stand, and how much text there is
    {"", std::nullopt},
    {"requestId", std::nullopt},
    {"equestId=", std::nullopt},
    {"requestId=", ""},
    {"requestId=a", "a"},
    {"requestId=0123456789abcde", "0123456789abcde"},
    {"requestId=" + kId, kId},
    {"requestId=" + kId + "f", kId},
    {"requestId=" + kId + " HTTP/1.1", kId},
    {"xrequestId=" + kId, kId},
    {"RequestId=" + kId, std::nullopt},
    {"requestid=" + kId, std::nullopt},
    {"requestId =" + kId, std::nullopt},
    {"requestId%3D" + kId, std::nullopt},
    {"requestrequestId=" + kId, kId},
    {"requestId=requestId=" + kId, "requestId=012345"},
    {"requestId=first&requestId=" + kId, "first&requestId="},
    {"requestId= " + kId, " 0123456789abcde"},
    {"requestId=\r\n\r\n", "\r\n\r\n"},
    // a NUL ends the text
    {"\0requestId="s + kId, std::nullopt},
    {"request\0Id="s + kId, std::nullopt},
    {"requestId=\0"s + kId, ""},
    {"requestId=01234\0"s + kId, "01234"},
    {"requestId="s + kId + "\0"s, kId},
    {"\0"s, std::nullopt},
    // no text at all
    {std::string(4095, '\xff'), std::nullopt},
    {std::string(4085, 'x') + "requestId=", ""},
    {std::string(4095, 'r'), std::nullopt},
};

TEST(LoopbackRequest, TableOfRequests_IdentifierOrNone) {
    ASSERT_EQ(std::size(kRequests), 32u);
    for (const auto& row : kRequests) EXPECT_EQ(read(row.received), row.id) << &row - kRequests;
}

TEST(LoopbackRequest, KeywordAtEveryPlace_FoundWhereverItStands) {
    const std::string keyword = "requestId=" + kId;
    for (std::size_t before = 0; before + keyword.size() <= kRequestBytesRead; before += 7) {
        std::string text(kRequestBytesRead, '/');
        text.replace(before, keyword.size(), keyword);
        ASSERT_EQ(read(text), kId) << before;
    }
}

TEST(LoopbackRequest, EveryCut_ShorterIdentifierOrNone) {
    const std::string whole = "GET /?requestId=" + kId + " HTTP/1.1";
    const std::size_t keywordEnd = whole.find('=') + 1;
    for (std::size_t length = 0; length <= whole.size(); ++length) {
        const auto id = read(whole.substr(0, length));
        if (length < keywordEnd) {
            EXPECT_EQ(id, std::nullopt) << length;
        } else {
            EXPECT_EQ(id, kId.substr(0, length - keywordEnd)) << length;
        }
    }
}

TEST(LoopbackResponse, FixedTexts_WordForWord) {
    EXPECT_EQ(kBadRequestResponse, "HTTP/1.1 400 Bad Request\r\n\r\n");
    EXPECT_EQ(kNotFoundResponse, "HTTP/1.1 404 Not Found\r\n\r\n");
    EXPECT_EQ(redirectResponse("https://x/y"), "HTTP/1.1 302 Found\r\nLocation: https://x/y\r\n\r\n");
}

TEST(LoopbackResponse, OddAddress_GoesOutAsItIs) {
    const std::string odd = "a b\r\nX: 1\0\xff%\xed\x95\x9c"s;
    EXPECT_EQ(redirectResponse(odd), "HTTP/1.1 302 Found\r\nLocation: " + odd + "\r\n\r\n");
    EXPECT_EQ(redirectResponse(""), "HTTP/1.1 302 Found\r\nLocation: \r\n\r\n");
    const std::string large(2'000'000, 'q');
    EXPECT_EQ(redirectResponse(large).size(), large.size() + 34);
}

}  // namespace
}  // namespace ZEMO::UI
