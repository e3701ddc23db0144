#pragma once

#include <zemo/view.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace ZEMO::UI {

/// Receives what the user chose, on the dialog's thread. Implemented by the game.
class ZEMOFileSelectViewDelegate {
public:
    virtual void fileSelected(std::vector<std::filesystem::path> files) = 0;
    virtual void fileSelectCancelled() = 0;
    virtual ~ZEMOFileSelectViewDelegate() = default;
};

/// The system's "open file" dialog as a view. Made by createFileSelectViewDialog.
class IZEMOFileSelectView : public IZEMOView {
public:
    /// Held weakly.
    virtual void setFileSelectViewDelegate(std::weak_ptr<ZEMOFileSelectViewDelegate> delegate) = 0;
    /// Extensions to filter on, without a dot. The given vector is left empty.
    virtual void setFileExtensions(std::vector<std::string>&& extensions) = 0;
    virtual void setMultiSelect(bool multiSelect) = 0;
};

}  // namespace ZEMO::UI
