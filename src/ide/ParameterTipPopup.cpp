// The parameter tip component "Brannoc.AutoParm.3": a tool-tip-like pop-up that shows a prototype with
// the current argument in bold. It sits above the line it was shown for (below when there is no room),
// so that the completion list, which opens below the line, does not cover it. A click on it closes it
// and posts "Brannoc.AutoParmEvent" with wParam 0 to the window it was shown for.
#include "ide/DescribedPopupClass.h"
#include "ide/EngineLink.h"
#include "ide/PopupComponents.h"
#include "ide/PopupWindow.h"

#include "brannoc.h"

#include <algorithm>
#include <string>

namespace brannoc::ide {

namespace {

constexpr char kTipClassName[] = "__BrannocParameterTip";
constexpr int kPadding = 4;

const wchar_t kTipDescription[] =
    L"=AutoParm\n1:Index&=Value&\n3:Show(Window&,Font&,X&,Y&,LineHeight&,Prototype$) As Long\n4:Hide\n5:Move X&,Y&\n";

// The prototype cut around the current argument: the text before it, the argument, the text after.
struct TipParts {
    std::string before, argument, after;
};

// The index-th parameter of the first parenthesised list (commas of depth 0 counted); the whole
// prototype is `before` when there is no such parameter.
TipParts SplitAtArgument(const std::string& prototype, int index)
{
    const size_t open = prototype.find('(');
    if (open == std::string::npos || index < 0)
        return {prototype, {}, {}};
    int depth = 0, parameter = 0;
    size_t start = open + 1;
    for (size_t i = open; i < prototype.size(); ++i) {
        const char c = prototype[i];
        if (c == '(' || c == '[') {
            ++depth;
            continue;
        }
        const bool closes = (c == ')' || c == ']') && --depth == 0;
        const bool separates = c == ',' && depth == 1;
        if (!closes && !separates)
            continue;
        if (parameter == index) {
            while (start < i && prototype[start] == ' ')
                ++start;
            return {prototype.substr(0, start), prototype.substr(start, i - start), prototype.substr(i)};
        }
        if (closes)
            break;
        ++parameter;
        start = i + 1;
    }
    return {prototype, {}, {}};
}


class ParameterTipPopup final {
public:
    // No virtual destructor: the virtual functions are exactly the described members, in their order.
    virtual long __stdcall Index() { return m_index; }
    virtual void __stdcall SetIndex(long index)
    {
        m_index = index;
        if (Shown())
            Place();
    }
    virtual long __stdcall Show(long window, long font, long x, long y, long lineHeight, BSTR prototype)
    {
        Hide();
        HWND owner = reinterpret_cast<HWND>(static_cast<LONG_PTR>(window));
        m_prototype = NarrowText(std::wstring_view(prototype ? prototype : L"", prototype ? SysStringLen(prototype) : 0));
        if (m_prototype.empty() || !IsWindow(owner) || !EnsurePopupWindow(m_window, owner, kTipClassName, PopupWindowProc<ParameterTipPopup>, this))
            return 0;
        m_owner = owner;
        SetFont(reinterpret_cast<HFONT>(static_cast<LONG_PTR>(font)));
        m_lineHeight = std::max<long>(lineHeight, 8);
        m_anchor = POINT{x, y};
        SetWindowTextA(m_window, m_prototype.c_str()); // what screen readers and tests read
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

    ~ParameterTipPopup()
    {
        if (m_window)
            DestroyWindow(m_window);
        if (m_boldFont)
            DeleteObject(m_boldFont);
    }

    LRESULT WindowMessage(UINT message, WPARAM wParam, LPARAM lParam);
    // The window went with its owner (a frame destroys the windows it owns first).
    void WindowGone() { m_window = nullptr; }

private:
    bool Shown() const { return m_window && IsWindowVisible(m_window); }


    void SetFont(HFONT font)
    {
        m_font = font ? font : static_cast<HFONT>(GetStockObject(DEFAULT_GUI_FONT));
        if (m_boldFont)
            DeleteObject(m_boldFont);
        LOGFONTA description{};
        GetObjectA(m_font, sizeof(description), &description);
        description.lfWeight = FW_BOLD;
        m_boldFont = CreateFontIndirectA(&description);
    }

    // Draws the parts from `x` (or only measures them when `draw` is false); answers the width.
    int Layout(HDC dc, int x, int y, bool draw) const
    {
        const TipParts parts = SplitAtArgument(m_prototype, m_index);
        const std::pair<const std::string*, HFONT> runs[] = {
            {&parts.before, m_font}, {&parts.argument, m_boldFont ? m_boldFont : m_font}, {&parts.after, m_font}};
        const int start = x;
        for (const auto& [text, font] : runs) {
            HGDIOBJ old = SelectObject(dc, font);
            SIZE size{};
            GetTextExtentPoint32A(dc, text->data(), static_cast<int>(text->size()), &size);
            if (draw)
                TextOutA(dc, x, y, text->data(), static_cast<int>(text->size()));
            SelectObject(dc, old);
            x += size.cx;
        }
        return x - start;
    }

    void Place()
    {
        HDC dc = GetDC(m_window);
        const int width = Layout(dc, 0, 0, false) + 2 * kPadding + 2 * GetSystemMetrics(SM_CXBORDER);
        ReleaseDC(m_window, dc);
        const SIZE size{width, m_lineHeight + 2 * kPadding + 2 * GetSystemMetrics(SM_CYBORDER)};
        ShowPopupAt(m_window, PlacePopup(m_anchor, m_lineHeight, size, PopupSide::Above));
        InvalidateRect(m_window, nullptr, TRUE);
    }

    void Paint(HDC dc)
    {
        RECT client;
        GetClientRect(m_window, &client);
        FillRect(dc, &client, GetSysColorBrush(COLOR_INFOBK));
        SetBkMode(dc, TRANSPARENT);
        SetTextColor(dc, GetSysColor(COLOR_INFOTEXT));
        Layout(dc, kPadding, kPadding, true);
    }

    HWND m_window = nullptr;
    HWND m_owner = nullptr;
    HFONT m_font = nullptr;
    HFONT m_boldFont = nullptr;
    int m_lineHeight = 16;
    POINT m_anchor{};
    std::string m_prototype;
    long m_index = 0;
};

LRESULT ParameterTipPopup::WindowMessage(UINT message, WPARAM wParam, LPARAM lParam)
{
    static const UINT event = RegisterWindowMessageA(kParameterTipEventName);
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
        Hide();
        PostMessageA(m_owner, event, 0, 0);
        return 0;
    default:
        return DefWindowProcA(m_window, message, wParam, lParam);
    }
}

} // namespace

IClassFactory* CreateParameterTipClass()
{
    return CreateDescribedPopupClass<ParameterTipPopup>(kTipDescription);
}

} // namespace brannoc::ide
