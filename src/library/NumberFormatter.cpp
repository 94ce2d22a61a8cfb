#include "library/NumberFormatter.h"

#include "library/FormatPattern.h"
#include "library/LocaleText.h"
#include "values/ValueError.h"

#include <charconv>
#include <cmath>
#include <cstdlib>

namespace brannoc {

namespace {

constexpr int kMaximumCodes = 511;
constexpr int kMaximumDigitPositions = 100;
constexpr int kSignificantDigits = 16;

// A magnitude as decimal digits: value = 0.digits x 10^point; no digits means zero.
struct DecimalDigits {
    std::string digits;
    int point = 0;

    char At(int index) const
    {
        return index >= 0 && index < static_cast<int>(digits.size()) ? digits[index] : '0';
    }
};

void TrimTrailingZeros(DecimalDigits& number)
{
    while (!number.digits.empty() && number.digits.back() == '0')
        number.digits.pop_back();
}

DecimalDigits DigitsOf(double magnitude)
{
    DecimalDigits number;
    if (magnitude == 0 || !std::isfinite(magnitude))
        return number;
    char buffer[64];
    auto [end, error] = std::to_chars(buffer, buffer + sizeof buffer, magnitude, std::chars_format::scientific,
                                      kSignificantDigits - 1);
    std::string_view text(buffer, error == std::errc() ? end - buffer : 0);
    size_t exponentAt = text.find('e');
    if (exponentAt == std::string_view::npos)
        return number;
    for (char c : text.substr(0, exponentAt)) {
        if (c >= '0' && c <= '9')
            number.digits.push_back(c);
    }
    number.point = std::atoi(std::string(text.substr(exponentAt + 1)).c_str()) + 1;
    TrimTrailingZeros(number);
    return number;
}

// Keeps the first keep digits, rounding half up (away from zero).
void RoundDigits(DecimalDigits& number, int keep)
{
    if (keep >= static_cast<int>(number.digits.size()))
        return;
    if (keep < 0) {
        number.digits.clear();
        return;
    }
    bool up = number.digits[keep] >= '5';
    number.digits.resize(keep);
    if (up) {
        int i = keep - 1;
        while (i >= 0 && number.digits[i] == '9')
            number.digits[i--] = '0';
        if (i < 0) {
            number.digits.insert(number.digits.begin(), '1');
            ++number.point;
        } else {
            ++number.digits[i];
        }
    }
    TrimTrailingZeros(number);
}

// The codes of one part of the pattern, with each code's "0" meaning already widened: a "#" after
// the first "0" of the whole part (or before the last "0" of the fraction) counts as "0".
std::vector<bool> ZeroCodes(const NumberSection& section, NumberPart part)
{
    std::vector<bool> zeros;
    for (const NumberItem& item : section.items) {
        if (item.kind == NumberItem::Kind::kDigit && item.part == part)
            zeros.push_back(item.zeroDigit);
    }
    if (part == NumberPart::kFraction) {
        bool seenZero = false;
        for (size_t i = zeros.size(); i-- > 0;)
            zeros[i] = seenZero = seenZero || zeros[i];
    } else {
        bool seenZero = false;
        for (size_t i = 0; i < zeros.size(); ++i)
            zeros[i] = seenZero = seenZero || zeros[i];
    }
    return zeros;
}

// Spreads the digits of a whole number over codes from the right; digits beyond the codes go to the
// first code, codes without a digit print "0" when they are zero codes.
std::vector<std::wstring> SpreadWholeDigits(const std::vector<bool>& zeros, std::wstring_view digits)
{
    std::vector<std::wstring> texts(zeros.size());
    size_t count = zeros.size();
    for (size_t i = 0; i < count; ++i) {
        size_t fromRight = count - 1 - i;
        if (i == 0 && digits.size() > count)
            texts[i].append(digits.substr(0, digits.size() - count));
        if (fromRight < digits.size())
            texts[i].push_back(digits[digits.size() - 1 - fromRight]);
        else if (zeros[i])
            texts[i].push_back(L'0');
    }
    return texts;
}

// Spreads fraction digits over codes from the left; a "#" code drops a trailing zero.
std::vector<std::wstring> SpreadFractionDigits(const std::vector<bool>& zeros, std::wstring_view digits)
{
    std::vector<std::wstring> texts(zeros.size());
    size_t lastNonZero = digits.find_last_not_of(L'0');
    for (size_t j = 0; j < zeros.size(); ++j) {
        bool trailingZero = lastNonZero == std::wstring_view::npos || j > lastNonZero;
        if (zeros[j] || !trailingZero)
            texts[j].push_back(digits[j]);
    }
    return texts;
}

// Joins whole-part texts, inserting the locale's thousands separator every three digits from the
// decimal point when grouping is on.
void GroupWholeTexts(std::vector<std::wstring>& texts, bool grouping)
{
    if (!grouping)
        return;
    size_t total = 0;
    for (const std::wstring& text : texts)
        total += text.size();
    std::wstring separator = LocaleItem(LOCALE_STHOUSAND, L",");
    size_t printed = 0;
    for (std::wstring& text : texts) {
        std::wstring grouped;
        for (wchar_t digit : text) {
            grouped.push_back(digit);
            size_t remaining = total - ++printed;
            if (remaining > 0 && remaining % 3 == 0)
                grouped += separator;
        }
        text = std::move(grouped);
    }
}

struct LaidOutNumber {
    std::vector<std::wstring> whole;
    std::vector<std::wstring> fraction;
    std::vector<std::wstring> exponentDigits;
    std::wstring wholeWithoutCodes;    // integer digits of a section with no whole digit code
    std::wstring exponentWithoutCodes; // exponent digits of an exponent code with no digit codes
    int exponent = 0;
};

std::wstring WholeDigitsText(const DecimalDigits& number, int count)
{
    std::wstring text;
    for (int i = 0; i < count; ++i)
        text.push_back(static_cast<wchar_t>(number.At(i)));
    return text;
}

std::wstring FractionDigitsText(const DecimalDigits& number, int first, int count)
{
    std::wstring text;
    for (int j = 0; j < count; ++j)
        text.push_back(static_cast<wchar_t>(number.At(first + j)));
    return text;
}

bool LayOutFixed(const NumberSection& section, DecimalDigits number, LaidOutNumber& layout)
{
    std::vector<bool> wholeZeros = ZeroCodes(section, NumberPart::kWhole);
    std::vector<bool> fractionZeros = ZeroCodes(section, NumberPart::kFraction);
    int fractionCount = static_cast<int>(fractionZeros.size());
    RoundDigits(number, number.point + fractionCount);
    int wholeCount = number.digits.empty() ? 0 : std::max(number.point, 0);
    if (wholeCount + fractionCount > kMaximumDigitPositions)
        return RaiseValueError(kErrorInvalidArgument);
    std::wstring wholeDigits = WholeDigitsText(number, wholeCount);
    layout.whole = SpreadWholeDigits(wholeZeros, wholeDigits);
    if (wholeZeros.empty())
        layout.wholeWithoutCodes = wholeDigits;
    GroupWholeTexts(layout.whole, section.grouping);
    layout.fraction = SpreadFractionDigits(fractionZeros, FractionDigitsText(number, number.point, fractionCount));
    return true;
}

bool LayOutScientific(const NumberSection& section, DecimalDigits number, LaidOutNumber& layout)
{
    std::vector<bool> wholeZeros = ZeroCodes(section, NumberPart::kWhole);
    std::vector<bool> fractionZeros = ZeroCodes(section, NumberPart::kFraction);
    int wholeCount = static_cast<int>(wholeZeros.size());
    int fractionCount = static_cast<int>(fractionZeros.size());
    if (wholeCount + fractionCount > kMaximumDigitPositions)
        return RaiseValueError(kErrorInvalidArgument);
    if (!number.digits.empty()) {
        RoundDigits(number, wholeCount + fractionCount);
        layout.exponent = number.point - wholeCount;
    }
    layout.whole = SpreadWholeDigits(wholeZeros, number.digits.empty() ? L"" : WholeDigitsText(number, wholeCount));
    GroupWholeTexts(layout.whole, section.grouping);
    layout.fraction = SpreadFractionDigits(fractionZeros, FractionDigitsText(number, wholeCount, fractionCount));
    std::vector<bool> exponentZeros = ZeroCodes(section, NumberPart::kExponent);
    std::wstring exponentText = std::to_wstring(std::abs(layout.exponent));
    if (exponentText == L"0")
        exponentText.clear();
    layout.exponentDigits = SpreadWholeDigits(exponentZeros, exponentText);
    if (exponentZeros.empty())
        layout.exponentWithoutCodes = exponentText.empty() ? L"0" : exponentText;
    return true;
}

} // namespace

bool NumberSection::HasLeadingText() const
{
    for (const NumberItem& item : items) {
        if (item.kind == NumberItem::Kind::kDigit)
            return false;
        if (item.kind == NumberItem::Kind::kLiteral && !item.text.empty())
            return true;
    }
    return false;
}

bool ParseNumberSection(std::wstring_view section, NumberSection& result)
{
    result = NumberSection{};
    bool sawDigit = false;
    bool sawDecimal = false;
    auto addLiteral = [&result](std::wstring_view text) {
        if (!result.items.empty() && result.items.back().kind == NumberItem::Kind::kLiteral)
            result.items.back().text.append(text);
        else
            result.items.push_back(NumberItem{NumberItem::Kind::kLiteral, NumberPart::kWhole, false, true, false,
                                              std::wstring(text)});
    };
    size_t pos = 0;
    for (int codes = 0; pos < section.size() && codes < kMaximumCodes; ++codes) {
        std::wstring literal;
        bool failed = false;
        if (ReadLiteralText(section, pos, literal, failed)) {
            if (failed)
                return false;
            addLiteral(literal);
            continue;
        }
        wchar_t c = section[pos];
        wchar_t next = pos + 1 < section.size() ? section[pos + 1] : L'\0';
        ++pos;
        NumberPart part = result.exponent ? NumberPart::kExponent
                          : sawDecimal    ? NumberPart::kFraction
                                          : NumberPart::kWhole;
        if (c == L'0' || c == L'#') {
            NumberItem item;
            item.kind = NumberItem::Kind::kDigit;
            item.part = part;
            item.zeroDigit = c == L'0';
            result.items.push_back(item);
            sawDigit = sawDigit || part != NumberPart::kExponent;
        } else if (c == L'.' && !sawDecimal && !result.exponent) {
            result.items.push_back(NumberItem{NumberItem::Kind::kDecimalPoint});
            sawDecimal = true;
        } else if (c == L',' && sawDigit) {
            if (sawDecimal || result.exponent)
                return RaiseValueError(kErrorInvalidArgument);
            if (next == L'0' || next == L'#')
                result.grouping = true;
            else
                ++result.scalingCommas;
        } else if (c == L'E' || c == L'e') {
            if (!sawDigit || result.exponent || (next != L'+' && next != L'-'))
                return RaiseValueError(kErrorInvalidArgument);
            NumberItem item;
            item.kind = NumberItem::Kind::kExponent;
            item.upperCase = c == L'E';
            item.alwaysSign = next == L'+';
            result.items.push_back(item);
            result.exponent = true;
            ++pos;
        } else {
            if (c == L'%' && sawDigit)
                ++result.percents;
            addLiteral(std::wstring_view(&c, 1));
        }
    }
    return true;
}

bool WriteNumberSection(const NumberSection& section, double value, bool withSign, std::wstring& out)
{
    DecimalDigits number = DigitsOf(std::fabs(value));
    if (!number.digits.empty())
        number.point += 2 * section.percents - 3 * section.scalingCommas;
    LaidOutNumber layout;
    if (!(section.exponent ? LayOutScientific(section, number, layout) : LayOutFixed(section, number, layout)))
        return false;
    std::wstring text;
    if (withSign && value < 0)
        text.push_back(L'-');
    size_t whole = 0;
    size_t fraction = 0;
    size_t exponentDigit = 0;
    for (const NumberItem& item : section.items) {
        switch (item.kind) {
        case NumberItem::Kind::kLiteral:
            text += item.text;
            break;
        case NumberItem::Kind::kDecimalPoint:
            text += layout.wholeWithoutCodes;
            text += LocaleItem(LOCALE_SDECIMAL, L".");
            break;
        case NumberItem::Kind::kExponent:
            text.push_back(item.upperCase ? L'E' : L'e');
            if (layout.exponent < 0)
                text.push_back(L'-');
            else if (item.alwaysSign)
                text.push_back(L'+');
            text += layout.exponentWithoutCodes;
            break;
        case NumberItem::Kind::kDigit:
            if (item.part == NumberPart::kWhole)
                text += layout.whole[whole++];
            else if (item.part == NumberPart::kFraction)
                text += layout.fraction[fraction++];
            else
                text += layout.exponentDigits[exponentDigit++];
            break;
        }
    }
    out += text;
    return true;
}

} // namespace brannoc
