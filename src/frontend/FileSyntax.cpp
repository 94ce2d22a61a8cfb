// Statements of file streams and files: Open, Close, Print #, Write #, Input #, Line Input #, Get, Put,
// Seek, Lock, Unlock and Name. Their argument code leaves the values the statement works on.
#include "frontend/BodyParser.h"

#include "code/FileStatements.h"
#include "frontend/CharClasses.h"

namespace brannoc::body {

// ["#"] number: a numeric expression; the "#" is required where hashRequired says so
bool BodyParser::ParseStreamNumber(Expression& code, bool hashRequired)
{
    if (!m_lexer.Accept(Token::Hash) && hashRequired) {
        m_lexer.SignalError(CompileMessage::Expecting, "#");
        return false;
    }
    Expression number;
    if (!ParseExpression(number))
        return false;
    if (number.type.IsArray() || number.type.IsUserType() || number.type.IsString() ||
        number.type.IsFixedString() || number.type.IsObject()) {
        m_lexer.SignalError(CompileMessage::ExpectingAnIntegerStreamNumberExpression);
        return false;
    }
    code.Append(number);
    return true;
}

// variable | element | record.field: where Input #, Line Input #, Get and Put store what they read
bool BodyParser::ParseFileTarget(FileTarget& target, Expression& code, Expression& writeBack, bool recordsInPlace)
{
    const bool simpleName = IsNameToken(m_lexer.Kind()) && [this] {
        const char* after = m_lexer.TokenEnd();
        if (*after && std::string_view("%&!#@$").find(*after) != std::string_view::npos)
            ++after; // a type suffix
        const char next = *SkipBlanks(after);
        return next != '(' && next != '.';
    }();
    if (simpleName) {
        // A plain name is filled like the target of an assignment, so an undeclared one is declared
        // implicitly; a constant is refused.
        const std::string name = ReadName();
        const TypeCode suffix = ReadSuffix();
        if (const LocalSymbol* local = FindLocal(UpperName(name)); local && local->kind == LocalKind::Constant) {
            m_lexer.SignalErrorAt(CompileMessage::ExpectingAVarName, name, m_namePosition);
            return false;
        }
        bool found = false;
        return ResolveVariable(name, suffix, target.variable, found);
    }
    if (m_lexer.Kind() != Token::Dot && !IsNameToken(m_lexer.Kind()))
        return ReadExistingVariable(target.variable, CompileMessage::ExpectingAVarName);
    // An array element or a record field: as for a by-reference argument, its value is copied into a
    // hidden slot that the statement reads or fills, and the slot goes back to its place afterwards.
    const char* start = m_lexer.TokenStart();
    Expression place;
    bool simple = false;
    if (!ParseExpression(place, &simple))
        return false;
    ExprOp* last = place.ops.empty() ? nullptr : &place.ops.back();
    // Get and Put move a whole record (an element of an array of records, or a record inside one) where
    // it lives, through the reference a by-reference argument would pass.
    if (recordsInPlace && last && !simple && last->code == ExprOpCode::kLoadPath && place.type.IsUserType() &&
        !place.type.IsArray()) {
        last->code = ExprOpCode::kRefPath;
        target.variable.type = place.type;
        target.recordInPlace = true;
        code.Append(place);
        return true;
    }
    const bool element = last && !simple && m_expressionIsElement && !place.type.IsArray() &&
                         !place.type.IsUserType() &&
                         (last->code == ExprOpCode::kElement || last->code == ExprOpCode::kLoadPath);
    if (!element) {
        m_lexer.SignalErrorAt(CompileMessage::ExpectingAVarName, {}, start);
        return false;
    }
    const bool inRecord = last->code == ExprOpCode::kLoadPath;
    writeBack.ops.push_back(
        inRecord ? ThroughHiddenSlot(*last, ExprOpCode::kPathArgument, ExprOpCode::kPathWriteBack)
                 : ThroughHiddenSlot(*last, ExprOpCode::kElementArgument, ExprOpCode::kElementWriteBack));
    target.variable = VariableRef{};
    target.variable.index = last->variable;
    target.variable.type = last->type;
    target.throughSlot = true;
    code.Append(place);
    return true;
}

// Open path For Input|Output|Append|Binary|Random [Access Read|Write|Read Write]
//     [Shared | Lock Read|Write|Read Write] As ["#"] number [Len = length]
BodyParser::StatementPtr BodyParser::ParseOpen()
{
    m_lexer.NextToken();
    Expression code;
    if (!ParseExpression(code) || !m_lexer.ExpectToken(Token::For))
        return nullptr;
    StreamMode mode;
    switch (m_lexer.Kind()) {
    case Token::Input: mode = StreamMode::kInput; break;
    case Token::Output: mode = StreamMode::kOutput; break;
    case Token::Append: mode = StreamMode::kAppend; break;
    case Token::Binary: mode = StreamMode::kBinary; break;
    case Token::Random: mode = StreamMode::kRandom; break;
    default: m_lexer.SignalError(CompileMessage::ExpectingInputOutputAppendBinaryOrRandom); return nullptr;
    }
    m_lexer.NextToken();
    // Read, Write or Read Write, as a bit mask (1 read, 2 write); 0 when neither follows.
    const auto readWrite = [this] {
        int bits = 0;
        if (m_lexer.Accept(Token::Read))
            bits |= kAccessRead;
        if (m_lexer.Accept(Token::Write))
            bits |= kAccessWrite;
        return bits;
    };
    int access = kAccessDefault;
    if (m_lexer.Accept(Token::Access)) {
        access = readWrite();
        if (access == 0) {
            m_lexer.SignalError(CompileMessage::ExpectingReadOrWrite);
            return nullptr;
        }
    }
    StreamSharing sharing = StreamSharing::kShared;
    if (m_lexer.Accept(Token::Lock)) {
        const int bits = readWrite();
        if (bits == 0) {
            m_lexer.SignalError(CompileMessage::ExpectingReadOrWrite);
            return nullptr;
        }
        sharing = static_cast<StreamSharing>(bits);
    } else {
        (void)m_lexer.Accept(Token::Shared);
    }
    if (!m_lexer.ExpectToken(Token::As) || !ParseStreamNumber(code, false))
        return nullptr;
    int count = 2;
    if (m_lexer.Accept(Token::Len)) {
        Expression length;
        if (!m_lexer.ExpectToken(Token::Equal) || !ParseExpression(length))
            return nullptr;
        code.Append(length);
        count = 3;
    }
    return std::make_unique<OpenStatement>(std::move(code), count, mode, access, sharing);
}

// Close [["#"] number {"," ["#"] number}]
BodyParser::StatementPtr BodyParser::ParseClose()
{
    m_lexer.NextToken();
    Expression code;
    int count = 0;
    while (!IsStatementEnd(m_lexer.Kind())) {
        if (!ParseStreamNumber(code, false))
            return nullptr;
        ++count;
        if (!m_lexer.Accept(Token::Comma))
            break;
    }
    return std::make_unique<CloseStatement>(std::move(code), count);
}

// Print "#" number ["," [item {";" item} [";"]]] | Write "#" number ["," [item {"," item}]]
// A trailing ";" keeps Print's line open; Write always ends its line.
BodyParser::StatementPtr BodyParser::ParseStreamPrint(bool writeForm)
{
    m_lexer.NextToken();
    Expression code;
    if (!ParseStreamNumber(code, true))
        return nullptr;
    int count = 1;
    bool newLine = true;
    const Token separator = writeForm ? Token::Comma : Token::Semicolon;
    if (m_lexer.Accept(Token::Comma)) {
        while (!IsStatementEnd(m_lexer.Kind())) {
            newLine = true;
            Expression item;
            if (!ParseExpression(item))
                return nullptr;
            if (item.type.IsArray() || item.type.IsUserType()) {
                m_lexer.SignalError(CompileMessage::ExpectingASimpleExpression);
                return nullptr;
            }
            code.Append(item);
            ++count;
            if (!m_lexer.Accept(separator))
                break;
            newLine = false;
            // Write # always ends its line: a list may not end with its separator.
            if (writeForm && IsStatementEnd(m_lexer.Kind())) {
                m_lexer.SignalError(CompileMessage::ExpectingAnExpression);
                return nullptr;
            }
        }
        if (!IsStatementEnd(m_lexer.Kind())) {
            (void)m_lexer.ExpectToken(separator);
            return nullptr;
        }
    } else if (!IsStatementEnd(m_lexer.Kind())) {
        (void)m_lexer.ExpectToken(Token::Comma);
        return nullptr;
    }
    return std::make_unique<StreamPrintStatement>(std::move(code), count, newLine || writeForm, writeForm);
}

// Input "#" number "," target {"," target}
BodyParser::StatementPtr BodyParser::ParseStreamInput()
{
    m_lexer.NextToken();
    Expression code;
    if (!ParseStreamNumber(code, true) || !m_lexer.ExpectToken(Token::Comma))
        return nullptr;
    std::vector<FileTarget> targets;
    Expression writeBack;
    do {
        FileTarget target;
        if (!ParseFileTarget(target, code, writeBack))
            return nullptr;
        targets.push_back(target);
    } while (m_lexer.Accept(Token::Comma));
    return std::make_unique<StreamInputStatement>(std::move(code), std::move(writeBack), std::move(targets));
}

// Line Input "#" number "," target
BodyParser::StatementPtr BodyParser::ParseLineInput()
{
    m_lexer.NextToken();
    if (!m_lexer.ExpectToken(Token::Input))
        return nullptr;
    Expression code;
    Expression writeBack;
    FileTarget target;
    if (!ParseStreamNumber(code, true) || !m_lexer.ExpectToken(Token::Comma) ||
        !ParseFileTarget(target, code, writeBack))
        return nullptr;
    return std::make_unique<LineInputStatement>(std::move(code), std::move(writeBack), target);
}

// Get ["#"] number "," [position] "," target | Put ["#"] number "," [position] "," target
BodyParser::StatementPtr BodyParser::ParseTransfer(bool put)
{
    m_lexer.NextToken();
    Expression code;
    if (!ParseStreamNumber(code, false) || !m_lexer.ExpectToken(Token::Comma))
        return nullptr;
    int count = 1;
    if (m_lexer.Kind() != Token::Comma) {
        Expression position;
        if (!ParseExpression(position))
            return nullptr;
        code.Append(position);
        count = 2;
    }
    FileTarget target;
    Expression writeBack;
    if (!m_lexer.ExpectToken(Token::Comma) || !ParseFileTarget(target, code, writeBack, true))
        return nullptr;
    return std::make_unique<TransferStatement>(std::move(code), std::move(writeBack), count, target, put);
}

// Seek ["#"] number "," position
BodyParser::StatementPtr BodyParser::ParseSeekStatement()
{
    m_lexer.NextToken();
    Expression code;
    Expression position;
    if (!ParseStreamNumber(code, false) || !m_lexer.ExpectToken(Token::Comma) || !ParseExpression(position))
        return nullptr;
    code.Append(position);
    return std::make_unique<SeekStatement>(std::move(code));
}

// Lock ["#"] number ["," from [To to]] | Unlock ["#"] number ["," from [To to]]
BodyParser::StatementPtr BodyParser::ParseLock(bool unlock)
{
    m_lexer.NextToken();
    Expression code;
    if (!ParseStreamNumber(code, false))
        return nullptr;
    int count = 1;
    if (m_lexer.Accept(Token::Comma)) {
        Expression from;
        if (!ParseExpression(from))
            return nullptr;
        code.Append(from);
        count = 2;
        if (m_lexer.Accept(Token::To)) {
            Expression to;
            if (!ParseExpression(to))
                return nullptr;
            code.Append(to);
            count = 3;
        }
    }
    return std::make_unique<LockStatement>(std::move(code), count, unlock);
}

// Name oldpath As newpath
BodyParser::StatementPtr BodyParser::ParseNameStatement()
{
    m_lexer.NextToken();
    Expression code;
    Expression target;
    if (!ParseExpression(code) || !m_lexer.ExpectToken(Token::As) || !ParseExpression(target))
        return nullptr;
    code.Append(target);
    return std::make_unique<NameStatement>(std::move(code));
}

bool BodyParser::AtFileStatementWord(Token word) const
{
    // Line and Name may also name the program's own procedures and variables: a procedure call, or an
    // assignment to a variable (followed by "=", "(" or "."), is not the statement.
    if (FindProcedure(UpperName(m_lexer.Text())))
        return false;
    const char* after = SkipBlanks(m_lexer.TokenEnd());
    if (word == Token::Line)
        return (after[0] == 'I' || after[0] == 'i') && (after[1] == 'N' || after[1] == 'n');
    return after[0] != '=' && after[0] != '(' && after[0] != '.' && after[0] != ':';
}

} // namespace brannoc::body
