// IIf and Choose: the result is one of the later arguments, and only that one is evaluated.
#include "library/BuiltinGroups.h"
#include "library/BuiltinArguments.h"

namespace brannoc {

namespace {

// IIf(CondExpr, TruePart, FalsePart): a Null condition counts as false, as in If statements.
bool IIf(BuiltinArguments& arguments, BuiltinResult& result)
{
    bool isNull = false;
    if (!arguments.IsNull(0, isNull))
        return false;
    bool condition = false;
    if (!isNull && !arguments.Boolean(0, condition))
        return false;
    return result.SetFromArgument(arguments, condition ? 1 : 2);
}

// Choose(Index, choices...): the Index-th choice, or Null when there is none.
bool Choose(BuiltinArguments& arguments, BuiltinResult& result)
{
    SHORT index = 0;
    if (!arguments.Integer(0, index))
        return false;
    if (index < 1 || index >= arguments.Count()) {
        result.SetNull();
        return true;
    }
    return result.SetFromArgument(arguments, index);
}

constexpr BuiltinRecord kRecords[] = {
    Function(Token::IIf, ResultKind::kVariant, "~??", "CondExpr TruePart FalsePart", kBuiltinPure | kBuiltinChoosesArgument,
             0, &IIf),
    Function(Token::Choose, ResultKind::kVariant, "%?", "Index Choice",
             kBuiltinPure | kBuiltinChoosesArgument | kBuiltinAnyCount, 0b10, &Choose),
};

} // namespace

BuiltinGroup ChoiceFunctions() { return kRecords; }

} // namespace brannoc
