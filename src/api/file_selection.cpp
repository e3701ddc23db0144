#include "api/file_selection.h"

#include <algorithm>

namespace ZEMO::UI {
namespace {

std::wstring_view untilNul(std::wstring_view text) { return text.substr(0, text.find(L'\0')); }

std::wstring directoryOf(std::wstring_view answer, size_t fileOffset) {
    // One character less: the separator, or the NUL, before the first name.
    std::wstring directory(untilNul(answer.substr(0, fileOffset > 0 ? fileOffset - 1 : 0)));
    if (!directory.ends_with(L'\\')) directory += L'\\';
    return directory;
}

}  // namespace

std::string fileFilterList(const std::vector<std::string>& extensions) {
    std::string list;
    for (const std::string& extension : extensions) {
        list.append(extension).push_back('\0');
        list.append("*.").append(extension).push_back('\0');
    }
    return list;
}

std::vector<std::wstring> selectedFiles(std::wstring_view answer, size_t fileOffset, bool multiSelect) {
    if (!multiSelect) return {std::wstring(untilNul(answer))};
    const std::wstring directory = directoryOf(answer, fileOffset);
    std::vector<std::wstring> files;
    std::wstring path;
    std::wstring_view rest = answer.substr(std::min(fileOffset, answer.size()));
    while (true) {
        const std::wstring_view name = untilNul(rest);
        if (name.empty()) return files;
        path.append(directory).append(name);
        files.push_back(path);
        rest.remove_prefix(std::min(name.size() + 1, rest.size()));
    }
}

}  // namespace ZEMO::UI
