#include "file_choice.h"

#include "text.h"

#include <atomic>
#include <utility>

namespace demo {

/// Hears the outcome on the dialog's thread.
class FileChoice::Listener : public ZEMO::UI::ZEMOFileSelectViewDelegate {
public:
    Listener(int number, std::shared_ptr<PageEventQueue> queue) : page(number), events(std::move(queue)) {}

    void fileSelected(std::vector<std::filesystem::path> files) override {
        end(toUtf8(files.front().filename().wstring()));
    }
    void fileSelectCancelled() override { end({}); }
    bool hasEnded() const { return ended; }

private:
    void end(std::string name) {
        events->push({PageEvent::Kind::Chosen, page, 0, std::move(name)});
        ended = true;
    }

    const int page;
    const std::shared_ptr<PageEventQueue> events;
    std::atomic<bool> ended = false;
};

FileChoice::FileChoice(std::shared_ptr<PageEventQueue> queue) : events(std::move(queue)) {}

FileChoice::~FileChoice() = default;

void FileChoice::open(int page) {
    if (listener && !listener->hasEnded()) return;
    listener = std::make_shared<Listener>(page, events);
    view = ZEMO::UI::createFileSelectViewDialog();
    view->setFileExtensions({"png", "jpg"});
    view->setFileSelectViewDelegate(listener);
    view->show();
}

void FileChoice::close() {
    if (view) view->close();
}

}  // namespace demo
