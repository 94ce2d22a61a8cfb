#include "frontend/BodyParser.h"

#include "code/ObjectStatements.h"
#include "frontend/CharClasses.h"
#include "frontend/NestingLimits.h"
#include "exec/InterpreterHost.h"
#include "library/BuiltinTable.h"
#include "values/Conversion.h"
#include "values/ValueCell.h"
#include "values/ValueError.h"

#include <windows.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>

namespace brannoc::body {

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
        RecordType* record = parameter.type.userType ? parameter.type.userType->record.Get() : nullptr;
        if (record)
            record->AddRef();
        info.record = RecordTypeRef(record);
        const int slot = m_code->AddSlot(parameter.type.code, record);
        m_code->AddParameter(std::move(info));
        LocalSymbol symbol;
        symbol.ref = VariableRef{StorageScope::Local, slot, parameter.type.code};
        symbol.classModule = ClassOfType(parameter.type);
        symbol.userType = parameter.type.userType;
        m_locals[UpperName(parameter.name)] = symbol;
    }
    if (m_outerLocals) {
        for (const LocalName& outer : *m_outerLocals) {
            LocalSymbol& symbol = m_locals[outer.upperName];
            symbol.classModule = outer.classModule;
            symbol.autoNew = outer.autoNew;
        }
    }
    if (m_procedure.kind == ProcedureKind::Function || m_procedure.kind == ProcedureKind::PropertyGet) {
        const UserType* resultType = m_procedure.result.userType;
        const int slot = m_code->AddSlot(m_procedure.result.code, resultType ? resultType->record.Get() : nullptr);
        m_code->SetResultSlot(slot);
        LocalSymbol symbol;
        symbol.ref = VariableRef{StorageScope::Local, slot, m_procedure.result.code};
        symbol.classModule = ClassOfType(m_procedure.result);
        symbol.userType = resultType;
        m_locals[UpperName(m_procedure.name)] = symbol;
    }

    const int lastIndex = m_procedure.lineCount - 1;
    m_exitIndex = lastIndex;
    // The header's listing is taken while the lexer still stands on it; the dialog scan moves it.
    m_code->Append(std::make_unique<NoOperationStatement>())->SetListing(ListingOf(m_lexer.LineText()));
    ScanDialogType(m_procedure.firstLine + lastIndex);

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
            // The line ends here, or with a comment: "'" or a Rem after ":".
            if (statement && m_lexer.Kind() != Token::EndOfLine && m_lexer.Kind() != Token::Apostrophe &&
                m_lexer.Kind() != Token::Rem)
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
            if (pending.isGoTo) {
                m_lexer.SignalErrorAt(CompileMessage::GoToLabelHasNotBeenDefined, pending.name, pending.position);
            } else {
                m_lexer.SeekLine(endLine);
                m_lexer.SignalError(CompileMessage::LabelIsNotDefined);
            }
            continue;
        }
        pending.bind(found->second.index);
        if (!pending.jump)
            continue;
        // A GoTo may leave With blocks (their objects are dropped) but not enter one.
        const std::vector<int>& labelChain = found->second.withChain;
        const bool inside = labelChain.size() <= pending.withChain.size() &&
                            std::equal(labelChain.begin(), labelChain.end(), pending.withChain.begin());
        if (inside)
            pending.jump->SetWithRelease(static_cast<int>(pending.withChain.size() - labelChain.size()));
        else
            pending.jump->SetIntoWith();
    }

    if (m_lexer.ErrorCount() != errorsBefore)
        return false;
    RecordLocalNames();
    m_procedure.code = std::move(code);
    return true;
}

void BodyParser::RecordLocalNames()
{
    for (const auto& [name, symbol] : m_locals) {
        if (symbol.kind != LocalKind::Variable || symbol.ref.scope == StorageScope::Module)
            continue;
        m_code->AddLocalName(LocalName{name, symbol.ref, symbol.classModule, symbol.userType, symbol.autoNew});
    }
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

void BodyParser::CloseBlock(Block& block, int after)
{
    for (JumpStatement* jump : block.exits)
        jump->SetTarget(after);
    for (CaseLineStatement* line : block.caseLines)
        line->SetTarget(after);
}

int BodyParser::AfterHere() const
{
    if (m_lexer.Kind() == Token::Colon)
        return LineAddress(CurrentIndex(), m_linePosition + 1);
    return LineAddress(CurrentIndex() + 1, 0);
}

// line: [label ":"] [statement {":" statement}] [comment]; an empty or comment line has no statement
BodyParser::StatementPtr BodyParser::ParseLine()
{
    Token word = m_lexer.Kind();
    // Attribute lines inside a procedure (a member's attributes) are read with the declarations.
    if (word == Token::EndOfLine || word == Token::Apostrophe || word == Token::Rem || word == Token::Attribute)
        return nullptr;

    // A label: a name directly followed by ":" (not ":=").
    if (IsNameToken(word) && word != Token::Print) {
        const char* after = SkipBlanks(m_lexer.TokenEnd());
        if (after[0] == ':' && after[1] != '=' && FindProcedure(UpperName(m_lexer.Text())) == nullptr) {
            Label& label = m_labels[UpperName(m_lexer.Text())];
            if (label.index < 0) {
                label.index = CurrentIndex();
                label.withChain = WithChain();
            }
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

    // The statements of the line, separated by ":"; block statements may stand among them.
    m_linePosition = 0;
    const int errorsBefore = m_lexer.ErrorCount();
    StatementPtr single;
    std::unique_ptr<StatementList> list;
    bool separated = false;
    for (;;) {
        StatementPtr statement = ParseSegment();
        if (m_lexer.ErrorCount() != errorsBefore) {
            Discard(std::move(statement));
            Discard(std::move(single));
            return Discard(std::move(list));
        }
        if (statement) {
            statement->SetOwner(m_code);
            if (!single && !list) {
                single = std::move(statement);
            } else {
                if (!list) {
                    list = std::make_unique<StatementList>();
                    list->Add(std::move(single));
                }
                list->Add(std::move(statement));
            }
        }
        if (m_lexer.Kind() != Token::Colon)
            break;
        separated = true;
        while (m_lexer.Accept(Token::Colon)) {
        }
        if (m_lexer.Kind() == Token::EndOfLine || m_lexer.Kind() == Token::Apostrophe)
            break;
        ++m_linePosition;
    }
    if (!separated)
        return single;
    // A line of several statements is entered at the position a jump asks for.
    if (!list) {
        list = std::make_unique<StatementList>();
        if (single)
            list->Add(std::move(single));
    }
    list->SetLineLevel();
    return list;
}

// statement: one of a line's ":"-separated statements, block statements (If, Select, For, Do, With ...) included
BodyParser::StatementPtr BodyParser::ParseSegment()
{
    const Token word = m_lexer.Kind();
    if (word == Token::Rem)
        return nullptr;
    // A Select Case block takes only Case lines before its first Case.
    if (!m_blocks.empty() && m_blocks.back().expectCase && (word != Token::Case || m_linePosition > 0)) {
        m_lexer.SignalError(CompileMessage::ExpectingACaseDefinition);
        return nullptr;
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
    case Token::Case:
        // A Case line's statements belong to it; a Case after ":" would share a line with others.
        if (m_linePosition > 0) {
            m_lexer.SignalError(CompileMessage::UnexpectedText, "Case");
            return nullptr;
        }
        return ParseCase();
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
    case Token::Begin:
        if (AtDialogBlock())
            return ParseBeginDialog();
        return ParseSimple();
    default: return ParseSimple();
    }
}

// End | End If | End Select | End With: End alone ends the macro, the others close the innermost block
BodyParser::StatementPtr BodyParser::ParseEnd()
{
    const char* endPosition = m_lexer.TokenStart();
    m_lexer.NextToken();
    const Token word = m_lexer.Kind();
    if (word == Token::EndOfLine || word == Token::Apostrophe || word == Token::Else || word == Token::Colon) {
        auto statement = std::make_unique<EndStatement>();
        statement->SetKeyword(TokenNumber(Token::End));
        return statement;
    }
    Block* block = m_blocks.empty() ? nullptr : &m_blocks.back();
    const bool closes = block && ((word == Token::If && block->kind == BlockKind::If) ||
                                  (word == Token::Select && block->kind == BlockKind::Select) ||
                                  (word == Token::With && block->kind == BlockKind::With));
    if (!closes) {
        m_lexer.SignalErrorAt(CompileMessage::UnexpectedEndStatement, {}, endPosition);
        return nullptr;
    }
    m_lexer.NextToken();
    const int after = AfterHere();
    if (block->kind == BlockKind::If || block->kind == BlockKind::Select) {
        auto* branch = static_cast<BranchStatement*>(block->opener);
        if (!block->hasElse)
            branch->SetElseTarget(after);
    }
    const bool endsWith = block->kind == BlockKind::With;
    CloseBlock(*block, after);
    m_blocks.pop_back();
    StatementPtr statement;
    if (endsWith)
        statement = std::make_unique<EndWithStatement>();
    else
        statement = std::make_unique<NoOperationStatement>();
    statement->SetKeyword(TokenNumber(Token::End));
    return statement;
}

// statement {":" statement}: the statements after Then or Else, or after ":" on a Case line; no block statements
BodyParser::StatementPtr BodyParser::ParseInline(bool inSingleLineIf)
{
    const NestingLevel level(m_inlineDepth, kMaxInlineDepth);
    if (!level.Entered()) {
        m_lexer.SignalError(CompileMessage::MacroModuleIsTooLarge);
        return nullptr;
    }
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
        if (!statement) {
            Discard(std::move(single));
            return Discard(std::move(list));
        }
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
    if (!(word == Token::EndOfLine || word == Token::Apostrophe || word == Token::Rem ||
          (inSingleLineIf && word == Token::Else))) {
        m_lexer.SignalError(CompileMessage::UnexpectedText, m_lexer.Text());
        Discard(std::move(single));
        return Discard(std::move(list));
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

// simple statement: a single-line If | GoTo | On Error | Resume | Exit | Debug.Print | a file statement |
//     Call | RaiseEvent | End | Dim | Static | Const | ReDim | Mid | Erase | Stop | LSet | RSet |
//     [Let | Set] assignment | call; none opens or closes a block, so it may follow Then or Else
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
    case Token::On: statement = ParseOnError(); break;
    case Token::Resume: statement = ParseResume(); break;
    case Token::Exit: statement = ParseExit(); break;
    case Token::Debug: statement = ParseDebug(); break;
    case Token::Open: statement = ParseOpen(); break;
    case Token::Close: statement = ParseClose(); break;
    case Token::Print: statement = ParseStreamPrint(false); break;
    case Token::Write: statement = ParseStreamPrint(true); break;
    case Token::Input: statement = ParseStreamInput(); break;
    case Token::Get: statement = ParseTransfer(false); break;
    case Token::Put: statement = ParseTransfer(true); break;
    case Token::Seek: statement = ParseSeekStatement(); break;
    case Token::Lock: statement = ParseLock(false); break;
    case Token::Unlock: statement = ParseLock(true); break;
    case Token::Line:
    case Token::Name:
        if (AtFileStatementWord(word)) {
            // Line and Name are recognised names: a blocked one still names variables, but not the statement.
            if (m_lexer.IsBlocked(word)) {
                m_lexer.SignalError(CompileMessage::ThisLanguageFeatureHasBeenDisabled, KeywordText(word));
                return nullptr;
            }
            statement = word == Token::Line ? ParseLineInput() : ParseNameStatement();
            break;
        }
        statement = ParseAssignmentOrCall(AssignKind::Implicit);
        break;
    case Token::Call: statement = ParseCallStatement(); break;
    case Token::RaiseEvent: statement = ParseRaiseEvent(); break;
    case Token::End: {
        m_lexer.NextToken();
        if (!IsStatementEnd(m_lexer.Kind())) {
            m_lexer.SignalError(CompileMessage::UnexpectedEndStatement);
            return nullptr;
        }
        statement = std::make_unique<EndStatement>();
        break;
    }
    case Token::Dim: statement = ParseDim(false); break;
    case Token::Static: statement = ParseDim(true); break;
    case Token::Const: statement = ParseConst(); break;
    case Token::ReDim: statement = ParseReDim(); break;
    case Token::Mid:
        if (*SkipBlanks(m_lexer.TokenEnd()) == '(' && FindLocal(UpperName(m_lexer.Text())) == nullptr) {
            statement = ParseMid();
            break;
        }
        statement = ParseAssignmentOrCall(AssignKind::Implicit);
        break;
    case Token::Erase: statement = ParseErase(); break;
    case Token::Stop: {
        // A keyword that is also a built-in instruction.
        const BuiltinRecord* record = FindBuiltin(word);
        if (!record) {
            m_lexer.SignalError(CompileMessage::UnexpectedText, m_lexer.Text());
            return nullptr;
        }
        m_lexer.NextToken();
        Expression code;
        if (!ParseBuiltinCall(*record, TypeCode(), code, true))
            return nullptr;
        statement = std::make_unique<EvaluateStatement>(std::move(code));
        break;
    }
    case Token::LeftParen:
        // A statement that starts with "(" can only be an assignment to an expression: (x) = 1.
        m_lexer.SignalError(CompileMessage::CantAssignAValueToAnExpression);
        return nullptr;
    case Token::LSet:
    case Token::RSet: statement = ParseAlign(word == Token::RSet); break;
    case Token::Let:
        m_lexer.NextToken();
        statement = ParseAssignmentOrCall(AssignKind::Let);
        break;
    case Token::Set:
        m_lexer.NextToken();
        statement = ParseAssignmentOrCall(AssignKind::Set);
        break;
    default: statement = ParseAssignmentOrCall(AssignKind::Implicit); break;
    }
    if (statement && statement->KeywordToken() == 0 && IsReservedWord(word))
        statement->SetKeyword(TokenNumber(word));
    if (statement)
        statement->SetOwner(m_code);
    return statement;
}

} // namespace brannoc::body

namespace brannoc {

using body::BodyParser;

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
