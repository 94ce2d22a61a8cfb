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

} // namespace brannoc
