// Date and time built-ins: the clock (Now, Date, Time, Timer), DateSerial and TimeSerial, DateValue
// and TimeValue, the date parts (Year to Second, Weekday), MonthName and WeekdayName, DateAdd,
// DateDiff and DatePart, and Format.
#include "library/BuiltinGroups.h"

#include "library/BuiltinArguments.h"
#include "library/Clock.h"
#include "library/DateMath.h"
#include "library/DateParts.h"
#include "library/FormatValue.h"
#include "library/LocaleText.h"
#include "values/Conversion.h"
#include "values/ValueError.h"

#include <optional>

namespace brannoc {

namespace {

// Argument index as a Date, converted as ChangeType does.
bool DateArgument(BuiltinArguments& arguments, int index, DATE& date)
{
    Variant* value = nullptr;
    if (!arguments.OwnValue(index, value) || !ChangeType(*value, VT_DATE))
        return false;
    date = value->Date();
    return true;
}

bool IntervalArgument(BuiltinArguments& arguments, int index, DateInterval& interval)
{
    std::wstring_view text;
    if (!arguments.String(index, text))
        return false;
    return ParseDateInterval(text, interval) || RaiseValueError(kErrorInvalidArgument);
}

bool Now(BuiltinArguments&, BuiltinResult& result)
{
    result.Target().SetDate(LocalNow());
    return true;
}

bool Today(BuiltinArguments&, BuiltinResult& result)
{
    result.Target().SetDate(DatePartOnly(LocalNow()));
    return true;
}

bool TimeOfDay(BuiltinArguments&, BuiltinResult& result)
{
    result.Target().SetDate(TimePartOnly(LocalNow()));
    return true;
}

bool Timer(BuiltinArguments&, BuiltinResult& result)
{
    result.SetSingle(SecondsSinceMidnight());
    return true;
}

// DateSerial (Year, Month, Day) and TimeSerial (Hour, Minute, Second).
template <bool (*kMake)(long, long, long, DATE&)>
bool Serial(BuiltinArguments& arguments, BuiltinResult& result)
{
    SHORT parts[3] = {};
    for (int i = 0; i < 3; ++i) {
        if (!arguments.Integer(i, parts[i]))
            return false;
    }
    DATE date = 0;
    if (!kMake(parts[0], parts[1], parts[2], date))
        return false;
    result.Target().SetDate(date);
    return true;
}

// DateValue and TimeValue: the date or time part of the argument read as a date.
template <DATE (*kPart)(DATE)>
bool PartValue(BuiltinArguments& arguments, BuiltinResult& result)
{
    DATE date = 0;
    if (!DateArgument(arguments, 0, date))
        return false;
    result.Target().SetDate(kPart(date));
    return true;
}

// Year, Month, Day, Hour, Minute, Second and Weekday: an Integer, or Null for a Null argument.
template <DateInterval kInterval>
bool DatePartOf(BuiltinArguments& arguments, BuiltinResult& result)
{
    bool isNull = false;
    if (!arguments.IsNull(0, isNull))
        return false;
    if (isNull) {
        result.SetNull();
        return true;
    }
    DATE date = 0;
    if (!DateArgument(arguments, 0, date))
        return false;
    result.SetInteger(static_cast<SHORT>(PartOfDate(kInterval, date)));
    return true;
}

// MonthName (Month, [Abbrev]) and WeekdayName (Weekday, [Abbrev]).
template <int kLast, std::wstring (*kName)(int, bool)>
bool NameOf(BuiltinArguments& arguments, BuiltinResult& result)
{
    SHORT number = 0;
    bool abbreviated = false;
    if (!arguments.Integer(0, number) || (arguments.IsGiven(1) && !arguments.Boolean(1, abbreviated)))
        return false;
    if (number < 1 || number > kLast)
        return RaiseValueError(kErrorInvalidArgument);
    return result.SetString(kName(number, abbreviated));
}

bool DateAdd(BuiltinArguments& arguments, BuiltinResult& result)
{
    DateInterval interval{};
    double number = 0;
    DATE date = 0;
    if (!IntervalArgument(arguments, 0, interval) || !arguments.Double(1, number) || !DateArgument(arguments, 2, date))
        return false;
    DATE sum = 0;
    if (!AddToDate(interval, number, date, sum))
        return false;
    result.Target().SetDate(sum);
    return true;
}

bool DateDiff(BuiltinArguments& arguments, BuiltinResult& result)
{
    DateInterval interval{};
    DATE first = 0;
    DATE second = 0;
    if (!IntervalArgument(arguments, 0, interval) || !DateArgument(arguments, 1, first) ||
        !DateArgument(arguments, 2, second))
        return false;
    LONG count = 0;
    if (!DateDifference(interval, first, second, count))
        return false;
    result.SetLong(count);
    return true;
}

bool DatePart(BuiltinArguments& arguments, BuiltinResult& result)
{
    DateInterval interval{};
    DATE date = 0;
    if (!IntervalArgument(arguments, 0, interval) || !DateArgument(arguments, 1, date))
        return false;
    result.SetInteger(static_cast<SHORT>(PartOfDate(interval, date)));
    return true;
}

// Format (Expr, [Form], [FirstDayOfWeek = 1], [FirstWeekOfYear = 1]).
bool Format(BuiltinArguments& arguments, BuiltinResult& result)
{
    const Variant* value = nullptr;
    if (!arguments.Value(0, value))
        return false;
    std::optional<std::wstring_view> form;
    if (arguments.IsGiven(1)) {
        std::wstring_view text;
        if (!arguments.String(1, text))
            return false;
        form = text;
    }
    SHORT firstDay = 1;
    SHORT firstWeek = 1;
    if ((arguments.IsGiven(2) && !arguments.Integer(2, firstDay)) ||
        (arguments.IsGiven(3) && !arguments.Integer(3, firstWeek)))
        return false;
    Bstr text;
    if (!FormatValue(*value, form, firstDay, firstWeek, text))
        return false;
    result.SetString(std::move(text));
    return true;
}

constexpr std::uint8_t kPure = kBuiltinPure;
// The clock, and names and texts in the engine's locale (which a host may change after compiling),
// are read at run time only.
constexpr std::uint8_t kAtRunTime = 0;

constexpr BuiltinRecord kRecords[] = {
    Function(Token::Now, ResultKind::kDate, "", "", kAtRunTime, 0, &Now),
    Function(Token::Date, ResultKind::kDate, "", "", kAtRunTime, 0, &Today),
    Function(Token::Time, ResultKind::kDate, "", "", kAtRunTime, 0, &TimeOfDay),
    Function(Token::Timer, ResultKind::kSingle, "", "", kAtRunTime, 0, &Timer),
    Function(Token::DateSerial, ResultKind::kDate, "%%%", "Year Month Day", kPure, 0, &Serial<&DateFromParts>),
    Function(Token::TimeSerial, ResultKind::kDate, "%%%", "Hour Minute Second", kPure, 0, &Serial<&TimeFromParts>),
    Function(Token::DateValue, ResultKind::kDate, "?", "Date", kPure, 0, &PartValue<&DatePartOnly>),
    Function(Token::TimeValue, ResultKind::kDate, "?", "Date", kPure, 0, &PartValue<&TimePartOnly>),
    Function(Token::Year, ResultKind::kArgumentKind, "?", "DateExpr", kPure, 0, &DatePartOf<DateInterval::kYear>),
    Function(Token::Month, ResultKind::kArgumentKind, "?", "DateExpr", kPure, 0, &DatePartOf<DateInterval::kMonth>),
    Function(Token::Day, ResultKind::kArgumentKind, "?", "DateExpr", kPure, 0, &DatePartOf<DateInterval::kDay>),
    Function(Token::Hour, ResultKind::kArgumentKind, "?", "DateExpr", kPure, 0, &DatePartOf<DateInterval::kHour>),
    Function(Token::Minute, ResultKind::kArgumentKind, "?", "DateExpr", kPure, 0, &DatePartOf<DateInterval::kMinute>),
    Function(Token::Second, ResultKind::kArgumentKind, "?", "DateExpr", kPure, 0, &DatePartOf<DateInterval::kSecond>),
    Function(Token::Weekday, ResultKind::kArgumentKind, "?", "DateExpr", kPure, 0, &DatePartOf<DateInterval::kWeekday>),
    Function(Token::MonthName, ResultKind::kString, "%~", "Month Abbrev", kAtRunTime, 0b10,
             &NameOf<12, &MonthNameText>),
    Function(Token::WeekdayName, ResultKind::kString, "%~", "Weekday Abbrev", kAtRunTime, 0b10,
             &NameOf<7, &WeekdayNameText>),
    Function(Token::DateAdd, ResultKind::kDate, "$#?", "Interval Number DateExpr", kPure, 0, &DateAdd),
    Function(Token::DateDiff, ResultKind::kLong, "$??", "Interval DateExpr1 DateExpr2", kPure, 0, &DateDiff),
    Function(Token::DatePart, ResultKind::kInteger, "$?", "Interval DateExpr", kPure, 0, &DatePart),
    Function(Token::Format, ResultKind::kString, "?$%%", "Expr Form FirstDayOfWeek FirstWeekOfYear",
             kAtRunTime, 0b1110, &Format),
};

} // namespace

BuiltinGroup DateFunctions() { return kRecords; }

} // namespace brannoc
