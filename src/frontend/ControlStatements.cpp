#include "frontend/BodyParser.h"

#include "code/ObjectStatements.h"
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

// If condition Then | If condition Then [statements] [Else [statements]]
// Then ending the line (a comment may follow) opens a block If, only where a line starts.
// statements: statement {":" statement}
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
        branch->AddBranch(std::move(condition), AfterHere());
        branch->SetKeyword(TokenNumber(Token::If));
        Block block{BlockKind::If};
        block.index = Here();
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
            return Discard(std::move(thenPart));
        elsePart.reset(static_cast<StatementList*>(parsed.release()));
    }
    auto statement = std::make_unique<SingleLineIfStatement>(
        std::move(condition), std::unique_ptr<StatementList>(static_cast<StatementList*>(thenPart.release())),
        std::move(elsePart));
    statement->SetKeyword(TokenNumber(Token::If));
    return statement;
}

// ElseIf condition Then  (in a block If, before its Else)
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
    branch->AddBranch(std::move(condition), AfterHere());
    auto jump = std::make_unique<JumpStatement>();
    jump->SetKeyword(TokenNumber(Token::ElseIf));
    block->exits.push_back(jump.get());
    return jump;
}

// Else  (in a block If, once)
BodyParser::StatementPtr BodyParser::ParseElse()
{
    Block* block = Innermost(BlockKind::If);
    if (!block || block->hasElse) {
        m_lexer.SignalError(CompileMessage::UnexpectedText, "Else");
        return nullptr;
    }
    m_lexer.NextToken();
    block->hasElse = true;
    static_cast<BranchStatement*>(block->opener)->SetElseTarget(AfterHere());
    auto jump = std::make_unique<JumpStatement>();
    jump->SetKeyword(TokenNumber(Token::Else));
    block->exits.push_back(jump.get());
    return jump;
}

// Select Case expression: opens the block, whose next line must be a Case
BodyParser::StatementPtr BodyParser::ParseSelect()
{
    m_lexer.NextToken();
    if (!m_lexer.ExpectToken(Token::Case))
        return nullptr;
    Expression selector;
    if (!ParseExpression(selector))
        return nullptr;
    const TypeCode selectorType = selector.type;
    auto branch = std::make_unique<BranchStatement>();
    const int slot = m_code->AddSlot(TypeCode(TypeCode::kVariant));
    branch->SetSelector(std::move(selector), slot);
    branch->SetKeyword(TokenNumber(Token::Select));
    Block block{BlockKind::Select};
    block.index = Here();
    block.opener = branch.get();
    block.expectCase = true;
    block.selectorSlot = slot;
    block.selectorType = selectorType;
    m_blocks.push_back(block);
    return branch;
}

// Case Else | Case item {"," item} where item is expression [To expression] | Is comparison expression
// Statements may follow on the same line after ":".
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
                const TypeCode compared = item.type;
                AppendBinary(item, comparison->op);
                AlignOperands(item, block->selectorType, compared);
            } else {
                Expression low;
                if (!ParseExpression(low))
                    return nullptr;
                loadSelector(item);
                if (m_lexer.Accept(Token::To)) {
                    item.Append(low);
                    AppendBinary(item, OperationId::kGreaterEqual);
                    AlignOperands(item, block->selectorType, low.type);
                    loadSelector(item);
                    if (!ParseExpression(item))
                        return nullptr;
                    const TypeCode high = item.type;
                    AppendBinary(item, OperationId::kLessEqual);
                    AlignOperands(item, block->selectorType, high);
                    AppendBinary(item, OperationId::kAnd);
                } else {
                    item.Append(low);
                    AppendBinary(item, OperationId::kEqual);
                    AlignOperands(item, block->selectorType, low.type);
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

bool BodyParser::NamesConstant(const std::string& name) const
{
    const std::string key = UpperName(name);
    if (const LocalSymbol* local = FindLocal(key))
        return local->kind == LocalKind::Constant;
    auto found = m_state.names.find(key);
    return found != m_state.names.end() &&
           (found->second.kind == SymbolKind::Constant || found->second.kind == SymbolKind::EnumMember);
}

// For counter = start To end [Step step] | For Each element In group
// The counter is a numeric or Variant variable, not an array.
BodyParser::StatementPtr BodyParser::ParseFor()
{
    m_lexer.NextToken();
    if (m_lexer.Accept(Token::Each))
        return ParseForEach();
    if (!IsNameToken(m_lexer.Kind())) {
        m_lexer.SignalError(CompileMessage::ExpectingAScalarNumberVar);
        return nullptr;
    }
    const char* namePosition = m_lexer.TokenStart();
    const std::string name = ReadName();
    const TypeCode suffix = ReadSuffix();
    if (NamesConstant(name)) {
        m_lexer.SignalErrorAt(CompileMessage::ExpectingAScalarNumberVar, {}, namePosition);
        return nullptr;
    }
    VariableRef counter;
    bool found = false;
    if (!ResolveVariable(name, suffix, counter, found))
        return nullptr;
    if (counter.type.IsArray() || !(counter.type.IsNumeric() || counter.type.IsVariant())) {
        m_lexer.SignalErrorAt(CompileMessage::ExpectingAScalarNumberVar, {}, namePosition);
        return nullptr;
    }
    if (!m_lexer.ExpectToken(Token::Equal))
        return nullptr;
    Expression start;
    Expression end;
    Expression step;
    if (!ParseExpression(start) || !m_lexer.ExpectToken(Token::To) || !ParseExpression(end))
        return nullptr;
    if (m_lexer.Accept(Token::Step) && !ParseExpression(step))
        return nullptr;
    const int endSlot = m_code->AddSlot(TypeCode(TypeCode::kVariant));
    const int stepSlot = m_code->AddSlot(TypeCode(TypeCode::kVariant));
    auto statement = std::make_unique<ForStatement>(counter, std::move(start), std::move(end), std::move(step), endSlot,
                                                  stepSlot);
    statement->SetKeyword(TokenNumber(Token::For));
    Block block{BlockKind::For};
    block.index = Here();
    block.afterOpener = AfterHere();
    block.opener = statement.get();
    block.counterName = UpperName(name);
    block.counter = counter;
    block.endSlot = endSlot;
    block.stepSlot = stepSlot;
    m_blocks.push_back(block);
    return statement;
}

// (after For Each) element In group: the element is a variable that is no array
BodyParser::StatementPtr BodyParser::ParseForEach()
{
    if (!IsNameToken(m_lexer.Kind())) {
        m_lexer.SignalError(CompileMessage::ExpectingAVarName);
        return nullptr;
    }
    const char* namePosition = m_lexer.TokenStart();
    const std::string name = ReadName();
    const TypeCode suffix = ReadSuffix();
    if (NamesConstant(name)) {
        m_lexer.SignalErrorAt(CompileMessage::ExpectingAVarName, {}, namePosition);
        return nullptr;
    }
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
    bool simple = false;
    if (!ParseExpression(group, &simple))
        return nullptr;
    // An array variable is walked where it is, not copied first.
    if (simple && group.type.IsArray())
        group.ops.back().code = ExprOpCode::kLoadRef;
    const int arraySlot = m_code->AddSlot(TypeCode(TypeCode::kVariant));
    const int positionSlot = m_code->AddSlot(TypeCode(TypeCode::kVariant));
    auto statement = std::make_unique<ForEachStatement>(element, std::move(group), arraySlot, positionSlot);
    statement->SetKeyword(TokenNumber(Token::For));
    Block block{BlockKind::For};
    block.index = Here();
    block.afterOpener = AfterHere();
    block.opener = statement.get();
    block.counterName = UpperName(name);
    block.counter = element;
    block.endSlot = arraySlot;
    block.stepSlot = positionSlot;
    block.isEach = true;
    m_blocks.push_back(block);
    return statement;
}

// name [suffix]: a variable already known; otherwise the error `message`
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

// Next [counter] {"," [counter]}: each item closes one loop; a counter written must be its For's
BodyParser::StatementPtr BodyParser::ParseNext()
{
    m_lexer.NextToken();
    std::vector<StatementPtr> nexts;
    std::vector<Block> closed;
    do {
        Block* block = Innermost(BlockKind::For);
        if (!block) {
            m_lexer.SignalError(CompileMessage::UnexpectedText, "Next");
            return nullptr;
        }
        if (IsNameToken(m_lexer.Kind())) {
            const char* position = m_lexer.TokenStart();
            const std::string name = UpperName(ReadName());
            (void)ReadSuffix();
            if (name != block->counterName) {
                m_lexer.SignalErrorAt(CompileMessage::NextVarDoesNotMatchForsVar, {}, position);
                return nullptr;
            }
        }
        StatementPtr next;
        if (block->isEach)
            next = std::make_unique<NextEachStatement>(block->counter, block->endSlot, block->stepSlot, block->afterOpener);
        else
            next = std::make_unique<NextStatement>(block->counter, block->endSlot, block->stepSlot, block->afterOpener);
        next->SetKeyword(TokenNumber(Token::Next));
        next->SetOwner(m_code);
        nexts.push_back(std::move(next));
        closed.push_back(std::move(*block));
        m_blocks.pop_back();
    } while (m_lexer.Accept(Token::Comma));
    // Every loop the Next closes ends after it.
    const int after = AfterHere();
    for (Block& block : closed) {
        if (block.isEach)
            static_cast<ForEachStatement*>(block.opener)->SetExitTarget(after);
        else
            static_cast<ForStatement*>(block.opener)->SetExitTarget(after);
        CloseBlock(block, after);
    }
    if (nexts.size() == 1)
        return std::move(nexts.front());
    auto list = std::make_unique<StatementList>();
    for (StatementPtr& next : nexts)
        list->Add(std::move(next));
    list->SetKeyword(TokenNumber(Token::Next));
    return list;
}

// Do [While condition | Until condition]
BodyParser::StatementPtr BodyParser::ParseDo()
{
    m_lexer.NextToken();
    Block block{BlockKind::Do};
    block.index = Here();
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
    block.afterOpener = AfterHere();
    m_blocks.push_back(block);
    return statement;
}

// Loop [While condition | Until condition]
BodyParser::StatementPtr BodyParser::ParseLoop()
{
    Block* block = Innermost(BlockKind::Do);
    if (!block) {
        m_lexer.SignalError(CompileMessage::UnexpectedText, "Loop");
        return nullptr;
    }
    m_lexer.NextToken();
    StatementPtr statement;
    if (m_lexer.Kind() == Token::While || m_lexer.Kind() == Token::Until) {
        const bool isWhile = m_lexer.Kind() == Token::While;
        m_lexer.NextToken();
        Expression condition;
        if (!ParseExpression(condition))
            return nullptr;
        auto test = std::make_unique<ConditionalJumpStatement>(std::move(condition), isWhile);
        test->SetTarget(block->doHasCondition ? block->index : block->afterOpener);
        statement = std::move(test);
    } else {
        auto jump = std::make_unique<JumpStatement>();
        jump->SetTarget(block->index);
        statement = std::move(jump);
    }
    const int after = AfterHere();
    if (block->doHasCondition)
        static_cast<ConditionalJumpStatement*>(block->opener)->SetTarget(after);
    CloseBlock(*block, after);
    m_blocks.pop_back();
    statement->SetKeyword(TokenNumber(Token::Loop));
    return statement;
}

// While condition
BodyParser::StatementPtr BodyParser::ParseWhile()
{
    m_lexer.NextToken();
    Expression condition;
    if (!ParseExpression(condition))
        return nullptr;
    auto test = std::make_unique<ConditionalJumpStatement>(std::move(condition), false);
    test->SetKeyword(TokenNumber(Token::While));
    Block block{BlockKind::While};
    block.index = Here();
    block.afterOpener = AfterHere();
    block.opener = test.get();
    m_blocks.push_back(block);
    return test;
}

// Wend
BodyParser::StatementPtr BodyParser::ParseWend()
{
    Block* block = Innermost(BlockKind::While);
    if (!block) {
        m_lexer.SignalError(CompileMessage::UnexpectedText, "Wend");
        return nullptr;
    }
    m_lexer.NextToken();
    const int after = AfterHere();
    static_cast<ConditionalJumpStatement*>(block->opener)->SetTarget(after);
    auto jump = std::make_unique<JumpStatement>();
    jump->SetTarget(block->index);
    jump->SetKeyword(TokenNumber(Token::Wend));
    CloseBlock(*block, after);
    m_blocks.pop_back();
    return jump;
}

// With object | With record: a record variable or path opens a With on the record itself
BodyParser::StatementPtr BodyParser::ParseWith()
{
    m_lexer.NextToken();
    const char* position = m_lexer.TokenStart();
    Expression value;
    const UserType* record = nullptr;
    bool parsed = false;
    if (!ParseRecordWithTarget(value, record, parsed))
        return nullptr;
    if (record) {
        auto statement = std::make_unique<WithStatement>(std::move(value));
        statement->SetKeyword(TokenNumber(Token::With));
        Block block{BlockKind::With};
        block.index = CurrentIndex();
        block.opener = statement.get();
        block.withLevel = WithLevel();
        block.withNumber = ++m_withCount;
        block.withRecord = record;
        m_blocks.push_back(block);
        return statement;
    }
    if (!parsed && !ParseExpression(value))
        return nullptr;
    const Module* classModule = m_factorClass;
    if (value.type.IsArray() || !(value.type.IsObject() || value.type.IsVariant())) {
        m_lexer.SignalErrorAt(CompileMessage::ExpectingAnObjectExpression, {}, position);
        return nullptr;
    }
    auto statement = std::make_unique<WithStatement>(std::move(value));
    statement->SetKeyword(TokenNumber(Token::With));
    Block block{BlockKind::With};
    block.index = Here();
    block.afterOpener = AfterHere();
    block.opener = statement.get();
    block.classModule = classModule;
    block.withLevel = WithLevel();
    block.withNumber = ++m_withCount;
    m_blocks.push_back(block);
    return statement;
}

// GoTo label
BodyParser::StatementPtr BodyParser::ParseGoTo()
{
    m_lexer.NextToken();
    if (!IsNameToken(m_lexer.Kind())) {
        m_lexer.SignalError(CompileMessage::InvalidLabelIdentifier);
        return nullptr;
    }
    auto jump = std::make_unique<JumpStatement>();
    jump->SetKeyword(TokenNumber(Token::GoTo));
    JumpStatement* target = jump.get();
    PendingGoTo pending{[target](int index) { target->SetTarget(index); }, std::string(m_lexer.Text()),
                        m_lexer.TokenStart()};
    pending.jump = target;
    pending.withChain = WithChain();
    m_gotos.push_back(std::move(pending));
    m_lexer.NextToken();
    return jump;
}

// Exit All | Exit For | Exit Do | Exit Sub | Exit Function | Exit Property
// For and Do leave the innermost such loop; the procedure word must be the enclosing procedure's kind.
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
        int leftWith = 0;
        for (auto block = m_blocks.rbegin(); block != m_blocks.rend(); ++block) {
            if (block->kind == kind) {
                // Leaving the loop leaves the With blocks opened inside it.
                jump->SetWithRelease(leftWith);
                block->exits.push_back(jump.get());
                m_lexer.NextToken();
                return jump;
            }
            leftWith += block->kind == BlockKind::With ? 1 : 0;
        }
        // No such loop encloses it: only the procedure's own kind word may follow.
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

} // namespace brannoc::body
