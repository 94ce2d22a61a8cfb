#pragma once
// The fields of the dialog editor's properties page as the item kinds see them: each kind fills the
// page from its item and reads the item back, without knowing the window that shows the page.
#include <string>
#include <vector>

namespace brannoc::ide {

enum class PageField {
    Left, Top, Width, Height, Caption, Quoted, Array, Field, Function, Group, Style, Comment, Centered, Count
};

class PropertyPage {
public:
    virtual ~PropertyPage() = default;
    // Every field emptied, unchecked and disabled; the kinds enable what they use.
    virtual void Clear() = 0;
    virtual void SetText(PageField field, const std::string& text) = 0;
    virtual std::string Text(PageField field) const = 0;
    virtual void SetChecked(PageField field, bool checked) = 0;
    virtual bool IsChecked(PageField field) const = 0;
    // A list field (Style, Group): its entries and the one chosen (-1 none; Group also keeps its text).
    virtual void SetChoices(PageField field, const std::vector<std::string>& choices, int chosen) = 0;
    virtual int Choice(PageField field) const = 0;
    virtual void Enable(PageField field, bool enabled) = 0;
    // A user-interface text by its string-table id.
    virtual std::string String(unsigned id) const = 0;
};

} // namespace brannoc::ide
