#include "library/OwnFormatter.h"

#include "library/NumberFormatter.h"
#include "library/QuietRaise.h"
#include "library/StringFormatter.h"
#include "values/Conversion.h"
#include "values/ValueError.h"

namespace brannoc {

namespace {

bool AppendLocaleText(const Variant& value, std::wstring& out)
{
    Bstr text;
    if (!ToText(value, TextMode::kLocale, text))
        return false;
    out.append(text.View());
    return true;
}

bool WriteNumberBySection(std::wstring_view sectionText, double number, bool withSign, std::wstring& out)
{
    NumberSection section;
    return ParseNumberSection(sectionText, section) && WriteNumberSection(section, number, withSign, out);
}

bool FormatNumber(const Variant& value, const PatternSections& pattern, std::wstring& out)
{
    if (value.Tag() == VT_NULL) {
        std::wstring_view nullSection = pattern.At(3);
        return nullSection.empty() || WriteNumberBySection(nullSection, 0, false, out);
    }
    double number = 0;
    if (!ReadsAsNumber(value, number))
        return AppendLocaleText(value, out);
    if (number < 0 && !pattern.At(1).empty())
        return WriteNumberBySection(pattern.At(1), number, false, out);
    if (number == 0 && !pattern.At(2).empty())
        return WriteNumberBySection(pattern.At(2), number, false, out);
    return WriteNumberBySection(pattern.At(0), number, true, out);
}

// The value as a Date when ChangeType can make one; nothing is raised.
bool ReadsAsDate(const Variant& value, DATE& date)
{
    if (value.Tag() == VT_DATE) {
        date = value.Date();
        return true;
    }
    Variant copy;
    if (!copy.CopyFrom(value.Raw()))
        return false;
    QuietRaise quiet;
    if (!ChangeType(copy, VT_DATE))
        return false;
    date = copy.Date();
    return true;
}

bool FormatDate(const Variant& value, const PatternSections& pattern, const WeekRules& rules, std::wstring& out)
{
    if (value.Tag() == VT_NULL)
        return true;
    DATE date = 0;
    if (!ReadsAsDate(value, date))
        return AppendLocaleText(value, out);
    return FormatDateSection(pattern.At(0), date, rules, out);
}

bool FormatString(const Variant& value, const PatternSections& pattern, std::wstring& out)
{
    if (value.Tag() == VT_NULL)
        return true;
    Bstr text;
    if (!ToText(value, TextMode::kLocale, text))
        return false;
    std::wstring_view section = text.IsEmpty() && pattern.count > 1 ? pattern.At(1) : pattern.At(0);
    return FormatStringSection(section, text.View(), out);
}

} // namespace

bool ReadsAsNumber(const Variant& value, double& number)
{
    Variant copy;
    if (!copy.CopyFrom(value.Raw()))
        return false;
    if (copy.Tag() == VT_EMPTY) {
        number = 0;
        return true;
    }
    if (copy.Tag() == VT_BSTR && !StringToNumber(copy))
        return false;
    if (!IsNumericTag(copy.Tag()))
        return false;
    if (FAILED(VariantChangeType(&copy.Raw(), &copy.Raw(), 0, VT_R8)))
        return false;
    number = copy.Double();
    return true;
}

bool FormatByOwnRules(const Variant& value, const PatternSections& pattern, PatternCategory category,
                      const WeekRules& rules, std::wstring& out)
{
    switch (category) {
    case PatternCategory::kDate:
        return FormatDate(value, pattern, rules, out);
    case PatternCategory::kString:
        return FormatString(value, pattern, out);
    case PatternCategory::kNumber:
    default:
        return FormatNumber(value, pattern, out);
    }
}

} // namespace brannoc
