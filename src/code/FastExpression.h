#pragma once
// The direct form of a pure numeric expression: loads of variables and array elements, constants and
// the numeric operators, and nothing that calls, allocates or can yield. It is compiled once from the
// postfix code of a statement and evaluated on a few VARIANTs of its own instead of the engine's value
// stack, with each operator chosen for the kinds that the declared types fix (Integer, Long, Double,
// Boolean) and the cells' fast paths where a Variant leaves the kind open.
//
// Evaluation either gives exactly the value that the general code would give, or gives up without any
// effect: a variable that does not hold the kind its declaration promises, a result that leaves its kind
// (overflow, a zero divisor, a floating result that is not a normal number) or anything else the fast
// paths decline. The statement then runs its general code, which computes, promotes or raises.
#include "code/ProcedureBody.h"
#include "code/TypedExpression.h"

#include <cstdint>
#include <vector>

namespace brannoc {

enum class FastOpCode : std::uint8_t {
    kLoad,     // push a variable; it must hold `kind` (VT_EMPTY: any value that owns nothing)
    kConstant, // push `value`
    kWhole,    // top two = top two `op` in `kind` (VT_I2 or VT_I4)
    kDouble,   // top two = top two `op` in Double (whole numbers read as Double)
    kBoolean,  // top two = Boolean logic or comparison `op`
    kAny,      // top two = top two `op` through the numeric cells' fast paths
    kUnary,    // top = `op` top through the numeric cells' fast paths
    kElement,  // replace the whole-number index on top by that element of a one-dimensional array variable
};

struct FastOp {
    FastOpCode code = FastOpCode::kConstant;
    OperationId op = OperationId::kAdd;
    StorageScope scope = StorageScope::Local;
    VARTYPE kind = VT_EMPTY;
    int index = 0;
    const Module* module = nullptr;
    VARIANT value{};
};

class FastExpression final {
public:
    // Compiles code (whose constants belong to procedure) when every op has a direct form. False, and
    // the expression stays unusable, otherwise.
    bool Compile(const Expression& code, const CompiledProcedure& procedure);
    bool IsReady() const noexcept { return m_typed.IsReady() || !m_ops.empty(); }
    // The kind of the result when the declared types fix it, else VT_EMPTY.
    VARTYPE ResultKind() const noexcept { return m_typed.IsReady() ? m_typed.ResultKind() : m_resultKind; }
    // The typed form when the declarations fix every kind, else null.
    const TypedExpression* Typed() const noexcept { return m_typed.IsReady() ? &m_typed : nullptr; }
    // The typed form made for the kinds the Variant variables held when it was (last) compiled, or null.
    const TypedExpression* AssumedForm() const noexcept { return m_assumedForm.IsReady() ? &m_assumedForm : nullptr; }
    // The same form whether or not it is ready now (it is compiled again in place when the kinds change).
    const TypedExpression& AssumedFormSlot() const noexcept { return m_assumedForm; }

    // Evaluates into result (a value that owns nothing). False when it gave up; nothing was changed.
    [[nodiscard]] bool Evaluate(const RunContext& context, VARIANT& result) const;
    // Evaluates a condition: its truth as If and loops read it. False when it gave up.
    [[nodiscard]] bool EvaluateCondition(const RunContext& context, bool& truth) const;

    static constexpr int kMaxDepth = 16;

private:
    [[nodiscard]] bool EvaluateOpen(const RunContext& context, VARIANT& result) const;
    // Compiles m_assumedForm for the kinds the Variant variables hold now, when they all hold kinds of
    // the typed form and differ from those it was compiled for. False when nothing changed.
    bool AssumeCurrentKinds(const RunContext& context) const;

    // The typed form when the declarations fix every kind; else the ops over VARIANTs, and a typed form
    // that assumes the kinds the Variant variables held when it was compiled (compiled again, a few
    // times at most, when they hold other kinds).
    TypedExpression m_typed;
    std::vector<FastOp> m_ops;
    VARTYPE m_resultKind = VT_EMPTY;
    const Expression* m_code = nullptr;
    const CompiledProcedure* m_procedure = nullptr;
    mutable TypedExpression m_assumedForm;
    mutable std::vector<VARTYPE> m_assumedKinds;
    mutable int m_assumptions = 0;
    static constexpr int kMaxAssumptions = 8;
};

namespace detail {
inline bool g_directForms = true;
}
// Whether statements take their direct forms (on unless a test compares them with the general code).
inline bool DirectFormsEnabled() noexcept { return detail::g_directForms; }
// Test hook: turns the direct forms of all statements off or on again; answers the previous setting.
bool SetDirectFormsEnabled(bool on) noexcept;

// A FastExpression compiled the first time its statement runs (when the statement's procedure and
// constants are complete); a statement whose code has no direct form tries only once.
class LazyFastExpression final {
public:
    // The compiled form of code, or null when it has none (or direct forms are off).
    const FastExpression* Get(const Expression& code, const CompiledProcedure* procedure)
    {
        if (m_state == State::kUntried) {
            m_state = procedure && m_fast.Compile(code, *procedure) ? State::kReady : State::kNone;
        }
        return m_state == State::kReady && DirectFormsEnabled() ? &m_fast : nullptr;
    }
    // The compiled form whether or not direct forms are on (after Get).
    const FastExpression* Compiled() const { return m_state == State::kReady ? &m_fast : nullptr; }

private:
    enum class State : std::uint8_t { kUntried, kReady, kNone };
    FastExpression m_fast;
    State m_state = State::kUntried;
};

// The variable an assignment stores into, with its storage kind worked out once.
class FastTarget final {
public:
    explicit FastTarget(const VariableRef& target)
        : m_scope(target.scope), m_index(target.index), m_module(target.module), m_kind(StorageTag(target.type)),
          m_usable(!target.type.IsFixedString() && !target.type.IsArray() && !target.type.IsUserType())
    {
    }

    // False for targets that always take the general store (fixed-length strings, arrays, records).
    bool IsUsable() const noexcept { return m_usable; }
    // Stores a value that owns nothing when no conversion routine is needed (see StorePlain): a value
    // of the storage's own kind is written in place. False, and nothing stored, otherwise.
    [[nodiscard]] bool Store(const RunContext& context, const VARIANT& value) const
    {
        if (!m_usable)
            return false;
        VARIANT* storage = StorageOf(context, m_scope, m_index, m_module);
        if (!storage)
            return false;
        if (storage->vt == value.vt && (m_kind == value.vt || m_kind == VT_VARIANT)) {
            // Same kind, both owning nothing: only the payload changes.
            storage->llVal = value.llVal;
            return true;
        }
        return StorePlain(*storage, m_kind, value);
    }

private:
    StorageScope m_scope;
    int m_index;
    const Module* m_module;
    VARTYPE m_kind;
    bool m_usable;
};

} // namespace brannoc
