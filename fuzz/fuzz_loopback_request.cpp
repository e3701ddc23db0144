// The request reader against a second reading of the same rule, written without the string library: walk the bytes with
// a counter of matched keyword characters, then copy.
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <string>
#include <string_view>

#include "browser/loopback_request.h"

namespace {

struct Reference {
    bool found = false;
    std::size_t length = 0;
    char id[16] = {};
};

Reference readAgain(const uint8_t* data, std::size_t size) {
    static const char kWord[] = {'r', 'e', 'q', 'u', 'e', 's', 't', 'I', 'd', '='};
    Reference result;
    std::size_t matched = 0;
    std::size_t at = 0;
    for (; at < size && data[at] != 0 && matched < sizeof(kWord); ++at) {
        if (data[at] == static_cast<uint8_t>(kWord[matched])) {
            ++matched;
        } else {
            // 'r' stands only at the keyword's start, so no longer prefix can survive a mismatch
            matched = data[at] == 'r' ? 1 : 0;
        }
    }
    result.found = matched == sizeof(kWord);
    for (; result.found && at < size && data[at] != 0 && result.length < sizeof(result.id); ++at) {
        result.id[result.length++] = static_cast<char>(data[at]);
    }
    return result;
}

void require(bool holds, const char* what) {
    if (holds) return;
    std::fprintf(stderr, "fuzz_loopback_request: %s\n", what);
    std::abort();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, std::size_t size) {
    // an exact block on the heap: one byte too many is seen
    const auto block = std::make_unique<char[]>(size);
    for (std::size_t i = 0; i < size; ++i) block[i] = static_cast<char>(data[i]);
    const std::string_view received(block.get(), size);

    const auto id = ZEMO::UI::requestedId(received);
    const Reference reference = readAgain(data, size);
    require(id.has_value() == reference.found, "keyword found by one reading only");
    if (id) require(*id == std::string_view(reference.id, reference.length), "identifiers differ");

    const std::string response = ZEMO::UI::redirectResponse(received);
    require(response.size() == size + 34, "length of the redirect");
    require(response.find(received) != std::string::npos || size == 0, "address missing in the redirect");
    require(response.starts_with("HTTP/1.1 302 Found\r\nLocation: ") && response.ends_with("\r\n\r\n"),
            "redirect's frame");
    return 0;
}
