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

// Calls of a function if the page has it: a fault of the page stays in the page.
constexpr char kInitCallBegin[] = R"(
            (function() {
                try {
                    if (typeof initClientGamePad === 'function') {
                        initClientGamePad()";
constexpr char kInitCallEnd[] = R"();
                    } else {
                        console.warn('initClientGamePad is not defined.');
                    }
                } catch (error) {
                    console.error('Error while calling initClientGamePad:', error);
                }
            })();
        )";
constexpr char kInputCallBegin[] = R"(
            (function() {
                try {
                    if (typeof handleControllerInput === 'function') {
                        handleControllerInput()";
constexpr char kInputCallEnd[] = R"();
                    } else {
                        console.warn('handleControllerInput is not defined.');
                    }
                } catch (error) {
                    console.error('Error while calling handleControllerInput:', error);
                }
            })();
        )";
constexpr char kFocusGainedCall[] = R"(
            (function() {
                try {
                    if (typeof handleFocusGained === 'function') {
                        handleFocusGained();
                    }
                } catch (error) {
                    console.error('Error while calling handleFocusGained:', error);
                }
            })();
        )";
constexpr char kFocusLostCall[] = R"(
            (function() {
                try {
                    if (typeof handleFocusLost === 'function') {
                        handleFocusLost();
                    }
                } catch (error) {
                    console.error('Error while calling handleFocusLost:', error);
                }
            })();
        )";
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
    return kInitCallBegin + status + kInitCallEnd;
}

std::string ControllerScripts::buildHandleControllerInputScript(const std::string& data) {
    return kInputCallBegin + data + kInputCallEnd;
}

std::string ControllerScripts::buildFocusGainedScript() { return kFocusGainedCall; }

std::string ControllerScripts::buildFocusLostScript() { return kFocusLostCall; }

}  // namespace ZEMO::UI
