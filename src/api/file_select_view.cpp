#include "api/file_select_view.h"

#include <utility>

#include "api/file_dialog.h"
#include "core/detached_thread.h"
#include "core/game_callback.h"
#include "core/module_pin.h"

namespace ZEMO::UI {

void ZEMOFileSelectViewImpl::show() {
    Core::pinOwnModule();  // nobody waits for the dialog's thread
    Core::runDetached([self = shared_from_this()] { self->showAndWait(); });
}

void ZEMOFileSelectViewImpl::showAndWait() {
    std::unique_lock lock(access);
    const std::vector<std::string> filter = extensions;
    const bool several = multiSelect;
    lock.unlock();
    report(runFileDialog(filter, several));
}

void ZEMOFileSelectViewImpl::report(std::vector<std::filesystem::path> files) {
    std::unique_lock lock(access);
    const auto receiver = Core::unlessProcessEnds(delegate.lock());
    lock.unlock();
    if (!receiver) return;
    if (files.empty())
        receiver->fileSelectCancelled();
    else
        receiver->fileSelected(std::move(files));
}

void ZEMOFileSelectViewImpl::close() { closeFileDialog(); }

void ZEMOFileSelectViewImpl::setFileSelectViewDelegate(std::weak_ptr<ZEMOFileSelectViewDelegate> newDelegate) {
    const std::lock_guard lock(access);
    delegate = std::move(newDelegate);
}

void ZEMOFileSelectViewImpl::setFileExtensions(std::vector<std::string>&& newExtensions) {
    const std::lock_guard lock(access);
    if (&newExtensions != &extensions) extensions = newExtensions;
    newExtensions.clear();
}

void ZEMOFileSelectViewImpl::setMultiSelect(bool enabled) {
    const std::lock_guard lock(access);
    multiSelect = enabled;
}

}  // namespace ZEMO::UI
