#include "controller/remote_input.h"

#include <charconv>
#include <stdexcept>
#include <string_view>

// The messages' numbers are written out, since these rules are also built where there is no Windows.
namespace ZEMO::UI {
namespace {

constexpr uint32_t kKeyDown = 256, kKeyUp = 257, kLeftButtonUp = 514;
constexpr uint32_t kRemoteMouseMove = 1226, kRemoteWheel = 1227, kRemotePress = 1228;
constexpr uint64_t kLeftButtonHeld = 1;
constexpr int64_t kWheelNotch = 120;
constexpr uint32_t kFirstPress = 1, kRelease = 0xC0000001;

int64_t packed(int x, int y) { return (int64_t{y} & 0xFFFF) << 16 | (x & 0xFFFF); }

// Clicks keep the sign of y in the upper half; their receiver reads 16 bits of it.
int64_t packedSigned(int x, int y) { return int64_t{y} * 0x10000 | (x & 0xFFFF); }

bool isBlank(char c) { return c == ' ' || (c >= '\t' && c <= '\r'); }

// The digits that `text` begins with. The texts of the exceptions are the game's to read and don't depend on which
// runtime library the game or this library is built with.
template <typename Number>
Number leadingNumber(std::string_view text, int base, const char* noNumber, const char* tooLarge) {
    Number number{};
    const auto result = std::from_chars(text.data(), text.data() + text.size(), number, base);
    if (result.ec == std::errc::invalid_argument) throw std::invalid_argument(noNumber);
    if (result.ec == std::errc::result_out_of_range) throw std::out_of_range(tooLarge);
    return number;
}

int32_t hexadecimalKey(std::string_view digits) {
    // Above the signed range the value wraps round; a sign has no place behind the prefix.
    return static_cast<int32_t>(
        leadingNumber<uint32_t>(digits, 16, "invalid stoul argument", "stoul argument out of range"));
}

int32_t decimalKey(std::string_view text) {
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    // A plus stands for itself only in front of a digit.
    if (text.size() > 1 && text[0] == '+' && text[1] >= '0' && text[1] <= '9') text.remove_prefix(1);
    return leadingNumber<int32_t>(text, 10, "invalid stoi argument", "stoi argument out of range");
}

int32_t keyCode(const std::string& data) {
    const std::string_view text = data;
    if (text.size() > 2 && (text.starts_with("0x") || text.starts_with("0X"))) return hexadecimalKey(text.substr(2));
    return decimalKey(text);
}

std::optional<RemoteMessage> clickMessage(const std::string& action, int x, int y) {
    if (action == "Move") return RemoteMessage{kRemoteMouseMove, kLeftButtonHeld, packed(x, y)};
    if (action == "Down") return RemoteMessage{kRemotePress, kLeftButtonHeld, packedSigned(x, y)};
    if (action == "Up") return RemoteMessage{kLeftButtonUp, 0, packedSigned(x, y)};
    return std::nullopt;
}

std::optional<RemoteMessage> wheelMessage(const std::string& action, int x, int y) {
    if (action != "Up" && action != "Down") return std::nullopt;
    const int64_t delta = action == "Up" ? kWheelNotch : -kWheelNotch;
    return RemoteMessage{kRemoteWheel, static_cast<uint64_t>(delta * 0x10000), packed(x, y)};
}

std::optional<RemoteMessage> keyMessage(const std::string& action, const std::string& data,
                                        const ScanCodeLookup& scanCodeOf) {
    const int32_t code = keyCode(data);
    if (code == 0 || (action != "Down" && action != "Up")) return std::nullopt;
    const uint32_t scanCode = scanCodeOf(static_cast<uint32_t>(code)) << 16;
    const auto wParam = static_cast<uint64_t>(int64_t{code});
    if (action == "Down") return RemoteMessage{kKeyDown, wParam, scanCode | kFirstPress};
    return RemoteMessage{kKeyUp, wParam, scanCode | kRelease};
}

}  // namespace

std::optional<RemoteMessage> remoteInputMessage(const std::string& type, const std::string& action,
                                                const std::string& data, int x, int y,
                                                const ScanCodeLookup& scanCodeOf) {
    if (type == "Click" || type == "Touch") return clickMessage(action, x, y);
    if (type == "Wheel") return wheelMessage(action, x, y);
    if (type == "Key") return keyMessage(action, data, scanCodeOf);
    return std::nullopt;
}

}  // namespace ZEMO::UI
