#pragma once
// The typed form of a pure numeric expression whose declared types fix every kind: Integer, Long and
// Boolean values as 32-bit whole numbers, Double values as doubles. It is compiled into a tree of
// TypedNodes, each with the one evaluator its operation and operand kinds call for; a right operand
// that is a constant or a local variable is read by its operator itself. Evaluation neither reads nor
// writes a tag except to check that a variable holds the kind its declaration promises.
//
// Like FastExpression (which uses this form when it can), evaluation gives exactly the general code's
// value or gives up without any effect.
#include "code/TypedNodes.h"

#include <utility>
#include <vector>

namespace brannoc {

class TypedExpression final {
public:
    TypedExpression() = default;
    // The nodes point at each other: a copy would point into the original, while a move keeps them
    // where they are.
    TypedExpression(const TypedExpression&) = delete;
    TypedExpression& operator=(const TypedExpression&) = delete;
    TypedExpression(TypedExpression&& other) noexcept
        : m_nodes(std::move(other.m_nodes)), m_root(std::exchange(other.m_root, nullptr))
    {
    }
    TypedExpression& operator=(TypedExpression&& other) noexcept
    {
        m_nodes = std::move(other.m_nodes);
        m_root = std::exchange(other.m_root, nullptr);
        return *this;
    }

    // Compiles code when every value in it has a kind fixed by the declarations and every op has a
    // typed form. A load of a Variant variable takes the kind that assumed gives for its op (one entry
    // per op of code; VT_EMPTY or no list: no typed form), which the load then checks each time like
    // a declared kind. False otherwise.
    bool Compile(const Expression& code, const CompiledProcedure& procedure,
                 const std::vector<VARTYPE>* assumed = nullptr);
    bool IsReady() const noexcept { return m_root != nullptr; }
    // VT_I2, VT_I4, VT_R8 or VT_BOOL.
    VARTYPE ResultKind() const noexcept { return m_root ? m_root->kind : static_cast<VARTYPE>(VT_EMPTY); }

    // Evaluates into result (of ResultKind). False when it gave up; nothing was changed.
    [[nodiscard]] bool Evaluate(const RunContext& context, VARIANT& result) const
    {
        const TypedNode& root = *m_root;
        if (root.kind == VT_R8) {
            double value = 0;
            if (!root.real(root, context, value))
                return false;
            result.vt = VT_R8;
            result.dblVal = value;
            return true;
        }
        LONG value = 0;
        if (!root.whole(root, context, value))
            return false;
        result.vt = root.kind;
        if (root.kind == VT_I4)
            result.lVal = value;
        else
            result.iVal = static_cast<SHORT>(value);
        return true;
    }
    // The value of a whole-number (or of a Double) form; false when it gave up, and then `out` may have
    // been written: callers evaluate into a temporary.
    [[nodiscard]] bool EvaluateWhole(const RunContext& context, LONG& out) const
    {
        return m_root->whole(*m_root, context, out);
    }
    [[nodiscard]] bool EvaluateReal(const RunContext& context, double& out) const
    {
        return m_root->real(*m_root, context, out);
    }
    // The truth of the expression as a condition; false when it gave up.
    [[nodiscard]] bool EvaluateCondition(const RunContext& context, bool& truth) const
    {
        const TypedNode& root = *m_root;
        if (root.kind == VT_R8) {
            double value = 0;
            if (!root.real(root, context, value))
                return false;
            truth = value != 0;
            return true;
        }
        LONG value = 0;
        if (!root.whole(root, context, value))
            return false;
        truth = value != 0;
        return true;
    }

    static constexpr int kMaxDepth = 16;

private:
    std::vector<TypedNode> m_nodes;
    const TypedNode* m_root = nullptr;
};

} // namespace brannoc
