#pragma once
// Printing the current sheet's code with a page header on each page, and Print Setup.
#include <windows.h>

#include <string>
#include <vector>

namespace brannoc::ide {

class EditorFrame;

// The printer chosen in Print Setup, or the default printer once it was looked up: global handles
// owned by the frame.
struct PrintSettings {
    HGLOBAL devMode = nullptr;
    HGLOBAL devNames = nullptr;
};

// Prints the frame's current sheet; failures are reported to the user. Answers whether a job was sent.
bool PrintSheet(EditorFrame& frame);
// The printer setup dialog; the chosen printer is kept for the following print jobs.
void PrintSetup(EditorFrame& frame);
void ReleasePrintSettings(PrintSettings& settings);

// The document name of a job: the display name, cut to 28 characters followed by "..." when longer.
std::string PrintDocumentName(const std::string& displayName);

// One source line as printed lines: tabs expanded, broken after the last non-word character within
// `perLine` characters (a hard break when the piece has none).
std::vector<std::string> PrintedLines(const std::string& line, int tabWidth, int perLine);

// The code divided into pages of at most `linesPerPage` printed lines each (the page header not
// counted); a last empty line is not printed, an empty text gives one empty page.
std::vector<std::vector<std::string>> PaginateCode(const std::string& code, int tabWidth, int perLine,
                                                   int linesPerPage);

} // namespace brannoc::ide
