#pragma once
// The list the references dialog shows: every registered type library, the "'#Reference " lines of a
// macro matched to them (checked and moved to the top in the order of the lines, or kept as bad
// references when not registered), and the lines written back for the checked entries.
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brannoc::ide {

struct ReferenceEntry {
    std::string guid;        // in braces; empty for a library named by path alone
    std::string version;     // "major.minor"
    std::string locale;      // hexadecimal digits
    std::string path;
    std::string description;
    bool checked = false;
    bool bad = false;        // referenced by the macro but not registered
    bool fromMacro = false;
    bool fixed = false;      // provided by the engine or the host: always checked
};

// "'#Reference " + GUID + "#" + version + "#" + locale + "#" + path + "#" + description, or the path
// alone for a library named by path.
std::string ReferenceLine(const ReferenceEntry& entry);
// The entry a reference line names (the text after "'#Reference "); nothing for another line.
std::optional<ReferenceEntry> ParseReferenceLine(std::string_view line);

// Every registered library: HKEY_CLASSES_ROOT\Typelib\{guid}\{version}\{locale}\win32; keys that cannot
// be opened are skipped.
std::vector<ReferenceEntry> ReadRegisteredLibraries();

// The dialog's list: the fixed entries first, then the macro's references in the order of its lines
// (each matched to a registered entry by GUID, version and locale, or added as bad), then the rest.
std::vector<ReferenceEntry> MergeReferences(std::vector<ReferenceEntry> registered, std::string_view referenceLines,
                                            std::vector<ReferenceEntry> fixed);

// The references text for the checked entries below the fixed ones, in list order, each line ending in
// CR LF.
std::string ReferencesText(const std::vector<ReferenceEntry>& entries);

// What the list shows: the description (else the path, else the GUID), " (", version, ")"; a bad entry
// prefixed by `badPrefix` and ": ".
std::string EntryText(const ReferenceEntry& entry, const std::string& badPrefix);
// "Standard" text for locale 0, else the locale's English language and, when the sublanguage is not
// neutral, "/" and its English country.
std::string LanguageText(const std::string& locale, const std::string& standard);

} // namespace brannoc::ide
