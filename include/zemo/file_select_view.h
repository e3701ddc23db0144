#pragma once

#include <zemo/view.h>

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace ZEMO::UI {

/// Receives what the user chose, once for each dialog, on the thread that ran it. Implemented by the game.
class ZEMOFileSelectViewDelegate {
public:
    /// At least one path. With setMultiSelect(true) and several files each path but the first begins with all the text
    /// of the one before: for a.png and b.png in `C:/x` the second is `C:/x/a.pngC:/x/b.png` (with backslashes). Cut
    /// the text of the result before off to get the file's own path.
    virtual void fileSelected(std::vector<std::filesystem::path> files) = 0;
    /// The user chose nothing, or the system could not show the dialog.
    virtual void fileSelectCancelled() = 0;
    virtual ~ZEMOFileSelectViewDelegate() = default;
};

/// The system's "open file" dialog as a view, for existing files, in the middle of the primary screen. Made by
/// createFileSelectViewDialog. All operations on any thread. Of IZEMOView's operations:
/// show runs the dialog on a thread of the library and returns at once; it throws std::system_error when that thread
/// can't be started. showAndWait runs it on the calling thread and returns after the delegate was told. Each call opens
/// a dialog of its own. close asks the dialog that was opened last, of whichever view, to close: that is a cancel.
/// setViewDelegate, setSize and setDisplayMode have no effect.
/// A chosen name that is no valid UTF-16 raises std::range_error: out of showAndWait, or, after show, out of the
/// dialog's thread, which ends the process.
class IZEMOFileSelectView : public IZEMOView {
public:
    /// Held weakly: a delegate that is gone when its dialog ends hears nothing.
    virtual void setFileSelectViewDelegate(std::weak_ptr<ZEMOFileSelectViewDelegate> delegate) = 0;
    /// Extensions to filter on, in UTF-8, without a dot; the first is selected. "*" alone, all files, until this is
    /// called. The given vector is left empty.
    virtual void setFileExtensions(std::vector<std::string>&& extensions) = 0;
    /// Whether several files may be chosen; false until this is called.
    virtual void setMultiSelect(bool multiSelect) = 0;
};

}  // namespace ZEMO::UI
