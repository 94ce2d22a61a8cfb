#pragma once
// What a sheet's code declares about a name, read from the text itself: the variables and parameters
// of the procedure around a line, the module-level variables of the declarations section, and the
// procedures with their headers. Completion and parameter information use it to find the type of the
// first name of a dotted expression, the object of a With block and the prototype of a procedure.
#include "ide/TextDocument.h"

#include <optional>
#include <string>
#include <string_view>

namespace brannoc::ide {

// A procedure header of the sheet: "Function Add(a As Integer, Optional b = 2) As Long" gives the
// name "Add", the parameter part "(a As Integer, Optional b = 2) As Long" and the result type "Long".
struct ProcedureHeader {
    std::string name;
    bool propertyGet = false;
    bool propertyPut = false;    // Property Let or Property Set
    bool function = false;
    std::string parameterPart;   // from the "(" on; "() " put in front when the header has no list
    std::string resultType;      // after the closing ")" and " As "; empty for a Sub
};

// The code of the statement that starts at `line`: continuation lines joined, the comment cut off.
std::string StatementCode(const TextDocument& document, int line);

// The header of a procedure statement; nothing for any other statement.
std::optional<ProcedureHeader> ParseProcedureHeader(std::string_view statement);

// The header line of the procedure that holds `line`, or -1 outside every procedure.
int ProcedureHeaderLine(TextDocument& document, int line);

// The type name written after "As" (and "New") for `name`: searched in the procedure around `line`
// (its Dim, ReDim and Static statements above the line and its header's parameters), then in the
// declarations section (Dim, Private, Public and Global statements, Declare left out), then among the
// sheet's Function and Property Get procedures (their result type). "" when the code does not declare
// the name or gives it no type.
std::string DeclaredTypeOf(TextDocument& document, int line, std::string_view name);

// The sheet's procedure of that name (a Property Get before the other property procedures when
// `wantGetter`, the Let or Set before the Get otherwise); nothing when the sheet has none.
std::optional<ProcedureHeader> FindProcedure(TextDocument& document, std::string_view name, bool wantGetter = true);

// The object expression of the With block that encloses `line` ("" outside every With block); an
// expression that itself begins with "." has the enclosing block's object put in front.
std::string WithObjectAt(TextDocument& document, int line);

// Names of the language compared as the language compares them, ignoring case.
bool SameWord(std::string_view a, std::string_view b);

} // namespace brannoc::ide
