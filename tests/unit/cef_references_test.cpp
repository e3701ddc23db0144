// Every crossing of the border is driven as the engine would, and every reference is counted.  The engine is played by
// objects that only count: an object too many or too few can't be provoked with the real one.
#include <gtest/gtest.h>

#include <deque>
#include <memory>
#include <tuple>
#include <utility>

#include "binding_functions.h"
#include "binding_members.h"
#include "binding_traits.h"
#include "cef/engine_library.h"

using cef_binding::Binding;

namespace {

/// Big enough for every structure of the engine; counts its references.
struct Fake {
    cef_base_ref_counted_t base;
    void* functions[120];
    int count;
};
static_assert(sizeof(cef_browser_host_t) <= offsetof(Fake, count) && sizeof(cef_v8value_t) <= offsetof(Fake, count) &&
              sizeof(cef_menu_model_t) <= offsetof(Fake, count));

/// All that one test made; every object must have lost its last reference, and not more, at the end.
struct Ground {
    std::deque<Fake> fakes;
    std::deque<std::shared_ptr<void>> storage;

    template <class C>
    C* object() {
        Fake& fake = fakes.emplace_back();
        fake.count = 1;
        fake.base.size = sizeof(C);
        fake.base.add_ref = [](cef_base_ref_counted_t* self) { ++reinterpret_cast<Fake*>(self)->count; };
        fake.base.release = [](cef_base_ref_counted_t* self) -> int32_t {
            return --reinterpret_cast<Fake*>(self)->count == 0;
        };
        return reinterpret_cast<C*>(&fake);
    }
    template <class T>
    T* value(const T& initial = {}) {
        auto memory = std::make_shared<T>(initial);
        storage.push_back(memory);
        return memory.get();
    }
    void expectBalanced(const char* what) {
        for (const Fake& fake : fakes) EXPECT_EQ(fake.count, 0) << what << " leaves " << fake.count << " references";
        EXPECT_EQ(cefLiveClientObjects(), 0) << what;
        EXPECT_EQ(cefLiveEngineObjects(), 0) << what;
        fakes.clear();
        storage.clear();
    }
};
Ground* ground;  // of the test that is running, for the functions that play the engine

template <class T>
concept Complete = requires { sizeof(T); };
template <class C>
constexpr bool kCounted = false;
template <Complete C>
constexpr bool kCounted<C> = requires(C c) { c.base.add_ref; } || requires(C c) { c.base.base.add_ref; };

void drop(void* object) {
    auto* base = static_cast<cef_base_ref_counted_t*>(object);
    if (base) base->release(base);
}

// --- the engine calls the library ---------------------------------------------------------------------------------

/// An argument as the engine passes it: an object with one reference for the receiver, a string, a number.
template <class T>
T argument() {
    if constexpr (!std::is_pointer_v<T>) {
        return static_cast<T>(1);
    } else {
        using To = std::remove_pointer_t<T>;
        if constexpr (std::is_pointer_v<To>) {
            if constexpr (kCounted<std::remove_pointer_t<To>>) {
                return ground->value<To>(ground->object<std::remove_pointer_t<To>>());
            } else {
                return ground->value<To>();
            }
        } else if constexpr (kCounted<To>) {
            return ground->object<To>();
        } else if constexpr (std::is_same_v<To, cef_string_t>) {
            static const char16_t text[] = u"text";
            return ground->value<cef_string_t>({const_cast<char16_t*>(text), 4, nullptr});
        } else if constexpr (std::is_void_v<To> || !Complete<To>) {
            return nullptr;
        } else {
            return ground->value<To>();
        }
    }
}

/// Gives back what a call returned, as the engine would when it is done with it.
template <class R>
void receive(R result) {
    if constexpr (std::is_pointer_v<R>) {
        if constexpr (kCounted<std::remove_pointer_t<R>>) drop(result);
    }
}

template <class C, class R, class... Args>
void callBack(C* self, R (*function)(C*, Args...)) {
    ASSERT_NE(function, nullptr);
    std::tuple<Args...> arguments{argument<Args>()...};
    if constexpr (std::is_void_v<R>) {
        std::apply([&](Args... args) { function(self, args...); }, arguments);
    } else {
        receive(std::apply([&](Args... args) { return function(self, args...); }, arguments));
    }
}

template <class Base>
class Concrete : public Base {
    IMPLEMENT_REFCOUNTING(Concrete);
};
template <>
class Concrete<CefRenderHandler> : public CefRenderHandler {
public:
    void GetViewRect(CefRefPtr<CefBrowser>, CefRect& rect) override { rect = CefRect(0, 0, 1, 1); }
    void OnPaint(CefRefPtr<CefBrowser>, PaintElementType, const RectList& rects, const void*, int, int) override {
        EXPECT_EQ(rects.size(), 1u);
    }
    IMPLEMENT_REFCOUNTING(Concrete);
};
template <>
class Concrete<CefResourceHandler> : public CefResourceHandler {
public:
    void GetResponseHeaders(CefRefPtr<CefResponse>, int64_t&, CefString&) override {}
    void Cancel() override {}
    IMPLEMENT_REFCOUNTING(Concrete);
};
template <>
class Concrete<CefSchemeHandlerFactory> : public CefSchemeHandlerFactory {
public:
    CefRefPtr<CefResourceHandler> Create(CefRefPtr<CefBrowser>, CefRefPtr<CefFrame>, const CefString&,
                                         CefRefPtr<CefRequest>) override {
        return new Concrete<CefResourceHandler>;
    }
    IMPLEMENT_REFCOUNTING(Concrete);
};
template <>
class Concrete<CefTask> : public CefTask {
public:
    void Execute() override {}
    IMPLEMENT_REFCOUNTING(Concrete);
};
template <>
class Concrete<CefCookieVisitor> : public CefCookieVisitor {
public:
    bool Visit(const CefCookie&, int, int, bool&) override { return true; }
    IMPLEMENT_REFCOUNTING(Concrete);
};
template <>
class Concrete<CefSetCookieCallback> : public CefSetCookieCallback {
public:
    void OnComplete(bool) override {}
    IMPLEMENT_REFCOUNTING(Concrete);
};
template <>
class Concrete<CefDeleteCookiesCallback> : public CefDeleteCookiesCallback {
public:
    void OnComplete(int) override {}
    IMPLEMENT_REFCOUNTING(Concrete);
};
template <>
class Concrete<CefCompletionCallback> : public CefCompletionCallback {
public:
    void OnComplete() override {}
    IMPLEMENT_REFCOUNTING(Concrete);
};
template <>
class Concrete<CefV8Handler> : public CefV8Handler {
public:
    bool Execute(const CefString&, CefRefPtr<CefV8Value> object, const CefV8ValueList& arguments,
                 CefRefPtr<CefV8Value>& result, CefString&) override {
        EXPECT_EQ(arguments.size(), 1u);
        result = object;  // handed back: one more reference for the engine
        return true;
    }
    IMPLEMENT_REFCOUNTING(Concrete);
};
template <>
class Concrete<CefDOMVisitor> : public CefDOMVisitor {
public:
    void Visit(CefRefPtr<CefDOMDocument>) override {}
    IMPLEMENT_REFCOUNTING(Concrete);
};
template <>
class Concrete<CefStringVisitor> : public CefStringVisitor {
public:
    void Visit(const CefString& text) override { EXPECT_EQ(text, "text"); }
    IMPLEMENT_REFCOUNTING(Concrete);
};
template <>
class Concrete<CefResourceBundleHandler> : public CefResourceBundleHandler {
public:
    bool GetLocalizedString(int, CefString& text) override { return text = "given", true; }
    bool GetDataResource(int, void*&, size_t&) override { return false; }
    bool GetDataResourceForScale(int, ScaleFactor, void*&, size_t&) override { return false; }
    IMPLEMENT_REFCOUNTING(Concrete);
};

class CefReferences : public testing::Test {
protected:
    void SetUp() override { ground = &ground_; }
    void TearDown() override { ground = nullptr; }
    Ground ground_;
};

TEST_F(CefReferences, EveryCallbackOfEveryHandler_GivesBackWhatItWasPassed) {
    int callbacks = 0;
#define DRIVE(Class, member)                                           \
    if (std::string(#Class "::" #member) != "CefV8Handler::execute") { \
        auto* c = Binding<Class>::give(new Concrete<Class>);           \
        callBack(c, c->member);                                        \
        drop(c);                                                       \
        ground_.expectBalanced(#Class "::" #member);                   \
        ++callbacks;                                                   \
    }
    ZEMO_CEF_CLIENT_CALLBACKS(DRIVE)
#undef DRIVE
    EXPECT_EQ(callbacks, 125);
}

TEST_F(CefReferences, EveryHandlerClass_IsHeldOnceByItsStructure){
#define HOLD(Class)                                                                                     \
    {                                                                                                   \
        CefRefPtr<Concrete<Class>> object = new Concrete<Class>;                                        \
        auto* c = Binding<Class>::give(object);                                                         \
        EXPECT_EQ(c->base.size, sizeof(*c));                                                            \
        EXPECT_EQ(cefLiveClientObjects(), 1);                                                           \
        EXPECT_FALSE(object->HasOneRef());                                                              \
        EXPECT_TRUE(c->base.has_one_ref(&c->base));                                                     \
        c->base.add_ref(&c->base);                                                                      \
        EXPECT_FALSE(c->base.has_one_ref(&c->base));                                                    \
        EXPECT_TRUE(c->base.has_at_least_one_ref(&c->base));                                            \
        EXPECT_EQ(c->base.release(&c->base), 0);                                                        \
        c->base.add_ref(&c->base);                                                                      \
        EXPECT_EQ(Binding<Class>::take(c), object) << "the engine hands our object back: the original"; \
        EXPECT_EQ(c->base.release(&c->base), 1);                                                        \
        EXPECT_TRUE(object->HasOneRef());                                                               \
        EXPECT_EQ(Binding<Class>::give(nullptr), nullptr);                                              \
        EXPECT_EQ(Binding<Class>::take(nullptr), nullptr);                                              \
        ground_.expectBalanced(#Class);                                                                 \
    }
    ZEMO_CEF_CLIENT_CLASSES(HOLD)
#undef HOLD
}

TEST_F(CefReferences, NativeFunction_TakesArgumentsAndGivesItsResult) {
    auto* c = Binding<CefV8Handler>::give(new Concrete<CefV8Handler>);
    static const char16_t text[] = u"name";
    cef_string_t name{const_cast<char16_t*>(text), 4, nullptr}, exception{};
    auto* object = ground_.object<cef_v8value_t>();
    cef_v8value_t* arguments[] = {ground_.object<cef_v8value_t>()};
    cef_v8value_t* result = nullptr;
    EXPECT_EQ(c->execute(c, &name, object, 1, arguments, &result, &exception), 1);
    EXPECT_EQ(result, object);
    EXPECT_EQ(ground_.fakes[0].count, 1) << "the reference of the result";
    drop(result);
    drop(c);
    ground_.expectBalanced("execute");
}

/// Keeps what it is passed.
class Keeper : public CefLifeSpanHandler {
public:
    void OnAfterCreated(CefRefPtr<CefBrowser> browser) override { kept = browser; }
    bool OnBeforePopup(CefRefPtr<CefBrowser>, CefRefPtr<CefFrame>, int, const CefString&, const CefString&,
                       WindowOpenDisposition, bool, const CefPopupFeatures&, CefWindowInfo& info,
                       CefRefPtr<CefClient>& client, CefBrowserSettings&, CefRefPtr<CefDictionaryValue>& extra,
                       bool* noScript) override {
        seen = client;
        if (replacement) client = replacement;
        extra = nullptr;
        *noScript = true;
        CefString(&info.window_name) = "popup";
        return false;
    }
    CefRefPtr<CefBrowser> kept;
    CefRefPtr<CefClient> seen, replacement;
    IMPLEMENT_REFCOUNTING(Keeper);
};

TEST_F(CefReferences, KeptArgument_LivesUntilItIsDropped) {
    CefRefPtr<Keeper> keeper = new Keeper;
    auto* c = Binding<CefLifeSpanHandler>::give(keeper);
    c->on_after_created(c, ground_.object<cef_browser_t>());
    EXPECT_EQ(ground_.fakes[0].count, 1);
    EXPECT_EQ(cefLiveEngineObjects(), 1);
    auto* again = Binding<CefBrowser>::give(keeper->kept);
    EXPECT_EQ(static_cast<void*>(again), &ground_.fakes[0]) << "the engine gets its own object back";
    EXPECT_EQ(ground_.fakes[0].count, 2);
    drop(again);
    keeper->kept = nullptr;
    drop(c);
    ground_.expectBalanced("kept");
}

TEST_F(CefReferences, PopupWithItsOpenersClient_LeavesThePointerAlone) {
    CefRefPtr<Keeper> keeper = new Keeper;
    CefRefPtr<CefClient> opener = new Concrete<CefClient>;
    auto* c = Binding<CefLifeSpanHandler>::give(keeper);
    auto* client = Binding<CefClient>::give(opener);  // the engine's own reference
    client->base.add_ref(&client->base);              // the one it passes
    cef_client_t* place = client;
    cef_dictionary_value_t* extra = ground_.object<cef_dictionary_value_t>();
    cef_window_info_t info{};
    cef_browser_settings_t settings{};
    cef_popup_features_t features{};
    int32_t noScript = 0;
    c->on_before_popup(c, ground_.object<cef_browser_t>(), ground_.object<cef_frame_t>(), 1, nullptr, nullptr,
                       CEF_WOD_NEW_POPUP, 1, &features, &info, &place, &settings, &extra, &noScript);
    EXPECT_EQ(keeper->seen, opener);
    EXPECT_EQ(place, client);
    EXPECT_TRUE(client->base.has_one_ref(&client->base));
    EXPECT_EQ(extra, nullptr);
    EXPECT_EQ(noScript, 1);
    EXPECT_EQ(CefString(&info.window_name), "popup");
    CefString(&info.window_name).clear();
    keeper->seen = nullptr;
    drop(client);
    drop(c);
    EXPECT_TRUE(opener->HasOneRef());
    ground_.expectBalanced("popup");
}

TEST_F(CefReferences, PopupWithAClientOfItsOwn_PassesOneReferenceToIt) {
    CefRefPtr<Keeper> keeper = new Keeper;
    keeper->replacement = new Concrete<CefClient>;
    auto* c = Binding<CefLifeSpanHandler>::give(keeper);
    auto* client = Binding<CefClient>::give(new Concrete<CefClient>);
    client->base.add_ref(&client->base);
    cef_client_t* place = client;
    cef_dictionary_value_t* extra = nullptr;
    cef_window_info_t info{};
    cef_browser_settings_t settings{};
    cef_popup_features_t features{};
    int32_t noScript = 0;
    c->on_before_popup(c, ground_.object<cef_browser_t>(), ground_.object<cef_frame_t>(), 1, nullptr, nullptr,
                       CEF_WOD_NEW_POPUP, 1, &features, &info, &place, &settings, &extra, &noScript);
    ASSERT_NE(place, client);
    EXPECT_TRUE(place->base.has_one_ref(&place->base));
    EXPECT_EQ(Binding<CefClient>::take(place), keeper->replacement);
    CefString(&info.window_name).clear();
    keeper->seen = nullptr;
    drop(client);
    drop(c);
    EXPECT_TRUE(keeper->replacement->HasOneRef());
    ground_.expectBalanced("popup");
}

/// Every getter answers with the object itself.
class Everything : public CefApp,
                   public CefBrowserProcessHandler,
                   public CefClient,
                   public CefContextMenuHandler,
                   public CefDisplayHandler,
                   public CefDownloadHandler,
                   public CefLifeSpanHandler,
                   public CefLoadHandler,
                   public CefRenderHandler,
                   public CefRenderProcessHandler,
                   public CefRequestHandler,
                   public CefResourceBundleHandler,
                   public CefResourceHandler,
                   public CefResourceRequestHandler {
public:
    CefRefPtr<CefBrowserProcessHandler> GetBrowserProcessHandler() override { return this; }
    CefRefPtr<CefRenderProcessHandler> GetRenderProcessHandler() override { return this; }
    CefRefPtr<CefResourceBundleHandler> GetResourceBundleHandler() override { return this; }
    CefRefPtr<CefClient> GetDefaultClient() override { return this; }
    CefRefPtr<CefContextMenuHandler> GetContextMenuHandler() override { return this; }
    CefRefPtr<CefDisplayHandler> GetDisplayHandler() override { return this; }
    CefRefPtr<CefDownloadHandler> GetDownloadHandler() override { return this; }
    CefRefPtr<CefLifeSpanHandler> GetLifeSpanHandler() override { return this; }
    CefRefPtr<CefLoadHandler> GetLoadHandler() override { return this; }
    CefRefPtr<CefRenderHandler> GetRenderHandler() override { return this; }
    CefRefPtr<CefRequestHandler> GetRequestHandler() override { return this; }
    CefRefPtr<CefResourceHandler> GetResourceHandler(CefRefPtr<CefBrowser>, CefRefPtr<CefFrame>,
                                                     CefRefPtr<CefRequest>) override {
        return this;
    }
    CefRefPtr<CefResourceRequestHandler> GetResourceRequestHandler(CefRefPtr<CefBrowser>, CefRefPtr<CefFrame>,
                                                                   CefRefPtr<CefRequest>, bool, bool, const CefString&,
                                                                   bool& disable) override {
        disable = true;
        return this;
    }
    bool OnProcessMessageReceived(CefRefPtr<CefBrowser>, CefRefPtr<CefFrame>, CefProcessId,
                                  CefRefPtr<CefProcessMessage>) override {
        return true;
    }
    void GetViewRect(CefRefPtr<CefBrowser>, CefRect&) override {}
    void OnPaint(CefRefPtr<CefBrowser>, PaintElementType, const RectList&, const void*, int, int) override {}
    void GetResponseHeaders(CefRefPtr<CefResponse>, int64_t&, CefString&) override {}
    void Cancel() override {}
    bool GetLocalizedString(int, CefString&) override { return false; }
    bool GetDataResource(int, void*&, size_t&) override { return false; }
    bool GetDataResourceForScale(int, CefResourceBundleHandler::ScaleFactor, void*&, size_t&) override { return false; }
    IMPLEMENT_REFCOUNTING(Everything);
};

TEST_F(CefReferences, EveryGetterOfAHandler_ReturnsOneReference) {
    CefRefPtr<Everything> all = new Everything;
    int getters = 0;
    const auto check = [&](auto* result, const char* what) {
        ASSERT_NE(result, nullptr) << what;
        EXPECT_TRUE(result->base.has_one_ref(&result->base)) << what;
        drop(result);
        ++getters;
    };
#define GET(Class, member)                           \
    {                                                \
        auto* c = Binding<Class>::give(all);         \
        check(c->member(c), #Class "::" #member);    \
        drop(c);                                     \
        EXPECT_TRUE(all->HasOneRef());               \
        ground_.expectBalanced(#Class "::" #member); \
    }
    GET(CefApp, get_browser_process_handler)
    GET(CefApp, get_render_process_handler)
    GET(CefApp, get_resource_bundle_handler)
    GET(CefBrowserProcessHandler, get_default_client)
    GET(CefRenderProcessHandler, get_load_handler)
    GET(CefClient, get_context_menu_handler)
    GET(CefClient, get_display_handler)
    GET(CefClient, get_download_handler)
    GET(CefClient, get_life_span_handler)
    GET(CefClient, get_load_handler)
    GET(CefClient, get_render_handler)
    GET(CefClient, get_request_handler)
#undef GET
    EXPECT_EQ(getters, 12);
    auto* request = Binding<CefRequestHandler>::give(all);
    int32_t disable = 0;
    auto* handler =
        request->get_resource_request_handler(request, ground_.object<cef_browser_t>(), ground_.object<cef_frame_t>(),
                                              ground_.object<cef_request_t>(), 0, 0, nullptr, &disable);
    EXPECT_EQ(disable, 1);
    auto* resource = handler->get_resource_handler(handler, ground_.object<cef_browser_t>(), nullptr,
                                                   ground_.object<cef_request_t>());
    ASSERT_NE(resource, nullptr);
    drop(resource);
    drop(handler);
    drop(request);
    EXPECT_TRUE(all->HasOneRef());
    ground_.expectBalanced("requests");
}

// --- the library calls the engine ---------------------------------------------------------------------------------

/// Plays an engine's function: gives back every object it was passed, returns a fresh one.
template <class Previous, class T>
void playArgument(T value, uint64_t) {
    if constexpr (std::is_pointer_v<T>) {
        using To = std::remove_pointer_t<T>;
        if constexpr (std::is_pointer_v<To>) {
            using C = std::remove_pointer_t<To>;
            if constexpr (kCounted<C>) {
                if (!value) return;
                drop(*value);
                // A list that is passed in stays as it is; a place for a result gets an object.
                if constexpr (!std::is_same_v<Previous, uint64_t>) *value = ground->object<C>();
            }
        } else if constexpr (kCounted<To>) {
            drop(value);
        }
    }
}

template <class R>
R playResult() {
    if constexpr (std::is_pointer_v<R>) {
        using To = std::remove_pointer_t<R>;
        if constexpr (kCounted<To>) {
            return ground->object<To>();
        } else {
            return nullptr;
        }
    } else if constexpr (!std::is_void_v<R>) {
        return R{};
    }
}
template <>
uint64_t playResult<uint64_t>() {
    return 1;
}

template <class Previous>
void playAll() {}
template <class Previous, class First, class... Rest>
void playAll(First first, Rest... rest) {
    playArgument<Previous>(first, 1);
    playAll<First>(rest...);
}

template <class F>
struct Play;
template <class R, class... Args>
struct Play<R (*)(Args...)> {
    static R withoutSelf(Args... args) {
        playAll<void>(args...);
        return playResult<R>();
    }
};
template <class R, class Self, class... Args>
struct PlayMember {
    static R call(Self*, Args... args) {
        playAll<void>(args...);
        return playResult<R>();
    }
};
template <class R, class Self, class... Args>
auto playMember(R (*)(Self*, Args...)) {
    return &PlayMember<R, Self, Args...>::call;
}

template <class T>
struct Make {
    static T value() { return T{}; }
};
template <>
struct Make<CefString> {
    static CefString value() { return "text"; }
};
template <class X>
struct Make<CefRefPtr<X>> {
    static CefRefPtr<X> value() {
        if constexpr (Binding<X>::kFromEngine) {
            return Binding<X>::take(ground->object<typename Binding<X>::C>());
        } else {
            return new Concrete<X>;
        }
    }
};
template <class X>
struct Make<std::vector<CefRefPtr<X>>> {
    static std::vector<CefRefPtr<X>> value() { return {Make<CefRefPtr<X>>::value()}; }
};

template <class Call, class... Args>
void callWith(Call call, std::type_identity<std::tuple<Args...>>) {
    std::tuple<std::remove_cvref_t<Args>...> values{Make<std::remove_cvref_t<Args>>::value()...};
    std::apply([&](auto&... value) { (void)call(value...); }, values);
}

template <class Class, class R, class... Args>
void callEngine(CefRefPtr<Class> object, R (Class::*method)(Args...)) {
    callWith([&](auto&... args) { return (object.get()->*method)(args...); },
             std::type_identity<std::tuple<Args...>>{});
}
template <class R, class... Args>
void callFunction(R (*function)(Args...)) {
    callWith([&](auto&... args) { return function(args...); }, std::type_identity<std::tuple<Args...>>{});
}

/// One operation asks for the number first.
template <class C>
void giveElements(C* c) {
    if constexpr (std::is_same_v<C, cef_post_data_t>) c->get_element_count = playMember(c->get_element_count);
}

TEST_F(CefReferences, EveryOperationOfEveryEngineClass_CountsWhatItPassesAndReceives) {
    int operations = 0;
#define PARENTHESES(...) __VA_ARGS__
#define CALL(Class, Type, name, C, member)                                                       \
    {                                                                                            \
        auto* c = ground_.object<C>();                                                           \
        c->member = playMember(c->member);                                                       \
        giveElements(c);                                                                         \
        callEngine<Class>(Binding<Class>::take(c), static_cast<PARENTHESES Type>(&Class::name)); \
        ground_.expectBalanced(#Class "::" #name);                                               \
        ++operations;                                                                            \
    }
    ZEMO_CEF_ENGINE_CALLS(CALL)
#undef CALL
    EXPECT_EQ(operations, 486);
}

TEST_F(CefReferences, EveryFunctionOfTheEngine_CountsWhatItPassesAndReceives) {
    const cef_binding::Functions before = cef_binding::engine;
    int functions = 0;
#define CALL(function, name)                                                               \
    {                                                                                      \
        cef_binding::engine.name = &Play<decltype(cef_binding::engine.name)>::withoutSelf; \
        callFunction(&function);                                                           \
        cef_binding::engine = before;                                                      \
        ground_.expectBalanced(#function);                                                 \
        ++functions;                                                                       \
    }
    ZEMO_CEF_FUNCTIONS(CALL)
#undef CALL
    EXPECT_EQ(functions, 59);
}

TEST_F(CefReferences, EmptyTextThatIsNeeded_CallsNothing) {
    const cef_binding::Functions before = cef_binding::engine;
    cef_binding::engine.cef_process_message_create =
        &Play<decltype(cef_binding::engine.cef_process_message_create)>::withoutSelf;
    EXPECT_EQ(CefProcessMessage::Create(""), nullptr);
    EXPECT_NE(CefProcessMessage::Create("name"), nullptr);
    cef_binding::engine = before;
    static int calls;
    calls = 0;
    auto* c = ground_.object<cef_frame_t>();
    c->execute_java_script = [](cef_frame_t*, cef_string_t*, cef_string_t*, int32_t) { ++calls; };
    CefRefPtr<CefFrame> frame = Binding<CefFrame>::take(c);
    frame->ExecuteJavaScript("", "address", 0);
    EXPECT_EQ(calls, 0);
    frame->ExecuteJavaScript("code", "", 0);
    EXPECT_EQ(calls, 1) << "the address may be empty";
    frame = nullptr;
    ground_.expectBalanced("empty text");
}

TEST_F(CefReferences, FunctionsWithoutAnEngine_AnswerNothing) {
    const cef_binding::Functions before = std::exchange(cef_binding::engine, {});  // another test may have loaded one
    EXPECT_FALSE(CefPostTask(TID_UI, new Concrete<CefTask>));
    EXPECT_FALSE(CefCurrentlyOn(TID_UI));
    EXPECT_EQ(CefProcessMessage::Create("name"), nullptr);
    std::string found = "x", expected;
    EXPECT_FALSE(cefVersionMatches(&found, &expected));
    EXPECT_EQ(found, "");
    EXPECT_TRUE(expected.starts_with("131.")) << expected;
    cef_binding::engine = before;
    ground_.expectBalanced("no engine");
}

/// A test's stand-in for an object of the engine.
class StandIn : public CefCallback {
public:
    void Continue() override {}
    void Cancel() override {}
    IMPLEMENT_REFCOUNTING(StandIn);
};

TEST_F(CefReferences, StandInForAnEngineObject_IsNullToTheEngine) {
    CefRefPtr<CefCallback> standIn = new StandIn;
    EXPECT_EQ(Binding<CefCallback>::give(standIn), nullptr);
    EXPECT_TRUE(standIn->HasOneRef());
}

TEST(CefLibrary, MissingEngine_IsToldWithItsPath) {
    std::string reason;
    EXPECT_FALSE(cefLoadLibrary(L"C:\\no such place\\\xD55C", &reason));
    EXPECT_NE(reason.find("C:\\no such place\\\xED\x95\x9C\\libcef.dll"), std::string::npos) << reason;
}

TEST(CefLibrary, RelativeDirectory_IsRefused) {
    for (const wchar_t* directory :
         {static_cast<const wchar_t*>(nullptr), L"", L"bin", L"..\\bin", L"C:", L"C:bin", L"\\bin"}) {
        std::string reason;
        EXPECT_FALSE(cefLoadLibrary(directory, &reason));
        EXPECT_NE(reason.find("is not an absolute path"), std::string::npos) << reason;
    }
}

}  // namespace
