#include "ide/EngineKeywords.h"

#include "brannoc.h"
#include "host/AnsiText.h"
#include "values/Variant.h"

namespace brannoc::ide {

bool BuildKeywordSetsFromEngine(KeywordSets& sets, _CodeUnit& engine, std::string_view macroName,
                                std::string_view extraLists, const EditorColours& colours)
{
    std::string_view blocked = extraLists.substr(0, extraLists.find('|'));
    Bstr blockedWords(WideFromAnsi(blocked));
    if (engine.put_BlockedKeywords(blockedWords.Get()) != S_OK)
        return false;
    Bstr keywords;
    if (engine.get_Keywords(keywords.Out()) != S_OK)
        return false;
    Bstr macro(WideFromAnsi(macroName));
    Bstr macroWords;
    if (engine.get_MacroKeywords(macro.Get(), macroWords.Out()) != S_OK)
        return false;
    sets.Build(AnsiFromWide(keywords.View()), extraLists, colours);
    sets.SetMacroKeywords(AnsiFromWide(macroWords.View()), colours);
    return true;
}

} // namespace brannoc::ide
