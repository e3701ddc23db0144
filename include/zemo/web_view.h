#pragma once

#include <zemo/view.h>
#include <zemo/web_content.h>

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>
#include <vector>

namespace ZEMO::UI {

class IZEMOWebView;

/// Follows a view's navigation. Implemented by the game; every operation comes on the engine thread, except
/// closeRequested, which comes on the thread of the window whose close button was pressed (or on the engine thread when
/// a page asked for it). None may block: the engine and all its pages wait meanwhile. Frames inside a page report too,
/// so several starts and completions for one page are normal. An exception that leaves one of these operations ends the
/// process.
class ZEMOWebViewDelegate {
public:
    /// A load has begun. The page before it is still on the screen.
    virtual void navigationStarting(std::shared_ptr<IZEMOWebView> view) = 0;
    /// The engine's error number in the generic category; -600 stands for a page process that died (the page is already
    /// being loaded again then).
    virtual void navigationFailed(std::shared_ptr<IZEMOWebView> view, const std::error_code& error) = 0;
    /// A load has ended, also after navigationFailed. What it shows is painted with one of the next frames.
    virtual void navigationCompleted(std::shared_ptr<IZEMOWebView> view) = 0;
    /// True: the game has dealt with `url` (UTF-8, as the engine writes it) and the page must not go there: nothing of
    /// it is sent. Asked for the page, its frames, redirects and forms, and for the game's own loads; not for pictures,
    /// scripts and their requests, nor for popups, whose target goes to the system's shell as it is. This is the only
    /// policy that there is: docs/requests.md shows one, docs/security.md says why a game needs it.
    virtual bool navigationRequested(std::shared_ptr<IZEMOWebView> view, std::string url) = 0;
    /// The close button, or the page, asks to close: a page does so by going to zemosdk://nativeclose (window.close()
    /// does nothing). The game decides; normally it calls close and drops the view.
    virtual void closeRequested() = 0;
    virtual ~ZEMOWebViewDelegate() = default;
};

/// A web page on the screen. Made by createWebViewDefault, owned by the caller: dropping the last pointer ends the
/// page.
///
/// A page has fewer walls around it than in a browser: web security and site isolation are off, there is no sandbox,
/// and every page can read files of the served kinds through the library's own scheme, also outside of its resource
/// folder. Show only pages that are trusted like the game itself (docs/security.md).
///
/// Used from one thread, the caller's, but for the three operations of scripts. Before the first show the load
/// operations only store what to load, the last call of each kind wins; from then on each loads at once, in the same
/// browser. Between show and the first navigationStarting the browser is still being made: do not load, go back or go
/// forward in that time. Nothing here reports an error by value: a failed load arrives as navigationFailed.
class IZEMOWebView : public IZEMOView {
public:
    /// Held weakly. A view without a living delegate never gets its close button. Before show: the engine thread reads
    /// it from then on.
    virtual void setWebViewDelegate(std::shared_ptr<ZEMOWebViewDelegate> delegate) = 0;

    /// A page of resources/html beside the library, by its name without ".html" ("start"), or, before the first show,
    /// an absolute file path without ".html". UTF-8.
    virtual void loadPage(std::string nameOrPath) = 0;

    /// The address of `content`; a POST item (kind 3) is sent as one.
    virtual void loadContent(std::shared_ptr<IZEMOWebContent> content) = 0;

    /// A page given as text. `path` says where its relative references belong: the directory above its file names the
    /// resource folder. Both views must point at NUL-terminated UTF-8 text; their own length is not looked at.
    virtual void loadHtml(std::string_view html, std::string_view path) = 0;

    /// A web address ("http://", "https://", in any letter case) or the name of a local page, with the items that turn
    /// requests of the page into POSTs. Only the load of the first show takes a web address, and only with at least one
    /// item: without items, and on an open view, `url` is the name of a local page. Web addresses go best through
    /// loadContent.
    virtual void loadUrl(std::string url, std::vector<std::shared_ptr<IZEMOWebContent>> items) = 0;

    /// No effect.
    virtual void reserved(std::string text) = 0;

    /// Runs `script` in the page's main frame, as a script of the page, and hands two UTF-8 texts to `callback`:
    ///
    /// - the result, the value of the script's last statement, as JSON: 42 gives "42", a text comes in quotes. Empty
    /// for
    ///   undefined and for a function, which have none. A promise is awaited, and what it brings is the result.
    /// - the error as a browser's console words it ("Uncaught Error: broken"), with an empty result; empty on success.
    /// A
    ///   value that JSON can't hold (a ring of objects, a BigInt) is an error too.
    ///
    /// The script waits until the page has loaded, and after each load operation for the new page; what waits runs in
    /// the order of the calls. Answers keep that order, but for promises that settle later. Top-level const and let
    /// stay in the page, so a script that is run twice wants a block around them.
    ///
    /// Any thread, once show has returned. `callback` comes on the engine thread, once: it must not block, nor drop the
    /// view; it may ask again. An empty one is allowed. It is never called when there is no answer: before show, where
    /// the call is dropped; while the view is closed (the script still runs); when the page is left or its process dies
    /// first (navigationFailed tells of that with -600, and what is asked from then on waits for the page to come
    /// back); and when no page ever loads. What it holds stays until the view ends, called or not.
    ///
    /// A page answers what it likes: read the result as a stranger's text. Put no text into `script` that is not the
    /// game's own, unless it is written as JSON.
    ///
    ///     view->evaluateJavascript("document.title", [](std::string json, std::string error) { ... });
    virtual void evaluateJavascript(std::string script, std::function<void(std::string, std::string)> callback) = 0;

    /// Calls `callback` on the engine thread each time the page's scripts call `name`.postMessage(), with the text that
    /// bindObject has for the name; without one nothing is called. Nothing of the page's own arrives: `callback` asks
    /// the page with evaluateJavascript where it needs more.
    ///
    /// Any thread, once show has returned; dropped before. The first registration of a name stays as long as the view,
    /// over all pages that it shows; a later one is dropped without a word. `callback` must not block, nor drop the
    /// view.
    ///
    /// Every page that the view shows can call it, as often as it likes, once the name is known to it: a game that
    /// leaves its own pages decides in navigationRequested where a view may go, or looks at what page it is before it
    /// acts.
    virtual void addJavascriptCallback(std::string name, std::function<void(std::string)> callback) = 0;

    /// Stores `message` for the object `name`, and returns the script that binds the object in a page:
    ///
    ///     window.BindObjectAsync("NAME").then(function(result) {NAME.postMessage("NAME",'MESSAGE');})
    ///
    /// The game runs it with evaluateJavascript, once in every page that shall have the object: a new document knows
    /// none. From then on the page has a global NAME with postMessage, in its main frame only; as the script calls that
    /// once, the callback of addJavascriptCallback hears right away that the object is there. A page may call
    /// window.BindObjectAsync(NAME) by itself too, which gives a promise of the object, and is rejected for a name that
    /// can't be taken ("location").
    ///
    /// `name` must be an identifier of JavaScript. Neither text is escaped: a quote, a backslash or a line break in
    /// `message` breaks the script, and a text from elsewhere would run in the page with its rights. Use texts of your
    /// own, letters and digits best; the callback gets `message` from this process in any case, whatever a page sends.
    ///
    /// Any thread, once show has returned. The first message of a name stays as long as the view; a later call returns
    /// its own script all the same. Before show the script is returned and nothing is stored.
    virtual std::string bindObject(std::string name, std::string message) = 0;

    /// One page back in this view's history; no effect without one.
    virtual void goBack() = 0;
    /// False without a page.
    virtual bool canGoBack() = 0;
    /// One page forward; no effect without one.
    virtual void goForward() = 0;
    /// False without a page.
    virtual bool canGoForward() = 0;

    /// Deletes the cookies whose domain contains `url` (all for an empty text), for every view of the process, shown or
    /// not. A bare host in small letters, "example.com": a scheme, a path or a capital finds nothing. Any thread but
    /// the engine's; blocks until the engine has walked its cookies. False when they can't be reached, and on the
    /// engine thread.
    virtual bool deleteCookies(const std::string& url) = 0;

    /// Replaces the list of items that turn requests into POSTs, for the requests that are sent from now on: an item
    /// stays in force until then, for every page and frame of the view. Dropped before show.
    virtual void setContentItems(std::vector<std::shared_ptr<IZEMOWebContent>> items) = 0;

    /// A small X in the view's upper right corner, from the first completed load on. Read by the first show.
    virtual void setCloseButtonEnabled(bool enabled) = 0;
};

}  // namespace ZEMO::UI
