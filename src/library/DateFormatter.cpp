#include "library/DateFormatter.h"

#include "library/FormatPattern.h"
#include "library/LocaleText.h"
#include "values/Conversion.h"
#include "values/ValueError.h"

#include <algorithm>
#include <cwctype>

namespace brannoc {

namespace {

constexpr size_t kMaximumDateText = 255;

size_t RunLength(std::wstring_view text, size_t pos)
{
    wchar_t letter = static_cast<wchar_t>(std::towlower(text[pos]));
    size_t end = pos;
    while (end < text.size() && static_cast<wchar_t>(std::towlower(text[end])) == letter)
        ++end;
    return end - pos;
}

bool IsMarker(DateCode code)
{
    return code == DateCode::kMarkerAmPm || code == DateCode::kMarkerAP || code == DateCode::kLocaleMarker ||
           code == DateCode::kLocaleMarkerLetter;
}

// Reads the picture one code at a time; the only state is whether the last code was an hour code,
// which turns a following "m" or "mm" into minutes.
class PictureReader final {
public:
    PictureReader(std::wstring_view text, PictureSyntax syntax, DatePicture& picture)
        : m_text(text), m_syntax(syntax), m_picture(picture)
    {
    }

    bool Read()
    {
        while (m_pos < m_text.size()) {
            if (!ReadOne())
                return false;
        }
        return true;
    }

private:
    bool ReadOne()
    {
        std::wstring literal;
        bool failed = false;
        if (m_syntax == PictureSyntax::kUserPattern && ReadLiteralText(m_text, m_pos, literal, failed)) {
            AddLiteral(literal);
            return !failed;
        }
        if (m_syntax == PictureSyntax::kLocalePicture && m_text[m_pos] == L'\'') {
            ReadSingleQuoted();
            return true;
        }
        if (ReadMarker())
            return true;
        wchar_t c = m_text[m_pos];
        switch (std::towlower(c)) {
        case L'/': Add(DateCode::kDateSeparator, 1); return true;
        case L':': Add(DateCode::kTimeSeparator, 1); return true;
        case L'c': Add(DateCode::kGeneralDate, 1); return true;
        case L'q': Add(DateCode::kQuarter, 1); return true;
        case L'd': return ReadDay();
        case L'w': return RunLength(m_text, m_pos) >= 2 ? Add(DateCode::kWeekOfYear, 2) : Add(DateCode::kWeekday, 1);
        case L'm': return ReadMonth();
        case L'y': return ReadYear();
        case L'h': return ReadPair(DateCode::kHour, DateCode::kHour2);
        case L'n': return ReadPair(DateCode::kMinute, DateCode::kMinute2);
        case L's': return ReadPair(DateCode::kSecond, DateCode::kSecond2);
        case L't': return ReadTime();
        default:
            AddLiteral(std::wstring_view(&c, 1));
            ++m_pos;
            return true;
        }
    }

    bool Add(DateCode code, size_t length)
    {
        DateItem item;
        item.code = code;
        if (IsMarker(code))
            item.text.assign(m_text.substr(m_pos, length));
        m_picture.items.push_back(std::move(item));
        m_picture.twelveHour = m_picture.twelveHour || IsMarker(code);
        if (code != DateCode::kDateSeparator && code != DateCode::kTimeSeparator)
            m_afterHour = code == DateCode::kHour || code == DateCode::kHour2;
        m_pos += length;
        return true;
    }

    void AddLiteral(std::wstring_view text)
    {
        if (!m_picture.items.empty() && m_picture.items.back().code == DateCode::kLiteral)
            m_picture.items.back().text.append(text);
        else
            m_picture.items.push_back(DateItem{DateCode::kLiteral, std::wstring(text)});
    }

    void ReadSingleQuoted()
    {
        ++m_pos;
        std::wstring text;
        while (m_pos < m_text.size()) {
            if (m_text[m_pos] == L'\'') {
                if (m_pos + 1 < m_text.size() && m_text[m_pos + 1] == L'\'') {
                    text.push_back(L'\'');
                    m_pos += 2;
                    continue;
                }
                ++m_pos;
                break;
            }
            text.push_back(m_text[m_pos++]);
        }
        AddLiteral(text);
    }

    bool ReadMarker()
    {
        if (StartsWithNoCase(m_text, m_pos, L"AM/PM"))
            return Add(DateCode::kMarkerAmPm, 5);
        if (StartsWithNoCase(m_text, m_pos, L"AMPM"))
            return Add(DateCode::kLocaleMarker, 4);
        if (StartsWithNoCase(m_text, m_pos, L"A/P"))
            return Add(DateCode::kMarkerAP, 3);
        return false;
    }

    bool ReadDay()
    {
        static constexpr DateCode kCodes[] = {DateCode::kDay,     DateCode::kDay2,      DateCode::kDayAbbreviation,
                                              DateCode::kDayName, DateCode::kShortDate, DateCode::kLongDate};
        size_t longest = m_syntax == PictureSyntax::kUserPattern ? 6 : 4;
        size_t length = std::min(RunLength(m_text, m_pos), longest);
        return Add(kCodes[length - 1], length);
    }

    bool ReadMonth()
    {
        size_t length = std::min<size_t>(RunLength(m_text, m_pos), 4);
        if (length <= 2 && m_afterHour)
            return Add(length == 1 ? DateCode::kMinute : DateCode::kMinute2, length);
        static constexpr DateCode kCodes[] = {DateCode::kMonth, DateCode::kMonth2, DateCode::kMonthAbbreviation,
                                              DateCode::kMonthName};
        return Add(kCodes[length - 1], length);
    }

    bool ReadYear()
    {
        size_t run = RunLength(m_text, m_pos);
        if (m_syntax == PictureSyntax::kLocalePicture) {
            if (run == 1)
                return Add(DateCode::kYearInCentury, 1);
            return run == 2 ? Add(DateCode::kYear2, 2) : Add(DateCode::kYear4, std::min<size_t>(run, 5));
        }
        if (run >= 4)
            return Add(DateCode::kYear4, 4);
        return run >= 2 ? Add(DateCode::kYear2, 2) : Add(DateCode::kDayOfYear, 1);
    }

    bool ReadPair(DateCode single, DateCode pair)
    {
        return RunLength(m_text, m_pos) >= 2 ? Add(pair, 2) : Add(single, 1);
    }

    bool ReadTime()
    {
        size_t run = RunLength(m_text, m_pos);
        if (m_syntax == PictureSyntax::kLocalePicture)
            return run >= 2 ? Add(DateCode::kLocaleMarker, 2) : Add(DateCode::kLocaleMarkerLetter, 1);
        if (run != 5)
            return RaiseValueError(kErrorInvalidArgument);
        return Add(DateCode::kTimePicture, 5);
    }

    std::wstring_view m_text;
    PictureSyntax m_syntax;
    DatePicture& m_picture;
    size_t m_pos = 0;
    bool m_afterHour = false;
};

void AppendNumber(std::wstring& out, long number, int width)
{
    std::wstring digits = std::to_wstring(number);
    if (digits.size() < static_cast<size_t>(width))
        out.append(width - digits.size(), L'0');
    out += digits;
}

int ClockHour(int hour, bool twelveHour)
{
    if (!twelveHour)
        return hour;
    int twelve = hour % 12;
    return twelve == 0 ? 12 : twelve;
}

// The marker as written ("AM/PM" or "A/P" in any case): its morning or evening half.
std::wstring WrittenMarker(const DateItem& item, bool evening)
{
    if (item.code == DateCode::kMarkerAP)
        return std::wstring(1, item.text[evening ? 2 : 0]);
    return evening ? item.text.substr(3, 2) : item.text.substr(0, 2);
}

// The locale's morning or evening string.
std::wstring LocaleMarker(bool evening)
{
    return LocaleItem(evening ? LOCALE_S2359 : LOCALE_S1159, evening ? L"PM" : L"AM");
}

bool WriteLocalePicture(LCTYPE type, std::wstring_view fallback, DATE value, const WeekRules& rules,
                        std::wstring& out)
{
    std::wstring text = LocaleItem(type, fallback);
    DatePicture picture;
    return ParseDatePicture(text, PictureSyntax::kLocalePicture, picture) &&
           WriteDatePicture(picture, value, rules, out);
}

bool WriteGeneralDate(DATE value, std::wstring& out)
{
    Variant date;
    date.SetDate(value);
    Bstr text;
    if (!ToText(date, TextMode::kLocale, text))
        return false;
    out.append(text.View());
    return true;
}

bool WriteItem(const DateItem& item, const DateParts& parts, bool twelveHour, DATE value, const WeekRules& rules,
               std::wstring& out)
{
    bool evening = parts.hour >= 12;
    switch (item.code) {
    case DateCode::kLiteral: out += item.text; return true;
    case DateCode::kDateSeparator: out += LocaleItem(LOCALE_SDATE, L"/"); return true;
    case DateCode::kTimeSeparator: out += LocaleItem(LOCALE_STIME, L":"); return true;
    case DateCode::kGeneralDate: return WriteGeneralDate(value, out);
    case DateCode::kDay: AppendNumber(out, parts.day, 1); return true;
    case DateCode::kDay2: AppendNumber(out, parts.day, 2); return true;
    case DateCode::kDayAbbreviation: out += WeekdayNameText(parts.weekday, true); return true;
    case DateCode::kDayName: out += WeekdayNameText(parts.weekday, false); return true;
    case DateCode::kShortDate: return WriteLocalePicture(LOCALE_SSHORTDATE, L"M/d/yyyy", value, rules, out);
    case DateCode::kLongDate:
        return WriteLocalePicture(LOCALE_SLONGDATE, L"dddd, MMMM d, yyyy", value, rules, out);
    case DateCode::kTimePicture: return WriteLocalePicture(LOCALE_STIMEFORMAT, L"h:mm:ss tt", value, rules, out);
    case DateCode::kWeekday: AppendNumber(out, WeekdayFrom(parts.weekday, rules.firstDay), 1); return true;
    case DateCode::kWeekOfYear: AppendNumber(out, WeekOfYear(parts, rules.firstDay, rules.firstWeek), 1); return true;
    case DateCode::kMonth: AppendNumber(out, parts.month, 1); return true;
    case DateCode::kMonth2: AppendNumber(out, parts.month, 2); return true;
    case DateCode::kMonthAbbreviation: out += MonthNameText(parts.month, true); return true;
    case DateCode::kMonthName: out += MonthNameText(parts.month, false); return true;
    case DateCode::kQuarter: AppendNumber(out, (parts.month + 2) / 3, 1); return true;
    case DateCode::kDayOfYear: AppendNumber(out, parts.dayOfYear, 1); return true;
    case DateCode::kYearInCentury: AppendNumber(out, parts.year % 100, 1); return true;
    case DateCode::kYear2: AppendNumber(out, parts.year % 100, 2); return true;
    case DateCode::kYear4: AppendNumber(out, parts.year, 1); return true;
    case DateCode::kHour: AppendNumber(out, ClockHour(parts.hour, twelveHour), 1); return true;
    case DateCode::kHour2: AppendNumber(out, ClockHour(parts.hour, twelveHour), 2); return true;
    case DateCode::kMinute: AppendNumber(out, parts.minute, 1); return true;
    case DateCode::kMinute2: AppendNumber(out, parts.minute, 2); return true;
    case DateCode::kSecond: AppendNumber(out, parts.second, 1); return true;
    case DateCode::kSecond2: AppendNumber(out, parts.second, 2); return true;
    case DateCode::kMarkerAmPm:
    case DateCode::kMarkerAP: out += WrittenMarker(item, evening); return true;
    case DateCode::kLocaleMarker: out += LocaleMarker(evening); return true;
    case DateCode::kLocaleMarkerLetter: out += LocaleMarker(evening).substr(0, 1); return true;
    }
    return true;
}

} // namespace

bool DatePicture::Uses(DateCode code) const
{
    for (const DateItem& item : items) {
        if (item.code == code)
            return true;
    }
    return false;
}

bool ParseDatePicture(std::wstring_view section, PictureSyntax syntax, DatePicture& picture)
{
    picture = DatePicture{};
    return PictureReader(section, syntax, picture).Read();
}

bool WriteDatePicture(const DatePicture& picture, DATE value, const WeekRules& rules, std::wstring& out)
{
    DateParts parts = SplitDate(value);
    for (const DateItem& item : picture.items) {
        if (!WriteItem(item, parts, picture.twelveHour, value, rules, out))
            return false;
    }
    return true;
}

bool FormatDateSection(std::wstring_view section, DATE value, const WeekRules& rules, std::wstring& out)
{
    DatePicture picture;
    std::wstring text;
    if (!ParseDatePicture(section, PictureSyntax::kUserPattern, picture) ||
        !WriteDatePicture(picture, value, rules, text))
        return false;
    if (text.size() > kMaximumDateText)
        text.resize(kMaximumDateText);
    out += text;
    return true;
}

} // namespace brannoc
