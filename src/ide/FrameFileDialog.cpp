// The frame's Open and Save As dialogs: the host's file-name callback first, else the common dialog
// with a filter built from the frame's file descriptions and extensions.
#include "ide/EditorFrameState.h"

#include <commdlg.h>

#include <vector>

namespace brannoc::ide {

namespace {

std::vector<std::string> SplitBars(const std::string& text)
{
    std::vector<std::string> parts;
    size_t start = 0;
    while (start <= text.size()) {
        size_t bar = text.find('|', start);
        if (bar == std::string::npos)
            bar = text.size();
        parts.push_back(text.substr(start, bar - start));
        start = bar + 1;
    }
    while (!parts.empty() && parts.back().empty())
        parts.pop_back();
    return parts;
}

bool EqualNoCase(const std::string& a, const std::string& b)
{
    return lstrcmpiA(a.c_str(), b.c_str()) == 0;
}

} // namespace

// Pairs of "description (pattern)" and "pattern", each followed by "|"; the dialog gets them with
// every "|" turned into a NUL.
std::string EditorFrame::FileFilter() const
{
    std::string descriptions = m_fileDescriptions.empty() ? m_placeholders.title + "|" + Text(IDS_ALL_FILES) : m_fileDescriptions;
    std::vector<std::string> names = SplitBars(descriptions);
    std::vector<std::string> extensions = SplitBars(m_fileExtensions);
    std::string filter;
    for (size_t i = 0; i < names.size() && i < extensions.size(); ++i) {
        std::string entry = extensions[i];
        ReplaceAll(entry, ";", ";*.");
        std::string pattern = "*." + entry;
        if (i == 0 && m_listMode == 2) {
            if (!EqualNoCase(pattern, "*.BAS"))
                pattern += ";*.BAS";
            if (!EqualNoCase(pattern, "*." + m_objectExtension))
                pattern += ";*." + m_objectExtension;
            pattern += ";*.CLS";
        }
        filter += names[i] + " (" + pattern + ")|" + pattern + "|";
    }
    return filter;
}

bool EditorFrame::ChooseFileName(bool save, std::string& name)
{
    char buffer[260] = {};
    if (m_callbacks.fileName && m_callbacks.fileName(m_window, save, buffer)) {
        name = buffer;
        return !name.empty();
    }
    std::string filter = FileFilter();
    for (char& c : filter)
        if (c == '|')
            c = '\0';
    OPENFILENAMEA dialog{};
    dialog.lStructSize = sizeof(dialog);
    dialog.hwndOwner = m_window;
    dialog.lpstrFilter = filter.c_str();
    dialog.nFilterIndex = 1;
    dialog.lpstrFile = buffer;
    dialog.nMaxFile = sizeof(buffer);
    ++m_busy;
    BOOL chosen;
    if (save) {
        dialog.Flags = OFN_OVERWRITEPROMPT | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY |
                       (Has(FO_SAVE_KEEPS_DIRECTORY) ? OFN_NOCHANGEDIR : 0);
        chosen = GetSaveFileNameA(&dialog);
    } else {
        dialog.Flags = OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST | OFN_HIDEREADONLY |
                       (Has(FO_OPEN_KEEPS_DIRECTORY) ? OFN_NOCHANGEDIR : 0);
        chosen = GetOpenFileNameA(&dialog);
    }
    --m_busy;
    if (!chosen)
        return false;
    name = buffer;
    return true;
}

} // namespace brannoc::ide
