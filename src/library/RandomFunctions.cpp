// Rnd and Randomize: a linear congruential generator with one 32-bit seed per thread, 1 when the thread
// first uses it, so that threads that never call Randomize see the same sequence.
#include "library/BuiltinGroups.h"
#include "library/BuiltinArguments.h"

#include <cmath>
#include <cstdint>
#include <ctime>

namespace brannoc {

namespace {

thread_local std::uint32_t t_seed = 1;

float NumberOfSeed(std::uint32_t seed) { return static_cast<float>((seed >> 16) & 32767u) * (1.0f / 32768.0f); }

float Step()
{
    t_seed = t_seed * 214013u + 2531011u;
    return NumberOfSeed(t_seed);
}

// The low 32 bits of the whole part of value.
std::uint32_t LowBitsOfWholePart(double value)
{
    const double whole = std::trunc(value);
    const double wrapped = std::fmod(whole, 4294967296.0);
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(wrapped));
}

// Rnd([Num]): negative reseeds then steps, 0 repeats the current number, otherwise steps.
bool Rnd(BuiltinArguments& arguments, BuiltinResult& result)
{
    double number = 1;
    if (arguments.IsGiven(0) && !arguments.Double(0, number))
        return false;
    if (number < 0)
        t_seed = LowBitsOfWholePart(-number);
    result.SetSingle(number == 0 ? NumberOfSeed(t_seed) : Step());
    return true;
}

// Randomize([Seed]): the seed becomes Seed's whole part, or the current time in seconds since 1970.
bool Randomize(BuiltinArguments& arguments, BuiltinResult&)
{
    if (!arguments.IsGiven(0)) {
        t_seed = static_cast<std::uint32_t>(std::time(nullptr));
        return true;
    }
    double seed = 0;
    if (!arguments.Double(0, seed))
        return false;
    t_seed = LowBitsOfWholePart(seed);
    return true;
}

constexpr BuiltinRecord kRecords[] = {
    Function(Token::Rnd, ResultKind::kSingle, "!", "Num", 0, 0b1, &Rnd),
    Instruction(Token::Randomize, "?", "Seed", 0b1, &Randomize),
};

} // namespace

BuiltinGroup RandomFunctions() { return kRecords; }

} // namespace brannoc
