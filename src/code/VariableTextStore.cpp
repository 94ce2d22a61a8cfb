#include "code/VariableTextStore.h"

namespace brannoc {

bool VariableTextStore::Run(const RunContext& context) const
{
    std::wstring_view text;
    return m_value.ReadInLine(context, text) && StoreTextInVariable(context, m_target, text);
}

} // namespace brannoc
