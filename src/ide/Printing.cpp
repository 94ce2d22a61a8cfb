#include "ide/Printing.h"

#include "host/ThisModule.h"
#include "ide/CodeLineScan.h"
#include "ide/EditorFrameState.h"

#include <commdlg.h>

#include <algorithm>

namespace brannoc::ide {

namespace {

// The progress dialog of a print job and its file-name field.
constexpr int kProgressDialog = 300;
constexpr int kProgressFileName = 301;
// The progress dialog stays up at least this long, so that the user sees it.
constexpr DWORD kShortestProgress = 1000;

// Process-wide, as the abort procedure gets no data of its own.
volatile bool g_abortPrinting = false;
HWND g_progressDialog = nullptr;

INT_PTR CALLBACK AbortDlgProc(HWND, UINT message, WPARAM wParam, LPARAM)
{
    switch (message) {
    case WM_INITDIALOG:
        return TRUE;
    case WM_COMMAND:
        if (LOWORD(wParam) == IDCANCEL)
            g_abortPrinting = true;
        return TRUE;
    case WM_CLOSE:
        g_abortPrinting = true;
        return TRUE;
    default:
        return FALSE;
    }
}

// Serves the message queue (the progress dialog's Cancel among it); answers whether to go on.
BOOL CALLBACK AbortFunc(HDC, int)
{
    MSG message;
    while (!g_abortPrinting && PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE)) {
        if (g_progressDialog && IsDialogMessageA(g_progressDialog, &message))
            continue;
        TranslateMessage(&message);
        DispatchMessageA(&message);
    }
    return !g_abortPrinting;
}

// The system's text for an error code; empty for no error or an unknown code.
std::string SystemMessage(DWORD code)
{
    if (code == ERROR_SUCCESS)
        return {};
    char* buffer = nullptr;
    DWORD length = FormatMessageA(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
                                  nullptr, code, 0, reinterpret_cast<char*>(&buffer), 0, nullptr);
    std::string text = length && buffer ? std::string(buffer, length) : std::string();
    if (buffer)
        LocalFree(buffer);
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r' || text.back() == ' '))
        text.pop_back();
    return text;
}

// Looks up the default printer and keeps its handles, when no printer was chosen yet.
bool EnsurePrinter(EditorFrame& frame)
{
    PrintSettings& settings = frame.m_print;
    if (settings.devNames)
        return true;
    PRINTDLGA dialog{};
    dialog.lStructSize = sizeof(dialog);
    dialog.hwndOwner = frame.m_window;
    dialog.Flags = PD_RETURNDEFAULT;
    if (!PrintDlgA(&dialog))
        return false;
    settings.devMode = dialog.hDevMode;
    settings.devNames = dialog.hDevNames;
    return true;
}

HDC CreatePrinterContext(const PrintSettings& settings)
{
    auto* names = static_cast<DEVNAMES*>(GlobalLock(settings.devNames));
    if (!names)
        return nullptr;
    auto* mode = settings.devMode ? static_cast<DEVMODEA*>(GlobalLock(settings.devMode)) : nullptr;
    const char* base = reinterpret_cast<const char*>(names);
    HDC dc = CreateDCA(base + names->wDriverOffset, base + names->wDeviceOffset, base + names->wOutputOffset, mode);
    if (mode)
        GlobalUnlock(settings.devMode);
    GlobalUnlock(settings.devNames);
    return dc;
}

// The display font scaled from the screen's resolution to the printer's.
HFONT CreatePrinterFont(const EditorFrame& frame, HDC printer)
{
    LOGFONTA font{};
    HGDIOBJ display = frame.m_displayFont ? static_cast<HGDIOBJ>(frame.m_displayFont) : GetStockObject(SYSTEM_FIXED_FONT);
    GetObjectA(display, sizeof(font), &font);
    HDC screen = GetDC(nullptr);
    font.lfHeight = MulDiv(font.lfHeight, GetDeviceCaps(printer, LOGPIXELSY), GetDeviceCaps(screen, LOGPIXELSY));
    font.lfWidth = MulDiv(font.lfWidth, GetDeviceCaps(printer, LOGPIXELSX), GetDeviceCaps(screen, LOGPIXELSX));
    ReleaseDC(nullptr, screen);
    return CreateFontIndirectA(&font);
}

struct PageLayout {
    int margin = 0;
    int perLine = 1;
    int lineHeight = 1;
    int linesPerPage = 3;
};

PageLayout MeasurePage(HDC dc)
{
    TEXTMETRICA metrics{};
    GetTextMetricsA(dc, &metrics);
    PageLayout layout;
    layout.margin = GetDeviceCaps(dc, LOGPIXELSX) * 3 / 4;
    int average = metrics.tmAveCharWidth > 0 ? metrics.tmAveCharWidth : 1;
    layout.perLine = std::max(1, (GetDeviceCaps(dc, HORZRES) - 2 * layout.margin) / average);
    layout.lineHeight = std::max(1, static_cast<int>(metrics.tmHeight + metrics.tmExternalLeading));
    layout.linesPerPage = std::max(3, GetDeviceCaps(dc, VERTRES) / layout.lineHeight);
    return layout;
}

// Prints one page: the header on printed line 1, a rule at two line heights, the code from line 3.
bool PrintPage(HDC dc, const PageLayout& layout, const std::string& header, const std::vector<std::string>& lines)
{
    if (StartPage(dc) <= 0)
        return false;
    TextOutA(dc, layout.margin, 0, header.c_str(), static_cast<int>(header.size()));
    MoveToEx(dc, layout.margin, 2 * layout.lineHeight, nullptr);
    LineTo(dc, GetDeviceCaps(dc, HORZRES) - layout.margin, 2 * layout.lineHeight);
    int y = 2 * layout.lineHeight;
    for (const std::string& line : lines) {
        TextOutA(dc, layout.margin, y, line.c_str(), static_cast<int>(line.size()));
        y += layout.lineHeight;
        if (!AbortFunc(dc, 0))
            return false;
    }
    return EndPage(dc) >= 0;
}

// The progress dialog: the name after the last backslash, the frame's title as its caption.
HWND ShowProgress(EditorFrame& frame, const std::string& name)
{
    HWND dialog = CreateDialogParamA(ThisModule(), MAKEINTRESOURCEA(kProgressDialog), frame.m_window, AbortDlgProc, 0);
    if (!dialog)
        return nullptr;
    size_t slash = name.find_last_of('\\');
    SetDlgItemTextA(dialog, kProgressFileName, slash == std::string::npos ? name.c_str() : name.c_str() + slash + 1);
    SetWindowTextA(dialog, frame.m_placeholders.title.c_str());
    ShowWindow(dialog, SW_SHOW);
    return dialog;
}

} // namespace

std::string PrintDocumentName(const std::string& displayName)
{
    return displayName.size() > 28 ? displayName.substr(0, 28) + "..." : displayName;
}

std::vector<std::string> PrintedLines(const std::string& line, int tabWidth, int perLine)
{
    std::string text = line;
    ExpandTabs(text, tabWidth);
    perLine = std::max(1, perLine);
    std::vector<std::string> lines;
    while (static_cast<int>(text.size()) > perLine) {
        size_t cut = static_cast<size_t>(perLine);
        while (cut > 0 && IsWordCharacter(text[cut - 1]))
            --cut;
        if (cut == 0)
            cut = static_cast<size_t>(perLine);
        lines.push_back(text.substr(0, cut));
        text.erase(0, cut);
    }
    lines.push_back(text);
    return lines;
}

std::vector<std::vector<std::string>> PaginateCode(const std::string& code, int tabWidth, int perLine, int linesPerPage)
{
    linesPerPage = std::max(1, linesPerPage);
    std::vector<std::vector<std::string>> pages(1);
    auto add = [&](const std::string& source) {
        for (std::string& printed : PrintedLines(source, tabWidth, perLine)) {
            if (static_cast<int>(pages.back().size()) == linesPerPage)
                pages.emplace_back();
            pages.back().push_back(std::move(printed));
        }
    };
    size_t at = 0;
    for (size_t end = code.find("\r\n"); end != std::string::npos; end = code.find("\r\n", at)) {
        add(code.substr(at, end - at));
        at = end + 2;
    }
    if (at < code.size())
        add(code.substr(at));
    return pages;
}

bool PrintSheet(EditorFrame& frame)
{
    Sheet* sheet = frame.Current();
    if (!sheet)
        return false;
    frame.StoreShownText();
    std::string shown = frame.DisplayName(sheet->name);
    HDC dc = nullptr;
    if (EnsurePrinter(frame) && !(dc = CreatePrinterContext(frame.m_print))) {
        if (std::string system = SystemMessage(GetLastError()); !system.empty()) {
            frame.ShowText(system, MB_OK | MB_ICONEXCLAMATION);
            return false;
        }
    }
    if (!dc) {
        frame.ShowMessage(IDS_CANNOT_PRINT, MB_OK | MB_ICONEXCLAMATION, shown);
        return false;
    }
    std::string documentName = PrintDocumentName(shown);
    DOCINFOA document{};
    document.cbSize = sizeof(document);
    document.lpszDocName = documentName.c_str();
    if (StartDocA(dc, &document) <= 0) {
        std::string text = frame.Text(IDS_PRINT_START_FAILED);
        if (std::string system = SystemMessage(GetLastError()); !system.empty())
            text += "\n" + system;
        frame.ShowText(text, MB_OK | MB_ICONEXCLAMATION);
        DeleteDC(dc);
        return false;
    }
    g_abortPrinting = false;
    SetAbortProc(dc, AbortFunc);
    g_progressDialog = ShowProgress(frame, shown);
    EnableWindow(frame.m_window, FALSE);
    DWORD began = GetTickCount();
    HFONT font = CreatePrinterFont(frame, dc);
    HGDIOBJ oldFont = SelectObject(dc, font);
    PageLayout layout = MeasurePage(dc);
    std::string header = frame.Text(IDS_PAGE_HEADER);
    ReplaceAll(header, "<FILE>", shown);
    auto pages = PaginateCode(frame.CodeOf(*sheet), frame.m_tabWidth, layout.perLine, layout.linesPerPage - 2);
    bool printed = true;
    for (size_t page = 0; printed && page < pages.size(); ++page) {
        std::string pageHeader = header;
        ReplaceAll(pageHeader, "<PAGE>", std::to_string(page + 1));
        printed = PrintPage(dc, layout, pageHeader, pages[page]) && !g_abortPrinting;
    }
    while (printed && !g_abortPrinting && GetTickCount() - began < kShortestProgress) {
        AbortFunc(dc, 0);
        Sleep(20);
    }
    printed = printed && !g_abortPrinting;
    if (printed)
        EndDoc(dc);
    else
        AbortDoc(dc);
    EnableWindow(frame.m_window, TRUE);
    if (g_progressDialog)
        DestroyWindow(g_progressDialog);
    g_progressDialog = nullptr;
    SelectObject(dc, oldFont);
    DeleteObject(font);
    DeleteDC(dc);
    return printed;
}

void PrintSetup(EditorFrame& frame)
{
    PRINTDLGA dialog{};
    dialog.lStructSize = sizeof(dialog);
    dialog.hwndOwner = frame.m_window;
    dialog.hDevMode = frame.m_print.devMode;
    dialog.hDevNames = frame.m_print.devNames;
    dialog.Flags = PD_PRINTSETUP;
    ++frame.m_busy;
    PrintDlgA(&dialog);
    --frame.m_busy;
    // Kept whether the user chose or cancelled: the dialog may have replaced the handles either way.
    frame.m_print.devMode = dialog.hDevMode;
    frame.m_print.devNames = dialog.hDevNames;
}

void ReleasePrintSettings(PrintSettings& settings)
{
    if (settings.devMode)
        GlobalFree(settings.devMode);
    if (settings.devNames)
        GlobalFree(settings.devNames);
    settings = PrintSettings{};
}

} // namespace brannoc::ide
