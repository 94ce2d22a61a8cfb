// The parts of the item kinds they share: position, size, caption and comment on the properties page,
// the caption as an argument, the style list and the list arrays.
#include "ide/DialogItem.h"

#include "ide/DialogLineSyntax.h"

namespace brannoc::ide {

namespace {

void ShowNumber(PropertyPage& page, PageField field, int value)
{
    page.SetText(field, std::to_string(value));
    page.Enable(field, true);
}

void ReadNumber(const PropertyPage& page, PageField field, int& value)
{
    if (std::optional<int> number = ParseWholeNumber(page.Text(field)))
        value = *number;
}

void ShowText(PropertyPage& page, PageField field, const std::string& text)
{
    page.SetText(field, text);
    page.Enable(field, true);
}

} // namespace

std::string DesignElement::CaptionArgument() const
{
    return quoted ? Quoted(caption) : caption;
}

void DesignElement::TakeCaption(const std::string& argument)
{
    if (std::optional<std::string> text = Unquoted(argument)) {
        caption = *text;
        quoted = true;
    } else {
        caption = argument;
        quoted = false;
    }
}

void DesignElement::FillPage(PropertyPage& page) const
{
    page.Clear();
    ShowNumber(page, PageField::Left, x);
    ShowNumber(page, PageField::Top, y);
    ShowNumber(page, PageField::Width, width);
    ShowNumber(page, PageField::Height, height);
    ShowText(page, PageField::Comment, comment);
}

void DesignElement::ReadPage(const PropertyPage& page)
{
    ReadNumber(page, PageField::Left, x);
    ReadNumber(page, PageField::Top, y);
    ReadNumber(page, PageField::Width, width);
    ReadNumber(page, PageField::Height, height);
    comment = page.Text(PageField::Comment);
}

std::string DialogItem::ShownText(const StringSource&) const
{
    return HasCaption() ? caption : std::string();
}

void DialogItem::FillPage(PropertyPage& page) const
{
    DesignElement::FillPage(page);
    ShowText(page, PageField::Field, field);
    if (HasCaption()) {
        ShowText(page, PageField::Caption, caption);
        page.SetChecked(PageField::Quoted, quoted);
        page.Enable(PageField::Quoted, true);
    }
}

void DialogItem::ReadPage(const PropertyPage& page)
{
    DesignElement::ReadPage(page);
    field = std::string(TrimBlanks(page.Text(PageField::Field)));
    if (!field.empty() && field[0] == '.')
        field.erase(0, 1);
    if (HasCaption()) {
        caption = page.Text(PageField::Caption);
        quoted = page.IsChecked(PageField::Quoted);
    }
}

void StyledItem::FillPage(PropertyPage& page) const
{
    DialogItem::FillPage(page);
    page.SetChoices(PageField::Style, StyleNames(page), style);
    page.Enable(PageField::Style, true);
}

void StyledItem::ReadPage(const PropertyPage& page)
{
    DialogItem::ReadPage(page);
    const int chosen = page.Choice(PageField::Style);
    if (chosen >= 0 && chosen < static_cast<int>(StyleNames(page).size()))
        style = chosen;
}

bool ListItem::ParseArguments(const ItemArguments& arguments)
{
    if (arguments.before.size() != 1 || arguments.after.size() > 1)
        return false;
    std::string name = arguments.before[0];
    if (name.size() > 2 && name.compare(name.size() - 2, 2, "()") == 0)
        name.resize(name.size() - 2);
    array = std::string(TrimBlanks(name));
    if (!arguments.after.empty()) {
        std::optional<int> options = ParseWholeNumber(arguments.after[0]);
        if (!options)
            return false;
        style = StyleOfOptions(*options);
    }
    return true;
}

void ListItem::FillPage(PropertyPage& page) const
{
    StyledItem::FillPage(page);
    ShowText(page, PageField::Array, array);
}

void ListItem::ReadPage(const PropertyPage& page)
{
    StyledItem::ReadPage(page);
    std::string name(TrimBlanks(page.Text(PageField::Array)));
    if (name.size() > 2 && name.compare(name.size() - 2, 2, "()") == 0)
        name.resize(name.size() - 2);
    if (!name.empty())
        array = name;
}

} // namespace brannoc::ide
