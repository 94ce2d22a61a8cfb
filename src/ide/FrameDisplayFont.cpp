// The display font of the text area: set by the host (which keeps owning its font) or chosen with the
// Font command's dialog, which starts from the current font; after a choice the host is told (notify
// code 16).
#include "ide/EditorFrameState.h"

#include <commdlg.h>

namespace brannoc::ide {

namespace {

constexpr int kFontChangedNotification = 16;

} // namespace

void EditorFrame::SetDisplayFont(HFONT font, bool owned)
{
    if (m_displayFont && m_ownsDisplayFont && m_displayFont != font)
        DeleteObject(m_displayFont);
    m_displayFont = font;
    m_ownsDisplayFont = owned;
    SendMessageA(m_editor, WM_SETFONT, reinterpret_cast<WPARAM>(font ? font : GetStockObject(SYSTEM_FIXED_FONT)), TRUE);
}

bool EditorFrame::ChooseDisplayFont()
{
    LOGFONTA font{};
    GetObjectA(m_displayFont ? static_cast<HGDIOBJ>(m_displayFont) : GetStockObject(SYSTEM_FIXED_FONT), sizeof(font), &font);
    CHOOSEFONTA dialog{};
    dialog.lStructSize = sizeof(dialog);
    dialog.hwndOwner = m_window;
    dialog.lpLogFont = &font;
    dialog.Flags = CF_SCREENFONTS | CF_INITTOLOGFONTSTRUCT;
    ++m_busy;
    BOOL chosen = ChooseFontA(&dialog);
    --m_busy;
    if (!chosen)
        return false;
    HFONT created = CreateFontIndirectA(&font);
    if (!created)
        return false;
    SetDisplayFont(created, true);
    NotifyHost(kFontChangedNotification);
    return true;
}

} // namespace brannoc::ide
