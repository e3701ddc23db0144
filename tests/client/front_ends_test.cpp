#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <format>
#include <fstream>

#include "client/real_hands.h"

// Web front ends as studios use them, from a package registry, under a person's hands: an editor, a map, a chart, a
// list to sort, a form. What each of them holds in the end is the proof.
namespace ZEMO::Test {
namespace {

using Style = InputPage::Style;

struct Place {
    const char* name;
    Style style;
    float scale;
};

constexpr DWORD kExtended = KEYEVENTF_EXTENDEDKEY;  // the keys above the arrows, and the arrows themselves

std::string contentTypeOf(const std::string& file) {
    const std::filesystem::path extension = std::filesystem::path(file).extension();
    if (extension == ".css") return "text/css";
    return extension == ".png" ? "image/png" : "text/javascript";
}

/// A shown page with front ends in it.
class FrontEnds : public ::testing::TestWithParam<Place> {
protected:
    FrontEnds() { SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2); }

    /// `files` of the packages are linked in the page's head, in this order.
    void open(const std::vector<std::string>& files, const std::string& body) {
        std::string head;
        for (const std::string& file : files) {
            head += file.ends_with(".css") ? std::format("<link rel=stylesheet href='/{}'>", file)
                                           : std::format("<script src='/{}'></script>", file);
        }
        page = std::make_unique<InputPage>(GetParam().style, GetParam().scale, head + body, true, SIZE{480, 360});
        for (const std::string& file : files) ASSERT_NO_FATAL_FAILURE(serve(file));
        ASSERT_TRUE(page->open());
        ASSERT_FLOAT_EQ(static_cast<float>(GetDpiForWindow(page->window)) / 96.0f, GetParam().scale);
        hands = std::make_unique<RealHands>(*page);
    }
    void serve(const std::string& file) {
        std::ifstream in(std::string(ZEMO_FRONT_ENDS_DIR) + "/" + file, std::ios::binary);
        ASSERT_TRUE(in) << file << " is not in \"" << ZEMO_FRONT_ENDS_DIR
                        << "\": the set-up could not fetch the front ends, and said why";
        page->server.serve("/" + file, {.contentType = contentTypeOf(file),
                                        .body = std::string(std::istreambuf_iterator<char>(in), {})});
    }

    std::string ask(const std::string& expression) { return page->ask(expression); }
    /// In the page's own time: front ends work in timers and frames.
    void expectSoon(const std::string& expression, const std::string& expected) {
        std::string now;
        EXPECT_TRUE(page->game.waitFor(expression.c_str(), [&] { return (now = ask(expression)) == expected; }))
            << "it is " << now << ", not " << expected;
    }
    /// What hangs from the cursor is carried there, and held with a hand that is never quite still.
    void carryUntil(POINT at, const std::string& expression, const std::string& expected) {
        std::string now;
        EXPECT_TRUE(page->game.waitFor(expression.c_str(),
                                       [&] {
                                           hands->moveTo(at);
                                           return (now = ask(expression)) == expected;
                                       }))
            << "it is " << now << ", not " << expected;
    }
    POINT pointOf(const std::string& xAndY) {
        POINT point{};
        const std::string text = ask(xAndY);
        EXPECT_EQ(std::sscanf(text.c_str(), "%ld,%ld", &point.x, &point.y), 2) << xAndY << " is " << text;
        return point;
    }
    POINT middleOf(const std::string& element) {
        return pointOf("(r=>Math.round(r.x+r.width/2)+','+Math.round(r.y+r.height/2))(" + element +
                       ".getBoundingClientRect())");
    }

    /// But for the cursor that comes in from outside, which is the game's for one move.
    void expectGameHeardNothing() {
        std::vector<UINT> ids = page->reachedGame();
        std::erase(ids, WM_MOUSEMOVE);
        EXPECT_EQ(ids, std::vector<UINT>{});
    }

    std::unique_ptr<InputPage> page;
    std::unique_ptr<RealHands> hands;
};

// --- an editor ---

constexpr char kEditor[] = R"(<div id=at></div><style>.CodeMirror{height:340px}</style><script>
window.editor = CodeMirror(at, {mode: 'javascript', lineNumbers: true, autoCloseBrackets: true,
  extraKeys: {'Ctrl-Space': 'autocomplete'}, hintOptions: {completeSingle: false}});
const charAt = (line, ch) => (p => Math.round(p.left + 1) + ',' + Math.round((p.top + p.bottom) / 2))
  (editor.charCoords({line, ch}, 'window'));
</script>)";
const std::vector<std::string> kEditorFiles = {
    "codemirror/lib/codemirror.css",          "codemirror/addon/hint/show-hint.css",
    "codemirror/lib/codemirror.js",           "codemirror/mode/javascript/javascript.js",
    "codemirror/addon/edit/closebrackets.js", "codemirror/addon/hint/show-hint.js",
    "codemirror/addon/hint/anyword-hint.js",
};

// --- a map, whose tiles come from the test's server ---

constexpr char kMap[] = R"(<div id=at style='width:480px;height:360px'></div><script>
window.map = L.map(at, {center: [0, 0], zoom: 3, inertia: false, zoomAnimation: false});
L.tileLayer('/tile?{z},{x},{y}', {maxZoom: 9}).addTo(map);
window.home = L.circleMarker([10, 10], {radius: 12}).addTo(map).bindPopup('home');
const placeOf = where => (p => Math.round(p.x) + ',' + Math.round(p.y))(map.latLngToContainerPoint(where));
</script>)";
constexpr char kTile[] =
    "<svg xmlns='http://www.w3.org/2000/svg' width='256' height='256'>"
    "<rect width='256' height='256' fill='#9cf' stroke='#036'/></svg>";

// --- a chart ---

constexpr char kChart[] = R"(<div style='width:460px;height:340px;background:#fff'><canvas id=at></canvas></div><script>
window.clicked = '';
window.chart = new Chart(at, {type: 'bar', data: {labels: ['mon', 'tue', 'wed'], datasets: [
    {label: 'won', data: [3, 5, 2]}, {label: 'lost', data: [2, 2, 4]}]},
  options: {animation: false, maintainAspectRatio: false,
    onClick: (e, hit) => { clicked = hit.map(h => h.datasetIndex + ':' + h.index).join(' ') }}});
const onCanvas = (x, y) => (r => Math.round(r.x + x) + ',' + Math.round(r.y + y))(at.getBoundingClientRect());
const bar = (set, index) => (b => onCanvas(b.x, (b.y + b.base) / 2))(chart.getDatasetMeta(set).data[index]);
const legend = i => (b => onCanvas(b.left + b.width / 2, b.top + b.height / 2))(chart.legend.legendHitBoxes[i]);
const tip = () => chart.tooltip.opacity ? chart.tooltip.title + ' ' + chart.tooltip.body.map(b => b.lines).join() : 'none';
</script>)";

// --- a list to sort: by the moves of the mouse, since the engine drags nothing out of a page ---

constexpr char kList[] = R"(<style>.list{position:absolute;top:10px;width:180px;min-height:300px;background:#456}
.list div{height:40px;margin:4px;background:#abc}</style>
<div class=list id=one style='left:10px'><div>a</div><div>b</div><div>c</div><div>d</div><div>e</div></div>
<script>
new Sortable(one, {forceFallback: true, fallbackOnBody: true, animation: 0});
const order = list => [...list.children].map(e => e.textContent).join('');
</script>)";

// --- a form ---

constexpr char kForm[] = R"(<style>body{background:#fff!important}form>*{margin:4px}</style><form id=form>
<input id=who name=who placeholder=name><input id=day name=day><input id=agree name=agree type=checkbox>
<select id=fruit name=fruit><option value=apple>apple<option value=grape>grape<option value=melon>melon</select>
<button id=send>send</button></form><script>
window.sent = '';
window.menu = new Choices(fruit, {searchEnabled: true, shouldSort: false, itemSelectText: ''});
window.calendar = flatpickr(day, {defaultDate: '2026-11-22', disableMobile: true});
form.onsubmit = e => { e.preventDefault(); sent = [...new FormData(form)].join(' ') };
const inMenu = () => [...document.querySelectorAll('.choices__list--dropdown .choices__item--choice')].map(e => e.dataset.value).join();
const dayBox = n => [...calendar.days.children].find(d => d.textContent == n && !/Month/.test(d.className));
</script>)";

}  // namespace

TEST_P(FrontEnds, CodeEditor_TypedIntoCompletedSelectedAndScrolled) {
    ASSERT_NO_FATAL_FAILURE(open(kEditorFiles, kEditor));
    hands->click({200, 100});
    expectSoon("editor.hasFocus()", "true");
    hands->type("let alpha = 1, album = 2;");
    hands->tap(VK_RETURN);
    hands->type("f[al");
    expectSoon("editor.getValue('|')", "let alpha = 1, album = 2;|f[al]");  // closed by the editor
    hands->tapWith(VK_LCONTROL, VK_SPACE);
    expectSoon("[...document.querySelectorAll('.CodeMirror-hint')].map(e=>e.textContent).join()", "alpha,album");
    hands->tap(VK_DOWN, kExtended);
    hands->tap(VK_RETURN);
    expectSoon("editor.getLine(1)", "f[album]");
    hands->drag(pointOf("charAt(0,4)"), pointOf("charAt(0,9)"));
    expectSoon("editor.getSelection()", "alpha");
    hands->type("x");
    expectSoon("editor.getLine(0)", "let x = 1, album = 2;");
    hands->tapWith(VK_LCONTROL, 'Z');
    expectSoon("editor.getLine(0)", "let alpha = 1, album = 2;");
    hands->tapWith(VK_LCONTROL, VK_END, kExtended);
    hands->tapWith(VK_LSHIFT, VK_HOME, kExtended);
    hands->tap(VK_DELETE, kExtended);
    expectSoon("editor.getValue('|')", "let alpha = 1, album = 2;|");
    hands->tapWith(VK_LCONTROL, 'A');
    hands->tapWith(VK_LCONTROL, 'C');
    hands->tap(VK_END, kExtended);
    hands->tapWith(VK_LCONTROL, 'V');
    hands->tapWith(VK_LCONTROL, 'V');
    expectSoon("editor.lineCount()", "4");
    page->logReal([] {
        for (int line = 0; line < 40; ++line) tapRealKey(VK_RETURN);
    });
    expectSoon("editor.lineCount()", "44");
    const std::string bottom = ask("editor.getScrollInfo().top");
    hands->wheel({200, 100}, 3);
    expectSoon("editor.getScrollInfo().top < " + bottom, "true");
    expectGameHeardNothing();
}

TEST_P(FrontEnds, Map_DraggedZoomedAndSteeredByKeys) {
    ASSERT_NO_FATAL_FAILURE(open({"leaflet/dist/leaflet.css", "leaflet/dist/leaflet.js"}, kMap));
    page->server.serve("/tile", {.contentType = "image/svg+xml", .body = kTile});
    expectSoon("placeOf([0,0])", "240,180");
    hands->drag({300, 250}, {400, 310});
    expectSoon("placeOf([0,0])", "340,240");
    hands->drag({400, 300}, {200, 150});
    expectSoon("placeOf([0,0])", "140,90");
    hands->tap(VK_RIGHT, kExtended);                                      // the map took the keyboard with the press
    expectSoon("placeOf([0,0])+map._panAnim._inProgress", "60,90false");  // it hears no key on the way
    hands->tap(VK_UP, kExtended);
    expectSoon("placeOf([0,0])", "60,170");
    hands->click(middleOf("document.querySelector('.leaflet-control-zoom-in')"));
    expectSoon("map.getZoom()", "4");
    hands->wheel({240, 180}, -1);
    expectSoon("map.getZoom() < 4", "true");
    hands->wheel({240, 180}, 2);
    expectSoon("map.getZoom() >= 4", "true");
    ask("map.setView([10,10], 4, {animate: false}) && 1");
    hands->click(pointOf("placeOf([10,10])"));
    expectSoon("home.isPopupOpen() && document.querySelector('.leaflet-popup-content').textContent", "home");
    hands->tap(VK_ESCAPE);
    expectSoon("home.isPopupOpen()", "false");
    EXPECT_GE(page->server.requestCount("/tile"), 8u) << "tiles of more than one zoom";
    expectGameHeardNothing();
}

TEST_P(FrontEnds, Chart_PointedAtAndClicked) {
    ASSERT_NO_FATAL_FAILURE(open({"chart.js/dist/chart.umd.js"}, kChart));
    hands->moveTo(pointOf("bar(0,1)"));
    expectSoon("tip()", "tue won: 5");
    hands->moveTo(pointOf("bar(1,2)"));
    expectSoon("tip()", "wed lost: 4");
    hands->click(pointOf("bar(0,0)"));
    expectSoon("clicked", "0:0");
    hands->click(pointOf("legend(1)"));
    expectSoon("chart.isDatasetVisible(1)", "false");
    hands->click(pointOf("legend(1)"));
    expectSoon("chart.isDatasetVisible(1)", "true");
    carryUntil(pointOf("onCanvas(chart.chartArea.left + 4, chart.chartArea.top + 4)"), "tip()", "none");
    expectGameHeardNothing();
}

TEST_P(FrontEnds, List_SortedByDragging) {
    ASSERT_NO_FATAL_FAILURE(open({"sortablejs/Sortable.min.js"}, kList));
    EXPECT_EQ(ask("order(one)"), "abcde");
    // The list sorts itself in its own time, while an item hangs from the cursor.
    hands->moveTo(middleOf("one.children[0]"));
    hands->press();
    carryUntil(middleOf("one.children[1]"), "order(one)", "bacde");
    carryUntil(middleOf("one.children[2]"), "order(one)", "bcade");
    hands->release();
    expectSoon("order(one)", "bcade");
    hands->moveTo(middleOf("one.children[4]"));
    hands->press();
    carryUntil(middleOf("one.children[3]"), "order(one)", "bcaed");
    hands->release();
    hands->moveTo({100, 340});  // a button that is up moves nothing
    EXPECT_EQ(ask("order(one)"), "bcaed");
    expectGameHeardNothing();
}

TEST_P(FrontEnds, Form_FilledByMenuCalendarAndKeys) {
    ASSERT_NO_FATAL_FAILURE(open({"choices.js/public/assets/styles/choices.min.css", "flatpickr/dist/flatpickr.min.css",
                                  "choices.js/public/assets/scripts/choices.min.js", "flatpickr/dist/flatpickr.min.js"},
                                 kForm));
    hands->click(middleOf("who"));
    hands->type("Kim");
    expectSoon("who.value", "Kim");
    hands->click(middleOf("document.querySelector('.choices')"));
    expectSoon("menu.dropdown.isActive && inMenu()", "apple,grape,melon");
    hands->type("gr");
    expectSoon("inMenu()", "grape");
    hands->tap(VK_RETURN);
    expectSoon("fruit.value", "grape");
    hands->click(middleOf("document.querySelector('.choices')"));
    expectSoon("menu.dropdown.isActive", "true");
    hands->click(middleOf("document.querySelector('.choices__list--dropdown [data-value=melon]')"));
    expectSoon("fruit.value", "melon");
    hands->click(middleOf("day"));
    expectSoon("calendar.isOpen", "true");
    hands->click(middleOf("dayBox(11)"));
    expectSoon("day.value+calendar.isOpen", "2026-11-11false");
    hands->click(middleOf("agree"));
    expectSoon("agree.checked", "true");
    hands->tap(VK_SPACE);
    expectSoon("agree.checked", "false");
    hands->tap(VK_SPACE);
    hands->click(middleOf("who"));
    hands->tap(VK_RETURN);
    expectSoon("sent", "who,Kim day,2026-11-11 agree,on fruit,melon");
    expectGameHeardNothing();
}

INSTANTIATE_TEST_SUITE_P(Styles, FrontEnds,
                         ::testing::Values(Place{"LayerForeground", Style::kLayer, 1.0f},
                                           Place{"OwnWindowForeground", Style::kOwnWindow, 1.0f},
                                           Place{"Layer_Scale150", Style::kLayer, 1.5f},
                                           Place{"OwnWindow_Scale150", Style::kOwnWindow, 1.5f}),
                         [](const auto& place) { return std::string(place.param.name); });

}  // namespace ZEMO::Test
