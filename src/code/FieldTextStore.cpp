#include "code/FieldTextStore.h"

#include "code/RecordAccess.h"

namespace brannoc {

bool FieldTextStore::Compile(const Expression& code, int path, const CompiledProcedure& procedure)
{
    const std::vector<ExprOp>& ops = code.ops;
    const bool indexed = procedure.RecordPathAt(path).indexCount > 0;
    // The index's code ends where the value's can begin.
    for (std::size_t split = indexed ? 1 : 0; split < ops.size(); ++split) {
        if (m_target.Compile(path, ops.data(), split, procedure) &&
            m_value.Compile(ops.data() + split, ops.size() - split, procedure))
            return true;
        if (!indexed)
            break;
    }
    m_target = FieldText();
    return false;
}

std::size_t FieldTextStore::ValueStart(const Expression& code, int path, const CompiledProcedure& procedure)
{
    if (procedure.RecordPathAt(path).indexCount != 1)
        return 0;
    TextOperand value;
    for (std::size_t split = 1; split < code.ops.size(); ++split) {
        if (value.Compile(code.ops.data() + split, code.ops.size() - split, procedure))
            return split;
    }
    return 0;
}

bool FieldTextStore::CompileAt(const Expression& code, std::size_t valueStart, int path, int positionOffset,
                               const CompiledProcedure& procedure)
{
    if (valueStart == 0 || valueStart >= code.ops.size() || !m_target.CompileAt(path, positionOffset, procedure) ||
        !m_value.Compile(code.ops.data() + valueStart, code.ops.size() - valueStart, procedure)) {
        m_target = FieldText();
        return false;
    }
    return true;
}

bool FieldTextStore::Run(const RunContext& context) const
{
    std::wstring_view text;
    if (!m_value.ReadInLine(context, text))
        return false;
    bool stored = false;
    if (!m_target.Assign(context, text, stored))
        return true;
    return stored;
}

} // namespace brannoc
