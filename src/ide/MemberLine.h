#pragma once
// One member of a data type as the object browser lists it: a line of OA_GetTypeDescA ("0x", eight
// hexadecimal digits of the member id, ":" and the member's description with " As " type names) taken
// apart into its kind, name, parameter lines and value or result type.
#include <windows.h>
#include <oaidl.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace brannoc::ide {

enum class MemberKind { Const, Sub, Function, PropertyGet, PropertyLet, Property };

struct MemberLine {
    MEMBERID id = 0;
    MemberKind kind = MemberKind::Sub;
    std::string name;
    std::vector<std::string> parameters; // as the Parameters list shows them, e.g. "Optional Buttons As Variant"
    std::string type;                    // result type, or the value type of a property; empty for a Sub
    std::string value;                   // a constant's value, filled by the reader of the type
    std::string description;             // the line after the member id, e.g. "Hello(Name As String) As String"
};

// The member a description line names; `constant` marks a line read from a constant variable. Nothing
// for a line that does not start with "0x", eight hexadecimal digits and ":".
std::optional<MemberLine> ParseMemberLine(std::string_view line, bool constant = false);

// The kind as the members list writes it before the name: "Const:", "Sub:", "Function:", ...
const char* MemberKindLabel(MemberKind kind);

// The type named by a parameter line ("Optional Buttons As Variant : 0" gives "Variant"); empty when
// the line names none.
std::string ParameterType(std::string_view parameter);

// True for members the browser does not list: names that begin with "_" (restricted or hidden ones
// are written that way by the description lines).
bool IsHiddenMember(const MemberLine& member);

// A property's get and put lines with the same member id become one "Property:" member (the get's
// parameters and type); everything else is kept in order.
std::vector<MemberLine> JoinPropertyPairs(std::vector<MemberLine> members);

} // namespace brannoc::ide
