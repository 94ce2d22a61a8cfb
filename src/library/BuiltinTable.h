#pragma once
// The built-in table: one record per built-in function or instruction, found by its keyword token. The
// compiler checks and converts arguments against a record and may fold a pure call with constant
// arguments; the interpreter calls the record's implementation. Records live in group tables (string
// functions, conversions, numbers ...), each contributed by its own file and listed in BuiltinGroups.h.
#include "frontend/Token.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace brannoc {

class BuiltinArguments;
class BuiltinResult;
class Variant;

// What a built-in gives back. kNone marks an instruction (called as a statement); kArgumentKind a
// number of the first argument's kind (Abs, Fix, Int, Round and the date parts).
enum class ResultKind : std::uint8_t {
    kNone,
    kByte,
    kBoolean,
    kInteger,
    kLong,
    kSingle,
    kDouble,
    kCurrency,
    kDate,
    kString,
    kVariant,
    kArgumentKind,
};

// Parameter kinds, one character per parameter.
namespace parameter_kind {
constexpr char kString = '$';
constexpr char kInteger = '%';
constexpr char kLong = '&';
constexpr char kSingle = '!';
constexpr char kDouble = '#';
constexpr char kVariant = '?';
constexpr char kNumber = '/';        // a numeric Variant
constexpr char kNullableString = 'S'; // a string Variant: a Null argument makes the result Null
constexpr char kArray = 'a';
constexpr char kBoolean = '~';
} // namespace parameter_kind

enum BuiltinFlag : std::uint8_t {
    // The result depends on the arguments alone: a call with constant arguments may be folded.
    kBuiltinPure = 1,
    // Any number of arguments (Array, Choose); the last parameter kind stands for all the later ones.
    kBuiltinAnyCount = 2,
    // The result is one of the arguments after the first, and only that one is evaluated (IIf,
    // Choose); arguments that call procedures are compiled so that only the chosen one runs.
    kBuiltinChoosesArgument = 4,
    // A stream number argument may be written with a leading "#" (Input(count, #n), EOF(#n)).
    kBuiltinStreamArgument = 8,
};

// Implementation with unevaluated arguments: evaluates what it needs through the argument interface and
// sets the result. False after raising an error (or after reading a Null "S" argument, which makes
// the result Null).
using EvaluateFn = bool (*)(BuiltinArguments& arguments, BuiltinResult& result);
// Implementation that converts the one evaluated argument in place. False after raising an error.
using ConvertFn = bool (*)(Variant& value);

struct BuiltinRecord {
    Token keyword = Token::Id;
    ResultKind result = ResultKind::kNone;
    // One kind character per parameter.
    const char* parameterKinds = "";
    // Parameter names as the type library lists them (named arguments use them), blank-separated.
    const char* parameterNames = "";
    std::uint8_t flags = 0;
    // Bit i set: parameter i + 1 may be omitted.
    std::uint32_t optionalMask = 0;
    EvaluateFn evaluate = nullptr;
    ConvertFn convert = nullptr;

    int ParameterCount() const { return static_cast<int>(std::string_view(parameterKinds).size()); }
    // The kind of parameter index; for any-count built-ins the last kind repeats.
    char KindOf(int index) const;
    std::string_view ParameterName(int index) const;
    bool IsOptional(int index) const { return index < 32 && (optionalMask >> index & 1u) != 0; }
    bool IsPure() const { return (flags & kBuiltinPure) != 0; }
    bool TakesAnyCount() const { return (flags & kBuiltinAnyCount) != 0; }
    bool ChoosesArgument() const { return (flags & kBuiltinChoosesArgument) != 0; }
    bool TakesStreamArgument() const { return (flags & kBuiltinStreamArgument) != 0; }
    bool IsInstruction() const { return result == ResultKind::kNone; }
};

// Record builders for the group tables.
constexpr BuiltinRecord Function(Token keyword, ResultKind result, const char* kinds, const char* names,
                                 std::uint8_t flags, std::uint32_t optionalMask, EvaluateFn evaluate)
{
    return BuiltinRecord{keyword, result, kinds, names, flags, optionalMask, evaluate, nullptr};
}
constexpr BuiltinRecord Conversion(Token keyword, ResultKind result, const char* kinds, const char* names,
                                   std::uint8_t flags, ConvertFn convert)
{
    return BuiltinRecord{keyword, result, kinds, names, flags, 0, nullptr, convert};
}
constexpr BuiltinRecord Instruction(Token keyword, const char* kinds, const char* names, std::uint32_t optionalMask,
                                    EvaluateFn evaluate)
{
    return BuiltinRecord{keyword, ResultKind::kNone, kinds, names, 0, optionalMask, evaluate, nullptr};
}

using BuiltinGroup = std::span<const BuiltinRecord>;

// The record of the built-in named by keyword, or null.
const BuiltinRecord* FindBuiltin(Token keyword);

// Calls visit(record) for every record, group by group, in table order.
template <typename Visitor>
void ForEachBuiltin(Visitor&& visit);

// The groups in table order.
std::span<const BuiltinGroup> AllBuiltinGroups();

template <typename Visitor>
void ForEachBuiltin(Visitor&& visit)
{
    for (const BuiltinGroup& group : AllBuiltinGroups()) {
        for (const BuiltinRecord& record : group)
            visit(record);
    }
}

} // namespace brannoc
