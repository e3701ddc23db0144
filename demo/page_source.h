#pragma once

#include <string>

namespace demo {

/// What a view is to show. All text is UTF-8.
struct PageSource {
    enum class Kind {
        BuiltIn,    ///< `text`: the name of a page inside this program ("outpost", "dialog", "self_test")
        Address,    ///< `text`: a web address
        LocalPage,  ///< `text`: the name of a page in resources\html, without ".html"
        PadPage,    ///< `text`: the folder there of a page that is made for a controller ("zemostore_popup")
        Html,       ///< `text`: the page itself
    };
    Kind kind = Kind::BuiltIn;
    std::string text = "outpost";
};

}  // namespace demo
