#include "ide/FrameOpenUses.h"

#include "ide/EditorFrameState.h"

#include <algorithm>

namespace brannoc::ide {

namespace {

bool IsUsesLine(const std::string& line)
{
    return line.size() >= 6 && line[0] == '\'' && lstrcmpiA(line.substr(1, 5).c_str(), "#Uses") == 0;
}

std::string Trimmed(const std::string& text)
{
    size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos)
        return {};
    return text.substr(first, text.find_last_not_of(" \t") - first + 1);
}

// The lines of a text that begin with "'#Uses".
std::vector<std::string> UsesLines(const std::string& text)
{
    std::vector<std::string> lines;
    for (size_t start = 0; start < text.size();) {
        size_t end = std::min(text.find_first_of("\r\n", start), text.size());
        if (std::string line = text.substr(start, end - start); IsUsesLine(line))
            lines.push_back(line);
        start = end + 1;
    }
    return lines;
}

// A relative name is looked for beside the file that names it, when there is such a file.
std::string BesideFile(const std::string& file, const std::string& name)
{
    bool rooted = name[0] == '\\' || (name.size() >= 2 && name[1] == ':');
    size_t slash = file.find_last_of('\\');
    if (rooted || slash == std::string::npos)
        return name;
    std::string beside = file.substr(0, slash + 1) + name;
    return GetFileAttributesA(beside.c_str()) != INVALID_FILE_ATTRIBUTES ? beside : name;
}

} // namespace

std::vector<std::string> UsesFileNames(const std::string& text)
{
    std::vector<std::string> names;
    for (const std::string& line : UsesLines(text)) {
        for (size_t open = line.find('"'); open != std::string::npos; open = line.find('"', open)) {
            size_t close = line.find('"', open + 1);
            if (close == std::string::npos)
                break;
            if (std::string name = Trimmed(line.substr(open + 1, close - open - 1)); !name.empty())
                names.push_back(name);
            open = close + 1;
        }
    }
    return names;
}

void OpenUses(EditorFrame& frame)
{
    Sheet* sheet = frame.Current();
    if (!sheet)
        return;
    std::string text = frame.WholeTextOf(*sheet);
    if (UsesLines(text).empty()) {
        frame.ShowMessage(IDS_NO_USES, MB_OK | MB_ICONINFORMATION);
        return;
    }
    std::string origin = sheet->IsUntitled() ? std::string() : sheet->name; // the sheet may be replaced below
    for (const std::string& name : UsesFileNames(text))
        frame.OpenFile(BesideFile(origin, name));
}

} // namespace brannoc::ide
