#include "frontend/BodyParser.h"

#include "code/ArrayStatements.h"
#include "code/ObjectStatements.h"
#include "frontend/CharClasses.h"
#include "exec/InterpreterHost.h"
#include "values/Conversion.h"
#include "values/ValueCell.h"
#include "values/ValueError.h"

#include <windows.h>

#include <cmath>
#include <cstdlib>
#include <algorithm>
#include <optional>

namespace brannoc::body {

// Call name [arguments] | Call name "(" arguments ")" | Call object "." member {"." member} [arguments]
BodyParser::StatementPtr BodyParser::ParseCallStatement()
{
    m_lexer.NextToken();
    if (StartsObjectStatement())
        return ParseObjectStatement(AssignKind::Implicit, true);
    if (!IsNameToken(m_lexer.Kind())) {
        m_lexer.SignalError(CompileMessage::ExpectingSubFunctionPropertyName);
        return nullptr;
    }
    const std::string name = ReadName();
    (void)ReadSuffix();
    Procedure* callee = FindProcedure(UpperName(name));
    if (ExtensionName extension; !callee && AtExtensionName(UpperName(name), extension) &&
                                 (extension.kind == ExtensionName::Kind::Member ||
                                  extension.kind == ExtensionName::Kind::VariableMember)) {
        Expression code;
        if (!ParseExtensionName(name, extension, MemberAccess::Call, code))
            return nullptr;
        return std::make_unique<EvaluateStatement>(std::move(code));
    }
    if (!callee) {
        m_lexer.SignalError(CompileMessage::ExpectingSubFunctionPropertyName, name);
        return nullptr;
    }
    Expression code;
    const bool parenthesised = m_lexer.Kind() == Token::LeftParen;
    if (parenthesised)
        m_lexer.NextToken();
    if (!ParseCallArguments(*callee, code, parenthesised ? ArgumentList::Parenthesised : ArgumentList::ToStatementEnd))
        return nullptr;
    return std::make_unique<EvaluateStatement>(std::move(code));
}

bool BodyParser::IsWithEventsVariable(const VariableRef& target) const
{
    if (target.scope != StorageScope::Module || target.index < 0)
        return false;
    const std::vector<std::unique_ptr<Variable>>& variables =
        target.module ? target.module->Variables() : m_state.variables;
    const auto index = static_cast<std::size_t>(target.index);
    return index < variables.size() && variables[index]->withEvents;
}

// RaiseEvent name [ "(" [argument {"," argument}] ")" ]: an event the class module declares.
BodyParser::StatementPtr BodyParser::ParseRaiseEvent()
{
    m_lexer.NextToken();
    if (!IsNameToken(m_lexer.Kind())) {
        m_lexer.SignalError(CompileMessage::MethodOrPropertyNotFound);
        return nullptr;
    }
    const char* namePosition = m_lexer.TokenStart();
    const std::string name = ReadName();
    const auto declared = std::find_if(m_state.events.begin(), m_state.events.end(),
                                       [&](const std::string& event) { return SameName(event, name); });
    if (m_module.Kind() == ModuleKind::Plain || declared == m_state.events.end()) {
        m_lexer.SignalErrorAt(CompileMessage::MethodOrPropertyNotFound, name, namePosition);
        return nullptr;
    }
    Expression code;
    int count = 0;
    if (m_lexer.Accept(Token::LeftParen)) {
        while (m_lexer.Kind() != Token::RightParen) {
            Expression argument;
            bool simple = false;
            if (!ParseExpression(argument, &simple))
                return nullptr;
            // Variables go by reference, so that the event's procedures can change them.
            if (simple)
                argument.ops.back().code = ExprOpCode::kLoadRef;
            code.Append(argument);
            ++count;
            if (!m_lexer.Accept(Token::Comma))
                break;
        }
        if (!m_lexer.ExpectToken(Token::RightParen))
            return nullptr;
    }
    if (!IsStatementEnd(m_lexer.Kind())) {
        m_lexer.SignalError(CompileMessage::UnexpectedText, m_lexer.Text());
        return nullptr;
    }
    return std::make_unique<RaiseEventStatement>(*declared, std::move(code), count);
}

bool BodyParser::StartsObjectStatement() const
{
    const Token word = m_lexer.Kind();
    bool assignment = false;
    return word == Token::Dot || word == Token::Me || (IsNameToken(word) && MemberContinues(assignment));
}

// [name | Me] "." member {"." member} [arguments | ["(" arguments ")"] = value]
// Without a name or Me the path starts at the With object.
BodyParser::StatementPtr BodyParser::ParseObjectStatement(AssignKind kind, bool callOnly)
{
    Expression code;
    const Module* classModule = nullptr;
    const Token word = m_lexer.Kind();
    const char* start = m_lexer.TokenStart();
    if (word == Token::Dot) {
        if (!AppendWithObject(code, classModule))
            return nullptr;
    } else if (word == Token::Me) {
        if (!AppendMe(code, classModule))
            return nullptr;
    } else {
        bool simple = false;
        if (!ParseNameValue(code, &simple))
            return nullptr;
        classModule = m_factorClass;
    }
    return ParseMemberStatement(std::move(code), classModule, kind, callOnly, start);
}

// [Let | Set] target = expression | procedure [arguments] | procedure "(" arguments ")" | builtin [arguments]
// target: variable ["(" indexes ")"] | property ["(" arguments ")"] | object "." member | record path.
// After Let or Set only an assignment is accepted.
BodyParser::StatementPtr BodyParser::ParseAssignmentOrCall(AssignKind kind)
{
    const bool requireAssignment = kind != AssignKind::Implicit;
    if (AtErrObject())
        return ParseErrStatement();
    if (AtRecordPath())
        return ParseRecordStatement(kind);
    if (StartsObjectStatement())
        return ParseObjectStatement(kind, false);
    const Token word = m_lexer.Kind();
    if (!IsNameToken(word)) {
        if (requireAssignment)
            m_lexer.SignalError(CompileMessage::InvalidLetSyntax);
        else if (m_lexer.IsBlocked(word))
            m_lexer.SignalError(CompileMessage::ThisLanguageFeatureHasBeenDisabled, KeywordText(word));
        else
            m_lexer.SignalError(CompileMessage::UnexpectedText, m_lexer.Text());
        return nullptr;
    }
    const char* namePosition = m_lexer.TokenStart();
    const std::string name = ReadName();
    const std::string key = UpperName(name);
    const TypeCode suffix = ReadSuffix();

    const LocalSymbol* local = FindLocal(key);
    if (!local && (m_lexer.Kind() == Token::Equal || m_lexer.Kind() == Token::LeftParen)) {
        // Property = value: the Property Let (Property Set for Set) of that name.
        const ProcedureKind wanted = kind == AssignKind::Set ? ProcedureKind::PropertySet : ProcedureKind::PropertyLet;
        if (Procedure* property = FindProperty(key, wanted); property && IsAssignmentAhead())
            return ParsePropertyAssignment(*property, kind);
    }
    if (word == Token::Dialog && !local && !requireAssignment && m_lexer.Kind() != Token::Equal &&
        m_state.names.count(key) == 0 && !FindProcedure(key)) {
        if (m_lexer.IsBlocked(word)) {
            m_lexer.SignalError(CompileMessage::ThisLanguageFeatureHasBeenDisabled, KeywordText(word));
            return nullptr;
        }
        Expression code;
        if (!ParseDialogCall(code, true))
            return nullptr;
        return std::make_unique<EvaluateStatement>(std::move(code));
    }
    if (ExtensionName extension; AtExtensionName(key, extension) && (extension.kind == ExtensionName::Kind::Member ||
                                                                     extension.kind == ExtensionName::Kind::VariableMember)) {
        // A member of an extension's object: called, or assigned like a property.
        MemberAccess access = MemberAccess::Call;
        if (IsAssignmentAhead())
            access = kind == AssignKind::Set ? MemberAccess::Set : MemberAccess::Let;
        else if (requireAssignment) {
            m_lexer.SignalError(CompileMessage::InvalidLetSyntax);
            return nullptr;
        }
        Expression code;
        if (!ParseExtensionName(name, extension, access, code))
            return nullptr;
        return std::make_unique<EvaluateStatement>(std::move(code));
    }
    if (const BuiltinRecord* record = BuiltinFor(word, key); record && m_lexer.Kind() != Token::Equal) {
        if (requireAssignment) {
            m_lexer.SignalError(CompileMessage::InvalidLetSyntax);
            return nullptr;
        }
        Expression code;
        if (!ParseBuiltinCall(*record, suffix, code, true))
            return nullptr;
        return std::make_unique<EvaluateStatement>(std::move(code));
    }
    Procedure* callee = local ? nullptr : FindProcedure(key);
    if (callee && m_lexer.Kind() == Token::Equal && callee != &m_procedure) {
        // Only the procedure being compiled has a result variable; any other procedure's name is no
        // variable to assign to.
        m_lexer.SignalErrorAt(CompileMessage::ExpectingAVarName, {}, namePosition);
        return nullptr;
    }
    if (callee && !(m_lexer.Kind() == Token::Equal && callee == &m_procedure)) {
        if (requireAssignment) {
            m_lexer.SignalError(CompileMessage::InvalidLetSyntax);
            return nullptr;
        }
        Expression code;
        bool parenthesised = false;
        if (m_lexer.Kind() == Token::LeftParen && ParenthesisedToEnd()) {
            parenthesised = true;
            m_lexer.NextToken();
        }
        if (!ParseCallArguments(*callee, code, parenthesised ? ArgumentList::Parenthesised : ArgumentList::ToStatementEnd))
            return nullptr;
        return std::make_unique<EvaluateStatement>(std::move(code));
    }
    if (local && local->kind == LocalKind::Constant) {
        m_lexer.SignalErrorAt(CompileMessage::CantAssignAValueToAConstant, {}, namePosition);
        return nullptr;
    }
    if (!local) {
        auto found = m_state.names.find(key);
        if (found != m_state.names.end() && found->second.kind != SymbolKind::Variable) {
            m_lexer.SignalErrorAt(found->second.kind == SymbolKind::Constant ||
                                          found->second.kind == SymbolKind::EnumMember
                                      ? CompileMessage::CantAssignAValueToAConstant
                                      : CompileMessage::ExpectingAVarName,
                                  {}, namePosition);
            return nullptr;
        }
    }
    VariableRef target;
    bool found = false;
    if (!ResolveVariable(name, suffix, target, found))
        return nullptr;
    const ObjectVariable object = ClassOfVariable(key);
    if (object.classModule && (kind != AssignKind::Set || m_lexer.Kind() == Token::LeftParen)) {
        // An object declared as a class is assigned (or indexed) through its default member.
        Expression code;
        AppendLoad(code, target, object);
        const Module* classModule = object.classModule;
        if (m_lexer.Kind() != Token::LeftParen && m_lexer.Kind() != Token::Equal) {
            m_lexer.SignalErrorAt(CompileMessage::DefaultPropertyUsageIsInvalid, {}, namePosition);
            return nullptr;
        }
        if (!ParseDefaultMember(code, classModule, kind == AssignKind::Set ? MemberAccess::Set : MemberAccess::Let,
                                namePosition))
            return nullptr;
        return std::make_unique<EvaluateStatement>(std::move(code));
    }
    if (m_lexer.Kind() == Token::LeftParen) {
        if (!found || (!target.type.IsArray() && !target.type.IsVariant() && !target.type.IsObject())) {
            m_lexer.SignalError(CompileMessage::ExpectingAnAlreadyDimensionedArray);
            return nullptr;
        }
        m_lexer.NextToken();
        Expression code;
        int count = 0;
        if (!ParseIndexes(code, count) || !m_lexer.ExpectToken(Token::Equal))
            return nullptr;
        const int valueStart = static_cast<int>(code.ops.size());
        if (!ParseExpression(code))
            return nullptr;
        return std::make_unique<AssignElementStatement>(std::move(code), target, count, valueStart,
                                                        kind != AssignKind::Set);
    }
    if (target.type.IsArray()) {
        if (kind == AssignKind::Set) {
            m_lexer.SignalErrorAt(CompileMessage::ExpectingAnObjectExpression, {}, namePosition);
            return nullptr;
        }
        return ParseArrayAssignment(target, UserTypeOf(key), namePosition);
    }
    if (kind == AssignKind::Set && !(target.type.IsObject() || target.type.IsVariant())) {
        m_lexer.SignalErrorAt(CompileMessage::ExpectingAnObjectExpression, {}, namePosition);
        return nullptr;
    }
    if (kind == AssignKind::Let && m_lexer.Kind() != Token::Equal) {
        // Let requires an assignment.
        m_lexer.SignalError(CompileMessage::InvalidLetSyntax);
        return nullptr;
    }
    if (!m_lexer.ExpectToken(Token::Equal))
        return nullptr;
    const char* valuePosition = m_lexer.TokenStart();
    Expression value;
    if (kind == AssignKind::Set && AtErrObject()) {
        // Set x = Err takes the Err object itself.
        if (!ParseErrObject(value, true))
            return nullptr;
    } else if (!ParseExpression(value))
        return nullptr;
    if (value.IsEmpty()) {
        m_lexer.SignalError(CompileMessage::ExpectingAnExpression);
        return nullptr;
    }
    if (kind == AssignKind::Set) {
        if (!value.type.IsObject() && !value.type.IsVariant()) {
            m_lexer.SignalErrorAt(CompileMessage::ExpectingAnObjectExpression, {}, valuePosition);
            return nullptr;
        }
        return std::make_unique<SetStatement>(std::move(value), target, IsWithEventsVariable(target));
    }
    if (Expression tail; AppendedTail(value, target, tail))
        return std::make_unique<AppendStatement>(std::move(tail), target);
    return std::make_unique<AssignStatement>(std::move(value), target);
}

namespace {

// How many values an op of call-free code leaves on the stack beyond what it takes (and how many ops
// after it belong to it and are not run in line); false for ops that this accounting does not cover.
bool StackEffect(const ExprOp& op, int& effect, int& skipped)
{
    skipped = 0;
    switch (op.code) {
    case ExprOpCode::kConstant:
    case ExprOpCode::kLoad: effect = 1; return true;
    case ExprOpCode::kBinary: effect = -1; return true;
    case ExprOpCode::kUnary: effect = 0; return true;
    case ExprOpCode::kElement: effect = 1 - op.count; return true;
    case ExprOpCode::kBuiltin:
        effect = (op.type == TypeCode() ? 0 : 1) - op.count;
        skipped = op.variable;
        return true;
    case ExprOpCode::kTypedValue:
        effect = 1;
        skipped = op.count;
        return true;
    default: return false;
    }
}

} // namespace

bool BodyParser::AppendedTail(const Expression& value, const VariableRef& target, Expression& tail) const
{
    // String and Variant variables only (not fixed-length strings), read first and joined last by "&".
    if (!(target.type.IsString() || target.type.IsVariant()) || target.type.IsArray() || value.ops.size() < 3)
        return false;
    const ExprOp& first = value.ops.front();
    const ExprOp& last = value.ops.back();
    if (first.code != ExprOpCode::kLoad || first.scope != target.scope || first.index != target.index ||
        first.module != target.module || last.code != ExprOpCode::kBinary || last.op != OperationId::kConcatenate)
        return false;
    // The code is the variable followed by a chain of "& part": each time the stack is back at the
    // variable alone, a "&" brought it there. The first of those joins the variable; by associativity the
    // parts joined among themselves and then appended give the same text.
    int depth = 1;
    bool joined = false;
    for (std::size_t i = 1; i < value.ops.size(); ++i) {
        const ExprOp& op = value.ops[i];
        int effect = 0;
        int skipped = 0;
        if (!StackEffect(op, effect, skipped))
            return false;
        depth += effect;
        if (depth < 1)
            return false;
        if (depth == 1) {
            if (op.code != ExprOpCode::kBinary || op.op != OperationId::kConcatenate)
                return false;
            if (!joined) {
                joined = true;
                for (std::size_t k = i + 1; k <= i + static_cast<std::size_t>(skipped) && k < value.ops.size(); ++k)
                    tail.ops.push_back(value.ops[k]);
                i += static_cast<std::size_t>(skipped);
                continue;
            }
        }
        tail.ops.push_back(op);
        for (int k = 0; k < skipped && i + 1 < value.ops.size(); ++k)
            tail.ops.push_back(value.ops[++i]);
    }
    tail.type = TypeCode(TypeCode::kString);
    return joined && depth == 1;
}

// array = value: only a dynamic array takes a whole array (or, for Byte arrays, a String).
BodyParser::StatementPtr BodyParser::ParseArrayAssignment(const VariableRef& target, const UserType* userType,
                                                          const char* namePosition)
{
    if (target.type.Rank() != TypeCode::kDynamicRank) {
        m_lexer.SignalErrorAt(CompileMessage::ExpectingADynamicArrayVar, {}, namePosition);
        return nullptr;
    }
    if (!m_lexer.ExpectToken(Token::Equal))
        return nullptr;
    Expression value;
    if (!ParseExpression(value))
        return nullptr;
    const TypeCode given = value.type;
    const bool bytesOfText = given.IsString() && target.type.Scalar() == TypeCode(TypeCode::kByte);
    if (!given.IsArray() && !given.IsVariant() && !bytesOfText) {
        m_lexer.SignalError(CompileMessage::TypeMismatch);
        return nullptr;
    }
    return std::make_unique<ArrayAssignStatement>(std::move(value), target, RecordInfoOf(userType));
}

bool BodyParser::IsAssignmentAhead() const
{
    const char* p = m_lexer.TokenStart();
    if (*p == '(')
        p = SkipBlanks(SkipParenthesised(p));
    return *p == '=';
}

// property ["(" arguments ")"] = value: calls the Property Let (Property Set for Set) of that name
BodyParser::StatementPtr BodyParser::ParsePropertyAssignment(Procedure& property, AssignKind kind)
{
    Expression code;
    int count = 0;
    if (!ParseMemberArguments(property, kind == AssignKind::Set ? MemberAccess::Set : MemberAccess::Let, code, count))
        return nullptr;
    ExprOp call{ExprOpCode::kCall};
    call.index = m_code->AddCallee(&property, ModuleOf(property));
    call.count = count;
    code.ops.push_back(call);
    ExprOp pop{ExprOpCode::kPop};
    pop.count = count;
    code.ops.push_back(pop);
    return std::make_unique<EvaluateStatement>(std::move(code));
}

// [argument {"," argument}] [")"]: ")" is read where the list is parenthesised
// Arguments of a call: positional and named, matched to the callee's parameters; the call and the
// removal of the arguments follow them (a Function's result stays on the stack).
bool BodyParser::ParseCallArguments(Procedure& callee, Expression& out, ArgumentList list)
{
    ParsedArguments parsed;
    parsed.elementsByReference = true;
    if (!ParseArguments(callee, list, callee.parameters.size(), parsed))
        return false;
    const bool isFunction = HasResult(callee);
    if (isFunction)
        out.ops.push_back(ExprOp{ExprOpCode::kEmpty});
    if (!AppendArguments(callee, parsed, out))
        return false;
    const std::size_t count = callee.parameters.size();
    ExprOp call{ExprOpCode::kCall};
    call.index = m_code->AddCallee(&callee, ModuleOf(callee));
    call.count = static_cast<int>(count);
    call.type = isFunction ? callee.result.code : TypeCode();
    out.ops.push_back(call);
    // Elements passed by reference go back while the arguments still hold their arrays.
    out.ops.insert(out.ops.end(), parsed.writeBacks.begin(), parsed.writeBacks.end());
    if (count > 0) {
        ExprOp pop{ExprOpCode::kPop};
        pop.count = static_cast<int>(count);
        out.ops.push_back(pop);
    }
    out.type = isFunction ? callee.result.code : TypeCode();
    return true;
}

namespace {

// Whether a variable argument goes as a reference to its storage: for ByRef parameters, and for the
// text parameters of Declare'd procedures, whose libraries may write into the text they are given.
bool PassesReference(const Procedure& callee, const Parameter& parameter)
{
    if (!parameter.byVal)
        return true;
    const TypeCode type = parameter.type.code;
    return callee.kind == ProcedureKind::External &&
           (type.IsString() || type.IsFixedString() || type.Code() == TypeCode::kUnknown);
}

} // namespace

// argument {"," argument} where argument is [expression] | name ":=" expression; named ones come last
// Reads the arguments written for callee; the first `limit` parameters take them (a Property Let's
// assigned value comes separately).
bool BodyParser::ParseArguments(Procedure& callee, ArgumentList list, std::size_t limit, ParsedArguments& parsed)
{
    const std::size_t count = limit;
    parsed.byParameter.assign(callee.parameters.size(), std::nullopt);
    parsed.extra.clear();
    const bool hasParamArray = count > 0 && callee.parameters[count - 1].paramArray;
    std::size_t position = 0;
    bool named = false;
    auto atEnd = [&] {
        switch (list) {
        case ArgumentList::None: return true;
        case ArgumentList::Parenthesised: return m_lexer.Kind() == Token::RightParen;
        case ArgumentList::ToStatementEnd: break;
        }
        return IsStatementEnd(m_lexer.Kind());
    };
    if (!atEnd()) {
        do {
            if (IsNameToken(m_lexer.Kind()) && NextIsColonEqual()) {
                named = true;
                const std::string name(m_lexer.Text());
                std::size_t index = 0;
                while (index < count && !SameName(callee.parameters[index].name, name))
                    ++index;
                if (index == count) {
                    m_lexer.SignalError(CompileMessage::NoSuchNamedParameter, name);
                    return false;
                }
                m_lexer.NextToken();
                m_lexer.NextToken();
                if (parsed.byParameter[index]) {
                    m_lexer.SignalError(CompileMessage::ParameterAlreadyHasAValue, name);
                    return false;
                }
                Expression argument;
                bool simple = false;
                if (!ParseExpression(argument, &simple))
                    return false;
                if (PassesReference(callee, callee.parameters[index]))
                    PassByReference(argument, simple, parsed);
                PrefixTypedForm(argument);
                parsed.byParameter[index] = std::move(argument);
                continue;
            }
            if (named) {
                m_lexer.SignalError(CompileMessage::Expecting, ":=");
                return false;
            }
            Expression argument;
            bool simple = false;
            const bool empty = m_lexer.Kind() == Token::Comma;
            if (!empty && !ParseExpression(argument, &simple))
                return false;
            if (hasParamArray && position + 1 >= count) {
                if (empty)
                    argument.ops.push_back(ExprOp{ExprOpCode::kMissing});
                parsed.extra.push_back(std::move(argument));
            } else if (position >= count) {
                m_lexer.SignalError(CompileMessage::WrongNumberOfParameters);
                return false;
            } else if (!empty) {
                if (PassesReference(callee, callee.parameters[position]))
                    PassByReference(argument, simple, parsed);
                PrefixTypedForm(argument);
                parsed.byParameter[position] = std::move(argument);
            }
            ++position;
        } while (m_lexer.Accept(Token::Comma));
    }
    if (list == ArgumentList::Parenthesised && !m_lexer.ExpectToken(Token::RightParen))
        return false;
    return true;
}

// Appends the arguments in parameter order: left-out optional ones as missing values, the ParamArray's
// items packed into one array.
bool BodyParser::AppendArguments(Procedure& callee, const ParsedArguments& parsed, Expression& out)
{
    const std::size_t count = callee.parameters.size();
    // Arrays go only to array parameters (or Variants), and array parameters take only arrays.
    for (std::size_t i = 0; i < count; ++i) {
        if (!parsed.byParameter[i] || callee.parameters[i].paramArray)
            continue;
        const TypeCode parameter = callee.parameters[i].type.code;
        const TypeCode argument = parsed.byParameter[i]->type;
        const bool mismatch = parameter.IsArray() ? !(argument.IsArray() || argument.IsVariant())
                                                  : argument.IsArray() && !parameter.IsVariant();
        if (mismatch) {
            m_lexer.SignalError(CompileMessage::ExpressionDoesNotMatchParameterType, callee.parameters[i].name);
            return false;
        }
    }
    for (std::size_t i = 0; i < count; ++i) {
        const Parameter& parameter = callee.parameters[i];
        if (parameter.paramArray) {
            for (const Expression& item : parsed.extra)
                out.Append(item);
            ExprOp pack{ExprOpCode::kPack};
            pack.count = static_cast<int>(parsed.extra.size());
            out.ops.push_back(pack);
            continue;
        }
        if (parsed.byParameter[i]) {
            out.Append(*parsed.byParameter[i]);
        } else if (parameter.optional) {
            out.ops.push_back(ExprOp{ExprOpCode::kMissing});
        } else {
            m_lexer.SignalError(CompileMessage::MissingParameter, parameter.name);
            return false;
        }
    }
    return true;
}

} // namespace brannoc::body
