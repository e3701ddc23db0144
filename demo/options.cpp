#include "options.h"

#include "text.h"

#include <shellapi.h>

#include <charconv>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <stdexcept>

namespace demo {

namespace {

struct LocalFreer {
    void operator()(void* memory) const { LocalFree(memory); }
};

int toNumber(const std::string& text, int least, int most) {
    int value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
    if (error != std::errc{} || end != text.data() + text.size() || value < least || value > most) {
        throw std::invalid_argument("'" + text + "' is not a number from " + std::to_string(least) + " to " +
                                    std::to_string(most));
    }
    return value;
}

PixelSize toSize(const std::string& text) {
    const auto x = text.find('x');
    if (x == std::string::npos) throw std::invalid_argument("'" + text + "' is not a size like 1280x720");
    return {toNumber(text.substr(0, x), 64, 16384), toNumber(text.substr(x + 1), 64, 16384)};
}

template <class T>
T toChoice(const std::string& text, std::initializer_list<std::pair<const char*, T>> choices) {
    std::string names;
    for (const auto& [name, value] : choices) {
        if (text == name) return value;
        names += std::string(names.empty() ? "" : ", ") + name;
    }
    throw std::invalid_argument("'" + text + "' is none of " + names);
}

std::string readFile(const std::string& name) {
    std::ifstream file(toPath(name), std::ios::binary);
    if (!file) throw std::invalid_argument("cannot read '" + name + "'");
    return {std::istreambuf_iterator<char>(file), {}};
}

struct Option {
    const char* name;
    const char* value;  // what the help calls its value; null for a switch
    const char* help;
    std::function<void(Options&, const std::string&)> apply;
};

const std::vector<Option>& allOptions() {
    using O = Options;
    using S = const std::string&;
    static const std::vector<Option> options{
        {"--url", "ADDRESS", "show a web page (http://... or https://...)",
         [](O& o, S v) { o.page = {PageSource::Kind::Address, v}; }},
        {"--page", "NAME", "show a local page of resources\\html, by its name without .html",
         [](O& o, S v) { o.page = {PageSource::Kind::LocalPage, v}; }},
        {"--pad-page", "NAME", "show a page made for a controller: zemostore_popup, idp_login",
         [](O& o, S v) { o.page = {PageSource::Kind::PadPage, v}; }},
        {"--pad-keys", nullptr, "on such a page: arrows, Enter (A), Esc (B), Del (X), Ins (Y) are the controller",
         [](O& o, S) { o.hasPadKeys = true; }},
        {"--html", "TEXT", "show a page given as text", [](O& o, S v) { o.page = {PageSource::Kind::Html, v}; }},
        {"--html-file", "FILE", "show a page read from a file",
         [](O& o, S v) { o.page = {PageSource::Kind::Html, readFile(v)}; }},
        {"--size", "WxH", "client size of the game's window in pixels, 1280x720",
         [](O& o, S v) { o.size = toSize(v); }},
        {"--mode", "MODE",
         "callback: the game draws the page; window, local: the library does, in a window of the page's own or the "
         "game's; hook: the graphics hook",
         [](O& o, S v) {
             o.mode = toChoice<Mode>(v, {{"callback", Mode::Callback},
                                         {"window", Mode::Window},
                                         {"local", Mode::Local},
                                         {"hook", Mode::Hook}});
         }},
        {"--direct3d", nullptr, "show the game's frames by Direct3D 11 in place of OpenGL",
         [](O& o, S) { o.isDirect3D = true; }},
        {"--views", "N", "1, or 2 for a dialog on top of the page", [](O& o, S v) { o.views = toNumber(v, 1, 2); }},
        {"--seconds", "S", "end after S seconds; without it, when the window is closed",
         [](O& o, S v) { o.seconds = toNumber(v, 1, 86400); }},
        {"--close-button", nullptr, "the library's own X in the page's corner",
         [](O& o, S) { o.hasCloseButton = true; }},
        {"--gpu-compositing", nullptr, "let the engine composite pages on the GPU",
         [](O& o, S) { o.hasGpuCompositing = true; }},
        {"--no-gpu-compositing", nullptr, "composite pages in software (default)",
         [](O& o, S) { o.hasGpuCompositing = false; }},
        {"--out", "DIR", "where the pictures and the figures go, ./out", [](O& o, S v) { o.out = toPath(v); }},
        {"--screenshot", "FILE", "the page frame as delivered, as a PNG; out\\page.png",
         [](O& o, S v) { o.screenshot = toPath(v); }},
        {"--figures", nullptr, "print the figures at the end", [](O& o, S) { o.hasFigures = true; }},
        {"--json", "FILE", "the figures as JSON; out\\figures.json", [](O& o, S v) { o.json = toPath(v); }},
        {"--self-test", nullptr, "drive the demo, check pixels, exit with 0 or 1",
         [](O& o, S) { o.isSelfTest = true; }},
        {"--quit-way", "WAY", "close (default), or with the page open: return, exitprocess, freelibrary",
         [](O& o, S v) {
             o.quitWay = toChoice<QuitWay>(v, {{"close", QuitWay::Close},
                                               {"return", QuitWay::Leave},
                                               {"exitprocess", QuitWay::ExitProcess},
                                               {"freelibrary", QuitWay::FreeLibrary}});
         }},
        {"--help", nullptr, "this text", [](O& o, S) { o.isHelp = true; }},
    };
    return options;
}

}  // namespace

std::vector<std::string> commandLine() {
    int count = 0;
    const std::unique_ptr<wchar_t*, LocalFreer> words(CommandLineToArgvW(GetCommandLineW(), &count));
    std::vector<std::string> arguments;
    for (int i = 1; i < count; ++i) arguments.push_back(toUtf8(words.get()[i]));
    return arguments;
}

Options parseOptions(const std::vector<std::string>& arguments) {
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        // Both "--size 800x600" and "--size=800x600".
        const auto equals = arguments[i].find('=');
        const std::string name = arguments[i].substr(0, equals);
        const Option* found = nullptr;
        for (const Option& option : allOptions()) {
            if (name == option.name) found = &option;
        }
        if (!found) throw std::invalid_argument("there is no option '" + name + "'; --help lists them");
        std::string value;
        if (!found->value) {
            if (equals != std::string::npos) throw std::invalid_argument("'" + name + "' takes no value");
        } else if (equals != std::string::npos) {
            value = arguments[i].substr(equals + 1);
        } else if (++i < arguments.size()) {
            value = arguments[i];
        } else {
            throw std::invalid_argument("'" + name + "' needs " + found->value);
        }
        found->apply(options, value);
    }
    return options;
}

std::string helpText() {
    std::string text = "zemo_demo [options]: a small game that shows a web page\n\n";
    for (const Option& option : allOptions()) {
        std::string line = std::string("  ") + option.name + (option.value ? std::string(" ") + option.value : "");
        line.resize(std::max<std::size_t>(line.size() + 1, 26), ' ');
        text += line + option.help + "\n";
    }
    return text +
           "\nKeys: F10 hides and shows the page, F12 saves pictures, Esc ends (F12, Esc: while no page is shown).\n";
}

}  // namespace demo
