#pragma once
// The items of a dialog being designed. The dialog and its items share one base for position, size,
// caption and comment; each item kind knows its keyword, the window that shows it on the design
// surface, its arguments after the four numbers, and its part of the properties page.
#include "ide/DialogPropertyPage.h"

#include <windows.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace brannoc::ide {

// The kinds by the command id of their toolbox button; 400 stands for the dialog itself.
enum class ItemKind : int {
    Dialog = 400, Text = 402, TextBox = 403, GroupBox = 404, CheckBox = 405, OptionButton = 406,
    ComboBox = 407, ListBox = 408, DropListBox = 409, PushButton = 410, OKButton = 411, CancelButton = 412,
    OptionGroup = 413, Picture = 414,
};

// Text ids the kinds use.
enum DesignStringId : unsigned {
    IDS_STYLE_SINGLE = 534, IDS_STYLE_MULTIPLE = 535, IDS_STYLE_PASSWORD = 536, IDS_CANCEL_CAPTION = 537,
    IDS_OK_CAPTION = 538, IDS_CHECK_2STATE = 626, IDS_CHECK_3STATE = 627, IDS_CHECK_3STATE_AUTO = 628,
    IDS_SORTED = 629, IDS_MISSING_PICTURE = 11110,
};

// Texts by string-table id.
using StringSource = std::function<std::string(unsigned)>;

// Position, size, caption and comment: what the dialog and its items have in common.
class DesignElement {
public:
    virtual ~DesignElement() = default;

    virtual ItemKind Kind() const = 0;
    virtual const char* Keyword() const = 0;
    virtual void FillPage(PropertyPage& page) const;
    virtual void ReadPage(const PropertyPage& page);

    int x = 0, y = 0, width = 0, height = 0;
    std::string caption;
    bool quoted = true;   // a string literal; otherwise an expression written as typed
    std::string comment;  // the text after the apostrophe
    HWND window = nullptr; // the design surface's window showing it

    // The caption as written in an argument list.
    std::string CaptionArgument() const;
    // An argument taken as the caption: a string literal unquoted, anything else kept as typed.
    void TakeCaption(const std::string& argument);

protected:
    DesignElement() = default;
    DesignElement(const DesignElement&) = default;
    DesignElement& operator=(const DesignElement&) = default;
};

// The arguments of an item line after its four numbers, split at the first one starting with ".".
struct ItemArguments {
    std::vector<std::string> before; // positional arguments before the field
    std::string field;               // without the "."
    std::vector<std::string> after;  // options after the field
};

// One item line of the dialog block.
class DialogItem : public DesignElement {
public:
    std::unique_ptr<DialogItem> Clone() const { return CloneItem(); }

    virtual const char* WindowClass() const = 0;
    virtual DWORD WindowStyle() const = 0;
    virtual bool HasCaption() const { return true; }
    // Takes the arguments; false when they do not fit the kind (the line then stays as text).
    virtual bool ParseArguments(const ItemArguments& arguments) = 0;
    // The kind's arguments after the four numbers (with their leading commas) and the style suffix
    // written after the field.
    virtual std::string WriteArguments() const = 0;
    virtual std::string WriteStyle() const { return {}; }
    // The text the design surface shows.
    virtual std::string ShownText(const StringSource& strings) const;
    // The size a new item of the kind gets, in dialog units.
    virtual SIZE DefaultSize() const { return SIZE{90, 14}; }

    void FillPage(PropertyPage& page) const override;
    void ReadPage(const PropertyPage& page) override;

    std::string field;                      // the name after ",."
    std::string group;                      // OptionButton: its option group
    std::vector<std::string> leadingLines;  // lines before it that are not items, kept as they were
    int sourceLine = -1;                    // its line in the block as read or last written

protected:
    virtual std::unique_ptr<DialogItem> CloneItem() const = 0;
};

// A kind with a style chosen on the properties page.
class StyledItem : public DialogItem {
public:
    int style = 0;
    virtual std::vector<std::string> StyleNames(const PropertyPage& strings) const = 0;
    void FillPage(PropertyPage& page) const override;
    void ReadPage(const PropertyPage& page) override;
};

// ListBox, ComboBox and DropListBox: a list filled from a string array.
class ListItem : public StyledItem {
public:
    std::string array = "ListArray";
    bool ParseArguments(const ItemArguments& arguments) override;
    std::string WriteArguments() const override { return "," + array + "()"; }
    bool HasCaption() const override { return false; }
    SIZE DefaultSize() const override { return SIZE{90, 70}; }
    void FillPage(PropertyPage& page) const override;
    void ReadPage(const PropertyPage& page) override;

protected:
    // The style an options number stands for.
    virtual int StyleOfOptions(int options) const = 0;
};

// ComboBox and DropListBox: whether the list has a text part the user can type into.
class ComboItem : public ListItem {
public:
    virtual bool HasEditableText() const = 0;
};

// A new item of the kind (null for OptionGroup and the dialog).
std::unique_ptr<DialogItem> MakeDialogItem(ItemKind kind);
// The item kind whose keyword starts the line, if any (OptionGroup included).
bool FindItemKind(std::string_view keyword, ItemKind& kind);
const char* KeywordOf(ItemKind kind);

} // namespace brannoc::ide
