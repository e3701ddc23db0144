#include "controller/controller_scripts.h"

#include <filesystem>
#include <system_error>

#include "controller/controller_pages.h"

// Pages see these texts in their developer tools and depend on them, blanks and line breaks included.
namespace ZEMO::UI {
namespace {

constexpr char kCustomSchemeBase[] = "zemosdkcustomscheme://resources/common/";
constexpr char kFolderBase[] = "../../common/";

// clang-format off
constexpr char kStatusAssignment[] = "(function() {    window.gameControllerStatus = ";
constexpr char kStyleListBegin[] =
    ";"
    "    const head = document.head || document.getElementsByTagName('head')[0];"
    "    const cssFiles = ["
    "        ";
constexpr char kStyleListEnd[] =
    "    ];"
    "    cssFiles.forEach(href => {"
    "        const link = document.createElement('link');"
    "        link.href = href;"
    "        link.rel = 'stylesheet';"
    "        link.type = 'text/css';"
    "        head.appendChild(link);"
    "    });"
    "    const scripts = ['";
constexpr char kScriptListEnd[] =
    "js/gamepad_navigation.js'];"
    "    scripts.forEach(src => {"
    "        const script = document.createElement('script');"
    "        script.src = src;"
    "        script.type = 'text/javascript';"
    "        script.async = false;"
    "        head.appendChild(script);"
    "    });"
    "    document.addEventListener('DOMContentLoaded', function() {"
    "        document.body.classList.add('focus_on');"
    "        console.log('Resource injection complete and <body> class updated');"
    "        const keymapDiv = document.createElement('div');"
    "        keymapDiv.className = 'keymap_info';"
    "        keymapDiv.style.display = 'none';"
    "        document.body.appendChild(keymapDiv);"
    "    });"
    "})();";
// clang-format on

std::string pageScript(const std::string& base, bool useFocusStyle, const std::string& status) {
    std::string script = kStatusAssignment;
    script += status.empty() ? "null" : status;
    script += kStyleListBegin;
    if (useFocusStyle) script += "'" + base + "css/focus.css', ";
    script += "        '" + base + "css/keymap.min.css'";
    script += kStyleListEnd + base + "js/spatial_navigation.js', '" + base + kScriptListEnd;
    return script;
}

// A call of `function` if the page has it. A fault of the page stays in the page.
std::string guardedCall(const std::string& function, const std::string& argument, bool warnWhenMissing) {
    std::string script = "\n            (function() {\n                try {\n                    if (typeof " +
                         function + " === 'function') {\n                        " + function + "(" + argument +
                         ");\n                    }";
    if (warnWhenMissing) {
        script +=
            " else {\n                        console.warn('" + function + " is not defined.');\n                    }";
    }
    script += "\n                } catch (error) {\n                    console.error('Error while calling " +
              function + ":', error);\n                }\n            })();\n        ";
    return script;
}

}  // namespace

bool ControllerScripts::isControllerPage(std::string_view url) try {
    return findControllerPage(std::filesystem::path(url)).has_value();
} catch (const std::system_error&) {  // no valid UTF-8
    return false;
}

std::string ControllerScripts::buildControllerPageScript(const std::wstring& url, const std::string& status) try {
    const auto page = findControllerPage(std::filesystem::path(url));
    if (!page) return {};
    return pageScript(page->useCustomSchemeBase ? kCustomSchemeBase : kFolderBase, page->useFocusStyle, status);
} catch (const std::system_error&) {  // no valid UTF-16
    return {};
}

std::string ControllerScripts::buildInitClientGamePadScript(const std::string& status) {
    return guardedCall("initClientGamePad", status, true);
}

std::string ControllerScripts::buildHandleControllerInputScript(const std::string& data) {
    return guardedCall("handleControllerInput", data, true);
}

std::string ControllerScripts::buildFocusGainedScript() { return guardedCall("handleFocusGained", {}, false); }

std::string ControllerScripts::buildFocusLostScript() { return guardedCall("handleFocusLost", {}, false); }

}  // namespace ZEMO::UI
