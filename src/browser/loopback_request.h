#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

// The part of the loopback responder that reads a request and words the answer. No sockets, no state: any thread.
// A request is not parsed as HTTP. The only client is the user's own browser asking for an address that this process
// made a moment before, so one keyword in the first bytes says everything.
namespace ZEMO::UI {

/// Bytes of a request that are looked at; what comes behind them is never read.
inline constexpr std::size_t kRequestBytesRead = 4095;
inline constexpr std::size_t kRequestIdLength = 16;
inline constexpr std::string_view kRequestIdKeyword = "requestId=";

inline constexpr std::string_view kBadRequestResponse = "HTTP/1.1 400 Bad Request\r\n\r\n";
inline constexpr std::string_view kNotFoundResponse = "HTTP/1.1 404 Not Found\r\n\r\n";

/// The identifier that `received` asks for: up to 16 characters behind the first keyword, wherever it stands. A NUL
/// ends the text. Nothing without the keyword; an empty or short identifier is one that nobody registered.
std::optional<std::string> requestedId(std::string_view received);

/// The redirect to `url`, which goes out exactly as it was registered: neither encoded nor checked.
std::string redirectResponse(std::string_view url);

}  // namespace ZEMO::UI
