#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace ZEMO::UI {

/// Runs the system's "open file" dialog, centred on the primary screen, and returns when the user is done with it: what
/// was chosen, empty when nothing was or the dialog failed. Any thread, several at a time. Throws std::range_error for
/// a name that has no UTF-8 form.
std::vector<std::filesystem::path> runFileDialog(const std::vector<std::string>& extensions, bool multiSelect);

/// Asks the dialog that was opened last to close. Nothing happens when it is gone. Any thread.
void closeFileDialog();

}  // namespace ZEMO::UI
