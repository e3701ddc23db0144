#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

// What the "open file" dialog is told and what its answer means. No system call: any thread.
namespace ZEMO::UI {

/// The dialog's filter list in UTF-8: for each extension its name, which is the extension itself, and its pattern, each
/// ended by a NUL. The NUL that ends the whole list is the one behind the text.
std::string fileFilterList(const std::vector<std::string>& extensions);

/// The chosen paths. `answer` is the dialog's buffer, `fileOffset` where the first file name begins in it.
///
/// With `multiSelect` the dialog answers with the directory and then one name after the other, or with a single path.
/// Each result then begins with all that stood in the results before it: callers know the list in this form.
std::vector<std::wstring> selectedFiles(std::wstring_view answer, size_t fileOffset, bool multiSelect);

}  // namespace ZEMO::UI
