#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "zemo/file_select_view.h"

namespace ZEMO::UI {

/// The "open file" dialog as a view. What is set counts from the next dialog on, but for the delegate, which is asked
/// for when a dialog ends. Any thread. Made by std::make_shared only.
class ZEMOFileSelectViewImpl final : public IZEMOFileSelectView,
                                     public std::enable_shared_from_this<ZEMOFileSelectViewImpl> {
public:
    void show() override;
    void showAndWait() override;
    void close() override;
    void setViewDelegate(std::shared_ptr<ZEMOViewDelegate> /*delegate*/) override {}
    void setSize(float /*width*/, float /*height*/) override {}
    void setDisplayMode(int /*mode*/) override {}
    void setFileSelectViewDelegate(std::weak_ptr<ZEMOFileSelectViewDelegate> newDelegate) override;
    void setFileExtensions(std::vector<std::string>&& newExtensions) override;
    void setMultiSelect(bool enabled) override;

private:
    void report(std::vector<std::filesystem::path> files);

    std::mutex access;  ///< never held while the dialog or the game runs
    std::weak_ptr<ZEMOFileSelectViewDelegate> delegate;
    bool multiSelect = false;
    std::vector<std::string> extensions = {"*"};
};

}  // namespace ZEMO::UI
