// The Dialog statement and function, and the Dlg functions that a dialog function uses to query and
// change the dialog that is up.
#include "dialogs/DialogBuiltins.h"
#include "dialogs/UserDialog.h"

#include "exec/Interpreter.h"
#include "library/BuiltinArguments.h"
#include "library/BuiltinGroups.h"
#include "library/MacroModalScope.h"
#include "values/Conversion.h"
#include "values/ValueError.h"

#include <vector>

namespace brannoc {

namespace {

// Dialog: shows the definition's dialog with the variable's fields. The statement form raises "User
// pressed cancel." for the exit code 0.
bool ShowDialog(BuiltinArguments& arguments, BuiltinResult& result, bool statement)
{
    Interpreter* machine = Interpreter::Current();
    if (!machine)
        return false;
    const Variant* held = nullptr;
    const Variant* variable = nullptr;
    if (!arguments.Value(0, held) || !arguments.Value(1, variable))
        return false;
    const VARIANT* stored = FollowByRefChain(&held->Raw());
    DialogDefinition* definition = stored->vt == VT_UNKNOWN ? DialogDefinition::From(stored->punkVal) : nullptr;
    if (!definition)
        return RaiseValueError(kErrorUserDialogNotDefined);
    const VARIANT* record = FollowByRefChain(&variable->Raw());
    if ((record->vt & ~VT_BYREF) != VT_RECORD || !record->pvRecord)
        return RaiseValueError(kErrorUserDialogNotDefined);
    int defaultButton = UserDialog::kNoDefaultButton;
    if (arguments.IsGiven(2)) {
        SHORT value = 0;
        if (!arguments.Integer(2, value))
            return false;
        defaultButton = value;
    }
    // The definition stays alive while its dialog is up, even if the block runs again meanwhile.
    definition->AddRef();
    int exitCode = 0;
    UserDialog::Outcome outcome;
    {
        MacroModalScope level;
        Activation* activation = machine->CurrentActivation();
        UserDialog dialog(*definition, *machine, activation ? activation->Instance() : nullptr);
        outcome = dialog.Run(record->pvRecord, defaultButton, level.Owner(), exitCode);
    }
    definition->Release();
    // A stop while the dialog was up abandons the statement: no result and no error.
    if (outcome != UserDialog::Outcome::kEnded)
        return false;
    if (statement)
        return exitCode != 0 || RaiseValueError(kErrorUserPressedCancel);
    result.SetInteger(static_cast<SHORT>(exitCode));
    return true;
}

bool DialogFunction(BuiltinArguments& arguments, BuiltinResult& result) { return ShowDialog(arguments, result, false); }
bool DialogStatement(BuiltinArguments& arguments, BuiltinResult& result) { return ShowDialog(arguments, result, true); }

// The current dialog, or null after raising 10033 (none) or 10034 (its window is gone).
UserDialog* CurrentDialog()
{
    UserDialog* dialog = UserDialog::Current();
    if (!dialog)
        return RaiseValueError(kErrorNoDialogDisplayed), nullptr;
    if (!dialog->HasWindow())
        return RaiseValueError(kErrorDialogInaccessible), nullptr;
    return dialog;
}

// A DlgItem argument: a name or a number from 0 to DlgCount - 1. allowWhole accepts -1 (the dialog).
bool ReadItem(BuiltinArguments& arguments, int index, UserDialog& dialog, int& item, bool allowWhole = false)
{
    const Variant* value = nullptr;
    if (!arguments.Value(index, value))
        return false;
    const VARIANT* raw = FollowByRefChain(&value->Raw());
    if (raw->vt == VT_BSTR) {
        item = dialog.FindItem(std::wstring_view(raw->bstrVal ? raw->bstrVal : L"", raw->bstrVal ? SysStringLen(raw->bstrVal) : 0u));
        return item >= 0 || RaiseValueError(kErrorDialogItemOutOfRange);
    }
    LONG number = 0;
    if (!arguments.Long(index, number))
        return false;
    item = static_cast<int>(number);
    if (allowWhole && item == -1)
        return true;
    return (item >= 0 && item < dialog.ItemCount()) || RaiseValueError(kErrorDialogItemOutOfRange);
}

bool DlgControlId(BuiltinArguments& arguments, BuiltinResult& result)
{
    UserDialog* dialog = CurrentDialog();
    int item = 0;
    if (!dialog || !ReadItem(arguments, 0, *dialog, item))
        return false;
    result.SetLong(dialog->ControlId(item));
    return true;
}

bool DlgCount(BuiltinArguments&, BuiltinResult& result)
{
    UserDialog* dialog = CurrentDialog();
    if (!dialog)
        return false;
    result.SetInteger(static_cast<SHORT>(dialog->ItemCount()));
    return true;
}

// DlgEnable and DlgVisible: the function form tells; the instruction form sets, or toggles without a value.
bool EnableOrShow(BuiltinArguments& arguments, BuiltinResult& result, bool enable, bool statement)
{
    UserDialog* dialog = CurrentDialog();
    int item = 0;
    if (!dialog || !ReadItem(arguments, 0, *dialog, item, enable))
        return false;
    const bool current = item == -1 ? IsWindowEnabled(dialog->Window()) != FALSE
                         : enable   ? dialog->IsEnabled(item)
                                    : dialog->IsVisible(item);
    bool wanted = !current;
    if (arguments.IsGiven(1)) {
        if (!arguments.Boolean(1, wanted))
            return false;
    } else if (!statement) {
        result.SetBoolean(current);
        return true;
    }
    if (item == -1) {
        POINT cursor{};
        GetCursorPos(&cursor);
        EnableWindow(dialog->Window(), wanted);
        SetCursorPos(cursor.x, cursor.y);
    } else if (enable) {
        dialog->Enable(item, wanted);
    } else {
        dialog->Show(item, wanted);
    }
    result.SetBoolean(current);
    return true;
}

bool DlgEnableFunction(BuiltinArguments& a, BuiltinResult& r) { return EnableOrShow(a, r, true, false); }
bool DlgEnableStatement(BuiltinArguments& a, BuiltinResult& r) { return EnableOrShow(a, r, true, true); }
bool DlgVisibleFunction(BuiltinArguments& a, BuiltinResult& r) { return EnableOrShow(a, r, false, false); }
bool DlgVisibleStatement(BuiltinArguments& a, BuiltinResult& r) { return EnableOrShow(a, r, false, true); }

bool DlgEnd(BuiltinArguments& arguments, BuiltinResult&)
{
    UserDialog* dialog = CurrentDialog();
    SHORT code = 0;
    if (!dialog || !arguments.Integer(0, code))
        return false;
    dialog->End(code);
    return true;
}

bool DlgFocus(BuiltinArguments& arguments, BuiltinResult& result)
{
    UserDialog* dialog = CurrentDialog();
    if (!dialog)
        return false;
    if (arguments.IsGiven(0)) {
        int item = 0;
        if (!ReadItem(arguments, 0, *dialog, item))
            return false;
        dialog->Focus(item);
    }
    return result.SetString(dialog->FocusName());
}

bool DlgFocusStatement(BuiltinArguments& arguments, BuiltinResult& result)
{
    if (!arguments.IsGiven(0))
        return RaiseValueError(kErrorInvalidArgument);
    return DlgFocus(arguments, result);
}

bool ArrayStrings(const Variant& value, std::vector<std::wstring>& entries)
{
    const VARIANT* raw = FollowByRefChain(&value.Raw());
    SAFEARRAY* array = nullptr;
    if ((raw->vt & VT_ARRAY) == 0)
        return RaiseValueError(kErrorInvalidArgument);
    array = (raw->vt & VT_BYREF) ? (raw->pparray ? *raw->pparray : nullptr) : raw->parray;
    if (!array)
        return true;
    if (SafeArrayGetDim(array) != 1)
        return RaiseValueError(kErrorInvalidArgument);
    LONG lower = 0;
    LONG upper = -1;
    SafeArrayGetLBound(array, 1, &lower);
    SafeArrayGetUBound(array, 1, &upper);
    VARTYPE element = VT_EMPTY;
    SafeArrayGetVartype(array, &element);
    for (LONG index = lower; index <= upper; ++index) {
        Variant item;
        if (element == VT_BSTR) {
            BSTR text = nullptr;
            if (FAILED(SafeArrayGetElement(array, &index, &text)))
                return RaiseValueError(kErrorInvalidArgument);
            item.SetString(text);
        } else if (element == VT_VARIANT) {
            if (FAILED(SafeArrayGetElement(array, &index, &item.Raw())))
                return RaiseValueError(kErrorInvalidArgument);
            if (!ChangeType(item, VT_BSTR))
                return false;
        } else {
            return RaiseValueError(kErrorInvalidArgument);
        }
        entries.emplace_back(item.StringView());
    }
    return true;
}

bool ListBoxArray(BuiltinArguments& arguments, BuiltinResult& result, bool statement)
{
    UserDialog* dialog = CurrentDialog();
    int item = 0;
    if (!dialog || !ReadItem(arguments, 0, *dialog, item))
        return false;
    if (!arguments.IsGiven(1)) {
        // The function form without an array tells how many entries the list has.
        const int count = statement ? -1 : dialog->ListCount(item);
        if (count < 0)
            return RaiseValueError(kErrorInvalidArgument);
        result.SetInteger(static_cast<SHORT>(count));
        return true;
    }
    const Variant* value = nullptr;
    std::vector<std::wstring> entries;
    if (!arguments.Value(1, value) || !ArrayStrings(*value, entries))
        return false;
    const int count = dialog->SetList(item, entries);
    if (count < 0)
        return RaiseValueError(kErrorInvalidArgument);
    result.SetInteger(static_cast<SHORT>(count));
    return true;
}

bool DlgListBoxArrayFunction(BuiltinArguments& a, BuiltinResult& r) { return ListBoxArray(a, r, false); }
bool DlgListBoxArrayStatement(BuiltinArguments& a, BuiltinResult& r) { return ListBoxArray(a, r, true); }

bool DlgName(BuiltinArguments& arguments, BuiltinResult& result)
{
    UserDialog* dialog = CurrentDialog();
    int item = 0;
    if (!dialog || !ReadItem(arguments, 0, *dialog, item))
        return false;
    return result.SetString(dialog->ItemName(item));
}

bool DlgNumber(BuiltinArguments& arguments, BuiltinResult& result)
{
    UserDialog* dialog = CurrentDialog();
    std::wstring_view name;
    if (!dialog || !arguments.String(0, name))
        return false;
    const int item = dialog->FindItem(name);
    if (item < 0)
        return RaiseValueError(kErrorDialogItemOutOfRange);
    result.SetInteger(static_cast<SHORT>(item));
    return true;
}

bool DlgSetPicture(BuiltinArguments& arguments, BuiltinResult&)
{
    UserDialog* dialog = CurrentDialog();
    int item = 0;
    std::wstring_view fileName;
    SHORT type = 0;
    if (!dialog || !ReadItem(arguments, 0, *dialog, item) || !arguments.String(1, fileName) ||
        !arguments.Integer(2, type))
        return false;
    return dialog->SetPicture(item, fileName, type) || RaiseValueError(kErrorInvalidArgument);
}

bool Text(BuiltinArguments& arguments, BuiltinResult& result, bool statement)
{
    UserDialog* dialog = CurrentDialog();
    int item = 0;
    if (!dialog || !ReadItem(arguments, 0, *dialog, item, true))
        return false;
    if (arguments.IsGiven(1)) {
        std::wstring_view text;
        if (!arguments.String(1, text))
            return false;
        if (item == -1)
            dialog->SetCaption(text);
        else
            dialog->SetItemText(item, text);
        return statement || result.SetString(text);
    }
    if (statement)
        return RaiseValueError(kErrorInvalidArgument);
    return result.SetString(item == -1 ? dialog->Caption() : dialog->ItemText(item));
}

bool DlgTextFunction(BuiltinArguments& a, BuiltinResult& r) { return Text(a, r, false); }
bool DlgTextStatement(BuiltinArguments& a, BuiltinResult& r) { return Text(a, r, true); }

bool DlgType(BuiltinArguments& arguments, BuiltinResult& result)
{
    UserDialog* dialog = CurrentDialog();
    int item = 0;
    if (!dialog || !ReadItem(arguments, 0, *dialog, item))
        return false;
    return result.SetString(DialogItemKeyword(dialog->ItemKind(item)));
}

bool Value(BuiltinArguments& arguments, BuiltinResult& result, bool statement)
{
    UserDialog* dialog = CurrentDialog();
    int item = 0;
    if (!dialog || !ReadItem(arguments, 0, *dialog, item))
        return false;
    if (arguments.IsGiven(1)) {
        SHORT value = 0;
        if (!arguments.Integer(1, value))
            return false;
        if (!dialog->SetItemValue(item, value))
            return RaiseValueError(kErrorInvalidArgument);
        result.SetInteger(value);
        return true;
    }
    if (statement)
        return RaiseValueError(kErrorInvalidArgument);
    int value = 0;
    if (!dialog->ItemValue(item, value))
        return RaiseValueError(kErrorInvalidArgument);
    result.SetInteger(static_cast<SHORT>(value));
    return true;
}

bool DlgValueFunction(BuiltinArguments& a, BuiltinResult& r) { return Value(a, r, false); }
bool DlgValueStatement(BuiltinArguments& a, BuiltinResult& r) { return Value(a, r, true); }

constexpr BuiltinRecord kRecords[] = {
    Function(Token::DlgControlId, ResultKind::kLong, "?", "DlgItem", 0, 0, &DlgControlId),
    Function(Token::DlgCount, ResultKind::kInteger, "", "", 0, 0, &DlgCount),
    Function(Token::DlgEnable, ResultKind::kBoolean, "?~", "DlgItem Enable", 0, 2, &DlgEnableFunction),
    Instruction(Token::DlgEnd, "%", "ReturnCode", 0, &DlgEnd),
    Function(Token::DlgFocus, ResultKind::kString, "?", "DlgItem", 0, 1, &DlgFocus),
    Function(Token::DlgListBoxArray, ResultKind::kInteger, "??", "DlgItem StrArray", 0, 2, &DlgListBoxArrayFunction),
    Function(Token::DlgName, ResultKind::kString, "%", "DlgItem", 0, 0, &DlgName),
    Function(Token::DlgNumber, ResultKind::kInteger, "$", "DlgItem", 0, 0, &DlgNumber),
    Instruction(Token::DlgSetPicture, "?$%", "DlgItem FileName Type", 0, &DlgSetPicture),
    Function(Token::DlgText, ResultKind::kString, "?$", "DlgItem Text", 0, 2, &DlgTextFunction),
    Function(Token::DlgType, ResultKind::kString, "?", "DlgItem", 0, 0, &DlgType),
    Function(Token::DlgValue, ResultKind::kInteger, "?%", "DlgItem Value", 0, 2, &DlgValueFunction),
    Function(Token::DlgVisible, ResultKind::kBoolean, "?~", "DlgItem Visible", 0, 2, &DlgVisibleFunction),
};

constexpr BuiltinRecord kInstructionForms[] = {
    Instruction(Token::DlgEnable, "?~", "DlgItem Enable", 2, &DlgEnableStatement),
    Instruction(Token::DlgFocus, "?", "DlgItem", 1, &DlgFocusStatement),
    Instruction(Token::DlgListBoxArray, "??", "DlgItem StrArray", 2, &DlgListBoxArrayStatement),
    Instruction(Token::DlgText, "?$", "DlgItem Text", 2, &DlgTextStatement),
    Instruction(Token::DlgValue, "?%", "DlgItem Value", 2, &DlgValueStatement),
    Instruction(Token::DlgVisible, "?~", "DlgItem Visible", 2, &DlgVisibleStatement),
};

constexpr BuiltinRecord kDialogFunction =
    Function(Token::Dialog, ResultKind::kInteger, "??%", "", 0, 4, &DialogFunction);
constexpr BuiltinRecord kDialogStatement = Instruction(Token::Dialog, "??%", "", 4, &DialogStatement);

} // namespace

BuiltinGroup DialogFunctions() { return kRecords; }

const BuiltinRecord& DialogFunctionRecord() { return kDialogFunction; }
const BuiltinRecord& DialogStatementRecord() { return kDialogStatement; }

const BuiltinRecord* DialogInstructionForm(Token keyword)
{
    for (const BuiltinRecord& record : kInstructionForms) {
        if (record.keyword == keyword)
            return &record;
    }
    return nullptr;
}

} // namespace brannoc
