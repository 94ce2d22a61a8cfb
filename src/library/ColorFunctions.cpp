// Colours as Long values with red in the low byte: RGB composes one, QBColor picks one of 16.
#include "library/BuiltinGroups.h"
#include "library/BuiltinArguments.h"
#include "values/ValueError.h"

namespace brannoc {

namespace {

// A colour part read as Integer, 0 to 255.
bool ReadPart(BuiltinArguments& arguments, int index, LONG& part)
{
    SHORT value = 0;
    if (!arguments.Integer(index, value))
        return false;
    if (value < 0 || value > 255)
        return RaiseValueError(kErrorInvalidArgument);
    part = value;
    return true;
}

bool Rgb(BuiltinArguments& arguments, BuiltinResult& result)
{
    LONG red = 0;
    LONG green = 0;
    LONG blue = 0;
    if (!ReadPart(arguments, 0, red) || !ReadPart(arguments, 1, green) || !ReadPart(arguments, 2, blue))
        return false;
    result.SetLong(red + 256 * green + 65536 * blue);
    return true;
}

// The 16 colours, blue in the high byte; number 7 is 0xC4C4C4.
constexpr LONG kColours[16] = {0x000000, 0x800000, 0x008000, 0x808000, 0x000080, 0x800080, 0x008080, 0xC4C4C4,
                               0x808080, 0xFF0000, 0x00FF00, 0xFFFF00, 0x0000FF, 0xFF00FF, 0x00FFFF, 0xFFFFFF};

bool QBColor(BuiltinArguments& arguments, BuiltinResult& result)
{
    SHORT number = 0;
    if (!arguments.Integer(0, number))
        return false;
    if (number < 0 || number > 15)
        return RaiseValueError(kErrorInvalidArgument);
    result.SetLong(kColours[number]);
    return true;
}

constexpr std::uint8_t kPure = kBuiltinPure;

constexpr BuiltinRecord kRecords[] = {
    Function(Token::RGB, ResultKind::kLong, "%%%", "Red Green Blue", kPure, 0, &Rgb),
    Function(Token::QBColor, ResultKind::kLong, "%", "Num", kPure, 0, &QBColor),
};

} // namespace

BuiltinGroup ColorFunctions() { return kRecords; }

} // namespace brannoc
