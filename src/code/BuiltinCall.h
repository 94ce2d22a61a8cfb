#pragma once
// The compiled call of a built-in: how each argument reaches the implementation. Arguments whose code
// calls a procedure (and so yields) are computed before the call and wait on the value stack; the
// chosen-argument built-ins (IIf, Choose) keep such arguments as code after the call op instead, and
// only the chosen one runs. Every other argument stays code that the implementation evaluates when it
// asks for it.
#include "code/ProcedureBody.h"
#include "frontend/Token.h"

#include <vector>

namespace brannoc {

struct BuiltinRecord;

struct BuiltinArgumentCode {
    enum class Mode : std::uint8_t {
        kMissing,  // an omitted optional argument
        kStacked,  // computed before the call; `position` counts the values computed before it
        kLazy,     // `code` runs when the implementation asks for the argument
        kDeferred, // code after the call op, `position` ops after it; runs only when chosen
    };
    Mode mode = Mode::kMissing;
    int position = 0;
    Expression code;
};

struct BuiltinCall {
    const BuiltinRecord* record = nullptr;
    // One entry per parameter (per written argument for any-count built-ins).
    std::vector<BuiltinArgumentCode> arguments;
    // Values computed before the call, and ops of deferred argument code that follow the call op.
    int stackedCount = 0;
    int deferredLength = 0;
    // Written with the "$" suffix: the result must be a String (a Null result raises 10075).
    bool stringResult = false;
};

// A call of the built-in `keyword` with `count` arguments that are all code the implementation evaluates
// when it asks for them (none computed before the call, none deferred): the shape the typed and register
// forms read their arguments from.
bool IsLazyBuiltinCall(const BuiltinCall& call, Token keyword, std::size_t count);

// Runs the call whose kBuiltin op was just read; pc is the position after that op and moves past the
// deferred code, or to the chosen argument's code. False after raising.
[[nodiscard]] bool RunBuiltinCall(const RunContext& context, const BuiltinCall& call, int& pc);

// True when running code may call a procedure (the statement then yields).
bool CodeMayYield(const Expression& code);

} // namespace brannoc
