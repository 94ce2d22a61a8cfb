#include "values/DecimalWhole.h"

#include <oleauto.h>

#include <cstdint>

namespace brannoc {

namespace {

// A Decimal's magnitude as three 32-bit words, least significant first.
struct Magnitude {
    std::uint32_t words[3];

    explicit Magnitude(const DECIMAL& value)
        : words{static_cast<std::uint32_t>(value.Lo64), static_cast<std::uint32_t>(value.Lo64 >> 32),
                static_cast<std::uint32_t>(value.Hi32)}
    {
    }

    // Divides by ten; answers the digit that was dropped.
    unsigned DivideByTen()
    {
        std::uint64_t rest = 0;
        for (int i = 2; i >= 0; --i) {
            const std::uint64_t current = (rest << 32) | words[i];
            words[i] = static_cast<std::uint32_t>(current / 10);
            rest = current % 10;
        }
        return static_cast<unsigned>(rest);
    }

    // Adds one; a magnitude that was divided by ten at least once always has room for it.
    void AddOne()
    {
        for (std::uint32_t& word : words) {
            if (++word != 0)
                break;
        }
    }

    bool IsZero() const { return words[0] == 0 && words[1] == 0 && words[2] == 0; }
    bool IsOdd() const { return (words[0] & 1) != 0; }

    DECIMAL ToDecimal(int scale, BYTE sign) const
    {
        DECIMAL result{};
        result.Lo64 = static_cast<ULONGLONG>(words[0]) | (static_cast<ULONGLONG>(words[1]) << 32);
        result.Hi32 = words[2];
        result.scale = static_cast<BYTE>(scale);
        result.sign = IsZero() ? 0 : sign;
        return result;
    }
};

} // namespace

DECIMAL DecimalWholePart(const DECIMAL& value, bool floor)
{
    if (value.scale == 0)
        return value;
    Magnitude magnitude(value);
    bool fraction = false;
    for (int i = 0; i < value.scale; ++i)
        fraction = magnitude.DivideByTen() != 0 || fraction;
    // Toward minus infinity a negative value with a fraction goes one further from zero.
    if (floor && fraction && (value.sign & DECIMAL_NEG) != 0)
        magnitude.AddOne();
    return magnitude.ToDecimal(0, value.sign);
}

DECIMAL DecimalRounded(const DECIMAL& value, int places)
{
    if (places < 0 || value.scale <= places)
        return value;
    Magnitude magnitude(value);
    const int dropped = value.scale - places;
    // The first dropped digit decides; the ones below it only tell a tie from more than half.
    bool below = false;
    unsigned first = 0;
    for (int i = 0; i < dropped; ++i) {
        const unsigned digit = magnitude.DivideByTen();
        if (i + 1 < dropped)
            below = digit != 0 || below;
        else
            first = digit;
    }
    if (first > 5 || (first == 5 && (below || magnitude.IsOdd())))
        magnitude.AddOne();
    return magnitude.ToDecimal(places, value.sign);
}

} // namespace brannoc
