#include "code/TypedNodes.h"

#include <climits>
#include <cmath>

namespace brannoc {

namespace {

using Op = OperationId;

// ---- Reading variables ----

// Operand readers and operations are always inlined into the node functions: each node is one call.
#define BRANNOC_INLINE inline __attribute__((always_inline))

// A local variable's cell, by-reference parameters followed.
BRANNOC_INLINE const VARIANT* LocalCell(const RunContext& context, int index)
{
    const VARIANT* cell = static_cast<const VARIANT*>(context.activation->Locals()) + index;
    while (cell->vt == (VT_BYREF | VT_VARIANT))
        cell = cell->pvarVal;
    return cell;
}

template <VARTYPE Kind>
BRANNOC_INLINE LONG WholeOf(const VARIANT& value)
{
    if constexpr (Kind == VT_I4)
        return value.lVal;
    else
        return value.iVal; // Integer and Boolean share the 16-bit payload
}

template <VARTYPE Kind, bool Local>
BRANNOC_NODE_CALL bool LoadWhole(const TypedNode& node, const RunContext& context, LONG& out)
{
    const VARIANT* cell = Local ? LocalCell(context, node.index) : StorageOf(context, node.scope, node.index, node.module);
    if (!Local && !cell)
        return false;
    if (cell->vt != Kind)
        return false;
    out = WholeOf<Kind>(*cell);
    return true;
}

template <bool Local>
BRANNOC_NODE_CALL bool LengthOfText(const TypedNode& node, const RunContext& context, LONG& out)
{
    const VARIANT* cell = Local ? LocalCell(context, node.index) : StorageOf(context, node.scope, node.index, node.module);
    if (!Local && !cell)
        return false;
    cell = FollowByRefChain(cell);
    BSTR text = nullptr;
    if (cell->vt == VT_BSTR)
        text = cell->bstrVal;
    else if (cell->vt == (VT_BYREF | VT_BSTR) && cell->pbstrVal)
        text = *cell->pbstrVal;
    else
        return false;
    out = static_cast<LONG>(TextLength(text));
    return true;
}

template <bool Local>
BRANNOC_NODE_CALL bool LoadReal(const TypedNode& node, const RunContext& context, double& out)
{
    const VARIANT* cell = Local ? LocalCell(context, node.index) : StorageOf(context, node.scope, node.index, node.module);
    if (!Local && !cell)
        return false;
    if (cell->vt != VT_R8)
        return false;
    out = cell->dblVal;
    return true;
}

BRANNOC_NODE_CALL bool ConstantWhole(const TypedNode& node, const RunContext&, LONG& out)
{
    out = node.wholeValue;
    return true;
}

BRANNOC_NODE_CALL bool ConstantReal(const TypedNode& node, const RunContext&, double& out)
{
    out = node.realValue;
    return true;
}

// ---- Operands ----

template <LeftOperand Left>
BRANNOC_INLINE bool LeftWhole(const TypedNode& node, const RunContext& context, LONG& out)
{
    if constexpr (Left == LeftOperand::kNode) {
        return node.left->whole(*node.left, context, out);
    } else {
        const VARIANT* cell = LocalCell(context, node.leftIndex);
        if (cell->vt != node.leftKind)
            return false;
        out = node.leftKind == VT_I4 ? cell->lVal : cell->iVal;
        return true;
    }
}

template <LeftOperand Left>
BRANNOC_INLINE bool LeftReal(const TypedNode& node, const RunContext& context, double& out)
{
    if constexpr (Left == LeftOperand::kNode) {
        return node.left->real(*node.left, context, out);
    } else if constexpr (Left == LeftOperand::kWholeNode) {
        LONG value = 0;
        if (!node.left->whole(*node.left, context, value))
            return false;
        out = value;
        return true;
    } else {
        const VARIANT* cell = LocalCell(context, node.leftIndex);
        if (cell->vt != VT_R8)
            return false;
        out = cell->dblVal;
        return true;
    }
}

template <RightOperand Right>
BRANNOC_INLINE bool RightWhole(const TypedNode& node, const RunContext& context, LONG& out)
{
    if constexpr (Right == RightOperand::kNode) {
        return node.right->whole(*node.right, context, out);
    } else if constexpr (Right == RightOperand::kConstant) {
        out = node.wholeValue;
        return true;
    } else {
        const VARIANT* cell = LocalCell(context, node.index);
        if (cell->vt != node.variableKind)
            return false;
        out = node.variableKind == VT_I4 ? cell->lVal : cell->iVal;
        return true;
    }
}

template <RightOperand Right>
BRANNOC_INLINE bool RightReal(const TypedNode& node, const RunContext& context, double& out)
{
    if constexpr (Right == RightOperand::kNode) {
        return node.right->real(*node.right, context, out);
    } else if constexpr (Right == RightOperand::kConstant) {
        out = node.realValue;
        return true;
    } else if constexpr (Right == RightOperand::kWholeNode) {
        LONG value = 0;
        if (!node.right->whole(*node.right, context, value))
            return false;
        out = value;
        return true;
    } else if constexpr (Right == RightOperand::kWholeLocal) {
        const VARIANT* cell = LocalCell(context, node.index);
        if (cell->vt != node.variableKind)
            return false;
        out = node.variableKind == VT_I4 ? cell->lVal : cell->iVal;
        return true;
    } else {
        const VARIANT* cell = LocalCell(context, node.index);
        if (cell->vt != VT_R8)
            return false;
        out = cell->dblVal;
        return true;
    }
}

// ---- Array elements ----

// The element of the node's array variable (elements of kind) at the index that comes from another node
// or, read in place, from a local variable (LeftWhole's operands); null when the form gives up.
template <LeftOperand Index>
BRANNOC_INLINE const char* ElementOfNode(const TypedNode& node, const RunContext& context, VARTYPE kind)
{
    LONG index = 0;
    if (!LeftWhole<Index>(node, context, index))
        return nullptr;
    VARIANT* storage = StorageOf(context, node.scope, node.index, node.module);
    return storage ? ElementOfVector(storage, kind, index) : nullptr;
}

template <VARTYPE Kind, LeftOperand Index>
BRANNOC_NODE_CALL bool ElementWhole(const TypedNode& node, const RunContext& context, LONG& out)
{
    const char* element = ElementOfNode<Index>(node, context, Kind);
    if (!element)
        return false;
    if constexpr (Kind == VT_I4)
        out = *reinterpret_cast<const LONG*>(element);
    else
        out = *reinterpret_cast<const SHORT*>(element);
    return true;
}

template <LeftOperand Index>
BRANNOC_NODE_CALL bool ElementReal(const TypedNode& node, const RunContext& context, double& out)
{
    const char* element = ElementOfNode<Index>(node, context, VT_R8);
    if (!element)
        return false;
    out = *reinterpret_cast<const double*>(element);
    return true;
}

// ---- Whole-number operations ----

template <VARTYPE Kind>
constexpr LONG kSmallest = Kind == VT_I2 ? SHRT_MIN : LONG_MIN;

// The operation in kind; comparisons give -1 or 0. False when the result leaves the kind or the divisor
// is zero.
template <Op Operation, VARTYPE Kind>
BRANNOC_INLINE bool ApplyWhole(LONG a, LONG b, LONG& result)
{
    if constexpr (Operation == Op::kAdd) {
        if (__builtin_add_overflow(a, b, &result))
            return false;
    } else if constexpr (Operation == Op::kSubtract) {
        if (__builtin_sub_overflow(a, b, &result))
            return false;
    } else if constexpr (Operation == Op::kMultiply) {
        if (__builtin_mul_overflow(a, b, &result))
            return false;
    } else if constexpr (Operation == Op::kIntegerDivide) {
        if (b == 0 || (b == -1 && a == kSmallest<Kind>))
            return false;
        result = a / b;
    } else if constexpr (Operation == Op::kModulo) {
        if (b == 0)
            return false;
        result = b == -1 ? 0 : a % b;
        return true;
    } else {
        if constexpr (Operation == Op::kAnd)
            result = a & b;
        else if constexpr (Operation == Op::kOr)
            result = a | b;
        else if constexpr (Operation == Op::kXor)
            result = a ^ b;
        else if constexpr (Operation == Op::kEqv)
            result = ~(a ^ b);
        else if constexpr (Operation == Op::kImp)
            result = ~a | b;
        else if constexpr (Operation == Op::kEqual)
            result = a == b ? -1 : 0;
        else if constexpr (Operation == Op::kNotEqual)
            result = a != b ? -1 : 0;
        else if constexpr (Operation == Op::kLess)
            result = a < b ? -1 : 0;
        else if constexpr (Operation == Op::kLessEqual)
            result = a <= b ? -1 : 0;
        else if constexpr (Operation == Op::kGreater)
            result = a > b ? -1 : 0;
        else
            result = a >= b ? -1 : 0;
        return true;
    }
    if constexpr (Kind == VT_I2)
        return result >= SHRT_MIN && result <= SHRT_MAX;
    return true;
}

template <Op Operation, VARTYPE Kind, LeftOperand Left, RightOperand Right>
BRANNOC_NODE_CALL bool WholeBinaryNode(const TypedNode& node, const RunContext& context, LONG& out)
{
    LONG a = 0;
    LONG b = 0;
    return LeftWhole<Left>(node, context, a) && RightWhole<Right>(node, context, b) &&
           ApplyWhole<Operation, Kind>(a, b, out);
}

template <VARTYPE Kind, LeftOperand L, RightOperand Right>
WholeEvaluator PickWhole(Op operation)
{
    // Booleans take only logic and comparisons.
    if (Kind == VT_BOOL && !IsLogic(operation) && !IsComparison(operation))
        return nullptr;
    switch (operation) {
    case Op::kAdd: return &WholeBinaryNode<Op::kAdd, Kind, L, Right>;
    case Op::kSubtract: return &WholeBinaryNode<Op::kSubtract, Kind, L, Right>;
    case Op::kMultiply: return &WholeBinaryNode<Op::kMultiply, Kind, L, Right>;
    case Op::kIntegerDivide: return &WholeBinaryNode<Op::kIntegerDivide, Kind, L, Right>;
    case Op::kModulo: return &WholeBinaryNode<Op::kModulo, Kind, L, Right>;
    case Op::kAnd: return &WholeBinaryNode<Op::kAnd, Kind, L, Right>;
    case Op::kOr: return &WholeBinaryNode<Op::kOr, Kind, L, Right>;
    case Op::kXor: return &WholeBinaryNode<Op::kXor, Kind, L, Right>;
    case Op::kEqv: return &WholeBinaryNode<Op::kEqv, Kind, L, Right>;
    case Op::kImp: return &WholeBinaryNode<Op::kImp, Kind, L, Right>;
    case Op::kEqual: return &WholeBinaryNode<Op::kEqual, Kind, L, Right>;
    case Op::kNotEqual: return &WholeBinaryNode<Op::kNotEqual, Kind, L, Right>;
    case Op::kLess: return &WholeBinaryNode<Op::kLess, Kind, L, Right>;
    case Op::kLessEqual: return &WholeBinaryNode<Op::kLessEqual, Kind, L, Right>;
    case Op::kGreater: return &WholeBinaryNode<Op::kGreater, Kind, L, Right>;
    case Op::kGreaterEqual: return &WholeBinaryNode<Op::kGreaterEqual, Kind, L, Right>;
    default: return nullptr;
    }
}

template <VARTYPE Kind, LeftOperand L>
WholeEvaluator PickWhole(Op operation, RightOperand right)
{
    switch (right) {
    case RightOperand::kNode: return PickWhole<Kind, L, RightOperand::kNode>(operation);
    case RightOperand::kConstant: return PickWhole<Kind, L, RightOperand::kConstant>(operation);
    case RightOperand::kLocal: return PickWhole<Kind, L, RightOperand::kLocal>(operation);
    default: return nullptr; // the whole-as-Double operands belong to Double operations
    }
}

template <VARTYPE Kind>
WholeEvaluator PickWhole(Op operation, LeftOperand left, RightOperand right)
{
    return left == LeftOperand::kLocal ? PickWhole<Kind, LeftOperand::kLocal>(operation, right)
                                       : PickWhole<Kind, LeftOperand::kNode>(operation, right);
}

// ---- Double operations ----

// Arithmetic into a normal result, or a zero that is exact; false otherwise (and for a zero divisor).
template <Op Operation>
BRANNOC_INLINE bool ApplyReal(double a, double b, double& result)
{
#if defined(__SSE2_MATH__)
    // SSE arithmetic rounds each result to double.
    double computed = 0;
#else
    // Stored through memory so that the tests see the value rounded to double, not the x87 unit's wider
    // intermediate.
    volatile double computed = 0;
#endif
    bool exactZero = true;
    if constexpr (Operation == Op::kAdd) {
        computed = a + b;
    } else if constexpr (Operation == Op::kSubtract) {
        computed = a - b;
    } else if constexpr (Operation == Op::kMultiply) {
        computed = a * b;
        exactZero = a == 0 || b == 0;
    } else {
        if (b == 0)
            return false;
        computed = a / b;
        exactZero = a == 0;
    }
    const double rounded = computed;
    if (!std::isnormal(rounded) && !(rounded == 0 && exactZero))
        return false;
    result = rounded;
    return true;
}

template <Op Operation, LeftOperand Left, RightOperand Right>
BRANNOC_NODE_CALL bool RealArithmeticNode(const TypedNode& node, const RunContext& context, double& out)
{
    double a = 0;
    double b = 0;
    return LeftReal<Left>(node, context, a) && RightReal<Right>(node, context, b) && ApplyReal<Operation>(a, b, out);
}

template <Op Operation, LeftOperand Left, RightOperand Right>
BRANNOC_NODE_CALL bool RealComparisonNode(const TypedNode& node, const RunContext& context, LONG& out)
{
    double a = 0;
    double b = 0;
    if (!LeftReal<Left>(node, context, a) || !RightReal<Right>(node, context, b))
        return false;
    bool holds = false;
    if constexpr (Operation == Op::kEqual)
        holds = a == b;
    else if constexpr (Operation == Op::kNotEqual)
        holds = a != b;
    else if constexpr (Operation == Op::kLess)
        holds = a < b;
    else if constexpr (Operation == Op::kLessEqual)
        holds = a <= b;
    else if constexpr (Operation == Op::kGreater)
        holds = a > b;
    else
        holds = a >= b;
    out = holds ? -1 : 0;
    return true;
}

template <LeftOperand L, RightOperand Right>
RealEvaluator PickRealArithmetic(Op operation)
{
    switch (operation) {
    case Op::kAdd: return &RealArithmeticNode<Op::kAdd, L, Right>;
    case Op::kSubtract: return &RealArithmeticNode<Op::kSubtract, L, Right>;
    case Op::kMultiply: return &RealArithmeticNode<Op::kMultiply, L, Right>;
    case Op::kDivide: return &RealArithmeticNode<Op::kDivide, L, Right>;
    default: return nullptr;
    }
}

template <LeftOperand L, RightOperand Right>
WholeEvaluator PickRealComparison(Op operation)
{
    switch (operation) {
    case Op::kEqual: return &RealComparisonNode<Op::kEqual, L, Right>;
    case Op::kNotEqual: return &RealComparisonNode<Op::kNotEqual, L, Right>;
    case Op::kLess: return &RealComparisonNode<Op::kLess, L, Right>;
    case Op::kLessEqual: return &RealComparisonNode<Op::kLessEqual, L, Right>;
    case Op::kGreater: return &RealComparisonNode<Op::kGreater, L, Right>;
    case Op::kGreaterEqual: return &RealComparisonNode<Op::kGreaterEqual, L, Right>;
    default: return nullptr;
    }
}

// ---- Unary operations ----

template <Op Operation, VARTYPE Kind>
BRANNOC_NODE_CALL bool WholeUnaryNode(const TypedNode& node, const RunContext& context, LONG& out)
{
    LONG value = 0;
    if (!node.left->whole(*node.left, context, value))
        return false;
    if constexpr (Operation == Op::kNot) {
        out = ~value;
    } else {
        if (value == kSmallest<Kind>)
            return false;
        out = Operation == Op::kAbs && value >= 0 ? value : -value;
    }
    return true;
}

template <Op Operation>
BRANNOC_NODE_CALL bool RealUnaryNode(const TypedNode& node, const RunContext& context, double& out)
{
    double value = 0;
    if (!node.left->real(*node.left, context, value))
        return false;
    if constexpr (Operation == Op::kNegate)
        out = -value;
    else if constexpr (Operation == Op::kAbs)
        out = value < 0 ? -value : value;
    else if constexpr (Operation == Op::kFix)
        out = std::trunc(value);
    else
        out = std::floor(value);
    return true;
}

BRANNOC_NODE_CALL bool ToRealNode(const TypedNode& node, const RunContext& context, double& out)
{
    LONG value = 0;
    if (!node.left->whole(*node.left, context, value))
        return false;
    out = value;
    return true;
}

} // namespace

WholeEvaluator WholeConstant() { return &ConstantWhole; }
RealEvaluator RealConstant() { return &ConstantReal; }

WholeEvaluator WholeVariable(VARTYPE kind, bool local)
{
    switch (kind) {
    case VT_I2: return local ? &LoadWhole<VT_I2, true> : &LoadWhole<VT_I2, false>;
    case VT_I4: return local ? &LoadWhole<VT_I4, true> : &LoadWhole<VT_I4, false>;
    case VT_BOOL: return local ? &LoadWhole<VT_BOOL, true> : &LoadWhole<VT_BOOL, false>;
    default: return nullptr;
    }
}

WholeEvaluator TextLength(bool local) { return local ? &LengthOfText<true> : &LengthOfText<false>; }

RealEvaluator RealVariable(bool local) { return local ? &LoadReal<true> : &LoadReal<false>; }

WholeEvaluator WholeElement(VARTYPE kind, LeftOperand index)
{
    const bool local = index == LeftOperand::kLocal;
    switch (kind) {
    case VT_I2: return local ? &ElementWhole<VT_I2, LeftOperand::kLocal> : &ElementWhole<VT_I2, LeftOperand::kNode>;
    case VT_I4: return local ? &ElementWhole<VT_I4, LeftOperand::kLocal> : &ElementWhole<VT_I4, LeftOperand::kNode>;
    case VT_BOOL: return local ? &ElementWhole<VT_BOOL, LeftOperand::kLocal> : &ElementWhole<VT_BOOL, LeftOperand::kNode>;
    default: return nullptr;
    }
}

RealEvaluator RealElement(LeftOperand index)
{
    return index == LeftOperand::kLocal ? &ElementReal<LeftOperand::kLocal> : &ElementReal<LeftOperand::kNode>;
}

WholeEvaluator WholeBinary(OperationId op, VARTYPE kind, LeftOperand left, RightOperand right)
{
    // Whole operations read their operands in their own kinds only.
    if (left == LeftOperand::kWholeNode || right == RightOperand::kWholeNode || right == RightOperand::kWholeLocal)
        return nullptr;
    switch (kind) {
    case VT_I2: return PickWhole<VT_I2>(op, left, right);
    case VT_I4: return PickWhole<VT_I4>(op, left, right);
    case VT_BOOL: return PickWhole<VT_BOOL>(op, left, right);
    default: return nullptr;
    }
}

namespace {

template <LeftOperand L>
RealEvaluator PickRealArithmetic(OperationId op, RightOperand right)
{
    switch (right) {
    case RightOperand::kNode: return PickRealArithmetic<L, RightOperand::kNode>(op);
    case RightOperand::kConstant: return PickRealArithmetic<L, RightOperand::kConstant>(op);
    case RightOperand::kLocal: return PickRealArithmetic<L, RightOperand::kLocal>(op);
    case RightOperand::kWholeNode: return PickRealArithmetic<L, RightOperand::kWholeNode>(op);
    case RightOperand::kWholeLocal: return PickRealArithmetic<L, RightOperand::kWholeLocal>(op);
    }
    return nullptr;
}

template <LeftOperand L>
WholeEvaluator PickRealComparison(OperationId op, RightOperand right)
{
    switch (right) {
    case RightOperand::kNode: return PickRealComparison<L, RightOperand::kNode>(op);
    case RightOperand::kConstant: return PickRealComparison<L, RightOperand::kConstant>(op);
    case RightOperand::kLocal: return PickRealComparison<L, RightOperand::kLocal>(op);
    case RightOperand::kWholeNode: return PickRealComparison<L, RightOperand::kWholeNode>(op);
    case RightOperand::kWholeLocal: return PickRealComparison<L, RightOperand::kWholeLocal>(op);
    }
    return nullptr;
}

} // namespace

RealEvaluator RealArithmetic(OperationId op, LeftOperand left, RightOperand right)
{
    switch (left) {
    case LeftOperand::kLocal: return PickRealArithmetic<LeftOperand::kLocal>(op, right);
    case LeftOperand::kWholeNode: return PickRealArithmetic<LeftOperand::kWholeNode>(op, right);
    default: return PickRealArithmetic<LeftOperand::kNode>(op, right);
    }
}

WholeEvaluator RealComparison(OperationId op, LeftOperand left, RightOperand right)
{
    switch (left) {
    case LeftOperand::kLocal: return PickRealComparison<LeftOperand::kLocal>(op, right);
    case LeftOperand::kWholeNode: return PickRealComparison<LeftOperand::kWholeNode>(op, right);
    default: return PickRealComparison<LeftOperand::kNode>(op, right);
    }
}

WholeEvaluator WholeUnary(OperationId op, VARTYPE kind)
{
    if (op == Op::kNot)
        return kind == VT_I2 ? &WholeUnaryNode<Op::kNot, VT_I2> : &WholeUnaryNode<Op::kNot, VT_I4>;
    if (kind == VT_BOOL || (op != Op::kNegate && op != Op::kAbs))
        return nullptr;
    if (op == Op::kNegate)
        return kind == VT_I2 ? &WholeUnaryNode<Op::kNegate, VT_I2> : &WholeUnaryNode<Op::kNegate, VT_I4>;
    return kind == VT_I2 ? &WholeUnaryNode<Op::kAbs, VT_I2> : &WholeUnaryNode<Op::kAbs, VT_I4>;
}

RealEvaluator RealUnary(OperationId op)
{
    switch (op) {
    case Op::kNegate: return &RealUnaryNode<Op::kNegate>;
    case Op::kAbs: return &RealUnaryNode<Op::kAbs>;
    case Op::kFix: return &RealUnaryNode<Op::kFix>;
    case Op::kInt: return &RealUnaryNode<Op::kInt>;
    default: return nullptr;
    }
}

RealEvaluator ToReal() { return &ToRealNode; }

} // namespace brannoc
