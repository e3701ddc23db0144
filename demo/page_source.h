#pragma once

#include <string>

namespace demo {

/// What a view is to show. All text is UTF-8.
struct PageSource {
    enum class Kind {
        builtIn,    ///< `text`: the name of a page inside this program ("outpost", "dialog", "self_test")
        address,    ///< `text`: a web address
        localPage,  ///< `text`: the name of a page in resources\html, without ".html"
        html,       ///< `text`: the page itself
    };
    Kind kind = Kind::builtIn;
    std::string text = "outpost";
};

}  // namespace demo
