#include "frontend/BodyParser.h"

#include "code/ArrayStatements.h"
#include "code/RecordAccess.h"

#include "frontend/CharClasses.h"
#include "frontend/DeclarationReader.h"
#include "exec/InterpreterHost.h"
#include "values/Conversion.h"
#include "values/ValueCell.h"
#include "values/ValueError.h"

#include <windows.h>

#include <cmath>
#include <cstdlib>
#include <optional>

namespace brannoc::body {

// ReDim [Preserve] name(bounds) [As type] {"," name(bounds) [As type]}
BodyParser::StatementPtr BodyParser::ParseReDim()
{
    m_lexer.NextToken();
    const bool preserve = m_lexer.Accept(Token::Preserve);
    auto list = std::make_unique<StatementList>();
    StatementPtr single;
    int count = 0;
    do {
        StatementPtr one = ParseReDimVariable(preserve);
        if (!one)
            return nullptr;
        one->SetKeyword(TokenNumber(Token::ReDim));
        one->SetOwner(m_code);
        if (++count == 1) {
            single = std::move(one);
        } else {
            if (single)
                list->Add(std::move(single));
            list->Add(std::move(one));
        }
    } while (m_lexer.Accept(Token::Comma));
    if (count == 1)
        return single;
    list->SetKeyword(TokenNumber(Token::ReDim));
    return list;
}

// "(" [lower To] upper {"," [lower To] upper} ")": a (lower, upper) pair of code per dimension.
bool BodyParser::ParseReDimBounds(Expression& bounds, int& dimensions)
{
    if (!m_lexer.ExpectToken(Token::LeftParen))
        return false;
    dimensions = 0;
    do {
        Expression first;
        if (!ParseExpression(first))
            return false;
        if (m_lexer.Accept(Token::To)) {
            bounds.Append(first);
            if (!ParseExpression(bounds))
                return false;
        } else {
            Variant base;
            base.SetLong(m_module.OptionBase());
            AppendConstant(bounds, std::move(base));
            bounds.Append(first);
        }
        if (++dimensions > TypeCode::kMaxRank) {
            m_lexer.SignalError(CompileMessage::TooManyDimensions);
            return false;
        }
    } while (m_lexer.Accept(Token::Comma));
    return m_lexer.ExpectToken(Token::RightParen);
}

// name [suffix] "(" bounds ")" [As type] | record.array "(" bounds ")" [As type]
// One variable of a ReDim. A name declared nowhere becomes a local dynamic array of the As type (or
// its suffix's or letter's type).
BodyParser::StatementPtr BodyParser::ParseReDimVariable(bool preserve)
{
    if (AtHeldArray())
        return ParseReDimHeldArray(preserve);
    if (!IsNameToken(m_lexer.Kind())) {
        m_lexer.SignalError(CompileMessage::ExpectingADynamicArrayVar);
        return nullptr;
    }
    const char* namePosition = m_lexer.TokenStart();
    const std::string name = ReadName();
    const std::string key = UpperName(name);
    const TypeCode suffix = ReadSuffix();
    VariableRef target;
    const bool declared = IsDeclaredVariable(key);
    bool found = false;
    if (declared && !ResolveVariable(name, suffix, target, found))
        return nullptr;
    if (declared && !(target.type.IsVariant() && !target.type.IsArray()) &&
        target.type.Rank() != TypeCode::kDynamicRank) {
        m_lexer.SignalErrorAt(CompileMessage::ExpectingADynamicArrayVar, {}, namePosition);
        return nullptr;
    }
    Expression bounds;
    int dimensions = 0;
    if (!ParseReDimBounds(bounds, dimensions))
        return nullptr;
    TypeCode asType;
    const UserType* asRecord = nullptr;
    const char* typePosition = nullptr;
    if (m_lexer.Accept(Token::As)) {
        typePosition = m_lexer.TokenStart();
        if (suffix != TypeCode()) {
            m_lexer.SignalError(CompileMessage::VarIsAlreadyDefinedAsADifferentType, name);
            return nullptr;
        }
        if (!ReadType(asType, nullptr, &asRecord))
            return nullptr;
    }
    TypeCode arrayType;
    if (!declared) {
        TypeCode element = asType != TypeCode() ? asType : suffix != TypeCode() ? suffix : m_module.DefaultTypeFor(name);
        arrayType = element.WithRank(TypeCode::kDynamicRank);
        LocalSymbol symbol;
        symbol.ref = VariableRef{StorageScope::Local,
                                 m_code->AddSlot(arrayType, asRecord ? asRecord->record.Get() : nullptr), arrayType};
        symbol.userType = asRecord;
        m_locals[key] = symbol;
        target = symbol.ref;
    } else if (target.type.IsArray()) {
        const int rank = target.type.Rank();
        if (rank != TypeCode::kDynamicRank && rank != dimensions) {
            m_lexer.SignalError(CompileMessage::CantChangeTheNumberOfIndexes);
            return nullptr;
        }
        if (asType != TypeCode() && (asType != target.type.Scalar() || asRecord != UserTypeOf(key))) {
            m_lexer.SignalErrorAt(CompileMessage::VarIsAlreadyDefinedAsADifferentType, name, typePosition);
            return nullptr;
        }
        arrayType = target.type;
        asRecord = UserTypeOf(key);
    } else {
        // A Variant holds an array of the As type, of Variants without one.
        arrayType = (asType != TypeCode() ? asType : TypeCode(TypeCode::kVariant)).WithRank(dimensions);
    }
    return std::make_unique<ReDimStatement>(std::move(bounds), target, dimensions, preserve, arrayType,
                                            RecordInfoOf(asRecord));
}

// Mid "(" variable "," start ["," length] ")" = text
// The variable is a String or Variant; a constant start below 1 is refused at once.
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

// Erase array {"," array}: an array or Variant variable, or an array a record holds
BodyParser::StatementPtr BodyParser::ParseErase()
{
    m_lexer.NextToken();
    auto list = std::make_unique<StatementList>();
    do {
        if (AtHeldArray()) {
            StatementPtr erase = ParseEraseHeldArray();
            if (!erase)
                return nullptr;
            erase->SetOwner(m_code);
            list->Add(std::move(erase));
            continue;
        }
        VariableRef target;
        if (!ReadExistingVariable(target, CompileMessage::ExpectingAnArrayVar))
            return nullptr;
        if (!target.type.IsArray() && !target.type.IsVariant()) {
            m_lexer.SignalError(CompileMessage::ExpectingAnArrayVar);
            return nullptr;
        }
        auto erase = std::make_unique<EraseStatement>(target);
        erase->SetOwner(m_code);
        list->Add(std::move(erase));
    } while (m_lexer.Accept(Token::Comma));
    list->SetKeyword(TokenNumber(Token::Erase));
    return list;
}

// LSet variable = text | RSet variable = text | LSet record = record | LSet record path = text
BodyParser::StatementPtr BodyParser::ParseAlign(bool right)
{
    m_lexer.NextToken();
    if (AtRecordPath())
        return ParseAlignPath(right);
    VariableRef target;
    const std::string targetName(m_lexer.Text());
    if (!ReadExistingVariable(target, CompileMessage::ExpectingAStringOrUserTypeVar))
        return nullptr;
    if (!right && target.type.IsUserType() && !target.type.IsArray())
        return ParseRecordCopy(target, targetName);
    const TypeCode element = target.type.Scalar();
    if (target.type.IsArray() && m_lexer.Kind() == Token::LeftParen && (element.IsString() || element.IsVariant())) {
        // An element of a String or Variant array: its indexes, then the text.
        m_lexer.NextToken();
        Expression code;
        int count = 0;
        if (!ParseIndexes(code, count) || !m_lexer.ExpectToken(Token::Equal) || !ParseExpression(code))
            return nullptr;
        auto statement = std::make_unique<AlignStatement>(std::move(code), target, right, count);
        statement->SetKeyword(TokenNumber(right ? Token::RSet : Token::LSet));
        return statement;
    }
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

// LSet record path = text | RSet record path = text: a String, fixed-length String or Variant field (or an
// element of such an array field) of a record keeps its length and takes the text aligned in it.
BodyParser::StatementPtr BodyParser::ParseAlignPath(bool right)
{
    const char* start = m_lexer.TokenStart();
    Expression code;
    RecordPathEnd end;
    const int path = ParseRecordPath(code, end);
    if (path < 0)
        return nullptr;
    const TypeCode& type = end.type;
    const bool text = !type.IsArray() && (type.IsString() || type.IsFixedString() || type.IsVariant());
    if (end.record || end.fixedArray || !text || m_lexer.Kind() == Token::Dot || m_lexer.Kind() == Token::LeftParen) {
        m_lexer.SignalErrorAt(end.record ? CompileMessage::ThisVarCantBeUsedWithLSet
                                         : CompileMessage::ExpectingAStringOrUserTypeVar,
                              {}, start);
        return nullptr;
    }
    if (!m_lexer.ExpectToken(Token::Equal) || !ParseExpression(code))
        return nullptr;
    auto statement = std::make_unique<AlignPathStatement>(std::move(code), path, right);
    statement->SetKeyword(TokenNumber(right ? Token::RSet : Token::LSet));
    return statement;
}

namespace {

// A record whose bytes are all its value: numbers, fixed-length strings and records of the same.
bool IsPlainRecord(const RecordType& type)
{
    for (std::size_t i = 0; i < type.FieldCount(); ++i) {
        const RecordField& field = type.FieldAt(i);
        const bool plain = field.kind == FieldKind::Plain || field.kind == FieldKind::FixedString ||
                           (field.kind == FieldKind::Record && field.record && IsPlainRecord(*field.record.Get()));
        if (!plain)
            return false;
    }
    return true;
}

} // namespace

// LSet record = record: the source's bytes from the start, as many as both records have. Records that hold
// strings, objects, arrays or Variants own what their bytes refer to, so they are refused.
BodyParser::StatementPtr BodyParser::ParseRecordCopy(const VariableRef& target, const std::string& targetName)
{
    if (!m_lexer.ExpectToken(Token::Equal))
        return nullptr;
    const std::string sourceName(m_lexer.Text());
    const char* sourcePosition = m_lexer.TokenStart();
    VariableRef source;
    if (!ReadExistingVariable(source, CompileMessage::ExpectingAUserTypeVar))
        return nullptr;
    if (!source.type.IsUserType() || source.type.IsArray()) {
        m_lexer.SignalErrorAt(CompileMessage::ExpectingAUserTypeVar, {}, sourcePosition);
        return nullptr;
    }
    RecordType* to = AsRecordType(RecordInfoOf(UserTypeOf(UpperName(targetName))));
    RecordType* from = AsRecordType(RecordInfoOf(UserTypeOf(UpperName(sourceName))));
    if (!to || !from || !IsPlainRecord(*to) || !IsPlainRecord(*from)) {
        m_lexer.SignalErrorAt(CompileMessage::ThisVarCantBeUsedWithLSet, {}, sourcePosition);
        return nullptr;
    }
    const ULONG size = to->Size() < from->Size() ? to->Size() : from->Size();
    auto statement = std::make_unique<RecordCopyStatement>(target, source, size);
    statement->SetKeyword(TokenNumber(Token::LSet));
    return statement;
}

// Debug.Print [expression {";" expression} [";"]]: a trailing ";" leaves the line open
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

// type: a type word | String * length | UserDialog | enum name | user-defined type | class | Object
//     | Library.Type; an enumeration stands for Long
bool BodyParser::ReadType(TypeCode& type, const Module** classModule, const UserType** userType)
{
    const Token word = m_lexer.Kind();
    TypeCode code = TypeOfWord(word);
    if (word == Token::UserDialog) {
        // The dialog type exists only in the procedure whose Begin Dialog block defines it.
        if (!m_dialogType) {
            m_lexer.SignalError(CompileMessage::UserDialogMustBeDefinedInTheCurrentSubFunctionProperty);
            return false;
        }
        type = TypeCode(TypeCode::kUserType);
        if (userType)
            *userType = m_dialogType.get();
        m_lexer.NextToken();
        return true;
    }
    if (code == TypeCode()) {
        // An enumeration's name as a type stands for Long.
        if (IsNameToken(word) && IsEnumName(UpperName(m_lexer.Text()))) {
            type = TypeCode(TypeCode::kLong);
            m_lexer.NextToken();
            return true;
        }
        if (const UserType* record = IsNameToken(word) ? FindUserType(m_lexer.Text()) : nullptr) {
            type = TypeCode(TypeCode::kUserType);
            if (userType)
                *userType = record;
            m_lexer.NextToken();
            return true;
        }
        if (word == Token::Object || IsNameToken(word)) {
            type = TypeCode(TypeCode::kObject);
            if (classModule && word != Token::Object)
                *classModule = FindClassModule(m_lexer.Text());
            std::string name(m_lexer.Text());
            const char* namePosition = m_lexer.TokenStart();
            m_lexer.NextToken();
            if (word != Token::Object && m_lexer.Kind() == Token::Dot && m_lexer.PreviousFollowingChar() == '.') {
                // Library.Type: a type of a type-library reference.
                m_lexer.NextToken();
                if (!IsNameToken(m_lexer.Kind())) {
                    m_lexer.SignalError(CompileMessage::ExpectingAValidDataTypeEgInteger);
                    return false;
                }
                name += '.';
                name += m_lexer.Text();
                m_lexer.NextToken();
                if (!m_module.Source() || !m_module.Source()->IsExternalTypeName(m_module.Name(), name)) {
                    m_lexer.SignalErrorAt(CompileMessage::ExpectingAValidDataTypeEgInteger, {}, namePosition);
                    return false;
                }
                if (classModule)
                    *classModule = nullptr;
            }
            // A referenced library's enumeration stands for Long, as the module's own do.
            if (word != Token::Object && m_module.Source() && m_module.Source()->IsExternalEnumName(m_module.Name(), name)) {
                type = TypeCode(TypeCode::kLong);
                if (classModule)
                    *classModule = nullptr;
                return true;
            }
            // Any other name must be a class or object module or a type that a reference or extension
            // gives, as for the module's own declarations: a misspelt type is an error, not an object.
            if (word != Token::Object && !IsKnownObjectType(name)) {
                m_lexer.SignalErrorAt(CompileMessage::ExpectingAValidDataTypeEgInteger, {}, namePosition);
                return false;
            }
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

// (after "(") [[lower To] upper {"," [lower To] upper}] ")"
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

// Dim name [suffix] ["(" bounds ")"] [As [New] type] {"," ...} | Static ...: local variables of the procedure
BodyParser::StatementPtr BodyParser::ParseDim(bool isStatic)
{
    m_lexer.NextToken();
    do {
        if (!IsNameToken(m_lexer.Kind())) {
            m_lexer.SignalError(CompileMessage::ExpectingAVarName);
            return nullptr;
        }
        const std::string name = ReadName();
        const char* namePosition = m_namePosition;
        TypeCode type = ReadSuffix();
        std::vector<std::pair<long, long>> bounds;
        bool isArray = false;
        bool autoNew = false;
        const Module* classModule = nullptr;
        const UserType* userType = nullptr;
        if (m_lexer.Accept(Token::LeftParen)) {
            isArray = true;
            if (!ReadBounds(bounds))
                return nullptr;
        }
        if (m_lexer.Accept(Token::As)) {
            if (type != TypeCode()) {
                m_lexer.SignalErrorAt(CompileMessage::VarIsAlreadyDefinedAsADifferentType, name, namePosition);
                return nullptr;
            }
            autoNew = m_lexer.Accept(Token::New);
            const char* typePosition = m_lexer.TokenStart();
            if (!ReadType(type, &classModule, &userType))
                return nullptr;
            if (autoNew && !classModule) {
                // Only a class or object module of the macro can be made on first use.
                m_lexer.SignalErrorAt(CompileMessage::ExpectingASpecificObjectType, {}, typePosition);
                return nullptr;
            }
        }
        if (isArray && userType && userType == m_dialogType.get()) {
            m_lexer.SignalErrorAt(CompileMessage::UserDialogVarMustNotBeAnArray, {}, namePosition);
            return nullptr;
        }
        RecordType* record = userType ? userType->record.Get() : nullptr;
        if (type == TypeCode())
            type = m_module.DefaultTypeFor(name);
        const std::string key = UpperName(name);
        if (m_locals.count(key) != 0) {
            m_lexer.SignalErrorAt(CompileMessage::IdentifierIsAlreadyInUse, name, namePosition);
            return nullptr;
        }
        // The procedure's variables are laid out as a module's are: 16 MB at most in all.
        m_declaredStorage = ((m_declaredStorage + 3) & ~std::uint64_t{3}) +
                            (isArray ? 12 : type.StorageSize(userType ? userType->size : 0));
        if (m_declaredStorage > kMaxStorageSize) {
            m_lexer.SignalErrorAt(CompileMessage::VariableStorageSpaceExceeded, {}, namePosition);
            return nullptr;
        }
        LocalSymbol symbol;
        symbol.userType = userType;
        if (isArray) {
            type = type.WithRank(bounds.empty() ? TypeCode::kDynamicRank : static_cast<int>(bounds.size()));
            int index = 0;
            if (!isStatic)
                symbol.ref = VariableRef{StorageScope::Local, m_code->AddArraySlot(type, bounds, record), type};
            else if (m_code->AddStaticArray(type, bounds, index, record))
                symbol.ref = VariableRef{StorageScope::Static, index, type};
            else {
                m_lexer.SignalError(CompileMessage::ArrayHasTooManyElements);
                return nullptr;
            }
        } else if (isStatic) {
            int index = 0;
            if (!m_code->AddStatic(type, record, index)) {
                m_lexer.SignalError(CompileMessage::OutOfMemory);
                return nullptr;
            }
            symbol.ref = VariableRef{StorageScope::Static, index, type};
        } else {
            symbol.ref = VariableRef{StorageScope::Local, m_code->AddSlot(type, record), type};
        }
        if (!isArray) {
            symbol.classModule = classModule;
            symbol.autoNew = autoNew && classModule;
        }
        m_locals[key] = symbol;
    } while (m_lexer.Accept(Token::Comma));
    return Declaration();
}

// Const name [suffix] [As type] = constant {"," name [suffix] [As type] = constant}
// The type is a number, String or Variant type.
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
        if (m_lexer.Accept(Token::As)) {
            const char* typePosition = m_lexer.TokenStart();
            if (!ReadType(type))
                return nullptr;
            // Constants hold numbers, texts and Variants, never objects or records.
            if (type.IsArray() || !(type.IsNumeric() || type.IsString() || type.IsVariant())) {
                m_lexer.SignalErrorAt(CompileMessage::ExpectingAValidConstTypeEgInteger, {}, typePosition);
                return nullptr;
            }
        }
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
            if (long error = 0; !ConvertConstant(converted, static_cast<VARTYPE>(type.ValueTag()), error)) {
                // The conversion's own error: a number out of the type's range is an overflow.
                m_lexer.SignalError(error != 0 ? static_cast<CompileMessage>(error) : CompileMessage::TypeMismatch);
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

} // namespace brannoc::body
