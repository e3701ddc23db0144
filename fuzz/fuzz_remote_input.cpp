#include <cctype>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>

#include "controller/remote_input.h"
#include "fuzz_check.h"

using ZEMO::UI::RemoteMessage;

namespace {

// The key that the C library reads, or the text of the exception that is due.
struct Reading {
    std::string fault;
    int64_t key = 0;
};

Reading readKey(const std::string& data) {
    const bool prefixed = data.size() > 2 && data[0] == '0' && (data[1] == 'x' || data[1] == 'X');
    const std::string name = prefixed ? "stoul" : "stoi";
    const char* begin = data.c_str() + (prefixed ? 2 : 0);
    char* end = nullptr;
    errno = 0;
    const bool digitFirst = !prefixed || std::isxdigit(static_cast<unsigned char>(*begin));
    const bool secondPrefix = prefixed && begin[0] == '0' && (begin[1] == 'x' || begin[1] == 'X');
    const long long value = secondPrefix ? 0 : std::strtoll(begin, &end, prefixed ? 16 : 10);
    if (!digitFirst || (!secondPrefix && end == begin)) return {"invalid " + name + " argument"};
    const bool outside = prefixed ? value > UINT_MAX : value > INT_MAX || value < INT_MIN;
    if (errno == ERANGE || outside) return {name + " argument out of range"};
    return {"", static_cast<int32_t>(static_cast<uint32_t>(value))};
}

std::optional<RemoteMessage> expected(const std::string& action, int64_t key) {
    if (key == 0 || (action != "Down" && action != "Up")) return std::nullopt;
    return RemoteMessage{action == "Down" ? 256u : 257u, static_cast<uint64_t>(key),
                         action == "Down" ? 0x1E0001LL : 0xC01E0001LL};
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::string text(reinterpret_cast<const char*>(data), size);
    text.shrink_to_fit();
    const Reading reading = readKey(text);
    for (const char* action : {"Down", "Up", "Move"}) {
        std::string fault;
        try {
            const auto made = ZEMO::UI::remoteInputMessage("Key", action, text, 0, 0, [](uint32_t) { return 0x1Eu; });
            FUZZ_CHECK(made == expected(action, reading.key));
        } catch (const std::logic_error& thrown) {
            fault = thrown.what();
        }
        FUZZ_CHECK(fault == reading.fault);
    }
    FUZZ_CHECK(!ZEMO::UI::remoteInputMessage("Click", text, text, 1, 2, nullptr) || text == "Move" || text == "Down" ||
               text == "Up");
    return 0;
}
