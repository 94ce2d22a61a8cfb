#include "library/StringFormatter.h"

#include "library/FormatPattern.h"
#include "values/Conversion.h"
#include "values/ValueError.h"

#include <vector>

namespace brannoc {

namespace {

struct StringItem {
    bool position = false; // "@" or "&"
    bool spaceWhenEmpty = false;
    std::wstring text;
};

struct StringSection {
    std::vector<StringItem> items;
    bool lower = false;
    bool upper = false;
    bool leftToRight = false;
    size_t positions = 0;
};

bool ParseStringSection(std::wstring_view section, StringSection& result)
{
    for (size_t pos = 0; pos < section.size();) {
        std::wstring literal;
        bool failed = false;
        if (ReadLiteralText(section, pos, literal, failed)) {
            if (failed)
                return false;
            result.items.push_back(StringItem{false, false, std::move(literal)});
            continue;
        }
        wchar_t c = section[pos++];
        switch (c) {
        case L'@':
        case L'&':
            result.items.push_back(StringItem{true, c == L'@', {}});
            ++result.positions;
            break;
        case L'<': result.lower = true; break;
        case L'>': result.upper = true; break;
        case L'!': result.leftToRight = true; break;
        default: result.items.push_back(StringItem{false, false, std::wstring(1, c)}); break;
        }
    }
    return true;
}

std::wstring MapCase(std::wstring_view text, DWORD flag)
{
    if (text.empty())
        return {};
    int length = LCMapStringW(EngineLocale(), flag, text.data(), static_cast<int>(text.size()), nullptr, 0);
    if (length <= 0)
        return std::wstring(text);
    std::wstring mapped(static_cast<size_t>(length), L'\0');
    LCMapStringW(EngineLocale(), flag, text.data(), static_cast<int>(text.size()), mapped.data(), length);
    return mapped;
}

} // namespace

bool FormatStringSection(std::wstring_view section, std::wstring_view source, std::wstring& out)
{
    StringSection parsed;
    if (!ParseStringSection(section, parsed))
        return false;
    std::wstring text(source);
    if (parsed.lower)
        text = MapCase(text, LCMAP_LOWERCASE);
    else if (parsed.upper)
        text = MapCase(text, LCMAP_UPPERCASE);
    size_t positions = parsed.positions;
    size_t length = text.size();
    // Which positions print a character of the text, and from where; the rest print a space ("@") or
    // nothing ("&"). Characters beyond the positions follow the pattern (right fill) or are dropped
    // from the front (left fill).
    size_t firstFilled = 0;
    size_t next = 0;
    std::wstring_view overflow;
    if (parsed.leftToRight) {
        next = length > positions ? length - positions : 0;
    } else if (length <= positions) {
        firstFilled = positions - length;
    } else {
        overflow = std::wstring_view(text).substr(positions);
    }
    std::wstring result;
    size_t position = 0;
    for (const StringItem& item : parsed.items) {
        if (!item.position) {
            result += item.text;
            continue;
        }
        if (position >= firstFilled && next < length)
            result.push_back(text[next++]);
        else if (item.spaceWhenEmpty)
            result.push_back(L' ');
        ++position;
    }
    result += overflow;
    out += result;
    return true;
}

} // namespace brannoc
