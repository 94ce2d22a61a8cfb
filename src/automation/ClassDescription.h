#pragma once
// The text form of a dispatch class: one member a line (names, parameter and result types, properties),
// read into member records that become the class's type information (DescribedType).
#include <windows.h>
#include <oaidl.h>

#include <string>
#include <string_view>
#include <vector>

namespace brannoc::automation {

struct ParameterRecord {
    std::wstring name;
    VARTYPE type = VT_EMPTY;   // VT_BYREF added for ByRef
};

// One method record: a member line, or the put half of a property line.
struct MemberRecord {
    std::wstring name;
    DISPID id = 0;
    UINT methodIndex = 0;           // the implementation's virtual-function slot
    WORD kind = DISPATCH_METHOD;    // DISPATCH_METHOD, _PROPERTYGET, _PROPERTYPUT and/or _PROPERTYPUTREF
    VARTYPE resultType = VT_EMPTY;  // VT_EMPTY: no result
    std::vector<ParameterRecord> parameters;
};

struct ClassDescription {
    std::wstring interfaceName;
    std::vector<MemberRecord> members;
};

// The first error of a description: the offending line, the position in it and the message.
struct DescriptionError {
    std::wstring line;
    size_t position = 0;
    std::wstring message;

    // The text shown to the user: the line (at most 200 characters) with "<here>" at the position, two
    // line feeds and the message.
    std::wstring Text() const;
};

// Reads text into description. ansi: the class takes String parameters as ANSI text, so a ByRef String
// parameter is refused. False at the first error, which is described in error.
[[nodiscard]] bool ParseClassDescription(std::wstring_view text, bool ansi, ClassDescription& description,
                                         DescriptionError& error);

// The DISPID a member gets from its name when the line gives none.
DISPID DispatchIdFromName(std::wstring_view name);

// Shows error in the task-modal "Method Definition Error" box.
void ShowDescriptionError(const DescriptionError& error);

} // namespace brannoc::automation
