#include "code/TypedExpression.h"

#include "code/BuiltinCall.h"
#include "code/NumericKinds.h"
#include "frontend/Token.h"
#include "library/BuiltinTable.h"

#include <cstdint>

namespace brannoc {

namespace {

LONG WholeOfConstant(const VARIANT& value)
{
    switch (value.vt) {
    case VT_I2: return value.iVal;
    case VT_BOOL: return value.boolVal;
    default: return value.lVal;
    }
}

// Builds the node tree from postfix code. Nodes refer to each other by position while the list grows
// and get their pointers once it is complete.
class TreeBuilder final {
public:
    TreeBuilder(const CompiledProcedure& procedure, const std::vector<VARTYPE>* assumed)
        : m_procedure(procedure), m_assumed(assumed)
    {
    }

    bool Add(const ExprOp& source, std::size_t position);
    // The finished tree (the nodes and the root), or false when the code left more or less than one value.
    bool Finish(std::vector<TypedNode>& nodes, const TypedNode*& root);

private:
    // Leaves that a binary node can take in as its right operand.
    enum class Leaf : std::uint8_t { kNone, kConstant, kLocal };
    struct Built {
        TypedNode node;
        int left = -1;
        int right = -1;
        Leaf leaf = Leaf::kNone;
    };

    int Push(const Built& built);
    bool Constant(const ExprOp& source);
    bool Load(const ExprOp& source, std::size_t position);
    bool Element(const ExprOp& source);
    // Len of a String or Variant variable.
    bool Length(const ExprOp& source);
    bool Binary(OperationId op);
    bool Unary(OperationId op);
    // The node at position becomes a Double (a conversion node above a whole one).
    int AsReal(int position);
    // Takes the right operand into the binary node when it is a constant or a local variable leaf that
    // needs no conversion; answers where the operand comes from.
    RightOperand FuseRight(int right, bool real, Built& binary);
    // The same for a left operand that is a local variable of the operation's kind (its leaf stays
    // behind, unused).
    LeftOperand FuseLeft(int left, bool real, Built& binary);

    const CompiledProcedure& m_procedure;
    const std::vector<VARTYPE>* m_assumed;
    std::vector<Built> m_built;
    int m_stack[TypedExpression::kMaxDepth] = {};
    int m_depth = 0;
};

int TreeBuilder::Push(const Built& built)
{
    m_built.push_back(built);
    return static_cast<int>(m_built.size()) - 1;
}

bool TreeBuilder::Add(const ExprOp& source, std::size_t position)
{
    switch (source.code) {
    case ExprOpCode::kConstant: return Constant(source);
    case ExprOpCode::kLoad: return Load(source, position);
    case ExprOpCode::kElement: return Element(source);
    case ExprOpCode::kBuiltin: return Length(source);
    case ExprOpCode::kBinary: return Binary(source.op);
    case ExprOpCode::kUnary: return Unary(source.op);
    default: return false;
    }
}

bool TreeBuilder::Constant(const ExprOp& source)
{
    const VARIANT& value = m_procedure.ConstantAt(source.index).Raw();
    if (m_depth == TypedExpression::kMaxDepth)
        return false;
    Built built;
    built.leaf = Leaf::kConstant;
    built.node.kind = value.vt;
    if (value.vt == VT_R8) {
        built.node.real = RealConstant();
        built.node.realValue = value.dblVal;
    } else if (value.vt == VT_I2 || value.vt == VT_I4 || value.vt == VT_BOOL) {
        built.node.whole = WholeConstant();
        built.node.wholeValue = WholeOfConstant(value);
    } else {
        return false;
    }
    m_stack[m_depth++] = Push(built);
    return true;
}

bool TreeBuilder::Load(const ExprOp& source, std::size_t position)
{
    VARTYPE kind = FixedKind(source.type);
    if (kind == VT_EMPTY && source.type.IsVariant() && m_assumed && position < m_assumed->size())
        kind = (*m_assumed)[position];
    if ((kind != VT_I2 && kind != VT_I4 && kind != VT_R8 && kind != VT_BOOL) || m_depth == TypedExpression::kMaxDepth)
        return false;
    const bool local = source.scope == StorageScope::Local;
    Built built;
    built.leaf = local ? Leaf::kLocal : Leaf::kNone;
    built.node.kind = kind;
    built.node.variableKind = kind;
    built.node.scope = source.scope;
    built.node.index = source.index;
    built.node.module = source.module;
    if (kind == VT_R8)
        built.node.real = RealVariable(local);
    else
        built.node.whole = WholeVariable(kind, local);
    m_stack[m_depth++] = Push(built);
    return true;
}

bool TreeBuilder::Length(const ExprOp& source)
{
    const BuiltinCall& call = m_procedure.BuiltinCallAt(source.index);
    if (!IsLazyBuiltinCall(call, Token::Len, 1) || m_depth == TypedExpression::kMaxDepth)
        return false;
    const BuiltinArgumentCode& argument = call.arguments[0];
    if (argument.code.ops.size() != 1)
        return false;
    const ExprOp& text = argument.code.ops[0];
    if ((text.code != ExprOpCode::kLoad && text.code != ExprOpCode::kLoadRef) || text.type.IsArray() ||
        (!text.type.IsString() && !text.type.IsFixedString() && !text.type.IsVariant()))
        return false;
    const bool local = text.scope == StorageScope::Local;
    Built built;
    built.node.kind = VT_I4;
    built.node.scope = text.scope;
    built.node.index = text.index;
    built.node.module = text.module;
    built.node.whole = TextLength(local);
    m_stack[m_depth++] = Push(built);
    return true;
}

bool TreeBuilder::Element(const ExprOp& source)
{
    const VARTYPE kind = FixedKind(source.type);
    if (source.count != 1 || m_depth < 1 || kind == VT_EMPTY || !IsWhole(m_built[m_stack[m_depth - 1]].node.kind))
        return false;
    Built built;
    built.node.kind = kind;
    built.node.scope = source.scope;
    built.node.index = source.index;
    built.node.module = source.module;
    // A local index is read by the element node itself.
    const LeftOperand index = FuseLeft(m_stack[m_depth - 1], false, built);
    if (kind == VT_R8)
        built.node.real = RealElement(index);
    else
        built.node.whole = WholeElement(kind, index);
    built.left = index == LeftOperand::kNode ? m_stack[m_depth - 1] : -1;
    m_stack[m_depth - 1] = Push(built);
    return true;
}

int TreeBuilder::AsReal(int position)
{
    if (m_built[position].node.kind == VT_R8)
        return position;
    Built built;
    built.node.kind = VT_R8;
    built.node.real = ToReal();
    built.left = position;
    return Push(built);
}

RightOperand TreeBuilder::FuseRight(int right, bool real, Built& binary)
{
    // Only a leaf pushed just before the operator can be taken in: nothing else refers to it.
    if (right != static_cast<int>(m_built.size()) - 1)
        return RightOperand::kNode;
    const Built& leaf = m_built[right];
    if (leaf.leaf == Leaf::kConstant) {
        if (leaf.node.kind == VT_R8 && !real)
            return RightOperand::kNode;
        binary.node.wholeValue = leaf.node.wholeValue;
        binary.node.realValue = leaf.node.kind == VT_R8 ? leaf.node.realValue : leaf.node.wholeValue;
        m_built.pop_back();
        return RightOperand::kConstant;
    }
    if (leaf.leaf != Leaf::kLocal || real != (leaf.node.kind == VT_R8))
        return RightOperand::kNode;
    binary.node.index = leaf.node.index;
    binary.node.variableKind = leaf.node.kind;
    m_built.pop_back();
    return RightOperand::kLocal;
}

LeftOperand TreeBuilder::FuseLeft(int left, bool real, Built& binary)
{
    const Built& leaf = m_built[left];
    if (leaf.leaf != Leaf::kLocal || real != (leaf.node.kind == VT_R8))
        return LeftOperand::kNode;
    binary.node.leftIndex = leaf.node.index;
    binary.node.leftKind = leaf.node.kind;
    return LeftOperand::kLocal;
}

bool TreeBuilder::Binary(OperationId op)
{
    if (m_depth < 2)
        return false;
    const int left = m_stack[m_depth - 2];
    const int right = m_stack[m_depth - 1];
    const VARTYPE leftKind = m_built[left].node.kind;
    const VARTYPE rightKind = m_built[right].node.kind;
    if (op == OperationId::kPower || op == OperationId::kConcatenate || op == OperationId::kLike ||
        op == OperationId::kIs)
        return false;
    Built built;
    int top = -1;
    if (IsWhole(leftKind) && IsWhole(rightKind) && op != OperationId::kDivide) {
        const VARTYPE kind = leftKind == VT_I2 && rightKind == VT_I2 ? VT_I2 : VT_I4;
        const RightOperand from = FuseRight(right, false, built);
        const LeftOperand source = FuseLeft(left, false, built);
        built.node.whole = WholeBinary(op, kind, source, from);
        built.node.kind = IsComparison(op) ? static_cast<VARTYPE>(VT_BOOL) : kind;
        built.left = source == LeftOperand::kNode ? left : -1;
        built.right = from == RightOperand::kNode ? right : -1;
    } else if (leftKind == VT_BOOL && rightKind == VT_BOOL) {
        const RightOperand from = FuseRight(right, false, built);
        const LeftOperand source = FuseLeft(left, false, built);
        built.node.whole = WholeBinary(op, VT_BOOL, source, from);
        built.node.kind = VT_BOOL;
        built.left = source == LeftOperand::kNode ? left : -1;
        built.right = from == RightOperand::kNode ? right : -1;
    } else if ((leftKind == VT_R8 || IsWhole(leftKind)) && (rightKind == VT_R8 || IsWhole(rightKind))) {
        if (!IsFourRules(op) && !IsComparison(op))
            return false;
        RightOperand from = FuseRight(right, true, built);
        LeftOperand source = FuseLeft(left, true, built);
        // A whole operand is read as a Double by the operation itself: a local in place, another node
        // through its whole evaluator.
        if (from == RightOperand::kNode && IsWhole(rightKind)) {
            const Built& leaf = m_built[right];
            if (right == static_cast<int>(m_built.size()) - 1 && leaf.leaf == Leaf::kLocal) {
                built.node.index = leaf.node.index;
                built.node.variableKind = leaf.node.kind;
                m_built.pop_back();
                from = RightOperand::kWholeLocal;
            } else {
                from = RightOperand::kWholeNode;
            }
        }
        if (source == LeftOperand::kNode && IsWhole(leftKind))
            source = LeftOperand::kWholeNode;
        built.left = source == LeftOperand::kLocal ? -1 : source == LeftOperand::kWholeNode ? left : AsReal(left);
        built.right = from == RightOperand::kNode ? AsReal(right) : from == RightOperand::kWholeNode ? right : -1;
        if (IsComparison(op)) {
            built.node.whole = RealComparison(op, source, from);
            built.node.kind = VT_BOOL;
        } else {
            built.node.real = RealArithmetic(op, source, from);
            built.node.kind = VT_R8;
        }
    } else {
        return false;
    }
    if (!built.node.whole && !built.node.real)
        return false;
    top = Push(built);
    --m_depth;
    m_stack[m_depth - 1] = top;
    return true;
}

bool TreeBuilder::Unary(OperationId op)
{
    if (m_depth < 1)
        return false;
    const int operand = m_stack[m_depth - 1];
    const VARTYPE kind = m_built[operand].node.kind;
    Built built;
    built.left = operand;
    built.node.kind = kind;
    if (kind == VT_R8) {
        built.node.real = RealUnary(op);
    } else if (IsWhole(kind)) {
        // Whole numbers are their own Fix and Int.
        if (op == OperationId::kFix || op == OperationId::kInt)
            return true;
        built.node.whole = WholeUnary(op, kind);
    } else if (kind == VT_BOOL && op == OperationId::kNot) {
        built.node.whole = WholeUnary(op, kind);
    }
    if (!built.node.whole && !built.node.real)
        return false;
    m_stack[m_depth - 1] = Push(built);
    return true;
}

bool TreeBuilder::Finish(std::vector<TypedNode>& nodes, const TypedNode*& root)
{
    if (m_depth != 1)
        return false;
    nodes.clear();
    nodes.reserve(m_built.size());
    for (const Built& built : m_built)
        nodes.push_back(built.node);
    for (std::size_t i = 0; i < m_built.size(); ++i) {
        nodes[i].left = m_built[i].left >= 0 ? &nodes[static_cast<std::size_t>(m_built[i].left)] : nullptr;
        nodes[i].right = m_built[i].right >= 0 ? &nodes[static_cast<std::size_t>(m_built[i].right)] : nullptr;
    }
    root = &nodes[static_cast<std::size_t>(m_stack[0])];
    return true;
}

} // namespace

bool TypedExpression::Compile(const Expression& code, const CompiledProcedure& procedure,
                              const std::vector<VARTYPE>* assumed)
{
    m_root = nullptr;
    TreeBuilder builder(procedure, assumed);
    for (std::size_t position = 0; position < code.ops.size(); ++position) {
        if (!builder.Add(code.ops[position], position))
            return false;
    }
    return builder.Finish(m_nodes, m_root);
}

} // namespace brannoc
