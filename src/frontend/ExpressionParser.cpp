#include "frontend/BodyParser.h"

#include "frontend/LanguageConstants.h"
#include "frontend/NestingLimits.h"

#include "frontend/CharClasses.h"
#include "exec/InterpreterHost.h"
#include "values/Conversion.h"
#include "values/Operators.h"
#include "values/ValueCell.h"
#include "values/ValueError.h"

#include <windows.h>

#include <cmath>
#include <cstdlib>
#include <optional>

namespace brannoc::body {

// expression: {"-" | "+" | Not} factor {operator {"-" | "+" | Not} factor}
// Operator precedence with an explicit operator stack; every binary operator is left-associative.
bool BodyParser::ParseExpression(Expression& out, bool* simpleVariable)
{
    struct Pending {
        OperationId op;
        int precedence;
        bool unary;
        const char* position;
    };
    const NestingLevel level(m_expressionDepth, kMaxExpressionDepth);
    if (!level.Entered()) {
        m_lexer.SignalError(CompileMessage::MacroModuleIsTooLarge);
        return false;
    }
    Pending stack[kMaxPendingOperators];
    int depth = 0;
    bool first = true;
    bool simple = false;
    const std::size_t start = out.ops.size();
    auto popTo = [&](int precedence) {
        while (depth > 0 && stack[depth - 1].precedence >= precedence) {
            const Pending& top = stack[--depth];
            if (top.unary) {
                ExprOp op{ExprOpCode::kUnary};
                op.op = top.op;
                out.ops.push_back(op);
            } else {
                AppendBinary(out, top.op, top.position);
            }
        }
    };
    for (;;) {
        const Token word = m_lexer.Kind();
        if (word == Token::EndOfLine || word == Token::Apostrophe || word == Token::Else || word == Token::Colon ||
            word == Token::RightParen || word == Token::Equal || word == Token::Comma) {
            if (!first) {
                m_lexer.SignalError(CompileMessage::ExpectingAFactor);
                return false;
            }
            if (out.ops.size() == start) {
                m_lexer.SignalError(CompileMessage::ExpectingAnExpression);
                return false;
            }
            break;
        }
        while (m_lexer.Kind() == Token::Plus || m_lexer.Kind() == Token::Minus || m_lexer.Kind() == Token::Not) {
            if (depth >= kMaxPendingOperators) {
                m_lexer.SignalError(CompileMessage::MacroModuleIsTooLarge);
                return false;
            }
            const Token unary = m_lexer.Kind();
            m_lexer.NextToken();
            if (unary == Token::Plus)
                continue;
            stack[depth++] = Pending{unary == Token::Minus ? OperationId::kNegate : OperationId::kNot,
                                     unary == Token::Minus ? 900 : 190, true, nullptr};
            first = false;
        }
        if (!ParseFactor(out, &simple))
            return false;
        // "&" followed by H or O after an operand starts a number, not a concatenation ("a" &hi).
        if (m_lexer.Kind() == Token::LiteralNumber && m_lexer.Text().front() == '&' &&
            !ReadNumberLiteral(m_lexer.Text(), *m_lexer.TokenEnd() == '&')) {
            m_lexer.SignalError(CompileMessage::InvalidNumericConstant);
            return false;
        }
        const BinaryOperator* binary = FindBinary(m_lexer.Kind());
        if (!binary && first) {
            if (simpleVariable)
                *simpleVariable = simple;
            m_expressionIsElement = m_factorIsElement;
            return TypeCheck(out, start);
        }
        first = false;
        popTo(binary ? binary->precedence : -1);
        if (!binary)
            break;
        if (depth >= kMaxPendingOperators) {
            m_lexer.SignalError(CompileMessage::MacroModuleIsTooLarge);
            return false;
        }
        stack[depth++] = Pending{binary->op, binary->precedence, false, m_lexer.TokenStart()};
        m_lexer.NextToken();
        const Token next = m_lexer.Kind();
        if (next == Token::EndOfLine || next == Token::Apostrophe || next == Token::Colon ||
            next == Token::RightParen || next == Token::Comma || next == Token::Else) {
            m_lexer.SignalError(CompileMessage::ExpectingAFactor);
            return false;
        }
    }
    popTo(-1);
    if (simpleVariable)
        *simpleVariable = false;
    m_expressionIsElement = false;
    m_factorClass = nullptr;
    return TypeCheck(out, start);
}

namespace {

// Which operand is converted toward the other's kind when the operator runs, else 0 (not for & and Is):
// beside a Variant, the Variant (its text 5 then equals the number 5); between a String and a number of
// fixed kinds, the right one (s = 10 compares texts, 10 = s numbers, s + 5 joins two texts).
int AlignmentOf(OperationId op, TypeCode left, TypeCode right)
{
    if (op == OperationId::kConcatenate || op == OperationId::kIs || left.IsArray() || right.IsArray())
        return 0;
    const auto text = [](TypeCode type) { return type.IsString() || type.IsFixedString(); };
    const auto fixed = [&](TypeCode type) { return type.IsNumeric() || text(type); };
    const bool leftFixed = fixed(left);
    const bool rightFixed = fixed(right);
    if (leftFixed && rightFixed)
        return text(left) != text(right) ? kAlignRight : 0;
    if (leftFixed == rightFixed || !(left.IsVariant() || right.IsVariant()))
        return 0;
    return leftFixed ? kAlignRight : kAlignLeft;
}

} // namespace

void BodyParser::AlignOperands(Expression& out, TypeCode left, TypeCode right)
{
    if (!out.ops.empty() && out.ops.back().code == ExprOpCode::kBinary)
        out.ops.back().count = AlignmentOf(out.ops.back().op, left, right);
}

bool BodyParser::TypeCheck(Expression& expression, std::size_t start)
{
    std::vector<TypeCode> types;
    TypeCode pendingResult;
    const TypeCode variant(TypeCode::kVariant);
    auto refuses = [](TypeCode type) { return type.IsArray() || type.IsUserType(); };
    for (std::size_t i = start; i < expression.ops.size(); ++i) {
        ExprOp& op = expression.ops[i];
        switch (op.code) {
        case ExprOpCode::kConstant:
        case ExprOpCode::kLoad:
        case ExprOpCode::kLoadRef: types.push_back(op.type); break;
        case ExprOpCode::kMissing:
        case ExprOpCode::kEmpty: types.push_back(variant); break;
        case ExprOpCode::kCall:
            pendingResult = op.type;
            // Without arguments no kPop follows: the result slot takes the result's type at once.
            if (op.count == 0 && op.type != TypeCode() && !types.empty()) {
                types.back() = op.type;
                pendingResult = TypeCode();
            }
            break;
        case ExprOpCode::kNew:
        case ExprOpCode::kErrProperty:
        case ExprOpCode::kErrObject:
        case ExprOpCode::kLoadNew:
        case ExprOpCode::kMe:
        case ExprOpCode::kDefaultObject:
        case ExprOpCode::kWithObject: types.push_back(op.type); break;
        case ExprOpCode::kLoadPath:
        case ExprOpCode::kRefPath:
        case ExprOpCode::kPathArgument:
            types.resize(types.size() >= static_cast<std::size_t>(op.count) ? types.size() - op.count : 0);
            types.push_back(op.type);
            break;
        case ExprOpCode::kRecordSize:
            if (!types.empty())
                types.back() = op.type;
            break;
        case ExprOpCode::kTypeOf:
            // The object and the type name give way to a Boolean.
            if (types.size() >= 2)
                types.pop_back();
            if (!types.empty())
                types.back() = op.type;
            break;
        case ExprOpCode::kMemberCall:
            // The arguments and the result slot give way to the result; the object stays below it.
            types.resize(types.size() > static_cast<std::size_t>(op.count) ? types.size() - op.count - 1 : 0);
            types.push_back(op.type);
            break;
        case ExprOpCode::kMemberEnd:
            if (types.size() >= 2) {
                types[types.size() - 2] = types.back();
                types.pop_back();
            }
            break;
        case ExprOpCode::kPop:
            types.resize(types.size() >= static_cast<std::size_t>(op.count) ? types.size() - op.count : 0);
            if (!types.empty() && pendingResult != TypeCode())
                types.back() = pendingResult;
            pendingResult = TypeCode();
            break;
        case ExprOpCode::kPack:
            types.resize(types.size() >= static_cast<std::size_t>(op.count) ? types.size() - op.count : 0);
            types.push_back(variant.WithRank(1));
            break;
        case ExprOpCode::kBuiltin:
            types.resize(types.size() >= static_cast<std::size_t>(op.count) ? types.size() - op.count : 0);
            if (op.type != TypeCode())
                types.push_back(op.type);
            // The deferred arguments' code after the call was checked when it was compiled.
            i += static_cast<std::size_t>(op.variable);
            break;
        case ExprOpCode::kJump:
        case ExprOpCode::kNullExit: break;
        case ExprOpCode::kElement:
        case ExprOpCode::kElementArgument:
            types.resize(types.size() >= static_cast<std::size_t>(op.count) ? types.size() - op.count : 0);
            types.push_back(op.type);
            break;
        case ExprOpCode::kElementWriteBack:
        case ExprOpCode::kPathWriteBack:
        case ExprOpCode::kTypedValue: break;
        case ExprOpCode::kLetValue:
            if (!types.empty())
                types.back() = op.type;
            break;
        case ExprOpCode::kIndexValue:
            // The indexes and the indexed value give way to one element.
            types.resize(types.size() > static_cast<std::size_t>(op.count) ? types.size() - op.count - 1 : 0);
            types.push_back(op.type);
            break;
        case ExprOpCode::kUnary:
            if (types.empty() || refuses(types.back())) {
                m_lexer.SignalError(CompileMessage::OperandOperatorTypeMismatch);
                return false;
            }
            break;
        case ExprOpCode::kBinary: {
            if (types.size() < 2) {
                m_lexer.SignalError(CompileMessage::OperandOperatorTypeMismatch);
                return false;
            }
            const TypeCode right = types.back();
            types.pop_back();
            const TypeCode left = types.back();
            bool refused = refuses(left) || refuses(right);
            if (op.op == OperationId::kIs)
                refused = refused || !(left.IsObject() || left.IsVariant()) || !(right.IsObject() || right.IsVariant());
            if (refused) {
                m_lexer.SignalError(CompileMessage::OperandOperatorTypeMismatch);
                return false;
            }
            op.count = AlignmentOf(op.op, left, right);
            if (IsComparison(op.op) || op.op == OperationId::kLike || op.op == OperationId::kIs)
                types.back() = TypeCode(TypeCode::kBoolean);
            else if (op.op == OperationId::kConcatenate)
                types.back() = TypeCode(TypeCode::kString);
            else
                types.back() = left == right ? left : variant;
            break;
        }
        }
    }
    expression.type = types.size() == 1 ? types.back() : variant;
    return true;
}

void BodyParser::AppendConstant(Expression& out, Variant value)
{
    ExprOp op{ExprOpCode::kConstant};
    op.type = TypeOfValue(value);
    op.index = m_code->AddConstant(std::move(value));
    out.ops.push_back(op);
    out.type = op.type;
}

bool BodyParser::EvaluateConstant(const Expression& code, Variant& result)
{
    std::vector<Variant> stack;
    const RaiseFn previous = SetRaiseHandler(nullptr);
    bool ok = true;
    for (const ExprOp& op : code.ops) {
        if (op.code == ExprOpCode::kConstant) {
            stack.push_back(m_code->ConstantAt(op.index));
        } else if (op.code == ExprOpCode::kUnary && !stack.empty()) {
            ok = ApplyUnary(op.op, stack.back());
        } else if (op.code == ExprOpCode::kBinary && stack.size() >= 2) {
            ok = ApplyBinary(op.op, stack[stack.size() - 2], stack.back());
            stack.pop_back();
        } else {
            ok = false;
        }
        if (!ok)
            break;
    }
    (void)SetRaiseHandler(previous);
    if (!ok || stack.size() != 1)
        return false;
    result = std::move(stack.back());
    return true;
}

namespace {

// The first error raised while an operator is folded.
long s_foldError = 0;
void RecordFoldError(long number)
{
    if (s_foldError == 0)
        s_foldError = number;
}

// Runs work (folding or converting constants) with the errors it raises recorded instead of reported;
// error receives the first of them (0 for none).
template <typename Work> bool WithFoldErrorsRecorded(long& error, Work work)
{
    s_foldError = 0;
    const RaiseFn previous = SetRaiseHandler(&RecordFoldError);
    const bool done = work();
    (void)SetRaiseHandler(previous);
    error = s_foldError;
    return done;
}

} // namespace

bool FoldConstantOperands(OperationId op, Variant& left, const Variant& right, long& error)
{
    return WithFoldErrorsRecorded(error, [&] {
        // Constants have fixed kinds: a text beside a number is aligned as it would be when the operator
        // runs.
        const bool alignsRight = AlignmentOf(op, TypeOfValue(left), TypeOfValue(right)) == kAlignRight;
        if (!alignsRight)
            return ApplyBinary(op, left, right);
        Variant aligned = right;
        return AlignStaticKinds(op, left, StaticKind::kFixed, aligned, StaticKind::kFixed) &&
               ApplyBinary(op, left, aligned);
    });
}

bool FoldConstantOperand(OperationId op, Variant& value, long& error)
{
    return WithFoldErrorsRecorded(error, [&] { return ApplyUnary(op, value); });
}

bool ConvertConstant(Variant& value, VARTYPE kind, long& error)
{
    return WithFoldErrorsRecorded(error, [&] { return ChangeType(value, kind); });
}

void BodyParser::AppendBinary(Expression& out, OperationId op, const char* position)
{
    const std::size_t size = out.ops.size();
    // Is compares object references, which constants (Nothing) are not folded into.
    if (size >= 2 && op != OperationId::kIs && out.ops[size - 2].code == ExprOpCode::kConstant &&
        out.ops[size - 1].code == ExprOpCode::kConstant) {
        // Operands that are the two newest constants belong to this operator alone: they are taken out of
        // the table, so that a long chain of folded operators keeps one value instead of every
        // intermediate (and a string built by & grows in place).
        const int leftIndex = out.ops[size - 2].index;
        const int rightIndex = out.ops[size - 1].index;
        const bool owned = m_code->IsNewestConstant(rightIndex) && leftIndex + 1 == rightIndex;
        Variant right;
        Variant left;
        if (owned) {
            right = m_code->TakeNewestConstant();
            left = m_code->TakeNewestConstant();
        } else {
            right = m_code->ConstantAt(rightIndex);
            left = m_code->ConstantAt(leftIndex);
        }
        Variant leftCopy;
        if (owned && op != OperationId::kConcatenate)
            leftCopy = left; // kept for the unfolded form below
        long foldError = 0;
        const bool folded = FoldConstantOperands(op, left, right, foldError);
        if (folded) {
            out.ops.resize(size - 2);
            AppendConstant(out, std::move(left));
            return;
        }
        if (owned) {
            // Not folded: the operands go back as they were (after a failed & the left one is unchanged
            // or the failure is reported below).
            out.ops[size - 2].index = m_code->AddConstant(op == OperationId::kConcatenate ? std::move(left)
                                                                                        : std::move(leftCopy));
            out.ops[size - 1].index = m_code->AddConstant(std::move(right));
        }
        // The same operation would fail each time the statement runs ("Divide by zero.", "Type mismatch.").
        if (foldError != 0) {
            const auto message = static_cast<CompileMessage>(foldError);
            if (position)
                m_lexer.SignalErrorAt(message, {}, position);
            else
                m_lexer.SignalError(message);
        }
    }
    ExprOp entry{ExprOpCode::kBinary};
    entry.op = op;
    out.ops.push_back(entry);
    out.type = TypeCode(TypeCode::kVariant);
}

// number [suffix]: a decimal, &H or &O literal; a suffix converts it, "$" is a type mismatch
bool BodyParser::ParseNumber(Expression& out)
{
    const std::string text(m_lexer.Text());
    const char following = m_lexer.FollowingChar();
    const char* start = m_lexer.TokenStart();
    const char* end = m_lexer.TokenEnd();
    Variant value;
    const std::optional<NumberLiteral> literal = ReadNumberLiteral(text, *end == '&');
    if (!literal) {
        m_lexer.SignalError(CompileMessage::InvalidNumericConstant);
        return false;
    }
    switch (literal->kind) {
    case NumberLiteral::Kind::kInteger: value.SetInteger(static_cast<SHORT>(literal->whole)); break;
    case NumberLiteral::Kind::kLong: value.SetLong(literal->whole); break;
    case NumberLiteral::Kind::kDouble: value.SetDouble(literal->real); break;
    }
    m_lexer.NextToken();
    const TypeCode suffix = TypeOfSuffix(following);
    if (suffix != TypeCode() && m_lexer.TokenStart() == end) {
        // A number with the String suffix is a type mismatch; one that its suffix's kind cannot hold
        // overflows (as in Const declarations).
        if (suffix.IsString()) {
            m_lexer.SignalError(CompileMessage::TypeMismatch);
            return false;
        }
        m_lexer.NextToken();
        const RaiseFn previous = SetRaiseHandler(nullptr);
        const bool converted = ChangeType(value, static_cast<VARTYPE>(suffix.ValueTag()));
        (void)SetRaiseHandler(previous);
        if (!converted) {
            m_lexer.SignalErrorAt(CompileMessage::Overflow, {}, start);
            return false;
        }
    }
    AppendConstant(out, std::move(value));
    return true;
}

// factor: "(" expression ")" | number | #date# | "text" | True | False | Win32 | Win16 | Empty | Null | Nothing
//     | New class | TypeOf ... | "." member {"." member} | Me {"." member} | builtin | Err | record path | name
bool BodyParser::ParseFactor(Expression& out, bool* simpleVariable)
{
    *simpleVariable = false;
    m_factorClass = nullptr;
    m_factorIsElement = false;
    const Token word = m_lexer.Kind();
    switch (word) {
    case Token::LeftParen: {
        // A parenthesised element is a value, never a reference.
        m_lexer.NextToken();
        const bool parsed = ParseExpression(out);
        m_factorIsElement = false;
        return parsed && m_lexer.ExpectToken(Token::RightParen);
    }
    case Token::LiteralNumber: return ParseNumber(out);
    case Token::Hash:
    case Token::LiteralDate: {
        if (word == Token::Hash && !m_lexer.ScanDateLiteral()) {
            m_lexer.SignalError(CompileMessage::ExpectingAFactor);
            return false;
        }
        // The text between the marks, read as a date in the engine's locale.
        Variant value;
        const RaiseFn previous = SetRaiseHandler(nullptr);
        const bool read = value.SetString(Widen(m_lexer.Text())) && ChangeType(value, VT_DATE);
        (void)SetRaiseHandler(previous);
        if (!read) {
            m_lexer.SignalError(CompileMessage::InvalidNumericConstant);
            return false;
        }
        if (!PassTextLiteral(m_lexer))
            return false;
        AppendConstant(out, std::move(value));
        return true;
    }
    case Token::LiteralString: {
        Variant value;
        if (!value.SetString(Widen(m_lexer.Text()))) {
            m_lexer.SignalError(CompileMessage::OutOfMemory);
            return false;
        }
        if (!PassTextLiteral(m_lexer))
            return false;
        AppendConstant(out, std::move(value));
        return true;
    }
    case Token::True:
    case Token::False:
    case Token::Win32:
    case Token::Win16: {
        // Win32 and Win16 tell the platform the macro runs on: this one is 32-bit.
        Variant value;
        value.SetBoolean(word == Token::True || word == Token::Win32);
        m_lexer.NextToken();
        AppendConstant(out, std::move(value));
        return true;
    }
    case Token::Empty:
    case Token::Null: {
        Variant value;
        if (word == Token::Null)
            value.SetNull();
        m_lexer.NextToken();
        AppendConstant(out, std::move(value));
        return true;
    }
    case Token::Nothing: {
        Variant value;
        value.SetObject(nullptr, false);
        m_lexer.NextToken();
        AppendConstant(out, std::move(value));
        return true;
    }
    case Token::New: {
        m_lexer.NextToken();
        if (!IsNameToken(m_lexer.Kind())) {
            m_lexer.SignalError(CompileMessage::ExpectingAValidDataTypeEgInteger);
            return false;
        }
        const Module* classModule = FindClassModule(m_lexer.Text());
        if (!classModule)
            return ParseNewLibraryClass(out);
        m_lexer.NextToken();
        AppendModuleObject(out, ExprOpCode::kNew, *classModule);
        return true;
    }
    case Token::TypeOf: return ParseTypeOf(out);
    case Token::Dot: {
        if (RecordWithBlock())
            return ParseRecordFactor(out, simpleVariable);
        // .member: the innermost With block's object.
        const Module* classModule = nullptr;
        const char* start = m_lexer.TokenStart();
        return AppendWithObject(out, classModule) && ParseMemberChain(out, classModule, start);
    }
    case Token::Me: {
        const Module* classModule = nullptr;
        const char* start = m_lexer.TokenStart();
        return AppendMe(out, classModule) && ParseMemberChain(out, classModule, start);
    }
    default: break;
    }
    if (!IsNameToken(word)) {
        // Reserved words that name built-ins (Abs, CInt, Len, String ...).
        if (const BuiltinRecord* record = FindBuiltin(word)) {
            m_lexer.NextToken();
            const TypeCode suffix = ReadSuffix();
            return ParseBuiltinCall(*record, suffix, out, false) && ParseResultIndexes(out);
        }
        m_lexer.SignalError(CompileMessage::ExpectingAFactor);
        return false;
    }
    if (AtErrObject())
        return ParseErrObject(out);
    if (AtRecordPath())
        return ParseRecordFactor(out, simpleVariable);
    return ParseName(out, simpleVariable);
}

void BodyParser::AppendModuleObject(Expression& out, ExprOpCode code, const Module& module)
{
    ExprOp object{code};
    object.module = &module;
    object.type = TypeCode(TypeCode::kObject);
    out.ops.push_back(object);
    out.type = object.type;
    m_factorClass = &module;
}

// name [suffix] ["(" arguments ")"] {"." member}: a name's value and the members read from it
bool BodyParser::ParseName(Expression& out, bool* simpleVariable)
{
    const char* start = m_lexer.TokenStart();
    if (!ParseNameValue(out, simpleVariable))
        return false;
    if (m_lexer.Kind() != Token::Dot)
        return true;
    *simpleVariable = false;
    return ParseMemberChain(out, m_factorClass, start);
}

// name [suffix] ["(" arguments ")" {"(" index {"," index} ")"}]: a constant, a function call, an object
// module's default instance, an extension's name, a built-in, a variable or an array element
bool BodyParser::ParseNameValue(Expression& out, bool* simpleVariable)
{
    const Token word = m_lexer.Kind();
    const char* namePosition = m_lexer.TokenStart();
    const std::string name = ReadName();
    const std::string key = UpperName(name);
    const TypeCode suffix = ReadSuffix();
    const LocalSymbol* local = FindLocal(key);
    if (local && local->kind == LocalKind::Constant) {
        AppendConstant(out, m_code->ConstantAt(local->constant));
        return true;
    }
    // Inside a Function its own name is the result variable unless arguments follow.
    Procedure* callee = nullptr;
    if (!local || (&m_procedure == FindProcedure(key) && m_lexer.Kind() == Token::LeftParen))
        callee = FindProcedure(key);
    if (callee) {
        if (!HasResult(*callee)) {
            m_lexer.SignalError(CompileMessage::SubsCantBeUsedInExpressions, name);
            return false;
        }
        if (suffix != TypeCode() && suffix != callee->result.code) {
            m_lexer.SignalError(CompileMessage::FunctionIsDefinedWithADifferentValueType, name);
            return false;
        }
        const bool parenthesised = m_lexer.Accept(Token::LeftParen);
        if (!parenthesised && !callee->parameters.empty() &&
            !(callee->parameters[0].optional || callee->parameters[0].paramArray)) {
            m_lexer.SignalError(CompileMessage::MissingParameter, callee->parameters[0].name);
            return false;
        }
        if (!ParseCallArguments(*callee, out, parenthesised ? ArgumentList::Parenthesised : ArgumentList::None))
            return false;
        m_factorClass = ClassOfType(callee->result);
        return !parenthesised || ParseResultIndexes(out);
    }
    if (!local) {
        auto found = m_state.names.find(key);
        if (found != m_state.names.end()) {
            if (found->second.kind == SymbolKind::Constant) {
                AppendConstant(out, FromConstant(m_state.constants[found->second.index]->value));
                return true;
            }
            if (found->second.kind == SymbolKind::EnumMember) {
                AppendConstant(out, FromConstant(
                                        m_state.enums[found->second.index]->members[found->second.member].value));
                return true;
            }
        }
        // Public constants of the modules reached through '#Uses, then the language's own constants,
        // unless the macro declared the name.
        if (ConstantValue used; found == m_state.names.end() && FindReachedConstant(m_reached, key, used)) {
            AppendConstant(out, FromConstant(used));
            return true;
        }
        if (ConstantValue language; found == m_state.names.end() && FindLanguageConstant(key, language)) {
            AppendConstant(out, FromConstant(language));
            return true;
        }
    }
    // The name of an object module that this module reaches: its default instance.
    if (!local && suffix == TypeCode() && m_state.names.count(key) == 0) {
        if (const Module* objectModule = FindClassModule(name); objectModule && objectModule->Kind() == ModuleKind::Object) {
            AppendModuleObject(out, ExprOpCode::kDefaultObject, *objectModule);
            return true;
        }
    }
    if (ExtensionName extension; suffix == TypeCode() && AtExtensionName(key, extension))
        return ParseExtensionName(name, extension, MemberAccess::Get, out);
    if (word == Token::Dialog && !local && m_state.names.count(key) == 0 && !FindProcedure(key))
        return ParseDialogCall(out, false);
    if (const BuiltinRecord* record = BuiltinFor(word, key))
        return ParseBuiltinCall(*record, suffix, out, false) && ParseResultIndexes(out);
    VariableRef ref;
    bool found = false;
    if (!ResolveVariable(name, suffix, ref, found))
        return false;
    const ObjectVariable object = ClassOfVariable(key);
    if (m_lexer.Kind() == Token::LeftParen) {
        if (object.classModule) {
            // object(arguments): the class's default member.
            AppendLoad(out, ref, object);
            const Module* classModule = object.classModule;
            if (!ParseDefaultMember(out, classModule, MemberAccess::Get, namePosition))
                return false;
            m_factorClass = classModule;
            return true;
        }
        if (!found || (!ref.type.IsArray() && !ref.type.IsVariant() && !ref.type.IsObject())) {
            m_lexer.SignalError(CompileMessage::ExpectingAnAlreadyDimensionedArray);
            return false;
        }
        m_lexer.NextToken();
        int count = 0;
        if (!ParseIndexes(out, count))
            return false;
        ExprOp element{ExprOpCode::kElement};
        element.scope = ref.scope;
        element.index = ref.index;
        element.module = ref.module;
        element.count = count;
        element.type = ref.type.IsArray() ? ref.type.Scalar() : TypeCode(TypeCode::kVariant);
        // The checker sees the indexes replaced by one value of the element's type.
        out.ops.push_back(element);
        out.type = element.type;
        m_factorIsElement = true;
        // v(0)(1): an element that holds an array is indexed in turn; the result is a value.
        if (m_lexer.Kind() == Token::LeftParen && out.type.IsVariant()) {
            m_factorIsElement = false;
            return ParseResultIndexes(out);
        }
        return true;
    }
    AppendLoad(out, ref, object);
    *simpleVariable = !object.autoNew;
    m_factorClass = object.classModule;
    return true;
}

// TypeOf object Is Type, where Type is Object, a class or object module, or the name of an automation
// object's type (optionally "Library.Type").
bool BodyParser::ParseTypeOf(Expression& out)
{
    m_lexer.NextToken();
    bool simpleVariable = false;
    if (!ParseFactor(out, &simpleVariable))
        return false;
    if (!(out.type.IsObject() || out.type.IsVariant())) {
        m_lexer.SignalError(CompileMessage::ExpectingAnObjectExpression);
        return false;
    }
    if (!m_lexer.ExpectToken(Token::Is))
        return false;
    const Token word = m_lexer.Kind();
    if (word != Token::Object && !IsNameToken(word)) {
        m_lexer.SignalError(CompileMessage::ExpectingASpecificObjectType);
        return false;
    }
    std::string typeName(m_lexer.Text());
    m_lexer.NextToken();
    if (word != Token::Object && m_lexer.Kind() == Token::Dot && m_lexer.PreviousFollowingChar() == '.') {
        m_lexer.NextToken();
        if (!IsNameToken(m_lexer.Kind())) {
            m_lexer.SignalError(CompileMessage::ExpectingASpecificObjectType);
            return false;
        }
        typeName += '.';
        typeName.append(m_lexer.Text());
        m_lexer.NextToken();
    } else if (word != Token::Object && (IsEnumName(UpperName(typeName)) || FindUserType(typeName))) {
        m_lexer.SignalError(CompileMessage::ExpectingASpecificObjectType, typeName);
        return false;
    }
    Variant name;
    if (!name.SetString(Widen(typeName))) {
        m_lexer.SignalError(CompileMessage::OutOfMemory);
        return false;
    }
    AppendConstant(out, std::move(name));
    ExprOp test{ExprOpCode::kTypeOf};
    test.type = TypeCode(TypeCode::kBoolean);
    test.classModule = word == Token::Object ? nullptr : FindClassModule(typeName);
    out.ops.push_back(test);
    out.type = test.type;
    m_factorClass = nullptr;
    m_factorIsElement = false;
    return true;
}

// {"(" index {"," index} ")"}: each list indexes the array or Variant value before it
bool BodyParser::ParseResultIndexes(Expression& out)
{
    // Only a result that can hold an array takes indexes; anything else leaves "(" to the caller. Each
    // further argument list indexes the element the previous one gave (Array(Array(1, 2))(0)(1)).
    while (m_lexer.Kind() == Token::LeftParen && (out.type.IsVariant() || out.type.IsArray())) {
        m_lexer.NextToken();
        const TypeCode indexed = out.type;
        int count = 0;
        if (!ParseIndexes(out, count))
            return false;
        ExprOp element{ExprOpCode::kIndexValue};
        element.count = count;
        element.type = indexed.IsArray() ? indexed.Scalar() : TypeCode(TypeCode::kVariant);
        out.ops.push_back(element);
        out.type = element.type;
        m_factorClass = nullptr;
    }
    return true;
}

// (after "(") index {"," index} ")": no more indexes than the largest number of dimensions
bool BodyParser::ParseIndexes(Expression& out, int& count)
{
    count = 0;
    do {
        if (!ParseExpression(out))
            return false;
        ++count;
    } while (m_lexer.Accept(Token::Comma));
    if (count > TypeCode::kMaxRank) {
        m_lexer.SignalError(CompileMessage::TooManyDimensions);
        return false;
    }
    return m_lexer.ExpectToken(Token::RightParen);
}

} // namespace brannoc::body
