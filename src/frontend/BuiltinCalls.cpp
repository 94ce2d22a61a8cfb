// Calls of built-in functions and instructions: finding the built-in a name stands for, reading the
// arguments (positional and named), checking them against the record's parameter kinds, folding pure
// calls with constant arguments, and laying out the call's code.
#include "frontend/BodyParser.h"

#include "code/BuiltinCall.h"
#include "dialogs/DialogBuiltins.h"
#include "frontend/CharClasses.h"
#include "library/BuiltinArguments.h"
#include "library/BuiltinGroups.h"
#include "values/Conversion.h"
#include "values/ValueError.h"

#include <optional>

namespace brannoc::body {

namespace {

// A word that may name a parameter: an identifier or any keyword spelled with letters ("Len" is one).
bool IsWordToken(Token token, std::string_view text)
{
    return IsNameToken(token) || (!text.empty() && CharClasses::Get().IsIdentifierStart(text[0]));
}

// Whether a Null argument may pass through to the result: parameters of the "S" and Variant kinds.
bool MayGiveNull(const BuiltinRecord& record)
{
    for (int i = 0; i < record.ParameterCount(); ++i) {
        const char kind = record.KindOf(i);
        if (kind == parameter_kind::kNullableString || kind == parameter_kind::kVariant ||
            kind == parameter_kind::kNumber)
            return true;
    }
    return false;
}

// The static type of the call's value.
TypeCode ResultType(const BuiltinRecord& record, bool stringResult)
{
    switch (record.result) {
    case ResultKind::kNone: return TypeCode();
    case ResultKind::kByte: return TypeCode(TypeCode::kByte);
    case ResultKind::kBoolean: return TypeCode(TypeCode::kBoolean);
    case ResultKind::kInteger: return TypeCode(TypeCode::kInteger);
    case ResultKind::kLong: return TypeCode(TypeCode::kLong);
    case ResultKind::kSingle: return TypeCode(TypeCode::kSingle);
    case ResultKind::kDouble: return TypeCode(TypeCode::kDouble);
    case ResultKind::kCurrency: return TypeCode(TypeCode::kCurrency);
    case ResultKind::kDate: return TypeCode(TypeCode::kDate);
    case ResultKind::kString:
        // A Null argument may make the result Null, so only then the "$" form is sure to give a String.
        return stringResult || record.convert || !MayGiveNull(record) ? TypeCode(TypeCode::kString) : TypeCode(TypeCode::kVariant);
    case ResultKind::kVariant:
    case ResultKind::kArgumentKind: return TypeCode(TypeCode::kVariant);
    }
    return TypeCode(TypeCode::kVariant);
}

TypeCode TypeOfResultKind(ResultKind kind)
{
    BuiltinRecord probe;
    probe.result = kind;
    return ResultType(probe, false);
}

bool IsConstantCode(const Expression& code) { return code.ops.size() == 1 && code.ops[0].code == ExprOpCode::kConstant; }

// The value kind of a parameter kind that fixes one, else VT_EMPTY.
VARTYPE TagOfKind(char kind)
{
    switch (kind) {
    case parameter_kind::kString: return VT_BSTR;
    case parameter_kind::kInteger: return VT_I2;
    case parameter_kind::kLong: return VT_I4;
    case parameter_kind::kSingle: return VT_R4;
    case parameter_kind::kDouble: return VT_R8;
    case parameter_kind::kBoolean: return VT_BOOL;
    default: return VT_EMPTY;
    }
}

// A constant argument of a parameter with a fixed kind is converted to that kind once, here; one that
// does not convert stays as written and raises when the call runs.
void ConvertConstantArgument(CompiledProcedure& code, char kind, Expression& argument)
{
    const VARTYPE tag = TagOfKind(kind);
    const Variant& constant = code.ConstantAt(argument.ops[0].index);
    if (tag == VT_EMPTY || constant.Tag() == tag)
        return;
    Variant converted(constant);
    const RaiseFn previous = SetRaiseHandler(nullptr);
    const bool changed = ChangeType(converted, tag);
    (void)SetRaiseHandler(previous);
    if (!changed)
        return;
    argument.ops[0].type = TypeOfValue(converted);
    argument.ops[0].index = code.AddConstant(std::move(converted));
}

// Whether an argument after argument `index` calls a procedure.
bool LaterArgumentMayYield(const std::vector<std::optional<Expression>>& arguments, std::size_t index)
{
    for (std::size_t i = index + 1; i < arguments.size(); ++i) {
        if (arguments[i] && CodeMayYield(*arguments[i]))
            return true;
    }
    return false;
}

} // namespace

const BuiltinRecord* BodyParser::BuiltinFor(Token word, const std::string& upperName) const
{
    const BuiltinRecord* record = FindBuiltin(word);
    if (!record || FindLocal(upperName) || m_state.names.count(upperName) != 0 || FindProcedure(upperName))
        return nullptr;
    VariableRef ref;
    return FindUsedVariable(upperName, ref) ? nullptr : record;
}

// builtin[suffix] ["(" arguments ")"] in an expression; builtin [arguments] | builtin "(" arguments ")" as a statement
// An instruction has no result; a suffix must be the result's type.
bool BodyParser::ParseBuiltinCall(const BuiltinRecord& called, TypeCode suffix, Expression& out, bool statement)
{
    const std::string_view name = KeywordText(called.keyword);
    if (m_lexer.IsBlocked(called.keyword)) {
        m_lexer.SignalError(CompileMessage::ThisLanguageFeatureHasBeenDisabled, name);
        return false;
    }
    // Error as a statement raises an error; as a function it gives a message.
    const BuiltinRecord& record = !statement                        ? called
                                  : called.keyword == Token::Error ? ErrorStatementRecord()
                                  : DialogInstructionForm(called.keyword) ? *DialogInstructionForm(called.keyword)
                                                                          : called;
    if (!statement && record.IsInstruction()) {
        m_lexer.SignalError(CompileMessage::TheBuiltInInstructionCantHaveAResult, name);
        return false;
    }
    bool stringResult = false;
    if (suffix != TypeCode()) {
        stringResult = suffix.IsString() && record.result == ResultKind::kString;
        if (!stringResult && suffix != TypeOfResultKind(record.result)) {
            m_lexer.SignalError(CompileMessage::FunctionIsDefinedWithADifferentValueType, name);
            return false;
        }
    }
    bool parenthesised = false;
    if (m_lexer.Kind() == Token::LeftParen && (!statement || ParenthesisedToEnd())) {
        parenthesised = true;
        m_lexer.NextToken();
        // Clipboard with a text is the instruction that sets it: its function form only reads.
        if (!statement && record.keyword == Token::Clipboard && m_lexer.Kind() != Token::RightParen) {
            m_lexer.SignalError(CompileMessage::SubsCantBeUsedInExpressions, name);
            return false;
        }
    }
    std::vector<std::optional<Expression>> arguments;
    if ((parenthesised || statement) && !ParseBuiltinArguments(record, parenthesised, arguments))
        return false;
    if (parenthesised && !m_lexer.ExpectToken(Token::RightParen))
        return false;
    // Every parameter gets an entry; the repeated last parameter of an any-count built-in only those written.
    const std::size_t fixed = static_cast<std::size_t>(record.ParameterCount() - (record.TakesAnyCount() ? 1 : 0));
    if (arguments.size() < fixed)
        arguments.resize(fixed);
    if ((record.keyword == Token::Len || record.keyword == Token::LenB) && arguments[0] &&
        arguments[0]->type.IsUserType())
        return ParseRecordLength(record, *arguments[0], out);
    if (!CheckBuiltinArguments(record, arguments))
        return false;
    const std::size_t start = out.ops.size();
    if (!FoldBuiltinCall(record, arguments, stringResult, out))
        EmitBuiltinCall(record, arguments, stringResult, out);
    if (statement && !record.IsInstruction() && out.ops.size() > start) {
        ExprOp pop{ExprOpCode::kPop};
        pop.count = 1;
        out.ops.push_back(pop);
    }
    out.type = statement ? TypeCode() : ResultType(record, stringResult);
    return true;
}

// [argument {"," argument}] where argument is [expression] | name ":=" expression; a stream argument may take "#"
// The arguments up to ")" (or the end of the statement): positional ones fill the parameters in
// order, named ones ("name := value") the parameter of that name.
bool BodyParser::ParseBuiltinArguments(const BuiltinRecord& record, bool parenthesised,
                                       std::vector<std::optional<Expression>>& arguments)
{
    const int count = record.ParameterCount();
    // An any-count built-in's repeated last parameter gets entries only for the arguments written.
    arguments.assign(static_cast<std::size_t>(count - (record.TakesAnyCount() ? 1 : 0)), std::nullopt);
    auto atEnd = [&] { return parenthesised ? m_lexer.Kind() == Token::RightParen : IsStatementEnd(m_lexer.Kind()); };
    if (atEnd())
        return true;
    int position = 0;
    bool named = false;
    do {
        if (IsWordToken(m_lexer.Kind(), m_lexer.Text()) && NextIsColonEqual()) {
            named = true;
            const std::string parameter(m_lexer.Text());
            int index = 0;
            while (index < count && !SameName(std::string(record.ParameterName(index)), parameter))
                ++index;
            if (index == count) {
                m_lexer.SignalError(CompileMessage::NoSuchNamedParameter, parameter);
                return false;
            }
            m_lexer.NextToken();
            m_lexer.NextToken();
            if (arguments[static_cast<std::size_t>(index)]) {
                m_lexer.SignalError(CompileMessage::ParameterAlreadyHasAValue, parameter);
                return false;
            }
            Expression argument;
            if (!ParseExpression(argument))
                return false;
            arguments[static_cast<std::size_t>(index)] = std::move(argument);
            continue;
        }
        if (named) {
            m_lexer.SignalError(CompileMessage::Expecting, ":=");
            return false;
        }
        if (position >= count && !record.TakesAnyCount()) {
            m_lexer.SignalError(CompileMessage::WrongNumberOfParameters);
            return false;
        }
        if (static_cast<std::size_t>(position) >= arguments.size())
            arguments.resize(static_cast<std::size_t>(position) + 1);
        if (record.TakesStreamArgument())
            (void)m_lexer.Accept(Token::Hash);
        const bool empty = m_lexer.Kind() == Token::Comma || atEnd();
        if (!empty) {
            Expression argument;
            if (!ParseExpression(argument))
                return false;
            arguments[static_cast<std::size_t>(position)] = std::move(argument);
        }
        ++position;
    } while (m_lexer.Accept(Token::Comma));
    // A leading optional parameter (InStr's start) is left out when one argument fewer is written, as
    // long as the last parameter is required (Dir's pattern and mask are both optional).
    if (!named && count > 1 && position == count - 1 && record.IsOptional(0) && !record.IsOptional(count - 1) &&
        !record.TakesAnyCount()) {
        arguments.insert(arguments.begin(), std::nullopt);
        arguments.pop_back();
    }
    return true;
}

bool BodyParser::CheckBuiltinArguments(const BuiltinRecord& record,
                                       const std::vector<std::optional<Expression>>& arguments)
{
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        const int index = static_cast<int>(i);
        if (arguments[i]) {
            if (!CheckBuiltinArgument(record, index, *arguments[i]))
                return false;
        } else if (index < record.ParameterCount() && !record.IsOptional(index)) {
            m_lexer.SignalError(CompileMessage::MissingParameter, record.ParameterName(index));
            return false;
        }
    }
    return true;
}

bool BodyParser::CheckBuiltinArgument(const BuiltinRecord& record, int index, const Expression& argument)
{
    const char kind = record.KindOf(index);
    const TypeCode type = argument.type;
    if (kind == parameter_kind::kArray) {
        if (!type.IsArray() && !type.IsVariant()) {
            m_lexer.SignalError(CompileMessage::ExpectingAnArrayVar);
            return false;
        }
        return true;
    }
    // A Variant parameter takes any value: a record or an array (of records too) goes in as a Variant
    // that holds it (TypeName, VarType, IsArray ...).
    const bool accepts = kind == parameter_kind::kVariant || (!type.IsUserType() && !type.IsArray());
    if (!accepts) {
        m_lexer.SignalError(CompileMessage::ExpressionDoesNotMatchParameterType, record.ParameterName(index));
        return false;
    }
    return true;
}

// Len "(" record ")" | LenB "(" record ")": the size of its type's record (the layout rule of RecordType).
bool BodyParser::ParseRecordLength(const BuiltinRecord& record, const Expression& argument, Expression& out)
{
    (void)record;
    out.Append(argument);
    ExprOp size{ExprOpCode::kRecordSize};
    size.type = TypeCode(TypeCode::kLong);
    out.ops.push_back(size);
    out.type = size.type;
    return true;
}

bool BodyParser::FoldBuiltinCall(const BuiltinRecord& record, const std::vector<std::optional<Expression>>& arguments,
                                 bool stringResult, Expression& out)
{
    if (!record.IsPure())
        return false;
    constexpr std::size_t kMostFolded = 16;
    if (arguments.size() > kMostFolded)
        return false;
    Variant values[kMostFolded];
    bool given[kMostFolded] = {};
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        if (!arguments[i])
            continue;
        if (!IsConstantCode(*arguments[i]))
            return false;
        if (!values[i].CopyFrom(m_code->ConstantAt(arguments[i]->ops[0].index).Raw()))
            return false;
        given[i] = true;
    }
    Variant result;
    if (!FoldBuiltin(record, values, given, static_cast<int>(arguments.size()), result))
        return false;
    if (record.IsInstruction() || (stringResult && result.Tag() == VT_NULL))
        return false;
    AppendConstant(out, std::move(result));
    return true;
}

void BodyParser::EmitBuiltinCall(const BuiltinRecord& record, std::vector<std::optional<Expression>>& arguments,
                                 bool stringResult, Expression& out)
{
    auto call = std::make_unique<BuiltinCall>();
    call->record = &record;
    call->stringResult = stringResult;
    call->arguments.resize(arguments.size());
    // When an argument calls a procedure, every argument is computed before the call, in order, so that
    // the procedure cannot change a variable that an earlier argument reads (a chosen-argument
    // built-in keeps its choices apart).
    bool computeAll = false;
    for (std::size_t i = 0; i < arguments.size() && !record.ChoosesArgument(); ++i)
        computeAll = computeAll || (arguments[i] && CodeMayYield(*arguments[i]));
    std::vector<std::size_t> deferred;
    // Exits after Null-rule arguments computed before the call, patched to skip to the call's end.
    std::vector<std::size_t> nullExits;
    for (std::size_t i = 0; i < arguments.size(); ++i) {
        BuiltinArgumentCode& argument = call->arguments[i];
        if (!arguments[i])
            continue;
        Expression& code = *arguments[i];
        if (computeAll || CodeMayYield(code)) {
            if (record.ChoosesArgument() && i > 0) {
                deferred.push_back(i);
                continue;
            }
            out.Append(code);
            argument.mode = BuiltinArgumentCode::Mode::kStacked;
            argument.position = call->stackedCount++;
            // A Null string argument makes the result Null with nothing else evaluated: a procedure that
            // a later argument calls must not run either.
            if (record.KindOf(static_cast<int>(i)) == parameter_kind::kNullableString &&
                LaterArgumentMayYield(arguments, i)) {
                ExprOp exit{ExprOpCode::kNullExit};
                exit.count = call->stackedCount;
                exit.variable = stringResult ? 1 : 0;
                nullExits.push_back(out.ops.size());
                out.ops.push_back(exit);
            }
            continue;
        }
        // A variable is handed over by reference, so reading it never copies its string or array.
        if (code.ops.size() == 1 && code.ops[0].code == ExprOpCode::kLoad)
            code.ops[0].code = ExprOpCode::kLoadRef;
        if (IsConstantCode(code))
            ConvertConstantArgument(*m_code, record.KindOf(static_cast<int>(i)), code);
        PrefixTypedForm(code);
        argument.mode = BuiltinArgumentCode::Mode::kLazy;
        argument.code = std::move(code);
    }
    ExprOp op{ExprOpCode::kBuiltin};
    op.count = call->stackedCount;
    op.type = ResultType(record, stringResult);
    BuiltinCall& layout = *call;
    op.index = m_code->AddBuiltinCall(std::move(call));
    out.ops.push_back(op);
    const std::size_t callOp = out.ops.size() - 1;
    const std::size_t regionStart = out.ops.size();
    std::vector<std::size_t> jumps;
    for (std::size_t i : deferred) {
        layout.arguments[i].mode = BuiltinArgumentCode::Mode::kDeferred;
        layout.arguments[i].position = static_cast<int>(out.ops.size() - regionStart);
        out.Append(*arguments[i]);
        jumps.push_back(out.ops.size());
        out.ops.push_back(ExprOp{ExprOpCode::kJump});
    }
    const std::size_t regionEnd = out.ops.size();
    for (std::size_t jump : jumps)
        out.ops[jump].count = static_cast<int>(regionEnd - jump - 1);
    layout.deferredLength = static_cast<int>(regionEnd - regionStart);
    out.ops[callOp].variable = layout.deferredLength;
    for (std::size_t exit : nullExits)
        out.ops[exit].index = static_cast<int>(regionEnd - exit - 1);
}

} // namespace brannoc::body
