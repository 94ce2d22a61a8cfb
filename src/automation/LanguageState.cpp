#include "automation/LanguageState.h"
#include "automation/ExportBoundary.h"

#include "host/AnsiText.h"
#include "host/ThisModule.h"

#include "brannoc.h"

#include <cstdio>
#include <string>

using namespace brannoc;
using namespace brannoc::automation;

namespace {

struct LanguageState {
    LANGID language = kFollowUserLanguage;
    UINT codePage = 0;
    HMODULE satellite = nullptr;
    bool resetPending = false;
    bool followUser = true;
    LANGID lockedLanguage = 0;
    int locks = 0;
};

thread_local LanguageState t_state;

LANGID CurrentLanguage(const LanguageState& state)
{
    return state.followUser ? GetUserDefaultLangID() : state.language;
}

void DropSatellite(LanguageState& state)
{
    if (state.satellite)
        FreeLibrary(state.satellite);
    state.satellite = nullptr;
}

void StoreLanguage(LanguageState& state, LANGID language)
{
    DropSatellite(state);
    state.followUser = language == kFollowUserLanguage || language == kResetLanguage;
    state.language = state.followUser ? kFollowUserLanguage : language;
    state.codePage = GetACP();
    if (!state.followUser) {
        wchar_t text[8] = {};
        if (GetLocaleInfoW(MAKELCID(language, SORT_DEFAULT), LOCALE_IDEFAULTCODEPAGE, text, 8))
            state.codePage = static_cast<UINT>(_wtoi(text));
    }
}

// String 1 of a module up to and after its "#".
void VersionParts(HMODULE module, std::wstring& name, std::wstring& version)
{
    wchar_t text[256] = {};
    LoadStringW(module, 1, text, 256);
    std::wstring all(text);
    size_t mark = all.find(L'#');
    name = all.substr(0, mark);
    version = mark == std::wstring::npos ? std::wstring() : all.substr(mark + 1);
}

// The library's satellite for the thread's language, when one exists and matches the library.
HMODULE LoadSatellite()
{
    std::string path = AnsiFromWide(ThisModulePath());
    if (path.empty() || path.size() >= MAX_PATH)
        return nullptr;
    char candidate[MAX_PATH + 16] = {};
    memcpy(candidate, path.c_str(), path.size() + 1);
    if (!OA_NlsAdjustPathName(candidate, TRUE))
        return nullptr;
    HMODULE satellite = LoadLibraryExA(candidate, nullptr, LOAD_LIBRARY_AS_DATAFILE);
    if (!satellite)
        return nullptr;
    std::wstring ownName, ownVersion, name, version;
    VersionParts(ThisModule(), ownName, ownVersion);
    VersionParts(satellite, name, version);
    if (name != ownName || version < ownVersion) {
        FreeLibrary(satellite);
        return nullptr;
    }
    return satellite;
}

std::string LanguageAbbreviation(LANGID language)
{
    char text[16] = {};
    if (!GetLocaleInfoA(MAKELCID(language, SORT_DEFAULT), LOCALE_SABBREVLANGNAME, text, sizeof text))
        return {};
    return text;
}

// (language + 0x1000) as four hexadecimal digits without the leading one.
std::string HexLanguage(unsigned language)
{
    char text[8];
    std::snprintf(text, sizeof text, "%04X", (language + 0x1000u) & 0xFFFFu);
    return std::string(text + 1);
}

bool FileExists(const std::string& path)
{
    DWORD attributes = GetFileAttributesA(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

} // namespace

extern "C" {

BOOL __stdcall OA_NlsSetLangID(LANGID language)
{
    return AtExportBoundary<BOOL>(FALSE, [&]() -> BOOL {
        LanguageState& state = t_state;
        if (state.locks > 0) {
            if (language == kResetLanguage)
                state.resetPending = true;
            return FALSE;
        }
        StoreLanguage(state, language);
        return TRUE;
    });
}

LANGID __stdcall OA_NlsGetLangID(void)
{
    const LanguageState& state = t_state;
    return state.locks > 0 ? state.lockedLanguage : CurrentLanguage(state);
}

LCID __stdcall OA_NlsGetOleLCID(void) { return MAKELCID(OA_NlsGetLangID(), SORT_DEFAULT); }

void __stdcall OA_NlsLock(BOOL on)
{
    AtExportBoundary([&] {
        LanguageState& state = t_state;
        if (on) {
            if (state.locks++ == 0) {
                state.lockedLanguage = CurrentLanguage(state);
                if (!state.satellite)
                    state.satellite = LoadSatellite();
            }
            return;
        }
        if (state.locks == 0)
            return;
        if (--state.locks == 0 && state.resetPending) {
            state.resetPending = false;
            StoreLanguage(state, kResetLanguage);
        }
    });
}

HINSTANCE __stdcall OA_NlsGetInstance(void)
{
    return AtExportBoundary<HINSTANCE>(nullptr, [&]() -> HINSTANCE {
        LanguageState& state = t_state;
        if (!state.satellite)
            state.satellite = LoadSatellite();
        return state.satellite ? state.satellite : ThisModule();
    });
}

// Candidates: directory, the first four characters of the name, the separator ("@" for satellites, else
// "_"), a language code, the extension; the codes of the full language, of the primary language, the
// primary language in hexadecimal, and "0" in hexadecimal.
BOOL __stdcall OA_NlsAdjustPathName(LPSTR path, BOOL satellite)
{
    return AtExportBoundary<BOOL>(FALSE, [&]() -> BOOL {
        if (!path)
            return FALSE;
        std::string full(path);
        size_t slash = full.find_last_of("\\/:");
        size_t nameStart = slash == std::string::npos ? 0 : slash + 1;
        size_t dot = full.find_last_of('.');
        if (dot == std::string::npos || dot < nameStart)
            dot = full.size();
        std::string directory = full.substr(0, nameStart);
        std::string name = full.substr(nameStart, dot - nameStart).substr(0, 4);
        std::string extension = full.substr(dot);
        const char separator = satellite ? '@' : '_';
        const LANGID language = OA_NlsGetLangID();
        const std::string codes[] = {LanguageAbbreviation(language), LanguageAbbreviation(PRIMARYLANGID(language)),
                                     HexLanguage(language & 0x3FFu), HexLanguage(0)};
        for (const std::string& code : codes) {
            if (code.empty())
                continue;
            std::string candidate = directory + name + separator + code + extension;
            if (candidate.size() < MAX_PATH && FileExists(candidate)) {
                memcpy(path, candidate.c_str(), candidate.size() + 1);
                return TRUE;
            }
        }
        return FALSE;
    });
}

} // extern "C"
