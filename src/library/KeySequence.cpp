#include "library/KeySequence.h"

#include "values/ValueError.h"

#include <windows.h>

#include <cwctype>
#include <string>

namespace brannoc {

namespace {

struct KeyName {
    const wchar_t* name;
    std::uint32_t code;
};

constexpr KeyName kKeyNames[] = {
    {L"CANCEL", 3},     {L"ESC", 27},        {L"ESCAPE", 27},   {L"ENTER", 13},   {L"HELP", 47},
    {L"PRTSC", 44},     {L"PRINT", 42},      {L"EXECUTE", 43},  {L"TAB", 9},      {L"PAUSE", 19},
    {L"CLEAR", 12},     {L"BS", 8},          {L"BKSP", 8},      {L"BACKSPACE", 8}, {L"DEL", 46},
    {L"DELETE", 46},    {L"INS", 45},        {L"INSERT", 45},   {L"LEFT", 37},    {L"RIGHT", 39},
    {L"UP", 38},        {L"DOWN", 40},       {L"PGUP", 33},     {L"PGDN", 34},    {L"HOME", 36},
    {L"END", 35},       {L"SELECT", 41},     {L"PAD*", 106},    {L"PAD+", 107},   {L"PADENTER", 108},
    {L"PAD-", 109},     {L"PAD.", 110},      {L"PAD/", 111},
};

// The code of a braced key name (upper case), or 0.
std::uint32_t CodeOfName(const std::wstring& name)
{
    for (const KeyName& key : kKeyNames) {
        if (name == key.name)
            return key.code;
    }
    if (name.size() == 4 && name.compare(0, 3, L"PAD") == 0 && name[3] >= L'0' && name[3] <= L'9')
        return 96 + static_cast<std::uint32_t>(name[3] - L'0');
    if (name.size() >= 2 && name.size() <= 3 && name[0] == L'F') {
        int number = 0;
        for (std::size_t i = 1; i < name.size(); ++i) {
            if (name[i] < L'0' || name[i] > L'9')
                return 0;
            number = number * 10 + (name[i] - L'0');
        }
        if (number >= 1 && number <= 24)
            return 111 + static_cast<std::uint32_t>(number);
    }
    return 0;
}

// A plain character as its key and Shift state from the keyboard layout; explicit Ctrl or Alt replace
// the layout's Shift state.
bool CharacterKey(wchar_t c, std::uint32_t modifiers, std::uint32_t& key)
{
    char ansi = 0;
    if (WideCharToMultiByte(CP_ACP, 0, &c, 1, &ansi, 1, nullptr, nullptr) != 1)
        return RaiseValueError(kErrorInvalidKeyName);
    const SHORT scan = VkKeyScanA(ansi);
    if (scan == -1)
        return RaiseValueError(kErrorInvalidKeyName);
    std::uint32_t shift = (scan & 0x100) ? kKeyShift : 0;
    // With Caps Lock on, the Shift state of letters is inverted so that the letter arrives as written.
    if (std::iswalpha(c) && (GetKeyState(VK_CAPITAL) & 1))
        shift ^= kKeyShift;
    if (modifiers & (kKeyCtrl | kKeyAlt))
        shift = 0;
    key = static_cast<std::uint32_t>(scan & 0xFF) | shift | modifiers;
    return true;
}

class KeyReader final {
public:
    KeyReader(std::wstring_view text, std::vector<std::uint32_t>& keys) : m_text(text), m_keys(keys) {}

    // Reads keys up to the end, or up to ")" inside a group.
    bool Read(std::uint32_t groupModifiers, bool inGroup)
    {
        std::uint32_t pending = 0;
        while (m_at < m_text.size()) {
            const wchar_t c = m_text[m_at++];
            switch (c) {
            case L'+': pending |= kKeyShift; continue;
            case L'^': pending |= kKeyCtrl; continue;
            case L'%': pending |= kKeyAlt; continue;
            case L'(':
                if (!Read(groupModifiers | pending, true))
                    return false;
                pending = 0;
                continue;
            case L')':
                if (inGroup)
                    return true;
                break;
            case L'~':
                if (!Add(VK_RETURN | groupModifiers | pending, 1))
                    return false;
                pending = 0;
                continue;
            case L'{':
                if (!ReadBraced(groupModifiers | pending))
                    return false;
                pending = 0;
                continue;
            default: break;
            }
            std::uint32_t key = 0;
            if (!CharacterKey(c, groupModifiers | pending, key) || !Add(key, 1))
                return false;
            pending = 0;
        }
        return !inGroup || RaiseValueError(kErrorMissingParen);
    }

private:
    bool ReadBraced(std::uint32_t modifiers)
    {
        std::wstring name;
        // A "}" right after the "{" is itself the name.
        if (m_at < m_text.size() && m_text[m_at] == L'}')
            name += m_text[m_at++];
        while (m_at < m_text.size() && m_text[m_at] != L' ' && m_text[m_at] != L'}')
            name += static_cast<wchar_t>(std::towupper(m_text[m_at++]));
        if (m_at >= m_text.size())
            return RaiseValueError(kErrorMissingBrace);
        std::uint32_t key = 0;
        if (const std::uint32_t code = CodeOfName(name)) {
            key = code | modifiers;
        } else if (name == L"MENU" && !(modifiers & kKeyAlt)) {
            key = VK_MENU | kKeyAlt | modifiers;
        } else if (name.size() == 1) {
            // The character as written (a letter keeps its case).
            const std::size_t start = m_at - 1;
            if (!CharacterKey(m_text[start], modifiers, key))
                return false;
        } else {
            return RaiseValueError(kErrorInvalidKeyName);
        }
        long count = 1;
        if (m_at < m_text.size() && m_text[m_at] == L' ') {
            while (m_at < m_text.size() && m_text[m_at] == L' ')
                ++m_at;
            count = 0;
            while (m_at < m_text.size() && m_text[m_at] >= L'0' && m_text[m_at] <= L'9' && count < 10000)
                count = count * 10 + (m_text[m_at++] - L'0');
        }
        if (m_at >= m_text.size() || m_text[m_at] != L'}')
            return RaiseValueError(kErrorMissingBrace);
        ++m_at;
        return Add(key, count);
    }

    bool Add(std::uint32_t key, long count)
    {
        for (long i = 0; i < count; ++i) {
            if (m_keys.size() >= kMaxKeyEntries)
                return RaiseValueError(kErrorTooManyKeys);
            m_keys.push_back(key);
        }
        return true;
    }

    std::wstring_view m_text;
    std::vector<std::uint32_t>& m_keys;
    std::size_t m_at = 0;
};

} // namespace

bool ParseKeySequence(std::wstring_view text, std::vector<std::uint32_t>& keys)
{
    keys.clear();
    return KeyReader(text, keys).Read(0, false);
}

} // namespace brannoc
