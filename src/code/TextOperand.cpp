#include "code/TextOperand.h"

#include "code/RecordAccess.h"

#include <cwchar>

namespace brannoc {

namespace {

// An element op that yields one String (or a Variant that may hold one).
bool IsTextElement(const ExprOp& op)
{
    return op.code == ExprOpCode::kElement && op.count == 1 && !op.type.IsArray() &&
           (op.type.IsVariant() || op.type.ValueTag() == VT_BSTR);
}

} // namespace

bool TextOperand::IsIndexedText(const ExprOp& last, const CompiledProcedure& procedure)
{
    return IsTextElement(last) ||
           (last.code == ExprOpCode::kLoadPath && procedure.RecordPathAt(last.index).indexCount == 1);
}

bool TextOperand::CompileAt(const ExprOp& last, int positionOffset, const CompiledProcedure& procedure)
{
    *this = TextOperand();
    if (positionOffset <= 0)
        return false;
    if (last.code == ExprOpCode::kLoadPath) {
        if (!m_field.CompileAt(last.index, positionOffset, procedure))
            return false;
        m_kind = Kind::kField;
        return true;
    }
    if (!IsTextElement(last))
        return false;
    m_kind = Kind::kElement;
    m_positionOffset = positionOffset;
    m_scope = last.scope;
    m_index = last.index;
    m_module = last.module;
    return true;
}

bool TextOperand::Compile(const ExprOp* first, std::size_t count, const CompiledProcedure& procedure)
{
    m_kind = Kind::kNone;
    m_localPosition = -1;
    m_positionOffset = 0;
    if (count == 0)
        return false;
    const ExprOp& last = first[count - 1];
    if (count == 1 && last.code == ExprOpCode::kConstant) {
        const VARIANT& constant = procedure.ConstantAt(last.index).Raw();
        if (constant.vt != VT_BSTR || !WholeCharacters(constant.bstrVal, m_constant))
            return false;
        m_kind = Kind::kConstant;
        return true;
    }
    if (count == 1 && (last.code == ExprOpCode::kLoad || last.code == ExprOpCode::kLoadRef)) {
        if (last.type.IsArray() || (!last.type.IsVariant() && last.type.ValueTag() != VT_BSTR))
            return false;
        m_kind = Kind::kVariable;
    } else if (count == 1 && last.code == ExprOpCode::kBuiltin) {
        if (!m_slice.Compile(last.index, procedure))
            return false;
        m_kind = Kind::kSlice;
    } else if (last.code == ExprOpCode::kLoadPath) {
        if (!m_field.Compile(last.index, first, count - 1, procedure))
            return false;
        m_kind = Kind::kField;
        return true;
    } else if (IsTextElement(last)) {
        // The op's type is the element's (a Variant for a Variant variable, which may hold an array).
        Expression position;
        position.ops.assign(first, first + count - 1);
        if (!CompileWholeForm(position, procedure, m_position))
            return false;
        // An index that is a local whole variable is read in place.
        if (position.ops.size() == 1 && IsIndexReadInPlace(position.ops.back()))
            m_localPosition = position.ops.back().index;
        m_kind = Kind::kElement;
    } else {
        return false;
    }
    m_scope = last.scope;
    m_index = last.index;
    m_module = last.module;
    return true;
}

bool TextOperand::ReadElsewhere(const RunContext& context, std::wstring_view& text) const
{
    switch (m_kind) {
    case Kind::kConstant:
        text = m_constant;
        return true;
    case Kind::kVariable: {
        const VARIANT* storage = StorageOf(context, m_scope, m_index, m_module);
        return storage && StoredText(*FollowByRefChain(storage), text);
    }
    case Kind::kSlice:
        return m_slice.Evaluate(context, text);
    case Kind::kField:
        return m_field.Read(context, text);
    case Kind::kElement: {
        LONG position = 0;
        if (m_positionOffset > 0) {
            position = ComputedPosition(context, m_positionOffset);
        } else if (m_localPosition >= 0) {
            if (!ReadWholeLocal(context, m_localPosition, position))
                return false;
        } else if (!m_position.EvaluateWhole(context, position)) {
            return false;
        }
        VARIANT* storage = StorageOf(context, m_scope, m_index, m_module);
        if (!storage)
            return false;
        if (const char* element = ElementOfVector(storage, VT_BSTR, position)) {
            return WholeCharacters(*reinterpret_cast<const BSTR*>(element), text);
        }
        const char* element = ElementOfVector(storage, VT_VARIANT, position);
        return element && StoredText(*FollowByRefChain(reinterpret_cast<const VARIANT*>(element)), text);
    }
    default:
        return false;
    }
}

bool TextComparison::Compile(const Expression& code, const CompiledProcedure& procedure)
{
    const std::vector<ExprOp>& ops = code.ops;
    if (ops.size() < 3 || ops.back().code != ExprOpCode::kBinary || !IsComparison(ops.back().op))
        return false;
    // The left operand ends where the right one can begin.
    const std::size_t operands = ops.size() - 1;
    for (std::size_t split = 1; split < operands; ++split) {
        if (m_left.Compile(ops.data(), split, procedure) && m_right.Compile(ops.data() + split, operands - split, procedure)) {
            m_op = ops.back().op;
            m_rightStart = split;
            return true;
        }
    }
    m_left = TextOperand();
    return false;
}

} // namespace brannoc
