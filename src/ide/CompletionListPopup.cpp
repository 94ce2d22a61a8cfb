// The completion list component "Brannoc.AutoFill.3": a pop-up list of "word K" entries, each drawn
// with a small glyph for its kind. The typed prefix selects the first entry that begins with it; Up,
// Down, Page Up and Page Down move the selection; Tab or Enter (or a double click) choose it; Esc,
// Ctrl+Tab, Home, End, Left and Right close the list. The keys are taken from the window the list
// was shown for, which keeps the focus; the choice is posted to it as "Brannoc.AutoFillEvent".
#include "ide/CompletionGlyphs.h"
#include "ide/DescribedPopupClass.h"
#include "ide/EngineLink.h"
#include "ide/PopupComponents.h"
#include "ide/PopupWindow.h"

#include "brannoc.h"

#include <algorithm>
#include <string>
#include <vector>

namespace brannoc::ide {

namespace {

constexpr char kListClassName[] = "__BrannocCompletionList";
constexpr char kOwnerProperty[] = "__BrannocCompletionList";
constexpr int kVisibleRows = 8;
constexpr int kGlyphSpace = 20;
constexpr int kMinimumWidth = 120;
constexpr int kMaximumWidth = 420;

// Members in the order of the implementation's virtual functions (a property's get before its put).
const wchar_t kCompletionDescription[] =
    L"=AutoFill\n2:Word$=Prefix$\n3:Show(Window&,Font&,X&,Y&,LineHeight&,List$) As Long\n4:Hide\n5:Move X&,Y&\n";

struct ListEntry {
    std::string word;
    char kind = 'A';
};

std::vector<ListEntry> ParseEntries(std::string_view text)
{
    std::vector<ListEntry> entries;
    while (!text.empty()) {
        size_t end = text.find("\r\n");
        std::string_view line = text.substr(0, end);
        text = end == std::string_view::npos ? std::string_view() : text.substr(end + 2);
        const size_t blank = line.rfind(' ');
        if (blank == std::string_view::npos || blank == 0 || blank + 1 >= line.size())
            continue;
        entries.push_back({std::string(line.substr(0, blank)), line[blank + 1]});
    }
    return entries;
}

bool BeginsWith(const std::string& word, const std::string& prefix)
{
    return word.size() >= prefix.size() &&
           CompareStringA(LOCALE_INVARIANT, NORM_IGNORECASE, word.data(), static_cast<int>(prefix.size()), prefix.data(),
                          static_cast<int>(prefix.size())) == CSTR_EQUAL;
}

LRESULT CALLBACK OwnerKeysProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

class CompletionListPopup final {
public:
    // No virtual destructor: the virtual functions are exactly the described members, in their order.
    virtual BSTR __stdcall Word()
    {
        if (m_selected < 0 || m_selected >= static_cast<int>(m_entries.size()))
            return SysAllocString(L"");
        const std::wstring word = WideText(m_entries[static_cast<size_t>(m_selected)].word);
        return SysAllocStringLen(word.data(), static_cast<UINT>(word.size()));
    }
    virtual void __stdcall SetPrefix(BSTR prefix)
    {
        m_prefix = NarrowText(std::wstring_view(prefix ? prefix : L"", prefix ? SysStringLen(prefix) : 0));
        SelectByPrefix();
    }
    virtual long __stdcall Show(long window, long font, long x, long y, long lineHeight, BSTR list)
    {
        Hide();
        m_entries = ParseEntries(NarrowText(std::wstring_view(list ? list : L"", list ? SysStringLen(list) : 0)));
        HWND owner = reinterpret_cast<HWND>(static_cast<LONG_PTR>(window));
        if (m_entries.empty() || !IsWindow(owner) || !EnsurePopupWindow(m_window, owner, kListClassName, PopupWindowProc<CompletionListPopup>, this))
            return 0;
        m_owner = owner;
        m_font = reinterpret_cast<HFONT>(static_cast<LONG_PTR>(font));
        m_lineHeight = std::max<long>(lineHeight, 8);
        m_anchor = POINT{x, y};
        m_top = 0;
        m_prefix.clear();
        SelectByPrefix();
        TakeOwnerKeys();
        Place();
        return 1;
    }
    virtual void __stdcall Hide()
    {
        if (m_window)
            ShowWindow(m_window, SW_HIDE);
    }
    virtual void __stdcall Move(long x, long y)
    {
        m_anchor = POINT{x, y};
        if (Shown())
            Place();
    }

    ~CompletionListPopup()
    {
        ReleaseOwnerKeys();
        if (m_window)
            DestroyWindow(m_window);
    }

    bool Shown() const { return m_window && IsWindowVisible(m_window); }

    // Keys of the owner while the list is shown; true when the key was used up here.
    bool OwnerMessage(UINT message, WPARAM wParam)
    {
        if (message == WM_CHAR && m_swallowCharacter) {
            const bool swallow = wParam == m_swallowCharacter;
            m_swallowCharacter = 0;
            if (swallow)
                return true;
        }
        if (message != WM_KEYDOWN || !Shown())
            return false;
        m_swallowCharacter = 0;
        const bool ctrl = GetKeyState(VK_CONTROL) < 0;
        switch (wParam) {
        case VK_UP: MoveSelection(-1); return true;
        case VK_DOWN: MoveSelection(1); return true;
        case VK_PRIOR: MoveSelection(-(kVisibleRows - 1)); return true;
        case VK_NEXT: MoveSelection(kVisibleRows - 1); return true;
        case VK_RETURN:
            Finish(true, '\r');
            return true;
        case VK_TAB:
            Finish(!ctrl, '\t');
            return true;
        case VK_ESCAPE:
            Finish(false, VK_ESCAPE);
            return true;
        case VK_HOME:
        case VK_END:
        case VK_LEFT:
        case VK_RIGHT:
            Finish(false, 0);
            return false;
        default:
            return false;
        }
    }

    WNDPROC OwnerProcedure() const { return m_ownerProcedure; }
    LRESULT WindowMessage(UINT message, WPARAM wParam, LPARAM lParam);
    // The window went with its owner (a frame destroys the windows it owns first).
    void WindowGone() { m_window = nullptr; }

private:

    // The owner's messages pass through OwnerKeysProc from the first Show until the list goes.
    void TakeOwnerKeys()
    {
        if (m_keysOwner == m_owner)
            return;
        ReleaseOwnerKeys();
        SetPropA(m_owner, kOwnerProperty, this);
        m_ownerProcedure = reinterpret_cast<WNDPROC>(
            SetWindowLongPtrA(m_owner, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(OwnerKeysProc)));
        m_keysOwner = m_owner;
    }

    // Another subclass installed after ours keeps calling us; ours then only passes messages on.
    void ReleaseOwnerKeys()
    {
        if (!m_keysOwner || !IsWindow(m_keysOwner))
            return;
        if (GetWindowLongPtrA(m_keysOwner, GWLP_WNDPROC) == reinterpret_cast<LONG_PTR>(OwnerKeysProc)) {
            SetWindowLongPtrA(m_keysOwner, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(m_ownerProcedure));
            RemovePropA(m_keysOwner, kOwnerProperty);
        }
        m_keysOwner = nullptr;
    }

    void Finish(bool choose, WPARAM swallowCharacter)
    {
        static const UINT event = RegisterWindowMessageA(kCompletionEventName);
        const bool chosen = choose && m_selected >= 0;
        Hide();
        m_swallowCharacter = swallowCharacter;
        PostMessageA(m_owner, event, chosen ? 1 : 0, 0);
    }

    void SelectByPrefix()
    {
        m_selected = -1;
        for (size_t i = 0; i < m_entries.size(); ++i)
            if (BeginsWith(m_entries[i].word, m_prefix)) {
                m_selected = static_cast<int>(i);
                break;
            }
        ScrollToSelection();
    }

    void MoveSelection(int rows)
    {
        const int last = static_cast<int>(m_entries.size()) - 1;
        m_selected = std::clamp(m_selected < 0 ? (rows > 0 ? rows - 1 : 0) : m_selected + rows, 0, last);
        ScrollToSelection();
    }

    void ScrollToSelection()
    {
        if (m_selected >= 0) {
            if (m_selected < m_top)
                m_top = m_selected;
            else if (m_selected >= m_top + kVisibleRows)
                m_top = m_selected - kVisibleRows + 1;
        }
        UpdateScrollBar();
        if (m_window)
            InvalidateRect(m_window, nullptr, TRUE);
    }

    int RowHeight() const { return std::max(m_lineHeight + 2, 18); }
    int Rows() const { return std::min<int>(static_cast<int>(m_entries.size()), kVisibleRows); }
    bool Scrolls() const { return static_cast<int>(m_entries.size()) > kVisibleRows; }

    SIZE ListSize() const
    {
        HDC dc = GetDC(m_window);
        HGDIOBJ old = SelectObject(dc, m_font ? m_font : GetStockObject(DEFAULT_GUI_FONT));
        int width = 0;
        for (const ListEntry& entry : m_entries) {
            SIZE text{};
            GetTextExtentPoint32A(dc, entry.word.data(), static_cast<int>(entry.word.size()), &text);
            width = std::max<int>(width, text.cx);
        }
        SelectObject(dc, old);
        ReleaseDC(m_window, dc);
        width += kGlyphSpace + 12 + (Scrolls() ? GetSystemMetrics(SM_CXVSCROLL) : 0);
        const int border = 2 * GetSystemMetrics(SM_CXBORDER);
        return SIZE{std::clamp(width, kMinimumWidth, kMaximumWidth) + border, Rows() * RowHeight() + border};
    }

    void Place()
    {
        ShowScrollBar(m_window, SB_VERT, Scrolls());
        UpdateScrollBar();
        ShowPopupAt(m_window, PlacePopup(m_anchor, m_lineHeight, ListSize(), PopupSide::Below));
        InvalidateRect(m_window, nullptr, TRUE);
    }

    void UpdateScrollBar()
    {
        if (!m_window || !Scrolls())
            return;
        SCROLLINFO info{sizeof(SCROLLINFO), SIF_RANGE | SIF_PAGE | SIF_POS, 0, static_cast<int>(m_entries.size()) - 1,
                        static_cast<UINT>(kVisibleRows), m_top, 0};
        SetScrollInfo(m_window, SB_VERT, &info, TRUE);
    }

    void Paint(HDC dc)
    {
        RECT client;
        GetClientRect(m_window, &client);
        FillRect(dc, &client, GetSysColorBrush(COLOR_WINDOW));
        HGDIOBJ old = SelectObject(dc, m_font ? m_font : GetStockObject(DEFAULT_GUI_FONT));
        SetBkMode(dc, TRANSPARENT);
        const int rowHeight = RowHeight();
        for (int row = 0; row < Rows(); ++row) {
            const int index = m_top + row;
            if (index >= static_cast<int>(m_entries.size()))
                break;
            const ListEntry& entry = m_entries[static_cast<size_t>(index)];
            RECT line{client.left, row * rowHeight, client.right, (row + 1) * rowHeight};
            const bool selected = index == m_selected;
            if (selected)
                FillRect(dc, &line, GetSysColorBrush(COLOR_HIGHLIGHT));
            DrawKindGlyph(dc, entry.kind, RECT{line.left + 3, line.top, line.left + kGlyphSpace - 1, line.bottom});
            SetTextColor(dc, GetSysColor(selected ? COLOR_HIGHLIGHTTEXT : COLOR_WINDOWTEXT));
            RECT text{line.left + kGlyphSpace + 2, line.top, line.right - 2, line.bottom};
            DrawTextA(dc, entry.word.c_str(), static_cast<int>(entry.word.size()), &text,
                      DT_SINGLELINE | DT_VCENTER | DT_NOPREFIX | DT_END_ELLIPSIS);
        }
        SelectObject(dc, old);
    }

    int RowAt(LPARAM point) const
    {
        const int row = static_cast<short>(HIWORD(point)) / RowHeight();
        const int index = m_top + row;
        return index >= 0 && index < static_cast<int>(m_entries.size()) ? index : -1;
    }

    void Scroll(WPARAM request)
    {
        const int last = std::max(0, static_cast<int>(m_entries.size()) - kVisibleRows);
        switch (LOWORD(request)) {
        case SB_LINEUP: --m_top; break;
        case SB_LINEDOWN: ++m_top; break;
        case SB_PAGEUP: m_top -= kVisibleRows; break;
        case SB_PAGEDOWN: m_top += kVisibleRows; break;
        case SB_THUMBTRACK:
        case SB_THUMBPOSITION: m_top = HIWORD(request); break;
        default: return;
        }
        m_top = std::clamp(m_top, 0, last);
        UpdateScrollBar();
        InvalidateRect(m_window, nullptr, TRUE);
    }

    HWND m_window = nullptr;
    HWND m_owner = nullptr;
    HWND m_keysOwner = nullptr;
    WNDPROC m_ownerProcedure = nullptr;
    HFONT m_font = nullptr;
    int m_lineHeight = 16;
    POINT m_anchor{};
    std::vector<ListEntry> m_entries;
    std::string m_prefix;
    int m_selected = -1;
    int m_top = 0;
    WPARAM m_swallowCharacter = 0; // the character message of a key the list used up
};

LRESULT CompletionListPopup::WindowMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    switch (message) {
    case WM_MOUSEACTIVATE:
        return MA_NOACTIVATE;
    case WM_ERASEBKGND:
        return 1;
    case WM_PAINT: {
        PAINTSTRUCT paint;
        HDC dc = BeginPaint(m_window, &paint);
        Paint(dc);
        EndPaint(m_window, &paint);
        return 0;
    }
    case WM_LBUTTONDOWN:
        if (int index = RowAt(lParam); index >= 0) {
            m_selected = index;
            InvalidateRect(m_window, nullptr, TRUE);
        }
        return 0;
    case WM_LBUTTONDBLCLK:
        if (int index = RowAt(lParam); index >= 0) {
            m_selected = index;
            Finish(true, 0);
        }
        return 0;
    case WM_VSCROLL:
        Scroll(wParam);
        return 0;
    default:
        return DefWindowProcA(m_window, message, wParam, lParam);
    }
}

LRESULT CALLBACK OwnerKeysProc(HWND window, UINT message, WPARAM wParam, LPARAM lParam)
{
    auto* popup = static_cast<CompletionListPopup*>(GetPropA(window, kOwnerProperty));
    if (!popup)
        return DefWindowProcA(window, message, wParam, lParam);
    const WNDPROC original = popup->OwnerProcedure();
    if (popup->OwnerMessage(message, wParam))
        return 0;
    return CallWindowProcA(original, window, message, wParam, lParam);
}

} // namespace

IClassFactory* CreateCompletionListClass()
{
    return CreateDescribedPopupClass<CompletionListPopup>(kCompletionDescription);
}

} // namespace brannoc::ide
