#pragma once
// What the compiler knows of one Begin Dialog block: its items in source order with their kinds,
// field names, options and list arrays, the dialog function, and the record type of the dialog
// variable. The block's numbers and texts are evaluated each time it runs (DialogDefinition).
#include "values/RecordType.h"

#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

namespace brannoc {

struct Procedure;

enum class DialogItemKind : std::uint8_t {
    kText,
    kTextBox,
    kGroupBox,
    kCheckBox,
    kOptionGroup,
    kOptionButton,
    kComboBox,
    kDropListBox,
    kListBox,
    kPushButton,
    kOKButton,
    kCancelButton,
    kPicture,
};

// The keyword of an item kind ("TextBox", ...), as DlgType answers it.
const wchar_t* DialogItemKeyword(DialogItemKind kind);

struct DialogItemTemplate {
    DialogItemKind kind = DialogItemKind::kText;
    // The name after "." ("" when none was written; OK and Cancel for the standard buttons).
    std::string field;
    int options = 0;
    // The record field that holds the item's value, or -1.
    int recordField = -1;
    // The list argument's position among the block's list arrays, or -1.
    int list = -1;
    // An editable DropListBox holds text, like a ComboBox.
    bool HoldsText() const
    {
        return kind == DialogItemKind::kTextBox || kind == DialogItemKind::kComboBox ||
               (kind == DialogItemKind::kDropListBox && (options & 1) != 0);
    }
};

// Shared, reference-counted: the compiled procedure's constants hold it, and so does every definition
// made when the block runs.
class DialogTemplate final : public IUnknown {
public:
    DialogTemplate() = default;
    DialogTemplate(const DialogTemplate&) = delete;
    DialogTemplate& operator=(const DialogTemplate&) = delete;

    std::vector<DialogItemTemplate> items;
    // The dialog function named in the header (its body may be compiled later), or null.
    const Procedure* function = nullptr;
    // The record type of the dialog variable.
    RecordTypeRef record;
    int listCount = 0;

    // The template behind an IUnknown made by this class, or null.
    static DialogTemplate* From(IUnknown* object);

    HRESULT __stdcall QueryInterface(REFIID id, void** object) override;
    ULONG __stdcall AddRef() override;
    ULONG __stdcall Release() override;

private:
    ~DialogTemplate() = default;
    LONG m_references = 1;
};

} // namespace brannoc
