#include "code/TypedExpression.h"

#include <climits>
#include <cmath>

namespace brannoc {

namespace {

using Code = TypedExpression::Code;
using Operand = TypedExpression::Operand;
using Op = TypedExpression::Op;

// The kind a variable of the declared type always holds, for the kinds of the typed form; VT_EMPTY for
// every other type.
VARTYPE FixedKind(TypeCode type)
{
    if (!type.IsNumeric() || type.IsArray())
        return VT_EMPTY;
    switch (type.ValueTag()) {
    case VT_I2: return VT_I2;
    case VT_I4: return VT_I4;
    case VT_R8: return VT_R8;
    case VT_BOOL: return VT_BOOL;
    default: return VT_EMPTY;
    }
}

bool IsWhole(VARTYPE kind) { return kind == VT_I2 || kind == VT_I4; }
bool IsFourRules(OperationId op)
{
    return op == OperationId::kAdd || op == OperationId::kSubtract || op == OperationId::kMultiply ||
           op == OperationId::kDivide;
}

// One value of the typed form's stack.
union Number {
    LONG whole;
    double real;
};

LONG WholeOfStorage(const VARIANT& value)
{
    switch (value.vt) {
    case VT_I2: return value.iVal;
    case VT_BOOL: return value.boolVal;
    default: return value.lVal;
    }
}

// A whole-number operation in kind (Integer, Long, or Boolean for logic and comparisons); comparisons
// give -1 or 0. False when the result leaves the kind or the divisor is zero.
inline bool WholeBinary(OperationId op, VARTYPE kind, LONG a, LONG b, LONG& result)
{
    switch (op) {
    case OperationId::kAdd:
        if (__builtin_add_overflow(a, b, &result))
            return false;
        break;
    case OperationId::kSubtract:
        if (__builtin_sub_overflow(a, b, &result))
            return false;
        break;
    case OperationId::kMultiply:
        if (__builtin_mul_overflow(a, b, &result))
            return false;
        break;
    case OperationId::kIntegerDivide:
        if (b == 0 || (b == -1 && a == (kind == VT_I2 ? SHRT_MIN : LONG_MIN)))
            return false;
        result = a / b;
        break;
    case OperationId::kModulo:
        if (b == 0)
            return false;
        result = b == -1 ? 0 : a % b;
        return true;
    case OperationId::kAnd: result = a & b; return true;
    case OperationId::kOr: result = a | b; return true;
    case OperationId::kXor: result = a ^ b; return true;
    case OperationId::kEqv: result = ~(a ^ b); return true;
    case OperationId::kImp: result = ~a | b; return true;
    case OperationId::kEqual: result = a == b ? -1 : 0; return true;
    case OperationId::kNotEqual: result = a != b ? -1 : 0; return true;
    case OperationId::kLess: result = a < b ? -1 : 0; return true;
    case OperationId::kLessEqual: result = a <= b ? -1 : 0; return true;
    case OperationId::kGreater: result = a > b ? -1 : 0; return true;
    case OperationId::kGreaterEqual: result = a >= b ? -1 : 0; return true;
    default: return false;
    }
    return kind != VT_I2 || (result >= SHRT_MIN && result <= SHRT_MAX);
}

// A Double operation: arithmetic into real (a normal result, or a zero that is exact), comparisons into
// whole (-1 or 0).
inline bool RealBinary(OperationId op, double a, double b, Number& result)
{
    // Stored through memory so that the tests see the value rounded to double, not the x87 unit's
    // wider intermediate.
    volatile double computed = 0;
    bool exactZero = false;
    switch (op) {
    case OperationId::kAdd:
        computed = a + b;
        exactZero = true;
        break;
    case OperationId::kSubtract:
        computed = a - b;
        exactZero = true;
        break;
    case OperationId::kMultiply:
        computed = a * b;
        exactZero = a == 0 || b == 0;
        break;
    case OperationId::kDivide:
        if (b == 0)
            return false;
        computed = a / b;
        exactZero = a == 0;
        break;
    case OperationId::kEqual: result.whole = a == b ? -1 : 0; return true;
    case OperationId::kNotEqual: result.whole = a != b ? -1 : 0; return true;
    case OperationId::kLess: result.whole = a < b ? -1 : 0; return true;
    case OperationId::kLessEqual: result.whole = a <= b ? -1 : 0; return true;
    case OperationId::kGreater: result.whole = a > b ? -1 : 0; return true;
    case OperationId::kGreaterEqual: result.whole = a >= b ? -1 : 0; return true;
    default: return false;
    }
    const double rounded = computed;
    if (!std::isnormal(rounded) && !(rounded == 0 && exactZero))
        return false;
    result.real = rounded;
    return true;
}

bool WholeUnary(OperationId op, VARTYPE kind, LONG& value)
{
    const LONG smallest = kind == VT_I2 ? SHRT_MIN : LONG_MIN;
    switch (op) {
    case OperationId::kNegate:
        if (value == smallest)
            return false;
        value = -value;
        return true;
    case OperationId::kAbs:
        if (value == smallest)
            return false;
        if (value < 0)
            value = -value;
        return true;
    case OperationId::kNot: value = ~value; return true;
    default: return false;
    }
}

bool RealUnary(OperationId op, double& value)
{
    switch (op) {
    case OperationId::kNegate: value = -value; return true;
    case OperationId::kAbs:
        if (value < 0)
            value = -value;
        return true;
    case OperationId::kFix: value = std::trunc(value); return true;
    case OperationId::kInt: value = std::floor(value); return true;
    default: return false;
    }
}

VARIANT* LocalStorage(const RunContext& context, int index)
{
    return StorageOf(context, StorageScope::Local, index);
}

// Element `index` of the one-dimensional array of elements of kind that storage holds; false when it
// holds no such array or the index lies outside it.
bool ReadElement(VARIANT* storage, LONG index, VARTYPE kind, Number& out)
{
    const VARIANT* holder = FollowByRefChain(storage);
    if ((holder->vt & ~VT_BYREF) != (VT_ARRAY | kind))
        return false;
    SAFEARRAY* array = ArrayOf(storage);
    if (!array || array->cDims != 1 || !array->pvData)
        return false;
    const SAFEARRAYBOUND& bound = array->rgsabound[0];
    const ULONG offset = static_cast<ULONG>(index - bound.lLbound);
    if (offset >= bound.cElements)
        return false;
    const char* element = static_cast<const char*>(array->pvData) + offset * array->cbElements;
    switch (kind) {
    case VT_I2: out.whole = *reinterpret_cast<const SHORT*>(element); return true;
    case VT_I4: out.whole = *reinterpret_cast<const LONG*>(element); return true;
    case VT_BOOL: out.whole = *reinterpret_cast<const VARIANT_BOOL*>(element); return true;
    case VT_R8: out.real = *reinterpret_cast<const double*>(element); return true;
    default: return false;
    }
}

// The compiler's view of one value on the stack: its kind and the op that pushed it (-1: several).
struct Pushed {
    VARTYPE kind;
    int producer;
};

// Takes the op that pushed the right operand into the operator itself when it is a constant or a
// local variable that needs no conversion for it.
bool FuseRightOperand(std::vector<Op>& ops, const Pushed& right, bool real, Op& binary)
{
    if (right.producer < 0 || right.producer != static_cast<int>(ops.size()) - 1)
        return false;
    const Op& last = ops.back();
    switch (last.code) {
    case Code::kConstWhole:
        binary.right = Operand::kConstant;
        binary.whole = last.whole;
        binary.real = last.whole;
        break;
    case Code::kConstReal:
        if (!real)
            return false;
        binary.right = Operand::kConstant;
        binary.real = last.real;
        break;
    case Code::kLoadWhole:
    case Code::kLoadReal:
        if (last.scope != StorageScope::Local || real != (last.code == Code::kLoadReal))
            return false;
        binary.right = Operand::kLocal;
        binary.index = last.index;
        binary.localKind = last.kind;
        break;
    default: return false;
    }
    ops.pop_back();
    return true;
}

} // namespace

bool TypedExpression::Compile(const Expression& code, const CompiledProcedure& procedure,
                              const std::vector<VARTYPE>* assumed)
{
    m_ops.clear();
    std::vector<Op> ops;
    Pushed stack[kMaxDepth];
    int depth = 0;
    for (std::size_t position = 0; position < code.ops.size(); ++position) {
        const ExprOp& source = code.ops[position];
        Op op;
        switch (source.code) {
        case ExprOpCode::kConstant: {
            const VARIANT& value = procedure.ConstantAt(source.index).Raw();
            if (depth == kMaxDepth)
                return false;
            if (value.vt == VT_R8) {
                op.code = Code::kConstReal;
                op.real = value.dblVal;
            } else if (value.vt == VT_I2 || value.vt == VT_I4 || value.vt == VT_BOOL) {
                op.code = Code::kConstWhole;
                op.whole = WholeOfStorage(value);
            } else {
                return false;
            }
            op.kind = value.vt;
            stack[depth++] = Pushed{value.vt, static_cast<int>(ops.size())};
            break;
        }
        case ExprOpCode::kLoad: {
            VARTYPE kind = FixedKind(source.type);
            if (kind == VT_EMPTY && source.type.IsVariant() && assumed && position < assumed->size())
                kind = (*assumed)[position];
            if ((kind != VT_I2 && kind != VT_I4 && kind != VT_R8 && kind != VT_BOOL) || depth == kMaxDepth)
                return false;
            op.code = kind == VT_R8 ? Code::kLoadReal : Code::kLoadWhole;
            op.scope = source.scope;
            op.index = source.index;
            op.module = source.module;
            op.kind = kind;
            stack[depth++] = Pushed{kind, static_cast<int>(ops.size())};
            break;
        }
        case ExprOpCode::kElement: {
            const VARTYPE kind = FixedKind(source.type);
            if (source.count != 1 || depth < 1 || kind == VT_EMPTY || !IsWhole(stack[depth - 1].kind))
                return false;
            op.code = kind == VT_R8 ? Code::kElementReal : Code::kElementWhole;
            op.scope = source.scope;
            op.index = source.index;
            op.module = source.module;
            op.kind = kind;
            stack[depth - 1] = Pushed{kind, -1};
            break;
        }
        case ExprOpCode::kBinary: {
            if (depth < 2)
                return false;
            const Pushed left = stack[depth - 2];
            const Pushed right = stack[depth - 1];
            const OperationId operation = source.op;
            VARTYPE result = VT_EMPTY;
            bool real = false;
            if (IsWhole(left.kind) && IsWhole(right.kind) && operation != OperationId::kDivide) {
                if (operation == OperationId::kPower || operation == OperationId::kConcatenate ||
                    operation == OperationId::kLike || operation == OperationId::kIs)
                    return false;
                op.kind = left.kind == VT_I2 && right.kind == VT_I2 ? VT_I2 : VT_I4;
                result = IsComparison(operation) ? static_cast<VARTYPE>(VT_BOOL) : op.kind;
            } else if (left.kind == VT_BOOL && right.kind == VT_BOOL) {
                if (!IsComparison(operation) && !IsLogic(operation))
                    return false;
                op.kind = VT_BOOL;
                result = VT_BOOL;
            } else if ((left.kind == VT_R8 || IsWhole(left.kind)) && (right.kind == VT_R8 || IsWhole(right.kind))) {
                if (!IsFourRules(operation) && !IsComparison(operation))
                    return false;
                real = true;
                result = IsComparison(operation) ? static_cast<VARTYPE>(VT_BOOL) : static_cast<VARTYPE>(VT_R8);
            } else {
                return false;
            }
            op.code = real ? Code::kReal : Code::kWhole;
            op.op = operation;
            const bool fused = FuseRightOperand(ops, right, real, op);
            if (real && !fused && right.kind != VT_R8) {
                Op convert;
                convert.code = Code::kToReal;
                convert.depth = 0;
                ops.push_back(convert);
            }
            if (real && left.kind != VT_R8) {
                Op convert;
                convert.code = Code::kToReal;
                convert.depth = fused ? 0 : 1;
                ops.push_back(convert);
            }
            --depth;
            stack[depth - 1] = Pushed{result, -1};
            break;
        }
        case ExprOpCode::kUnary: {
            if (depth < 1)
                return false;
            const VARTYPE kind = stack[depth - 1].kind;
            op.op = source.op;
            op.kind = kind;
            if (kind == VT_R8) {
                if (source.op == OperationId::kNot)
                    return false;
                op.code = Code::kUnaryReal;
            } else if (IsWhole(kind)) {
                if (source.op == OperationId::kFix || source.op == OperationId::kInt)
                    continue; // whole numbers are their own Fix and Int
                op.code = Code::kUnaryWhole;
            } else if (kind == VT_BOOL && source.op == OperationId::kNot) {
                op.code = Code::kUnaryWhole;
            } else {
                return false;
            }
            stack[depth - 1] = Pushed{kind, -1};
            break;
        }
        default: return false;
        }
        ops.push_back(op);
    }
    if (depth != 1)
        return false;
    m_resultKind = stack[0].kind;
    m_ops = std::move(ops);
    return true;
}

bool TypedExpression::Evaluate(const RunContext& context, VARIANT& result) const
{
    Number stack[kMaxDepth];
    int top = -1;
    for (const Op& op : m_ops) {
        switch (op.code) {
        case Code::kLoadWhole: {
            const VARIANT* storage = StorageOf(context, op.scope, op.index, op.module);
            if (!storage || storage->vt != op.kind)
                return false;
            stack[++top].whole = WholeOfStorage(*storage);
            break;
        }
        case Code::kLoadReal: {
            const VARIANT* storage = StorageOf(context, op.scope, op.index, op.module);
            if (!storage || storage->vt != VT_R8)
                return false;
            stack[++top].real = storage->dblVal;
            break;
        }
        case Code::kConstWhole: stack[++top].whole = op.whole; break;
        case Code::kConstReal: stack[++top].real = op.real; break;
        case Code::kElementWhole:
        case Code::kElementReal: {
            VARIANT* storage = StorageOf(context, op.scope, op.index, op.module);
            if (!storage || !ReadElement(storage, stack[top].whole, op.kind, stack[top]))
                return false;
            break;
        }
        case Code::kToReal: {
            Number& value = stack[top - op.depth];
            value.real = value.whole;
            break;
        }
        case Code::kWhole: {
            LONG right = 0;
            switch (op.right) {
            case Operand::kStack: right = stack[top--].whole; break;
            case Operand::kConstant: right = op.whole; break;
            case Operand::kLocal: {
                const VARIANT* storage = LocalStorage(context, op.index);
                if (storage->vt != op.localKind)
                    return false;
                right = WholeOfStorage(*storage);
                break;
            }
            }
            if (!WholeBinary(op.op, op.kind, stack[top].whole, right, stack[top].whole))
                return false;
            break;
        }
        case Code::kReal: {
            double right = 0;
            switch (op.right) {
            case Operand::kStack: right = stack[top--].real; break;
            case Operand::kConstant: right = op.real; break;
            case Operand::kLocal: {
                const VARIANT* storage = LocalStorage(context, op.index);
                if (storage->vt != VT_R8)
                    return false;
                right = storage->dblVal;
                break;
            }
            }
            if (!RealBinary(op.op, stack[top].real, right, stack[top]))
                return false;
            break;
        }
        case Code::kUnaryWhole:
            if (!WholeUnary(op.op, op.kind, stack[top].whole))
                return false;
            break;
        case Code::kUnaryReal:
            if (!RealUnary(op.op, stack[top].real))
                return false;
            break;
        }
    }
    result.vt = m_resultKind;
    switch (m_resultKind) {
    case VT_I2: result.iVal = static_cast<SHORT>(stack[0].whole); break;
    case VT_BOOL: result.boolVal = static_cast<VARIANT_BOOL>(stack[0].whole); break;
    case VT_R8: result.dblVal = stack[0].real; break;
    default: result.lVal = stack[0].whole; break;
    }
    return true;
}

} // namespace brannoc
