#pragma once

#include <string>

// What an address of the custom scheme stands for: rules on text only. Any thread.
namespace ZEMO::UI {

/// The type as which `url` is served; null when it is not served at all. Each known ending is looked for in the whole
/// address and in its own letters: "a.json" is a script, "a.css?x=.png" a style sheet, "a.CSS" nothing.
const char* resourceMimeType(const std::string& url);

/// Where the resource lies below the resource folder, beginning with the separator: `url` without the scheme's prefix
/// and without the domain's word, wherever they stand in it. Nothing is decoded; query and fragment stay, and so do
/// steps to a parent folder.
std::string resourcePath(const std::string& url);

}  // namespace ZEMO::UI
