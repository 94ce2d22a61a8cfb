// Begin Dialog blocks and the Dialog statement and function. The block becomes one statement that,
// when it runs, evaluates the header's numbers and the items' texts and stores the finished definition
// in a hidden slot of the procedure's frame; Dialog finds it there. The dialog variable's record type
// comes from a scan of the block before the body is compiled, so that a variable may be declared
// As UserDialog anywhere in the procedure.
#include "frontend/BodyParser.h"

#include "dialogs/DialogBuiltins.h"
#include "dialogs/DialogTemplate.h"
#include "frontend/CharClasses.h"

#include <set>

namespace brannoc::body {

namespace {

struct ItemSyntax {
    Token keyword;
    DialogItemKind kind;
    bool hasBox;        // x, y, dx, dy
    bool hasTitle;      // a title (Text, GroupBox, CheckBox, OptionButton, PushButton) or a file name (Picture)
    bool hasList;       // ArrayVar()
    bool fieldRequired; // the item holds a value
    bool hasOptions;
};

constexpr ItemSyntax kItems[] = {
    {Token::Text, DialogItemKind::kText, true, true, false, false, false},
    {Token::TextBox, DialogItemKind::kTextBox, true, false, false, true, true},
    {Token::GroupBox, DialogItemKind::kGroupBox, true, true, false, false, false},
    {Token::CheckBox, DialogItemKind::kCheckBox, true, true, false, true, true},
    {Token::OptionGroup, DialogItemKind::kOptionGroup, false, false, false, true, false},
    {Token::OptionButton, DialogItemKind::kOptionButton, true, true, false, false, false},
    {Token::ComboBox, DialogItemKind::kComboBox, true, false, true, true, true},
    {Token::DropListBox, DialogItemKind::kDropListBox, true, false, true, true, true},
    {Token::ListBox, DialogItemKind::kListBox, true, false, true, true, true},
    {Token::PushButton, DialogItemKind::kPushButton, true, true, false, false, false},
    {Token::OKButton, DialogItemKind::kOKButton, true, false, false, false, false},
    {Token::CancelButton, DialogItemKind::kCancelButton, true, false, false, false, false},
    {Token::Picture, DialogItemKind::kPicture, true, true, false, false, false},
};

const ItemSyntax* FindItemSyntax(Token word)
{
    for (const ItemSyntax& item : kItems) {
        if (item.keyword == word)
            return &item;
    }
    return nullptr;
}

// The type of the value an item holds.
TypeCode FieldTypeOf(DialogItemKind kind, bool text)
{
    (void)kind;
    return TypeCode(text ? TypeCode::kString : TypeCode::kInteger);
}

RecordField RecordFieldOf(const std::string& name, bool text)
{
    RecordField field;
    field.name = name;
    if (text) {
        field.kind = FieldKind::String;
    } else {
        field.kind = FieldKind::Plain;
        field.tag = VT_I2;
    }
    return field;
}

bool AtLineEnd(Token token) { return token == Token::EndOfLine || token == Token::Apostrophe; }

} // namespace

bool BodyParser::AtDialogBlock() const
{
    if (m_lexer.Kind() != Token::Begin)
        return false;
    const char* after = SkipBlanks(m_lexer.TokenEnd());
    return LookupWord(std::string_view(after, 6)) == Token::Dialog &&
           !CharClasses::Get().IsIdentifierStart(after[6]) && !(after[6] >= '0' && after[6] <= '9') && after[6] != '_';
}

// Looks ahead for the procedure's Begin Dialog block and makes the dialog variable's record type from
// its value items (kinds and field names only; the block itself is checked where it stands).
void BodyParser::ScanDialogType(int endLine)
{
    for (int line = m_procedure.firstLine + 1; line < endLine; ++line) {
        m_lexer.SeekLine(line);
        if (!AtDialogBlock())
            continue;
        auto type = std::make_unique<UserType>();
        type->name = "UserDialog";
        RecordTypeRef record(RecordType::Create("UserDialog"));
        if (!record)
            return;
        for (int item = line + 1; item < endLine; ++item) {
            m_lexer.SeekLine(item);
            const Token word = m_lexer.Kind();
            if (word == Token::End)
                break;
            const ItemSyntax* syntax = FindItemSyntax(word);
            if (!syntax || !syntax->fieldRequired)
                continue;
            // The field: the name after the first "," "." of the line; an options number may follow.
            Token previous = word;
            std::string field;
            int options = 0;
            while (!AtLineEnd(m_lexer.Kind())) {
                m_lexer.NextToken();
                if (field.empty() && previous == Token::Comma && m_lexer.Kind() == Token::Dot) {
                    m_lexer.NextToken();
                    field = std::string(m_lexer.Text());
                    m_lexer.NextToken();
                    if (m_lexer.Accept(Token::Comma) && m_lexer.Kind() == Token::LiteralNumber)
                        options = std::atoi(std::string(m_lexer.Text()).c_str());
                    break;
                }
                if (previous == Token::Comma && m_lexer.Kind() != Token::Dot && word == Token::OptionGroup)
                    break;
                previous = m_lexer.Kind();
            }
            if (word == Token::OptionGroup && field.empty()) {
                m_lexer.SeekLine(item);
                m_lexer.NextToken();
                if (m_lexer.Accept(Token::Dot))
                    field = std::string(m_lexer.Text());
            }
            if (field.empty())
                continue;
            const bool text = word == Token::TextBox || word == Token::ComboBox ||
                              (word == Token::DropListBox && (options & 1) != 0);
            UserTypeElement element;
            element.name = field;
            element.type.code = FieldTypeOf(syntax->kind, text);
            if (!record->AddField(RecordFieldOf(field, text)))
                return;
            element.offset = record->FieldAt(record->FieldCount() - 1).offset;
            type->elements.push_back(std::move(element));
        }
        type->size = record->Size();
        type->record = std::move(record);
        m_dialogType = std::move(type);
        return;
    }
}

// "." field
// A name after "." for an item's field; a reserved word is refused.
bool BodyParser::ReadDialogField(std::string& field)
{
    if (!m_lexer.ExpectToken(Token::Dot))
        return false;
    if (!IsNameToken(m_lexer.Kind())) {
        m_lexer.SignalError(CompileMessage::ExpectingAValidFieldIdentifier);
        return false;
    }
    field = std::string(m_lexer.Text());
    m_lexer.NextToken();
    return true;
}

// ArrayVar(): a declared String array with one index (or a dynamic one).
bool BodyParser::ReadDialogList(Expression& list)
{
    const char* position = m_lexer.TokenStart();
    bool valid = IsNameToken(m_lexer.Kind());
    std::string name;
    if (valid) {
        name = ReadName();
        valid = IsDeclaredVariable(UpperName(name)) && m_lexer.Kind() == Token::LeftParen;
    }
    VariableRef ref;
    bool found = false;
    if (valid && !ResolveVariable(name, TypeCode(), ref, found))
        return false;
    valid = valid && found && ref.type.IsArray() &&
            (ref.type.Rank() == 1 || ref.type.Rank() == TypeCode::kDynamicRank) &&
            (ref.type.Scalar().IsString() || ref.type.Scalar().IsVariant());
    if (!valid) {
        m_lexer.SignalErrorAt(CompileMessage::ExpectingAStringArrayVarWithOneIndex, {}, position);
        return false;
    }
    m_lexer.NextToken();
    if (!m_lexer.ExpectToken(Token::RightParen))
        return false;
    AppendLoad(list, ref, ObjectVariable{});
    return true;
}

// The header's dialog function: a Function of this module taking (String, Integer, Integer or Long)
// and returning Boolean or Integer.
bool BodyParser::CheckDialogFunction(const std::string& name, const char* position, const Procedure*& function)
{
    Procedure* found = FindProcedure(UpperName(name));
    if (!found || found->kind != ProcedureKind::Function) {
        m_lexer.SignalErrorAt(CompileMessage::InvalidFunctionArgumentValue, {}, position);
        return false;
    }
    if (found->parameters.size() != 3) {
        m_lexer.SignalErrorAt(CompileMessage::WrongNumberOfParameters, {}, position);
        return false;
    }
    const TypeCode result = found->result.code;
    if (!(result == TypeCode(TypeCode::kBoolean) || result == TypeCode(TypeCode::kInteger))) {
        m_lexer.SignalErrorAt(CompileMessage::FunctionIsDefinedWithADifferentValueType, {}, position);
        return false;
    }
    const TypeCode first = found->parameters[0].type.code;
    const TypeCode second = found->parameters[1].type.code;
    const TypeCode third = found->parameters[2].type.code;
    int mismatch = 0;
    if (!first.IsString() || first.IsArray())
        mismatch = TypeMismatchForParameter(1);
    else if (!(second == TypeCode(TypeCode::kInteger)))
        mismatch = TypeMismatchForParameter(2);
    else if (!(third == TypeCode(TypeCode::kInteger) || third == TypeCode(TypeCode::kLong)))
        mismatch = TypeMismatchForParameter(3);
    if (mismatch != 0) {
        m_lexer.SignalErrorAt(static_cast<CompileMessage>(mismatch), {}, position);
        return false;
    }
    function = found;
    return true;
}

// Begin Dialog UserDialog [x, y,] dx, dy [, title] [, .function] / items / End Dialog
BodyParser::StatementPtr BodyParser::ParseBeginDialog()
{
    const int endLine = m_procedure.firstLine + m_procedure.lineCount - 1;
    m_lexer.NextToken();
    m_lexer.NextToken();
    if (!m_lexer.ExpectToken(Token::UserDialog))
        return nullptr;
    if (m_dialogDefined) {
        m_lexer.SignalError(CompileMessage::IdentifierIsAlreadyInUse, "UserDialog");
        return nullptr;
    }
    auto dialog = std::unique_ptr<DialogTemplate, void (*)(DialogTemplate*)>(
        new DialogTemplate(), [](DialogTemplate* held) { held->Release(); });
    // The definition builtin's arguments: the hidden slot it fills, the template, the header's four numbers
    // and title, then six per
    // item (x, y, dx, dy, text, picture type), then the list arrays (handed over by reference, so that the
    // dialog shows what they hold when it is built).
    std::vector<std::optional<Expression>> arguments(7);
    std::vector<Expression> header;
    const char* functionPosition = nullptr;
    std::string functionName;
    do {
        if (m_lexer.Kind() == Token::Dot) {
            functionPosition = m_lexer.TokenStart();
            m_lexer.NextToken();
            if (!IsNameToken(m_lexer.Kind())) {
                m_lexer.SignalError(CompileMessage::ExpectingAValidFieldIdentifier);
                return nullptr;
            }
            functionName = std::string(m_lexer.Text());
            m_lexer.NextToken();
            break;
        }
        Expression value;
        if (!ParseExpression(value))
            return nullptr;
        header.push_back(std::move(value));
    } while (m_lexer.Accept(Token::Comma));
    if (!AtLineEnd(m_lexer.Kind())) {
        m_lexer.SignalError(CompileMessage::UnexpectedText, m_lexer.Text());
        return nullptr;
    }
    const std::size_t numbers = header.size() >= 4 ? 4 : 2;
    if (header.size() < 2 || header.size() > 5 || header.size() - numbers > 1) {
        m_lexer.SignalError(CompileMessage::Expecting, ",");
        return nullptr;
    }
    auto constant = [&](Variant value) {
        Expression code;
        AppendConstant(code, std::move(value));
        return code;
    };
    Variant minusOne;
    minusOne.SetInteger(-1);
    for (std::size_t i = 0; i < 4; ++i) {
        if (numbers == 2 && i < 2)
            arguments[2 + i] = constant(minusOne);
        else
            arguments[2 + i] = std::move(header[i - (numbers == 2 ? 2 : 0)]);
    }
    if (header.size() > numbers)
        arguments[6] = std::move(header.back());
    if (!functionName.empty() && !CheckDialogFunction(functionName, functionPosition, dialog->function))
        return nullptr;

    // The items, one per line.
    std::set<std::string> names;
    std::vector<Expression> lists;
    bool hasOK = false;
    bool hasCancel = false;
    bool hasPush = false;
    int groupButtons = -1; // option buttons after the open OptionGroup; -1 when none is open
    const char* groupPosition = nullptr;
    auto closeGroup = [&]() {
        if (groupButtons >= 0 && groupButtons < 2) {
            m_lexer.SignalErrorAt(CompileMessage::ExpectingAtLeastTwoOptionButtonDefinitions, {}, groupPosition);
            return false;
        }
        groupButtons = -1;
        return true;
    };
    int valueFields = 0;
    for (;;) {
        if (!m_lexer.SkipStatement() || m_lexer.Line() >= endLine) {
            m_lexer.SignalError(CompileMessage::UnexpectedEndOfFile);
            return nullptr;
        }
        const Token word = m_lexer.Kind();
        if (AtLineEnd(word))
            continue;
        if (word == Token::End) {
            m_lexer.NextToken();
            if (m_lexer.Kind() != Token::Dialog) {
                m_lexer.SignalError(CompileMessage::UnexpectedEndOfFile);
                return nullptr;
            }
            m_lexer.NextToken();
            break;
        }
        const ItemSyntax* syntax = FindItemSyntax(word);
        if (!syntax) {
            m_lexer.SignalError(CompileMessage::ExpectingAUserDialogItemDefinition);
            return nullptr;
        }
        const char* itemPosition = m_lexer.TokenStart();
        m_lexer.NextToken();
        DialogItemTemplate item;
        item.kind = syntax->kind;
        if (syntax->kind == DialogItemKind::kOptionButton) {
            if (groupButtons < 0) {
                m_lexer.SignalErrorAt(CompileMessage::ExpectingOptionGroupBeforeOptionButton, {}, itemPosition);
                return nullptr;
            }
            ++groupButtons;
        } else if (!closeGroup()) {
            return nullptr;
        }
        if (syntax->kind == DialogItemKind::kOKButton) {
            if (hasOK) {
                m_lexer.SignalErrorAt(CompileMessage::OnlyOneOKButtonIsAllowed, {}, itemPosition);
                return nullptr;
            }
            hasOK = true;
            item.field = "OK";
        }
        if (syntax->kind == DialogItemKind::kCancelButton) {
            if (hasCancel) {
                m_lexer.SignalErrorAt(CompileMessage::OnlyOneCancelButtonIsAllowed, {}, itemPosition);
                return nullptr;
            }
            hasCancel = true;
            item.field = "Cancel";
        }
        hasPush = hasPush || syntax->kind == DialogItemKind::kPushButton;
        std::optional<Expression> box[4];
        std::optional<Expression> text;
        std::optional<Expression> pictureType;
        bool first = true;
        auto separator = [&]() {
            if (first) {
                first = false;
                return true;
            }
            return m_lexer.ExpectToken(Token::Comma);
        };
        if (syntax->hasBox) {
            for (auto& number : box) {
                number.emplace();
                if (!separator() || !ParseExpression(*number))
                    return nullptr;
            }
        }
        if (syntax->hasTitle) {
            text.emplace();
            if (!separator() || !ParseExpression(*text))
                return nullptr;
        }
        if (syntax->kind == DialogItemKind::kPicture) {
            pictureType.emplace();
            if (!separator() || !ParseExpression(*pictureType))
                return nullptr;
        }
        if (syntax->hasList) {
            if (!separator())
                return nullptr;
            Expression list;
            if (!ReadDialogList(list))
                return nullptr;
            item.list = static_cast<int>(lists.size());
            lists.push_back(std::move(list));
        }
        if (syntax->fieldRequired) {
            if (!separator() || !ReadDialogField(item.field))
                return nullptr;
        } else if (m_lexer.Kind() == Token::Comma || (first && m_lexer.Kind() == Token::Dot)) {
            if (!separator() || !ReadDialogField(item.field))
                return nullptr;
        }
        if (syntax->hasOptions && m_lexer.Accept(Token::Comma)) {
            ConstantReader reader(m_lexer, &m_state);
            long long options = 0;
            if (!reader.ReadInteger(options))
                return nullptr;
            item.options = static_cast<int>(options);
        }
        if (!AtLineEnd(m_lexer.Kind())) {
            m_lexer.SignalError(CompileMessage::UnexpectedText, m_lexer.Text());
            return nullptr;
        }
        if (!item.field.empty() && !names.insert(UpperName(item.field)).second) {
            m_lexer.SignalErrorAt(CompileMessage::IdentifierIsAlreadyInUse, item.field, itemPosition);
            return nullptr;
        }
        if (syntax->kind == DialogItemKind::kOptionGroup) {
            groupButtons = 0;
            groupPosition = itemPosition;
        }
        if (syntax->fieldRequired) {
            // The record type made by the scan ahead must agree with the block.
            const bool text = item.HoldsText() || syntax->kind == DialogItemKind::kTextBox;
            const std::size_t index = static_cast<std::size_t>(valueFields);
            if (!m_dialogType || index >= m_dialogType->elements.size() ||
                !SameName(m_dialogType->elements[index].name, item.field) ||
                !(m_dialogType->elements[index].type.code == FieldTypeOf(item.kind, text))) {
                m_lexer.SignalErrorAt(CompileMessage::FieldIsNotTheCorrectType, {}, itemPosition);
                return nullptr;
            }
            item.recordField = valueFields++;
        }
        for (auto& number : box) {
            if (number)
                arguments.emplace_back(std::move(*number));
            else
                arguments.emplace_back(constant(Variant()));
        }
        arguments.emplace_back(text ? std::move(*text) : constant(Variant()));
        arguments.emplace_back(pictureType ? std::move(*pictureType) : constant(Variant()));
        dialog->items.push_back(std::move(item));
    }
    if (!closeGroup())
        return nullptr;
    if (!hasOK && !hasCancel && !hasPush) {
        m_lexer.SignalError(CompileMessage::ExpectingOneOfOKButtonOrCancelButton);
        return nullptr;
    }
    if (!m_dialogType || static_cast<std::size_t>(valueFields) != m_dialogType->elements.size()) {
        m_lexer.SignalError(CompileMessage::FieldIsNotTheCorrectType);
        return nullptr;
    }
    dialog->record = m_dialogType->record;
    dialog->listCount = static_cast<int>(lists.size());
    Variant held;
    held.SetUnknown(dialog.get());
    arguments[1] = constant(std::move(held));
    for (Expression& list : lists)
        arguments.emplace_back(std::move(list));

    m_dialogDefined = true;
    if (m_dialogSlot < 0)
        m_dialogSlot = m_code->AddSlot(TypeCode(TypeCode::kVariant));
    Expression slot;
    AppendLoad(slot, VariableRef{StorageScope::Local, m_dialogSlot, TypeCode(TypeCode::kVariant)}, ObjectVariable{});
    arguments[0] = std::move(slot);
    Expression define;
    EmitBuiltinCall(DialogDefinitionRecord(), arguments, false, define);
    define.type = TypeCode();
    auto statement = std::make_unique<EvaluateStatement>(std::move(define));
    statement->SetKeyword(TokenNumber(Token::Begin));
    return statement;
}

// Dialog dlgvar [, DefaultButton] (statement) and Dialog(dlgvar [, DefaultButton]) (function).
bool BodyParser::ParseDialogCall(Expression& out, bool statement)
{
    const bool parenthesised = m_lexer.Accept(Token::LeftParen);
    const char* position = m_lexer.TokenStart();
    if (!IsNameToken(m_lexer.Kind())) {
        m_lexer.SignalError(CompileMessage::ExpectingAUserDialogVar);
        return false;
    }
    const std::string name = ReadName();
    const LocalSymbol* local = FindLocal(UpperName(name));
    // Declarations already refuse dialog variables of another procedure's type and dialog arrays, so
    // anything else named here is not a dialog variable at all.
    if (!local || !m_dialogType || local->userType != m_dialogType.get() || local->ref.type.IsArray()) {
        m_lexer.SignalErrorAt(CompileMessage::ExpectingAUserDialogVar, {}, position);
        return false;
    }
    std::vector<std::optional<Expression>> arguments(3);
    Expression variable;
    AppendLoad(variable, local->ref, ObjectVariable{});
    arguments[1] = std::move(variable);
    if (m_lexer.Accept(Token::Comma)) {
        arguments[2].emplace();
        if (!ParseExpression(*arguments[2]))
            return false;
    }
    if (parenthesised && !m_lexer.ExpectToken(Token::RightParen))
        return false;
    // The definition slot exists once the block has been compiled; a Dialog written above its block
    // reads a slot that the block fills later.
    if (m_dialogSlot < 0)
        m_dialogSlot = m_code->AddSlot(TypeCode(TypeCode::kVariant));
    Expression definition;
    AppendLoad(definition, VariableRef{StorageScope::Local, m_dialogSlot, TypeCode(TypeCode::kVariant)},
               ObjectVariable{});
    arguments[0] = std::move(definition);
    const BuiltinRecord& record = statement ? DialogStatementRecord() : DialogFunctionRecord();
    EmitBuiltinCall(record, arguments, false, out);
    out.type = statement ? TypeCode() : TypeCode(TypeCode::kInteger);
    return true;
}

} // namespace brannoc::body
