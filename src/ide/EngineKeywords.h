#pragma once
// The editor's keyword sets taken from an engine object, as the frame builds them for a sheet: the
// blocked part of the host's word lists goes to the engine's BlockedKeywords, the engine's Keywords
// (which then leaves those words out) fill sets 0, 1 and 3, and its MacroKeywords for the sheet's
// macro fill set 2.
#include "ide/EditorColours.h"
#include "ide/KeywordSets.h"

#include <string_view>

struct _CodeUnit;

namespace brannoc::ide {

// `extraLists` is "blocked|extra 1|extra 2". Answers false (the sets unchanged) when the engine
// refuses one of the calls.
bool BuildKeywordSetsFromEngine(KeywordSets& sets, _CodeUnit& engine, std::string_view macroName,
                                std::string_view extraLists, const EditorColours& colours);

} // namespace brannoc::ide
