#pragma once
// Open Uses: every module named by a "'#Uses" line of the current sheet is opened as a sheet.
#include <string>
#include <vector>

namespace brannoc::ide {

class EditorFrame;

// The names in double quotes on the text's "'#Uses" lines (each trimmed of blanks), in order.
std::vector<std::string> UsesFileNames(const std::string& text);

// Opens the named files beside the current sheet; without any "'#Uses" line the user is told so.
void OpenUses(EditorFrame& frame);

} // namespace brannoc::ide
