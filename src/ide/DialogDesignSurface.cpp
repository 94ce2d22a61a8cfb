// The design surface of the UserDialog editor: the grab window ("__KZ_MC_Grab") holds the view
// ("__KZ_MC_DialogView", the dialog's client area) and draws the dialog's own grab handles; the view
// shows the items as real controls, the grid and the selected item's frame and handles, and turns the
// mouse into selecting, moving, sizing and placing. The item controls answer every hit test with
// HTTRANSPARENT, so the mouse reaches the view, and hand keys to the view: they never take input.
#include "ide/DialogEditorState.h"

#include "ide/DesignGeometry.h"
#include "ide/FrameToolbar.h"
#include "ide/FrameWindowClass.h"

#include <windowsx.h>

namespace brannoc::ide {

namespace {

const char kBaseProcedure[] = "BrannocDesignBase";
const char kItemView[] = "BrannocDesignView";

DialogEditor* EditorOf(HWND window) { return reinterpret_cast<DialogEditor*>(GetWindowLongPtrA(window, 0)); }

RECT ViewClient(const DialogEditor& editor)
{
    RECT r{};
    GetClientRect(editor.view, &r);
    return r;
}

// The item under a point of the view: of the items there, the smallest (so an item inside a group box
// wins over the box); -1 for the dialog.
int EntryAt(const DialogEditor& editor, POINT point)
{
    int found = -1;
    long foundArea = 0;
    for (int index = 0; index < editor.design.Count(); ++index) {
        const RECT r = EntryPixels(editor, index);
        const long area = static_cast<long>(r.right - r.left) * (r.bottom - r.top);
        if (PtInRect(&r, point) && (found < 0 || area <= foundArea)) {
            found = index;
            foundArea = area;
        }
    }
    return found;
}

// The handle of the selection under a point of the view (items only; the dialog's are on the grab window).
int SelectedHandleAt(const DialogEditor& editor, POINT point)
{
    if (editor.design.selected < 0)
        return HTNOWHERE;
    return HandleAt(EntryPixels(editor, editor.design.selected), point, HandleSet::All);
}

int DialogHandleAt(const DialogEditor& editor, POINT grabPoint)
{
    if (editor.design.selected >= 0)
        return HTNOWHERE;
    RECT box = ViewClient(editor);
    OffsetRect(&box, kSurfaceMargin, kSurfaceMargin);
    return HandleAt(box, grabPoint, HandleSet::RightAndBottom);
}

UINT DoubleClickSpeed() { return GetProfileIntA("windows", "DoubleClickSpeed", 500); }

// A second press on the same entry within the double-click time opens its properties.
bool IsDoubleClick(DialogEditor& editor, int entry)
{
    const DWORD now = static_cast<DWORD>(GetMessageTime());
    const bool twice = entry == editor.lastClickEntry && now - editor.lastClickTime <= DoubleClickSpeed();
    editor.lastClickEntry = twice ? -2 : entry;
    editor.lastClickTime = now;
    return twice;
}

void OpenProperties(DialogEditor& editor, int entry)
{
    if (EditItemProperties(editor, entry)) {
        RebuildItemWindows(editor);
        RefreshSurface(editor);
    }
}

void StartDrag(DialogEditor& editor, HWND capture, int entry, int hit, POINT point)
{
    const DesignElement& element = editor.design.Entry(entry);
    editor.drag = SurfaceDrag{true, hit, entry, point, EntryPixels(editor, entry),
                              {element.x, element.y, element.width, element.height}};
    SetCapture(capture);
}

// Follows the mouse: the rectangle moved or sized in pixels, then taken into dialog units (snapped).
void FollowDrag(DialogEditor& editor, POINT point)
{
    SurfaceDrag& drag = editor.drag;
    const POINT offset{point.x - drag.start.x, point.y - drag.start.y};
    RECT area = ViewClient(editor);
    // The dialog may grow up to the screen's size; the editor window can be enlarged to show it.
    if (drag.entry < 0)
        area = RECT{0, 0, GetSystemMetrics(SM_CXSCREEN), GetSystemMetrics(SM_CYSCREEN)};
    const RECT pixels = drag.hit == HTCAPTION ? MovedRect(drag.startRect, offset, area)
                                              : SizedRect(drag.startRect, offset, drag.hit, area);
    const UnitBox start{drag.startUnits[0], drag.startUnits[1], drag.startUnits[2], drag.startUnits[3]};
    const UnitBox box = DraggedBox(start, pixels, drag.hit, editor.units, editor.design.grid);
    DesignElement& element = editor.design.Entry(drag.entry);
    if (drag.entry >= 0 && (element.x != box.x || element.y != box.y)) {
        element.x = box.x;
        element.y = box.y;
        editor.design.changed = true;
    }
    if (element.width != box.width || element.height != box.height) {
        element.width = box.width;
        element.height = box.height;
        editor.design.changed = true;
    }
    if (drag.entry >= 0 && element.window) {
        const RECT r = EntryPixels(editor, drag.entry);
        const int extra = editor.design.items[static_cast<size_t>(drag.entry)]->Kind() == ItemKind::DropListBox
                              ? editor.units.PixelsY(96) : 0;
        MoveWindow(element.window, r.left, r.top, r.right - r.left, r.bottom - r.top + extra, TRUE);
    }
    RefreshSurface(editor);
    ShowSelectionStatus(editor);
}

void EndDrag(DialogEditor& editor)
{
    if (!editor.drag.active)
        return;
    editor.drag.active = false;
    if (GetCapture())
        ReleaseCapture();
    UpdateEditorButtons(editor);
}

void PlaceNewItem(DialogEditor& editor, POINT point)
{
    DialogDesign& design = editor.design;
    const GridSettings& grid = design.grid;
    int x = editor.units.UnitsX(point.x), y = editor.units.UnitsY(point.y);
    if (grid.snap) {
        x = SnapToStep(x, grid.horizontal);
        y = SnapToStep(y, grid.vertical);
    }
    std::unique_ptr<DialogItem> item = design.NewItem(static_cast<ItemKind>(editor.mode), x, y);
    RunEditorCommand(editor, DE_SELECT);
    if (!item)
        return;
    design.selected = design.InsertItem(std::move(item), design.Count() - 1);
    design.changed = true;
    RebuildItemWindows(editor);
    SelectEntry(editor, design.selected);
}

void OnViewPress(DialogEditor& editor, POINT point)
{
    SetFocus(editor.view);
    if (editor.mode != DE_SELECT) {
        PlaceNewItem(editor, point);
        return;
    }
    if (const int hit = SelectedHandleAt(editor, point); hit != HTNOWHERE) {
        StartDrag(editor, editor.view, editor.design.selected, hit, point);
        return;
    }
    const int entry = EntryAt(editor, point);
    SelectEntry(editor, entry);
    if (IsDoubleClick(editor, entry)) {
        OpenProperties(editor, entry);
        return;
    }
    if (entry >= 0)
        StartDrag(editor, editor.view, entry, HTCAPTION, point);
}

void OnGrabPress(DialogEditor& editor, POINT point)
{
    SetFocus(editor.view);
    if (const int hit = DialogHandleAt(editor, point); hit != HTNOWHERE) {
        StartDrag(editor, editor.grab, -1, hit, point);
        return;
    }
    SelectEntry(editor, -1);
    if (IsDoubleClick(editor, -1))
        OpenProperties(editor, -1);
}

void FillHandles(HDC dc, const RECT& box, HandleSet handles)
{
    int count = 0;
    const int* codes = HandleCodes(handles, count);
    HBRUSH black = static_cast<HBRUSH>(GetStockObject(BLACK_BRUSH));
    for (int i = 0; i < count; ++i) {
        const RECT handle = HandleRect(box, codes[i]);
        FillRect(dc, &handle, black);
    }
}

void PaintGrid(const DialogEditor& editor, HDC dc, const RECT& area)
{
    const GridSettings& grid = editor.design.grid;
    if (!grid.show || grid.horizontal <= 0 || grid.vertical <= 0)
        return;
    for (int row = 0;; row += grid.vertical) {
        const int y = editor.units.PixelsY(row);
        if (y >= area.bottom)
            break;
        if (y < area.top)
            continue;
        for (int column = 0;; column += grid.horizontal) {
            const int x = editor.units.PixelsX(column);
            if (x >= area.right)
                break;
            if (x >= area.left)
                SetPixelV(dc, x, y, RGB(0, 0, 0));
        }
    }
}

void PaintView(DialogEditor& editor)
{
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(editor.view, &paint);
    PaintGrid(editor, dc, paint.rcPaint);
    if (editor.design.selected >= 0) {
        const RECT box = EntryPixels(editor, editor.design.selected);
        RECT frame = box;
        InflateRect(&frame, 1, 1);
        FrameRect(dc, &frame, GetSysColorBrush(COLOR_HIGHLIGHT));
        FillHandles(dc, box, HandleSet::All);
    }
    EndPaint(editor.view, &paint);
}

void PaintGrab(DialogEditor& editor)
{
    PAINTSTRUCT paint;
    HDC dc = BeginPaint(editor.grab, &paint);
    RECT box = ViewClient(editor);
    OffsetRect(&box, kSurfaceMargin, kSurfaceMargin);
    RECT frame = box;
    InflateRect(&frame, 1, 1);
    FrameRect(dc, &frame, static_cast<HBRUSH>(GetStockObject(editor.design.selected < 0 ? BLACK_BRUSH : GRAY_BRUSH)));
    if (editor.design.selected < 0)
        FillHandles(dc, box, HandleSet::RightAndBottom);
    EndPaint(editor.grab, &paint);
}

bool SetDragCursor(int hit)
{
    if (hit == HTNOWHERE)
        return false;
    SetCursor(LoadCursorA(nullptr, SizingCursor(hit)));
    return true;
}

POINT PointOf(LPARAM lParam) { return POINT{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)}; }

// Mouse and drag messages shared by the view and the grab window; true when handled.
bool HandleDragMessage(DialogEditor& editor, UINT message, LPARAM lParam)
{
    switch (message) {
    case WM_MOUSEMOVE:
        if (editor.drag.active)
            FollowDrag(editor, PointOf(lParam));
        return true;
    case WM_LBUTTONUP:
        EndDrag(editor);
        return true;
    case WM_CAPTURECHANGED:
        editor.drag.active = false;
        return true;
    default:
        return false;
    }
}

LRESULT CALLBACK ViewProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_NCCREATE)
        SetWindowLongPtrA(window, 0, reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTA*>(lParam)->lpCreateParams));
    DialogEditor* editor = EditorOf(window);
    if (!editor)
        return DefWindowProcA(window, message, wParam, lParam);
    if (HandleDragMessage(*editor, message, lParam))
        return 0;
    switch (message) {
    case WM_ERASEBKGND: {
        RECT r;
        GetClientRect(window, &r);
        FillRect(reinterpret_cast<HDC>(wParam), &r, GetSysColorBrush(COLOR_BTNFACE));
        return 1;
    }
    case WM_PAINT:
        PaintView(*editor);
        return 0;
    case WM_LBUTTONDOWN:
        OnViewPress(*editor, PointOf(lParam));
        return 0;
    case WM_SETCURSOR: {
        POINT point;
        GetCursorPos(&point);
        ScreenToClient(window, &point);
        if (editor->mode == DE_SELECT && SetDragCursor(SelectedHandleAt(*editor, point)))
            return TRUE;
        SetCursor(LoadCursorA(nullptr, editor->mode == DE_SELECT ? IDC_ARROW : IDC_CROSS));
        return TRUE;
    }
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN:
        SetBkColor(reinterpret_cast<HDC>(wParam), GetSysColor(COLOR_BTNFACE));
        return reinterpret_cast<LRESULT>(GetSysColorBrush(COLOR_BTNFACE));
    case WM_GETDLGCODE:
        return DLGC_WANTARROWS;
    case WM_KEYDOWN:
        if (wParam == VK_DELETE)
            RunEditorCommand(*editor, DE_DELETE);
        return 0;
    default:
        return DefWindowProcA(window, message, wParam, lParam);
    }
}

LRESULT CALLBACK GrabProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_NCCREATE)
        SetWindowLongPtrA(window, 0, reinterpret_cast<LONG_PTR>(reinterpret_cast<CREATESTRUCTA*>(lParam)->lpCreateParams));
    DialogEditor* editor = EditorOf(window);
    if (!editor || !editor->view)
        return DefWindowProcA(window, message, wParam, lParam);
    if (HandleDragMessage(*editor, message, lParam))
        return 0;
    switch (message) {
    case WM_ERASEBKGND: {
        RECT r;
        GetClientRect(window, &r);
        FillRect(reinterpret_cast<HDC>(wParam), &r, GetSysColorBrush(COLOR_APPWORKSPACE));
        return 1;
    }
    case WM_PAINT:
        PaintGrab(*editor);
        return 0;
    case WM_LBUTTONDOWN:
        OnGrabPress(*editor, PointOf(lParam));
        return 0;
    case WM_SETCURSOR: {
        POINT point;
        GetCursorPos(&point);
        ScreenToClient(window, &point);
        if (!SetDragCursor(DialogHandleAt(*editor, point)))
            SetCursor(LoadCursorA(nullptr, IDC_ARROW));
        return TRUE;
    }
    default:
        return DefWindowProcA(window, message, wParam, lParam);
    }
}

LRESULT CALLBACK SelectProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    if (message == WM_NCHITTEST)
        return HTTRANSPARENT;
    return DefWindowProcA(window, message, wParam, lParam);
}

// The procedure behind every item control and the inner windows of the combo boxes: the mouse passes
// through to the view, keys go to the view, and the control never takes the focus.
LRESULT CALLBACK DesignItemProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto base = reinterpret_cast<WNDPROC>(GetPropA(window, kBaseProcedure));
    HWND view = reinterpret_cast<HWND>(GetPropA(window, kItemView));
    if (!base)
        return DefWindowProcA(window, message, wParam, lParam);
    switch (message) {
    case WM_NCHITTEST:
        return HTTRANSPARENT;
    case WM_MOUSEACTIVATE:
        return MA_NOACTIVATE;
    case WM_SETFOCUS:
        if (view)
            SetFocus(view);
        return 0;
    case WM_KEYDOWN: case WM_KEYUP: case WM_CHAR:
        return view ? SendMessageA(view, message, wParam, lParam) : 0;
    case WM_LBUTTONDOWN: case WM_LBUTTONUP: case WM_LBUTTONDBLCLK: case WM_MOUSEMOVE:
    case WM_RBUTTONDOWN: case WM_RBUTTONUP: {
        POINT point = PointOf(lParam);
        MapWindowPoints(window, view, &point, 1);
        return view ? SendMessageA(view, message, wParam, MAKELPARAM(point.x, point.y)) : 0;
    }
    case WM_NCDESTROY:
        SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(base));
        RemovePropA(window, kBaseProcedure);
        RemovePropA(window, kItemView);
        return CallWindowProcA(base, window, message, wParam, lParam);
    default:
        return CallWindowProcA(base, window, message, wParam, lParam);
    }
}

BOOL CALLBACK SubclassInner(HWND window, LPARAM view);

// The hidden template control of the editor window whose procedure stands behind an item of the kind
// (152 STATIC, 153 EDIT, 154 simple COMBOBOX, 155 LISTBOX, 156 drop-down COMBOBOX); 0 for buttons,
// which keep their own.
int TemplateControlOf(ItemKind kind)
{
    switch (kind) {
    case ItemKind::Text: case ItemKind::Picture: return 152;
    case ItemKind::TextBox: return 153;
    case ItemKind::ComboBox: return 154;
    case ItemKind::ListBox: return 155;
    case ItemKind::DropListBox: return 156;
    default: return 0;
    }
}

void Subclass(const DialogEditor& editor, HWND window, ItemKind kind)
{
    WNDPROC own = reinterpret_cast<WNDPROC>(SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(DesignItemProc)));
    HWND model = GetDlgItem(editor.dialog, TemplateControlOf(kind));
    WNDPROC base = model ? reinterpret_cast<WNDPROC>(GetWindowLongPtrA(model, GWLP_WNDPROC)) : nullptr;
    SetPropA(window, kItemView, editor.view);
    SetPropA(window, kBaseProcedure, reinterpret_cast<HANDLE>(base ? base : own));
    EnumChildWindows(window, SubclassInner, reinterpret_cast<LPARAM>(editor.view));
}

BOOL CALLBACK SubclassInner(HWND window, LPARAM view)
{
    if (!GetPropA(window, kBaseProcedure)) {
        SetPropA(window, kItemView, reinterpret_cast<HWND>(view));
        SetPropA(window, kBaseProcedure, reinterpret_cast<HANDLE>(
                     SetWindowLongPtrA(window, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(DesignItemProc))));
    }
    return TRUE;
}

HWND CreateItemWindow(DialogEditor& editor, DialogItem& item, int index)
{
    const RECT r = ToPixels(item, editor.units);
    const int extra = item.Kind() == ItemKind::DropListBox ? editor.units.PixelsY(96) : 0;
    const std::string text = item.ShownText([&editor](unsigned id) { return editor.Text(id); });
    HWND window = CreateWindowExA(0, item.WindowClass(), text.c_str(), WS_CHILD | WS_VISIBLE | item.WindowStyle(),
                                  r.left, r.top, r.right - r.left, r.bottom - r.top + extra, editor.view,
                                  reinterpret_cast<HMENU>(static_cast<INT_PTR>(ID_FIRST_DESIGN_ITEM + index)),
                                  GetModuleHandleA(nullptr), nullptr);
    if (!window)
        return nullptr;
    SendMessageA(window, WM_SETFONT, SendMessageA(editor.dialog, WM_GETFONT, 0, 0), FALSE);
    if (item.Kind() == ItemKind::ComboBox || item.Kind() == ItemKind::DropListBox) {
        // The list shows its array's name, as a hint of what fills it.
        SendMessageA(window, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(static_cast<ListItem&>(item).array.c_str()));
        SendMessageA(window, CB_SETCURSEL, 0, 0);
    } else if (item.Kind() == ItemKind::ListBox) {
        SendMessageA(window, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(static_cast<ListItem&>(item).array.c_str()));
    }
    Subclass(editor, window, item.Kind());
    return window;
}

} // namespace

bool RegisterDesignSurfaceClasses()
{
    static const bool s_registered = RegisterFrameFamilyClass(kGrabClassName, GrabProc) &&
                                     RegisterFrameFamilyClass(kDialogViewClassName, ViewProc) &&
                                     RegisterFrameFamilyClass(kSelectClassName, SelectProc);
    return s_registered;
}

bool CreateDesignSurface(DialogEditor& editor)
{
    HINSTANCE instance = GetModuleHandleA(nullptr);
    editor.grab = CreateWindowExA(0, kGrabClassName, "", WS_CHILD | WS_VISIBLE | WS_CLIPCHILDREN, 0, 0, 0, 0,
                                  editor.dialog, reinterpret_cast<HMENU>(ID_DESIGN_GRAB), instance, &editor);
    if (!editor.grab)
        return false;
    // The view does not clip its children: a group box paints no interior, so the view's face and grid
    // must show through it. The children paint after the view.
    editor.view = CreateWindowExA(0, kDialogViewClassName, "", WS_CHILD | WS_VISIBLE, kSurfaceMargin,
                                  kSurfaceMargin, 0, 0, editor.grab, nullptr, instance, &editor);
    editor.selection = CreateWindowExA(WS_EX_TRANSPARENT, kSelectClassName, "", WS_CHILD, 0, 0, 0, 0, editor.dialog,
                                       reinterpret_cast<HMENU>(ID_DESIGN_SELECT), instance, &editor);
    return editor.view && editor.selection;
}

bool RebuildItemWindows(DialogEditor& editor)
{
    for (auto& item : editor.design.items)
        item->window = nullptr;
    while (HWND child = GetWindow(editor.view, GW_CHILD))
        DestroyWindow(child);
    bool made = true;
    for (int index = 0; index < editor.design.Count(); ++index) {
        DialogItem& item = *editor.design.items[static_cast<size_t>(index)];
        item.window = CreateItemWindow(editor, item, index);
        made = made && item.window != nullptr;
    }
    InvalidateRect(editor.view, nullptr, TRUE);
    return made;
}

RECT EntryPixels(const DialogEditor& editor, int entry)
{
    if (entry < 0) {
        const DialogDesign& design = editor.design;
        return RECT{0, 0, editor.units.PixelsX(design.width), editor.units.PixelsY(design.height)};
    }
    return ToPixels(*editor.design.items[static_cast<size_t>(entry)], editor.units);
}

void RefreshSurface(DialogEditor& editor)
{
    const RECT size = EntryPixels(editor, -1);
    RECT now{};
    GetClientRect(editor.view, &now);
    if (now.right != size.right || now.bottom != size.bottom)
        SetWindowPos(editor.view, nullptr, kSurfaceMargin, kSurfaceMargin, size.right, size.bottom, SWP_NOZORDER | SWP_NOACTIVATE);
    InvalidateRect(editor.grab, nullptr, TRUE);
    RedrawWindow(editor.view, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_ALLCHILDREN);
}

void SelectEntry(DialogEditor& editor, int entry)
{
    if (entry < -1 || entry >= editor.design.Count())
        entry = -1;
    editor.design.selected = entry;
    RefreshSurface(editor);
    UpdateEditorButtons(editor);
    ShowSelectionStatus(editor);
}

} // namespace brannoc::ide
