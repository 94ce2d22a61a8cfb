#include "ide/ReferenceList.h"

#include <windows.h>

#include <algorithm>

namespace brannoc::ide {

namespace {

constexpr std::string_view kReferencePrefix = "'#Reference ";

bool SameText(const std::string& a, const std::string& b) { return lstrcmpiA(a.c_str(), b.c_str()) == 0; }

bool SameLibrary(const ReferenceEntry& a, const ReferenceEntry& b)
{
    if (a.guid.empty() || b.guid.empty())
        return a.guid.empty() && b.guid.empty() && SameText(a.path, b.path);
    return SameText(a.guid, b.guid) && a.version == b.version && SameText(a.locale, b.locale);
}

std::vector<std::string> SubkeyNames(HKEY key)
{
    std::vector<std::string> names;
    char name[256];
    for (DWORD index = 0;; ++index) {
        DWORD size = sizeof(name);
        if (RegEnumKeyExA(key, index, name, &size, nullptr, nullptr, nullptr, nullptr) != ERROR_SUCCESS)
            break;
        names.emplace_back(name, size);
    }
    return names;
}

std::string DefaultValue(HKEY key, const char* subkey)
{
    char value[1024] = {};
    LONG size = sizeof(value);
    if (RegQueryValueA(key, subkey, value, &size) != ERROR_SUCCESS)
        return {};
    return value;
}

// The locale keys of one version key: each with a "win32" path becomes an entry.
void ReadVersion(HKEY versionKey, const std::string& guid, const std::string& version, std::vector<ReferenceEntry>& out)
{
    const std::string description = DefaultValue(versionKey, nullptr);
    for (const std::string& locale : SubkeyNames(versionKey)) {
        if (locale.empty() || !std::all_of(locale.begin(), locale.end(), [](char c) { return isxdigit(static_cast<unsigned char>(c)); }))
            continue;
        HKEY localeKey = nullptr;
        if (RegOpenKeyExA(versionKey, locale.c_str(), 0, KEY_READ, &localeKey) != ERROR_SUCCESS)
            continue;
        const std::string path = DefaultValue(localeKey, "win32");
        RegCloseKey(localeKey);
        if (path.empty())
            continue;
        out.push_back(ReferenceEntry{guid, version, locale, path, description});
    }
}

} // namespace

std::string ReferenceLine(const ReferenceEntry& entry)
{
    std::string line(kReferencePrefix);
    if (entry.guid.empty())
        return line + entry.path;
    return line + entry.guid + "#" + entry.version + "#" + entry.locale + "#" + entry.path + "#" + entry.description;
}

std::optional<ReferenceEntry> ParseReferenceLine(std::string_view line)
{
    while (!line.empty() && (line.back() == '\r' || line.back() == '\n'))
        line.remove_suffix(1);
    if (line.size() <= kReferencePrefix.size() ||
        CompareStringA(LOCALE_INVARIANT, NORM_IGNORECASE, line.data(), static_cast<int>(kReferencePrefix.size()),
                       kReferencePrefix.data(), static_cast<int>(kReferencePrefix.size())) != CSTR_EQUAL)
        return std::nullopt;
    std::string_view rest = line.substr(kReferencePrefix.size());
    ReferenceEntry entry;
    if (rest.front() != '{') {
        entry.path = std::string(rest);
        return entry;
    }
    std::string* parts[] = {&entry.guid, &entry.version, &entry.locale, &entry.path};
    for (std::string* part : parts) {
        const size_t hash = rest.find('#');
        *part = std::string(rest.substr(0, hash));
        rest = hash == std::string_view::npos ? std::string_view() : rest.substr(hash + 1);
    }
    entry.description = std::string(rest);
    return entry;
}

std::vector<ReferenceEntry> ReadRegisteredLibraries()
{
    std::vector<ReferenceEntry> found;
    HKEY root = nullptr;
    if (RegOpenKeyExA(HKEY_CLASSES_ROOT, "Typelib", 0, KEY_READ, &root) != ERROR_SUCCESS)
        return found;
    for (const std::string& guid : SubkeyNames(root)) {
        HKEY guidKey = nullptr;
        if (RegOpenKeyExA(root, guid.c_str(), 0, KEY_READ, &guidKey) != ERROR_SUCCESS)
            continue;
        for (const std::string& version : SubkeyNames(guidKey)) {
            HKEY versionKey = nullptr;
            if (RegOpenKeyExA(guidKey, version.c_str(), 0, KEY_READ, &versionKey) != ERROR_SUCCESS)
                continue;
            ReadVersion(versionKey, guid, version, found);
            RegCloseKey(versionKey);
        }
        RegCloseKey(guidKey);
    }
    RegCloseKey(root);
    return found;
}

std::vector<ReferenceEntry> MergeReferences(std::vector<ReferenceEntry> registered, std::string_view referenceLines,
                                            std::vector<ReferenceEntry> fixed)
{
    std::vector<ReferenceEntry> list;
    for (ReferenceEntry& entry : fixed) {
        entry.fixed = entry.checked = true;
        list.push_back(std::move(entry));
    }
    size_t at = 0;
    while (at < referenceLines.size()) {
        size_t end = referenceLines.find('\n', at);
        const std::string_view line = referenceLines.substr(at, end == std::string_view::npos ? std::string_view::npos : end - at);
        at = end == std::string_view::npos ? referenceLines.size() : end + 1;
        std::optional<ReferenceEntry> wanted = ParseReferenceLine(line);
        if (!wanted)
            continue;
        auto match = std::find_if(registered.begin(), registered.end(),
                                  [&](const ReferenceEntry& entry) { return SameLibrary(entry, *wanted); });
        ReferenceEntry entry = *wanted;
        if (match != registered.end()) {
            entry = *match;
            registered.erase(match);
        } else {
            entry.bad = true;
        }
        entry.checked = entry.fromMacro = true;
        if (std::none_of(list.begin(), list.end(), [&](const ReferenceEntry& e) { return SameLibrary(e, entry); }))
            list.push_back(std::move(entry));
    }
    for (ReferenceEntry& entry : registered)
        list.push_back(std::move(entry));
    return list;
}

std::string ReferencesText(const std::vector<ReferenceEntry>& entries)
{
    // Collected from the bottom of the list upwards, each line put in front of the ones found so far.
    std::string text;
    for (auto entry = entries.rbegin(); entry != entries.rend(); ++entry)
        if (entry->checked && !entry->fixed)
            text = ReferenceLine(*entry) + "\r\n" + text;
    return text;
}

std::string EntryText(const ReferenceEntry& entry, const std::string& badPrefix)
{
    std::string name = !entry.description.empty() ? entry.description : !entry.path.empty() ? entry.path : entry.guid;
    if (!entry.version.empty())
        name += " (" + entry.version + ")";
    return entry.bad ? badPrefix + ": " + name : name;
}

std::string LanguageText(const std::string& locale, const std::string& standard)
{
    const LCID id = static_cast<LCID>(strtoul(locale.c_str(), nullptr, 16));
    if (id == 0)
        return standard;
    char language[128] = {}, country[128] = {};
    GetLocaleInfoA(id, LOCALE_SENGLANGUAGE, language, sizeof(language));
    std::string text = language;
    if (SUBLANGID(LANGIDFROMLCID(id)) != SUBLANG_NEUTRAL && GetLocaleInfoA(id, LOCALE_SENGCOUNTRY, country, sizeof(country)))
        text += std::string("/") + country;
    return text;
}

} // namespace brannoc::ide
