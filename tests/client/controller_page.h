#pragma once

#include <initializer_list>
#include <string>

#include "client/client_view.h"

namespace ZEMO::Test {

/// A page with the common controller files in it, on the real engine, played with pad input only.
class ControllerPage {
public:
    /// `page` is a file below resources/html without its ending; `status` is what the game said of its controller.
    ControllerPage(GameHost& host, const std::string& page, const std::string& status);
    ControllerPage(GameHost& host, const std::string& address) : game(host), view(host, address) {}

    bool waitUntilReady();
    /// The value of a script expression, as text. Empty when the page did not answer.
    std::string ask(const std::string& expression);
    bool waitFor(const std::string& expression, const std::string& value);
    void run(const std::string& script);

    void send(const std::string& data);
    /// A button by its index or name, pressed and released.
    void press(const std::string& button) { send("{\"button\":\"" + button + "\"}"); }
    void presses(std::initializer_list<const char*> buttons);
    /// Types on the page's own keyboard, which must be open, by going to each key. Digits and small letters.
    void type(const std::string& text);

    /// The address that begins with `start`, once the page has asked for it.
    std::string requested(const std::string& start);

private:
    GameHost& game;

public:
    ClientView view;

private:
    int questions = 0;
    int keyRow = 1, keyColumn = 0;
};

}  // namespace ZEMO::Test
