// Records of user-defined types in procedure bodies: their types, variables and element access.
#include "frontend/BodyParser.h"

#include "code/ArrayStatements.h"
#include "code/RecordAccess.h"
#include "code/TypedExpression.h"
#include "frontend/CharClasses.h"

namespace brannoc::body {

const UserType* BodyParser::FindUserType(std::string_view name) const
{
    const std::string key = UpperName(name);
    auto found = m_state.names.find(key);
    if (found != m_state.names.end())
        return found->second.kind == SymbolKind::UserType ? m_state.userTypes[found->second.index].get() : nullptr;
    return FindReachedUserType(m_reached, key);
}

const UserType* BodyParser::UserTypeOf(const std::string& upperName) const
{
    if (const LocalSymbol* local = FindLocal(upperName))
        return local->kind == LocalKind::Variable ? local->userType : nullptr;
    auto global = m_state.names.find(upperName);
    if (global != m_state.names.end()) {
        if (global->second.kind != SymbolKind::Variable)
            return nullptr;
        return m_state.variables[global->second.index]->type.userType;
    }
    std::size_t index = 0;
    if (const Module* used = FindReachedVariable(m_reached, upperName, index))
        return used->Variables()[index]->type.userType;
    return nullptr;
}

IRecordInfo* BodyParser::RecordInfoOf(const UserType* userType)
{
    return userType ? userType->record.Get() : nullptr;
}

const Block* BodyParser::RecordWithBlock() const
{
    for (auto block = m_blocks.rbegin(); block != m_blocks.rend(); ++block) {
        if (block->kind == BlockKind::With)
            return block->withRecord ? &*block : nullptr;
    }
    return nullptr;
}

void BodyParser::PrefixTypedForm(Expression& argument)
{
    if (argument.ops.size() < 2)
        return;
    switch (argument.ops.back().code) {
    case ExprOpCode::kLoadRef:
    case ExprOpCode::kRefPath:
    case ExprOpCode::kElementArgument:
    case ExprOpCode::kPathArgument: return;
    default: break;
    }
    auto form = std::make_unique<TypedExpression>();
    if (!form->Compile(argument, *m_code))
        return;
    ExprOp typed{ExprOpCode::kTypedValue};
    typed.index = m_code->AddTypedForm(std::move(form));
    typed.count = static_cast<int>(argument.ops.size());
    typed.type = argument.type;
    argument.ops.insert(argument.ops.begin(), typed);
}

ExprOp BodyParser::ThroughHiddenSlot(ExprOp& last, ExprOpCode argumentCode, ExprOpCode writeBackCode)
{
    last.code = argumentCode;
    last.variable = m_code->AddSlot(last.type);
    (void)m_code->AddSlot(TypeCode(TypeCode::kVariant));
    ExprOp writeBack{writeBackCode};
    writeBack.variable = last.variable;
    writeBack.index = last.index;
    writeBack.type = last.type;
    return writeBack;
}

void BodyParser::PassByReference(Expression& argument, bool simple, ParsedArguments& parsed)
{
    // A fixed-length string is never the same type as a parameter (parameters cannot be fixed-length):
    // the parameter gets a copy, and assignments to it do not reach the caller's string.
    if (argument.ops.empty() || argument.type.IsFixedString())
        return;
    ExprOp& last = argument.ops.back();
    // The value's copy in a hidden slot (and where it lives in the next one) stands for it during the
    // call; the write-back after the call returns it to its place.
    const auto throughHiddenSlot = [&](ExprOpCode argumentCode, ExprOpCode writeBackCode) {
        parsed.writeBacks.push_back(ThroughHiddenSlot(last, argumentCode, writeBackCode));
    };
    if (simple) {
        last.code = ExprOpCode::kLoadRef;
    } else if (last.code == ExprOpCode::kLoadPath && argument.type.IsUserType() && !argument.type.IsArray()) {
        last.code = ExprOpCode::kRefPath;
    } else if (last.code == ExprOpCode::kElement && m_expressionIsElement && parsed.elementsByReference) {
        throughHiddenSlot(ExprOpCode::kElementArgument, ExprOpCode::kElementWriteBack);
    } else if (last.code == ExprOpCode::kLoadPath && m_expressionIsElement && parsed.elementsByReference) {
        // A field or an element inside a record.
        throughHiddenSlot(ExprOpCode::kPathArgument, ExprOpCode::kPathWriteBack);
    }
}

bool BodyParser::AtRecordPath() const
{
    if (m_lexer.Kind() == Token::Dot)
        return RecordWithBlock() != nullptr;
    if (!IsNameToken(m_lexer.Kind()))
        return false;
    const char next = *SkipBlanks(m_lexer.TokenEnd());
    if (next != '(' && next != '.')
        return false;
    const std::string key = UpperName(m_lexer.Text());
    // Inside a Function returning a record, its name with arguments is a call.
    if (next == '(' && FindProcedure(key) == &m_procedure)
        return false;
    return UserTypeOf(key) != nullptr;
}

// record path: name {"(" indexes ")" | "." element}, or "." element {...} in a With on a record
// With beforeBounds (ReDim), a parenthesised group after an array is taken as its indexes only when a
// "." follows it; otherwise it is the ReDim's bounds and the path ends before it.
int BodyParser::ParseRecordPath(Expression& code, RecordPathEnd& end, bool beforeBounds)
{
    enum class At { Record, ArrayOfRecords, Array, Value };
    auto path = std::make_unique<RecordPath>();
    const UserType* current = nullptr;
    TypeCode arrayType(TypeCode::kUserType);
    if (m_lexer.Kind() == Token::Dot) {
        // ".element" inside With on a record.
        const Block* with = RecordWithBlock();
        path->withLevel = with->withLevel;
        current = with->withRecord;
    } else {
        const std::string name = ReadName();
        const std::string key = UpperName(name);
        const TypeCode suffix = ReadSuffix();
        bool found = false;
        if (!ResolveVariable(name, suffix, path->root, found))
            return -1;
        current = UserTypeOf(key);
        arrayType = path->root.type;
    }
    At at = arrayType.IsArray() ? At::ArrayOfRecords : At::Record;
    end.type = arrayType;
    end.record = current;
    for (;;) {
        if (m_lexer.Kind() == Token::LeftParen && (at == At::ArrayOfRecords || at == At::Array) &&
            (!beforeBounds || *SkipBlanks(SkipParenthesised(m_lexer.TokenStart())) == '.')) {
            m_lexer.NextToken();
            int count = 0;
            if (!ParseIndexes(code, count))
                return -1;
            path->steps.push_back(PathStep{PathStep::Kind::Index, count, nullptr});
            path->indexCount += count;
            end.type = arrayType.Scalar();
            end.fixedArray = false;
            if (at == At::Array && arrayType.Scalar().IsFixedString())
                path->elementLength = static_cast<UINT>(arrayType.Scalar().FixedLength());
            at = at == At::ArrayOfRecords ? At::Record : At::Value;
            if (at != At::Record)
                end.record = nullptr;
            continue;
        }
        if (m_lexer.Kind() == Token::Dot && at == At::Record) {
            m_lexer.NextToken();
            const char* position = m_lexer.TokenStart();
            const std::string member(m_lexer.Text());
            const UserTypeElement* element = nullptr;
            for (const UserTypeElement& candidate : current->elements) {
                if (SameName(candidate.name, member))
                    element = &candidate;
            }
            const RecordField* field = current->record ? current->record->FindField(member) : nullptr;
            if (!element || !field || !CharClasses::Get().IsIdentifierStart(member.empty() ? ' ' : member[0])) {
                m_lexer.SignalErrorAt(CompileMessage::UserDefinedTypeElementDoesNotExist, {}, position);
                return -1;
            }
            m_lexer.NextToken();
            path->steps.push_back(PathStep{PathStep::Kind::Field, 0, field});
            path->types.push_back(current->record);
            const TypeCode type = element->type.code;
            end.type = type;
            end.className = element->type.className;
            end.fixedArray = type.IsArray() && !element->bounds.empty();
            current = element->type.userType;
            end.record = type.IsArray() ? nullptr : current;
            end.elements = type.IsArray() ? current : nullptr;
            if (type.IsArray()) {
                arrayType = type;
                at = current ? At::ArrayOfRecords : At::Array;
            } else {
                at = current ? At::Record : At::Value;
            }
            continue;
        }
        break;
    }
    // A Variant field may hold an array: its indexes are read by whoever reads the field's value.
    if (m_lexer.Kind() == Token::LeftParen && !beforeBounds && !(at == At::Value && end.type.IsVariant())) {
        m_lexer.SignalError(CompileMessage::ExpectingAnAlreadyDimensionedArray);
        return -1;
    }
    return m_code->AddRecordPath(std::move(path));
}

// record path {"." member}: a record, an element of one, or an object a record holds and its members
bool BodyParser::ParseRecordFactor(Expression& out, bool* simpleVariable)
{
    const char* start = m_lexer.TokenStart();
    RecordPathEnd end;
    const int path = ParseRecordPath(out, end);
    if (path < 0)
        return false;
    ExprOp load{ExprOpCode::kLoadPath};
    load.index = path;
    load.count = m_code->RecordPathAt(path).indexCount;
    load.type = end.type;
    out.ops.push_back(load);
    out.type = end.type;
    *simpleVariable = false;
    // An object held by a record: its members follow.
    const Module* classModule = end.type.IsObject() && !end.className.empty() ? FindClassModule(end.className) : nullptr;
    m_factorClass = classModule;
    if (m_lexer.Kind() == Token::LeftParen) {
        // An element of the array a Variant field holds (u.v(1)): a value, not storage.
        m_factorIsElement = false;
        return ParseResultIndexes(out);
    }
    if (m_lexer.Kind() != Token::Dot) {
        // The path names storage: as an argument it can be passed by reference.
        m_factorIsElement = true;
        return true;
    }
    return ParseMemberChain(out, classModule, start);
}

bool BodyParser::AtHeldArray() const
{
    if (m_lexer.Kind() == Token::Dot)
        return RecordWithBlock() != nullptr;
    if (!IsNameToken(m_lexer.Kind()) || !UserTypeOf(UpperName(m_lexer.Text())))
        return false;
    // record.array or records(i).array
    const char* next = SkipBlanks(m_lexer.TokenEnd());
    if (*next == '(')
        next = SkipBlanks(SkipParenthesised(next));
    return *next == '.';
}

// ReDim [Preserve] record.array(bounds) [As type]
BodyParser::StatementPtr BodyParser::ParseReDimHeldArray(bool preserve)
{
    const char* start = m_lexer.TokenStart();
    Expression code;
    RecordPathEnd end;
    const int path = ParseRecordPath(code, end, true);
    if (path < 0)
        return nullptr;
    if (!end.type.IsArray() || end.fixedArray) {
        m_lexer.SignalErrorAt(CompileMessage::ExpectingADynamicArrayVar, {}, start);
        return nullptr;
    }
    int dimensions = 0;
    if (!ParseReDimBounds(code, dimensions))
        return nullptr;
    if (m_lexer.Accept(Token::As)) {
        const char* typePosition = m_lexer.TokenStart();
        TypeCode asType;
        const UserType* asRecord = nullptr;
        if (!ReadType(asType, nullptr, &asRecord))
            return nullptr;
        if (asType != end.type.Scalar() || asRecord != end.elements) {
            m_lexer.SignalErrorAt(CompileMessage::VarIsAlreadyDefinedAsADifferentType, {}, typePosition);
            return nullptr;
        }
    }
    auto statement = std::make_unique<ReDimStatement>(std::move(code), VariableRef{}, dimensions, preserve, end.type,
                                                      RecordInfoOf(end.elements));
    statement->SetPath(path);
    return statement;
}

// Erase record.array
BodyParser::StatementPtr BodyParser::ParseEraseHeldArray()
{
    const char* start = m_lexer.TokenStart();
    Expression code;
    RecordPathEnd end;
    const int path = ParseRecordPath(code, end);
    if (path < 0)
        return nullptr;
    if (!end.type.IsArray()) {
        m_lexer.SignalErrorAt(CompileMessage::ExpectingAnArrayVar, {}, start);
        return nullptr;
    }
    return std::make_unique<EraseStatement>(std::move(code), path, end.type);
}

// [record path {"." member}]: the target of a With when it starts at a record; anything else is left unread
bool BodyParser::ParseRecordWithTarget(Expression& code, const UserType*& type, bool& parsed)
{
    type = nullptr;
    parsed = false;
    const bool atRecord = m_lexer.Kind() == Token::Dot
                              ? RecordWithBlock() != nullptr
                              : IsNameToken(m_lexer.Kind()) && UserTypeOf(UpperName(m_lexer.Text())) != nullptr;
    if (!atRecord)
        return true;
    const char* start = m_lexer.TokenStart();
    RecordPathEnd end;
    const int path = ParseRecordPath(code, end);
    if (path < 0)
        return false;
    ExprOp op{end.record ? ExprOpCode::kRefPath : ExprOpCode::kLoadPath};
    op.index = path;
    op.count = m_code->RecordPathAt(path).indexCount;
    op.type = end.type;
    code.ops.push_back(op);
    code.type = end.type;
    if (end.record) {
        type = end.record;
        return true;
    }
    // An object held by a record, its members possibly following.
    parsed = true;
    const Module* classModule = end.type.IsObject() && !end.className.empty() ? FindClassModule(end.className) : nullptr;
    m_factorClass = classModule;
    return m_lexer.Kind() != Token::Dot || ParseMemberChain(code, classModule, start);
}

// record path = expression | record path "." member {"." member} [arguments | ["(" arguments ")"] = value]
BodyParser::StatementPtr BodyParser::ParseRecordStatement(AssignKind kind)
{
    const char* start = m_lexer.TokenStart();
    Expression code;
    RecordPathEnd end;
    const int path = ParseRecordPath(code, end);
    if (path < 0)
        return nullptr;
    if (m_lexer.Kind() == Token::Dot) {
        // A member of an object held by a record: a call or an assignment to that member.
        ExprOp load{ExprOpCode::kLoadPath};
        load.index = path;
        load.count = m_code->RecordPathAt(path).indexCount;
        load.type = end.type;
        code.ops.push_back(load);
        code.type = end.type;
        const Module* classModule =
            end.type.IsObject() && !end.className.empty() ? FindClassModule(end.className) : nullptr;
        return ParseMemberStatement(std::move(code), classModule, kind, false, start);
    }
    if (end.fixedArray) {
        m_lexer.SignalErrorAt(CompileMessage::ExpectingADynamicArrayVar, {}, start);
        return nullptr;
    }
    if (m_lexer.Kind() == Token::LeftParen)
        return ParseRecordElementStore(std::move(code), path, kind);
    if (!ParseAssignedValue(code, kind))
        return nullptr;
    const bool resolvesDefault = kind != AssignKind::Set && end.type.Scalar().IsVariant();
    return std::make_unique<AssignPathStatement>(std::move(code), path, resolvesDefault);
}

// "=" value, appended to code; a Set needs an object (or a Variant) on the right
bool BodyParser::ParseAssignedValue(Expression& code, AssignKind kind)
{
    if (!m_lexer.ExpectToken(Token::Equal))
        return false;
    const char* valuePosition = m_lexer.TokenStart();
    Expression value;
    if (!ParseExpression(value))
        return false;
    if (kind == AssignKind::Set && !value.type.IsObject() && !value.type.IsVariant()) {
        m_lexer.SignalErrorAt(CompileMessage::ExpectingAnObjectExpression, {}, valuePosition);
        return false;
    }
    code.Append(value);
    return true;
}

// record.v(indexes) = value: a store into the array a Variant field holds (the path is parsed already)
BodyParser::StatementPtr BodyParser::ParseRecordElementStore(Expression code, int path, AssignKind kind)
{
    m_lexer.NextToken();
    int count = 0;
    if (!ParseIndexes(code, count) || !ParseAssignedValue(code, kind))
        return nullptr;
    return std::make_unique<AssignPathElementStatement>(std::move(code), path, count, kind != AssignKind::Set);
}

} // namespace brannoc::body
