#include "frontend/BodyParser.h"

#include "frontend/CharClasses.h"
#include "exec/InterpreterHost.h"
#include "values/Conversion.h"
#include "values/ValueCell.h"
#include "values/ValueError.h"

#include <windows.h>

#include <cmath>
#include <cstdlib>
#include <optional>

namespace brannoc::body {

BodyParser::StatementPtr BodyParser::ParseCallStatement()
{
    m_lexer.NextToken();
    if (!IsNameToken(m_lexer.Kind())) {
        m_lexer.SignalError(CompileMessage::ExpectingSubFunctionPropertyName);
        return nullptr;
    }
    const std::string name = ReadName();
    (void)ReadSuffix();
    Procedure* callee = FindProcedure(UpperName(name));
    if (!callee) {
        m_lexer.SignalError(CompileMessage::ExpectingSubFunctionPropertyName, name);
        return nullptr;
    }
    Expression code;
    const bool parenthesised = m_lexer.Kind() == Token::LeftParen;
    if (parenthesised)
        m_lexer.NextToken();
    if (!ParseCallArguments(*callee, code, parenthesised))
        return nullptr;
    return std::make_unique<EvaluateStatement>(std::move(code));
}

BodyParser::StatementPtr BodyParser::ParseAssignmentOrCall(bool requireAssignment)
{
    if (AtErrObject())
        return ParseErrStatement();
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
    const std::string name = ReadName();
    const std::string key = UpperName(name);
    const TypeCode suffix = ReadSuffix();

    const LocalSymbol* local = FindLocal(key);
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
    if (LocalSymbol object; m_lexer.Kind() == Token::Dot && FindClassVariable(key, object)) {
        m_lexer.NextToken();
        Expression code;
        if (!ParseMemberCall(object, code, true))
            return nullptr;
        return std::make_unique<EvaluateStatement>(std::move(code));
    }
    Procedure* callee = local ? nullptr : FindProcedure(key);
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
        if (!ParseCallArguments(*callee, code, parenthesised))
            return nullptr;
        return std::make_unique<EvaluateStatement>(std::move(code));
    }
    if (local && local->kind == LocalKind::Constant) {
        m_lexer.SignalError(CompileMessage::CantAssignAValueToAConstant);
        return nullptr;
    }
    if (!local) {
        auto found = m_state.names.find(key);
        if (found != m_state.names.end() && found->second.kind != SymbolKind::Variable) {
            m_lexer.SignalError(found->second.kind == SymbolKind::Constant ||
                                        found->second.kind == SymbolKind::EnumMember
                                    ? CompileMessage::CantAssignAValueToAConstant
                                    : CompileMessage::ExpectingAVarName);
            return nullptr;
        }
    }
    VariableRef target;
    bool found = false;
    if (!ResolveVariable(name, suffix, target, found))
        return nullptr;
    if (m_lexer.Kind() == Token::LeftParen) {
        if (!found || (!target.type.IsArray() && !target.type.IsVariant())) {
            m_lexer.SignalError(CompileMessage::ExpectingAnAlreadyDimensionedArray);
            return nullptr;
        }
        m_lexer.NextToken();
        Expression code;
        int count = 0;
        if (!ParseIndexes(code, count) || !m_lexer.ExpectToken(Token::Equal) || !ParseExpression(code))
            return nullptr;
        return std::make_unique<AssignElementStatement>(std::move(code), target, count);
    }
    if (target.type.IsArray()) {
        m_lexer.SignalError(CompileMessage::NotExpectingAnArrayVar);
        return nullptr;
    }
    if (!m_lexer.ExpectToken(Token::Equal))
        return nullptr;
    Expression value;
    if (!ParseExpression(value))
        return nullptr;
    if (value.IsEmpty()) {
        m_lexer.SignalError(CompileMessage::ExpectingAnExpression);
        return nullptr;
    }
    return std::make_unique<AssignStatement>(std::move(value), target);
}

// Arguments of a call: positional and named, matched to the callee's parameters; the call and the
// removal of the arguments follow them (a Function's result stays on the stack).
bool BodyParser::ParseCallArguments(Procedure& callee, Expression& out, bool parenthesised)
{
    const std::size_t count = callee.parameters.size();
    std::vector<std::optional<Expression>> arguments(count);
    std::vector<Expression> extra;
    const bool hasParamArray = count > 0 && callee.parameters.back().paramArray;
    const bool isFunction = callee.kind == ProcedureKind::Function || callee.kind == ProcedureKind::PropertyGet;
    std::size_t position = 0;
    bool named = false;
    auto atEnd = [&] {
        return parenthesised ? m_lexer.Kind() == Token::RightParen : IsStatementEnd(m_lexer.Kind());
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
                if (arguments[index]) {
                    m_lexer.SignalError(CompileMessage::ParameterAlreadyHasAValue, name);
                    return false;
                }
                Expression argument;
                bool simple = false;
                if (!ParseExpression(argument, &simple))
                    return false;
                if (simple && !callee.parameters[index].byVal)
                    argument.ops.back().code = ExprOpCode::kLoadRef;
                arguments[index] = std::move(argument);
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
                extra.push_back(std::move(argument));
            } else if (position >= count) {
                m_lexer.SignalError(kWrongNumberOfParameters);
                return false;
            } else if (!empty) {
                if (simple && !callee.parameters[position].byVal)
                    argument.ops.back().code = ExprOpCode::kLoadRef;
                arguments[position] = std::move(argument);
            }
            ++position;
        } while (m_lexer.Accept(Token::Comma));
    }
    if (parenthesised && !m_lexer.ExpectToken(Token::RightParen))
        return false;
    // Arrays go only to array parameters (or Variants), and array parameters take only arrays.
    for (std::size_t i = 0; i < count; ++i) {
        if (!arguments[i] || callee.parameters[i].paramArray)
            continue;
        const TypeCode parameter = callee.parameters[i].type.code;
        const TypeCode argument = arguments[i]->type;
        const bool mismatch = parameter.IsArray() ? !(argument.IsArray() || argument.IsVariant())
                                                  : argument.IsArray() && !parameter.IsVariant();
        if (mismatch) {
            m_lexer.SignalError(CompileMessage::ExpressionDoesNotMatchParameterType, callee.parameters[i].name);
            return false;
        }
    }
    if (isFunction)
        out.ops.push_back(ExprOp{ExprOpCode::kEmpty});
    for (std::size_t i = 0; i < count; ++i) {
        const Parameter& parameter = callee.parameters[i];
        if (parameter.paramArray) {
            for (const Expression& item : extra)
                out.Append(item);
            ExprOp pack{ExprOpCode::kPack};
            pack.count = static_cast<int>(extra.size());
            out.ops.push_back(pack);
            continue;
        }
        if (arguments[i]) {
            out.Append(*arguments[i]);
        } else if (parameter.optional) {
            out.ops.push_back(ExprOp{ExprOpCode::kMissing});
        } else {
            m_lexer.SignalError(CompileMessage::MissingParameter, parameter.name);
            return false;
        }
    }
    ExprOp call{ExprOpCode::kCall};
    call.index = m_code->AddCallee(&callee, ModuleOf(callee));
    call.count = static_cast<int>(count);
    call.type = isFunction ? callee.result.code : TypeCode();
    out.ops.push_back(call);
    if (count > 0) {
        ExprOp pop{ExprOpCode::kPop};
        pop.count = static_cast<int>(count);
        out.ops.push_back(pop);
    }
    out.type = isFunction ? callee.result.code : TypeCode();
    return true;
}

} // namespace brannoc::body
