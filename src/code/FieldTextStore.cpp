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
