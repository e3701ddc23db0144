// The binding with the real engine. One engine life a process: each test runs in a process of its own.
#include <gtest/gtest.h>

#include <map>
#include <mutex>

#include "binding/engine_fixture.h"
#include "cef/engine_library.h"
#include "include/cef_cookie.h"
#include "include/cef_parser.h"

using namespace binding_test;

namespace {

constexpr char kScheme[] = "zemosdkcustomscheme";

class TestApp : public CefApp {
public:
    void OnBeforeCommandLineProcessing(const CefString& processType, CefRefPtr<CefCommandLine> line) override {
        EXPECT_TRUE(processType.empty());
        line->AppendSwitch("disable-gpu-compositing");
        line->AppendSwitch("no-proxy-server");
        line->AppendSwitchWithValue("binding-test", "값");
        EXPECT_EQ(line->GetSwitchValue("binding-test"), "값");
        CefCommandLine::SwitchMap switches;
        line->GetSwitches(switches);
        EXPECT_EQ(switches.count("no-proxy-server"), 1u);
    }
    void OnRegisterCustomSchemes(CefRawPtr<CefSchemeRegistrar> registrar) override {
        EXPECT_TRUE(registrar->AddCustomScheme(kScheme, CEF_SCHEME_OPTION_STANDARD | CEF_SCHEME_OPTION_CORS_ENABLED));
    }

private:
    IMPLEMENT_REFCOUNTING(TestApp);
};

/// Serves a text; records what was asked for.
class TextHandler : public CefResourceHandler {
public:
    TextHandler(std::string text, std::string type) : text_(std::move(text)), type_(std::move(type)) {}
    bool Open(CefRefPtr<CefRequest>, bool& handleRequest, CefRefPtr<CefCallback>) override {
        return handleRequest = true;
    }
    void GetResponseHeaders(CefRefPtr<CefResponse> response, int64_t& length, CefString&) override {
        response->SetMimeType(type_);
        response->SetStatus(200);
        CefResponse::HeaderMap headers;
        response->GetHeaderMap(headers);
        headers.emplace("Access-Control-Allow-Origin", "*");
        response->SetHeaderMap(headers);
        length = static_cast<int64_t>(text_.size());
    }
    bool Read(void* out, int wanted, int& read, CefRefPtr<CefResourceReadCallback>) override {
        read = static_cast<int>((std::min)(static_cast<size_t>(wanted), text_.size() - offset_));
        std::memcpy(out, text_.data() + offset_, static_cast<size_t>(read));
        offset_ += static_cast<size_t>(read);
        return read > 0;
    }
    void Cancel() override {}

private:
    std::string text_, type_;
    size_t offset_ = 0;
    IMPLEMENT_REFCOUNTING(TextHandler);
};

struct Asked {
    std::string method, body, header;
};

class TestFactory : public CefSchemeHandlerFactory {
public:
    CefRefPtr<CefResourceHandler> Create(CefRefPtr<CefBrowser> browser, CefRefPtr<CefFrame>, const CefString&,
                                         CefRefPtr<CefRequest> request) override {
        EXPECT_TRUE(CefCurrentlyOn(TID_IO));
        EXPECT_TRUE(browser);
        Asked asked{request->GetMethod(), {}, request->GetHeaderByName("X-Added")};
        if (auto data = request->GetPostData()) {
            CefPostData::ElementVector elements;
            data->GetElements(elements);
            for (const auto& element : elements) {
                std::string bytes(element->GetBytesCount(), 0);
                element->GetBytes(bytes.size(), bytes.data());
                asked.body += bytes;
            }
        }
        const std::string address = request->GetURL();
        {
            std::lock_guard lock(mutex);
            requests[address] = asked;
        }
        if (address.ends_with("/data")) return new TextHandler("안녕", "text/plain; charset=utf-8");
        // A request body reaches a handler of http only.
        return new TextHandler(
            "<!doctype html><meta charset=utf-8><title>제목</title><body style='margin:0;background:#2060A0'>"
            "<a href='/popup' target=_blank "
            "style='position:absolute;left:0;top:50px;width:200px;height:50px'></a><script>"
            "function ask(method, address, body, then) { var x = new XMLHttpRequest; x.open(method, address);"
            "x.onload = () => then(x.responseText); x.send(body); }"
            "ask('POST', '/data', '보냄', a => ask('GET', 'zemosdkcustomscheme://page/data', null,"
            "b => console.log('받음 ' + a + b)));</script>",
            "text/html");
    }

    std::mutex mutex;
    std::map<std::string, Asked> requests;

private:
    IMPLEMENT_REFCOUNTING(TestFactory);
};

class CookieReader : public CefCookieVisitor {
public:
    CookieReader(std::string& seen, std::function<void()> done) : seen_(seen), done_(std::move(done)) {}
    ~CookieReader() override { done_(); }
    bool Visit(const CefCookie& cookie, int, int, bool& deleteCookie) override {
        seen_ += CefString(&cookie.name).ToString() + "=" + CefString(&cookie.value).ToString() + ";";
        deleteCookie = true;
        return true;
    }

private:
    std::string& seen_;
    std::function<void()> done_;
    IMPLEMENT_REFCOUNTING(CookieReader);
};

class Client : public CefClient,
               public CefDisplayHandler,
               public CefLifeSpanHandler,
               public CefLoadHandler,
               public CefRenderHandler,
               public CefRequestHandler,
               public CefResourceRequestHandler {
public:
    CefRefPtr<CefDisplayHandler> GetDisplayHandler() override { return this; }
    CefRefPtr<CefLifeSpanHandler> GetLifeSpanHandler() override { return this; }
    CefRefPtr<CefLoadHandler> GetLoadHandler() override { return this; }
    CefRefPtr<CefRenderHandler> GetRenderHandler() override { return this; }
    CefRefPtr<CefRequestHandler> GetRequestHandler() override { return this; }

    void OnAfterCreated(CefRefPtr<CefBrowser> created) override {
        browser = created;
        EXPECT_EQ(created->GetHost()->GetClient(), this) << "the engine hands back the very object";
    }
    bool OnBeforePopup(CefRefPtr<CefBrowser>, CefRefPtr<CefFrame>, int, const CefString& url, const CefString&,
                       CefLifeSpanHandler::WindowOpenDisposition, bool gesture, const CefPopupFeatures&, CefWindowInfo&,
                       CefRefPtr<CefClient>& client, CefBrowserSettings&, CefRefPtr<CefDictionaryValue>&,
                       bool*) override {
        EXPECT_TRUE(gesture);
        EXPECT_EQ(client, this);
        popup = url;
        step();
        return true;
    }
    void OnBeforeClose(CefRefPtr<CefBrowser>) override {
        browser = nullptr;
        CefQuitMessageLoop();
    }
    void OnLoadEnd(CefRefPtr<CefBrowser>, CefRefPtr<CefFrame> frame, int status) override {
        loadStatus = status;
        std::vector<CefString> names;
        frame->GetBrowser()->GetFrameIdentifiers(names);
        EXPECT_EQ(names, std::vector<CefString>{frame->GetIdentifier()});
        step();
    }
    void OnTitleChange(CefRefPtr<CefBrowser>, const CefString& text) override {
        title = text;
        step();
    }
    bool OnConsoleMessage(CefRefPtr<CefBrowser>, cef_log_severity_t, const CefString& message, const CefString&,
                          int) override {
        console += message.ToString() + "|";
        step();
        return true;
    }
    void GetViewRect(CefRefPtr<CefBrowser>, CefRect& rect) override { rect = CefRect(0, 0, 200, 100); }
    void OnPaint(CefRefPtr<CefBrowser>, PaintElementType type, const RectList& dirty, const void* buffer, int width,
                 int height) override {
        EXPECT_EQ(type, PET_VIEW);
        EXPECT_FALSE(dirty.empty());
        EXPECT_EQ(width, 200);
        EXPECT_EQ(height, 100);
        pixel = static_cast<const uint32_t*>(buffer)[10 * width + 10];
        step();
    }
    CefRefPtr<CefResourceRequestHandler> GetResourceRequestHandler(CefRefPtr<CefBrowser>, CefRefPtr<CefFrame>,
                                                                   CefRefPtr<CefRequest>, bool, bool, const CefString&,
                                                                   bool&) override {
        return this;
    }
    ReturnValue OnBeforeResourceLoad(CefRefPtr<CefBrowser>, CefRefPtr<CefFrame>, CefRefPtr<CefRequest> request,
                                     CefRefPtr<CefCallback>) override {
        request->SetHeaderByName("X-Added", "더함", true);
        return RV_CONTINUE;
    }
    bool OnProcessMessageReceived(CefRefPtr<CefBrowser>, CefRefPtr<CefFrame> frame, CefProcessId source,
                                  CefRefPtr<CefProcessMessage> message) override {
        EXPECT_EQ(source, PID_RENDERER);
        if (onMessage) onMessage(frame, message);
        return true;
    }

    /// Called after each event; goes on when what it waits for is there.
    void step() {
        if (onStep) onStep();
    }

    CefRefPtr<CefBrowser> browser;
    int loadStatus = -1;
    uint32_t pixel = 0;
    std::string title, console, popup;
    std::function<void()> onStep;
    std::function<void(CefRefPtr<CefFrame>, CefRefPtr<CefProcessMessage>)> onMessage;

private:
    IMPLEMENT_REFCOUNTING(Client);
};

void expectNothingLeft() {
    EXPECT_EQ(cefLiveClientObjects(), 0);
    EXPECT_EQ(cefLiveEngineObjects(), 0);
    EXPECT_TRUE(waitUntil([] { return childProcesses() == 0; }, 5000))
        << childProcesses() << " child processes are left";
}

TEST(CefEngine, ServedPage_PaintsLoadsAsksAndLeavesNothingBehind) {
    CacheDirectory cache(L"served");
    CefRefPtr<Client> client = new Client;
    CefRefPtr<TestFactory> factory = new TestFactory;
    std::string cookies;
    bool clicked = false, asked = false;
    client->onStep = [&] {
        if (client->loadStatus < 0 || client->pixel != 0xff2060a0 || client->console.empty() || client->title.empty())
            return;
        if (!clicked) {
            clicked = true;
            CefMouseEvent event;
            event.x = 20, event.y = 70;
            client->browser->GetHost()->SetFocus(true);
            client->browser->GetHost()->SendMouseClickEvent(event, MBT_LEFT, false, 1);
            client->browser->GetHost()->SendMouseClickEvent(event, MBT_LEFT, true, 1);
        }
        if (client->popup.empty() || asked) return;
        asked = true;
        auto manager = CefCookieManager::GetGlobalManager(nullptr);
        CefCookie cookie;
        CefString(&cookie.name) = "name";
        CefString(&cookie.value) = "value";
        EXPECT_TRUE(manager->SetCookie("http://cookies.test/", cookie, nullptr));
        manager->VisitUrlCookies("http://cookies.test/", true, new CookieReader(cookies, [&client] {
                                     EXPECT_TRUE(CefClearSchemeHandlerFactories());
                                     post(TID_UI, [&client] { client->browser->GetHost()->CloseBrowser(true); });
                                 }));
    };
    const bool finished = runEngine(
        new TestApp, programDirectory() + L"\\cefsubprocess\\cef.subprocess.exe", cache.path(),
        [&] {
            std::string found, expected;
            EXPECT_TRUE(cefVersionMatches(&found, &expected)) << found << " instead of " << expected;
            EXPECT_EQ(CefURIEncode("가 b", false), "%EA%B0%80%20b");
            EXPECT_EQ(CefBase64Encode("zemo", 4), "emVtbw==");
            EXPECT_TRUE(CefRegisterSchemeHandlerFactory(kScheme, "", factory));
            EXPECT_TRUE(CefRegisterSchemeHandlerFactory("http", "page.test", factory));
            EXPECT_TRUE(createBrowser(client, "http://page.test/"));
        },
        60000);
    EXPECT_TRUE(finished) << "load status " << client->loadStatus << ", pixel " << std::hex << client->pixel
                          << ", console " << client->console << ", title " << client->title << ", popup "
                          << client->popup;
    EXPECT_EQ(client->loadStatus, 200);
    EXPECT_EQ(client->title, "제목");
    EXPECT_EQ(client->console, "받음 안녕안녕|");
    EXPECT_EQ(client->popup, "http://page.test/popup");
    EXPECT_EQ(cookies, "name=value;");
    const auto& data = factory->requests["http://page.test/data"];
    EXPECT_EQ(data.method, "POST");
    EXPECT_EQ(data.body, "보냄");
    EXPECT_EQ(data.header, "더함");
    EXPECT_TRUE(factory->HasOneRef());
    client->onStep = nullptr;
    EXPECT_TRUE(client->HasOneRef());
    expectNothingLeft();
}

TEST(CefEngine, MessagesAndScripts_CrossBothWaysAndLeaveNothingBehind) {
    CacheDirectory cache(L"messages");
    CefRefPtr<Client> client = new Client;
    bool sent = false;
    std::string log;
    const auto evaluate = [](CefRefPtr<CefFrame> frame, const std::string& code) {
        auto message = CefProcessMessage::Create("eval");
        message->GetArgumentList()->SetString(0, code);
        frame->SendProcessMessage(PID_RENDERER, message);
    };
    client->onStep = [&] {
        if (sent || client->loadStatus < 0) return;
        sent = true;
        auto message = CefProcessMessage::Create("echo");
        auto list = message->GetArgumentList();
        list->SetString(0, "한글");
        list->SetInt(1, -5);
        list->SetDouble(2, 0.5);
        list->SetBool(3, true);
        auto inner = CefDictionaryValue::Create();
        inner->SetString("key", "😀");
        list->SetDictionary(4, inner);
        list->SetBinary(5, CefBinaryValue::Create("\1\2\3", 3));
        client->browser->GetMainFrame()->SendProcessMessage(PID_RENDERER, message);
    };
    int answers = 0;
    client->onMessage = [&](CefRefPtr<CefFrame> frame, CefRefPtr<CefProcessMessage> message) {
        auto list = message->GetArgumentList();
        if (message->GetName() == "focus") {
            log += "focus " + list->GetString(0).ToString() + " " + std::to_string(list->GetInt(1));
            client->browser->GetHost()->CloseBrowser(true);
            return;
        }
        switch (++answers) {
            case 1: {
                auto echoed = list->GetList(0);
                log += echoed->GetString(0).ToString() + std::to_string(echoed->GetInt(1)) + " " +
                       std::to_string(echoed->GetDouble(2) + (echoed->GetBool(3) ? 1 : 0)) + " " +
                       echoed->GetDictionary(4)->GetString("key").ToString();
                unsigned char bytes[3]{};
                EXPECT_EQ(echoed->GetBinary(5)->GetData(bytes, 3, 0), 3u);
                EXPECT_EQ(bytes[2], 3);
                evaluate(frame, "twice('가나')");
                break;
            }
            case 2:
                EXPECT_TRUE(list->GetBool(0));
                log += "|" + list->GetString(1).ToString() + "|";
                evaluate(frame, "\ntwice()");
                break;
            default:
                EXPECT_FALSE(list->GetBool(0));
                log += list->GetString(1).ToString() + " at " + std::to_string(list->GetInt(2)) + "|";
                frame->ExecuteJavaScript("document.getElementById('secret').focus()", "", 1);
        }
    };
    const bool finished = runEngine(
        new TestApp, programDirectory() + L"\\cefsubprocess_test\\cef.echo.exe", cache.path(),
        [&] {
            EXPECT_TRUE(createBrowser(
                client, "data:text/html,<body style='background:%23fff'><input id=secret type=password>"));
        },
        60000);
    EXPECT_TRUE(finished) << log;
    EXPECT_EQ(log, "한글-5 1.500000 😀|가나가나|Uncaught Error: twice 인수 없음 at 8|focus secret " +
                       std::to_string(DOM_FORM_CONTROL_TYPE_INPUT_PASSWORD));
    client->onStep = nullptr;
    client->onMessage = nullptr;
    EXPECT_TRUE(client->HasOneRef());
    expectNothingLeft();
}

}  // namespace
