// Names that the host's extensions and the modules' type-library references give: they come after the
// module's own names and the public names of the modules it reaches, before the built-in names; and the
// creatable classes of referenced libraries after New.
#include "frontend/BodyParser.h"

#include "code/MemberCall.h"
#include "frontend/CharClasses.h"
#include "library/BuiltinTable.h"
#include "values/Variant.h"

namespace brannoc::body {

bool BodyParser::AtExtensionName(const std::string& upperName, ExtensionName& found) const
{
    ModuleSource* source = m_module.Source();
    if (!source || FindLocal(upperName) || m_state.names.count(upperName) != 0 || IsDeclaredVariable(upperName) ||
        FindProcedure(upperName))
        return false;
    found = source->FindExtensionName(m_module.Name(), upperName);
    return found.kind != ExtensionName::Kind::None;
}

// (after the name) constant | object | Library {"." name} | member [arguments] | member "(" arguments ")":
// a name the host's extensions or the type-library references give
bool BodyParser::ParseExtensionName(const std::string& name, const ExtensionName& found, MemberAccess access,
                                    Expression& out)
{
    m_factorClass = nullptr;
    switch (found.kind) {
    case ExtensionName::Kind::Constant: {
        Variant value;
        value.SetLong(found.constant);
        AppendConstant(out, std::move(value));
        return true;
    }
    case ExtensionName::Kind::Library: {
        // Library.Constant or Library.Enumeration.Constant: a constant of that reference.
        std::string qualified = name;
        const char* start = m_namePosition;
        while (m_lexer.Kind() == Token::Dot && m_lexer.PreviousFollowingChar() == '.') {
            m_lexer.NextToken();
            if (!IsNameToken(m_lexer.Kind())) {
                m_lexer.SignalError(CompileMessage::ExpectingAConstantVarNameOrFunctionName);
                return false;
            }
            qualified += '.';
            qualified += m_lexer.Text();
            m_lexer.NextToken();
        }
        const ExtensionName constant = m_module.Source()->FindExtensionName(m_module.Name(), qualified);
        if (constant.kind != ExtensionName::Kind::Constant) {
            m_lexer.SignalErrorAt(CompileMessage::MethodOrPropertyNotFound, {}, start);
            return false;
        }
        Variant value;
        value.SetLong(constant.constant);
        AppendConstant(out, std::move(value));
        return true;
    }
    case ExtensionName::Kind::Object: {
        Variant object;
        object.SetObject(found.object, true);
        AppendConstant(out, std::move(object));
        return true;
    }
    case ExtensionName::Kind::Member: {
        Variant object;
        object.SetObject(found.object, true);
        AppendConstant(out, std::move(object));
        break;
    }
    case ExtensionName::Kind::VariableMember: {
        VariableRef ref;
        bool declared = false;
        if (!ResolveVariable(found.variable, TypeCode(), ref, declared))
            return false;
        AppendLoad(out, ref, ObjectVariable{});
        break;
    }
    default: return false;
    }
    // A member of the extension's object, looked up by name when the call runs.
    MemberSite site;
    site.name = name;
    site.wideName = Widen(name);
    site.access = access;
    out.ops.push_back(ExprOp{ExprOpCode::kEmpty});
    int count = 0;
    if (!ParseLateArguments(access, site, out, count))
        return false;
    AppendMemberCall(out, std::move(site), count, TypeCode(TypeCode::kVariant));
    return true;
}

// (after New) class | Library.class: a creatable class of a referenced type library
bool BodyParser::ParseNewLibraryClass(Expression& out)
{
    const char* namePosition = m_lexer.TokenStart();
    std::string name(m_lexer.Text());
    m_lexer.NextToken();
    if (m_lexer.Kind() == Token::Dot && m_lexer.PreviousFollowingChar() == '.') {
        m_lexer.NextToken();
        if (IsNameToken(m_lexer.Kind())) {
            name += '.';
            name += m_lexer.Text();
            m_lexer.NextToken();
        }
    }
    const std::string classId = m_module.Source() ? m_module.Source()->CreatableClassId(m_module.Name(), name) : "";
    const BuiltinRecord* creation = FindBuiltin(Token::CreateObject);
    Variant text;
    if (classId.empty() || !creation || !text.SetString(Widen(classId))) {
        m_lexer.SignalErrorAt(CompileMessage::ExpectingAValidDataTypeEgInteger, {}, namePosition);
        return false;
    }
    std::vector<std::optional<Expression>> arguments(1);
    arguments[0].emplace();
    AppendConstant(*arguments[0], std::move(text));
    EmitBuiltinCall(*creation, arguments, false, out);
    out.type = TypeCode(TypeCode::kObject);
    return true;
}

} // namespace brannoc::body
