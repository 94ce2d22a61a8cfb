// The object and proc lists of the frame: "(General)" with "(declarations)" and the procedures, the
// module's own object and WithEvents variables with their events; choosing an entry moves the caret,
// choosing an event without a handler inserts one.
#include "ide/EditorFrameState.h"

#include "ide/ProcedureIndex.h"
#include "ide/TextArea.h"

namespace brannoc::ide {

namespace {

constexpr LPARAM kHandlerExists = 1; // item data: drawn in the bold list font

std::string SelectedText(HWND list)
{
    LRESULT index = SendMessageA(list, CB_GETCURSEL, 0, 0);
    if (index < 0)
        return {};
    char text[256] = {};
    SendMessageA(list, CB_GETLBTEXT, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(text));
    return text;
}

void AddItem(HWND list, const std::string& text, LPARAM data = 0)
{
    LRESULT index = SendMessageA(list, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(text.c_str()));
    SendMessageA(list, CB_SETITEMDATA, static_cast<WPARAM>(index), data);
}

// The own object of an object or class module, named by its kind word.
std::string OwnObject(const EditorFrame& frame, const Sheet& sheet)
{
    return sheet.kind == SheetKind::Object || sheet.kind == SheetKind::Class ? frame.KindWord(sheet) : std::string();
}

const ProcedureEntry* FindProcedure(const std::vector<ProcedureEntry>& entries, const std::string& name)
{
    for (const ProcedureEntry& entry : entries)
        if (lstrcmpiA(entry.name.c_str(), name.c_str()) == 0)
            return &entry;
    return nullptr;
}

// The procedure whose header is the last one at or above the line (null above the first).
const ProcedureEntry* ProcedureAtLine(const std::vector<ProcedureEntry>& entries, int line)
{
    const ProcedureEntry* found = nullptr;
    for (const ProcedureEntry& entry : entries)
        if (entry.line <= line && (!found || entry.line >= found->line))
            found = &entry;
    return found;
}

void SelectText(HWND list, const std::string& text)
{
    LRESULT index = SendMessageA(list, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(text.c_str()));
    SendMessageA(list, CB_SETCURSEL, static_cast<WPARAM>(index), 0);
}

} // namespace

void EditorFrame::FillLists()
{
    Sheet* sheet = Current();
    if (!sheet || !sheet->document || m_listMode == 0)
        return;
    std::string object = SelectedText(m_objectList);
    SendMessageA(m_objectList, CB_RESETCONTENT, 0, 0);
    std::string general = Text(IDS_GENERAL);
    AddItem(m_objectList, general);
    std::string own = OwnObject(*this, *sheet);
    if (!own.empty())
        AddItem(m_objectList, own);
    for (const std::string& name : ListWithEventsVariables(*sheet->document))
        AddItem(m_objectList, name);
    if (object.empty() || SendMessageA(m_objectList, CB_FINDSTRINGEXACT, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(object.c_str())) < 0)
        object = general;
    SendMessageA(m_objectList, CB_SELECTSTRING, static_cast<WPARAM>(-1), reinterpret_cast<LPARAM>(object.c_str()));
    FillProcList();
}

void EditorFrame::FillProcList()
{
    Sheet* sheet = Current();
    if (!sheet || !sheet->document)
        return;
    std::string object = SelectedText(m_objectList);
    SendMessageA(m_procList, CB_RESETCONTENT, 0, 0);
    std::vector<ProcedureEntry> procedures = ListProcedures(*sheet->document);
    // The entry shown in the list's field is the procedure the caret is in, when it belongs here.
    const ProcedureEntry* atCaret = ProcedureAtLine(procedures, sheet->document->Caret().line);
    if (object.empty() || object == Text(IDS_GENERAL)) {
        AddItem(m_procList, Text(IDS_DECLARATIONS));
        for (const ProcedureEntry& entry : procedures)
            AddItem(m_procList, ProcListText(entry));
        SelectText(m_procList, atCaret ? ProcListText(*atCaret) : Text(IDS_DECLARATIONS));
        return;
    }
    for (const char* event : ObjectEvents(object)) {
        bool handled = FindProcedure(procedures, object + "_" + event) != nullptr;
        AddItem(m_procList, event, handled ? kHandlerExists : 0);
    }
    std::string prefix = object + "_";
    if (atCaret && atCaret->name.size() > prefix.size() && lstrcmpiA(atCaret->name.substr(0, prefix.size()).c_str(), prefix.c_str()) == 0)
        SelectText(m_procList, atCaret->name.substr(prefix.size()));
}

std::vector<const char*> EditorFrame::ObjectEvents(const std::string& object) const
{
    const Sheet* sheet = Current();
    if (sheet && object == OwnObject(*this, *sheet))
        return {"Initialize", "Terminate"};
    return {};
}

void EditorFrame::ChooseProc()
{
    Sheet* sheet = Current();
    if (!sheet || !sheet->document)
        return;
    TextDocument& document = *sheet->document;
    std::string object = SelectedText(m_objectList);
    std::string chosen = SelectedText(m_procList);
    std::vector<ProcedureEntry> procedures = ListProcedures(document);
    bool general = object.empty() || object == Text(IDS_GENERAL);
    if (general) {
        int line = 0;
        for (const ProcedureEntry& entry : procedures)
            if (ProcListText(entry) == chosen)
                line = entry.line;
        document.MoveCaret(TextPosition{line, 0}, false);
    } else if (const ProcedureEntry* handler = FindProcedure(procedures, object + "_" + chosen)) {
        document.MoveCaret(TextPosition{handler->line, 0}, false);
    } else if (m_readOnly) {
        ShowStatus(Text(IDS_PROC_NOT_DEFINED));
        return;
    } else {
        InsertHandler(document, "Private Sub " + object + "_" + chosen + "()");
    }
    SendMessageA(m_editor, TAM_SCROLLCARET, 0, 0);
    SetFocus(m_editor);
    // A message about an earlier choice no longer applies.
    if (m_lastStatus == Text(IDS_PROC_NOT_DEFINED))
        ShowStatus({});
    UpdateDeferred(); // the lists, the caption of a changed sheet and the caret's line number

}

// Appends a handler after a blank line: the prototype, an empty line for the caret, "End " and the
// prototype's second word.
void EditorFrame::InsertHandler(TextDocument& document, const std::string& prototype)
{
    int last = document.LineCount() - 1;
    std::string text;
    if (!document.Line(last).empty())
        text += "\r\n";
    if (last > 0 && !(document.Line(last).empty() && document.Line(last - 1).empty()))
        text += "\r\n";
    size_t first = prototype.find(' ');
    size_t second = prototype.find(' ', first + 1);
    std::string word = prototype.substr(first + 1, second - first - 1);
    text += prototype + "\r\n\r\nEnd " + word + "\r\n";
    TextPosition end{last, static_cast<int>(document.Line(last).size())};
    document.Select(end, end);
    document.ReplaceSelection(text, ChangeKind::Forced);
    document.MoveCaret(TextPosition{document.LineCount() - 3, 0}, false);
    SendMessageA(m_editor, TAM_FOCUSREFRESH, 0, 0);
}

} // namespace brannoc::ide
