#pragma once
// The evaluators of the typed form (TypedExpression): a tree of nodes, each carrying the one function
// that computes it, chosen when the expression is compiled for its operation, the kinds of its operands
// and where its right operand comes from. Evaluating a node neither switches on the operation nor
// re-reads a kind the compile fixed; it only checks that variables hold the kinds their declarations
// (or the Variant assumptions) promise, and gives up - without any effect - where the exact result
// would leave the fast kinds (overflow, a zero divisor, a floating result that is not a normal number).
#include "code/ProcedureBody.h"

namespace brannoc {

struct TypedNode;

// Evaluators take their three arguments in registers: a node's call costs little more than a jump.
#define BRANNOC_NODE_CALL __attribute__((regparm(3)))

// Whole-number nodes (Integer, Long, Boolean values as 32-bit numbers) and Double nodes.
using WholeEvaluator = bool(BRANNOC_NODE_CALL*)(const TypedNode& node, const RunContext& context, LONG& out);
using RealEvaluator = bool(BRANNOC_NODE_CALL*)(const TypedNode& node, const RunContext& context, double& out);

// Where a binary node's right operand comes from: another node, the node's constant, or a local
// variable read in place; its left operand: another node or a local variable. Double operations also
// read a whole-number node (kWholeNode) or local (kWholeLocal) as a Double without a conversion node.
enum class RightOperand : std::uint8_t { kNode, kConstant, kLocal, kWholeNode, kWholeLocal };
enum class LeftOperand : std::uint8_t { kNode, kLocal, kWholeNode };

struct TypedNode {
    // The node's result kind: VT_I2, VT_I4 or VT_BOOL (evaluated by `whole`) or VT_R8 (by `real`).
    VARTYPE kind = VT_I4;
    WholeEvaluator whole = nullptr;
    RealEvaluator real = nullptr;
    const TypedNode* left = nullptr;
    const TypedNode* right = nullptr;
    // Variables: where they live, and the kind their storage must hold (a local right operand too).
    StorageScope scope = StorageScope::Local;
    int index = 0;
    const Module* module = nullptr;
    VARTYPE variableKind = VT_EMPTY;
    // Constants (a constant right operand too).
    LONG wholeValue = 0;
    double realValue = 0;
    // A local variable as the left operand: its index and the kind it must hold.
    int leftIndex = 0;
    VARTYPE leftKind = VT_EMPTY;
};

// Leaves.
WholeEvaluator WholeConstant();
RealEvaluator RealConstant();
// A variable holding kind (VT_I2, VT_I4, VT_BOOL; VT_R8 for the real form); local or not.
WholeEvaluator WholeVariable(VARTYPE kind, bool local);
RealEvaluator RealVariable(bool local);
// Len of a String variable, or of a Variant variable holding a string (any other value gives up).
WholeEvaluator TextLength(bool local);
// The element of a one-dimensional array variable of kind at the whole index of `left`, or (index
// kLocal) of the local variable `leftIndex` of kind `leftKind`.
WholeEvaluator WholeElement(VARTYPE kind, LeftOperand index);
RealEvaluator RealElement(LeftOperand index);

// Binary nodes: null when the combination has no evaluator. `kind` is the whole kind the operation works
// in (VT_I2, VT_I4, or VT_BOOL for logic and comparisons of Booleans).
WholeEvaluator WholeBinary(OperationId op, VARTYPE kind, LeftOperand left, RightOperand right);
RealEvaluator RealArithmetic(OperationId op, LeftOperand left, RightOperand right);
WholeEvaluator RealComparison(OperationId op, LeftOperand left, RightOperand right);
// Unary nodes; null when there is none.
WholeEvaluator WholeUnary(OperationId op, VARTYPE kind);
RealEvaluator RealUnary(OperationId op);
// A whole `left` read as a Double.
RealEvaluator ToReal();

} // namespace brannoc
