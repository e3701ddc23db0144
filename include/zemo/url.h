#pragma once

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "zemo/export.h"

#ifdef _MSC_VER
#pragma warning(push)
#pragma warning(disable : 4251)  // standard members of exported classes: one compiler and run time for both sides
#endif

namespace ZEMO::Core {

/// An address as scheme, host, port, path, query parameters and fragment.
///
/// A text without a scheme is split by the same rules: `example.com/a` has its host where a path is meant, and
/// `localhost:8080` the scheme `localhost`. Give the scheme.
///
/// A game may implement this itself and hand it to the functions that take a `const IURL&`; the library then reads it
/// through getUrl alone, during the call. Ownership: texts and maps are copied in and out. Thread: one at a time for
/// each object. Failure: none but the standard library's own exceptions.
class ZEMO_API IURL {
public:
    /// Whether getUrl() is `other`, byte for byte and without decoding. A literal fits several of these operations:
    /// write `isEqual(std::string_view("https://a/"))`.
    virtual bool isEqual(const std::string& other) const = 0;
    /// The same for a view.
    virtual bool isEqual(std::string_view other) const = 0;
    /// Whether both addresses are the same text after percent-decoding.
    virtual bool isEqual(const IURL& other) const = 0;
    /// The whole address, fields as they are stored.
    virtual std::string getUrl() const = 0;
    /// Text before the first `:`, without it.
    virtual std::string getScheme() const = 0;
    /// Between `//` and the port or path, as it was written.
    virtual std::string getHost() const = 0;
    /// The port as text; it need not be a number.
    virtual std::string getPort() const = 0;
    /// The path with a `/` before each segment; empty when there is no segment.
    virtual std::string getPath() const = 0;
    /// Value of the query key, or an empty text where there is no such key.
    virtual std::string getQueryParameter(const std::string& key) const = 0;
    /// The query without its `?`.
    virtual std::string getQuery() const = 0;
    /// The fragment without its `#`.
    virtual std::string getFragment() const = 0;
    /// All query parameters, ordered by the bytes of their keys.
    virtual std::map<std::string, std::string> getQueryParameters() const = 0;
    /// Adds a parameter if the key is not there yet; the first value of a key stays.
    virtual void addQueryParameter(const std::string& key, const std::string& value) = 0;
    /// Adds a segment at the end of the path. `segment` comes without slashes around it.
    virtual void addPathSegment(const std::string& segment) = 0;
    /// Without its `:`; unchecked, as in the next two.
    virtual void setScheme(const std::string& newScheme) = 0;
    /// Without slashes.
    virtual void setHost(const std::string& newHost) = 0;
    /// As text, without its `:`; empty for none.
    virtual void setPort(const std::string& newPort) = 0;
    /// The same as getUrl().
    virtual std::string toString() const = 0;
    /// The whole address with every field percent-encoded, except port and separators. Escapes that a field holds
    /// already are encoded once more.
    virtual std::string toEncodedString() const = 0;
    virtual ~IURL();
};

/// The library's own IURL.
///
/// It splits a text by a few fixed rules and is no conforming parser: no user information, no IPv6 literal, no
/// validation, no change of case, no removal of dot segments, nothing is decoded. Text, fields and the joined text are
/// opaque bytes. Parameters come out ordered by key, a slash at the end of the path is lost, so the joined text may
/// differ from the one given.
///
///     ZEMO::Core::URL url("https://host:8443/shop/item?id=7&lang=ko#top");
///     url.getQueryParameter("id");  // "7"
class ZEMO_API URL : public IURL {
public:
    /// Splits `url`. No text is refused: a part that is not there is empty.
    URL(const std::string& url);
    /// Copies every field.
    URL(const URL& other);
    /// Copies every field.
    URL& operator=(const URL& other);

    bool isEqual(const std::string& other) const override;
    bool isEqual(std::string_view other) const override;
    bool isEqual(const IURL& other) const override;
    std::string getUrl() const override;
    std::string getScheme() const override;
    std::string getHost() const override;
    std::string getPort() const override;
    std::string getPath() const override;
    std::string getQueryParameter(const std::string& key) const override;
    std::string getQuery() const override;
    std::string getFragment() const override;
    std::map<std::string, std::string> getQueryParameters() const override;
    void addQueryParameter(const std::string& key, const std::string& value) override;
    void addPathSegment(const std::string& segment) override;
    void setScheme(const std::string& newScheme) override;
    void setHost(const std::string& newHost) override;
    void setPort(const std::string& newPort) override;
    std::string toString() const override;
    std::string toEncodedString() const override;
    ~URL() override;

private:
    friend struct UrlText;  ///< the library's parser and joiner

    std::string scheme;
    std::string host;
    std::string port;
    std::string fragment;
    std::string rawQuery;  ///< the query text, only where it held no parameter at all
    std::vector<std::string> pathSegments;
    std::map<std::string, std::string> queryParameters;
};

}  // namespace ZEMO::Core

#ifdef _MSC_VER
#pragma warning(pop)
#endif
