#include "code/TextSelection.h"

#include "code/Statements.h"

namespace brannoc {

int TextSelection::Part(const RunContext& context) const
{
    std::wstring_view selector;
    if (!m_selector.Read(context, selector))
        return 0;
    return m_statement.PartOfText(selector);
}

} // namespace brannoc
