#include "frontend/BodyParser.h"

#include "code/MemberCall.h"
#include "code/ObjectStatements.h"
#include "frontend/CharClasses.h"

namespace brannoc::body {
namespace {

// Member names may be any word, keywords included (obj.Name, obj.Print, col.Count).
bool IsMemberName(std::string_view text)
{
    return !text.empty() && CharClasses::Get().IsIdentifierStart(text[0]);
}

} // namespace

// The character after the parenthesised group that starts at p, strings skipped.
const char* SkipParenthesised(const char* p)
{
    int depth = 0;
    bool inString = false;
    for (; *p != '\0' && *p != '\r' && *p != '\n'; ++p) {
        if (inString) {
            inString = *p != '"';
            continue;
        }
        if (*p == '"')
            inString = true;
        else if (*p == '(')
            ++depth;
        else if (*p == ')' && --depth == 0)
            return p + 1;
    }
    return p;
}

namespace {

bool IsObjectType(TypeCode type) { return !type.IsArray() && (type.IsObject() || type.IsVariant()); }

bool IsAssignment(MemberAccess access) { return access == MemberAccess::Let || access == MemberAccess::Set; }

} // namespace

bool BodyParser::MemberContinues(bool& assignment) const
{
    const char* end = m_lexer.TokenEnd();
    const char* p = SkipBlanks(end);
    if (*p == '(') {
        end = SkipParenthesised(p);
        p = SkipBlanks(end);
    }
    assignment = *p == '=';
    if (*p != '.')
        return false;
    // Inside a With block a "." after a blank starts a With-relative argument: Move .Corner, 1 calls
    // Move with .Corner.
    return p == end || WithLevel() == 0;
}

int BodyParser::WithLevel() const
{
    int level = 0;
    for (const Block& block : m_blocks)
        level += block.kind == BlockKind::With ? 1 : 0;
    return level;
}

std::vector<int> BodyParser::WithChain() const
{
    std::vector<int> chain;
    for (const Block& block : m_blocks) {
        if (block.kind == BlockKind::With)
            chain.push_back(block.withNumber);
    }
    return chain;
}

// {"." member}: members read in turn from an object, or from a record a function returned
bool BodyParser::ParseMemberChain(Expression& out, const Module* classModule, const char* start)
{
    while (m_lexer.Kind() == Token::Dot) {
        // A record that a function returns: its elements are read by name when the access runs, as
        // for a Variant that holds a record (variables of a record type take the record-path form).
        const bool recordValue = out.type.IsUserType() && !out.type.IsArray();
        if (recordValue)
            classModule = nullptr;
        if (!recordValue && !IsObjectType(out.type)) {
            m_lexer.SignalErrorAt(CompileMessage::NotAnObjectReference, {}, start);
            return false;
        }
        m_lexer.NextToken();
        if (!ParseMember(out, classModule, MemberAccess::Get))
            return false;
    }
    m_factorClass = classModule;
    return true;
}

void BodyParser::AppendMemberCall(Expression& out, MemberSite site, int count, TypeCode result)
{
    ExprOp call{ExprOpCode::kMemberCall};
    call.index = m_code->AddMemberSite(std::move(site));
    call.count = count;
    call.type = result;
    out.ops.push_back(call);
    ExprOp end{ExprOpCode::kMemberEnd};
    end.type = result;
    out.ops.push_back(end);
    out.type = result;
}

// member ["(" arguments ")"] (read) | member [arguments] | member "(" arguments ")" (call)
//     | member ["(" arguments ")"] = value (assignment)
// Late-bound where the object's class is not known; a class's public variable takes no arguments.
bool BodyParser::ParseMember(Expression& out, const Module*& classModule, MemberAccess access)
{
    const char* position = m_lexer.TokenStart();
    const std::string name(m_lexer.Text());
    if (!IsMemberName(name)) {
        m_lexer.SignalError(CompileMessage::MethodOrPropertyNotFound);
        return false;
    }
    m_lexer.NextToken();
    MemberSite site;
    site.name = name;
    site.wideName = Widen(name);
    site.access = access;
    out.ops.push_back(ExprOp{ExprOpCode::kEmpty});
    if (!classModule) {
        // Late-bound: the member is looked up by name when the access runs.
        int count = 0;
        if (!ParseLateArguments(access, site, out, count))
            return false;
        AppendMemberCall(out, std::move(site), count, TypeCode(TypeCode::kVariant));
        return true;
    }
    Procedure* procedure = nullptr;
    int variable = -1;
    if (!FindClassMember(*classModule, name, access, procedure, variable)) {
        m_lexer.SignalErrorAt(CompileMessage::MethodOrPropertyNotFound, {}, position);
        return false;
    }
    site.classModule = classModule;
    site.procedure = procedure;
    site.variable = variable;
    int count = 0;
    TypeCode result(TypeCode::kVariant);
    const Module* resultClass = nullptr;
    if (procedure) {
        if (access == MemberAccess::Get && procedure->kind == ProcedureKind::Sub) {
            m_lexer.SignalErrorAt(CompileMessage::SubsCantBeUsedInExpressions, name, position);
            return false;
        }
        if (!ParseMemberArguments(*procedure, access, out, count))
            return false;
        if (procedure->kind == ProcedureKind::Function || procedure->kind == ProcedureKind::PropertyGet) {
            result = procedure->result.code;
            resultClass = ClassOfType(procedure->result);
        }
    } else {
        // A public variable of the class, read or assigned like a property.
        const Variable& declared = *classModule->Variables()[static_cast<std::size_t>(variable)];
        if (m_lexer.Kind() == Token::LeftParen) {
            m_lexer.SignalError(CompileMessage::WrongNumberOfParameters);
            return false;
        }
        if (access == MemberAccess::Call) {
            m_lexer.SignalErrorAt(CompileMessage::MethodOrPropertyNotFound, {}, position);
            return false;
        }
        if (IsAssignment(access)) {
            if (access == MemberAccess::Set && !IsObjectType(declared.type.code)) {
                m_lexer.SignalErrorAt(CompileMessage::ExpectingAnObjectExpression, {}, position);
                return false;
            }
            if (!m_lexer.ExpectToken(Token::Equal))
                return false;
            Expression value;
            if (!ParseExpression(value))
                return false;
            if (access == MemberAccess::Let)
                AppendLetResolution(value);
            out.Append(value);
            count = 1;
        }
        result = declared.type.code;
        resultClass = ClassOfType(declared.type);
    }
    AppendMemberCall(out, std::move(site), count, IsAssignment(access) ? TypeCode(TypeCode::kVariant) : result);
    classModule = resultClass;
    return true;
}

// ["(" arguments ")"] (read) | [arguments] | "(" arguments ")" (call) | ["(" arguments ")"] = value (assignment)
// A class member's arguments; an assigned value goes to the property's last parameter.
bool BodyParser::ParseMemberArguments(Procedure& member, MemberAccess access, Expression& out, int& count)
{
    const std::size_t total = member.parameters.size();
    ParsedArguments parsed;
    if (IsAssignment(access)) {
        // obj.Property[(indexes)] = value: the value is the Property Let's or Set's last parameter.
        if (total == 0) {
            m_lexer.SignalError(CompileMessage::WrongNumberOfParameters);
            return false;
        }
        const bool parenthesised = m_lexer.Accept(Token::LeftParen);
        if (!ParseArguments(member, parenthesised ? ArgumentList::Parenthesised : ArgumentList::None, total - 1, parsed))
            return false;
        if (!m_lexer.ExpectToken(Token::Equal))
            return false;
        Expression value;
        if (!ParseExpression(value))
            return false;
        if (access == MemberAccess::Let)
            AppendLetResolution(value);
        parsed.byParameter[total - 1] = std::move(value);
    } else {
        ArgumentList list = ArgumentList::None;
        if (m_lexer.Kind() == Token::LeftParen && (access == MemberAccess::Get || ParenthesisedToEnd())) {
            m_lexer.NextToken();
            list = ArgumentList::Parenthesised;
        } else if (access == MemberAccess::Call) {
            list = ArgumentList::ToStatementEnd;
        }
        if (!ParseArguments(member, list, total, parsed))
            return false;
    }
    if (!AppendArguments(member, parsed, out))
        return false;
    count = static_cast<int>(total);
    return true;
}

// ["(" arguments ")"] (read) | [arguments] | "(" arguments ")" (call) | ["(" arguments ")"] = value (assignment)
// A late-bound member's arguments, each [name ":="] [expression]; variables go by reference.
// A variable given to a late-bound member goes by reference, except a fixed-length String (the member
// could give it another length) and a Variant parameter that is itself a reference: those go as copies,
// so that nothing the member does reaches a variable.
bool BodyParser::PassesLateByReference(const ExprOp& load, TypeCode type) const
{
    if (type.IsFixedString())
        return false;
    const auto& parameters = m_procedure.parameters;
    const bool referenceParameter = load.code == ExprOpCode::kLoad && load.scope == StorageScope::Local &&
                                    load.index >= 0 && load.index < static_cast<int>(parameters.size()) &&
                                    !parameters[static_cast<std::size_t>(load.index)].byVal;
    return !(referenceParameter && type.IsVariant() && !type.IsArray());
}

bool BodyParser::ParseLateArguments(MemberAccess access, MemberSite& site, Expression& out, int& count)
{
    count = 0;
    ArgumentList list = ArgumentList::None;
    if (m_lexer.Kind() == Token::LeftParen && (access != MemberAccess::Call || ParenthesisedToEnd())) {
        m_lexer.NextToken();
        list = ArgumentList::Parenthesised;
    } else if (access == MemberAccess::Call) {
        list = ArgumentList::ToStatementEnd;
    }
    auto atEnd = [&] {
        if (list == ArgumentList::None)
            return true;
        if (list == ArgumentList::Parenthesised)
            return m_lexer.Kind() == Token::RightParen;
        return IsStatementEnd(m_lexer.Kind());
    };
    if (!atEnd()) {
        do {
            if (IsNameToken(m_lexer.Kind()) && NextIsColonEqual()) {
                site.namedArguments.push_back(Widen(m_lexer.Text()));
                m_lexer.NextToken();
                m_lexer.NextToken();
            } else if (!site.namedArguments.empty()) {
                m_lexer.SignalError(CompileMessage::Expecting, ":=");
                return false;
            }
            if (m_lexer.Kind() == Token::Comma || atEnd()) {
                out.ops.push_back(ExprOp{ExprOpCode::kMissing});
                ++count;
                continue;
            }
            Expression argument;
            bool simple = false;
            if (!ParseExpression(argument, &simple))
                return false;
            // Variables go by reference, so that the member can change them.
            if (simple && PassesLateByReference(argument.ops.back(), argument.type))
                argument.ops.back().code = ExprOpCode::kLoadRef;
            out.Append(argument);
            ++count;
        } while (m_lexer.Accept(Token::Comma));
    }
    if (list == ArgumentList::Parenthesised && !m_lexer.ExpectToken(Token::RightParen))
        return false;
    if (IsAssignment(access)) {
        if (!m_lexer.ExpectToken(Token::Equal))
            return false;
        Expression value;
        if (!ParseExpression(value))
            return false;
        if (access == MemberAccess::Let)
            AppendLetResolution(value);
        out.Append(value);
        ++count;
    }
    return true;
}

void BodyParser::AppendLetResolution(Expression& value)
{
    // A Let assigns values: an object on the right stands for its default member's value.
    if (!IsObjectType(value.type) && !value.type.IsVariant())
        return;
    ExprOp resolve{ExprOpCode::kLetValue};
    resolve.type = TypeCode(TypeCode::kVariant);
    value.ops.push_back(resolve);
    value.type = resolve.type;
}

// ["(" arguments ")"] [= value]: the class's default member, read or assigned with these arguments
bool BodyParser::ParseDefaultMember(Expression& out, const Module*& classModule, MemberAccess access,
                                    const char* position)
{
    // The default member is marked on one procedure; its Property Let or Set of the same name serves
    // assignments.
    const Procedure* marked = nullptr;
    for (const auto& procedure : classModule->Procedures()) {
        if (procedure->isDefaultMember)
            marked = procedure.get();
    }
    Procedure* target = nullptr;
    int variable = -1;
    if (marked && !FindClassMember(*classModule, marked->name, access, target, variable))
        target = nullptr;
    if (!target) {
        m_lexer.SignalErrorAt(CompileMessage::DefaultPropertyUsageIsInvalid, {}, position);
        return false;
    }
    MemberSite site;
    site.name = target->name;
    site.wideName = Widen(target->name);
    site.access = access;
    site.classModule = classModule;
    site.procedure = target;
    out.ops.push_back(ExprOp{ExprOpCode::kEmpty});
    int count = 0;
    if (!ParseMemberArguments(*target, access, out, count))
        return false;
    const bool returnsValue = target->kind == ProcedureKind::Function || target->kind == ProcedureKind::PropertyGet;
    AppendMemberCall(out, std::move(site), count, returnsValue ? target->result.code : TypeCode(TypeCode::kVariant));
    classModule = returnsValue ? ClassOfType(target->result) : nullptr;
    return true;
}

bool BodyParser::AppendWithObject(Expression& out, const Module*& classModule)
{
    const Block* innermost = nullptr;
    for (const Block& block : m_blocks) {
        if (block.kind == BlockKind::With)
            innermost = &block;
    }
    if (!innermost) {
        m_lexer.SignalError(CompileMessage::NotInAWithBlock);
        return false;
    }
    ExprOp with{ExprOpCode::kWithObject};
    with.index = innermost->withLevel;
    with.type = TypeCode(TypeCode::kVariant);
    out.ops.push_back(with);
    out.type = with.type;
    classModule = innermost->classModule;
    return true;
}

bool BodyParser::AppendMe(Expression& out, const Module*& classModule)
{
    if (m_module.Kind() == ModuleKind::Plain) {
        m_lexer.SignalError(CompileMessage::ExpectingAConstantVarNameOrFunctionName);
        return false;
    }
    m_lexer.NextToken();
    ExprOp me{ExprOpCode::kMe};
    me.type = TypeCode(TypeCode::kObject);
    out.ops.push_back(me);
    out.type = me.type;
    classModule = &m_module;
    return true;
}

// (after the object) "." member {"." member} [arguments | ["(" arguments ")"] = value]
// The last member is called, or assigned (Let or Set) where "=" follows unless callOnly.
BodyParser::StatementPtr BodyParser::ParseMemberStatement(Expression code, const Module* classModule, AssignKind kind,
                                                          bool callOnly, const char* start)
{
    if (m_lexer.Kind() != Token::Dot) {
        m_lexer.SignalError(kind == AssignKind::Implicit ? CompileMessage::UnexpectedText : CompileMessage::InvalidLetSyntax,
                            m_lexer.Text());
        return nullptr;
    }
    for (;;) {
        if (!IsObjectType(code.type)) {
            m_lexer.SignalErrorAt(CompileMessage::NotAnObjectReference, {}, start);
            return nullptr;
        }
        m_lexer.NextToken();
        bool assignment = false;
        if (MemberContinues(assignment)) {
            if (!ParseMember(code, classModule, MemberAccess::Get))
                return nullptr;
            continue;
        }
        MemberAccess access = MemberAccess::Call;
        if (assignment && !callOnly)
            access = kind == AssignKind::Set ? MemberAccess::Set : MemberAccess::Let;
        else if (kind != AssignKind::Implicit) {
            m_lexer.SignalError(CompileMessage::InvalidLetSyntax);
            return nullptr;
        }
        if (!ParseMember(code, classModule, access))
            return nullptr;
        return std::make_unique<EvaluateStatement>(std::move(code));
    }
}

} // namespace brannoc::body
