// The frame's sheets: new, open, show, save and close, with the save prompt, the sheet limit and
// the display names.
#include "ide/EditorFrameState.h"

#include "ide/CommandTable.h"
#include "ide/ModuleAttributes.h"
#include "ide/SheetTabs.h"
#include "ide/TextArea.h"

#include <cctype>
#include <fstream>
#include <iterator>

namespace brannoc::ide {

namespace {

constexpr int kSheetLimit = 9;
constexpr size_t kNameBufferSize = 260;

bool ReadWholeFile(const std::string& path, std::string& text)
{
    HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    DWORD size = GetFileSize(file, nullptr);
    bool ok = size != INVALID_FILE_SIZE;
    if (ok) {
        text.assign(size, '\0');
        DWORD read = 0;
        ok = size == 0 || (ReadFile(file, text.data(), size, &read, nullptr) && read == size);
    }
    CloseHandle(file);
    return ok;
}

// Creates (or replaces) the file and writes the text in one piece.
bool WriteWholeFile(const std::string& path, const std::string& text)
{
    HANDLE file = CreateFileA(path.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return false;
    DWORD written = 0;
    bool ok = WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) && written == text.size();
    return CloseHandle(file) && ok;
}

bool SameName(const std::string& a, const std::string& b)
{
    return a.size() == b.size() && CompareStringA(LOCALE_SYSTEM_DEFAULT, NORM_IGNORECASE, a.data(),
                                                  static_cast<int>(a.size()), b.data(), static_cast<int>(b.size())) == CSTR_EQUAL;
}

} // namespace

bool EditorFrame::Modified(const Sheet& sheet) const
{
    if (sheet.document)
        return sheet.document->Modified();
    if (&sheet == Current() && m_editor)
        return SendMessageA(m_editor, EM_GETMODIFY, 0, 0) != 0;
    return sheet.plainModified;
}

void EditorFrame::SetModified(Sheet& sheet, bool modified)
{
    if (sheet.document)
        sheet.document->SetModified(modified);
    else if (&sheet == Current() && m_editor)
        SendMessageA(m_editor, EM_SETMODIFY, modified, 0);
    sheet.plainModified = modified;
}

std::string EditorFrame::CodeOf(const Sheet& sheet) const
{
    if (sheet.document) {
        if (&sheet == Current())
            sheet.document->CommitEditingLine();
        return sheet.document->Buffer().Text();
    }
    if (&sheet == Current() && m_editor) {
        std::string text(static_cast<size_t>(GetWindowTextLengthA(m_editor)) + 1, '\0');
        text.resize(static_cast<size_t>(GetWindowTextA(m_editor, text.data(), static_cast<int>(text.size()))));
        return text;
    }
    return sheet.plainText;
}

std::string EditorFrame::WholeTextOf(const Sheet& sheet) const
{
    return sheet.header + sheet.references + CodeOf(sheet);
}

void EditorFrame::ReplaceCode(Sheet& sheet, const std::string& code)
{
    if (sheet.document) {
        sheet.document->Load(code);
        if (&sheet == Current())
            SendMessageA(m_editor, TAM_ATTACH, 0, reinterpret_cast<LPARAM>(sheet.document.get()));
    } else if (&sheet == Current()) {
        SetWindowTextA(m_editor, code.c_str());
    } else {
        sheet.plainText = code;
    }
    SetModified(sheet, true);
}

// Keeps the plain EDIT control's text with the sheet it belongs to before another sheet is shown.
void EditorFrame::StoreShownText()
{
    Sheet* sheet = Current();
    if (!sheet || sheet->document || !m_editor)
        return;
    sheet->plainText = CodeOf(*sheet);
    sheet->plainModified = SendMessageA(m_editor, EM_GETMODIFY, 0, 0) != 0;
}

bool EditorFrame::ShowSheet(int index)
{
    if (index < 0 || index >= Count())
        return false;
    if (index != m_current)
        StoreShownText();
    m_current = index;
    Sheet& sheet = *m_sheets[index];
    if (sheet.document) {
        sheet.document->SetTabs(m_tabsAsSpaces, m_tabWidth);
        SendMessageA(m_editor, TAM_ATTACH, 0, reinterpret_cast<LPARAM>(sheet.document.get()));
    } else {
        SetWindowTextA(m_editor, sheet.plainText.c_str());
        SendMessageA(m_editor, EM_SETMODIFY, sheet.plainModified, 0);
    }
    if (m_sheetTabs)
        SendMessageA(m_sheetTabs, STM_SETTABS, static_cast<WPARAM>(Count()), m_current);
    FillLists();
    RefreshKeywords();
    UpdateCaption();
    UpdateCommandStates();
    return true;
}

void EditorFrame::ApplyHeader(Sheet& sheet)
{
    sheet.headerLines = 0;
    for (char c : sheet.header)
        sheet.headerLines += c == '\n' ? 1 : 0;
    if (sheet.document)
        sheet.document->SetHiddenText(sheet.header + sheet.references, sheet.HiddenLines());
    SetModified(sheet, true);
    UpdateCaption();
}

bool EditorFrame::SetInstancing(Sheet& sheet, int instancing)
{
    if (sheet.kind != SheetKind::Object && sheet.kind != SheetKind::Class)
        return false;
    WriteInstancing(sheet.header, instancing);
    ApplyHeader(sheet);
    return true;
}

int EditorFrame::FindSheet(const std::string& name) const
{
    for (int i = 0; i < Count(); ++i)
        if (SameName(m_sheets[i]->name, name))
            return i;
    return -1;
}

std::string EditorFrame::DisplayName(const std::string& sourceName) const
{
    std::string name = sourceName;
    if (m_callbacks.displayName) {
        char buffer[kNameBufferSize] = {};
        name.copy(buffer, kNameBufferSize - 1);
        m_callbacks.displayName(m_window, buffer);
        name = buffer;
    }
    if (name.size() >= 3 && name[0] == '?' && name[1] >= 'A' && name[1] <= 'D') {
        static constexpr unsigned kWords[] = {0, IDS_MODULE, 0, IDS_CLASS};
        int kind = name[1] - 'A';
        std::string word = kind == 0 ? m_placeholders.macroNoun : kind == 2 ? m_objectNoun : Text(kWords[kind]);
        return word + name.substr(2);
    }
    if (name == ">")
        return Text(IDS_GENERAL);
    size_t slash = name.find_last_of('\\');
    std::string shown = slash == std::string::npos ? name : name.substr(slash + 1);
    for (char& c : shown)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return shown;
}

std::string EditorFrame::KindWord(const Sheet& sheet) const
{
    switch (sheet.kind) {
    case SheetKind::Macro: return m_placeholders.macroNoun;
    case SheetKind::Code: return Text(IDS_CODE);
    case SheetKind::Object: return sheet.objectType.empty() ? Text(IDS_OBJECT) : sheet.objectType;
    case SheetKind::Class: return Text(IDS_CLASS);
    }
    return {};
}

// Before another sheet is added: one sheet without the several-sheets option, nine with it (project
// mode has no limit). A full frame reuses a sheet that may be closed; answers the index to load
// into (-1: append) or -2 when the sheet cannot be opened.
static int PlaceForNewSheet(EditorFrame& frame)
{
    if (frame.ProjectMode() || frame.Count() == 0)
        return -1;
    if (!frame.Has(FO_SHEETS)) {
        if (!frame.QuerySave(*frame.m_sheets[0], PromptKind::CanCancel))
            return -2;
        return 0;
    }
    if (frame.Count() < kSheetLimit)
        return -1;
    for (int i = 0; i < frame.Count(); ++i)
        if (!frame.Modified(*frame.m_sheets[i]))
            return i;
    frame.ShowMessage(IDS_SHEET_LIMIT, MB_OK | MB_ICONEXCLAMATION);
    return -2;
}

static bool InstallSheet(EditorFrame& frame, std::unique_ptr<Sheet> sheet)
{
    int place = PlaceForNewSheet(frame);
    if (place == -2)
        return false;
    if (place == -1) {
        frame.m_sheets.push_back(std::move(sheet));
        place = frame.Count() - 1;
    } else {
        frame.m_sheets[place] = std::move(sheet);
        frame.m_current = -1; // the sheet shown before is gone
    }
    return frame.ShowSheet(place);
}

bool EditorFrame::NewSheet(SheetKind kind)
{
    int& counter = m_untitledCounters[static_cast<int>(kind)];
    auto sheet = std::make_unique<Sheet>();
    sheet->name = UntitledName(kind, counter);
    std::string shown = DisplayName(sheet->name);
    sheet->Load(NewModuleText(kind, m_objectTypeWord, shown), PlainEditing());
    if (!InstallSheet(*this, std::move(sheet)))
        return false;
    ++counter;
    if (kind == SheetKind::Macro && Current()->document) {
        // The caret waits on the empty line inside Sub Main.
        TextDocument& document = *Current()->document;
        document.MoveCaret(TextPosition{1, static_cast<int>(document.Line(1).size())}, false);
        SendMessageA(m_editor, TAM_SCROLLCARET, 0, 0);
    } else if (kind == SheetKind::Macro && m_editor) {
        SendMessageA(m_editor, EM_SETSEL, 11, 11);
    }
    return true;
}

bool EditorFrame::OpenFile(const std::string& path)
{
    int existing = FindSheet(path);
    if (existing >= 0)
        return ShowSheet(existing);
    std::string text;
    if (!ReadWholeFile(path, text)) {
        ShowMessage(IDS_CANNOT_OPEN_FILE, MB_OK | MB_ICONEXCLAMATION, path);
        return false;
    }
    auto sheet = std::make_unique<Sheet>();
    sheet->name = path;
    sheet->Load(text, PlainEditing());
    MarkEngineBreakPoints(*sheet);
    return InstallSheet(*this, std::move(sheet));
}

bool EditorFrame::SaveSheetAs(Sheet& sheet, std::string name)
{
    if (name.empty() && !ChooseFileName(true, name))
        return false;
    int other = FindSheet(name);
    if (other >= 0 && m_sheets[other].get() != &sheet) {
        ShowMessage(IDS_NAME_ALREADY_OPEN, MB_OK | MB_ICONEXCLAMATION, name);
        return false;
    }
    if (!SameName(name, sheet.name) && EngineHoldsName(name)) {
        ShowMessage(IDS_NAME_LOADED, MB_OK | MB_ICONEXCLAMATION, name);
        return false;
    }
    std::string text = WholeTextOf(sheet);
    if (text.empty())
        text = "\r\n";
    bool throughHost = name[0] == '*' || (ProjectMode() && m_callbacks.write);
    bool written = throughHost ? (m_callbacks.write && m_callbacks.write(m_window, name.c_str(), text.c_str()))
                               : WriteWholeFile(name, text);
    if (!written) {
        ShowMessage(IDS_NOT_SAVED, MB_OK | MB_ICONEXCLAMATION, name);
        return false;
    }
    sheet.name = name;
    SetModified(sheet, false);
    UpdateCaption();
    UpdateCommandStates();
    return true;
}

bool EditorFrame::SaveSheet(Sheet& sheet)
{
    return SaveSheetAs(sheet, sheet.IsUntitled() ? std::string() : sheet.name);
}

bool EditorFrame::SaveAll()
{
    for (auto& sheet : m_sheets)
        if (Modified(*sheet) && !SaveSheet(*sheet))
            return false;
    return true;
}

bool EditorFrame::QuerySave(Sheet& sheet, PromptKind prompt)
{
    if (m_callbacks.querySave) {
        int result = IDNO;
        if (m_callbacks.querySave(m_window, sheet.name.c_str(), &result))
            return result == IDYES ? SaveSheet(sheet) : result != IDCANCEL;
    }
    if (!Modified(sheet) || (!Has(FO_FILES) && !ProjectMode()))
        return true;
    UINT buttons = prompt == PromptKind::CanCancel ? MB_YESNOCANCEL : MB_YESNO;
    int answer = ShowMessage(IDS_SAVE_CHANGES, buttons | MB_ICONQUESTION, DisplayName(sheet.name));
    if (answer == IDCANCEL)
        return false;
    return answer == IDNO || SaveSheet(sheet);
}

bool EditorFrame::CloseSheet(int index, PromptKind prompt)
{
    if (index < 0 || index >= Count() || !QuerySave(*m_sheets[index], prompt))
        return false;
    if (index == m_current)
        m_current = -1;
    else if (index < m_current)
        --m_current;
    m_sheets.erase(m_sheets.begin() + index);
    if (m_sheets.empty())
        return NewSheet(SheetKind::Macro);
    return ShowSheet(m_current >= 0 ? m_current : (index < Count() ? index : Count() - 1));
}

bool EditorFrame::CloseAll(PromptKind prompt)
{
    for (auto& sheet : m_sheets)
        if (!QuerySave(*sheet, prompt))
            return false;
    m_current = -1;
    m_sheets.clear();
    return NewSheet(SheetKind::Macro);
}

} // namespace brannoc::ide
