#pragma once
// The typed form of a pure numeric expression whose declared types fix every kind: Integer, Long and
// Boolean values as 32-bit whole numbers, Double values as doubles, each operator chosen for its kinds
// when the expression is compiled, so that evaluation neither reads nor writes a tag except to check
// that a variable holds the kind its declaration promises. A right operand that is a constant or a local
// variable is read by the operator itself instead of being pushed first.
//
// Like FastExpression (which uses this form when it can), evaluation gives exactly the general code's
// value or gives up without any effect.
#include "code/ProcedureBody.h"

#include <cstdint>
#include <vector>

namespace brannoc {

class TypedExpression final {
public:
    // Compiles code when every value in it has a kind fixed by the declarations and every op has a
    // typed form. A load of a Variant variable takes the kind that assumed gives for its op (one entry
    // per op of code; VT_EMPTY or no list: no typed form), which the load then checks each time like
    // a declared kind. False otherwise.
    bool Compile(const Expression& code, const CompiledProcedure& procedure,
                 const std::vector<VARTYPE>* assumed = nullptr);
    bool IsReady() const noexcept { return !m_ops.empty(); }
    // VT_I2, VT_I4, VT_R8 or VT_BOOL.
    VARTYPE ResultKind() const noexcept { return m_resultKind; }

    // Evaluates into result (of ResultKind). False when it gave up; nothing was changed.
    [[nodiscard]] bool Evaluate(const RunContext& context, VARIANT& result) const;

    static constexpr int kMaxDepth = 16;

    // Where the right operand of a binary operator comes from.
    enum class Operand : std::uint8_t { kStack, kConstant, kLocal };

    enum class Code : std::uint8_t {
        kLoadWhole,    // push variable `index` (scope, module), which must hold `kind`
        kLoadReal,     // push a Double variable
        kConstWhole,   // push `whole`
        kConstReal,    // push `real`
        kElementWhole, // replace the index on top by that element of array variable `index` (elements of `kind`)
        kElementReal,  // the same for an array of Doubles
        kToReal,       // the value `depth` below the top (0: the top) becomes a Double
        kWhole,        // whole-number `op` in `kind`, the right operand from `right`
        kReal,         // Double `op`, the right operand from `right`
        kUnaryWhole,   // `op` on the whole number on top, in `kind`
        kUnaryReal,    // `op` on the Double on top
    };

    struct Op {
        Code code = Code::kConstWhole;
        OperationId op = OperationId::kAdd;
        StorageScope scope = StorageScope::Local;
        Operand right = Operand::kStack;
        VARTYPE kind = VT_I4;
        // kLocal right operands: the kind the local variable must hold.
        VARTYPE localKind = VT_EMPTY;
        std::uint8_t depth = 0;
        int index = 0;
        const Module* module = nullptr;
        LONG whole = 0;
        double real = 0;
    };

private:
    std::vector<Op> m_ops;
    VARTYPE m_resultKind = VT_EMPTY;
};

} // namespace brannoc
