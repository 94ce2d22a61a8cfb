// Completion list and parameter tip of the text area, driven through the components' dispatch numbers.
#include "ide/TextAreaPopups.h"

#include "ide/CodeLineScan.h"
#include "ide/CompletionList.h"
#include "ide/EngineLink.h"
#include "ide/ParameterInfo.h"
#include "ide/TextAreaState.h"
#include "values/Variant.h"

#include <cstring>
#include <vector>

namespace brannoc::ide {

namespace {

constexpr int kCompleteWordCommand = 326;
constexpr int kParameterInfoCommand = 327;

// One argument of a call on a component: a number or a text.
struct PopupArgument {
    long number = 0;
    const std::string* text = nullptr;
};

// Calls member `id`; arguments in the order of the member's parameters. A result is asked for only
// when `result` is given (a described member without result refuses a result VARIANT). False when
// the call failed.
bool CallPopup(IDispatch* component, DISPID id, WORD flags, std::initializer_list<PopupArgument> arguments,
               Variant* result = nullptr)
{
    if (!component)
        return false;
    std::vector<Bstr> texts;
    texts.reserve(arguments.size());
    std::vector<VARIANT> values(arguments.size());
    size_t slot = arguments.size();
    for (const PopupArgument& argument : arguments) {
        VARIANT& value = values[--slot]; // dispatch arguments go in reverse order
        VariantInit(&value);
        if (argument.text) {
            texts.emplace_back(WideText(*argument.text));
            value.vt = VT_BSTR;
            value.bstrVal = texts.back().Get();
        } else {
            value.vt = VT_I4;
            value.lVal = argument.number;
        }
    }
    DISPID putId = DISPID_PROPERTYPUT;
    DISPPARAMS parameters{values.data(), nullptr, static_cast<UINT>(values.size()), 0};
    if (flags & DISPATCH_PROPERTYPUT) {
        parameters.rgdispidNamedArgs = &putId;
        parameters.cNamedArgs = 1;
    }
    return SUCCEEDED(component->Invoke(id, IID_NULL, 0x409, flags, &parameters, result ? &result->Raw() : nullptr,
                                       nullptr, nullptr));
}

long ShowPopup(IDispatch* component, HWND window, HFONT font, POINT at, int lineHeight, const std::string& text)
{
    Variant shown;
    if (!CallPopup(component, POPUP_SHOW, DISPATCH_METHOD,
                   {{static_cast<long>(reinterpret_cast<LONG_PTR>(window))}, {static_cast<long>(reinterpret_cast<LONG_PTR>(font))},
                    {at.x}, {at.y}, {lineHeight}, {0, &text}},
                   &shown))
        return 0;
    return shown.Raw().vt == VT_I4 ? shown.Raw().lVal : 0;
}

std::string LineText(const TextDocument& document, int line) { return std::string(document.Line(line)); }

} // namespace

TextAreaPopups::~TextAreaPopups() { Release(); }

void TextAreaPopups::Create()
{
    m_classObjects.reset(new (std::nothrow) PopupClassObjects);
    m_list = CreatePopupComponent(kCompletionProgId);
    m_tip = CreatePopupComponent(kParameterTipProgId);
    m_listEvent = RegisterWindowMessageA(kCompletionEventName);
    m_tipEvent = RegisterWindowMessageA(kParameterTipEventName);
}

void TextAreaPopups::Release()
{
    HideAll();
    m_list = {};
    m_tip = {};
    m_classObjects.reset();
}

bool TextAreaPopups::Has(PopupKind kind) const { return kind == PopupKind::Completion ? bool(m_list) : bool(m_tip); }

bool TextAreaPopups::Shown(PopupKind kind) const { return kind == PopupKind::Completion ? m_listShown : m_tipShown; }

BrowseCatalog TextAreaPopups::Catalog() const { return m_catalogSource ? m_catalogSource() : BrowseCatalog{}; }

POINT TextAreaPopups::ScreenPoint(const TextAreaState& state, TextPosition position) const
{
    POINT point = state.view.PointOf(*state.document, position);
    ClientToScreen(state.window, &point);
    return point;
}

std::string TextAreaPopups::CurrentArgumentType() const { return ParameterTypeAt(m_tipPrototype, m_tipArgument); }

bool TextAreaPopups::Show(TextAreaState& state, PopupKind kind)
{
    return kind == PopupKind::Completion ? ShowList(state) : ShowTip(state);
}

bool TextAreaPopups::ShowList(TextAreaState& state)
{
    if (!m_list)
        return false;
    HCURSOR previous = SetCursor(LoadCursor(nullptr, IDC_WAIT));
    const BrowseCatalog catalog = Catalog();
    const std::string argumentType = m_tipShown ? CurrentArgumentType() : std::string();
    const CompletionList list =
        BuildCompletionList(*state.document, catalog, CompletionRequest{true, m_tipShown ? &argumentType : nullptr});
    SetCursor(previous);
    if (list.text.empty())
        return false;
    HideList();
    const TextPosition start{list.line, list.prefixStart};
    if (!ShowPopup(m_list.Get(), state.window, state.view.Font(), ScreenPoint(state, start), state.view.LineHeight(),
                   list.text))
        return false;
    m_listShown = true;
    m_listStart = start;
    m_listExtra = std::max(0, list.prefixEnd - state.document->Caret().column);
    m_listText = list.text;
    m_sentPrefix = LineText(*state.document, list.line).substr(static_cast<size_t>(list.prefixStart),
                                                               static_cast<size_t>(list.prefixEnd - list.prefixStart));
    CallPopup(m_list.Get(), POPUP_WORD, DISPATCH_PROPERTYPUT, {{0, &m_sentPrefix}});
    return true;
}

bool TextAreaPopups::ShowTip(TextAreaState& state)
{
    if (!m_tip)
        return false;
    HCURSOR previous = SetCursor(LoadCursor(nullptr, IDC_WAIT));
    const BrowseCatalog catalog = Catalog();
    const std::optional<ParameterTip> tip = FindParameterTip(*state.document, catalog);
    SetCursor(previous);
    if (!tip)
        return false;
    HideTip();
    CallPopup(m_tip.Get(), POPUP_INDEX, DISPATCH_PROPERTYPUT, {{tip->argument}});
    const POINT at = ScreenPoint(state, TextPosition{tip->line, tip->site.nameColumn});
    if (!ShowPopup(m_tip.Get(), state.window, state.view.Font(), at, state.view.LineHeight(), tip->prototype))
        return false;
    m_tipShown = true;
    m_tipLine = tip->line;
    m_tipOpenColumn = tip->site.openColumn;
    m_tipNameColumn = tip->site.nameColumn;
    m_tipOpening = static_cast<int>(tip->site.opening);
    m_tipPrototype = tip->prototype;
    m_tipArgument = tip->argument;
    if (!ArgumentListText(catalog, CurrentArgumentType()).empty())
        state.PostCommand(kCompleteWordCommand);
    return true;
}

void TextAreaPopups::HideList()
{
    if (m_listShown)
        CallPopup(m_list.Get(), POPUP_HIDE, DISPATCH_METHOD, {});
    m_listShown = false;
}

void TextAreaPopups::HideTip()
{
    if (m_tipShown)
        CallPopup(m_tip.Get(), POPUP_HIDE, DISPATCH_METHOD, {});
    m_tipShown = false;
}

void TextAreaPopups::HideAll(bool suspend)
{
    m_listSuspended = suspend && m_listShown;
    m_tipSuspended = suspend && m_tipShown;
    HideList();
    HideTip();
}

void TextAreaPopups::Reshow(TextAreaState& state)
{
    if (m_tipSuspended && m_tip) {
        CallPopup(m_tip.Get(), POPUP_INDEX, DISPATCH_PROPERTYPUT, {{m_tipArgument}});
        m_tipShown = ShowPopup(m_tip.Get(), state.window, state.view.Font(),
                               ScreenPoint(state, TextPosition{m_tipLine, m_tipNameColumn}), state.view.LineHeight(),
                               m_tipPrototype) != 0;
    }
    if (m_listSuspended && m_list) {
        m_listShown = ShowPopup(m_list.Get(), state.window, state.view.Font(), ScreenPoint(state, m_listStart),
                                state.view.LineHeight(), m_listText) != 0;
        if (m_listShown)
            CallPopup(m_list.Get(), POPUP_WORD, DISPATCH_PROPERTYPUT, {{0, &m_sentPrefix}});
    }
    m_listSuspended = m_tipSuspended = false;
    Follow(state);
}

void TextAreaPopups::Accept(TextAreaState& state)
{
    Variant chosen;
    const bool answered = CallPopup(m_list.Get(), POPUP_WORD, DISPATCH_PROPERTYGET, {}, &chosen);
    HideList();
    if (!answered || chosen.Raw().vt != VT_BSTR || SysStringLen(chosen.Raw().bstrVal) == 0 || !state.CanEdit())
        return;
    TextDocument& document = *state.document;
    const TextPosition caret = document.Caret();
    if (caret.line != m_listStart.line || caret.column < m_listStart.column)
        return;
    const int end = std::min(caret.column + m_listExtra, document.Buffer().LineLength(caret.line));
    document.Select(m_listStart, TextPosition{caret.line, end});
    document.ReplaceSelection(NarrowText(chosen.StringView()));
    state.Refresh();
}

void TextAreaPopups::BeforeCharacter(TextAreaState& state, char typed)
{
    if (!m_listShown || IsWordCharacter(typed))
        return;
    const TextPosition caret = state.document->Caret();
    const bool prefixTyped = caret.line == m_listStart.line && caret.column > m_listStart.column;
    if (prefixTyped) {
        Accept(state);
        return;
    }
    // Nothing typed since the list came up: a blank moves the list's start behind it (", " before an
    // argument); any other character closes the list without choosing.
    const bool blank = typed == ' ' || typed == '\t';
    if (blank && caret.line == m_listStart.line && !state.document->HasSelection())
        m_listStart.column = caret.column + 1;
    else
        HideList();
}

bool TextAreaPopups::ListWouldResult(TextAreaState& state)
{
    if (!m_list)
        return false;
    const std::string argumentType = m_tipShown ? CurrentArgumentType() : std::string();
    return !BuildCompletionList(*state.document, Catalog(), CompletionRequest{false, m_tipShown ? &argumentType : nullptr})
                .text.empty();
}

void TextAreaPopups::AfterCharacter(TextAreaState& state, char typed)
{
    if (typed == '.') {
        if (ListWouldResult(state))
            state.PostCommand(kCompleteWordCommand);
        return;
    }
    if (!std::strchr(" (,=)", typed) || typed == '\0')
        return;
    if (m_tip) {
        const BrowseCatalog catalog = Catalog();
        if (std::optional<ParameterTip> tip = FindParameterTip(*state.document, catalog)) {
            const bool sameCall = m_tipShown && tip->line == m_tipLine && tip->site.openColumn == m_tipOpenColumn;
            if (!sameCall)
                state.PostCommand(kParameterInfoCommand);
            else if (typed == ',' && !ArgumentListText(catalog, CurrentArgumentType()).empty())
                state.PostCommand(kCompleteWordCommand);
            return;
        }
    }
    if (typed != '=' && typed != ')' && ListWouldResult(state))
        state.PostCommand(kCompleteWordCommand);
}

void TextAreaPopups::Follow(TextAreaState& state)
{
    if (m_following || (!m_listShown && !m_tipShown))
        return;
    m_following = true;
    FollowList(state);
    FollowTip(state);
    m_following = false;
}

void TextAreaPopups::FollowList(TextAreaState& state)
{
    if (!m_listShown)
        return;
    const TextDocument& document = *state.document;
    const TextPosition caret = document.Caret();
    if (caret.line != m_listStart.line || caret.column < m_listStart.column || document.HasSelection()) {
        HideList();
        return;
    }
    const std::string line = LineText(document, caret.line);
    const size_t end = std::min<size_t>(static_cast<size_t>(caret.column + m_listExtra), line.size());
    const std::string prefix = line.substr(static_cast<size_t>(m_listStart.column), end - static_cast<size_t>(m_listStart.column));
    for (char c : prefix)
        if (!IsWordCharacter(c)) {
            HideList();
            return;
        }
    const POINT at = ScreenPoint(state, m_listStart);
    CallPopup(m_list.Get(), POPUP_MOVE, DISPATCH_METHOD, {{at.x}, {at.y}});
    if (prefix != m_sentPrefix) {
        m_sentPrefix = prefix;
        CallPopup(m_list.Get(), POPUP_WORD, DISPATCH_PROPERTYPUT, {{0, &m_sentPrefix}});
    }
}

void TextAreaPopups::FollowTip(TextAreaState& state)
{
    if (!m_tipShown)
        return;
    const TextDocument& document = *state.document;
    const TextPosition caret = document.Caret();
    CallSite site;
    site.openColumn = m_tipOpenColumn;
    site.opening = static_cast<CallOpening>(m_tipOpening);
    const int argument = caret.line == m_tipLine ? ArgumentIndex(document.Line(caret.line), site, caret.column) : -1;
    if (argument < 0) {
        HideTip();
        return;
    }
    const POINT at = ScreenPoint(state, TextPosition{m_tipLine, m_tipNameColumn});
    CallPopup(m_tip.Get(), POPUP_MOVE, DISPATCH_METHOD, {{at.x}, {at.y}});
    if (argument != m_tipArgument) {
        m_tipArgument = argument;
        CallPopup(m_tip.Get(), POPUP_INDEX, DISPATCH_PROPERTYPUT, {{argument}});
    }
}

bool TextAreaPopups::HandleEvent(TextAreaState& state, UINT message, WPARAM wParam)
{
    if (message == 0 || (message != m_listEvent && message != m_tipEvent))
        return false;
    if (message == m_tipEvent) {
        m_tipShown = false;
        return true;
    }
    if (m_listShown && wParam)
        Accept(state);
    else
        m_listShown = false;
    return true;
}

} // namespace brannoc::ide
