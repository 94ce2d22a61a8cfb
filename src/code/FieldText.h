#pragma once
// String fields of records read and written where they are stored. A record path with at most one
// index (rec.Name, people(k).City, rec.inner.Label, items(i).tag when tag is a Variant holding a
// string) is walked without the value stack: the field's characters are read as a view, and a string
// is written into the field's own block (a String field), over its characters (a fixed-length String
// field: padded with spaces or cut to its length) or into a Variant field that holds a string or a
// value owning nothing. Like the other direct forms it either does exactly what the general code does
// or gives up without any effect (an index outside the bounds, an array without storage, a Variant
// field holding another kind), and the statement then runs its general code.
#include "code/FieldWalk.h"
#include "code/TypedExpression.h"
#include "values/RecordType.h"

#include <string_view>

namespace brannoc {

struct RecordPath;

// The whole number (Integer or Long) in local slot `slot` of the running frame, following by-reference
// cells; false when the slot holds another kind.
[[nodiscard, gnu::always_inline]] inline bool ReadWholeLocal(const RunContext& context, int slot, LONG& value)
{
    const VARIANT* cell = FollowByRefChain(static_cast<VARIANT*>(context.activation->Locals()) + slot);
    if (cell->vt == VT_I4)
        value = cell->lVal;
    else if (cell->vt == VT_I2)
        value = cell->iVal;
    else
        return false;
    return true;
}

// Whether an index that is this single op, a local variable that is not a Variant, is read in place
// (ReadWholeLocal) rather than computed.
[[nodiscard]] inline bool IsIndexReadInPlace(const ExprOp& op)
{
    return op.code == ExprOpCode::kLoad && op.scope == StorageScope::Local && !op.type.IsVariant();
}

// The Long at byte offset `offset` of the running frame: an index the register form computed there.
[[nodiscard, gnu::always_inline]] inline LONG ComputedPosition(const RunContext& context, int offset)
{
    return *reinterpret_cast<const LONG*>(static_cast<const char*>(context.activation->Locals()) + offset);
}

class FieldText final {
public:
    // Compiles record path `path` of procedure whose index (when it has one) is computed by the ops
    // [indexFirst, indexFirst + indexCount). False when the path is not of that shape.
    bool Compile(int path, const ExprOp* indexFirst, std::size_t indexCount, const CompiledProcedure& procedure);
    // The same for a path with an index that the register form has computed: the Long at byte offset
    // `positionOffset` of the running frame.
    bool CompileAt(int path, int positionOffset, const CompiledProcedure& procedure);
    bool IsReady() const noexcept { return m_walk.IsReady(); }
    // The field's text; false when it gave up.
    [[nodiscard]] bool Read(const RunContext& context, std::wstring_view& text) const;
    // Stores text into the field (text may lie inside the field itself). `stored` is false, with
    // nothing changed, when it gave up; the answer is false after raising (out of memory).
    [[nodiscard]] bool Assign(const RunContext& context, std::wstring_view text, bool& stored) const;

private:
    // The field's storage; null when the walk gave up.
    [[gnu::always_inline]] char* FindField(const RunContext& context) const
    {
        LONG position = 0;
        if (m_walk.HasIndex() && !ReadPosition(context, position))
            return nullptr;
        return m_walk.FindField(context, position);
    }
    [[nodiscard, gnu::always_inline]] bool ReadPosition(const RunContext& context, LONG& position) const
    {
        if (m_positionOffset > 0) {
            position = ComputedPosition(context, m_positionOffset);
            return true;
        }
        if (m_localPosition < 0)
            return m_position.EvaluateWhole(context, position);
        return ReadWholeLocal(context, m_localPosition, position);
    }

    FieldWalk m_walk;
    // The index: a Long the register form computed (its frame offset; 0: none), a local whole variable
    // read in place (-1: none), or its typed form.
    int m_positionOffset = 0;
    int m_localPosition = -1;
    TypedExpression m_position;
};

} // namespace brannoc
