#include "automation/ExtensionPrefix.h"

#include <objbase.h>

#include <cstdlib>

namespace brannoc::automation {
namespace {

bool StartsWithNoCase(std::string_view text, std::string_view start)
{
    return text.size() >= start.size() && CompareStringA(LOCALE_INVARIANT, NORM_IGNORECASE, text.data(),
                                                         static_cast<int>(start.size()), start.data(),
                                                         static_cast<int>(start.size())) == CSTR_EQUAL;
}

// Reads hexadecimal digits up to the stop character; false when there are none or another character
// comes first.
bool ReadHex(std::string_view& text, char stop, unsigned long& value)
{
    std::size_t length = 0;
    value = 0;
    while (length < text.size() && text[length] != stop) {
        const char c = text[length];
        int digit = -1;
        if (c >= '0' && c <= '9')
            digit = c - '0';
        else if (c >= 'a' && c <= 'f')
            digit = c - 'a' + 10;
        else if (c >= 'A' && c <= 'F')
            digit = c - 'A' + 10;
        if (digit < 0 || length >= 8)
            return false;
        value = value * 16 + static_cast<unsigned long>(digit);
        ++length;
    }
    if (length == 0)
        return false;
    text.remove_prefix(length);
    return true;
}

} // namespace

ExtensionPrefix SplitPrefix(std::string_view text)
{
    ExtensionPrefix prefix;
    if (StartsWithNoCase(text, "{WithEvents}")) {
        prefix.withEvents = true;
        text.remove_prefix(12);
    }
    if (!text.empty() && text.front() == '<') {
        const std::size_t close = text.find('>');
        if (close != std::string_view::npos) {
            prefix.project.assign(text.substr(1, close - 1));
            text.remove_prefix(close + 1);
        }
    }
    // A module part ends at the first "|" that comes before any reference text.
    const std::size_t bar = text.find('|');
    if (bar != std::string_view::npos && text.substr(0, bar).find('{') == std::string_view::npos &&
        !StartsWithNoCase(text, "'#Reference")) {
        prefix.module.assign(text.substr(0, bar));
        prefix.hasModule = true;
        text.remove_prefix(bar + 1);
    }
    if (!prefix.hasModule && !text.empty() && text.front() == '$') {
        prefix.flags |= kExtensionSystem;
        text.remove_prefix(1);
    }
    if (StartsWithNoCase(text, "'#Reference ")) {
        prefix.referenceLine = true;
        prefix.flags |= kExtensionFromReferenceLine;
        text.remove_prefix(12);
        while (!text.empty() && (text.front() == ' ' || text.front() == '\t'))
            text.remove_prefix(1);
    }
    prefix.rest.assign(text);
    return prefix;
}

void ReadKind(ExtensionPrefix& prefix)
{
    const char kind = prefix.rest.empty() ? '\0' : prefix.rest.front();
    unsigned flags = kExtensionDefault;
    bool consumed = true;
    switch (kind) {
    case '!': flags = 0; prefix.variable = true; break;
    case '*': flags = 0x2E; break;
    case '+': flags = 0x3A; break;
    case '-': flags = 0x10; break;
    case '.': flags = 0x18; break;
    case '=': flags = 0x39; break;
    case '{': flags = 0x62; consumed = false; break;
    case '~': flags = 0x08; break;
    default: consumed = false; break;
    }
    prefix.flags |= flags;
    if (consumed)
        prefix.rest.erase(0, 1);
}

ObjectName ReadObjectName(std::string_view rest)
{
    ObjectName result;
    const std::size_t colon = rest.find(':');
    std::string_view name = colon == std::string_view::npos ? rest : rest.substr(0, colon);
    std::string_view proper = colon == std::string_view::npos ? rest : rest.substr(colon + 1);
    if (!proper.empty() && proper.back() == '.') {
        result.onlyThroughName = true;
        if (colon == std::string_view::npos)
            name.remove_suffix(1);
    }
    while (!name.empty() && name.front() == ' ')
        name.remove_prefix(1);
    while (!name.empty() && name.back() == ' ')
        name.remove_suffix(1);
    result.name.assign(name);
    return result;
}

bool ParseLibraryReference(std::string_view text, LibraryReference& reference)
{
    const std::size_t close = text.find('}');
    if (text.empty() || text.front() != '{' || close == std::string_view::npos || close + 1 >= text.size() ||
        text[close + 1] != '#')
        return false;
    std::wstring guidText(text.begin(), text.begin() + static_cast<std::ptrdiff_t>(close + 1));
    if (FAILED(CLSIDFromString(guidText.data(), &reference.guid)))
        return false;
    text.remove_prefix(close + 2);
    unsigned long major = 0;
    unsigned long minor = 0;
    unsigned long locale = 0;
    if (!ReadHex(text, '.', major) || text.empty() || major > 0xFFFF)
        return false;
    text.remove_prefix(1);
    if (!ReadHex(text, '#', minor) || text.empty() || minor > 0xFFFF)
        return false;
    text.remove_prefix(1);
    if (!ReadHex(text, '#', locale))
        return false;
    // After the locale: the end, or "#" and a path and description that are not read.
    if (!text.empty() && text.front() != '#')
        return false;
    reference.major = static_cast<WORD>(major);
    reference.minor = static_cast<WORD>(minor);
    reference.locale = static_cast<LCID>(locale);
    return true;
}

} // namespace brannoc::automation
