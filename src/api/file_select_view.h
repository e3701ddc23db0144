#pragma once

#include <memory>
#include <string>
#include <vector>

#include "zemo/file_select_view.h"

namespace ZEMO::UI {

/// The "open file" dialog as a view. It stores what the caller sets; the dialog itself is not part of this build yet.
class ZEMOFileSelectViewImpl final : public IZEMOFileSelectView {
public:
    void show() override {}
    void showAndWait() override {}
    void close() override {}
    void setViewDelegate(std::shared_ptr<ZEMOViewDelegate> /*delegate*/) override {}
    void setSize(float /*width*/, float /*height*/) override {}
    void setDisplayMode(int /*mode*/) override {}
    void setFileSelectViewDelegate(std::weak_ptr<ZEMOFileSelectViewDelegate> newDelegate) override {
        delegate = std::move(newDelegate);
    }
    void setFileExtensions(std::vector<std::string>&& newExtensions) override {
        if (&newExtensions != &extensions) extensions = newExtensions;
        newExtensions.clear();
    }
    void setMultiSelect(bool enabled) override { multiSelect = enabled; }

private:
    std::weak_ptr<ZEMOFileSelectViewDelegate> delegate;
    bool multiSelect = false;
    std::vector<std::string> extensions = {"*"};
};

}  // namespace ZEMO::UI
