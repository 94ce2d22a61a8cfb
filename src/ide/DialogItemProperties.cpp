// The properties page of the UserDialog editor (dialog resource 120, PropDlgProc): one page for the
// dialog and every item kind, each kind filling and reading its own fields; "<<" and ">>" step through
// the chain without closing, and the item list jumps to any entry. Cancel restores the design as it was.
#include "ide/DialogEditorState.h"

#include "host/ThisModule.h"
#include "ide/EditorStrings.h"

#include <iterator>

namespace brannoc::ide {

namespace {

constexpr int kPropertiesDialog = 120;
enum PageControl : int { kItemList = 141, kPrevious = 144, kNext = 145 };
enum PageStrings : unsigned { IDS_EDIT_PROPERTIES = 520 };

constexpr int kFieldControls[] = {130, 131, 132, 133, 134, 135, 136, 137, 138, 139, 140, 143, 142};
static_assert(std::size(kFieldControls) == static_cast<size_t>(PageField::Count));

int ControlOf(PageField field) { return kFieldControls[static_cast<int>(field)]; }

bool IsList(PageField field) { return field == PageField::Style || field == PageField::Group; }
bool IsCheck(PageField field) { return field == PageField::Quoted || field == PageField::Centered; }

// The page's controls as the item kinds see them.
class WindowPage final : public PropertyPage {
public:
    WindowPage(HWND dialog, const DialogEditor& editor) : m_dialog(dialog), m_editor(editor) {}

    void Clear() override
    {
        for (int field = 0; field < static_cast<int>(PageField::Count); ++field) {
            const PageField which = static_cast<PageField>(field);
            if (IsList(which))
                SendDlgItemMessageA(m_dialog, ControlOf(which), CB_RESETCONTENT, 0, 0);
            if (IsCheck(which))
                CheckDlgButton(m_dialog, ControlOf(which), BST_UNCHECKED);
            else
                SetDlgItemTextA(m_dialog, ControlOf(which), "");
            Enable(which, false);
        }
    }
    void SetText(PageField field, const std::string& text) override { SetDlgItemTextA(m_dialog, ControlOf(field), text.c_str()); }
    std::string Text(PageField field) const override
    {
        char text[1024] = {};
        GetDlgItemTextA(m_dialog, ControlOf(field), text, sizeof(text));
        return text;
    }
    void SetChecked(PageField field, bool checked) override
    {
        CheckDlgButton(m_dialog, ControlOf(field), checked ? BST_CHECKED : BST_UNCHECKED);
    }
    bool IsChecked(PageField field) const override { return IsDlgButtonChecked(m_dialog, ControlOf(field)) == BST_CHECKED; }
    void SetChoices(PageField field, const std::vector<std::string>& choices, int chosen) override
    {
        HWND list = GetDlgItem(m_dialog, ControlOf(field));
        SendMessageA(list, CB_RESETCONTENT, 0, 0);
        for (const std::string& choice : choices)
            SendMessageA(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(choice.c_str()));
        SendMessageA(list, CB_SETCURSEL, static_cast<WPARAM>(chosen), 0);
    }
    int Choice(PageField field) const override
    {
        return static_cast<int>(SendDlgItemMessageA(m_dialog, ControlOf(field), CB_GETCURSEL, 0, 0));
    }
    void Enable(PageField field, bool enabled) override { EnableWindow(GetDlgItem(m_dialog, ControlOf(field)), enabled); }
    std::string String(unsigned id) const override { return m_editor.Text(id); }

private:
    HWND m_dialog;
    const DialogEditor& m_editor;
};

struct PropertiesBox {
    DialogEditor* editor = nullptr;
    DialogDesign original;
    int entry = -1;
};

PropertiesBox* BoxOf(HWND dialog) { return reinterpret_cast<PropertiesBox*>(GetWindowLongPtrA(dialog, DWLP_USER)); }

void FillItemList(HWND dialog, const PropertiesBox& box)
{
    HWND list = GetDlgItem(dialog, kItemList);
    SendMessageA(list, CB_RESETCONTENT, 0, 0);
    for (const std::string& entry : ItemListEntries(box.editor->design))
        SendMessageA(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(entry.c_str()));
    SendMessageA(list, CB_SETCURSEL, static_cast<WPARAM>(box.entry + 1), 0);
}

// The page for the box's entry: title, item list and the kind's fields.
void ShowEntry(HWND dialog, PropertiesBox& box)
{
    DialogDesign& design = box.editor->design;
    DesignElement& element = design.Entry(box.entry);
    std::string title = box.editor->Text(IDS_EDIT_PROPERTIES);
    ReplaceAll(title, "<NAME>", element.Keyword());
    SetWindowTextA(dialog, title.c_str());
    FillItemList(dialog, box);
    WindowPage page(dialog, *box.editor);
    element.FillPage(page);
    if (element.Kind() == ItemKind::OptionButton) {
        const std::string group = static_cast<DialogItem&>(element).group;
        const std::vector<std::string> groups = design.GroupNames();
        int chosen = -1;
        for (size_t i = 0; i < groups.size(); ++i)
            if (groups[i] == group)
                chosen = static_cast<int>(i);
        page.SetChoices(PageField::Group, groups, chosen);
        page.SetText(PageField::Group, group);
    }
    EnableWindow(GetDlgItem(dialog, kPrevious), box.entry >= 0);
    EnableWindow(GetDlgItem(dialog, kNext), box.entry + 1 < design.Count());
}

// Takes the page's values into the entry; the design counts as changed when its text changed.
void ApplyEntry(HWND dialog, PropertiesBox& box)
{
    DialogDesign& design = box.editor->design;
    const std::string before = WriteDialogBlock(design).text;
    WindowPage page(dialog, *box.editor);
    design.Entry(box.entry).ReadPage(page);
    if (WriteDialogBlock(design).text != before)
        design.changed = true;
}

void MoveTo(HWND dialog, PropertiesBox& box, int entry)
{
    ApplyEntry(dialog, box);
    if (entry >= -1 && entry < box.editor->design.Count())
        box.entry = entry;
    ShowEntry(dialog, box);
}

INT_PTR CALLBACK PropDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    PropertiesBox* box = BoxOf(dialog);
    switch (message) {
    case WM_INITDIALOG:
        SetWindowLongPtrA(dialog, DWLP_USER, lParam);
        ShowEntry(dialog, *reinterpret_cast<PropertiesBox*>(lParam));
        return TRUE;
    case WM_COMMAND:
        if (!box)
            return FALSE;
        switch (LOWORD(wParam)) {
        case IDOK:
            ApplyEntry(dialog, *box);
            EndDialog(dialog, IDOK);
            return TRUE;
        case IDCANCEL:
            box->editor->design = box->original;
            EndDialog(dialog, IDCANCEL);
            return TRUE;
        case kPrevious: MoveTo(dialog, *box, box->entry - 1); return TRUE;
        case kNext: MoveTo(dialog, *box, box->entry + 1); return TRUE;
        case kItemList:
            if (HIWORD(wParam) == CBN_SELCHANGE)
                MoveTo(dialog, *box, static_cast<int>(SendDlgItemMessageA(dialog, kItemList, CB_GETCURSEL, 0, 0)) - 1);
            return TRUE;
        default:
            return FALSE;
        }
    default:
        return FALSE;
    }
}

} // namespace

bool EditItemProperties(DialogEditor& editor, int entry)
{
    PropertiesBox box;
    box.editor = &editor;
    box.original = editor.design;
    box.entry = entry < -1 || entry >= editor.design.Count() ? -1 : entry;
    const INT_PTR answer = DialogBoxParamA(ThisModule(), MAKEINTRESOURCEA(kPropertiesDialog), editor.dialog,
                                           PropDlgProc, reinterpret_cast<LPARAM>(&box));
    if (answer != IDOK)
        return false;
    editor.design.selected = box.entry;
    return true;
}

} // namespace brannoc::ide
