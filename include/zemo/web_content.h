#pragma once

#include <zemo/url.h>

#include <string>
#include <unordered_map>

namespace ZEMO::UI {

/// An address with what belongs to its request. Implemented by the game. The library reads address, kind, headers and
/// body, on the thread that starts a load and on the engine's IO thread; the object must stay usable for as long as the
/// view that it was given to. The reserved operations keep the interface's order and are never called.
class IZEMOWebContent {
public:
    /// A kind-3 item turns every request to exactly its address, byte by byte as the engine writes it, into a POST with
    /// its headers and body, until the view's list is replaced. ZEMO::Core::URL drops a slash at the end and sorts the
    /// query: such an address never matches. docs/requests.md has an example.
    static constexpr int kKindPost = 3;

    /// The address; the reference must stay valid while the item lives.
    virtual const ZEMO::Core::IURL& getUrl() const = 0;
    virtual void reserved2() {}  ///< never called
    /// kKindPost, or any other value for a plain address.
    virtual int getKind() const = 0;
    virtual void reserved4() {}  ///< never called
    virtual void reserved5() {}  ///< never called
    virtual void reserved6() {}  ///< never called
    /// Request headers of a POST item, UTF-8. They replace all headers that the engine had set. Not checked: a line
    /// break in a value begins another header.
    virtual std::unordered_map<std::string, std::string> getHeaders() const { return {}; }
    virtual void reserved8() {}  ///< never called
    virtual void reserved9() {}  ///< never called
    /// Request body of a POST item. It ends at its first NUL byte.
    virtual std::string getBody() const { return {}; }

    virtual ~IZEMOWebContent() = default;
};

}  // namespace ZEMO::UI
