#include "BuiltinMembers.h"

#include "library/BuiltinTable.h"

#include <deque>
#include <string>

namespace mktypelib {
namespace {

using brannoc::BuiltinRecord;
using brannoc::ResultKind;

Type ParameterType(char kind)
{
    switch (kind) {
    case '$': return Type::Bstr;
    case '%': return Type::Short;
    case '&': return Type::Long;
    case '!': return Type::Float;
    case '#': return Type::Double;
    case '~': return Type::Bool;
    default: return Type::Variant;
    }
}

Type ResultType(ResultKind kind)
{
    switch (kind) {
    case ResultKind::kNone: return Type::Void;
    case ResultKind::kByte: return Type::Byte;
    case ResultKind::kBoolean: return Type::Bool;
    case ResultKind::kInteger: return Type::Short;
    case ResultKind::kLong: return Type::Long;
    case ResultKind::kSingle: return Type::Float;
    case ResultKind::kDouble: return Type::Double;
    case ResultKind::kCurrency: return Type::Currency;
    case ResultKind::kDate: return Type::Date;
    case ResultKind::kString: return Type::Bstr;
    case ResultKind::kVariant:
    case ResultKind::kArgumentKind: return Type::Variant;
    }
    return Type::Variant;
}

// The names live as long as the tool runs.
const wchar_t* Keep(std::string_view text)
{
    static std::deque<std::wstring> s_names;
    s_names.emplace_back(text.begin(), text.end());
    return s_names.back().c_str();
}

} // namespace

std::vector<Member> BuiltinMembers()
{
    std::vector<Member> members;
    brannoc::ForEachBuiltin([&](const BuiltinRecord& record) {
        Member member{Keep(brannoc::KeywordText(record.keyword)), Kind::Method, brannoc::TokenNumber(record.keyword)};
        member.result = ResultType(record.result);
        member.varArgs = record.TakesAnyCount();
        for (int i = 0; i < record.ParameterCount(); ++i) {
            const bool last = i + 1 == record.ParameterCount();
            const Type type = member.varArgs && last ? Type::VariantArray : ParameterType(record.KindOf(i));
            member.params.push_back(Param{Keep(record.ParameterName(i)), type, record.IsOptional(i) && !member.varArgs});
        }
        members.push_back(std::move(member));
    });
    return members;
}

} // namespace mktypelib
