#include "frontend/LanguageConstants.h"

namespace brannoc {

namespace {

constexpr LanguageConstant kVarType[] = {
    {L"vbEmpty", 0},        {L"vbNull", 1},     {L"vbInteger", 2},   {L"vbLong", 3},
    {L"vbSingle", 4},       {L"vbDouble", 5},   {L"vbCurrency", 6},  {L"vbDate", 7},
    {L"vbString", 8},       {L"vbObject", 9},   {L"vbError", 10},    {L"vbBoolean", 11},
    {L"vbVariant", 12},     {L"vbDataObject", 13}, {L"vbDecimal", 14}, {L"vbByte", 17},
    {L"vbUserDefinedType", 36}, {L"vbArray", 8192},
};
constexpr LanguageConstant kMsgBoxStyle[] = {
    {L"vbOKOnly", 0},          {L"vbOKCancel", 1},        {L"vbAbortRetryIgnore", 2}, {L"vbYesNoCancel", 3},
    {L"vbYesNo", 4},           {L"vbRetryCancel", 5},     {L"vbCritical", 16},        {L"vbQuestion", 32},
    {L"vbExclamation", 48},    {L"vbInformation", 64},    {L"vbDefaultButton1", 0},   {L"vbDefaultButton2", 256},
    {L"vbDefaultButton3", 512}, {L"vbApplicationModal", 0}, {L"vbSystemModal", 4096},
};
constexpr LanguageConstant kMsgBoxResult[] = {
    {L"vbOK", 1}, {L"vbCancel", 2}, {L"vbAbort", 3}, {L"vbRetry", 4}, {L"vbIgnore", 5}, {L"vbYes", 6}, {L"vbNo", 7},
};
constexpr LanguageConstant kAppWinStyle[] = {
    {L"vbHide", 0},           {L"vbNormalFocus", 1},   {L"vbMinimizedFocus", 2},
    {L"vbMaximizedFocus", 3}, {L"vbNormalNoFocus", 4}, {L"vbMinimizedNoFocus", 6},
};
constexpr LanguageConstant kFileAttribute[] = {
    {L"vbNormal", 0}, {L"vbReadOnly", 1},  {L"vbHidden", 2},   {L"vbSystem", 4},
    {L"vbVolume", 8}, {L"vbDirectory", 16}, {L"vbArchive", 32}, {L"vbAlias", 64},
};
constexpr LanguageConstant kDayOfWeek[] = {
    {L"vbUseSystemDayOfWeek", 0}, {L"vbSunday", 1},   {L"vbMonday", 2}, {L"vbTuesday", 3},
    {L"vbWednesday", 4},          {L"vbThursday", 5}, {L"vbFriday", 6}, {L"vbSaturday", 7},
};
constexpr LanguageConstant kFirstWeekOfYear[] = {
    {L"vbUseSystem", 0}, {L"vbFirstJan1", 1}, {L"vbFirstFourDays", 2}, {L"vbFirstFullWeek", 3},
};
constexpr LanguageConstant kStrConv[] = {
    {L"vbUpperCase", 1}, {L"vbLowerCase", 2}, {L"vbProperCase", 3}, {L"vbWide", 4},          {L"vbNarrow", 8},
    {L"vbKatakana", 16}, {L"vbHiragana", 32}, {L"vbUnicode", 64},   {L"vbFromUnicode", 128},
};
constexpr LanguageConstant kCallType[] = {{L"vbMethod", 1}, {L"vbGet", 2}, {L"vbLet", 4}, {L"vbSet", 8}};
constexpr LanguageConstant kModule[] = {
    {L"vbCr", 0, L"\r"},          {L"vbLf", 0, L"\n"},       {L"vbCrLf", 0, L"\r\n"},
    {L"vbNewLine", 0, L"\r\n"},   {L"vbTab", 0, L"\t"},      {L"vbBack", 0, L"\b"},
    {L"vbFormFeed", 0, L"\f"},    {L"vbVerticalTab", 0, L"\v"}, {L"vbNullString", 0, L""},
    {L"vbObjectError", -2147221504L},
};

constexpr LanguageConstantGroup kGroups[] = {
    {L"VbVarType", false, kVarType},           {L"VbMsgBoxStyle", false, kMsgBoxStyle},
    {L"VbMsgBoxResult", false, kMsgBoxResult}, {L"VbAppWinStyle", false, kAppWinStyle},
    {L"VbFileAttribute", false, kFileAttribute}, {L"VbDayOfWeek", false, kDayOfWeek},
    {L"VbFirstWeekOfYear", false, kFirstWeekOfYear}, {L"VbStrConv", false, kStrConv},
    {L"VbCallType", false, kCallType},         {L"VbConstants", true, kModule},
};

// The constants' names are ASCII: compared letter by letter without regard to case.
bool SameName(std::string_view name, const wchar_t* constant)
{
    auto fold = [](unsigned int c) { return c >= 'a' && c <= 'z' ? c - ('a' - 'A') : c; };
    std::size_t i = 0;
    for (; i < name.size() && constant[i] != L'\0'; ++i) {
        if (fold(static_cast<unsigned char>(name[i])) != fold(static_cast<unsigned int>(constant[i])))
            return false;
    }
    return i == name.size() && constant[i] == L'\0';
}

} // namespace

std::span<const LanguageConstantGroup> LanguageConstantGroups() { return kGroups; }

bool FindLanguageConstant(std::string_view name, ConstantValue& value)
{
    // Every language constant begins with "vb".
    if (name.size() < 3 || (name[0] != 'v' && name[0] != 'V') || (name[1] != 'b' && name[1] != 'B'))
        return false;
    for (const LanguageConstantGroup& group : kGroups) {
        for (const LanguageConstant& constant : group.constants) {
            if (!SameName(name, constant.name))
                continue;
            value = constant.text ? ConstantValue::String(constant.text) : ConstantValue::Integer(constant.value);
            return true;
        }
    }
    return false;
}

} // namespace brannoc
