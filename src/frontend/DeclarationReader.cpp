#include "frontend/DeclarationReader.h"
#include "frontend/ReachedNames.h"

#include "frontend/CharClasses.h"
#include "frontend/ConstantReader.h"
#include "frontend/Lexer.h"
#include "frontend/ModuleSource.h"

#include <algorithm>

namespace brannoc {
namespace {

// The type words of As clauses that name a scalar type directly.
struct TypeWord {
    Token token;
    std::uint16_t code;
};

constexpr TypeWord kTypeWords[] = {
    {Token::Boolean, TypeCode::kBoolean}, {Token::Byte, TypeCode::kByte},       {Token::Currency, TypeCode::kCurrency},
    {Token::Date, TypeCode::kDate},       {Token::Double, TypeCode::kDouble},   {Token::Integer, TypeCode::kInteger},
    {Token::Long, TypeCode::kLong},       {Token::PortInt, TypeCode::kLong},    {Token::Single, TypeCode::kSingle},
    {Token::String, TypeCode::kString},   {Token::Variant, TypeCode::kVariant}, {Token::Object, TypeCode::kObject},
    {Token::Decimal, TypeCode::kDecimal},
};

// Def statements and the type each sets.
struct DefWord {
    Token token;
    std::uint16_t code;
};

constexpr DefWord kDefWords[] = {
    {Token::DefBool, TypeCode::kBoolean}, {Token::DefByte, TypeCode::kByte},   {Token::DefCur, TypeCode::kCurrency},
    {Token::DefDate, TypeCode::kDate},    {Token::DefDbl, TypeCode::kDouble},  {Token::DefInt, TypeCode::kInteger},
    {Token::DefLng, TypeCode::kLong},     {Token::DefSng, TypeCode::kSingle},  {Token::DefStr, TypeCode::kString},
    {Token::DefObj, TypeCode::kObject},   {Token::DefVar, TypeCode::kVariant},
};

bool IsSuffixChar(char c) { return TypeOfSuffix(c) != TypeCode(); }

bool IsEndOfStatement(Token token) { return token == Token::EndOfLine || token == Token::Apostrophe; }

} // namespace

std::uint32_t StorageSizeOf(const TypeSpec& type, bool isArray)
{
    if (isArray)
        return 12;
    return type.code.StorageSize(type.userType != nullptr ? type.userType->size : 0);
}

bool LayoutVariables(std::vector<std::unique_ptr<Variable>>& variables, std::uint32_t start, std::uint32_t& total,
                     Lexer& lexer)
{
    std::uint64_t size = start;
    for (auto& variable : variables) {
        size = (size + 3) & ~std::uint64_t{3};
        variable->offset = static_cast<std::uint32_t>(size);
        size += StorageSizeOf(variable->type, variable->type.code.IsArray());
        if (size > kMaxStorageSize) {
            lexer.SignalError(CompileMessage::VariableStorageSpaceExceeded);
            return false;
        }
    }
    total = static_cast<std::uint32_t>(size);
    return true;
}

DeclarationReader::DeclarationReader(Lexer& lexer, Module& module, ModuleSource* source,
                                     bool (*isClassName)(void*, std::string_view), void* context)
    : m_lexer(lexer), m_module(module), m_state(*module.State()), m_source(source), m_isClassName(isClassName),
      m_context(context)
{
}

// declaration: (after the visibility word, if any) Dim | Static | Const | Type | Enum | Declare | Sub |
//     Function | Property | Option | Attribute | Event | Implements | DefXxx | name [As type] ...
ReadResult DeclarationReader::ReadTopLevel(Visibility visibility, bool hasVisibilityWord)
{
    const Token word = m_lexer.Kind();
    if (!hasVisibilityWord && (word == Token::EndOfLine || word == Token::Apostrophe || word == Token::Rem))
        return ReadResult::Done;
    if (m_lexer.IsBlocked(word) && word != Token::Id && !IsNameToken(word)) {
        m_lexer.SignalError(CompileMessage::ThisLanguageFeatureHasBeenDisabled);
        return ReadResult::Done;
    }
    switch (word) {
    case Token::Dim:
        m_lexer.NextToken();
        return ReadVariables(visibility, false);
    case Token::Static:
        m_lexer.NextToken();
        return ReadVariables(visibility, true);
    case Token::Const: return ReadConst(visibility);
    case Token::Type: return ReadType(visibility);
    case Token::Enum: return ReadEnum(visibility);
    case Token::Declare: return ReadDeclare(visibility);
    case Token::Sub:
    case Token::Function:
    case Token::Property: return ReadProcedure(visibility);
    case Token::Option: return ReadOption(hasVisibilityWord);
    case Token::Attribute: return hasVisibilityWord ? ReadResult::NotMine : ReadAttribute();
    case Token::Event: return ReadEvent();
    case Token::Implements:
        m_lexer.NextToken();
        return ReadNameList(m_state.implements);
    default: break;
    }
    for (const DefWord& def : kDefWords)
        if (def.token == word)
            return hasVisibilityWord ? ReadResult::NotMine : ReadDef(word);
    if (hasVisibilityWord && (IsNameToken(word) || word == Token::WithEvents))
        return ReadVariables(visibility, false);
    return ReadResult::NotMine;
}

// name: an identifier; a missing one is the error `missing`
bool DeclarationReader::ReadName(CompileMessage missing, std::string& name)
{
    if (!IsNameToken(m_lexer.Kind())) {
        m_lexer.SignalError(m_lexer.IsBlocked(m_lexer.Kind()) ? CompileMessage::ThisLanguageFeatureHasBeenDisabled
                                                              : missing);
        return false;
    }
    name.assign(m_lexer.Text());
    m_lexer.NextToken();
    return true;
}

// A declaration takes the whole statement: only a comment may follow it.
void DeclarationReader::ExpectEndOfStatement()
{
    if (!IsEndOfStatement(m_lexer.Kind()))
        m_lexer.SignalError(CompileMessage::UnexpectedText);
}

bool DeclarationReader::AddName(const std::string& name, SymbolRef ref)
{
    if (!m_state.names.emplace(UpperName(name), ref).second) {
        m_lexer.SignalError(CompileMessage::IdentifierIsAlreadyInUse, name);
        return false;
    }
    return true;
}

// [suffix]: one of % & ! # @ $
// A suffix written directly after the name just read.
bool DeclarationReader::ReadTypeSuffix(TypeSpec& type)
{
    const char suffix = m_lexer.PreviousFollowingChar();
    if (!IsSuffixChar(suffix) || *m_lexer.TokenStart() != suffix)
        return false;
    type.code = TypeOfSuffix(suffix);
    m_lexer.NextToken();
    return true;
}

bool DeclarationReader::IsPublicMemberOfObjectModule(Visibility visibility) const
{
    return m_module.Kind() != ModuleKind::Plain &&
           (visibility == Visibility::Public || visibility == Visibility::None);
}

// As type: a type word, String * length, a user-defined type, a class or a referenced type name.
bool DeclarationReader::ReadAsType(TypeContext context, TypeSpec& type, bool& createsNew)
{
    createsNew = false;
    if (m_lexer.Kind() == Token::New && context == TypeContext::Variable) {
        m_lexer.NextToken();
        createsNew = true;
    }
    const Token word = m_lexer.Kind();
    for (const TypeWord& typeWord : kTypeWords) {
        if (typeWord.token != word)
            continue;
        if (createsNew) {
            m_lexer.SignalError(CompileMessage::ExpectingASpecificObjectType);
            return false;
        }
        m_lexer.NextToken();
        type.code = TypeCode(typeWord.code);
        if (word == Token::String && m_lexer.Accept(Token::Star)) {
            ConstantReader reader(m_lexer, &m_state);
            long long length = 0;
            if (!reader.ReadInteger(length))
                return false;
            if (!TypeCode::IsValidFixedLength(length)) {
                m_lexer.SignalError(CompileMessage::FixedStringSize);
                length = 1;
            }
            type.code = TypeCode::FixedString(static_cast<int>(length));
        }
        return true;
    }
    if (word == Token::Any && context == TypeContext::DeclareParameter) {
        m_lexer.NextToken();
        type.code = TypeCode(TypeCode::kUnknown);
        return true;
    }
    if (!IsNameToken(word)) {
        m_lexer.SignalError(CompileMessage::ExpectingAValidDataTypeEgInteger);
        return false;
    }
    type.namePosition = m_lexer.TokenStart();
    type.className.assign(m_lexer.Text());
    m_lexer.NextToken();
    if (m_lexer.Kind() == Token::Dot && m_lexer.PreviousFollowingChar() == '.') {
        m_lexer.NextToken();
        if (!IsNameToken(m_lexer.Kind())) {
            m_lexer.SignalError(CompileMessage::ExpectingAValidDataTypeEgInteger);
            return false;
        }
        type.className += '.';
        type.className += m_lexer.Text();
        m_lexer.NextToken();
    }
    type.code = TypeCode(TypeCode::kObject);
    // A user-defined type declared earlier resolves now; later ones in the second pass.
    const auto found = m_state.names.find(UpperName(type.className));
    if (found != m_state.names.end() && found->second.kind == SymbolKind::UserType) {
        type.userType = m_state.userTypes[found->second.index].get();
        type.code = TypeCode(TypeCode::kUserType);
    }
    return true;
}

bool DeclarationReader::ResolveNamedType(TypeSpec& type)
{
    if (type.className.empty() || type.userType != nullptr)
        return true;
    const auto found = m_state.names.find(UpperName(type.className));
    if (found != m_state.names.end() && found->second.kind == SymbolKind::UserType) {
        type.userType = m_state.userTypes[found->second.index].get();
        type.code = TypeCode(static_cast<std::uint16_t>(TypeCode::kUserType | (type.code.Code() & ~TypeCode::kScalarMask)));
        return true;
    }
    // An enumeration's name stands for Long.
    const std::string key = UpperName(type.className);
    const std::vector<Module*> reached = ReachedModules(m_module);
    if ((found != m_state.names.end() && found->second.kind == SymbolKind::Enum) || IsReachedEnumName(reached, key)) {
        type.code = TypeCode(static_cast<std::uint16_t>(TypeCode::kLong | (type.code.Code() & ~TypeCode::kScalarMask)));
        type.className.clear();
        return true;
    }
    if (UserType* used = FindReachedUserType(reached, key)) {
        type.userType = used;
        type.code = TypeCode(static_cast<std::uint16_t>(TypeCode::kUserType | (type.code.Code() & ~TypeCode::kScalarMask)));
        return true;
    }
    if (m_isClassName != nullptr && m_isClassName(m_context, type.className))
        return true;
    if (m_source != nullptr && m_source->IsExternalEnumName(m_module.Name(), type.className)) {
        type.code = TypeCode(static_cast<std::uint16_t>(TypeCode::kLong | (type.code.Code() & ~TypeCode::kScalarMask)));
        type.className.clear();
        return true;
    }
    if (m_source != nullptr && m_source->IsExternalTypeName(m_module.Name(), type.className))
        return true;
    m_lexer.SignalErrorAt(CompileMessage::ExpectingAValidDataTypeEgInteger, {}, type.namePosition);
    return false;
}

void DeclarationReader::ResolveTypes()
{
    for (auto& variable : m_state.variables) {
        m_lexer.ClearStatementError();
        if (!ResolveNamedType(variable->type))
            continue;
        // As New makes a class or object module of the macro on first use; no other type can be made so,
        // and only a class this module reaches ('#Uses) can be made from it (as in a procedure's Dim).
        if (variable->createsNew && m_isClassName &&
            !FindReachedClass(m_module, ReachedModules(m_module), variable->type.className))
            m_lexer.SignalErrorAt(CompileMessage::ExpectingASpecificObjectType, {}, variable->type.namePosition);
    }
    for (auto& userType : m_state.userTypes) {
        for (auto& element : userType->elements) {
            m_lexer.ClearStatementError();
            (void)ResolveNamedType(element.type);
        }
    }
    for (auto& procedure : m_state.procedures) {
        const bool publicMember = IsPublicMemberOfObjectModule(procedure->visibility);
        for (auto& parameter : procedure->parameters) {
            m_lexer.ClearStatementError();
            if (ResolveNamedType(parameter.type) && publicMember)
                RefuseNonPublicRecord(parameter.type);
        }
        m_lexer.ClearStatementError();
        if (ResolveNamedType(procedure->result) && publicMember)
            RefuseNonPublicRecord(procedure->result);
    }
}

// A public member of an object module takes and gives only records of public types: the module's own
// types are never public there, a used module's are unless declared Private.
void DeclarationReader::RefuseNonPublicRecord(const TypeSpec& type)
{
    const UserType* record = type.userType;
    if (!record)
        return;
    const bool own = std::any_of(m_state.userTypes.begin(), m_state.userTypes.end(),
                                 [&](const auto& userType) { return userType.get() == record; });
    if (own || record->visibility == Visibility::Private)
        m_lexer.SignalErrorAt(CompileMessage::UserDefinedTypeParameterResultNotAllowed, {},
                              type.namePosition ? type.namePosition : record->position);
}

// "(" [dimension {"," dimension}] ")" where a dimension is [lower To] upper; "()" is a dynamic array.
bool DeclarationReader::ReadBounds(std::vector<Bounds>& bounds, bool& dynamic)
{
    dynamic = false;
    if (m_lexer.Accept(Token::RightParen)) {
        dynamic = true;
        return true;
    }
    ConstantReader reader(m_lexer, &m_state);
    for (;;) {
        long long first = 0;
        if (!reader.ReadInteger(first))
            return false;
        Bounds dimension{m_module.OptionBase(), static_cast<std::int32_t>(first)};
        if (m_lexer.Accept(Token::To)) {
            long long upper = 0;
            if (!reader.ReadInteger(upper))
                return false;
            dimension = {static_cast<std::int32_t>(first), static_cast<std::int32_t>(upper)};
        }
        if (bounds.size() == TypeCode::kMaxRank) {
            m_lexer.SignalError(CompileMessage::TooManyDimensions);
            return false;
        }
        if (dimension.lower > dimension.upper) {
            m_lexer.SignalError(CompileMessage::LowerBoundIsLargerThanUpperBound);
            return false;
        }
        bounds.push_back(dimension);
        if (!m_lexer.Accept(Token::Comma))
            break;
    }
    return m_lexer.ExpectToken(Token::RightParen);
}

// name [suffix] [(bounds)] [As [New] type] {"," ...}
ReadResult DeclarationReader::ReadVariables(Visibility visibility, bool isStatic)
{
    do {
        auto variable = std::make_unique<Variable>();
        variable->visibility = visibility;
        variable->isStatic = isStatic;
        variable->withEvents = m_lexer.Accept(Token::WithEvents);
        variable->line = m_lexer.Line();
        if (!ReadName(CompileMessage::ExpectingAVarName, variable->name))
            return ReadResult::Done;
        const bool hasSuffix = ReadTypeSuffix(variable->type);
        bool dynamic = false;
        bool isArray = false;
        if (m_lexer.Accept(Token::LeftParen)) {
            if (!ReadBounds(variable->bounds, dynamic))
                return ReadResult::Done;
            isArray = true;
        }
        if (!hasSuffix && m_lexer.Accept(Token::As)) {
            if (!ReadAsType(TypeContext::Variable, variable->type, variable->createsNew))
                return ReadResult::Done;
        } else if (!hasSuffix) {
            variable->type.code = m_module.DefaultTypeFor(variable->name);
        }
        if (isArray)
            variable->type.code = variable->type.code.WithRank(
                dynamic ? TypeCode::kDynamicRank : static_cast<int>(variable->bounds.size()));
        if (IsPublicMemberOfObjectModule(visibility) && visibility != Visibility::None &&
            (isArray || variable->type.code.IsFixedString())) {
            m_lexer.SignalError(CompileMessage::PublicConstDeclareTypeArrayOrFixedLengthStringsNotAllowed);
            return ReadResult::Done;
        }
        if (!AddName(variable->name, {SymbolKind::Variable, m_state.variables.size()}))
            return ReadResult::Done;
        m_state.variables.push_back(std::move(variable));
    } while (m_lexer.Accept(Token::Comma));
    ExpectEndOfStatement();
    return ReadResult::Done;
}

// Const name [suffix | As type] = constant {"," ...}
ReadResult DeclarationReader::ReadConst(Visibility visibility)
{
    m_lexer.NextToken();
    if (IsPublicMemberOfObjectModule(visibility) && visibility == Visibility::Public) {
        m_lexer.SignalError(CompileMessage::PublicConstDeclareTypeArrayOrFixedLengthStringsNotAllowed);
        return ReadResult::Done;
    }
    ReadConstants(visibility, true);
    return ReadResult::Done;
}

void DeclarationReader::ReadConstants(Visibility visibility, bool mayDefer)
{
    do {
        const int line = m_lexer.Line();
        const char* position = m_lexer.TokenStart();
        auto constant = std::make_unique<Constant>();
        constant->visibility = visibility;
        if (!ReadName(CompileMessage::ExpectingAConstantName, constant->name))
            return;
        TypeSpec type;
        bool explicitType = ReadTypeSuffix(type);
        if (!explicitType && m_lexer.Accept(Token::As)) {
            bool createsNew = false;
            if (!ReadAsType(TypeContext::Constant, type, createsNew))
                return;
            if (!(type.code.IsNumeric() || type.code.IsString() || type.code.IsVariant())) {
                m_lexer.SignalError(CompileMessage::ExpectingAValidConstTypeEgInteger);
                return;
            }
            explicitType = true;
        }
        if (!m_lexer.ExpectToken(Token::Equal))
            return;
        bool unknownName = false;
        ConstantReader reader(m_lexer, &m_state, mayDefer ? &unknownName : nullptr);
        if (!reader.Read(constant->value)) {
            // A constant declared further down: this one and the rest of its line are read again later.
            if (unknownName)
                m_deferredConstants.push_back(DeferredConstant{line, position, visibility});
            return;
        }
        const bool numeric = constant->value.IsNumeric();
        if (explicitType && !constant->value.ConvertTo(type.code)) {
            // A number fails only by leaving the type's range.
            m_lexer.SignalError(numeric ? CompileMessage::Overflow : CompileMessage::TypeMismatch);
            return;
        }
        constant->type = constant->value.type;
        if (!AddName(constant->name, {SymbolKind::Constant, m_state.constants.size()}))
            return;
        m_state.constants.push_back(std::move(constant));
    } while (m_lexer.Accept(Token::Comma));
    ExpectEndOfStatement();
}

void DeclarationReader::ReadDeferredConstants()
{
    // Each round reads every waiting line again; one that adds no constant ends the waiting, and the
    // last reading reports what is still unknown.
    bool mayDefer = true;
    while (!m_deferredConstants.empty()) {
        const std::vector<DeferredConstant> waiting = std::move(m_deferredConstants);
        m_deferredConstants.clear();
        const std::size_t known = m_state.constants.size();
        for (const DeferredConstant& item : waiting) {
            m_lexer.SeekLine(item.line);
            while (m_lexer.TokenStart() < item.position && !m_lexer.AtEnd())
                m_lexer.NextToken();
            m_lexer.ClearStatementError();
            ReadConstants(item.visibility, mayDefer);
        }
        if (!mayDefer)
            break;
        mayDefer = m_state.constants.size() != known;
    }
}

// Type name / element lines / End Type
ReadResult DeclarationReader::ReadType(Visibility visibility)
{
    m_lexer.NextToken();
    if (IsPublicMemberOfObjectModule(visibility) && visibility == Visibility::Public) {
        m_lexer.SignalError(CompileMessage::PublicConstDeclareTypeArrayOrFixedLengthStringsNotAllowed);
        return ReadResult::Done;
    }
    auto userType = std::make_unique<UserType>();
    userType->visibility = visibility;
    if (m_lexer.Kind() != Token::Id) {
        m_lexer.SignalError(CompileMessage::TypeIdentifierIsInvalid);
        return ReadResult::Done;
    }
    userType->name.assign(m_lexer.Text());
    userType->position = m_lexer.TokenStart();
    if (m_state.names.count(UpperName(userType->name)) != 0) {
        m_lexer.SignalError(CompileMessage::TypeIdentifierInvalidOrAlreadyInUse, userType->name);
        return ReadResult::Done;
    }
    m_lexer.NextToken();
    ExpectEndOfStatement();
    std::uint64_t size = 0;
    for (;;) {
        m_lexer.SkipStatement();
        if (m_lexer.AtEnd()) {
            m_lexer.SignalError(CompileMessage::UnexpectedEndOfFile);
            return ReadResult::Done;
        }
        if (IsEndOfStatement(m_lexer.Kind()))
            continue;
        if (m_lexer.Kind() == Token::End) {
            m_lexer.NextToken();
            if (m_lexer.Kind() != Token::Type)
                m_lexer.SignalError(CompileMessage::Expecting, "Type");
            break;
        }
        UserTypeElement element;
        if (!IsNameToken(m_lexer.Kind())) {
            m_lexer.SignalError(CompileMessage::ExpectingAnElementIdentifier);
            continue;
        }
        element.name.assign(m_lexer.Text());
        const char* const namePosition = m_lexer.TokenStart();
        m_lexer.NextToken();
        const bool hasSuffix = ReadTypeSuffix(element.type);
        bool isArray = false;
        bool dynamic = false;
        if (m_lexer.Accept(Token::LeftParen)) {
            if (!ReadBounds(element.bounds, dynamic))
                continue;
            isArray = true;
        }
        bool createsNew = false;
        if (!hasSuffix && m_lexer.Accept(Token::As)) {
            if (!ReadAsType(TypeContext::Element, element.type, createsNew))
                continue;
        } else if (!hasSuffix) {
            element.type.code = m_module.DefaultTypeFor(element.name);
        }
        if (isArray)
            element.type.code = element.type.code.WithRank(
                dynamic ? TypeCode::kDynamicRank : static_cast<int>(element.bounds.size()));
        // One element a line, and each name once (a second element of a name would leave its uses unclear).
        if (!IsEndOfStatement(m_lexer.Kind()) && m_lexer.Kind() != Token::Rem) {
            m_lexer.SignalError(CompileMessage::UnexpectedText);
            continue;
        }
        const std::string upperName = UpperName(element.name);
        if (std::any_of(userType->elements.begin(), userType->elements.end(),
                        [&](const UserTypeElement& other) { return UpperName(other.name) == upperName; })) {
            m_lexer.SignalErrorAt(CompileMessage::IdentifierIsAlreadyInUse, element.name, namePosition);
            continue;
        }
        const std::uint32_t elementSize = StorageSizeOf(element.type, isArray);
        if (elementSize > kMaxStorageSize) {
            m_lexer.SignalError(CompileMessage::ElementIsTooBig);
            continue;
        }
        // Elements keep declaration order, each at a multiple of its natural alignment up to 4.
        const std::uint32_t alignment = elementSize >= 4 || element.type.code.IsFixedString() ? (elementSize >= 4 ? 4 : 2)
                                                                                              : (elementSize == 0 ? 1 : elementSize);
        size = (size + alignment - 1) / alignment * alignment;
        element.offset = static_cast<std::uint32_t>(size);
        size += elementSize;
        if (size > kMaxStorageSize) {
            m_lexer.SignalError(CompileMessage::UserDefinedTypeIsTooBig);
            continue;
        }
        userType->elements.push_back(std::move(element));
    }
    userType->size = static_cast<std::uint32_t>((size + 3) & ~std::uint64_t{3});
    const std::string name = userType->name;
    if (AddName(name, {SymbolKind::UserType, m_state.userTypes.size()}))
        m_state.userTypes.push_back(std::move(userType));
    return ReadResult::Done;
}

// Enum name / member [= constant] lines / End Enum. Members without a value count on from the previous
// member (the first from 0).
ReadResult DeclarationReader::ReadEnum(Visibility visibility)
{
    m_lexer.NextToken();
    auto enumType = std::make_unique<EnumType>();
    enumType->visibility = visibility;
    if (!ReadName(CompileMessage::TypeIdentifierIsInvalid, enumType->name))
        return ReadResult::Done;
    ExpectEndOfStatement();
    const std::size_t enumIndex = m_state.enums.size();
    if (!AddName(enumType->name, {SymbolKind::Enum, enumIndex}))
        return ReadResult::Done;
    m_state.enums.push_back(std::move(enumType));
    EnumType& target = *m_state.enums.back();
    long long next = 0;
    for (;;) {
        m_lexer.SkipStatement();
        if (m_lexer.AtEnd()) {
            m_lexer.SignalError(CompileMessage::UnexpectedEndOfFile);
            return ReadResult::Done;
        }
        if (IsEndOfStatement(m_lexer.Kind()))
            continue;
        if (m_lexer.Kind() == Token::End) {
            m_lexer.NextToken();
            if (m_lexer.Kind() != Token::Enum)
                m_lexer.SignalError(CompileMessage::Expecting, "Enum");
            return ReadResult::Done;
        }
        Constant member;
        member.visibility = visibility;
        if (!ReadName(CompileMessage::ExpectingAnElementIdentifier, member.name))
            continue;
        if (m_lexer.Accept(Token::Equal)) {
            ConstantReader reader(m_lexer, &m_state);
            if (!reader.ReadInteger(next))
                continue;
        }
        if (!IsEndOfStatement(m_lexer.Kind())) {
            m_lexer.SignalError(CompileMessage::UnexpectedText);
            continue;
        }
        member.value = ConstantValue::Integer(next, TypeCode::kLong);
        member.type = member.value.type;
        ++next;
        if (!AddName(member.name, {SymbolKind::EnumMember, enumIndex, target.members.size()}))
            continue;
        target.members.push_back(std::move(member));
    }
}

// DefXxx letter[-letter] {"," ...}
ReadResult DeclarationReader::ReadDef(Token word)
{
    TypeCode type;
    for (const DefWord& def : kDefWords)
        if (def.token == word)
            type = TypeCode(def.code);
    m_lexer.NextToken();
    const CharClasses& classes = CharClasses::Get();
    const auto readLetter = [&](int& letter) {
        const std::string_view text = m_lexer.Text();
        if (!IsNameToken(m_lexer.Kind()) || text.size() != 1 || classes.Upper(text[0]) < 'A' ||
            classes.Upper(text[0]) > 'Z') {
            m_lexer.SignalError(CompileMessage::ExpectingASingleLetter);
            return false;
        }
        letter = classes.Upper(text[0]) - 'A';
        m_lexer.NextToken();
        return true;
    };
    do {
        int first = 0;
        if (!readLetter(first))
            return ReadResult::Done;
        int last = first;
        if (m_lexer.Accept(Token::Minus)) {
            if (!readLetter(last))
                return ReadResult::Done;
            if (last < first) {
                m_lexer.SignalError(CompileMessage::LetterRangeIsOutOfOrder);
                return ReadResult::Done;
            }
        }
        for (int letter = first; letter <= last; ++letter) {
            if (m_module.IsDefaultTypeSet(letter)) {
                m_lexer.SignalError(CompileMessage::DefaultValueTypeInvalidOrAlreadySet);
                return ReadResult::Done;
            }
            m_module.SetDefaultType(letter, type);
        }
    } while (m_lexer.Accept(Token::Comma));
    ExpectEndOfStatement();
    return ReadResult::Done;
}

// [visibility] Declare Sub|Function name Lib "library" [Alias "alias"] [(parameters)] [As type]
ReadResult DeclarationReader::ReadDeclare(Visibility visibility)
{
    m_lexer.NextToken();
    if (IsPublicMemberOfObjectModule(visibility) && visibility == Visibility::Public) {
        m_lexer.SignalError(CompileMessage::PublicConstDeclareTypeArrayOrFixedLengthStringsNotAllowed);
        return ReadResult::Done;
    }
    auto procedure = std::make_unique<Procedure>();
    procedure->kind = ProcedureKind::External;
    procedure->visibility = visibility;
    procedure->firstLine = m_lexer.Line();
    procedure->lineCount = 1;
    const Token kindWord = m_lexer.Kind();
    if (kindWord != Token::Sub && kindWord != Token::Function) {
        m_lexer.SignalError(CompileMessage::ExpectingEitherSubOrFunction);
        return ReadResult::Done;
    }
    m_lexer.NextToken();
    if (!ReadName(CompileMessage::ExpectingSubFunctionPropertyName, procedure->name))
        return ReadResult::Done;
    (void)ReadTypeSuffix(procedure->result);
    if (!m_lexer.ExpectToken(Token::Lib))
        return ReadResult::Done;
    if (m_lexer.Kind() != Token::LiteralString) {
        m_lexer.SignalError(CompileMessage::ExpectingAQuotedDLLLibraryName);
        return ReadResult::Done;
    }
    procedure->library.assign(m_lexer.Text());
    m_lexer.NextToken();
    if (m_lexer.Accept(Token::Alias)) {
        if (m_lexer.Kind() != Token::LiteralString) {
            m_lexer.SignalError(CompileMessage::ExpectingAQuotedAliasName);
            return ReadResult::Done;
        }
        procedure->alias.assign(m_lexer.Text());
        m_lexer.NextToken();
    }
    if (!ReadParameters(*procedure, TypeContext::DeclareParameter))
        return ReadResult::Done;
    if (m_lexer.Accept(Token::As)) {
        bool createsNew = false;
        if (kindWord == Token::Sub) {
            m_lexer.SignalError(CompileMessage::ValueTypeNotExpectedForASubroutine);
            return ReadResult::Done;
        }
        if (!ReadAsType(TypeContext::Result, procedure->result, createsNew))
            return ReadResult::Done;
        const TypeCode result = procedure->result.code;
        if (result.IsFixedString() || result.IsUserType() || result.Code() == TypeCode::kDecimal) {
            m_lexer.SignalError(CompileMessage::FunctionResultOfThisTypeNotSupported);
            return ReadResult::Done;
        }
    } else if (kindWord == Token::Function && procedure->result.code == TypeCode()) {
        procedure->result.code = m_module.DefaultTypeFor(procedure->name);
    }
    ExpectEndOfStatement();
    if (!AddName(procedure->name, {SymbolKind::Procedure, m_state.procedures.size()}))
        return ReadResult::Done;
    m_state.procedures.push_back(std::move(procedure));
    return ReadResult::Done;
}

// ["(" [parameter {"," parameter}] ")"]: a ParamArray parameter must be the last
bool DeclarationReader::ReadParameters(Procedure& procedure, TypeContext context)
{
    if (!m_lexer.Accept(Token::LeftParen))
        return true;
    if (m_lexer.Accept(Token::RightParen))
        return true;
    // The value parameter of a Property Let or Set comes last and is never Optional, so it alone may
    // follow Optional parameters; a required parameter after it is refused at its own position.
    const bool valueLast =
        procedure.kind == ProcedureKind::PropertyLet || procedure.kind == ProcedureKind::PropertySet;
    bool sawOptional = false;
    const char* requiredAfterOptional = nullptr;
    do {
        if (!procedure.parameters.empty() && procedure.parameters.back().paramArray) {
            m_lexer.SignalError(CompileMessage::ParamArrayParameterMustBeVariantArray);
            return false;
        }
        if (requiredAfterOptional) {
            m_lexer.SignalErrorAt(CompileMessage::Expecting, "Optional", requiredAfterOptional);
            return false;
        }
        const char* start = m_lexer.TokenStart();
        if (valueLast && sawOptional && m_lexer.Kind() != Token::Optional && m_lexer.Kind() != Token::ParamArray) {
            requiredAfterOptional = start;
            bool noMoreOptional = false;
            if (!ReadParameter(procedure, context, noMoreOptional))
                return false;
            continue;
        }
        if (!ReadParameter(procedure, context, sawOptional))
            return false;
    } while (m_lexer.Accept(Token::Comma));
    return m_lexer.ExpectToken(Token::RightParen);
}

// [Optional] [ByRef|ByVal] [ParamArray] name [suffix] [()] [As type] [= default]
bool DeclarationReader::ReadParameter(Procedure& procedure, TypeContext context, bool& sawOptional)
{
    Parameter parameter;
    parameter.optional = m_lexer.Accept(Token::Optional);
    if (sawOptional && !parameter.optional && m_lexer.Kind() != Token::ParamArray) {
        m_lexer.SignalError(CompileMessage::Expecting, "Optional");
        return false;
    }
    sawOptional = sawOptional || parameter.optional;
    if (m_lexer.Accept(Token::ByVal))
        parameter.byVal = true;
    else
        (void)m_lexer.Accept(Token::ByRef);
    if (m_lexer.Kind() == Token::ParamArray) {
        if (parameter.optional || parameter.byVal) {
            m_lexer.SignalError(CompileMessage::ParamArrayParameterMustBeVariantArray);
            return false;
        }
        m_lexer.NextToken();
        parameter.paramArray = true;
    }
    const char* namePosition = m_lexer.TokenStart();
    if (!ReadName(CompileMessage::ExpectingAParameterName, parameter.name))
        return false;
    // A name in use is reported where it is written.
    for (const Parameter& other : procedure.parameters) {
        if (SameName(other.name, parameter.name)) {
            m_lexer.SignalErrorAt(CompileMessage::IdentifierIsAlreadyInUse, parameter.name, namePosition);
            return false;
        }
    }
    if (SameName(parameter.name, procedure.name)) {
        m_lexer.SignalErrorAt(CompileMessage::IdentifierIsAlreadyInUse, parameter.name, namePosition);
        return false;
    }
    const bool hasSuffix = ReadTypeSuffix(parameter.type);
    bool isArray = false;
    if (m_lexer.Accept(Token::LeftParen)) {
        if (!m_lexer.ExpectToken(Token::RightParen))
            return false;
        isArray = true;
    }
    if (!hasSuffix && m_lexer.Accept(Token::As)) {
        bool createsNew = false;
        if (!ReadAsType(context, parameter.type, createsNew))
            return false;
    } else if (!hasSuffix) {
        parameter.type.code = m_module.DefaultTypeFor(parameter.name);
    }
    const TypeCode scalar = parameter.type.code;
    if (parameter.paramArray && (!isArray || !scalar.IsVariant())) {
        m_lexer.SignalError(CompileMessage::ParamArrayParameterMustBeVariantArray);
        return false;
    }
    if (scalar.IsFixedString()) {
        m_lexer.SignalError(context == TypeContext::DeclareParameter ? CompileMessage::CantPassAsAFixedLengthString
                                                                     : CompileMessage::ParameterOfThisTypeNotSupported);
        return false;
    }
    if (parameter.byVal && isArray) {
        m_lexer.SignalError(CompileMessage::CantPassAnArrayByValue);
        return false;
    }
    if (parameter.byVal && scalar.IsUserType()) {
        m_lexer.SignalError(CompileMessage::CantPassAVariantOrUserTypeByValue);
        return false;
    }
    if (isArray)
        parameter.type.code = scalar.WithRank(TypeCode::kDynamicRank);
    if (parameter.optional && m_lexer.Accept(Token::Equal)) {
        ConstantReader reader(m_lexer, &m_state);
        if (!reader.Read(parameter.defaultValue))
            return false;
        if (isArray || !parameter.defaultValue.ConvertTo(scalar)) {
            m_lexer.SignalError(CompileMessage::TypeMismatch);
            return false;
        }
        parameter.hasDefault = true;
    }
    procedure.parameters.push_back(std::move(parameter));
    return true;
}

// Sub|Function|Property Get|Let|Set name [suffix] [(parameters)] [As type [()]], then the body up to the
// matching End line.
ReadResult DeclarationReader::ReadProcedure(Visibility visibility)
{
    auto procedure = std::make_unique<Procedure>();
    procedure->visibility = visibility;
    procedure->firstLine = m_lexer.Line();
    const Token kindWord = m_lexer.Kind();
    m_lexer.NextToken();
    bool headerOkay = true;
    if (kindWord == Token::Sub) {
        procedure->kind = ProcedureKind::Sub;
    } else if (kindWord == Token::Function) {
        procedure->kind = ProcedureKind::Function;
    } else {
        const Token which = m_lexer.Kind();
        if (which == Token::Get || which == Token::Let || which == Token::Set) {
            procedure->kind = which == Token::Get   ? ProcedureKind::PropertyGet
                              : which == Token::Let ? ProcedureKind::PropertyLet
                                                    : ProcedureKind::PropertySet;
            m_lexer.NextToken();
        } else {
            m_lexer.SignalError(CompileMessage::ExpectingGetLetOrSet);
            headerOkay = false;
        }
    }
    headerOkay = headerOkay && ReadName(CompileMessage::ExpectingSubFunctionPropertyName, procedure->name);
    const bool hasResult = procedure->kind == ProcedureKind::Function || procedure->kind == ProcedureKind::PropertyGet;
    bool hasSuffix = false;
    if (headerOkay) {
        hasSuffix = ReadTypeSuffix(procedure->result);
        headerOkay = ReadParameters(*procedure, TypeContext::Parameter);
    }
    if (headerOkay && m_lexer.Accept(Token::As)) {
        bool createsNew = false;
        if (!hasResult) {
            m_lexer.SignalError(CompileMessage::ValueTypeNotExpectedForASubroutine);
            headerOkay = false;
        } else if (!ReadAsType(TypeContext::Result, procedure->result, createsNew)) {
            headerOkay = false;
        } else if (procedure->result.code.IsFixedString()) {
            m_lexer.SignalError(CompileMessage::ParameterOfThisTypeNotSupported);
            headerOkay = false;
        } else if (m_lexer.Accept(Token::LeftParen)) {
            headerOkay = m_lexer.ExpectToken(Token::RightParen);
            procedure->result.code = procedure->result.code.WithRank(TypeCode::kDynamicRank);
        }
    } else if (headerOkay && hasResult && !hasSuffix) {
        procedure->result.code = m_module.DefaultTypeFor(procedure->name);
    }
    if (headerOkay && m_lexer.Kind() == Token::Apostrophe)
        procedure->headerComment.assign(m_lexer.RestOfLine());
    else if (headerOkay && m_lexer.Kind() != Token::EndOfLine) {
        m_lexer.SignalError(CompileMessage::UnexpectedText);
        headerOkay = false;
    }
    if (headerOkay && (procedure->kind == ProcedureKind::PropertyLet || procedure->kind == ProcedureKind::PropertySet)) {
        const auto& parameters = procedure->parameters;
        const bool objectValue = !parameters.empty() && parameters.back().type.code.IsObject();
        if (parameters.empty() || objectValue != (procedure->kind == ProcedureKind::PropertySet)) {
            m_lexer.SignalError(CompileMessage::PropertyGetAndLetSetParametersMustMatch);
            headerOkay = false;
        }
    }
    if (headerOkay)
        headerOkay = CheckPropertyPartner(*procedure);
    if (headerOkay) {
        const auto found = m_state.names.find(UpperName(procedure->name));
        if (found == m_state.names.end())
            m_state.names.emplace(UpperName(procedure->name), SymbolRef{SymbolKind::Procedure, m_state.procedures.size()});
    }
    Procedure& target = *procedure;
    m_state.procedures.push_back(std::move(procedure));
    const Token endWord = kindWord == Token::Property ? Token::Property : kindWord;
    const ReadResult result = ScanBody(target, endWord);
    if (!headerOkay)
        m_state.procedures.erase(m_state.procedures.end() - 1);
    return result;
}

// A Property of another kind with the same name is the only allowed reuse of a name; a Let or Set must
// then have one parameter more than the Get, the same common parameters and the Get's result type.
bool DeclarationReader::CheckPropertyPartner(const Procedure& procedure)
{
    const auto found = m_state.names.find(UpperName(procedure.name));
    if (found == m_state.names.end())
        return true;
    const bool isProperty = procedure.kind == ProcedureKind::PropertyGet || procedure.kind == ProcedureKind::PropertyLet ||
                            procedure.kind == ProcedureKind::PropertySet;
    if (found->second.kind != SymbolKind::Procedure || !isProperty) {
        m_lexer.SignalError(CompileMessage::IdentifierIsAlreadyInUse, procedure.name);
        return false;
    }
    for (const auto& other : m_state.procedures) {
        if (!SameName(other->name, procedure.name))
            continue;
        const bool otherIsProperty = other->kind == ProcedureKind::PropertyGet || other->kind == ProcedureKind::PropertyLet ||
                                     other->kind == ProcedureKind::PropertySet;
        const bool otherIsGet = other->kind == ProcedureKind::PropertyGet;
        const bool isGet = procedure.kind == ProcedureKind::PropertyGet;
        if (!otherIsProperty || other->kind == procedure.kind || (!otherIsGet && !isGet)) {
            m_lexer.SignalError(CompileMessage::IdentifierIsAlreadyInUse, procedure.name);
            return false;
        }
        const Procedure& get = isGet ? procedure : *other;
        const Procedure& put = isGet ? *other : procedure;
        bool match = put.parameters.size() == get.parameters.size() + 1;
        for (std::size_t i = 0; match && i < get.parameters.size(); ++i) {
            const Parameter& a = get.parameters[i];
            const Parameter& b = put.parameters[i];
            match = a.type.code == b.type.code && a.byVal == b.byVal && a.optional == b.optional &&
                    a.paramArray == b.paramArray && a.hasDefault == b.hasDefault && a.defaultValue == b.defaultValue;
        }
        if (match)
            match = put.parameters.back().type.code == get.result.code;
        if (!match) {
            m_lexer.SignalError(CompileMessage::PropertyGetAndLetSetParametersMustMatch);
            return false;
        }
    }
    return true;
}

// Scans to the line "End <kind word>", recording the procedure's lines and its default-member attribute.
ReadResult DeclarationReader::ScanBody(Procedure& procedure, Token kindWord)
{
    const char* start = m_lexer.TokenStart() - m_lexer.Offset();
    for (;;) {
        m_lexer.SkipStatement();
        if (m_lexer.AtEnd()) {
            m_lexer.SignalError(CompileMessage::UnexpectedEndOfFile);
            return ReadResult::Done;
        }
        const Token first = m_lexer.Kind();
        if (first == Token::End) {
            m_lexer.NextToken();
            if (m_lexer.Kind() == kindWord)
                break;
            continue;
        }
        if (first == Token::Declare || first == Token::Function || first == Token::Option || first == Token::Private ||
            first == Token::Property || first == Token::Public || first == Token::Sub) {
            m_lexer.SignalError(CompileMessage::UnterminatedBlockStatement);
            procedure.lineCount = m_lexer.Line() - procedure.firstLine;
            procedure.text.assign(start, m_lexer.TokenStart() - m_lexer.Offset());
            return ReadResult::DoneAtNextLine;
        }
        if (first == Token::Attribute) {
            // Attribute name.VB_UserMemId = constant
            m_lexer.NextToken();
            if (!SameName(m_lexer.Text(), procedure.name))
                continue;
            m_lexer.NextToken();
            if (!m_lexer.Accept(Token::Dot) || !SameName(m_lexer.Text(), "VB_UserMemId"))
                continue;
            m_lexer.NextToken();
            if (!m_lexer.ExpectToken(Token::Equal))
                continue;
            // A name that is no constant is no attribute value either: its own message.
            bool unknownName = false;
            ConstantReader reader(m_lexer, &m_state, &unknownName);
            ConstantValue value;
            if (!reader.Read(value) || !value.IsNumeric()) {
                m_lexer.SignalError(CompileMessage::InvalidDefaultPropertyAttribute);
                continue;
            }
            if (value.AsDouble() != 0)
                continue;
            if (m_module.Kind() == ModuleKind::Plain)
                m_lexer.SignalError(CompileMessage::CantDefineADefaultPropertyInAMacroOrCodeModule);
            else if (m_state.hasDefaultMember)
                m_lexer.SignalError(CompileMessage::DefaultPropertyHasAlreadyBeenDefined);
            else
                procedure.isDefaultMember = m_state.hasDefaultMember = true;
        }
    }
    procedure.lineCount = m_lexer.Line() - procedure.firstLine + 1;
    const char* end = m_lexer.TokenStart();
    while (*end != '\r' && *end != '\0')
        ++end;
    procedure.text.assign(start, end);
    return ReadResult::Done;
}

// Option Base 0|1, Option Explicit, Option Private Module.
ReadResult DeclarationReader::ReadOption(bool hasVisibilityWord)
{
    if (hasVisibilityWord)
        return ReadResult::NotMine;
    m_lexer.NextToken();
    if (m_lexer.Accept(Token::Base)) {
        const std::string_view text = m_lexer.Text();
        if (m_lexer.Kind() == Token::LiteralNumber && (text == "0" || text == "1")) {
            m_module.SetOptionBase(text[0] - '0');
            m_lexer.NextToken();
            ExpectEndOfStatement();
            return ReadResult::Done;
        }
    } else if (m_lexer.Accept(Token::Explicit)) {
        m_module.SetOptionExplicit();
        ExpectEndOfStatement();
        return ReadResult::Done;
    } else if (m_lexer.Accept(Token::Private) && m_lexer.Accept(Token::Module)) {
        m_module.SetPrivateModule();
        ExpectEndOfStatement();
        return ReadResult::Done;
    }
    m_lexer.SignalError(CompileMessage::InvalidInstruction);
    return ReadResult::Done;
}

// Attribute ... (the rest of the line is skipped)
// Module-level Attribute lines are kept by the editor and skipped here.
ReadResult DeclarationReader::ReadAttribute() { return ReadResult::Done; }

// Event name ["(" parameters ")"]: the name is kept; the parameters are those its raiser passes.
ReadResult DeclarationReader::ReadEvent()
{
    m_lexer.NextToken();
    std::string name;
    if (!ReadName(CompileMessage::ExpectingSubFunctionPropertyName, name))
        return ReadResult::Done;
    if (m_lexer.Accept(Token::LeftParen)) {
        int depth = 1;
        while (depth > 0 && !IsEndOfStatement(m_lexer.Kind())) {
            if (m_lexer.Kind() == Token::LeftParen)
                ++depth;
            else if (m_lexer.Kind() == Token::RightParen)
                --depth;
            m_lexer.NextToken();
        }
        if (depth > 0) {
            m_lexer.SignalError(CompileMessage::Expecting, ")");
            return ReadResult::Done;
        }
    }
    if (!IsEndOfStatement(m_lexer.Kind())) {
        m_lexer.SignalError(CompileMessage::UnexpectedText);
        return ReadResult::Done;
    }
    m_state.events.push_back(std::move(name));
    return ReadResult::Done;
}

// name ["." name]: the name after Implements
ReadResult DeclarationReader::ReadNameList(std::vector<std::string>& names)
{
    std::string name;
    if (!ReadName(CompileMessage::ExpectingAVarName, name))
        return ReadResult::Done;
    if (m_lexer.Kind() == Token::Dot) {
        m_lexer.NextToken();
        name += '.';
        name += m_lexer.Text();
        m_lexer.NextToken();
    }
    names.push_back(std::move(name));
    return ReadResult::Done;
}

bool DeclarationReader::ImplicitType(std::string_view name, char suffix, bool followedByParen, TypeCode& type)
{
    const Token token = LookupKeyword(name);
    if (token != Token::Id && m_lexer.IsBlocked(token)) {
        m_lexer.SignalError(CompileMessage::ThisLanguageFeatureHasBeenDisabled);
        return false;
    }
    const auto found = m_state.names.find(UpperName(name));
    if (found != m_state.names.end()) {
        if (found->second.kind != SymbolKind::Variable) {
            m_lexer.SignalError(CompileMessage::ExpectingAVarName);
            return false;
        }
        type = m_state.variables[found->second.index]->type.code;
        const TypeCode suffixType = TypeOfSuffix(suffix);
        if (suffixType != TypeCode() && suffixType != type.Scalar()) {
            m_lexer.SignalError(CompileMessage::VarIsAlreadyDefinedAsADifferentType);
            return false;
        }
        return true;
    }
    if (m_module.OptionExplicit()) {
        m_lexer.SignalError(CompileMessage::ExpectingAnExistingScalarVar);
        return false;
    }
    if (followedByParen) {
        m_lexer.SignalError(CompileMessage::ExpectingAnAlreadyDimensionedArray);
        return false;
    }
    const TypeCode suffixType = TypeOfSuffix(suffix);
    type = suffixType != TypeCode() ? suffixType : m_module.DefaultTypeFor(name);
    return true;
}

} // namespace brannoc
