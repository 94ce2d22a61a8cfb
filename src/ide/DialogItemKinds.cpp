// The item kinds of a dialog block: keyword, design-time window, arguments and style lists.
#include "ide/DialogItem.h"

#include "ide/DialogLineSyntax.h"

#include <iterator>

namespace brannoc::ide {

namespace {

template <typename Derived>
class ItemOf : public DialogItem {
protected:
    std::unique_ptr<DialogItem> CloneItem() const override { return std::make_unique<Derived>(static_cast<const Derived&>(*this)); }
};

template <typename Derived, typename Base>
class StyledItemOf : public Base {
protected:
    std::unique_ptr<DialogItem> CloneItem() const override { return std::make_unique<Derived>(static_cast<const Derived&>(*this)); }
};

std::string StyleSuffix(int options) { return options ? "," + std::to_string(options) : std::string(); }

// Text, GroupBox, OptionButton and PushButton: a caption and nothing else.
template <typename Derived>
class CaptionItem : public ItemOf<Derived> {
public:
    bool ParseArguments(const ItemArguments& arguments) override
    {
        if (arguments.before.size() != 1 || !arguments.after.empty())
            return false;
        this->TakeCaption(arguments.before[0]);
        return true;
    }
    std::string WriteArguments() const override { return "," + this->CaptionArgument(); }
};

class TextItem final : public CaptionItem<TextItem> {
public:
    ItemKind Kind() const override { return ItemKind::Text; }
    const char* Keyword() const override { return "Text"; }
    const char* WindowClass() const override { return "STATIC"; }
    DWORD WindowStyle() const override { return SS_LEFT; }
    SIZE DefaultSize() const override { return SIZE{90, 14}; }
};

class GroupBoxItem final : public CaptionItem<GroupBoxItem> {
public:
    ItemKind Kind() const override { return ItemKind::GroupBox; }
    const char* Keyword() const override { return "GroupBox"; }
    const char* WindowClass() const override { return "BUTTON"; }
    DWORD WindowStyle() const override { return BS_GROUPBOX; }
    SIZE DefaultSize() const override { return SIZE{180, 70}; }
};

class OptionButtonItem final : public CaptionItem<OptionButtonItem> {
public:
    ItemKind Kind() const override { return ItemKind::OptionButton; }
    const char* Keyword() const override { return "OptionButton"; }
    const char* WindowClass() const override { return "BUTTON"; }
    DWORD WindowStyle() const override { return BS_AUTORADIOBUTTON; }
    SIZE DefaultSize() const override { return SIZE{90, 14}; }
    void FillPage(PropertyPage& page) const override
    {
        DialogItem::FillPage(page);
        // The window fills the group list with the groups in use; the item's own is its text.
        page.SetText(PageField::Group, group);
        page.Enable(PageField::Group, true);
    }
    void ReadPage(const PropertyPage& page) override
    {
        DialogItem::ReadPage(page);
        std::string name(TrimBlanks(page.Text(PageField::Group)));
        if (!name.empty() && name[0] == '.')
            name.erase(0, 1);
        if (!name.empty())
            group = name;
    }
};

class PushButtonItem final : public CaptionItem<PushButtonItem> {
public:
    ItemKind Kind() const override { return ItemKind::PushButton; }
    const char* Keyword() const override { return "PushButton"; }
    const char* WindowClass() const override { return "BUTTON"; }
    DWORD WindowStyle() const override { return BS_PUSHBUTTON; }
    SIZE DefaultSize() const override { return SIZE{90, 21}; }
};

// OKButton and CancelButton: the caption is fixed by the kind.
template <typename Derived>
class StandardButton : public ItemOf<Derived> {
public:
    const char* WindowClass() const override { return "BUTTON"; }
    DWORD WindowStyle() const override { return BS_PUSHBUTTON; }
    bool HasCaption() const override { return false; }
    SIZE DefaultSize() const override { return SIZE{90, 21}; }
    bool ParseArguments(const ItemArguments& arguments) override
    {
        return arguments.before.empty() && arguments.after.empty();
    }
    std::string WriteArguments() const override { return {}; }
};

class OKButtonItem final : public StandardButton<OKButtonItem> {
public:
    ItemKind Kind() const override { return ItemKind::OKButton; }
    const char* Keyword() const override { return "OKButton"; }
    std::string ShownText(const StringSource& strings) const override { return strings(IDS_OK_CAPTION); }
};

class CancelButtonItem final : public StandardButton<CancelButtonItem> {
public:
    ItemKind Kind() const override { return ItemKind::CancelButton; }
    const char* Keyword() const override { return "CancelButton"; }
    std::string ShownText(const StringSource& strings) const override { return strings(IDS_CANCEL_CAPTION); }
};

class PictureItem final : public ItemOf<PictureItem> {
public:
    int pictureKind = 0;
    ItemKind Kind() const override { return ItemKind::Picture; }
    const char* Keyword() const override { return "Picture"; }
    const char* WindowClass() const override { return "STATIC"; }
    DWORD WindowStyle() const override { return SS_CENTER | SS_CENTERIMAGE | WS_BORDER; }
    SIZE DefaultSize() const override { return SIZE{90, 70}; }
    bool ParseArguments(const ItemArguments& arguments) override
    {
        if (arguments.before.size() != 2 || !arguments.after.empty())
            return false;
        std::optional<int> kind = ParseWholeNumber(arguments.before[1]);
        if (!kind)
            return false;
        TakeCaption(arguments.before[0]);
        pictureKind = *kind;
        return true;
    }
    std::string WriteArguments() const override { return "," + CaptionArgument() + "," + std::to_string(pictureKind); }
    std::string ShownText(const StringSource& strings) const override
    {
        return caption.empty() ? strings(IDS_MISSING_PICTURE) : caption;
    }
};

class TextBoxItem final : public StyledItemOf<TextBoxItem, StyledItem> {
public:
    ItemKind Kind() const override { return ItemKind::TextBox; }
    const char* Keyword() const override { return "TextBox"; }
    const char* WindowClass() const override { return "EDIT"; }
    DWORD WindowStyle() const override
    {
        return WS_BORDER | (style == 1 ? WS_VSCROLL | ES_MULTILINE : ES_AUTOHSCROLL) | (style == 2 ? ES_PASSWORD : 0);
    }
    bool HasCaption() const override { return false; }
    SIZE DefaultSize() const override { return SIZE{90, 21}; }
    bool ParseArguments(const ItemArguments& arguments) override
    {
        if (!arguments.before.empty() || arguments.after.size() > 1)
            return false;
        if (!arguments.after.empty()) {
            std::optional<int> options = ParseWholeNumber(arguments.after[0]);
            if (!options)
                return false;
            style = *options > 0 ? 1 : *options < 0 ? 2 : 0;
        }
        return true;
    }
    std::string WriteArguments() const override { return {}; }
    std::string WriteStyle() const override { return style == 1 ? ",1" : style == 2 ? ",-1" : ""; }
    std::vector<std::string> StyleNames(const PropertyPage& page) const override
    {
        return {page.String(IDS_STYLE_SINGLE), page.String(IDS_STYLE_MULTIPLE), page.String(IDS_STYLE_PASSWORD)};
    }
};

class CheckBoxItem final : public StyledItemOf<CheckBoxItem, StyledItem> {
public:
    ItemKind Kind() const override { return ItemKind::CheckBox; }
    const char* Keyword() const override { return "CheckBox"; }
    const char* WindowClass() const override { return "BUTTON"; }
    DWORD WindowStyle() const override
    {
        return style == 1 ? BS_3STATE : style == 2 ? BS_AUTO3STATE : BS_AUTOCHECKBOX;
    }
    SIZE DefaultSize() const override { return SIZE{90, 14}; }
    bool ParseArguments(const ItemArguments& arguments) override
    {
        if (arguments.before.size() != 1 || arguments.after.size() > 1)
            return false;
        if (!arguments.after.empty()) {
            std::optional<int> options = ParseWholeNumber(arguments.after[0]);
            if (!options)
                return false;
            style = *options == 1 || *options == 2 ? *options : 0;
        }
        TakeCaption(arguments.before[0]);
        return true;
    }
    std::string WriteArguments() const override { return "," + CaptionArgument(); }
    std::string WriteStyle() const override { return StyleSuffix(style); }
    std::vector<std::string> StyleNames(const PropertyPage& page) const override
    {
        return {page.String(IDS_CHECK_2STATE), page.String(IDS_CHECK_3STATE), page.String(IDS_CHECK_3STATE_AUTO)};
    }
};

class ListBoxItem final : public StyledItemOf<ListBoxItem, ListItem> {
public:
    ItemKind Kind() const override { return ItemKind::ListBox; }
    const char* Keyword() const override { return "ListBox"; }
    const char* WindowClass() const override { return "LISTBOX"; }
    DWORD WindowStyle() const override { return WS_BORDER | WS_VSCROLL | LBS_NOINTEGRALHEIGHT; }
    std::string WriteStyle() const override { return style ? ",2" : ""; }
    std::vector<std::string> StyleNames(const PropertyPage& page) const override
    {
        return {"ListBox", "ListBox, " + page.String(IDS_SORTED)};
    }

protected:
    int StyleOfOptions(int options) const override { return options == 2 ? 1 : 0; }
};

class ComboBoxItem final : public StyledItemOf<ComboBoxItem, ComboItem> {
public:
    ItemKind Kind() const override { return ItemKind::ComboBox; }
    const char* Keyword() const override { return "ComboBox"; }
    const char* WindowClass() const override { return "COMBOBOX"; }
    DWORD WindowStyle() const override { return CBS_SIMPLE | WS_VSCROLL; }
    bool HasEditableText() const override { return true; }
    std::string WriteStyle() const override { return StyleSuffix(style); }
    std::vector<std::string> StyleNames(const PropertyPage& page) const override
    {
        const std::string sorted = page.String(IDS_SORTED);
        return {"ListBox", "TextBox", "ListBox, " + sorted, "TextBox, " + sorted};
    }

protected:
    int StyleOfOptions(int options) const override { return options >= 1 && options <= 3 ? options : 0; }
};

class DropListBoxItem final : public StyledItemOf<DropListBoxItem, ComboItem> {
public:
    ItemKind Kind() const override { return ItemKind::DropListBox; }
    const char* Keyword() const override { return "DropListBox"; }
    const char* WindowClass() const override { return "COMBOBOX"; }
    DWORD WindowStyle() const override { return CBS_DROPDOWNLIST | WS_VSCROLL; }
    SIZE DefaultSize() const override { return SIZE{90, 21}; }
    bool HasEditableText() const override { return false; }
    std::string WriteStyle() const override { return style ? ",2" : ""; }
    std::vector<std::string> StyleNames(const PropertyPage& page) const override
    {
        return {"TextBox", "TextBox, " + page.String(IDS_SORTED)};
    }

protected:
    // The options' sorted bit is the style; the editable bit is not the editor's to keep.
    int StyleOfOptions(int options) const override { return options >= 1 && options <= 3 ? options / 2 : 0; }
};

struct KindName {
    ItemKind kind;
    const char* keyword;
};

constexpr KindName kKinds[] = {
    {ItemKind::Text, "Text"}, {ItemKind::TextBox, "TextBox"}, {ItemKind::GroupBox, "GroupBox"},
    {ItemKind::CheckBox, "CheckBox"}, {ItemKind::OptionButton, "OptionButton"}, {ItemKind::ComboBox, "ComboBox"},
    {ItemKind::ListBox, "ListBox"}, {ItemKind::DropListBox, "DropListBox"}, {ItemKind::PushButton, "PushButton"},
    {ItemKind::OKButton, "OKButton"}, {ItemKind::CancelButton, "CancelButton"},
    {ItemKind::OptionGroup, "OptionGroup"}, {ItemKind::Picture, "Picture"},
};

} // namespace

std::unique_ptr<DialogItem> MakeDialogItem(ItemKind kind)
{
    switch (kind) {
    case ItemKind::Text: return std::make_unique<TextItem>();
    case ItemKind::TextBox: return std::make_unique<TextBoxItem>();
    case ItemKind::GroupBox: return std::make_unique<GroupBoxItem>();
    case ItemKind::CheckBox: return std::make_unique<CheckBoxItem>();
    case ItemKind::OptionButton: return std::make_unique<OptionButtonItem>();
    case ItemKind::ComboBox: return std::make_unique<ComboBoxItem>();
    case ItemKind::ListBox: return std::make_unique<ListBoxItem>();
    case ItemKind::DropListBox: return std::make_unique<DropListBoxItem>();
    case ItemKind::PushButton: return std::make_unique<PushButtonItem>();
    case ItemKind::OKButton: return std::make_unique<OKButtonItem>();
    case ItemKind::CancelButton: return std::make_unique<CancelButtonItem>();
    case ItemKind::Picture: return std::make_unique<PictureItem>();
    default: return nullptr;
    }
}

bool FindItemKind(std::string_view keyword, ItemKind& kind)
{
    for (const KindName& entry : kKinds)
        if (EqualsNoCase(keyword, entry.keyword)) {
            kind = entry.kind;
            return true;
        }
    return false;
}

const char* KeywordOf(ItemKind kind)
{
    for (const KindName& entry : kKinds)
        if (entry.kind == kind)
            return entry.keyword;
    return "UserDialog";
}

} // namespace brannoc::ide
