#include "frontend/BodyCompiler.h"

#include "frontend/CharClasses.h"
#include "frontend/ConstantReader.h"
#include "exec/InterpreterHost.h"
#include "frontend/Statements.h"
#include "values/Conversion.h"
#include "values/ValueCell.h"
#include "values/ValueError.h"

#include <windows.h>

#include <cmath>
#include <cstdlib>
#include <optional>
#include <unordered_map>

namespace brannoc {

namespace {

std::wstring Widen(std::string_view text)
{
    if (text.empty())
        return {};
    const int length = MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring out(static_cast<std::size_t>(length), L'\0');
    MultiByteToWideChar(CP_ACP, 0, text.data(), static_cast<int>(text.size()), out.data(), length);
    return out;
}

Variant FromConstant(const ConstantValue& value)
{
    Variant out;
    switch (value.type.Code()) {
    case TypeCode::kByte: out.SetByte(static_cast<BYTE>(value.integer)); break;
    case TypeCode::kBoolean: out.SetBoolean(value.integer != 0); break;
    case TypeCode::kInteger: out.SetInteger(static_cast<SHORT>(value.integer)); break;
    case TypeCode::kLong: out.SetLong(static_cast<LONG>(value.integer)); break;
    case TypeCode::kSingle: out.SetSingle(static_cast<FLOAT>(value.real)); break;
    case TypeCode::kDouble: out.SetDouble(value.real); break;
    case TypeCode::kCurrency: out.SetCurrencyUnits(std::llround(value.real * 10000.0)); break;
    case TypeCode::kDate: out.SetDate(value.real); break;
    case TypeCode::kString: (void)out.SetString(value.text); break;
    case TypeCode::kNull: out.SetNull(); break;
    default: break;
    }
    return out;
}

TypeCode TypeOfValue(const Variant& value)
{
    switch (value.Tag()) {
    case VT_UI1: return TypeCode(TypeCode::kByte);
    case VT_BOOL: return TypeCode(TypeCode::kBoolean);
    case VT_I2: return TypeCode(TypeCode::kInteger);
    case VT_I4: return TypeCode(TypeCode::kLong);
    case VT_R4: return TypeCode(TypeCode::kSingle);
    case VT_R8: return TypeCode(TypeCode::kDouble);
    case VT_CY: return TypeCode(TypeCode::kCurrency);
    case VT_DATE: return TypeCode(TypeCode::kDate);
    case VT_DECIMAL: return TypeCode(TypeCode::kDecimal);
    case VT_BSTR: return TypeCode(TypeCode::kString);
    default: return TypeCode(TypeCode::kVariant);
    }
}

// The compiler shares the run-time message "Wrong number of parameters." for calls with too many arguments.
constexpr CompileMessage kWrongNumberOfParameters = static_cast<CompileMessage>(10019);

struct BinaryOperator {
    Token token;
    OperationId op;
    int precedence;
};

constexpr BinaryOperator kBinaryOperators[] = {
    {Token::Caret, OperationId::kPower, 800},      {Token::Star, OperationId::kMultiply, 700},
    {Token::Slash, OperationId::kDivide, 700},     {Token::Backslash, OperationId::kIntegerDivide, 600},
    {Token::Mod, OperationId::kModulo, 500},       {Token::Plus, OperationId::kAdd, 400},
    {Token::Minus, OperationId::kSubtract, 400},   {Token::Ampersand, OperationId::kConcatenate, 300},
    {Token::Equal, OperationId::kEqual, 200},      {Token::NotEqual, OperationId::kNotEqual, 200},
    {Token::Less, OperationId::kLess, 200},        {Token::Greater, OperationId::kGreater, 200},
    {Token::LessEqual, OperationId::kLessEqual, 200}, {Token::GreaterEqual, OperationId::kGreaterEqual, 200},
    {Token::Like, OperationId::kLike, 200},        {Token::Is, OperationId::kIs, 200},
    {Token::And, OperationId::kAnd, 150},          {Token::Or, OperationId::kOr, 140},
    {Token::Xor, OperationId::kXor, 130},          {Token::Eqv, OperationId::kEqv, 120},
    {Token::Imp, OperationId::kImp, 110},
};

const BinaryOperator* FindBinary(Token token)
{
    for (const BinaryOperator& entry : kBinaryOperators) {
        if (entry.token == token)
            return &entry;
    }
    return nullptr;
}

TypeCode TypeOfWord(Token token)
{
    switch (token) {
    case Token::Boolean: return TypeCode(TypeCode::kBoolean);
    case Token::Byte: return TypeCode(TypeCode::kByte);
    case Token::Integer: return TypeCode(TypeCode::kInteger);
    case Token::Long: return TypeCode(TypeCode::kLong);
    case Token::Single: return TypeCode(TypeCode::kSingle);
    case Token::Double: return TypeCode(TypeCode::kDouble);
    case Token::Currency: return TypeCode(TypeCode::kCurrency);
    case Token::Date: return TypeCode(TypeCode::kDate);
    case Token::Decimal: return TypeCode(TypeCode::kDecimal);
    case Token::String: return TypeCode(TypeCode::kString);
    case Token::Variant: return TypeCode(TypeCode::kVariant);
    default: return TypeCode();
    }
}

const char* SkipBlanks(const char* p)
{
    while (*p == ' ' || *p == '\t')
        ++p;
    return p;
}

bool IsStatementEnd(Token token)
{
    return token == Token::EndOfLine || token == Token::Apostrophe || token == Token::Colon || token == Token::Else;
}

enum class LocalKind { Variable, Constant };

struct LocalSymbol {
    LocalKind kind = LocalKind::Variable;
    VariableRef ref;
    int constant = -1;
    // Object variables declared as a class module: the class (members bind at compile time) and
    // whether "As New" makes the instance on first use.
    const Module* classModule = nullptr;
    bool autoNew = false;
};

struct Label {
    int index = -1;
};

struct PendingGoTo {
    JumpStatement* jump;
    std::string name;
    const char* position;
};

enum class BlockKind { If, Select, For, Do, While, With };

struct Block {
    BlockKind kind;
    int index = 0;                      // statement index of the opener
    Statement* opener = nullptr;
    std::vector<JumpStatement*> exits;  // jumps to the statement after the block's end
    bool hasElse = false;
    bool expectCase = false;
    int selectorSlot = -1;
    // Do: whether the Do line tests a condition.
    bool doHasCondition = false;
    // For: the counter's name and hidden slots.
    std::string counterName;
    VariableRef counter;
    int endSlot = -1;
    int stepSlot = -1;
    bool isEach = false;
    // Select Case: the mark slot and the Case lines that carry statements.
    int markSlot = -1;
    std::vector<CaseLineStatement*> caseLines;
};

std::string_view BlockWord(BlockKind kind)
{
    switch (kind) {
    case BlockKind::If: return "If";
    case BlockKind::Select: return "Select";
    case BlockKind::For: return "For";
    case BlockKind::Do: return "Do";
    case BlockKind::While: return "While";
    case BlockKind::With: return "With";
    }
    return {};
}

class BodyParser final {
public:
    BodyParser(Module& module, Procedure& procedure, Lexer& lexer)
        : m_module(module), m_state(*module.State()), m_procedure(procedure), m_lexer(lexer)
    {
    }

    bool Compile();

private:
    using StatementPtr = std::unique_ptr<Statement>;

    // Lines and blocks.
    StatementPtr ParseLine();
    StatementPtr ParseEnd();
    StatementPtr ParseInline(bool inSingleLineIf);
    StatementPtr ParseSimple();
    StatementPtr ParseIf(bool lineStart);
    StatementPtr ParseElseIf();
    StatementPtr ParseElse();
    StatementPtr ParseSelect();
    StatementPtr ParseCase();
    StatementPtr ParseFor();
    StatementPtr ParseNext();
    StatementPtr ParseDo();
    StatementPtr ParseLoop();
    StatementPtr ParseWhile();
    StatementPtr ParseWend();
    StatementPtr ParseWith();
    StatementPtr ParseGoTo();
    StatementPtr ParseExit();
    StatementPtr ParseDebug();
    StatementPtr ParseDim(bool isStatic);
    StatementPtr ParseConst();
    StatementPtr ParseAssignmentOrCall(bool requireAssignment);
    StatementPtr ParseCallStatement();
    StatementPtr Declaration();
    Block* Innermost(BlockKind kind);
    void CloseBlock(Block& block, int endIndex);
    int CurrentIndex() const { return m_lexer.Line() - m_procedure.firstLine; }

    // Expressions.
    [[nodiscard]] bool ParseExpression(Expression& out, bool* simpleVariable = nullptr);
    [[nodiscard]] bool ParseFactor(Expression& out, bool* simpleVariable);
    [[nodiscard]] bool ParseNumber(Expression& out);
    [[nodiscard]] bool ParseName(Expression& out, bool* simpleVariable);
    [[nodiscard]] bool ParseCallArguments(Procedure& callee, Expression& out, bool parenthesised);
    void AppendBinary(Expression& out, OperationId op);
    // Walks the postfix code with a stack of operand types; the first operator that refuses its operands
    // reports "Operand/operator type mismatch.". Sets the expression's result type.
    [[nodiscard]] bool TypeCheck(Expression& expression, std::size_t start);
    void AppendConstant(Expression& out, Variant value);
    // Evaluates code made of constants and operators only (unary ones included) at compile time.
    [[nodiscard]] bool EvaluateConstant(const Expression& code, Variant& result);

    // Names.
    std::string ReadName();
    TypeCode ReadSuffix();
    [[nodiscard]] bool ResolveVariable(const std::string& name, TypeCode suffix, VariableRef& ref, bool& found);
    const LocalSymbol* FindLocal(const std::string& upperName) const;
    Procedure* FindProcedure(const std::string& upperName) const;
    const Module* ModuleOf(const Procedure& procedure) const;
    bool FindUsedVariable(const std::string& upperName, VariableRef& ref) const;
    [[nodiscard]] bool ReadType(TypeCode& type, const Module** classModule = nullptr);
    // The class module of that name among the modules this one uses, or null.
    const Module* FindClassModule(std::string_view name) const;
    // A member procedure of a class module: Property Let (assignment) or any other kind otherwise.
    Procedure* FindMember(const Module& classModule, const std::string& upperName, bool assignment) const;
    // After "variable.": the member name, its procedure and the call; out receives the code and the
    // call is bound to the object held by the variable.
    [[nodiscard]] bool ParseMemberCall(const LocalSymbol& object, Expression& out, bool statement);
    // The object variable of that name declared as a class module (a local, a parameter or a variable
    // of this module), or false.
    bool FindClassVariable(const std::string& upperName, LocalSymbol& out) const;
    [[nodiscard]] bool ReadBounds(std::vector<std::pair<long, long>>& bounds);
    // After "(" of an element reference: the indexes up to ")"; count receives their number.
    [[nodiscard]] bool ParseIndexes(Expression& out, int& count);
    [[nodiscard]] bool ParseBound(Expression& out, bool upper);
    StatementPtr ParseForEach();
    StatementPtr ParseReDim();
    StatementPtr ParseMid();
    StatementPtr ParseErase();
    StatementPtr ParseAlign(bool right);
    // A declared variable named at the current token; false after reporting `message`.
    [[nodiscard]] bool ReadExistingVariable(VariableRef& ref, CompileMessage message);
    bool NextIsColonEqual() const;
    bool ParenthesisedToEnd() const;

    Module& m_module;
    ParseState& m_state;
    Procedure& m_procedure;
    Lexer& m_lexer;
    CompiledProcedure* m_code = nullptr;
    std::unordered_map<std::string, LocalSymbol> m_locals;
    std::unordered_map<std::string, Label> m_labels;
    std::vector<PendingGoTo> m_gotos;
    std::vector<Block> m_blocks;
    int m_exitIndex = 0;
};

bool BodyParser::Compile()
{
    auto code = std::make_unique<CompiledProcedure>(m_procedure);
    m_code = code.get();
    const int errorsBefore = m_lexer.ErrorCount();

    for (const Parameter& parameter : m_procedure.parameters) {
        ParameterInfo info;
        info.type = parameter.type.code;
        info.byVal = parameter.byVal;
        info.optional = parameter.optional;
        info.paramArray = parameter.paramArray;
        info.hasDefault = parameter.hasDefault;
        if (parameter.hasDefault)
            info.defaultValue = FromConstant(parameter.defaultValue);
        const int slot = m_code->AddSlot(parameter.type.code);
        m_code->AddParameter(std::move(info));
        LocalSymbol symbol;
        symbol.ref = VariableRef{StorageScope::Local, slot, parameter.type.code};
        if (!parameter.type.className.empty() && !parameter.type.code.IsArray())
            symbol.classModule = FindClassModule(parameter.type.className);
        m_locals[UpperName(parameter.name)] = symbol;
    }
    if (m_procedure.kind == ProcedureKind::Function || m_procedure.kind == ProcedureKind::PropertyGet) {
        const int slot = m_code->AddSlot(m_procedure.result.code);
        m_code->SetResultSlot(slot);
        LocalSymbol symbol;
        symbol.ref = VariableRef{StorageScope::Local, slot, m_procedure.result.code};
        m_locals[UpperName(m_procedure.name)] = symbol;
    }

    const int lastIndex = m_procedure.lineCount - 1;
    m_exitIndex = lastIndex;
    m_code->Append(std::make_unique<NoOperationStatement>())->SetListing(ListingOf(m_lexer.LineText()));

    const int endLine = m_procedure.firstLine + lastIndex;
    if (lastIndex > 1) {
        m_lexer.SeekLine(m_procedure.firstLine + 1);
        while (!m_lexer.AtEnd() && m_lexer.Line() < endLine) {
            if (m_lexer.ErrorLimitReached() || m_lexer.MemoryExhausted())
                break;
            const int index = CurrentIndex();
            while (m_code->StatementCount() < index)
                m_code->AppendShared(&EmptyStatement());
            m_lexer.ClearStatementError();
            const char* start = m_lexer.TokenStart();
            StatementPtr statement = ParseLine();
            if (statement && m_lexer.Kind() != Token::EndOfLine && m_lexer.Kind() != Token::Apostrophe)
                m_lexer.SignalError(CompileMessage::UnexpectedText, m_lexer.Text());
            if (statement) {
                std::string_view rest = m_lexer.LineText();
                const char* end = rest.data() + rest.size();
                statement->SetListing(ListingOf(std::string_view(start, static_cast<std::size_t>(end - start))));
                m_code->Append(std::move(statement));
            } else {
                m_code->AppendShared(&EmptyStatement());
            }
            if (!m_lexer.SkipStatement())
                break;
        }
    }
    while (m_code->StatementCount() < lastIndex)
        m_code->AppendShared(&EmptyStatement());

    if (!m_blocks.empty()) {
        m_lexer.SeekLine(endLine);
        m_lexer.ClearStatementError();
        m_lexer.SignalError(CompileMessage::UnterminatedBlockStatement, BlockWord(m_blocks.back().kind));
        m_blocks.clear();
    }
    m_lexer.SeekLine(endLine);
    m_code->Append(std::make_unique<NoOperationStatement>())->SetListing(ListingOf(m_lexer.LineText()));

    for (const PendingGoTo& pending : m_gotos) {
        auto found = m_labels.find(UpperName(pending.name));
        if (found == m_labels.end() || found->second.index < 0) {
            m_lexer.ClearStatementError();
            m_lexer.SignalErrorAt(CompileMessage::GoToLabelHasNotBeenDefined, pending.name, pending.position);
            continue;
        }
        pending.jump->SetTarget(found->second.index);
    }

    if (m_lexer.ErrorCount() != errorsBefore)
        return false;
    m_procedure.code = std::move(code);
    return true;
}

BodyParser::StatementPtr BodyParser::Declaration()
{
    return std::make_unique<DeclarationStatement>();
}

Block* BodyParser::Innermost(BlockKind kind)
{
    if (m_blocks.empty() || m_blocks.back().kind != kind)
        return nullptr;
    return &m_blocks.back();
}

void BodyParser::CloseBlock(Block& block, int endIndex)
{
    for (JumpStatement* jump : block.exits)
        jump->SetTarget(endIndex + 1);
    for (CaseLineStatement* line : block.caseLines)
        line->SetTarget(endIndex + 1);
}

BodyParser::StatementPtr BodyParser::ParseLine()
{
    Token word = m_lexer.Kind();
    if (word == Token::EndOfLine || word == Token::Apostrophe || word == Token::Rem)
        return nullptr;

    // A Select Case block takes only Case lines before its first Case.
    if (!m_blocks.empty() && m_blocks.back().expectCase && word != Token::Case) {
        m_lexer.SignalError(CompileMessage::ExpectingACaseDefinition);
        return nullptr;
    }

    // A label: a name directly followed by ":" (not ":=").
    if (IsNameToken(word) && word != Token::Print) {
        const char* after = SkipBlanks(m_lexer.TokenEnd());
        if (after[0] == ':' && after[1] != '=' && FindProcedure(UpperName(m_lexer.Text())) == nullptr) {
            Label& label = m_labels[UpperName(m_lexer.Text())];
            if (label.index < 0)
                label.index = CurrentIndex();
            m_lexer.NextToken();
            m_lexer.NextToken();
            word = m_lexer.Kind();
            if (word == Token::EndOfLine || word == Token::Apostrophe)
                return nullptr;
            StatementPtr inner = ParseLine();
            if (!inner)
                return nullptr;
            return std::make_unique<LabelledStatement>(std::move(inner));
        }
    }

    // A blocked keyword's statement is refused (a blocked recognised name may still name a variable).
    if (IsReservedWord(word) && m_lexer.IsBlocked(word)) {
        m_lexer.SignalError(CompileMessage::ThisLanguageFeatureHasBeenDisabled, KeywordText(word));
        return nullptr;
    }
    switch (word) {
    case Token::End: return ParseEnd();
    case Token::If: return ParseIf(true);
    case Token::ElseIf: return ParseElseIf();
    case Token::Else: return ParseElse();
    case Token::Select: return ParseSelect();
    case Token::Case: return ParseCase();
    case Token::For: return ParseFor();
    case Token::Next: return ParseNext();
    case Token::Do: return ParseDo();
    case Token::Loop: return ParseLoop();
    case Token::While: return ParseWhile();
    case Token::Wend: return ParseWend();
    case Token::With: return ParseWith();
    case Token::Dim: return ParseDim(false);
    case Token::Static: return ParseDim(true);
    case Token::Const: return ParseConst();
    default: return ParseInline(false);
    }
}

BodyParser::StatementPtr BodyParser::ParseEnd()
{
    m_lexer.NextToken();
    const Token word = m_lexer.Kind();
    if (word == Token::EndOfLine || word == Token::Apostrophe || word == Token::Else || word == Token::Colon) {
        auto statement = std::make_unique<EndStatement>();
        statement->SetKeyword(TokenNumber(Token::End));
        return statement;
    }
    const int index = CurrentIndex();
    Block* block = m_blocks.empty() ? nullptr : &m_blocks.back();
    const bool closes = block && ((word == Token::If && block->kind == BlockKind::If) ||
                                  (word == Token::Select && block->kind == BlockKind::Select) ||
                                  (word == Token::With && block->kind == BlockKind::With));
    if (!closes) {
        m_lexer.SignalError(CompileMessage::UnexpectedEndStatement);
        return nullptr;
    }
    m_lexer.NextToken();
    if (block->kind == BlockKind::If || block->kind == BlockKind::Select) {
        auto* branch = static_cast<BranchStatement*>(block->opener);
        if (!block->hasElse)
            branch->SetElseTarget(index + 1);
    }
    CloseBlock(*block, index);
    m_blocks.pop_back();
    auto statement = std::make_unique<NoOperationStatement>();
    statement->SetKeyword(TokenNumber(Token::End));
    return statement;
}

BodyParser::StatementPtr BodyParser::ParseInline(bool inSingleLineIf)
{
    auto list = std::make_unique<StatementList>();
    int count = 0;
    StatementPtr single;
    for (;;) {
        while (m_lexer.Accept(Token::Colon)) {
        }
        const Token word = m_lexer.Kind();
        if (word == Token::EndOfLine || word == Token::Apostrophe || word == Token::Rem)
            break;
        if (word == Token::Else) {
            if (inSingleLineIf)
                break;
            m_lexer.SignalError(CompileMessage::UnexpectedText, "Else");
            return nullptr;
        }
        StatementPtr statement = ParseSimple();
        if (!statement)
            return nullptr;
        ++count;
        if (count == 1) {
            single = std::move(statement);
        } else {
            if (single)
                list->Add(std::move(single));
            list->Add(std::move(statement));
        }
        if (m_lexer.Kind() != Token::Colon)
            break;
    }
    const Token word = m_lexer.Kind();
    if (!(word == Token::EndOfLine || word == Token::Apostrophe || (inSingleLineIf && word == Token::Else))) {
        m_lexer.SignalError(CompileMessage::UnexpectedText, m_lexer.Text());
        return nullptr;
    }
    if (inSingleLineIf) {
        if (single)
            list->Add(std::move(single));
        return list;
    }
    if (count == 0)
        return nullptr;
    if (count == 1)
        return single;
    return list;
}

BodyParser::StatementPtr BodyParser::ParseSimple()
{
    StatementPtr statement;
    const Token word = m_lexer.Kind();
    if (IsReservedWord(word) && m_lexer.IsBlocked(word)) {
        m_lexer.SignalError(CompileMessage::ThisLanguageFeatureHasBeenDisabled, KeywordText(word));
        return nullptr;
    }
    switch (word) {
    case Token::If: statement = ParseIf(false); break;
    case Token::GoTo: statement = ParseGoTo(); break;
    case Token::Exit: statement = ParseExit(); break;
    case Token::Debug: statement = ParseDebug(); break;
    case Token::Call: statement = ParseCallStatement(); break;
    case Token::End: {
        m_lexer.NextToken();
        if (!IsStatementEnd(m_lexer.Kind())) {
            m_lexer.SignalError(CompileMessage::UnexpectedEndStatement);
            return nullptr;
        }
        statement = std::make_unique<EndStatement>();
        break;
    }
    case Token::ReDim: statement = ParseReDim(); break;
    case Token::Mid:
        if (*SkipBlanks(m_lexer.TokenEnd()) == '(' && FindLocal(UpperName(m_lexer.Text())) == nullptr) {
            statement = ParseMid();
            break;
        }
        statement = ParseAssignmentOrCall(false);
        break;
    case Token::Erase: statement = ParseErase(); break;
    case Token::LSet:
    case Token::RSet: statement = ParseAlign(word == Token::RSet); break;
    case Token::Let:
        m_lexer.NextToken();
        statement = ParseAssignmentOrCall(true);
        break;
    case Token::Set:
        m_lexer.NextToken();
        statement = ParseAssignmentOrCall(true);
        break;
    default: statement = ParseAssignmentOrCall(false); break;
    }
    if (statement && statement->KeywordToken() == 0 && IsReservedWord(word))
        statement->SetKeyword(TokenNumber(word));
    if (statement)
        statement->SetOwner(m_code);
    return statement;
}

BodyParser::StatementPtr BodyParser::ParseIf(bool lineStart)
{
    m_lexer.NextToken();
    Expression condition;
    if (!ParseExpression(condition))
        return nullptr;
    if (!m_lexer.ExpectToken(Token::Then))
        return nullptr;
    const Token word = m_lexer.Kind();
    if (word == Token::EndOfLine || word == Token::Apostrophe) {
        if (!lineStart) {
            m_lexer.SignalError(CompileMessage::ExpectingAnExpression);
            return nullptr;
        }
        auto branch = std::make_unique<BranchStatement>();
        const int index = CurrentIndex();
        branch->AddBranch(std::move(condition), index + 1);
        branch->SetKeyword(TokenNumber(Token::If));
        Block block{BlockKind::If};
        block.index = index;
        block.opener = branch.get();
        m_blocks.push_back(block);
        return branch;
    }
    auto thenPart = ParseInline(true);
    if (!thenPart)
        return nullptr;
    std::unique_ptr<StatementList> elsePart;
    if (m_lexer.Accept(Token::Else)) {
        auto parsed = ParseInline(true);
        if (!parsed)
            return nullptr;
        elsePart.reset(static_cast<StatementList*>(parsed.release()));
    }
    auto statement = std::make_unique<SingleLineIfStatement>(
        std::move(condition), std::unique_ptr<StatementList>(static_cast<StatementList*>(thenPart.release())),
        std::move(elsePart));
    statement->SetKeyword(TokenNumber(Token::If));
    return statement;
}

BodyParser::StatementPtr BodyParser::ParseElseIf()
{
    Block* block = Innermost(BlockKind::If);
    if (!block || block->hasElse) {
        m_lexer.SignalError(CompileMessage::UnexpectedText, "ElseIf");
        return nullptr;
    }
    m_lexer.NextToken();
    Expression condition;
    if (!ParseExpression(condition) || !m_lexer.ExpectToken(Token::Then))
        return nullptr;
    auto* branch = static_cast<BranchStatement*>(block->opener);
    branch->AddBranch(std::move(condition), CurrentIndex() + 1);
    auto jump = std::make_unique<JumpStatement>();
    jump->SetKeyword(TokenNumber(Token::ElseIf));
    block->exits.push_back(jump.get());
    return jump;
}

BodyParser::StatementPtr BodyParser::ParseElse()
{
    Block* block = Innermost(BlockKind::If);
    if (!block || block->hasElse) {
        m_lexer.SignalError(CompileMessage::UnexpectedText, "Else");
        return nullptr;
    }
    m_lexer.NextToken();
    block->hasElse = true;
    static_cast<BranchStatement*>(block->opener)->SetElseTarget(CurrentIndex() + 1);
    auto jump = std::make_unique<JumpStatement>();
    jump->SetKeyword(TokenNumber(Token::Else));
    block->exits.push_back(jump.get());
    return jump;
}

BodyParser::StatementPtr BodyParser::ParseSelect()
{
    m_lexer.NextToken();
    if (!m_lexer.ExpectToken(Token::Case))
        return nullptr;
    Expression selector;
    if (!ParseExpression(selector))
        return nullptr;
    auto branch = std::make_unique<BranchStatement>();
    const int slot = m_code->AddSlot(TypeCode(TypeCode::kVariant));
    branch->SetSelector(std::move(selector), slot);
    branch->SetKeyword(TokenNumber(Token::Select));
    Block block{BlockKind::Select};
    block.index = CurrentIndex();
    block.opener = branch.get();
    block.expectCase = true;
    block.selectorSlot = slot;
    m_blocks.push_back(block);
    return branch;
}

BodyParser::StatementPtr BodyParser::ParseCase()
{
    Block* block = Innermost(BlockKind::Select);
    if (!block || block->hasElse) {
        m_lexer.SignalError(CompileMessage::UnexpectedText, "Case");
        return nullptr;
    }
    m_lexer.NextToken();
    auto* branch = static_cast<BranchStatement*>(block->opener);
    const int index = CurrentIndex();
    auto jump = std::make_unique<JumpStatement>();
    jump->SetKeyword(TokenNumber(Token::Case));
    const bool isElse = m_lexer.Accept(Token::Else);
    if (isElse) {
        block->hasElse = true;
        branch->SetElseTarget(index + 1);
    } else {
        const VariableRef selector{StorageScope::Local, block->selectorSlot, TypeCode(TypeCode::kVariant)};
        auto loadSelector = [&](Expression& out) {
            ExprOp op;
            op.code = ExprOpCode::kLoad;
            op.scope = selector.scope;
            op.index = selector.index;
            op.type = selector.type;
            out.ops.push_back(op);
        };
        Expression condition;
        int items = 0;
        do {
            Expression item;
            if (m_lexer.Accept(Token::Is)) {
                const BinaryOperator* comparison = FindBinary(m_lexer.Kind());
                if (!comparison || !IsComparison(comparison->op)) {
                    m_lexer.SignalError(CompileMessage::ExpectingComparison);
                    return nullptr;
                }
                m_lexer.NextToken();
                loadSelector(item);
                if (!ParseExpression(item))
                    return nullptr;
                AppendBinary(item, comparison->op);
            } else {
                Expression low;
                if (!ParseExpression(low))
                    return nullptr;
                loadSelector(item);
                if (m_lexer.Accept(Token::To)) {
                    item.Append(low);
                    AppendBinary(item, OperationId::kGreaterEqual);
                    loadSelector(item);
                    if (!ParseExpression(item))
                        return nullptr;
                    AppendBinary(item, OperationId::kLessEqual);
                    AppendBinary(item, OperationId::kAnd);
                } else {
                    item.Append(low);
                    AppendBinary(item, OperationId::kEqual);
                }
            }
            condition.Append(item);
            if (++items > 1)
                AppendBinary(condition, OperationId::kOr);
        } while (m_lexer.Accept(Token::Comma));
        branch->AddBranch(std::move(condition), index + 1);
    }
    block->expectCase = false;
    if (m_lexer.Kind() == Token::Colon) {
        // Statements after ":" on the Case line: the Select enters the line itself through the mark.
        StatementPtr rest = ParseInline(false);
        if (!rest)
            return nullptr;
        auto body = std::make_unique<StatementList>();
        body->SetOwner(m_code);
        body->Add(std::move(rest));
        if (block->markSlot < 0) {
            block->markSlot = m_code->AddSlot(TypeCode(TypeCode::kVariant));
            branch->SetMarkSlot(block->markSlot);
        }
        if (isElse)
            branch->SetElseTarget(index, true);
        else {
            branch->SetBranchTarget(branch->BranchCount() - 1, index);
            branch->MarkLastBranch();
        }
        auto line = std::make_unique<CaseLineStatement>(block->markSlot, std::move(body));
        line->SetKeyword(TokenNumber(Token::Case));
        block->caseLines.push_back(line.get());
        return line;
    }
    block->exits.push_back(jump.get());
    return jump;
}

BodyParser::StatementPtr BodyParser::ParseFor()
{
    m_lexer.NextToken();
    if (m_lexer.Accept(Token::Each))
        return ParseForEach();
    if (!IsNameToken(m_lexer.Kind())) {
        m_lexer.SignalError(CompileMessage::ExpectingAScalarNumberVar);
        return nullptr;
    }
    const std::string name = ReadName();
    const TypeCode suffix = ReadSuffix();
    VariableRef counter;
    bool found = false;
    if (!ResolveVariable(name, suffix, counter, found))
        return nullptr;
    if (counter.type.IsArray() || !(counter.type.IsNumeric() || counter.type.IsVariant())) {
        m_lexer.SignalError(CompileMessage::ExpectingAScalarNumberVar);
        return nullptr;
    }
    if (!m_lexer.ExpectToken(Token::Equal))
        return nullptr;
    Expression bounds;
    if (!ParseExpression(bounds) || !m_lexer.ExpectToken(Token::To) || !ParseExpression(bounds))
        return nullptr;
    bool hasStep = false;
    if (m_lexer.Accept(Token::Step)) {
        hasStep = true;
        if (!ParseExpression(bounds))
            return nullptr;
    }
    const int endSlot = m_code->AddSlot(TypeCode(TypeCode::kVariant));
    const int stepSlot = m_code->AddSlot(TypeCode(TypeCode::kVariant));
    auto statement = std::make_unique<ForStatement>(counter, std::move(bounds), hasStep, endSlot, stepSlot);
    statement->SetKeyword(TokenNumber(Token::For));
    Block block{BlockKind::For};
    block.index = CurrentIndex();
    block.opener = statement.get();
    block.counterName = UpperName(name);
    block.counter = counter;
    block.endSlot = endSlot;
    block.stepSlot = stepSlot;
    m_blocks.push_back(block);
    return statement;
}

BodyParser::StatementPtr BodyParser::ParseForEach()
{
    if (!IsNameToken(m_lexer.Kind())) {
        m_lexer.SignalError(CompileMessage::ExpectingAVarName);
        return nullptr;
    }
    const std::string name = ReadName();
    const TypeCode suffix = ReadSuffix();
    VariableRef element;
    bool found = false;
    if (!ResolveVariable(name, suffix, element, found))
        return nullptr;
    if (element.type.IsArray()) {
        m_lexer.SignalError(CompileMessage::NotExpectingAnArrayVar);
        return nullptr;
    }
    if (!m_lexer.ExpectToken(Token::In))
        return nullptr;
    Expression group;
    if (!ParseExpression(group))
        return nullptr;
    const int arraySlot = m_code->AddSlot(TypeCode(TypeCode::kVariant));
    const int positionSlot = m_code->AddSlot(TypeCode(TypeCode::kVariant));
    auto statement = std::make_unique<ForEachStatement>(element, std::move(group), arraySlot, positionSlot);
    statement->SetKeyword(TokenNumber(Token::For));
    Block block{BlockKind::For};
    block.index = CurrentIndex();
    block.opener = statement.get();
    block.counterName = UpperName(name);
    block.counter = element;
    block.endSlot = arraySlot;
    block.stepSlot = positionSlot;
    block.isEach = true;
    m_blocks.push_back(block);
    return statement;
}

bool BodyParser::ReadExistingVariable(VariableRef& ref, CompileMessage message)
{
    if (!IsNameToken(m_lexer.Kind())) {
        m_lexer.SignalError(message);
        return false;
    }
    const std::string name = ReadName();
    const TypeCode suffix = ReadSuffix();
    bool found = false;
    if (!ResolveVariable(name, suffix, ref, found))
        return false;
    if (!found) {
        m_lexer.SignalError(message, name);
        return false;
    }
    return true;
}

BodyParser::StatementPtr BodyParser::ParseReDim()
{
    m_lexer.NextToken();
    const bool preserve = m_lexer.Accept(Token::Preserve);
    VariableRef target;
    if (!ReadExistingVariable(target, CompileMessage::ExpectingADynamicArrayVar))
        return nullptr;
    if (!(target.type.IsVariant() && !target.type.IsArray()) && target.type.Rank() != TypeCode::kDynamicRank) {
        m_lexer.SignalError(CompileMessage::ExpectingADynamicArrayVar);
        return nullptr;
    }
    if (!m_lexer.ExpectToken(Token::LeftParen))
        return nullptr;
    Expression bounds;
    int dimensions = 0;
    do {
        Expression first;
        if (!ParseExpression(first))
            return nullptr;
        if (m_lexer.Accept(Token::To)) {
            bounds.Append(first);
            if (!ParseExpression(bounds))
                return nullptr;
        } else {
            Variant base;
            base.SetLong(m_module.OptionBase());
            AppendConstant(bounds, std::move(base));
            bounds.Append(first);
        }
        if (++dimensions > TypeCode::kMaxRank) {
            m_lexer.SignalError(CompileMessage::TooManyDimensions);
            return nullptr;
        }
    } while (m_lexer.Accept(Token::Comma));
    if (!m_lexer.ExpectToken(Token::RightParen))
        return nullptr;
    const int rank = target.type.Rank();
    if (target.type.IsArray() && rank != TypeCode::kDynamicRank && rank != dimensions) {
        m_lexer.SignalError(CompileMessage::CantChangeTheNumberOfIndexes);
        return nullptr;
    }
    auto statement = std::make_unique<ReDimStatement>(std::move(bounds), target, dimensions, preserve);
    statement->SetKeyword(TokenNumber(Token::ReDim));
    return statement;
}

BodyParser::StatementPtr BodyParser::ParseMid()
{
    m_lexer.NextToken();
    if (!m_lexer.ExpectToken(Token::LeftParen))
        return nullptr;
    VariableRef target;
    if (!ReadExistingVariable(target, CompileMessage::ExpectingASimpleVarExpression))
        return nullptr;
    if (target.type.IsArray() || !(target.type.IsString() || target.type.IsFixedString() || target.type.IsVariant()) ||
        m_lexer.Kind() != Token::Comma) {
        m_lexer.SignalError(CompileMessage::ExpectingASimpleVarExpression);
        return nullptr;
    }
    m_lexer.NextToken();
    Expression code;
    if (!ParseExpression(code))
        return nullptr;
    const ExprOp& start = code.ops.back();
    if (code.ops.size() == 1 && start.code == ExprOpCode::kConstant) {
        Variant position(m_code->ConstantAt(start.index));
        const RaiseFn previous = SetRaiseHandler(nullptr);
        const bool converted = ChangeType(position, VT_I4);
        (void)SetRaiseHandler(previous);
        if (converted && position.Long() < 1) {
            m_lexer.SignalError(CompileMessage::StringIndexMustBeGreaterThanOrEqualToOne);
            return nullptr;
        }
    }
    bool hasLength = false;
    if (m_lexer.Accept(Token::Comma)) {
        hasLength = true;
        if (!ParseExpression(code))
            return nullptr;
    }
    if (!m_lexer.ExpectToken(Token::RightParen) || !m_lexer.ExpectToken(Token::Equal) || !ParseExpression(code))
        return nullptr;
    auto statement = std::make_unique<MidStatement>(std::move(code), target, hasLength);
    statement->SetKeyword(TokenNumber(Token::Mid));
    return statement;
}

BodyParser::StatementPtr BodyParser::ParseErase()
{
    m_lexer.NextToken();
    auto list = std::make_unique<StatementList>();
    do {
        VariableRef target;
        if (!ReadExistingVariable(target, CompileMessage::ExpectingAnArrayVar))
            return nullptr;
        if (!target.type.IsArray() && !target.type.IsVariant()) {
            m_lexer.SignalError(CompileMessage::ExpectingAnArrayVar);
            return nullptr;
        }
        const bool fixed = target.type.IsArray() && target.type.Rank() != TypeCode::kDynamicRank;
        auto erase = std::make_unique<EraseStatement>(target, fixed);
        erase->SetOwner(m_code);
        list->Add(std::move(erase));
    } while (m_lexer.Accept(Token::Comma));
    list->SetKeyword(TokenNumber(Token::Erase));
    return list;
}

BodyParser::StatementPtr BodyParser::ParseAlign(bool right)
{
    m_lexer.NextToken();
    VariableRef target;
    if (!ReadExistingVariable(target, CompileMessage::ExpectingAStringOrUserTypeVar))
        return nullptr;
    if (target.type.IsArray() || !(target.type.IsString() || target.type.IsFixedString() || target.type.IsVariant())) {
        m_lexer.SignalError(target.type.IsUserType() ? CompileMessage::ThisVarCantBeUsedWithLSet
                                                     : CompileMessage::ExpectingAStringOrUserTypeVar);
        return nullptr;
    }
    Expression value;
    if (!m_lexer.ExpectToken(Token::Equal) || !ParseExpression(value))
        return nullptr;
    auto statement = std::make_unique<AlignStatement>(std::move(value), target, right);
    statement->SetKeyword(TokenNumber(right ? Token::RSet : Token::LSet));
    return statement;
}

BodyParser::StatementPtr BodyParser::ParseNext()
{
    m_lexer.NextToken();
    const int index = CurrentIndex();
    auto list = std::make_unique<StatementList>();
    int count = 0;
    StatementPtr single;
    do {
        Block* block = Innermost(BlockKind::For);
        if (!block) {
            m_lexer.SignalError(CompileMessage::UnexpectedText, "Next");
            return nullptr;
        }
        if (IsNameToken(m_lexer.Kind())) {
            const std::string name = UpperName(ReadName());
            (void)ReadSuffix();
            if (name != block->counterName) {
                m_lexer.SignalError(CompileMessage::NextVarDoesNotMatchForsVar);
                return nullptr;
            }
        }
        StatementPtr next;
        if (block->isEach) {
            next = std::make_unique<NextEachStatement>(block->counter, block->endSlot, block->stepSlot, block->index + 1);
            static_cast<ForEachStatement*>(block->opener)->SetExitTarget(index + 1);
        } else {
            next = std::make_unique<NextStatement>(block->counter, block->endSlot, block->stepSlot, block->index + 1);
            static_cast<ForStatement*>(block->opener)->SetExitTarget(index + 1);
        }
        next->SetKeyword(TokenNumber(Token::Next));
        next->SetOwner(m_code);
        CloseBlock(*block, index);
        m_blocks.pop_back();
        if (++count == 1) {
            single = std::move(next);
        } else {
            if (single)
                list->Add(std::move(single));
            list->Add(std::move(next));
        }
    } while (m_lexer.Accept(Token::Comma));
    if (count == 1)
        return single;
    list->SetKeyword(TokenNumber(Token::Next));
    return list;
}

BodyParser::StatementPtr BodyParser::ParseDo()
{
    m_lexer.NextToken();
    Block block{BlockKind::Do};
    block.index = CurrentIndex();
    StatementPtr statement;
    if (m_lexer.Kind() == Token::While || m_lexer.Kind() == Token::Until) {
        const bool isWhile = m_lexer.Kind() == Token::While;
        m_lexer.NextToken();
        Expression condition;
        if (!ParseExpression(condition))
            return nullptr;
        auto test = std::make_unique<ConditionalJumpStatement>(std::move(condition), !isWhile);
        block.opener = test.get();
        block.doHasCondition = true;
        statement = std::move(test);
    } else {
        statement = std::make_unique<NoOperationStatement>();
    }
    statement->SetKeyword(TokenNumber(Token::Do));
    m_blocks.push_back(block);
    return statement;
}

BodyParser::StatementPtr BodyParser::ParseLoop()
{
    Block* block = Innermost(BlockKind::Do);
    if (!block) {
        m_lexer.SignalError(CompileMessage::UnexpectedText, "Loop");
        return nullptr;
    }
    m_lexer.NextToken();
    const int index = CurrentIndex();
    StatementPtr statement;
    if (m_lexer.Kind() == Token::While || m_lexer.Kind() == Token::Until) {
        const bool isWhile = m_lexer.Kind() == Token::While;
        m_lexer.NextToken();
        Expression condition;
        if (!ParseExpression(condition))
            return nullptr;
        auto test = std::make_unique<ConditionalJumpStatement>(std::move(condition), isWhile);
        test->SetTarget(block->doHasCondition ? block->index : block->index + 1);
        statement = std::move(test);
    } else {
        auto jump = std::make_unique<JumpStatement>();
        jump->SetTarget(block->index);
        statement = std::move(jump);
    }
    if (block->doHasCondition)
        static_cast<ConditionalJumpStatement*>(block->opener)->SetTarget(index + 1);
    CloseBlock(*block, index);
    m_blocks.pop_back();
    statement->SetKeyword(TokenNumber(Token::Loop));
    return statement;
}

BodyParser::StatementPtr BodyParser::ParseWhile()
{
    m_lexer.NextToken();
    Expression condition;
    if (!ParseExpression(condition))
        return nullptr;
    auto test = std::make_unique<ConditionalJumpStatement>(std::move(condition), false);
    test->SetKeyword(TokenNumber(Token::While));
    Block block{BlockKind::While};
    block.index = CurrentIndex();
    block.opener = test.get();
    m_blocks.push_back(block);
    return test;
}

BodyParser::StatementPtr BodyParser::ParseWend()
{
    Block* block = Innermost(BlockKind::While);
    if (!block) {
        m_lexer.SignalError(CompileMessage::UnexpectedText, "Wend");
        return nullptr;
    }
    m_lexer.NextToken();
    const int index = CurrentIndex();
    static_cast<ConditionalJumpStatement*>(block->opener)->SetTarget(index + 1);
    auto jump = std::make_unique<JumpStatement>();
    jump->SetTarget(block->index);
    jump->SetKeyword(TokenNumber(Token::Wend));
    CloseBlock(*block, index);
    m_blocks.pop_back();
    return jump;
}

BodyParser::StatementPtr BodyParser::ParseWith()
{
    m_lexer.NextToken();
    Expression value;
    if (!ParseExpression(value))
        return nullptr;
    const int slot = m_code->AddSlot(TypeCode(TypeCode::kVariant));
    auto statement = std::make_unique<KeepValueStatement>(std::move(value), slot);
    statement->SetKeyword(TokenNumber(Token::With));
    Block block{BlockKind::With};
    block.index = CurrentIndex();
    block.opener = statement.get();
    m_blocks.push_back(block);
    return statement;
}

BodyParser::StatementPtr BodyParser::ParseGoTo()
{
    m_lexer.NextToken();
    if (!IsNameToken(m_lexer.Kind())) {
        m_lexer.SignalError(CompileMessage::InvalidLabelIdentifier);
        return nullptr;
    }
    auto jump = std::make_unique<JumpStatement>();
    jump->SetKeyword(TokenNumber(Token::GoTo));
    m_gotos.push_back(PendingGoTo{jump.get(), std::string(m_lexer.Text()), m_lexer.TokenStart()});
    m_lexer.NextToken();
    return jump;
}

BodyParser::StatementPtr BodyParser::ParseExit()
{
    m_lexer.NextToken();
    const Token word = m_lexer.Kind();
    auto jump = std::make_unique<JumpStatement>();
    jump->SetKeyword(TokenNumber(Token::Exit));
    if (word == Token::All) {
        m_lexer.NextToken();
        return std::make_unique<EndStatement>(InterpreterHost::kActionEndAll);
    }
    if (word == Token::For || word == Token::Do) {
        const BlockKind kind = word == Token::For ? BlockKind::For : BlockKind::Do;
        for (auto block = m_blocks.rbegin(); block != m_blocks.rend(); ++block) {
            if (block->kind == kind) {
                block->exits.push_back(jump.get());
                m_lexer.NextToken();
                return jump;
            }
        }
        m_lexer.SignalError(CompileMessage::UnexpectedText, KeywordText(word));
        return nullptr;
    }
    Token expected = Token::Sub;
    if (m_procedure.kind == ProcedureKind::Function)
        expected = Token::Function;
    else if (m_procedure.kind != ProcedureKind::Sub)
        expected = Token::Property;
    if (!m_lexer.ExpectToken(expected))
        return nullptr;
    auto exit = std::make_unique<ExitProcedureStatement>(m_exitIndex);
    exit->SetKeyword(TokenNumber(Token::Exit));
    return exit;
}

BodyParser::StatementPtr BodyParser::ParseDebug()
{
    m_lexer.NextToken();
    if (!m_lexer.ExpectToken(Token::Dot) || !m_lexer.ExpectToken(Token::Print))
        return nullptr;
    Expression items;
    int count = 0;
    bool newLine = true;
    while (!IsStatementEnd(m_lexer.Kind())) {
        newLine = true;
        Expression item;
        if (!ParseExpression(item))
            return nullptr;
        if (item.type.IsArray() || item.type.IsUserType()) {
            m_lexer.SignalError(CompileMessage::ExpectingASimpleExpression);
            return nullptr;
        }
        items.Append(item);
        ++count;
        if (!m_lexer.Accept(Token::Semicolon))
            break;
        newLine = false;
    }
    if (!IsStatementEnd(m_lexer.Kind())) {
        // Items are separated by ";" only.
        (void)m_lexer.ExpectToken(Token::Semicolon);
        return nullptr;
    }
    auto statement = std::make_unique<DebugPrintStatement>(std::move(items), count, newLine);
    statement->SetKeyword(TokenNumber(Token::Debug));
    return statement;
}

bool BodyParser::ReadType(TypeCode& type, const Module** classModule)
{
    const Token word = m_lexer.Kind();
    TypeCode code = TypeOfWord(word);
    if (code == TypeCode()) {
        if (word == Token::Object || IsNameToken(word)) {
            type = TypeCode(TypeCode::kObject);
            if (classModule && word != Token::Object)
                *classModule = FindClassModule(m_lexer.Text());
            m_lexer.NextToken();
            return true;
        }
        m_lexer.SignalError(CompileMessage::ExpectingAValidDataTypeEgInteger);
        return false;
    }
    m_lexer.NextToken();
    if (code == TypeCode(TypeCode::kString) && m_lexer.Accept(Token::Star)) {
        ConstantReader reader(m_lexer, &m_state);
        long long length = 0;
        if (!reader.ReadInteger(length))
            return false;
        if (!TypeCode::IsValidFixedLength(length)) {
            m_lexer.SignalError(CompileMessage::FixedStringSize);
            return false;
        }
        code = TypeCode::FixedString(static_cast<int>(length));
    }
    type = code;
    return true;
}

// After "(": lower and upper bounds (constant whole numbers) up to ")"; none for a dynamic array.
bool BodyParser::ReadBounds(std::vector<std::pair<long, long>>& bounds)
{
    if (m_lexer.Accept(Token::RightParen))
        return true;
    ConstantReader reader(m_lexer, &m_state);
    do {
        long long first = 0;
        if (!reader.ReadInteger(first))
            return false;
        std::pair<long, long> dimension{m_module.OptionBase(), static_cast<long>(first)};
        if (m_lexer.Accept(Token::To)) {
            long long upper = 0;
            if (!reader.ReadInteger(upper))
                return false;
            dimension = {static_cast<long>(first), static_cast<long>(upper)};
        }
        if (dimension.first > dimension.second) {
            m_lexer.SignalError(CompileMessage::LowerBoundIsLargerThanUpperBound);
            return false;
        }
        if (bounds.size() == TypeCode::kMaxRank) {
            m_lexer.SignalError(CompileMessage::TooManyDimensions);
            return false;
        }
        bounds.push_back(dimension);
    } while (m_lexer.Accept(Token::Comma));
    return m_lexer.ExpectToken(Token::RightParen);
}

BodyParser::StatementPtr BodyParser::ParseDim(bool isStatic)
{
    m_lexer.NextToken();
    do {
        if (!IsNameToken(m_lexer.Kind())) {
            m_lexer.SignalError(CompileMessage::ExpectingAVarName);
            return nullptr;
        }
        const std::string name = ReadName();
        TypeCode type = ReadSuffix();
        std::vector<std::pair<long, long>> bounds;
        bool isArray = false;
        bool autoNew = false;
        const Module* classModule = nullptr;
        if (m_lexer.Accept(Token::LeftParen)) {
            isArray = true;
            if (!ReadBounds(bounds))
                return nullptr;
        }
        if (m_lexer.Accept(Token::As)) {
            if (type != TypeCode()) {
                m_lexer.SignalError(CompileMessage::VarIsAlreadyDefinedAsADifferentType, name);
                return nullptr;
            }
            autoNew = m_lexer.Accept(Token::New);
            if (!ReadType(type, &classModule))
                return nullptr;
        }
        if (type == TypeCode())
            type = m_module.DefaultTypeFor(name);
        const std::string key = UpperName(name);
        if (m_locals.count(key) != 0) {
            m_lexer.SignalError(CompileMessage::IdentifierIsAlreadyInUse, name);
            return nullptr;
        }
        LocalSymbol symbol;
        if (isArray) {
            if (type.IsUserType()) {
                m_lexer.SignalError(CompileMessage::ArrayOfStringNOrUserDefinedTypeNotAllowed);
                return nullptr;
            }
            type = type.WithRank(bounds.empty() ? TypeCode::kDynamicRank : static_cast<int>(bounds.size()));
            int index = 0;
            if (!isStatic)
                symbol.ref = VariableRef{StorageScope::Local, m_code->AddArraySlot(type, bounds), type};
            else if (m_code->AddStaticArray(type, bounds, index))
                symbol.ref = VariableRef{StorageScope::Static, index, type};
            else {
                m_lexer.SignalError(CompileMessage::ArrayHasTooManyElements);
                return nullptr;
            }
        } else if (isStatic) {
            symbol.ref = VariableRef{StorageScope::Static, m_code->AddStatic(type), type};
        } else {
            symbol.ref = VariableRef{StorageScope::Local, m_code->AddSlot(type), type};
        }
        if (!isArray) {
            symbol.classModule = classModule;
            symbol.autoNew = autoNew && classModule;
        }
        m_locals[key] = symbol;
    } while (m_lexer.Accept(Token::Comma));
    return Declaration();
}

BodyParser::StatementPtr BodyParser::ParseConst()
{
    m_lexer.NextToken();
    do {
        if (!IsNameToken(m_lexer.Kind())) {
            m_lexer.SignalError(CompileMessage::ExpectingAConstantName);
            return nullptr;
        }
        const std::string name = ReadName();
        TypeCode type = ReadSuffix();
        if (m_lexer.Accept(Token::As) && !ReadType(type))
            return nullptr;
        if (!m_lexer.ExpectToken(Token::Equal))
            return nullptr;
        Expression value;
        if (!ParseExpression(value))
            return nullptr;
        Variant constant;
        if (!EvaluateConstant(value, constant)) {
            m_lexer.SignalError(CompileMessage::ExpectingAConstantOrFunctionName);
            return nullptr;
        }
        int index = m_code->AddConstant(std::move(constant));
        if (type != TypeCode() && !type.IsVariant()) {
            Variant converted(m_code->ConstantAt(index));
            if (!ChangeType(converted, static_cast<VARTYPE>(type.ValueTag()))) {
                m_lexer.SignalError(CompileMessage::TypeMismatch);
                return nullptr;
            }
            index = m_code->AddConstant(std::move(converted));
        }
        LocalSymbol symbol;
        symbol.kind = LocalKind::Constant;
        symbol.constant = index;
        m_locals[UpperName(name)] = symbol;
    } while (m_lexer.Accept(Token::Comma));
    return Declaration();
}

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

// Operator precedence with an explicit operator stack; every binary operator is left-associative.
bool BodyParser::ParseExpression(Expression& out, bool* simpleVariable)
{
    struct Pending {
        OperationId op;
        int precedence;
        bool unary;
    };
    Pending stack[64];
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
                AppendBinary(out, top.op);
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
            if (depth >= 64) {
                m_lexer.SignalError(CompileMessage::ExpectingASimpleExpression);
                return false;
            }
            const Token unary = m_lexer.Kind();
            m_lexer.NextToken();
            if (unary == Token::Plus)
                continue;
            stack[depth++] = Pending{unary == Token::Minus ? OperationId::kNegate : OperationId::kNot,
                                     unary == Token::Minus ? 900 : 190, true};
            first = false;
        }
        if (!ParseFactor(out, &simple))
            return false;
        const BinaryOperator* binary = FindBinary(m_lexer.Kind());
        if (!binary && first) {
            if (simpleVariable)
                *simpleVariable = simple;
            return TypeCheck(out, start);
        }
        first = false;
        popTo(binary ? binary->precedence : -1);
        if (!binary)
            break;
        if (depth >= 64) {
            m_lexer.SignalError(CompileMessage::ExpectingASimpleExpression);
            return false;
        }
        stack[depth++] = Pending{binary->op, binary->precedence, false};
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
    return TypeCheck(out, start);
}

bool BodyParser::TypeCheck(Expression& expression, std::size_t start)
{
    std::vector<TypeCode> types;
    TypeCode pendingResult;
    const TypeCode variant(TypeCode::kVariant);
    auto refuses = [](TypeCode type) { return type.IsArray() || type.IsUserType(); };
    for (std::size_t i = start; i < expression.ops.size(); ++i) {
        const ExprOp& op = expression.ops[i];
        switch (op.code) {
        case ExprOpCode::kConstant:
        case ExprOpCode::kLoad:
        case ExprOpCode::kLoadRef: types.push_back(op.type); break;
        case ExprOpCode::kMissing:
        case ExprOpCode::kEmpty: types.push_back(variant); break;
        case ExprOpCode::kCall:
        case ExprOpCode::kMemberCall: pendingResult = op.type; break;
        case ExprOpCode::kNew: types.push_back(op.type); break;
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
        case ExprOpCode::kElement:
        case ExprOpCode::kLowerBound:
        case ExprOpCode::kUpperBound:
            types.resize(types.size() >= static_cast<std::size_t>(op.count) ? types.size() - op.count : 0);
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

// Appends a binary operator, folding it at once when both operands are constants.
void BodyParser::AppendBinary(Expression& out, OperationId op)
{
    const std::size_t size = out.ops.size();
    if (size >= 2 && out.ops[size - 2].code == ExprOpCode::kConstant && out.ops[size - 1].code == ExprOpCode::kConstant) {
        Variant left(m_code->ConstantAt(out.ops[size - 2].index));
        const Variant& right = m_code->ConstantAt(out.ops[size - 1].index);
        // Folding errors are left to run time, where they raise with the statement's location.
        const RaiseFn previous = SetRaiseHandler(nullptr);
        const bool folded = ApplyBinary(op, left, right);
        (void)SetRaiseHandler(previous);
        if (folded) {
            out.ops.resize(size - 2);
            AppendConstant(out, std::move(left));
            return;
        }
    }
    ExprOp entry{ExprOpCode::kBinary};
    entry.op = op;
    out.ops.push_back(entry);
    out.type = TypeCode(TypeCode::kVariant);
}

bool BodyParser::ParseNumber(Expression& out)
{
    const std::string text(m_lexer.Text());
    const char following = m_lexer.FollowingChar();
    const char* end = m_lexer.TokenEnd();
    Variant value;
    if (!text.empty() && text[0] == '&') {
        if (!value.SetString(Widen(text)) || !StringToNumber(value)) {
            m_lexer.SignalError(CompileMessage::InvalidNumericConstant);
            return false;
        }
    } else if (text.find_first_of(".EeDd") != std::string::npos) {
        std::string normal = text;
        for (char& c : normal) {
            if (c == 'D' || c == 'd')
                c = 'E';
        }
        value.SetDouble(std::strtod(normal.c_str(), nullptr));
    } else {
        const long long number = std::strtoll(text.c_str(), nullptr, 10);
        if (number <= 32767)
            value.SetInteger(static_cast<SHORT>(number));
        else if (number <= 2147483647LL)
            value.SetLong(static_cast<LONG>(number));
        else
            value.SetDouble(static_cast<double>(number));
    }
    m_lexer.NextToken();
    const TypeCode suffix = TypeOfSuffix(following);
    if (suffix != TypeCode() && m_lexer.TokenStart() == end) {
        m_lexer.NextToken();
        if (suffix.IsString() || !ChangeType(value, static_cast<VARTYPE>(suffix.ValueTag()))) {
            m_lexer.SignalError(CompileMessage::InvalidNumericConstant);
            return false;
        }
    }
    AppendConstant(out, std::move(value));
    return true;
}

bool BodyParser::ParseFactor(Expression& out, bool* simpleVariable)
{
    *simpleVariable = false;
    const Token word = m_lexer.Kind();
    switch (word) {
    case Token::LeftParen: {
        m_lexer.NextToken();
        if (!ParseExpression(out))
            return false;
        return m_lexer.ExpectToken(Token::RightParen);
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
        m_lexer.NextToken();
        AppendConstant(out, std::move(value));
        return true;
    }
    case Token::LiteralString: {
        Variant value;
        if (!value.SetString(Widen(m_lexer.Text()))) {
            m_lexer.SignalError(CompileMessage::OutOfMemory);
            return false;
        }
        m_lexer.NextToken();
        AppendConstant(out, std::move(value));
        return true;
    }
    case Token::True:
    case Token::False: {
        Variant value;
        value.SetBoolean(word == Token::True);
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
    case Token::Abs:
    case Token::Int:
    case Token::Fix: {
        m_lexer.NextToken();
        if (!m_lexer.ExpectToken(Token::LeftParen) || !ParseExpression(out) || !m_lexer.ExpectToken(Token::RightParen))
            return false;
        ExprOp op{ExprOpCode::kUnary};
        op.op = word == Token::Abs ? OperationId::kAbs : word == Token::Int ? OperationId::kInt : OperationId::kFix;
        out.ops.push_back(op);
        return true;
    }
    case Token::LBound:
    case Token::UBound: return ParseBound(out, word == Token::UBound);
    case Token::New: {
        m_lexer.NextToken();
        if (!IsNameToken(m_lexer.Kind())) {
            m_lexer.SignalError(CompileMessage::ExpectingAValidDataTypeEgInteger);
            return false;
        }
        const Module* classModule = FindClassModule(m_lexer.Text());
        if (!classModule) {
            m_lexer.SignalError(CompileMessage::ExpectingAValidDataTypeEgInteger);
            return false;
        }
        m_lexer.NextToken();
        ExprOp made{ExprOpCode::kNew};
        made.module = classModule;
        made.type = TypeCode(TypeCode::kObject);
        out.ops.push_back(made);
        out.type = made.type;
        return true;
    }
    case Token::Dot:
        m_lexer.SignalError(m_blocks.empty() || [&] {
            for (const Block& block : m_blocks) {
                if (block.kind == BlockKind::With)
                    return false;
            }
            return true;
        }() ? CompileMessage::NotInAWithBlock
            : CompileMessage::MethodOrPropertyNotFound);
        return false;
    default: break;
    }
    if (!IsNameToken(word)) {
        m_lexer.SignalError(CompileMessage::ExpectingAFactor);
        return false;
    }
    return ParseName(out, simpleVariable);
}

bool BodyParser::ParseName(Expression& out, bool* simpleVariable)
{
    const std::string name = ReadName();
    const std::string key = UpperName(name);
    const TypeCode suffix = ReadSuffix();
    const LocalSymbol* local = FindLocal(key);
    if (local && local->kind == LocalKind::Constant) {
        AppendConstant(out, m_code->ConstantAt(local->constant));
        return true;
    }
    if (LocalSymbol object; m_lexer.Kind() == Token::Dot && FindClassVariable(key, object)) {
        m_lexer.NextToken();
        return ParseMemberCall(object, out, false);
    }
    // Inside a Function its own name is the result variable unless arguments follow.
    Procedure* callee = nullptr;
    if (!local || (&m_procedure == FindProcedure(key) && m_lexer.Kind() == Token::LeftParen))
        callee = FindProcedure(key);
    if (callee) {
        if (callee->kind == ProcedureKind::Sub) {
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
        if (!parenthesised) {
            // No argument list: every parameter is optional.
            Expression code;
            for (const Parameter& parameter : callee->parameters) {
                if (parameter.paramArray) {
                    code.ops.push_back(ExprOp{ExprOpCode::kPack});
                } else {
                    code.ops.push_back(ExprOp{ExprOpCode::kMissing});
                }
            }
            out.ops.push_back(ExprOp{ExprOpCode::kEmpty});
            out.Append(code);
            ExprOp call{ExprOpCode::kCall};
            call.index = m_code->AddCallee(callee, ModuleOf(*callee));
            call.count = static_cast<int>(callee->parameters.size());
            call.type = callee->result.code;
            out.ops.push_back(call);
            if (call.count > 0) {
                ExprOp pop{ExprOpCode::kPop};
                pop.count = call.count;
                out.ops.push_back(pop);
            }
            out.type = callee->result.code;
            return true;
        }
        return ParseCallArguments(*callee, out, true);
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
    }
    VariableRef ref;
    bool found = false;
    if (!ResolveVariable(name, suffix, ref, found))
        return false;
    if (m_lexer.Kind() == Token::LeftParen) {
        if (!found || (!ref.type.IsArray() && !ref.type.IsVariant())) {
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
        return true;
    }
    ExprOp op{ExprOpCode::kLoad};
    op.scope = ref.scope;
    op.index = ref.index;
    op.type = ref.type;
    op.module = ref.module;
    out.ops.push_back(op);
    out.type = ref.type;
    *simpleVariable = true;
    return true;
}

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

// LBound(array [, dimension]) and UBound(array [, dimension]).
bool BodyParser::ParseBound(Expression& out, bool upper)
{
    m_lexer.NextToken();
    if (!m_lexer.ExpectToken(Token::LeftParen))
        return false;
    if (!IsNameToken(m_lexer.Kind())) {
        m_lexer.SignalError(CompileMessage::ExpectingAnArrayVar);
        return false;
    }
    const std::string name = ReadName();
    const TypeCode suffix = ReadSuffix();
    VariableRef ref;
    bool found = false;
    if (!ResolveVariable(name, suffix, ref, found))
        return false;
    if (!ref.type.IsArray() && !ref.type.IsVariant()) {
        m_lexer.SignalError(CompileMessage::ExpectingAnArrayVar);
        return false;
    }
    ExprOp bound{upper ? ExprOpCode::kUpperBound : ExprOpCode::kLowerBound};
    bound.scope = ref.scope;
    bound.index = ref.index;
    bound.module = ref.module;
    bound.type = TypeCode(TypeCode::kLong);
    if (m_lexer.Accept(Token::Comma)) {
        if (!ParseExpression(out))
            return false;
        bound.count = 1;
    }
    out.ops.push_back(bound);
    return m_lexer.ExpectToken(Token::RightParen);
}

std::string BodyParser::ReadName()
{
    std::string name(m_lexer.Text());
    m_lexer.NextToken();
    return name;
}

// A type suffix written right after the name just read; it is consumed.
TypeCode BodyParser::ReadSuffix()
{
    const char suffix = m_lexer.PreviousFollowingChar();
    const TypeCode type = TypeOfSuffix(suffix);
    if (type != TypeCode() && m_lexer.Text().size() == 1 && m_lexer.Text()[0] == suffix)
        m_lexer.NextToken();
    return type;
}

const LocalSymbol* BodyParser::FindLocal(const std::string& upperName) const
{
    auto found = m_locals.find(upperName);
    return found == m_locals.end() ? nullptr : &found->second;
}

Procedure* BodyParser::FindProcedure(const std::string& upperName) const
{
    auto found = m_state.names.find(upperName);
    if (found != m_state.names.end()) {
        if (found->second.kind != SymbolKind::Procedure)
            return nullptr;
        Procedure* procedure = m_state.procedures[found->second.index].get();
        return procedure->kind == ProcedureKind::External ? nullptr : procedure;
    }
    // Public procedures of the plain modules named in '#Uses (class members are reached through objects).
    for (Module* used : m_module.UsedModules()) {
        if (used->Kind() != ModuleKind::Plain)
            continue;
        const auto& procedures = used->State() ? used->State()->procedures : used->Compiled()->procedures;
        for (const auto& procedure : procedures) {
            if (procedure->visibility != Visibility::Private && procedure->kind != ProcedureKind::External &&
                UpperName(procedure->name) == upperName)
                return procedure.get();
        }
    }
    return nullptr;
}

const Module* BodyParser::FindClassModule(std::string_view name) const
{
    for (const Module* used : m_module.UsedModules()) {
        if (used->Kind() == ModuleKind::Plain)
            continue;
        std::string_view own = used->Name();
        const std::size_t slash = own.find_last_of("/\\");
        if (slash != std::string_view::npos)
            own.remove_prefix(slash + 1);
        const std::size_t dot = own.rfind('.');
        if (dot != std::string_view::npos)
            own = own.substr(0, dot);
        if (UpperName(std::string(name)) == UpperName(used->RecordName()) || UpperName(std::string(name)) == UpperName(std::string(own)))
            return used;
    }
    return nullptr;
}

bool BodyParser::FindClassVariable(const std::string& upperName, LocalSymbol& out) const
{
    if (const LocalSymbol* local = FindLocal(upperName)) {
        if (local->kind != LocalKind::Variable || !local->classModule)
            return false;
        out = *local;
        return true;
    }
    auto global = m_state.names.find(upperName);
    if (global == m_state.names.end() || global->second.kind != SymbolKind::Variable)
        return false;
    const Variable& variable = *m_state.variables[global->second.index];
    if (variable.type.className.empty() || variable.type.code.IsArray() || !variable.bounds.empty())
        return false;
    out.ref = VariableRef{StorageScope::Module, static_cast<int>(global->second.index), variable.type.code};
    out.classModule = FindClassModule(variable.type.className);
    out.autoNew = variable.createsNew;
    return out.classModule != nullptr;
}

Procedure* BodyParser::FindMember(const Module& classModule, const std::string& upperName, bool assignment) const
{
    auto& module = const_cast<Module&>(classModule);
    const auto& procedures = module.State() ? module.State()->procedures : module.Compiled()->procedures;
    for (const auto& procedure : procedures) {
        if (procedure->visibility == Visibility::Private || procedure->kind == ProcedureKind::External ||
            UpperName(procedure->name) != upperName)
            continue;
        if ((procedure->kind == ProcedureKind::PropertyLet) == assignment)
            return procedure.get();
    }
    return nullptr;
}

bool BodyParser::ParseMemberCall(const LocalSymbol& object, Expression& out, bool statement)
{
    const std::string member(m_lexer.Text());
    if (member.empty() || !CharClasses::Get().IsIdentifierChar(member[0]) || (member[0] >= '0' && member[0] <= '9')) {
        m_lexer.SignalError(CompileMessage::MethodOrPropertyNotFound);
        return false;
    }
    m_lexer.NextToken();
    const std::string key = UpperName(member);
    const std::size_t start = out.ops.size();
    const bool assignment = statement && m_lexer.Kind() == Token::Equal;
    Procedure* callee = FindMember(*object.classModule, key, assignment);
    if (!callee) {
        m_lexer.SignalError(CompileMessage::MethodOrPropertyNotFound);
        return false;
    }
    const bool returnsValue = callee->kind == ProcedureKind::Function || callee->kind == ProcedureKind::PropertyGet;
    if (assignment) {
        // object.property = value: the value is the Property Let's only argument.
        m_lexer.NextToken();
        if (callee->parameters.size() != 1) {
            m_lexer.SignalError(CompileMessage::MethodOrPropertyNotFound);
            return false;
        }
        Expression value;
        if (!ParseExpression(value))
            return false;
        if (value.IsEmpty()) {
            m_lexer.SignalError(CompileMessage::ExpectingAnExpression);
            return false;
        }
        out.Append(value);
        ExprOp call{ExprOpCode::kCall};
        call.index = m_code->AddCallee(callee, object.classModule);
        call.count = 1;
        out.ops.push_back(call);
        ExprOp pop{ExprOpCode::kPop};
        pop.count = 1;
        out.ops.push_back(pop);
    } else if (!statement && !returnsValue) {
        m_lexer.SignalError(CompileMessage::SubsCantBeUsedInExpressions, member);
        return false;
    } else {
        bool parenthesised = false;
        if (m_lexer.Kind() == Token::LeftParen && (!statement || ParenthesisedToEnd())) {
            parenthesised = true;
            m_lexer.NextToken();
        }
        if (!statement && !parenthesised) {
            // No argument list in an expression: every parameter is left out.
            for (const Parameter& parameter : callee->parameters) {
                if (!parameter.optional && !parameter.paramArray) {
                    m_lexer.SignalError(CompileMessage::MissingParameter, parameter.name);
                    return false;
                }
            }
            out.ops.push_back(ExprOp{ExprOpCode::kEmpty});
            for (const Parameter& parameter : callee->parameters)
                out.ops.push_back(ExprOp{parameter.paramArray ? ExprOpCode::kPack : ExprOpCode::kMissing});
            ExprOp call{ExprOpCode::kCall};
            call.index = m_code->AddCallee(callee, object.classModule);
            call.count = static_cast<int>(callee->parameters.size());
            call.type = callee->result.code;
            out.ops.push_back(call);
            if (call.count > 0) {
                ExprOp pop{ExprOpCode::kPop};
                pop.count = call.count;
                out.ops.push_back(pop);
            }
            out.type = callee->result.code;
        } else if (!ParseCallArguments(*callee, out, parenthesised)) {
            return false;
        }
    }
    // The call just added (the last one: calls inside the arguments come before it) goes to the object.
    for (std::size_t i = out.ops.size(); i-- > start;) {
        ExprOp& op = out.ops[i];
        if (op.code != ExprOpCode::kCall)
            continue;
        op.code = ExprOpCode::kMemberCall;
        op.scope = object.ref.scope;
        op.variable = object.ref.index;
        op.module = object.ref.module;
        op.autoNew = object.autoNew;
        break;
    }
    return true;
}

const Module* BodyParser::ModuleOf(const Procedure& procedure) const
{
    for (const auto& own : m_state.procedures) {
        if (own.get() == &procedure)
            return nullptr;
    }
    for (Module* used : m_module.UsedModules()) {
        const auto& procedures = used->State() ? used->State()->procedures : used->Compiled()->procedures;
        for (const auto& candidate : procedures) {
            if (candidate.get() == &procedure)
                return used;
        }
    }
    return nullptr;
}

bool BodyParser::FindUsedVariable(const std::string& upperName, VariableRef& ref) const
{
    // Variables of class modules belong to their instances and are not reached by name.
    for (Module* used : m_module.UsedModules()) {
        if (used->Kind() != ModuleKind::Plain)
            continue;
        const auto& variables = used->State() ? used->State()->variables : used->Compiled()->variables;
        for (std::size_t i = 0; i < variables.size(); ++i) {
            const Variable& variable = *variables[i];
            if (variable.visibility != Visibility::Public && variable.visibility != Visibility::Friend)
                continue;
            if (UpperName(variable.name) == upperName) {
                ref = VariableRef{StorageScope::Module, static_cast<int>(i), variable.type.code, used};
                return true;
            }
        }
    }
    return false;
}

bool BodyParser::ResolveVariable(const std::string& name, TypeCode suffix, VariableRef& ref, bool& found)
{
    const std::string key = UpperName(name);
    found = true;
    if (const LocalSymbol* local = FindLocal(key); local && local->kind == LocalKind::Variable) {
        if (suffix != TypeCode() && suffix != local->ref.type) {
            m_lexer.SignalError(CompileMessage::VarIsAlreadyDefinedAsADifferentType, name);
            return false;
        }
        ref = local->ref;
        return true;
    }
    auto global = m_state.names.find(key);
    if (global != m_state.names.end()) {
        if (global->second.kind != SymbolKind::Variable) {
            m_lexer.SignalError(CompileMessage::ExpectingAVarName, name);
            return false;
        }
        const Variable& variable = *m_state.variables[global->second.index];
        if (suffix != TypeCode() && suffix != variable.type.code) {
            m_lexer.SignalError(CompileMessage::VarIsAlreadyDefinedAsADifferentType, name);
            return false;
        }
        ref = VariableRef{StorageScope::Module, static_cast<int>(global->second.index), variable.type.code};
        return true;
    }
    if (FindUsedVariable(key, ref)) {
        if (suffix != TypeCode() && suffix != ref.type) {
            m_lexer.SignalError(CompileMessage::VarIsAlreadyDefinedAsADifferentType, name);
            return false;
        }
        return true;
    }
    if (m_module.OptionExplicit()) {
        m_lexer.SignalError(CompileMessage::ExpectingAnExistingScalarVar, name);
        return false;
    }
    // Implicit declaration: a local of the suffix's type or the letter's default type.
    found = false;
    const TypeCode type = suffix != TypeCode() ? suffix : m_module.DefaultTypeFor(name);
    LocalSymbol symbol;
    symbol.ref = VariableRef{StorageScope::Local, m_code->AddSlot(type), type};
    m_locals[key] = symbol;
    ref = symbol.ref;
    return true;
}

bool BodyParser::NextIsColonEqual() const
{
    const char* after = SkipBlanks(m_lexer.TokenEnd());
    return after[0] == ':' && after[1] == '=';
}

// At "(": true when the matching ")" ends the statement and the parentheses hold no argument or more
// than one (an argument list). One parenthesised argument is an expression, passed by value.
bool BodyParser::ParenthesisedToEnd() const
{
    const char* p = m_lexer.TokenStart();
    int depth = 0;
    bool inString = false;
    bool list = *SkipBlanks(p + 1) == ')';
    for (; *p != '\0' && *p != '\r' && *p != '\n'; ++p) {
        if (inString) {
            if (*p == '"')
                inString = false;
            continue;
        }
        if (*p == '"') {
            inString = true;
        } else if (*p == '(') {
            ++depth;
        } else if (*p == ',' && depth == 1) {
            list = true;
        } else if (*p == ')' && --depth == 0) {
            p = SkipBlanks(p + 1);
            return list && (*p == '\0' || *p == '\r' || *p == '\n' || *p == '\'' || *p == ':');
        }
    }
    return false;
}

} // namespace

bool BodyCompiler::CompileBody(Module& module, Procedure& procedure, Lexer& lexer)
{
    if (module.State() == nullptr)
        return false;
    BodyParser parser(module, procedure, lexer);
    return parser.Compile();
}

std::string ListingOf(std::string_view source)
{
    const CharClasses& classes = CharClasses::Get();
    std::string out;
    out.reserve(source.size());
    std::size_t i = 0;
    while (i < source.size()) {
        const char c = source[i];
        if (c == '"') {
            const std::size_t close = source.find('"', i + 1);
            const std::size_t end = close == std::string_view::npos ? source.size() : close + 1;
            out.append(source.substr(i, end - i));
            i = end;
        } else if (c == '\'') {
            out.append(source.substr(i));
            break;
        } else if (c == '_' && (i + 1 == source.size() || source[i + 1] == '\r' || source[i + 1] == '\n') &&
                   (i == 0 || source[i - 1] == ' ' || source[i - 1] == '\t')) {
            // A continuation: the next physical line joins this one.
            ++i;
            while (i < source.size() && (source[i] == '\r' || source[i] == '\n' || source[i] == ' ' || source[i] == '\t'))
                ++i;
            while (!out.empty() && (out.back() == ' ' || out.back() == '\t'))
                out.pop_back();
            out += ' ';
        } else if (c == '\r' || c == '\n') {
            break;
        } else if (classes.IsIdentifierStart(c)) {
            std::size_t end = i;
            while (end < source.size() && classes.IsIdentifierChar(source[end]))
                ++end;
            const std::string_view word = source.substr(i, end - i);
            const Token token = LookupKeyword(word);
            if (token != Token::Id)
                out.append(KeywordText(token));
            else
                out.append(word);
            i = end;
        } else {
            out += c;
            ++i;
        }
    }
    while (!out.empty() && (out.back() == ' ' || out.back() == '\t'))
        out.pop_back();
    return out;
}

} // namespace brannoc
