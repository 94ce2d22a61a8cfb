#include "frontend/Module.h"

#include "frontend/CharClasses.h"

namespace brannoc {

Module::Module(std::string name, std::string text, int mode)
    : m_name(std::move(name)), m_text(std::move(text)), m_mode(mode)
{
    m_defaultTypes.fill(TypeCode(TypeCode::kVariant));
}

TypeCode Module::DefaultTypeFor(std::string_view name) const
{
    if (name.empty())
        return TypeCode(TypeCode::kVariant);
    const char upper = CharClasses::Get().Upper(name[0]);
    if (upper < 'A' || upper > 'Z')
        return TypeCode(TypeCode::kVariant);
    return m_defaultTypes[static_cast<std::size_t>(upper - 'A')];
}

void Module::SetDefaultType(int letter, TypeCode type)
{
    m_defaultTypes[static_cast<std::size_t>(letter)] = type;
    m_defaultSet[static_cast<std::size_t>(letter)] = true;
}

bool Module::LendState()
{
    if (m_state || !m_compiled)
        return false;
    m_state = std::make_unique<ParseState>();
    m_state->variables = std::move(m_compiled->variables);
    m_state->constants = std::move(m_compiled->constants);
    m_state->userTypes = std::move(m_compiled->userTypes);
    m_state->enums = std::move(m_compiled->enums);
    m_state->procedures = std::move(m_compiled->procedures);
    m_state->names = std::move(m_compiled->names);
    m_state->typesPrepared = true;
    m_state->entry = m_compiled->entry;
    m_state->terminate = m_compiled->terminate;
    return true;
}

void Module::ReturnState()
{
    if (!m_state || !m_compiled)
        return;
    m_compiled->variables = std::move(m_state->variables);
    m_compiled->constants = std::move(m_state->constants);
    m_compiled->userTypes = std::move(m_state->userTypes);
    m_compiled->enums = std::move(m_state->enums);
    m_compiled->procedures = std::move(m_state->procedures);
    m_compiled->names = std::move(m_state->names);
    m_state.reset();
}

} // namespace brannoc
