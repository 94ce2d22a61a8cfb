// The grid settings of the UserDialog editor (dialog resource 121, GridSettingsDlgProc): the horizontal
// and vertical steps in dialog units, whether the grid is shown and whether items snap to it.
#include "ide/DialogEditorState.h"

#include "host/ThisModule.h"

namespace brannoc::ide {

namespace {

constexpr int kGridDialog = 121;
enum GridControl : int { kHorizontal = 130, kVertical = 131, kShowGrid = 132, kSnap = 133 };

GridSettings* GridOf(HWND dialog) { return reinterpret_cast<GridSettings*>(GetWindowLongPtrA(dialog, DWLP_USER)); }

void Fill(HWND dialog, const GridSettings& grid)
{
    SetDlgItemInt(dialog, kHorizontal, static_cast<UINT>(grid.horizontal), FALSE);
    SetDlgItemInt(dialog, kVertical, static_cast<UINT>(grid.vertical), FALSE);
    CheckDlgButton(dialog, kShowGrid, grid.show ? BST_CHECKED : BST_UNCHECKED);
    CheckDlgButton(dialog, kSnap, grid.snap ? BST_CHECKED : BST_UNCHECKED);
}

// A step of 0 or one that is not a number keeps the old step.
void Read(HWND dialog, GridSettings& grid)
{
    BOOL ok = FALSE;
    const UINT horizontal = GetDlgItemInt(dialog, kHorizontal, &ok, FALSE);
    if (ok && horizontal > 0)
        grid.horizontal = static_cast<int>(horizontal);
    const UINT vertical = GetDlgItemInt(dialog, kVertical, &ok, FALSE);
    if (ok && vertical > 0)
        grid.vertical = static_cast<int>(vertical);
    grid.show = IsDlgButtonChecked(dialog, kShowGrid) == BST_CHECKED;
    grid.snap = IsDlgButtonChecked(dialog, kSnap) == BST_CHECKED;
}

INT_PTR CALLBACK GridSettingsDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_INITDIALOG:
        SetWindowLongPtrA(dialog, DWLP_USER, lParam);
        Fill(dialog, *reinterpret_cast<GridSettings*>(lParam));
        return TRUE;
    case WM_COMMAND:
        if (LOWORD(wParam) == IDOK) {
            Read(dialog, *GridOf(dialog));
            EndDialog(dialog, IDOK);
        } else if (LOWORD(wParam) == IDCANCEL) {
            EndDialog(dialog, IDCANCEL);
        }
        return TRUE;
    default:
        return FALSE;
    }
}

bool SameGrid(const GridSettings& a, const GridSettings& b)
{
    return a.horizontal == b.horizontal && a.vertical == b.vertical && a.show == b.show && a.snap == b.snap;
}

} // namespace

bool EditGridSettings(DialogEditor& editor)
{
    GridSettings grid = editor.design.grid;
    if (DialogBoxParamA(ThisModule(), MAKEINTRESOURCEA(kGridDialog), editor.dialog, GridSettingsDlgProc,
                        reinterpret_cast<LPARAM>(&grid)) != IDOK ||
        SameGrid(grid, editor.design.grid))
        return false;
    editor.design.grid = grid;
    editor.design.changed = true;
    return true;
}

} // namespace brannoc::ide
