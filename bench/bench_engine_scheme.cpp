// What the custom scheme costs: a page of it asks for a file of 10 MB again and again, and beside each request the same
// bytes are read from the same disk by the same kind of stream, with nothing of an engine. The file has been read
// before either, so that both find it in the system's memory.
//
// The page takes its own time of each request, from the request to all bytes in a script's hands: the scheme's handler,
// the way to the page's process and the engine's request lie between.
#include <zemo/ui.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "engine/game_host.h"
#include "engine_bench/measured.h"
#include "support/http_server.h"

namespace {

using namespace ZEMO::Bench;

constexpr size_t kFileBytes = 10 * 1024 * 1024;
constexpr int kRequests = 40;

std::string readFile(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary | std::ios::ate);
    std::string bytes(static_cast<size_t>(stream.tellg()), '\0');
    stream.seekg(0);
    stream.read(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return bytes;
}

std::string page(const std::string& report) {
    return "<!doctype html><body><script>const ask=()=>new Promise((done,fail)=>{const x=new XMLHttpRequest;"
           "x.open('GET','bench.js');x.responseType='arraybuffer';x.onerror=fail;const start=performance.now();"
           "x.onload=()=>done([performance.now()-start,x.response.byteLength]);x.send()});(async()=>{await ask();"
           "let times='';for(let i=0;i<" +
           std::to_string(kRequests) +
           ";i++){const [ms,bytes]=await ask();times+=ms+' '+bytes+' '}"
           "const x=new XMLHttpRequest;x.open('POST','" +
           report + "');x.send(times)})()</script>";
}

std::vector<double> requestTimes(const std::string& reported) {
    std::vector<double> times;
    std::istringstream text(reported);
    for (double ms = 0, bytes = 0; text >> ms >> bytes;) {
        if (bytes != kFileBytes) throw std::runtime_error("a request did not bring the whole file");
        times.push_back(ms);
    }
    if (times.size() != kRequests) throw std::runtime_error("the page has not finished its requests");
    return times;
}

std::vector<double> readTimes(const std::filesystem::path& file) {
    std::vector<double> times;
    for (int i = 0; i <= kRequests; ++i) {
        const auto start = Clock::now();
        if (readFile(file).size() != kFileBytes) throw std::runtime_error("the file is not whole");
        if (i > 0) times.push_back(milliseconds(Clock::now() - start));
    }
    return times;
}

int drive() {
    ZEMO::Test::HttpServer server;
    server.serve("/report", {.extraHeaders = "Access-Control-Allow-Origin: *\r\n"});
    ZEMO::Test::GameHost game;
    const std::filesystem::path folder = ZEMO::UI::getLocalHTMLResourcePath() / "bench";
    std::filesystem::create_directories(folder);
    std::ofstream(folder / "bench.js", std::ios::binary) << std::string(kFileBytes, 'x');
    std::ofstream(folder / "page.html", std::ios::binary) << page(server.url("/report"));
    ZEMO::Test::NavigationRecorder events;
    const auto view = game.makeView("zemosdkcustomscheme://resources/bench/page.html", events);
    view->show();
    game.waitFor("the page's requests", [&] { return server.requestCount("/report") > 0; }, 120s);
    std::string reported;
    for (const auto& request : server.requests()) {
        if (request.target == "/report") reported = request.body;
    }
    report("scheme_10MB/request_of_a_page", "ms", requestTimes(reported), "scheme_10MB/file_read");
    report("scheme_10MB/file_read", "ms", readTimes(folder / "bench.js"));
    return 0;
}

}  // namespace

int main() { ZEMO::Bench::leaveWith(drive); }
