#include "engine_bench/script_times.h"

#include <functional>
#include <future>
#include <stdexcept>
#include <utility>

#include "engine/game_host.h"
#include "engine_bench/bare_engine.h"
#include "engine_bench/measured.h"
#include "include/cef_frame.h"
#include "include/cef_process_message.h"
#include "include/cef_values.h"

namespace ZEMO::Bench {
namespace {

constexpr int kWarmUp = 50;
constexpr std::array kCounts{2000, 1000, 200};  // of each size
constexpr wchar_t kBareCache[] = L"bench_cache";
constexpr wchar_t kBareChild[] = L"cefsubprocess_test\\cef.echo.exe";

/// What one host sends, and when it is done. After `begin` everything happens on the engine thread.
class RoundTrips {
public:
    /// Sends a script whose answer comes by `answered`.
    using Send = std::function<void(const std::string& script)>;
    /// `quotes`: the answer is JSON text and so two bytes longer than the page's own.
    RoundTrips(Send sender, size_t quotes) : send(std::move(sender)), extraBytes(quotes) {}

    void next() {
        const auto bytes = static_cast<size_t>(kAnswerBytes[size]) - extraBytes;
        script = "'x'.repeat(" + std::to_string(bytes) + ")";
        sent = Clock::now();
        send(script);
    }

    void answered(const std::string& text) {
        const Clock::time_point now = Clock::now();
        if (text.size() != static_cast<size_t>(kAnswerBytes[size])) return finish("an answer of another size");
        if (++trips > kWarmUp) times[size].push_back(microseconds(now - sent));
        if (trips < kWarmUp + kCounts[size]) return next();
        trips = 0;
        if (++size < kAnswerBytes.size()) return next();
        finish({});
    }

    bool isDone() const { return done; }
    ScriptTimes result() const {
        if (!failure.empty()) throw std::runtime_error(failure);
        return times;
    }

private:
    void finish(std::string why) {
        failure = std::move(why);
        done = true;
    }

    const Send send;
    const size_t extraBytes;
    std::string script;
    Clock::time_point sent;
    size_t size = 0;
    int trips = 0;
    ScriptTimes times;
    std::string failure;
    std::atomic<bool> done{false};
};

ScriptTimes waitFor(Test::GameHost& game, const RoundTrips& trips) {
    if (!game.waitFor("the round trips", [&] { return trips.isDone(); }, 80s)) throw std::runtime_error("no answer");
    return trips.result();
}

}  // namespace

ScriptTimes timeLibrary(const RunOrder& order) {
    Test::GameHost game({.clientWidth = order.width, .clientHeight = order.height});
    Test::NavigationRecorder events;
    const auto view = game.makeView(order.address, events);
    RoundTrips trips(
        [&](const std::string& script) {
            view->evaluateJavascript(script,
                                     [&trips](const std::string& text, const std::string&) { trips.answered(text); });
        },
        2);
    view->show();
    if (!game.waitFor("the page", [&] { return events.has("completed"); })) throw std::runtime_error("no page");
    trips.next();
    return waitFor(game, trips);
}

ScriptTimes timeBare(const RunOrder& order) {
    Test::GameHost game(
        {.clientWidth = order.width, .clientHeight = order.height, .presentCallback = false, .startLibrary = false});
    startBareEngine(kBareCache, kBareChild);
    const CefRefPtr<BareClient> client = new BareClient(order.width, order.height, [](const void*, int, int) {});
    CefRefPtr<CefFrame> frame;
    RoundTrips trips(
        [&](const std::string& script) {
            const CefRefPtr<CefProcessMessage> message = CefProcessMessage::Create("eval");
            message->GetArgumentList()->SetString(0, script);
            frame->SendProcessMessage(PID_RENDERER, message);
        },
        0);
    client->onMessage = [&](const auto&, const CefRefPtr<CefProcessMessage>& message) {
        if (message->GetName() == "answer") trips.answered(message->GetArgumentList()->GetString(1));
    };
    client->onLoaded = [&](const CefRefPtr<CefFrame>& loaded) {
        frame = loaded;
        trips.next();
    };
    client->open(game.window, order.address);
    ScriptTimes times = waitFor(game, trips);
    client->close();
    if (!game.waitFor("the browser's end", [&] { return client->closed(); })) throw std::runtime_error("no end");
    return times;
}

}  // namespace ZEMO::Bench
