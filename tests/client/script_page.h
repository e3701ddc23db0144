#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <mutex>
#include <ostream>
#include <string>
#include <vector>

#include "engine/game_host.h"
#include "support/http_server.h"

namespace ZEMO::Test {

/// The two texts that a script's callback gets.
struct ScriptAnswer {
    std::string result, error;
    friend bool operator==(const ScriptAnswer&, const ScriptAnswer&) = default;
    friend std::ostream& operator<<(std::ostream& out, const ScriptAnswer& answer) {
        return out << "result <" << answer.result.substr(0, 200) << ">, error <" << answer.error.substr(0, 200) << ">";
    }
};

/// What callbacks on the engine thread have brought, in order. Copies share one record: a callback may still be under
/// way when the test's own variables go.
template <class T>
class Arrivals {
public:
    void add(T arrived) const {
        const std::lock_guard lock(record->mutex);
        record->list.push_back(std::move(arrived));
    }
    std::vector<T> all() const {
        const std::lock_guard lock(record->mutex);
        return record->list;
    }
    size_t count() const {
        const std::lock_guard lock(record->mutex);
        return record->list.size();
    }

private:
    struct Record {
        mutable std::mutex mutex;
        std::vector<T> list;
    };
    std::shared_ptr<Record> record = std::make_shared<Record>();
};

/// A view as a game has it, with a page of the test's own server, asked and called through the public interface.
class ScriptPage : public ::testing::Test {
protected:
    /// Shows "/" with this text and waits until it has loaded.
    void open(const std::string& html);
    /// Shows "/" with this text and does not wait.
    void show(const std::string& html);
    /// Loads another path of the server and waits for its end.
    void load(const std::string& path);
    /// The view's end, waited for as far as the page's process.
    void close() { view.reset(); }

    /// Runs the script and waits for its answer.
    ScriptAnswer evaluate(const std::string& script);
    std::string resultOf(const std::string& script) { return evaluate(script).result; }
    std::string errorOf(const std::string& script) { return evaluate(script).error; }
    /// Runs the script; its answer is added to `answers`.
    void ask(const std::string& script);
    bool answered(size_t count) {
        return game.waitFor("the answers", [&] { return answers.count() >= count; });
    }
    /// Registers the object with a callback that adds to `used`, and gives the binding script.
    std::string bind(const std::string& name, const std::string& message);

    HttpServer server;
    GameHost game;
    NavigationRecorder events;
    Arrivals<ScriptAnswer> answers;
    Arrivals<std::string> used;
    std::shared_ptr<ZEMO::UI::IZEMOWebView> view;
};

/// The process of every page.
std::vector<DWORD> pageProcesses();
/// Ends them.
void killPageProcesses();

}  // namespace ZEMO::Test
