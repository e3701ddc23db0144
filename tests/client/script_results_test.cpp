#include <array>

#include "client/script_page.h"

// What a script's callback gets for each kind of result, from real pages.
namespace ZEMO::Test {
namespace {

class ScriptResults : public ScriptPage {};

}  // namespace

TEST_F(ScriptResults, EachKindOfValue_FirstTextIsItsJson) {
    struct Case {
        const char *script, *result;
    };
    constexpr auto cases = std::to_array<Case>({
        {"6 * 7", "42"},
        {"-0", "0"},
        {"1 / 3", "0.3333333333333333"},
        {"1e300", "1e+300"},
        {"NaN", "null"},
        {"true", "true"},
        {"null", "null"},
        {"'text'", "\"text\""},
        {"''", "\"\""},
        {R"('quote " backslash \\ line\n\t\u0001')", R"("quote \" backslash \\ line\n\t\u0001")"},
        {"'한글 😀'", "\"한글 😀\""},
        {"'\\ud83d'", "\"\\ud83d\""},
        {"'a\\0b'", "\"a\\u0000b\""},
        {"[1, 'two', [3]]", "[1,\"two\",[3]]"},
        {"({a: 1, 'b c': {d: null}})", "{\"a\":1,\"b c\":{\"d\":null}}"},
        {"({f() {}, u: undefined})", "{}"},
        {"new Date(0)", "\"1970-01-01T00:00:00.000Z\""},
        {"new Map([[1, 2]])", "{}"},
        {"({toJSON: () => 'own'})", "\"own\""},
        {"document.title", "\"A title\""},
        {"var x = 5; x + 1; // the last value counts", "6"},
        {"", ""},
        {"undefined", ""},
        {"let y = 1", ""},
        {"(function() {})", ""},
        {"alert", ""},
        {"[Symbol('s')]", "[null]"},
    });
    static_assert(cases.size() == 27);
    open("<title>A title</title>");
    for (const Case& one : cases) EXPECT_EQ(evaluate(one.script), (ScriptAnswer{one.result, ""})) << one.script;
}

TEST_F(ScriptResults, EachWayToFail_SecondTextIsTheErrorAndTheFirstIsEmpty) {
    struct Case {
        const char *script, *error;
    };
    constexpr auto cases = std::to_array<Case>({
        {"throw new Error('broken')", "Uncaught Error: broken"},
        {"throw 'a text'", "Uncaught a text"},
        {"throw ''", "Uncaught "},
        {"noSuchThing", "Uncaught ReferenceError: noSuchThing is not defined"},
        {"1 +", "Uncaught SyntaxError: Unexpected end of input"},
        {"10n", "Uncaught TypeError: Do not know how to serialize a BigInt or a Symbol"},
        {"Symbol('s')", "Uncaught TypeError: Do not know how to serialize a BigInt or a Symbol"},
        {"Promise.resolve(Symbol('s'))", "Uncaught TypeError: Do not know how to serialize a BigInt or a Symbol"},
        {"({n: 10n})", "Uncaught TypeError: Do not know how to serialize a BigInt"},
        {"({toJSON() { throw new RangeError('own') }})", "Uncaught RangeError: own"},
        {"({toJSON() { throw {toString() { throw 1 }} }})", "Uncaught an error without a text"},
        {"Promise.reject(new Error('refused'))", "Uncaught (in promise) Error: refused"},
        {"Promise.reject()", "Uncaught (in promise) undefined"},
        {"Promise.resolve(1n)", "Uncaught TypeError: Do not know how to serialize a BigInt"},
        {"(async () => { throw 'later' })()", "Uncaught (in promise) later"},
    });
    static_assert(cases.size() == 15);
    open("");
    for (const Case& one : cases) EXPECT_EQ(evaluate(one.script), (ScriptAnswer{"", one.error})) << one.script;
    const ScriptAnswer cyclic = evaluate("var ring = {}; ring.ring = ring");
    EXPECT_EQ(cyclic.result, "");
    EXPECT_TRUE(cyclic.error.starts_with("Uncaught TypeError: Converting circular structure to JSON")) << cyclic;
    EXPECT_EQ(evaluate("1"), (ScriptAnswer{"1", ""})) << "the page goes on";
}

TEST_F(ScriptResults, Promise_AwaitedAndItsValueIsTheResult) {
    open("");
    EXPECT_EQ(evaluate("Promise.resolve({a: 'b'})"), (ScriptAnswer{"{\"a\":\"b\"}", ""}));
    EXPECT_EQ(evaluate("Promise.resolve(Promise.resolve(7))"), (ScriptAnswer{"7", ""}));
    EXPECT_EQ(evaluate("Promise.resolve()"), (ScriptAnswer{"", ""}));
    EXPECT_EQ(evaluate("new Promise(done => setTimeout(done, 50, 'late'))"), (ScriptAnswer{"\"late\"", ""}));
    EXPECT_EQ(evaluate("(async () => (await fetch('/')).status)()"), (ScriptAnswer{"200", ""}));
}

TEST_F(ScriptResults, PromiseThatNeverSettles_LaterAnswersComeAllTheSame) {
    open("");
    ask("new Promise(() => {})");
    for (int i = 0; i < 20; ++i) EXPECT_EQ(resultOf(std::to_string(i)), std::to_string(i));
    EXPECT_EQ(answers.count(), 0u);
}

constexpr size_t kLong = 10 << 20;

TEST_F(ScriptResults, TextOfTenMegabytes_ComesWhole) {
    open("");
    const ScriptAnswer answer = evaluate("'x'.repeat(10 << 20)");
    EXPECT_EQ(answer.error, "");
    EXPECT_TRUE(answer.result == '"' + std::string(kLong, 'x') + '"') << answer.result.size();
}

TEST_F(ScriptResults, ScriptOfTenMegabytes_Runs) {
    open("");
    EXPECT_EQ(resultOf("'" + std::string(kLong, 'x') + "'.length"), std::to_string(kLong));
}

TEST_F(ScriptResults, PageThatReplacesItsGlobals_ResultsStayRight) {
    open(R"(<script>
        JSON.stringify = () => 'forged';
        Promise.prototype.then = () => { throw 1; };
        String = Object.freeze = Object.defineProperty = Reflect.apply = () => 'forged';
        window.Promise = class {};
        </script>)");
    EXPECT_EQ(evaluate("[1, 'a']"), (ScriptAnswer{"[1,\"a\"]", ""}));
    EXPECT_EQ(evaluate("(async () => 5)()"), (ScriptAnswer{"5", ""}));
    EXPECT_EQ(evaluate("(async () => { throw new Error('own') })()"),
              (ScriptAnswer{"", "Uncaught (in promise) Error: own"}));
}

TEST_F(ScriptResults, PageThatForbidsEvaluatedText_ScriptsOfTheGameRun) {
    open("<meta http-equiv=Content-Security-Policy content=\"default-src 'none'\">");
    EXPECT_EQ(evaluate("1 + 1"), (ScriptAnswer{"2", ""}));
}

}  // namespace ZEMO::Test
