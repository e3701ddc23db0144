#pragma once

#include <string>
#include <string_view>

// From what a caller asks a view to load to the address that the engine gets. Any thread.
namespace ZEMO::UI {

/// Address of the page `name` (UTF-8, without ".html") in the resource tree beside the library.
std::string localPageAddress(const std::string& name);

/// The same page as a later load on an open view addresses it.
std::string reloadPageAddress(const std::string& name);

/// First load by name or address: a web address as it is (its scheme in any letter case), anything else a local page.
std::string firstLoadAddress(const std::string& url);

/// First load by name or file path: text with a colon is a path, to which ".html" is added.
std::string firstPageAddress(const std::string& nameOrPath);

/// Page text as a data address, before the engine's encoders: relative references that leave the page's directory
/// ("../") become addresses of the custom scheme below the directory that holds `path`'s folder.
std::string rebaseHtml(std::string_view html, std::string_view path);

/// The longest address that the engine takes, in bytes.
inline constexpr size_t kLongestAddress = 2 * 1024 * 1024;

/// An address that the engine takes without a word and never loads: blank, too long, or with a scheme and not well
/// formed (a port of 99999, say). Needs the engine.
bool isRefusedAddress(const std::string& address);

/// `html` (rebased by `path`) as a data address. Needs the engine.
std::string htmlDataAddress(std::string_view html, std::string_view path);

}  // namespace ZEMO::UI
