#include "code/FastExpression.h"

#include "code/NumericKinds.h"

#include "values/NumericCells.h"

namespace brannoc {

namespace {


// The kind a value of the declared type always has in its storage, for the kinds the direct form
// computes in; VT_EMPTY for a Variant (any kind); VT_ILLEGAL for every other type.
VARTYPE KindOfDeclared(TypeCode type)
{
    if (type.IsVariant())
        return VT_EMPTY;
    const VARTYPE fixed = FixedKind(type);
    return fixed == VT_EMPTY ? static_cast<VARTYPE>(VT_ILLEGAL) : fixed;
}


// The direct binary operator for operands of kinds left and right (VT_EMPTY: open), with the kind of
// its result; false when the pair has none (the common kinds and adjustments of the operator table).
bool ChooseBinary(OperationId op, VARTYPE left, VARTYPE right, FastOp& chosen, VARTYPE& result)
{
    if (op == OperationId::kPower || op == OperationId::kConcatenate || op == OperationId::kLike ||
        op == OperationId::kIs)
        return false;
    chosen.op = op;
    if (left == VT_EMPTY || right == VT_EMPTY) {
        chosen.code = FastOpCode::kAny;
        result = VT_EMPTY;
        return true;
    }
    if (IsWhole(left) && IsWhole(right)) {
        const VARTYPE kind = left == VT_I2 && right == VT_I2 ? VT_I2 : VT_I4;
        if (op == OperationId::kDivide) {
            chosen.code = FastOpCode::kDouble;
            result = VT_R8;
            return true;
        }
        chosen.code = FastOpCode::kWhole;
        chosen.kind = kind;
        result = IsComparison(op) ? static_cast<VARTYPE>(VT_BOOL) : kind;
        return true;
    }
    if ((left == VT_R8 || IsWhole(left)) && (right == VT_R8 || IsWhole(right))) {
        const bool arithmetic = op == OperationId::kAdd || op == OperationId::kSubtract ||
                                op == OperationId::kMultiply || op == OperationId::kDivide;
        if (!arithmetic && !IsComparison(op))
            return false;
        chosen.code = FastOpCode::kDouble;
        result = IsComparison(op) ? static_cast<VARTYPE>(VT_BOOL) : static_cast<VARTYPE>(VT_R8);
        return true;
    }
    if (left == VT_BOOL && right == VT_BOOL && (IsComparison(op) || IsLogic(op))) {
        chosen.code = FastOpCode::kBoolean;
        result = VT_BOOL;
        return true;
    }
    return false;
}

bool ChooseUnary(OperationId op, VARTYPE operand, VARTYPE& result)
{
    switch (operand) {
    case VT_EMPTY:
    case VT_I2:
    case VT_I4: result = operand; return true;
    case VT_R8: result = operand; return op != OperationId::kNot;
    case VT_BOOL: result = operand; return op == OperationId::kNot;
    default: return false;
    }
}

double RealOf(const VARIANT& value) { return value.vt == VT_R8 ? value.dblVal : fast::WholeOf(value); }

VARIANT* VariableStorage(const RunContext& context, const FastOp& op)
{
    return StorageOf(context, op.scope, op.index, op.module);
}

// Reads element `index` of the one-dimensional array that storage holds into value; false when the
// storage holds no such array, the index is outside it or the element owns something.
bool ReadElement(VARIANT* storage, LONG index, VARIANT& value)
{
    const VARIANT* holder = FollowByRefChain(storage);
    const char* element = ElementOfVector(storage, index);
    if (!element)
        return false;
    const VARTYPE tag = static_cast<VARTYPE>(holder->vt & VT_TYPEMASK);
    switch (tag) {
    case VT_I2: value.iVal = *reinterpret_cast<const SHORT*>(element); break;
    case VT_I4: value.lVal = *reinterpret_cast<const LONG*>(element); break;
    case VT_R8: value.dblVal = *reinterpret_cast<const double*>(element); break;
    case VT_BOOL: value.boolVal = *reinterpret_cast<const VARIANT_BOOL*>(element); break;
    case VT_VARIANT: {
        const VARIANT& stored = *reinterpret_cast<const VARIANT*>(element);
        if ((stored.vt & VT_BYREF) || !OwnsNothing(stored.vt))
            return false;
        value = stored;
        return true;
    }
    default: return false;
    }
    value.vt = tag;
    return true;
}

} // namespace


bool SetDirectFormsEnabled(bool on) noexcept
{
    const bool previous = detail::g_directForms;
    detail::g_directForms = on;
    return previous;
}

bool FastExpression::Compile(const Expression& code, const CompiledProcedure& procedure)
{
    m_ops.clear();
    if (m_typed.Compile(code, procedure))
        return true;
    m_code = &code;
    m_procedure = &procedure;
    std::vector<FastOp> ops;
    VARTYPE kinds[kMaxDepth];
    int depth = 0;
    for (const ExprOp& source : code.ops) {
        FastOp op;
        switch (source.code) {
        case ExprOpCode::kConstant: {
            const VARIANT& value = procedure.ConstantAt(source.index).Raw();
            if (value.vt != VT_I2 && value.vt != VT_I4 && value.vt != VT_R8 && value.vt != VT_BOOL)
                return false;
            if (depth == kMaxDepth)
                return false;
            op.code = FastOpCode::kConstant;
            op.value = value;
            kinds[depth++] = value.vt;
            break;
        }
        case ExprOpCode::kLoad: {
            const VARTYPE kind = KindOfDeclared(source.type);
            if (kind == VT_ILLEGAL || depth == kMaxDepth)
                return false;
            op.code = FastOpCode::kLoad;
            op.scope = source.scope;
            op.index = source.index;
            op.module = source.module;
            op.kind = kind;
            kinds[depth++] = kind;
            break;
        }
        case ExprOpCode::kElement: {
            const VARTYPE kind = KindOfDeclared(source.type);
            if (source.count != 1 || depth < 1 || kind == VT_ILLEGAL ||
                !(kinds[depth - 1] == VT_EMPTY || IsWhole(kinds[depth - 1])))
                return false;
            op.code = FastOpCode::kElement;
            op.scope = source.scope;
            op.index = source.index;
            op.module = source.module;
            op.kind = kind;
            kinds[depth - 1] = kind;
            break;
        }
        case ExprOpCode::kBinary: {
            VARTYPE result = VT_EMPTY;
            if (depth < 2 || !ChooseBinary(source.op, kinds[depth - 2], kinds[depth - 1], op, result))
                return false;
            kinds[--depth - 1] = result;
            break;
        }
        case ExprOpCode::kUnary: {
            VARTYPE result = VT_EMPTY;
            if (depth < 1 || !ChooseUnary(source.op, kinds[depth - 1], result))
                return false;
            op.code = FastOpCode::kUnary;
            op.op = source.op;
            kinds[depth - 1] = result;
            break;
        }
        default: return false;
        }
        ops.push_back(op);
    }
    if (depth != 1)
        return false;
    m_resultKind = kinds[0];
    m_ops = std::move(ops);
    return true;
}

bool FastExpression::Evaluate(const RunContext& context, VARIANT& result) const
{
    if (m_typed.IsReady())
        return m_typed.Evaluate(context, result);
    if (m_assumedForm.IsReady() && m_assumedForm.Evaluate(context, result))
        return true;
    if (m_assumptions < kMaxAssumptions && AssumeCurrentKinds(context) && m_assumedForm.Evaluate(context, result))
        return true;
    return EvaluateOpen(context, result);
}

bool FastExpression::AssumeCurrentKinds(const RunContext& context) const
{
    std::vector<VARTYPE> kinds(m_code->ops.size(), VT_EMPTY);
    for (std::size_t i = 0; i < m_code->ops.size(); ++i) {
        const ExprOp& op = m_code->ops[i];
        if (op.code != ExprOpCode::kLoad || !op.type.IsVariant())
            continue;
        const VARIANT* storage = StorageOf(context, op.scope, op.index, op.module);
        if (!storage)
            return false;
        kinds[i] = storage->vt;
    }
    if (kinds == m_assumedKinds)
        return false;
    ++m_assumptions;
    m_assumedKinds = kinds;
    return m_assumedForm.Compile(*m_code, *m_procedure, &m_assumedKinds);
}

bool FastExpression::EvaluateOpen(const RunContext& context, VARIANT& result) const
{
    VARIANT stack[kMaxDepth];
    int top = -1;
    for (const FastOp& op : m_ops) {
        switch (op.code) {
        case FastOpCode::kLoad: {
            const VARIANT* storage = VariableStorage(context, op);
            if (!storage)
                return false;
            if (op.kind != VT_EMPTY ? storage->vt != op.kind : (storage->vt & VT_BYREF) || !OwnsNothing(storage->vt))
                return false;
            stack[++top] = *storage;
            break;
        }
        case FastOpCode::kConstant: stack[++top] = op.value; break;
        case FastOpCode::kWhole: {
            VARIANT& left = stack[top - 1];
            if (!fast::WholeOperation(op.op, op.kind, fast::WholeOf(left), fast::WholeOf(stack[top]), left))
                return false;
            --top;
            break;
        }
        case FastOpCode::kDouble: {
            VARIANT& left = stack[top - 1];
            if (!fast::DoubleOperation(op.op, RealOf(left), RealOf(stack[top]), left))
                return false;
            --top;
            break;
        }
        case FastOpCode::kBoolean: {
            VARIANT& left = stack[top - 1];
            if (!fast::BooleanOperation(op.op, left.boolVal, stack[top].boolVal, left))
                return false;
            --top;
            break;
        }
        case FastOpCode::kAny:
            if (!TryFastBinary(op.op, stack[top - 1], stack[top]))
                return false;
            --top;
            break;
        case FastOpCode::kUnary:
            if (!TryFastUnary(op.op, stack[top]))
                return false;
            break;
        case FastOpCode::kElement: {
            VARIANT& slot = stack[top];
            if (slot.vt != VT_I2 && slot.vt != VT_I4)
                return false;
            VARIANT* storage = VariableStorage(context, op);
            if (!storage || !ReadElement(storage, fast::WholeOf(slot), slot))
                return false;
            break;
        }
        }
    }
    result = stack[0];
    return true;
}

bool FastExpression::EvaluateCondition(const RunContext& context, bool& truth) const
{
    // The typed forms give the truth without a VARIANT in between.
    if (m_typed.IsReady())
        return m_typed.EvaluateCondition(context, truth);
    if (m_assumedForm.IsReady() && m_assumedForm.EvaluateCondition(context, truth))
        return true;
    VARIANT value;
    if (!Evaluate(context, value))
        return false;
    switch (value.vt) {
    case VT_BOOL: truth = value.boolVal != VARIANT_FALSE; return true;
    case VT_I2: truth = value.iVal != 0; return true;
    case VT_I4: truth = value.lVal != 0; return true;
    case VT_R8: truth = value.dblVal != 0; return true;
    default: return false;
    }
}

} // namespace brannoc
