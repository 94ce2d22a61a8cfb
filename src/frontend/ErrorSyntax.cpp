// The error-handling statements (On Error, Resume) and the Err object in expressions and statements.
#include "frontend/BodyParser.h"

#include "code/ErrorStatements.h"
#include "frontend/CharClasses.h"

namespace brannoc::body {

namespace {

constexpr const char* kRaiseParameters[] = {"Number", "Source", "Description", "HelpFile", "HelpContext"};
constexpr std::size_t kRaiseParameterCount = sizeof(kRaiseParameters) / sizeof(kRaiseParameters[0]);

} // namespace

// On Error Resume Next | On Error GoTo 0 | On Error GoTo label
BodyParser::StatementPtr BodyParser::ParseOnError()
{
    m_lexer.NextToken();
    if (!m_lexer.ExpectToken(Token::Error))
        return nullptr;
    std::unique_ptr<OnErrorStatement> statement;
    if (m_lexer.Accept(Token::Resume)) {
        if (!m_lexer.ExpectToken(Token::Next))
            return nullptr;
        statement = std::make_unique<OnErrorStatement>(OnErrorStatement::Mode::ResumeNext);
    } else {
        if (!m_lexer.ExpectToken(Token::GoTo))
            return nullptr;
        if (m_lexer.Kind() == Token::LiteralNumber && m_lexer.Text() == "0") {
            m_lexer.NextToken();
            statement = std::make_unique<OnErrorStatement>(OnErrorStatement::Mode::Disable);
        } else if (IsNameToken(m_lexer.Kind())) {
            statement = std::make_unique<OnErrorStatement>(OnErrorStatement::Mode::GoToLabel);
            OnErrorStatement* target = statement.get();
            m_gotos.push_back(PendingGoTo{[target](int index) { target->SetTarget(index); },
                                          std::string(m_lexer.Text()), m_lexer.TokenStart(), false});
            m_lexer.NextToken();
        } else {
            m_lexer.SignalError(CompileMessage::InvalidLabelIdentifier);
            return nullptr;
        }
    }
    statement->SetKeyword(TokenNumber(Token::On));
    return statement;
}

// Resume Next | Resume label
BodyParser::StatementPtr BodyParser::ParseResume()
{
    m_lexer.NextToken();
    std::unique_ptr<ResumeStatement> statement;
    if (m_lexer.Accept(Token::Next)) {
        statement = std::make_unique<ResumeStatement>(true);
    } else if (IsNameToken(m_lexer.Kind())) {
        statement = std::make_unique<ResumeStatement>(false);
        ResumeStatement* target = statement.get();
        m_gotos.push_back(PendingGoTo{[target](int index) { target->SetTarget(index); }, std::string(m_lexer.Text()),
                                      m_lexer.TokenStart(), false});
        m_lexer.NextToken();
    } else {
        m_lexer.SignalError(CompileMessage::InvalidLabelIdentifier);
        return nullptr;
    }
    statement->SetKeyword(TokenNumber(Token::Resume));
    return statement;
}

bool BodyParser::AtErrObject() const
{
    if (m_lexer.Kind() != Token::Err)
        return false;
    // A variable named Err hides the object.
    const std::string key = UpperName(m_lexer.Text());
    VariableRef ignored;
    return FindLocal(key) == nullptr && m_state.names.find(key) == m_state.names.end() &&
           !FindUsedVariable(key, ignored);
}

// Err [. property]; Err alone is the object itself where one is wanted.
bool BodyParser::ParseErrObject(Expression& out, bool wantsObject)
{
    m_lexer.NextToken();
    ErrMember member = ErrMember::Number;
    if (wantsObject && m_lexer.Kind() != Token::Dot) {
        ExprOp op{ExprOpCode::kErrObject};
        op.type = TypeCode(TypeCode::kObject);
        out.ops.push_back(op);
        out.type = op.type;
        return true;
    }
    if (m_lexer.Accept(Token::Dot)) {
        const std::string name(m_lexer.Text());
        if (!FindErrMember(name, member)) {
            m_lexer.SignalError(CompileMessage::MethodOrPropertyNotFound);
            return false;
        }
        if (!IsErrProperty(member)) {
            m_lexer.SignalError(CompileMessage::SubsCantBeUsedInExpressions, name);
            return false;
        }
        m_lexer.NextToken();
    }
    ExprOp op{ExprOpCode::kErrProperty};
    op.index = static_cast<int>(member);
    const bool isNumber =
        member == ErrMember::Number || member == ErrMember::HelpContext || member == ErrMember::LastDllError;
    op.type = TypeCode(isNumber ? TypeCode::kLong : TypeCode::kString);
    out.ops.push_back(op);
    out.type = op.type;
    return true;
}

// Err.Raise arguments | Err.Clear | Err[.property] = value
BodyParser::StatementPtr BodyParser::ParseErrStatement()
{
    m_lexer.NextToken();
    ErrMember member = ErrMember::Number;
    const char* memberPosition = m_lexer.TokenStart();
    if (m_lexer.Accept(Token::Dot)) {
        memberPosition = m_lexer.TokenStart();
        const std::string name(m_lexer.Text());
        if (!FindErrMember(name, member)) {
            m_lexer.SignalError(CompileMessage::MethodOrPropertyNotFound);
            return nullptr;
        }
        m_lexer.NextToken();
    }
    Expression code;
    if (member == ErrMember::Raise) {
        if (!ParseRaiseArguments(code))
            return nullptr;
    } else if (member != ErrMember::Clear) {
        if (!IsWritableErrProperty(member)) {
            m_lexer.SignalErrorAt(CompileMessage::CantAssignAValueToAnExpression, {}, memberPosition);
            return nullptr;
        }
        if (!m_lexer.ExpectToken(Token::Equal) || !ParseExpression(code))
            return nullptr;
    }
    auto statement = std::make_unique<ErrStatement>(member, std::move(code));
    statement->SetKeyword(TokenNumber(Token::Err));
    return statement;
}

// "(" argument {"," argument} ")" | argument {"," argument} where argument is [expression] | name ":=" expression
// The arguments of Err.Raise, positional or named, in or without parentheses: the code leaves all five,
// a left-out optional one as the missing value. Number is required.
bool BodyParser::ParseRaiseArguments(Expression& out)
{
    std::vector<std::optional<Expression>> arguments(kRaiseParameterCount);
    const bool parenthesised = m_lexer.Kind() == Token::LeftParen && ParenthesisedToEnd();
    if (parenthesised)
        m_lexer.NextToken();
    auto atEnd = [&] { return parenthesised ? m_lexer.Kind() == Token::RightParen : IsStatementEnd(m_lexer.Kind()); };
    std::size_t position = 0;
    bool named = false;
    if (!atEnd()) {
        do {
            std::size_t index = position;
            if (IsNameToken(m_lexer.Kind()) && NextIsColonEqual()) {
                named = true;
                const std::string name(m_lexer.Text());
                index = 0;
                while (index < kRaiseParameterCount && !SameName(kRaiseParameters[index], name))
                    ++index;
                if (index == kRaiseParameterCount) {
                    m_lexer.SignalError(CompileMessage::NoSuchNamedParameter, name);
                    return false;
                }
                if (arguments[index]) {
                    m_lexer.SignalError(CompileMessage::ParameterAlreadyHasAValue, name);
                    return false;
                }
                m_lexer.NextToken();
                m_lexer.NextToken();
            } else if (named) {
                m_lexer.SignalError(CompileMessage::Expecting, ":=");
                return false;
            } else if (index >= kRaiseParameterCount) {
                m_lexer.SignalError(CompileMessage::WrongNumberOfParameters);
                return false;
            }
            ++position;
            if (!named && m_lexer.Kind() == Token::Comma)
                continue;
            Expression argument;
            if (!ParseExpression(argument))
                return false;
            arguments[index] = std::move(argument);
        } while (m_lexer.Accept(Token::Comma));
    }
    if (parenthesised && !m_lexer.ExpectToken(Token::RightParen))
        return false;
    if (!arguments[0]) {
        m_lexer.SignalError(CompileMessage::MissingParameter, kRaiseParameters[0]);
        return false;
    }
    for (auto& argument : arguments) {
        if (argument)
            out.Append(*argument);
        else
            out.ops.push_back(ExprOp{ExprOpCode::kMissing});
    }
    return true;
}

} // namespace brannoc::body
