#include "library/BuiltinTable.h"

#include "library/BuiltinGroups.h"

#include <array>

namespace brannoc {

namespace {

// The records by token number, built once on first use.
class BuiltinIndex final {
public:
    BuiltinIndex()
    {
        for (const BuiltinGroup& group : AllBuiltinGroups()) {
            for (const BuiltinRecord& record : group)
                m_records[static_cast<std::size_t>(TokenNumber(record.keyword))] = &record;
        }
    }
    const BuiltinRecord* Find(Token keyword) const
    {
        const int number = TokenNumber(keyword);
        return number > 0 && number < kTokenCount ? m_records[static_cast<std::size_t>(number)] : nullptr;
    }

private:
    std::array<const BuiltinRecord*, kTokenCount> m_records{};
};

} // namespace

char BuiltinRecord::KindOf(int index) const
{
    // Asked for on every argument of every call: walked without measuring the text first.
    const char* kinds = parameterKinds;
    if (!kinds || *kinds == '\0' || index < 0)
        return parameter_kind::kVariant;
    // Past the last kind, the last one stands for the rest.
    for (int i = 0; i < index && kinds[1] != '\0'; ++i)
        ++kinds;
    return *kinds;
}

std::string_view BuiltinRecord::ParameterName(int index) const
{
    std::string_view names(parameterNames);
    for (int i = 0; !names.empty(); ++i) {
        const std::size_t blank = names.find(' ');
        const std::string_view name = names.substr(0, blank);
        if (i == index || (blank == std::string_view::npos && TakesAnyCount()))
            return name;
        if (blank == std::string_view::npos)
            break;
        names.remove_prefix(blank + 1);
    }
    return {};
}

const BuiltinRecord* FindBuiltin(Token keyword)
{
    static const BuiltinIndex s_index;
    return s_index.Find(keyword);
}

std::span<const BuiltinGroup> AllBuiltinGroups()
{
    static const std::array s_groups = {
#define BRANNOC_LIST_BUILTIN_GROUP(name) name(),
        BRANNOC_BUILTIN_GROUPS(BRANNOC_LIST_BUILTIN_GROUP)
#undef BRANNOC_LIST_BUILTIN_GROUP
    };
    return s_groups;
}

} // namespace brannoc
