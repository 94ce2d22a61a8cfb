#pragma once
// A dialog being designed: its own settings (position, size, caption, dialog function, comments,
// grid), the lines kept as text, and the chain of its items in source order, which is also the
// drawing and tab order ("in front" is towards End Dialog).
#include "ide/DialogItem.h"

#include <memory>
#include <string>
#include <vector>

namespace brannoc::ide {

struct GridSettings {
    int horizontal = 10;
    int vertical = 7;
    bool show = true;
    bool snap = true;
};

class DialogDesign final : public DesignElement {
public:
    DialogDesign() { width = 400; height = 200; quoted = true; }
    DialogDesign(const DialogDesign& other);
    DialogDesign& operator=(const DialogDesign& other);
    DialogDesign(DialogDesign&&) = default;
    DialogDesign& operator=(DialogDesign&&) = default;

    ItemKind Kind() const override { return ItemKind::Dialog; }
    const char* Keyword() const override { return "UserDialog"; }
    void FillPage(PropertyPage& page) const override;
    void ReadPage(const PropertyPage& page) override;

    // The chain entry `index`: -1 is the dialog itself, 0 and up its items.
    DesignElement& Entry(int index) { return index < 0 ? static_cast<DesignElement&>(*this) : *items[static_cast<size_t>(index)]; }
    DesignElement* Selected() { return &Entry(selected); }
    DialogItem* SelectedItem() { return selected >= 0 ? items[static_cast<size_t>(selected)].get() : nullptr; }
    int Count() const { return static_cast<int>(items.size()); }

    // Inserts the item in front of chain entry `after` (-1: first of all items); answers its index.
    int InsertItem(std::unique_ptr<DialogItem> item, int after);
    // Removes item `index`; the selection moves to its neighbour.
    void RemoveItem(int index);
    // Swaps the selected item with its neighbour in front (+1) or behind (-1).
    bool MoveSelected(int step);
    // Selects the neighbour in front (+1) or behind (-1) of the selection, the dialog being first.
    bool SelectNeighbour(int step);
    // Removes every item and the text kept with them.
    void ClearItems();

    // Group names of the option buttons, in order of first use.
    std::vector<std::string> GroupNames() const;
    // "Group1", or the next number not used by a group.
    std::string FreeGroupName() const;
    // The keyword with the first number that no item uses as its field ("TextBox1").
    std::string FreeFieldName(const std::string& stem) const;
    // A new item of the kind at a place (dialog units), with a field name when its kind has a value
    // and its default caption.
    std::unique_ptr<DialogItem> NewItem(ItemKind kind, int atX, int atY) const;
    // Gives every option button without a group one ("Group1" or the next free name).
    void AssignGroups();

    bool centred = true;
    std::string function;                    // the dialog function's name ("" when none)
    std::string endComment;
    bool hasEndComment = false;
    GridSettings grid;
    std::vector<std::string> trailingLines;  // lines between the last item and End Dialog
    std::vector<std::unique_ptr<DialogItem>> items;
    std::string currentGroup;                // the option group while reading
    int selected = -1;
    bool changed = false;
    bool functionExists = false;
};

// Snaps a value in dialog units to the nearest multiple of `step`; halfway goes up.
int SnapToStep(int value, int step);

} // namespace brannoc::ide
