// Records of user-defined types in procedure bodies: their types, variables and element access.
#include "frontend/BodyParser.h"

#include "frontend/CharClasses.h"

namespace brannoc::body {

const UserType* BodyParser::FindUserType(std::string_view name) const
{
    auto found = m_state.names.find(UpperName(name));
    if (found == m_state.names.end() || found->second.kind != SymbolKind::UserType)
        return nullptr;
    return m_state.userTypes[found->second.index].get();
}

const UserType* BodyParser::UserTypeOf(const std::string& upperName) const
{
    if (const LocalSymbol* local = FindLocal(upperName))
        return local->kind == LocalKind::Variable ? local->userType : nullptr;
    auto global = m_state.names.find(upperName);
    if (global != m_state.names.end()) {
        if (global->second.kind != SymbolKind::Variable)
            return nullptr;
        return m_state.variables[global->second.index]->type.userType;
    }
    return nullptr;
}

IRecordInfo* BodyParser::RecordInfoOf(const UserType* userType)
{
    // FIXME: records get their run-time type with the record layout.
    (void)userType;
    return nullptr;
}

} // namespace brannoc::body
