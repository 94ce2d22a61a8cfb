#include "ide/DialogDesign.h"

#include "ide/DialogLineSyntax.h"

#include <algorithm>

namespace brannoc::ide {

DialogDesign::DialogDesign(const DialogDesign& other) : DesignElement(other)
{
    *this = other;
}

DialogDesign& DialogDesign::operator=(const DialogDesign& other)
{
    if (this == &other)
        return *this;
    DesignElement::operator=(other);
    centred = other.centred;
    function = other.function;
    endComment = other.endComment;
    hasEndComment = other.hasEndComment;
    grid = other.grid;
    trailingLines = other.trailingLines;
    items.clear();
    for (const auto& item : other.items)
        items.push_back(item->Clone());
    currentGroup = other.currentGroup;
    selected = other.selected;
    changed = other.changed;
    functionExists = other.functionExists;
    return *this;
}

void DialogDesign::FillPage(PropertyPage& page) const
{
    DesignElement::FillPage(page);
    page.Enable(PageField::Left, !centred);
    page.Enable(PageField::Top, !centred);
    page.SetText(PageField::Caption, caption);
    page.Enable(PageField::Caption, true);
    page.SetChecked(PageField::Quoted, quoted);
    page.Enable(PageField::Quoted, true);
    page.SetText(PageField::Function, function);
    page.Enable(PageField::Function, true);
    page.SetChecked(PageField::Centered, centred);
    page.Enable(PageField::Centered, true);
}

void DialogDesign::ReadPage(const PropertyPage& page)
{
    DesignElement::ReadPage(page);
    caption = page.Text(PageField::Caption);
    quoted = page.IsChecked(PageField::Quoted);
    function = std::string(TrimBlanks(page.Text(PageField::Function)));
    if (!function.empty() && function[0] == '.')
        function.erase(0, 1);
    centred = page.IsChecked(PageField::Centered);
}

int DialogDesign::InsertItem(std::unique_ptr<DialogItem> item, int after)
{
    const int index = std::clamp(after + 1, 0, Count());
    items.insert(items.begin() + index, std::move(item));
    return index;
}

void DialogDesign::RemoveItem(int index)
{
    if (index < 0 || index >= Count())
        return;
    // The lines kept in front of the item stay in front of whatever follows it.
    std::vector<std::string> kept = std::move(items[static_cast<size_t>(index)]->leadingLines);
    items.erase(items.begin() + index);
    auto& next = index < Count() ? items[static_cast<size_t>(index)]->leadingLines : trailingLines;
    next.insert(next.begin(), kept.begin(), kept.end());
    selected = index < Count() ? index : index - 1;
}

bool DialogDesign::MoveSelected(int step)
{
    const int other = selected + step;
    if (selected < 0 || other < 0 || other >= Count())
        return false;
    std::swap(items[static_cast<size_t>(selected)], items[static_cast<size_t>(other)]);
    // Kept lines belong to their place in the text, not to the item that moves.
    std::swap(items[static_cast<size_t>(selected)]->leadingLines, items[static_cast<size_t>(other)]->leadingLines);
    selected = other;
    return true;
}

bool DialogDesign::SelectNeighbour(int step)
{
    const int other = selected + step;
    if (other < -1 || other >= Count())
        return false;
    selected = other;
    return true;
}

void DialogDesign::ClearItems()
{
    items.clear();
    trailingLines.clear();
    selected = -1;
}

std::vector<std::string> DialogDesign::GroupNames() const
{
    std::vector<std::string> names;
    for (const auto& item : items)
        if (item->Kind() == ItemKind::OptionButton && !item->group.empty() &&
            std::none_of(names.begin(), names.end(), [&](const std::string& n) { return EqualsNoCase(n, item->group); }))
            names.push_back(item->group);
    return names;
}

std::string DialogDesign::FreeGroupName() const
{
    const std::vector<std::string> used = GroupNames();
    for (int number = 1;; ++number) {
        std::string name = "Group" + std::to_string(number);
        if (std::none_of(used.begin(), used.end(), [&](const std::string& n) { return EqualsNoCase(n, name); }))
            return name;
    }
}

std::string DialogDesign::FreeFieldName(const std::string& stem) const
{
    for (int number = 1;; ++number) {
        std::string name = stem + std::to_string(number);
        if (std::none_of(items.begin(), items.end(), [&](const auto& item) { return EqualsNoCase(item->field, name); }) &&
            !EqualsNoCase(name, function))
            return name;
    }
}

std::unique_ptr<DialogItem> DialogDesign::NewItem(ItemKind kind, int atX, int atY) const
{
    std::unique_ptr<DialogItem> item = MakeDialogItem(kind);
    if (!item)
        return nullptr;
    const SIZE size = item->DefaultSize();
    item->x = atX;
    item->y = atY;
    item->width = size.cx;
    item->height = size.cy;
    switch (kind) {
    case ItemKind::TextBox: case ItemKind::CheckBox: case ItemKind::ComboBox: case ItemKind::ListBox:
    case ItemKind::DropListBox:
        item->field = FreeFieldName(item->Keyword());
        break;
    case ItemKind::OptionButton:
        item->group = Count() > 0 && GroupNames().size() > 0 ? GroupNames().back() : FreeGroupName();
        break;
    default:
        break;
    }
    if (item->HasCaption() && kind != ItemKind::Picture)
        item->caption = item->Keyword();
    return item;
}

void DialogDesign::AssignGroups()
{
    for (auto& item : items)
        if (item->Kind() == ItemKind::OptionButton && item->group.empty())
            item->group = FreeGroupName();
}

int SnapToStep(int value, int step)
{
    if (step <= 0)
        return value;
    // (value + step / 2) / step * step, with the division rounding down also below zero.
    const int shifted = value + step / 2;
    const int multiple = shifted >= 0 ? shifted / step : -((-shifted + step - 1) / step);
    return multiple * step;
}

} // namespace brannoc::ide
