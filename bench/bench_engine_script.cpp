// What a call of evaluateJavascript takes until its callback has the result: 100 bytes, 10 KB and 512 KB, one after the
// other. Beside it a host that starts the same engine with the same settings and sends plain process messages to a
// child program that does nothing but run the script and send its text back. Each run is a process of its own; they
// alternate, so that what the machine does meanwhile hits both alike.
#include <numeric>

#include "engine_bench/engine_run.h"
#include "engine_bench/measured.h"
#include "support/http_server.h"

namespace {

using namespace ZEMO::Bench;

constexpr int kPairs = 5;
constexpr std::array kNames{"100_B", "10_KB", "512_KB"};

double perSecond(const std::vector<double>& times) {
    return static_cast<double>(times.size()) * 1e6 / std::accumulate(times.begin(), times.end(), 0.0);
}

int drive() {
    ZEMO::Test::HttpServer server;
    server.serveHtml("/", "<!doctype html>");
    RunOrder library{
        .host = Host::Library, .width = 640, .height = 360, .runsScripts = true, .address = server.url("/")};
    RunOrder bare = library;
    bare.host = Host::Bare;
    ScriptTimes times[2], rates[2];
    for (int pair = 0; pair < kPairs; ++pair) {
        for (const RunOrder& order : {library, bare}) {
            const auto host = static_cast<size_t>(order.host);
            const ScriptTimes run = runInOwnProcess(order).scripts;
            for (size_t i = 0; i < run.size(); ++i) {
                times[host][i].insert(times[host][i].end(), run[i].begin(), run[i].end());
                rates[host][i].push_back(perSecond(run[i]));
            }
        }
    }
    for (size_t i = 0; i < kNames.size(); ++i) {
        const std::string trip = std::format("script_round_trip_{}/", kNames[i]);
        report(trip + "library", "us", times[0][i], trip + "bare_engine");
        report(trip + "bare_engine", "us", times[1][i]);
        const std::string rate = std::format("script_round_trips_{}/", kNames[i]);
        report(rate + "library", "1/s", rates[0][i], rate + "bare_engine");
        report(rate + "bare_engine", "1/s", rates[1][i]);
    }
    return 0;
}

}  // namespace

int main() { ZEMO::Bench::mainOfRuns(drive); }
