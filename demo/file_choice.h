#pragma once

#include "page_panel.h"

#include <memory>

namespace demo {

/// The system's dialog for a picture that a page asked for. Game thread only; what was chosen comes as a Chosen event.
class FileChoice {
public:
    explicit FileChoice(std::shared_ptr<PageEventQueue> queue);
    ~FileChoice();
    FileChoice(const FileChoice&) = delete;
    FileChoice& operator=(const FileChoice&) = delete;

    /// Returns at once; the game plays on behind the dialog. Nothing while one is open.
    void open(int page);
    /// As if the player had cancelled.
    void close();

private:
    class Listener;

    const std::shared_ptr<PageEventQueue> events;
    // Held weakly by the library, as every delegate.
    std::shared_ptr<Listener> listener;
    std::shared_ptr<ZEMO::UI::IZEMOFileSelectView> view;
};

}  // namespace demo
