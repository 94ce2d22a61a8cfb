#include "library/NamedFormats.h"

#include "library/FormatPattern.h"

namespace brannoc {

namespace {

constexpr NamedFormat kNamedFormats[] = {
    {L"General Date", NamedFormatKind::kPattern, L"c"},
    {L"Long Date", NamedFormatKind::kPattern, L"dddddd"},
    {L"Medium Date", NamedFormatKind::kUnsupported, L""},
    {L"Short Date", NamedFormatKind::kPattern, L"ddddd"},
    {L"Long Time", NamedFormatKind::kPattern, L"ttttt"},
    {L"Medium Time", NamedFormatKind::kPattern, L"hh:mm AMPM"},
    {L"Short Time", NamedFormatKind::kPattern, L"hh:mm"},
    {L"General Number", NamedFormatKind::kGeneralNumber, L""},
    {L"Currency", NamedFormatKind::kPattern, L"$#,##0.00;($#,##0.00);;"},
    {L"Fixed", NamedFormatKind::kPattern, L"0.00"},
    {L"Standard", NamedFormatKind::kPattern, L"#,##0.00"},
    {L"Percent", NamedFormatKind::kPattern, L"0.00%"},
    {L"Scientific", NamedFormatKind::kPattern, L"0.00E+00"},
    {L"Yes/No", NamedFormatKind::kYesNo, L""},
    {L"True/False", NamedFormatKind::kTrueFalse, L""},
    {L"On/Off", NamedFormatKind::kOnOff, L""},
};

} // namespace

const NamedFormat* FindNamedFormat(std::wstring_view form)
{
    for (const NamedFormat& named : kNamedFormats) {
        if (form.size() == named.name.size() && StartsWithNoCase(form, 0, named.name))
            return &named;
    }
    return nullptr;
}

} // namespace brannoc
