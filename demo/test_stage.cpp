#include "test_stage.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>

namespace demo {

std::string text(const char* pattern, ...) {
    char line[300];
    va_list arguments;
    va_start(arguments, pattern);
    std::vsnprintf(line, sizeof line, pattern, arguments);
    va_end(arguments);
    return line;
}

std::string text(const Colour& colour) {
    return text("%d,%d,%d,%d", colour.red, colour.green, colour.blue, colour.alpha);
}

bool isClose(const Colour& a, const Colour& b, int tolerance) {
    return std::abs(a.red - b.red) <= tolerance && std::abs(a.green - b.green) <= tolerance &&
           std::abs(a.blue - b.blue) <= tolerance && std::abs(a.alpha - b.alpha) <= tolerance;
}

TestStage::TestStage(Game& shown, const Options& chosen)
    : game(shown), options(chosen), scale(shown.gameWindow().scale()) {
    game.onPageEvent = [this](const PageEvent& event) {
        ++counts[static_cast<std::size_t>(event.kind)];
        if (event.kind == PageEvent::Kind::Command) commands.push_back(event.text);
        if (event.kind == PageEvent::Kind::Answer) newestAnswer = event.text;
    };
}

TestStage::~TestStage() { game.onPageEvent = nullptr; }

void TestStage::step(const char* name, const std::function<void()>& body) {
    const auto begin = Clock::now();
    std::printf("%-58s ", name);
    std::fflush(stdout);
    try {
        body();
    } catch (const Failure& failure) {
        std::printf("FAILED\n");
        throw Failure(std::string(name) + ": " + failure.what());
    }
    std::printf("ok  %.2f s\n", milliseconds(Clock::now() - begin) / 1000);
    std::fflush(stdout);
}

void TestStage::await(const std::function<bool()>& isDone, const std::function<std::string()>& missing) {
    if (!game.playUntil(isDone, kPatience)) throw Failure("after 20 s " + missing());
}

void TestStage::awaitMore(PageEvent::Kind kind, int before, const char* missing) {
    await([&] { return count(kind) > before; }, [&] { return missing; });
}

std::string TestStage::command(const std::string& start) const {
    for (auto each = commands.rbegin(); each != commands.rend(); ++each) {
        if (each->starts_with(start)) return *each;
    }
    return {};
}

int TestStage::px(double logical) const { return static_cast<int>(std::floor(logical * scale)); }

void TestStage::awaitPage(const char* what, double x, double y, Colour expected, int tolerance) {
    await([&] { return game.pageUpdate().isVisible && isClose(onPage(x, y), expected, tolerance); },
          [&] {
              return text("the callback's frame (%d x %d) has %s at %.0f,%.0f, %s is %s", game.pageImage().width,
                          game.pageImage().height, text(onPage(x, y)).c_str(), x, y, what, text(expected).c_str());
          });
}

void TestStage::awaitPage(const Block& block) {
    awaitPage(block.name, block.x, block.y, block.colour, block.colour.alpha < 255);
}

HWND TestStage::pageWindow() const {
    struct Search {
        HWND gameWindow;
        HWND found;
    } search{game.gameWindow().handle(), nullptr};
    if (options.mode != Mode::Window) return search.gameWindow;
    EnumWindows(  // from the top: the newest first
        [](HWND window, LPARAM parameter) -> BOOL {
            auto* wanted = reinterpret_cast<Search*>(parameter);
            DWORD process = 0;
            GetWindowThreadProcessId(window, &process);
            if (process == GetCurrentProcessId() && IsWindowVisible(window) &&
                GetWindow(window, GW_OWNER) == wanted->gameWindow) {
                wanted->found = window;
            }
            return wanted->found == nullptr;
        },
        reinterpret_cast<LPARAM>(&search));
    return search.found;
}

}  // namespace demo
