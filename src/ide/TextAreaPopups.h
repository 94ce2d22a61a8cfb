#pragma once
// The text area's side of completion and parameter information: it creates the two pop-up components
// by program identifier, shows them for commands 326 and 327, keeps the list's prefix and the tip's
// argument index up to date while the user types, accepts the chosen word, and posts the commands
// itself after the characters that open a completion or call context.
#include "ide/BrowseCatalog.h"
#include "ide/PopupComponents.h"
#include "ide/TextDocument.h"

#include <windows.h>

#include <functional>
#include <memory>
#include <string>

namespace brannoc::ide {

struct TextAreaState;

enum class PopupKind { Completion = 0, ParameterTip = 1 };

class TextAreaPopups final {
public:
    TextAreaPopups() = default;
    ~TextAreaPopups();
    TextAreaPopups(const TextAreaPopups&) = delete;
    TextAreaPopups& operator=(const TextAreaPopups&) = delete;

    // At the text area's creation and destruction (OLE initialised on the thread): the class objects and
    // the components.
    void Create();
    void Release();

    bool Has(PopupKind kind) const;
    bool Shown(PopupKind kind) const;
    const std::string& TipPrototype() const { return m_tipPrototype; }
    int TipArgument() const { return m_tipArgument; }
    // Commands 326 and 327: builds and shows the list or the tip for the caret; true when shown.
    bool Show(TextAreaState& state, PopupKind kind);
    // Hides both (`suspend`: remembers them for Reshow), or shows again those hidden by a suspension.
    void HideAll(bool suspend = false);
    void Reshow(TextAreaState& state);

    // A character about to be typed: while the list is shown, a character that is not a word character
    // accepts the current entry first (once a prefix was typed).
    void BeforeCharacter(TextAreaState& state, char typed);
    // A character typed: the automatic triggers after ".", blank, "(", ",", "=" and ")".
    void AfterCharacter(TextAreaState& state, char typed);
    // After any change of text or caret: the list's prefix and the tip's argument follow the caret, and
    // each closes when the caret leaves its place.
    void Follow(TextAreaState& state);
    // The components' event messages; true when the message was one of them.
    bool HandleEvent(TextAreaState& state, UINT message, WPARAM wParam);

    // Where the frame's type libraries come from (none: the code's own declarations only).
    void SetCatalogSource(std::function<BrowseCatalog()> source) { m_catalogSource = std::move(source); }

private:
    BrowseCatalog Catalog() const;
    bool ShowList(TextAreaState& state);
    bool ShowTip(TextAreaState& state);
    void Accept(TextAreaState& state);
    void HideList();
    void HideTip();
    void FollowList(TextAreaState& state);
    void FollowTip(TextAreaState& state);
    bool ListWouldResult(TextAreaState& state);
    bool TipWouldResult(TextAreaState& state);
    std::string CurrentArgumentType() const;
    POINT ScreenPoint(const TextAreaState& state, TextPosition position) const;

    std::unique_ptr<PopupClassObjects> m_classObjects;
    ComRef<IDispatch> m_list, m_tip;
    UINT m_listEvent = 0, m_tipEvent = 0;
    std::function<BrowseCatalog()> m_catalogSource;

    bool m_listShown = false;
    TextPosition m_listStart;  // where the prefix begins
    int m_listExtra = 0;       // characters after the caret counted into the prefix
    std::string m_listText;    // for a re-show
    std::string m_sentPrefix;

    bool m_tipShown = false;
    int m_tipLine = 0;
    int m_tipOpenColumn = 0;
    int m_tipNameColumn = 0;
    int m_tipOpening = 0;
    std::string m_tipPrototype;
    int m_tipArgument = 0;

    bool m_listSuspended = false, m_tipSuspended = false;
    bool m_typing = false;      // Follow runs for a typed character (may offer an argument's list)
    bool m_following = false;   // guards Follow against the changes it makes itself
};

} // namespace brannoc::ide
