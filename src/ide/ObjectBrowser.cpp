// The object browser (resource 130): a library drop-down, the data types of the chosen library, the
// members of the chosen type with their dispatch id, value or result type, parameters and help string;
// Follow walks to a member's result type and Back returns; Paste ends the dialog with the expression
// field's text and the chosen member's argument template, which then replace the browsed text.
#include "ide/ObjectBrowser.h"

#include "host/ThisModule.h"
#include "ide/BrowseCatalog.h"
#include "ide/BrowsePath.h"
#include "ide/EditorFrameState.h"
#include "ide/EngineLink.h"
#include "ide/FrameHelp.h"
#include "ide/MemberTemplate.h"
#include "ide/TextArea.h"
#include "values/Variant.h"

#include "brannoc.h"

#include <cstdio>

namespace brannoc::ide {

namespace {

constexpr int kBrowseDialog = 130;
constexpr int kLibraries = 109, kTypes = 110, kMembers = 111, kDispatchId = 113, kFollow = 114, kValueLabel = 115,
              kValue = 116, kBack = 119, kExpression = 120, kHelpString = 122, kHelpButton = 123, kParameters = 125;
enum BrowseStrings : unsigned {
    IDS_NO_BROWSING = 510, IDS_HELP_NOT_FOUND = 511, IDS_NOTHING_TO_BROWSE = 512, IDS_NOTHING = 513,
    IDS_NO_TYPEINFO = 514, IDS_NO_TYPENAME = 515, IDS_ALL_LIBRARIES = 516,
};

struct BrowseBox {
    EditorFrame* frame = nullptr;
    BrowseCatalog catalog;
    BrowsePlace place;
    std::string placeTitle;               // a type not in the catalog (an evaluated object): its first line
    std::vector<BrowsePlace> back;
    std::vector<const BrowseType*> types; // the Data Type drop-down's entries after the title line
    std::vector<MemberLine> members;      // the Methods/Properties list's entries
    TemplateForm form = TemplateForm::Expression;
    std::string pasteText;
};

BrowseBox* BoxOf(HWND dialog) { return reinterpret_cast<BrowseBox*>(GetWindowLongPtrA(dialog, DWLP_USER)); }

std::string ControlText(HWND dialog, int id)
{
    HWND control = GetDlgItem(dialog, id);
    std::string text(static_cast<size_t>(GetWindowTextLengthA(control)) + 1, '\0');
    text.resize(static_cast<size_t>(GetWindowTextA(control, text.data(), static_cast<int>(text.size()))));
    return text;
}

std::string Joined(const std::string& expression, const std::string& name)
{
    return expression.empty() ? name : expression + "." + name;
}

const MemberLine* SelectedMember(HWND dialog, const BrowseBox& box)
{
    const LRESULT index = SendDlgItemMessageA(dialog, kMembers, LB_GETCURSEL, 0, 0);
    if (index < 0 || index >= static_cast<LRESULT>(box.members.size()))
        return nullptr;
    return &box.members[static_cast<size_t>(index)];
}

std::string HelpStringOf(ITypeInfo* type, MEMBERID id)
{
    Bstr text;
    ComRef<ITypeInfo> shown = ComRef<ITypeInfo>::Adopt(OA_GetDispatchType(type));
    if (!shown || FAILED(shown->GetDocumentation(id, nullptr, text.Out(), nullptr, nullptr)))
        return {};
    return NarrowText(text.View());
}

void ShowMember(HWND dialog, BrowseBox& box)
{
    const MemberLine* member = SelectedMember(dialog, box);
    SendDlgItemMessageA(dialog, kParameters, LB_RESETCONTENT, 0, 0);
    const bool constant = member && member->kind == MemberKind::Const;
    SetDlgItemTextA(dialog, kValueLabel, constant ? "Value:" : "Result:");
    SetDlgItemTextA(dialog, kFollow, constant ? "&Follow Value" : "&Follow Result");
    if (!member) {
        for (int id : {kDispatchId, kValue, kHelpString})
            SetDlgItemTextA(dialog, id, "");
        SetDlgItemTextA(dialog, kExpression, box.place.expression.c_str());
        EnableWindow(GetDlgItem(dialog, kFollow), FALSE);
        EnableWindow(GetDlgItem(dialog, kHelpButton), FALSE);
        return;
    }
    char id[16];
    std::snprintf(id, sizeof(id), "0x%08lX", static_cast<unsigned long>(member->id));
    SetDlgItemTextA(dialog, kDispatchId, id);
    SetDlgItemTextA(dialog, kValue, (constant ? member->value : member->type).c_str());
    for (const std::string& parameter : member->parameters)
        SendDlgItemMessageA(dialog, kParameters, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(parameter.c_str()));
    SetDlgItemTextA(dialog, kHelpString, HelpStringOf(box.place.type.Get(), member->id).c_str());
    SetDlgItemTextA(dialog, kExpression, Joined(box.place.expression, member->name).c_str());
    EnableWindow(GetDlgItem(dialog, kFollow), !constant && box.catalog.FindType(member->type) != nullptr);
    EnableWindow(GetDlgItem(dialog, kHelpButton), TRUE);
}

void FillMembers(HWND dialog, BrowseBox& box)
{
    HWND list = GetDlgItem(dialog, kMembers);
    SendMessageA(list, LB_RESETCONTENT, 0, 0);
    box.members = box.place.type ? ReadMembers(box.place.type.Get()) : std::vector<MemberLine>{};
    for (const MemberLine& member : box.members) {
        const std::string line = std::string(MemberKindLabel(member.kind)) + " " + member.name;
        SendMessageA(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(line.c_str()));
    }
    ShowMember(dialog, box);
}

int SelectedLibrary(HWND dialog)
{
    // Entry 0 is "(All Libraries)"; the catalog's libraries follow.
    return static_cast<int>(SendDlgItemMessageA(dialog, kLibraries, CB_GETCURSEL, 0, 0)) - 1;
}

void FillTypes(HWND dialog, BrowseBox& box)
{
    HWND combo = GetDlgItem(dialog, kTypes);
    SendMessageA(combo, CB_RESETCONTENT, 0, 0);
    box.types.clear();
    const int chosen = SelectedLibrary(dialog);
    for (size_t i = 0; i < box.catalog.libraries.size(); ++i)
        if (chosen < 0 || static_cast<int>(i) == chosen)
            for (const BrowseType& type : box.catalog.libraries[i].types)
                box.types.push_back(&type);
    if (!box.placeTitle.empty())
        SendMessageA(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(box.placeTitle.c_str()));
    for (const BrowseType* type : box.types)
        SendMessageA(combo, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(type->name.c_str()));
}

int TypeEntryOf(const BrowseBox& box, const std::string& name)
{
    const int offset = box.placeTitle.empty() ? 0 : 1;
    for (size_t i = 0; i < box.types.size(); ++i)
        if (box.types[i]->name == name)
            return static_cast<int>(i) + offset;
    return -1;
}

// Shows box.place: its library and data type chosen in the drop-downs, its members listed.
void ShowPlace(HWND dialog, BrowseBox& box)
{
    const std::string name = TypeNameOf(box.place.type.Get());
    int library = -1;
    for (size_t i = 0; i < box.catalog.libraries.size() && library < 0 && box.placeTitle.empty(); ++i)
        if (box.catalog.FindType(name, static_cast<int>(i)))
            library = static_cast<int>(i);
    if (library < 0 && box.placeTitle.empty())
        box.placeTitle = name; // a named object whose type no library lists
    SendDlgItemMessageA(dialog, kLibraries, CB_SETCURSEL, static_cast<WPARAM>(library + 1), 0);
    FillTypes(dialog, box);
    const int entry = box.placeTitle.empty() ? TypeEntryOf(box, name) : 0;
    SendDlgItemMessageA(dialog, kTypes, CB_SETCURSEL, static_cast<WPARAM>(entry), 0);
    EnableWindow(GetDlgItem(dialog, kBack), !box.back.empty());
    FillMembers(dialog, box);
}

void ChooseLibrary(HWND dialog, BrowseBox& box)
{
    box.placeTitle.clear();
    FillTypes(dialog, box);
    box.place = {box.types.empty() ? ComRef<ITypeInfo>() : box.types.front()->type, {}};
    SendDlgItemMessageA(dialog, kTypes, CB_SETCURSEL, 0, 0);
    FillMembers(dialog, box);
}

void ChooseType(HWND dialog, BrowseBox& box)
{
    const int entry = static_cast<int>(SendDlgItemMessageA(dialog, kTypes, CB_GETCURSEL, 0, 0));
    const int index = entry - (box.placeTitle.empty() ? 0 : 1);
    if (index < 0 || index >= static_cast<int>(box.types.size()))
        return;
    box.placeTitle.clear();
    box.place = {box.types[static_cast<size_t>(index)]->type, {}};
    FillTypes(dialog, box);
    SendDlgItemMessageA(dialog, kTypes, CB_SETCURSEL, static_cast<WPARAM>(index), 0);
    FillMembers(dialog, box);
}

void Follow(HWND dialog, BrowseBox& box)
{
    const MemberLine* member = SelectedMember(dialog, box);
    const BrowseType* target = member ? box.catalog.FindType(member->type) : nullptr;
    if (!target)
        return;
    box.back.push_back(box.place);
    box.back.back().title = box.placeTitle;
    box.place = {target->type, Joined(box.place.expression, member->name)};
    box.placeTitle.clear();
    ShowPlace(dialog, box);
}

void GoBack(HWND dialog, BrowseBox& box)
{
    if (box.back.empty())
        return;
    box.place = box.back.back();
    box.placeTitle = box.place.title;
    box.back.pop_back();
    ShowPlace(dialog, box);
}

void ShowMemberHelp(HWND dialog, BrowseBox& box)
{
    const MemberLine* member = SelectedMember(dialog, box);
    if (!member)
        return;
    DWORD context = 0;
    const std::string file = TakeEngineText(OA_GetTypeHelpFileA(box.place.type.Get(), member->id, &context));
    if (file.empty())
        return;
    if (GetFileAttributesA(file.c_str()) == INVALID_FILE_ATTRIBUTES) {
        box.frame->ShowMessage(IDS_HELP_NOT_FOUND, MB_OK | MB_ICONEXCLAMATION, file);
        return;
    }
    ShowHelpFile(dialog, file, HELP_CONTEXT, context);
}

// Paste: the expression field and, for a chosen member, the template of the form the browsed text's
// place asks for.
void Paste(HWND dialog, BrowseBox& box)
{
    box.pasteText = ControlText(dialog, kExpression);
    if (const MemberLine* member = SelectedMember(dialog, box))
        box.pasteText += ArgumentTemplate(*member, box.form);
    EndDialog(dialog, IDOK);
}

void Open(HWND dialog, BrowseBox& box)
{
    SetWindowLongPtrA(dialog, DWLP_USER, reinterpret_cast<LONG_PTR>(&box));
    HWND libraries = GetDlgItem(dialog, kLibraries);
    const std::string all = box.frame->Text(IDS_ALL_LIBRARIES);
    SendMessageA(libraries, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(all.c_str()));
    for (const BrowseLibrary& library : box.catalog.libraries)
        SendMessageA(libraries, CB_ADDSTRING, 0, reinterpret_cast<LPARAM>(library.name.c_str()));
    ShowPlace(dialog, box);
}

INT_PTR CALLBACK BrowseDlgProc(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam)
{
    BrowseBox* box = BoxOf(dialog);
    if (message == WM_INITDIALOG) {
        Open(dialog, *reinterpret_cast<BrowseBox*>(lParam));
        return TRUE;
    }
    if (message != WM_COMMAND || !box)
        return FALSE;
    const WORD code = HIWORD(wParam);
    switch (LOWORD(wParam)) {
    case IDOK: Paste(dialog, *box); return TRUE;
    case IDCANCEL: EndDialog(dialog, IDCANCEL); return TRUE;
    case kBack: GoBack(dialog, *box); return TRUE;
    case kFollow: Follow(dialog, *box); return TRUE;
    case kHelpButton: ShowMemberHelp(dialog, *box); return TRUE;
    case kLibraries:
        if (code == CBN_SELCHANGE)
            ChooseLibrary(dialog, *box);
        return TRUE;
    case kTypes:
        if (code == CBN_SELCHANGE)
            ChooseType(dialog, *box);
        return TRUE;
    case kMembers:
        if (code == LBN_SELCHANGE)
            ShowMember(dialog, *box);
        else if (code == LBN_DBLCLK)
            Follow(dialog, *box);
        return TRUE;
    default: return FALSE;
    }
}

// The text the browser works on and the range of the text area it replaces on Paste.
struct BrowsedText {
    std::string expression;
    DWORD start = 0, end = 0;
    bool startsStatement = false;
};

std::string EditorText(const EditorFrame& frame)
{
    std::string text(static_cast<size_t>(GetWindowTextLengthA(frame.m_editor)) + 1, '\0');
    text.resize(static_cast<size_t>(GetWindowTextA(frame.m_editor, text.data(), static_cast<int>(text.size()))));
    return text;
}

bool IsPathCharacter(char c)
{
    return IsCharAlphaNumericA(c) || c == '_' || c == '.';
}

// The selection, else the dotted name around the caret; the host's expression replaces the selection.
BrowsedText TextToBrowse(const EditorFrame& frame, const char* hostExpression)
{
    BrowsedText browsed;
    const std::string text = EditorText(frame);
    SendMessageA(frame.m_editor, EM_GETSEL, reinterpret_cast<WPARAM>(&browsed.start), reinterpret_cast<LPARAM>(&browsed.end));
    browsed.start = std::min<DWORD>(browsed.start, static_cast<DWORD>(text.size()));
    browsed.end = std::min<DWORD>(std::max(browsed.end, browsed.start), static_cast<DWORD>(text.size()));
    if (hostExpression) {
        browsed.expression = hostExpression;
    } else if (browsed.end > browsed.start) {
        browsed.expression = text.substr(browsed.start, browsed.end - browsed.start);
    } else {
        while (browsed.start > 0 && IsPathCharacter(text[browsed.start - 1]))
            --browsed.start;
        while (browsed.end < text.size() && IsPathCharacter(text[browsed.end]))
            ++browsed.end;
        browsed.expression = text.substr(browsed.start, browsed.end - browsed.start);
    }
    size_t lineStart = browsed.start;
    while (lineStart > 0 && text[lineStart - 1] != '\n')
        --lineStart;
    browsed.startsStatement = text.find_first_not_of(" \t", lineStart) >= browsed.start;
    return browsed;
}

// A stopped macro: the expression's object and its type information give the place, or one of the
// texts for Nothing, no type information and no type name. False when its type cannot be browsed.
bool EvaluatedPlace(EditorFrame& frame, const std::string& expression, BrowseBox& box)
{
    ComRef<IDispatch> object = ComRef<IDispatch>::Adopt(
        CU_EvaluateObject(frame.m_engine, expression.c_str(), frame.m_run.evaluationDepth));
    ComRef<ITypeInfo> type;
    if (!object) {
        box.placeTitle = frame.Text(IDS_NOTHING);
    } else if (FAILED(object->GetTypeInfo(0, 0x409, type.Out())) || !type) {
        box.placeTitle = frame.Text(IDS_NO_TYPEINFO);
    } else if (TypeNameOf(type.Get()).empty()) {
        box.placeTitle = frame.Text(IDS_NO_TYPENAME);
    } else {
        ComRef<ITypeInfo> shown = ComRef<ITypeInfo>::Adopt(OA_GetDispatchType(type.Get()));
        if (!shown)
            return false;
        box.placeTitle = TypeNameOf(type.Get()) + " (" + expression + ")";
        box.place = {type, expression};
    }
    return true;
}

} // namespace

bool ShowObjectBrowser(EditorFrame& frame, const char* hostExpression)
{
    const BrowsedText browsed = TextToBrowse(frame, hostExpression);
    const std::string expression = TrimmedPath(browsed.expression);
    BrowseBox box;
    box.frame = &frame;
    box.catalog = CollectBrowseCatalog(frame);
    // A member at the start of a line is called as a statement; anywhere else its value is used.
    box.form = browsed.startsStatement ? TemplateForm::Statement : TemplateForm::Expression;
    bool evaluated = false;
    if (!expression.empty() && frame.m_engine && CU_IsStopped(frame.m_engine)) {
        if (!EvaluatedPlace(frame, expression, box)) {
            frame.ShowMessage(IDS_NO_BROWSING, MB_OK | MB_ICONINFORMATION);
            return false;
        }
        evaluated = true;
    }
    if (!evaluated)
        box.place = ResolvePath(box.catalog, expression);
    if (!evaluated && !box.place.type) {
        if (box.catalog.Empty()) {
            frame.ShowMessage(IDS_NOTHING_TO_BROWSE, MB_OK | MB_ICONINFORMATION);
            return false;
        }
        box.place = DefaultPlace(box.catalog);
    }
    const INT_PTR answer = DialogBoxParamA(ThisModule(), MAKEINTRESOURCEA(kBrowseDialog), frame.m_window, BrowseDlgProc,
                                           reinterpret_cast<LPARAM>(&box));
    if (answer != IDOK)
        return false;
    SendMessageA(frame.m_editor, EM_SETSEL, browsed.start, browsed.end);
    SendMessageA(frame.m_editor, EM_REPLACESEL, TRUE, reinterpret_cast<LPARAM>(box.pasteText.c_str()));
    SetFocus(frame.m_editor);
    return true;
}

} // namespace brannoc::ide
