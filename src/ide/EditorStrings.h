#pragma once
// The editor's user-interface texts: loaded from the string table by id, with the frame's own
// placeholders ("<TITLE>", "<macro>", "<Macro>") filled in, and the caller's further placeholders.
#include <string>
#include <string_view>

namespace brannoc::ide {

// Ids of the editor's texts in the string table.
enum EditorStringId : unsigned {
    IDS_CANNOT_PRINT = 540,
    IDS_PRINT_START_FAILED = 541,
    IDS_PAGE_HEADER = 542,
    IDS_PROPERTIES_TITLE = 545,
    IDS_ALL_FILES = 551,
    IDS_LIST_FONT = 552,
    IDS_DISPLAY_FONT = 553,
    IDS_SAVE_CHANGES = 558,
    IDS_READ_ONLY = 559,
    IDS_END_TO_EDIT = 560,
    IDS_CANNOT_OPEN_FILE = 564,
    IDS_SHEET_LIMIT = 565,
    IDS_STATE_DESIGN = 569,
    IDS_STATE_RUN = 570,
    IDS_STATE_BREAK = 571,
    IDS_NOT_SAVED = 572,
    IDS_NAME_ALREADY_OPEN = 573,
    IDS_NAME_LOADED = 574,
    IDS_NO_USES = 580,
    IDS_NOT_FOUND = 581,
    IDS_OBJECT_LABEL = 593,
    IDS_GENERAL = 594,
    IDS_PROC_LABEL = 595,
    IDS_DECLARATIONS = 596,
    IDS_PROC_NOT_DEFINED = 597,
    IDS_MACRO = 598,
    IDS_CODE = 599,
    IDS_OBJECT = 600,
    IDS_CLASS = 601,
    IDS_MODULE = 602,
    IDS_NEW_MACRO_ITEM = 607,
    IDS_INSTANCING_FIRST = 608,
};

// The frame's values for its own placeholders.
struct PlaceholderValues {
    std::string title = "Brannoc Basic";
    std::string macroNoun = "Macro";
};

// Replaces every `from` in `text` by `to`.
void ReplaceAll(std::string& text, std::string_view from, std::string_view to);

// The text of string `id` (empty when there is none) with "<TITLE>", "<macro>" and "<Macro>" filled in.
std::string LoadEditorString(unsigned id, const PlaceholderValues& values);

// The raw text of string `id` in the engine's code page.
std::string LoadRawEditorString(unsigned id);

} // namespace brannoc::ide
