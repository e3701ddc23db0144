#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>

// Input that the game injects, as text, turned into the window message that real input would be. Any thread.
namespace ZEMO::UI {

/// A window message's number and arguments, with their widths on 64-bit Windows.
struct RemoteMessage {
    uint32_t message = 0;
    uint64_t wParam = 0;
    int64_t lParam = 0;
    friend bool operator==(const RemoteMessage&, const RemoteMessage&) = default;
};

/// Scan code of a virtual key on the keyboard in use.
using ScanCodeLookup = std::function<uint32_t(uint32_t virtualKey)>;

/// The message for a click, wheel or key event; none for what the grammar does not hold. `x` and `y` are client pixels
/// and become signed 16-bit values. Throws std::invalid_argument or std::out_of_range for `data` of a "Key" event that
/// is no number, whatever the action.
std::optional<RemoteMessage> remoteInputMessage(const std::string& type, const std::string& action,
                                                const std::string& data, int x, int y,
                                                const ScanCodeLookup& scanCodeOf);

/// Whether the event carries text for the focused field.
inline bool isRemoteText(const std::string& type) { return type == "Message"; }

}  // namespace ZEMO::UI
